#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "base/Text.h"
#include "platform/HistoryStore.h"

namespace kestrune::test {

/// Keeps the rows in memory. It can be made to fail as a disk does, and then tries again as the contract has it.
class FakeHistoryStore final : public platform::HistoryStore {
 public:
  explicit FakeHistoryStore(base::EventLoop& loop)
      : tmrAnswer_(loop.MakeTimer(std::chrono::milliseconds(1), [this] { Answer(); })) {}

  void Write(platform::HistoryRows rows) override {
    ++Writes;
    if (Forgets) return;
    Append(waiting_, std::move(rows));
    tmrAnswer_->SetEnabled(true);
    if (!Failure.empty()) return;
    Put(std::exchange(waiting_, {}));
  }

  void ReadSpan(base::DateValue from, base::DateValue to, RowsAnswer answer) override {
    Ask([this, from, to, answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      answer(base::Result::Done(), Span(from, to));
    });
  }

  void Search(platform::HistorySearch search, PlaysAnswer answer) override {
    LastSearch = search;
    Ask([this, search = std::move(search), answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      answer(base::Result::Done(), Found(search));
    });
  }

  void CountPlays(platform::MostPlayedSearch search, CountsAnswer answer) override {
    LastCount = search;
    Ask([this, search, answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      answer(base::Result::Done(), Counts(search));
    });
  }

  void ReadCuts(platform::CutSearch search, SongsAnswer answer) override {
    Ask([this, search, answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      answer(base::Result::Done(), Cuts(search));
    });
  }

  void ReadFolder(std::string folder, SongsAnswer answer) override {
    Ask([this, folder = std::move(folder), answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      std::vector<platform::HistorySong> found;
      for (auto song = Rows.Songs.rbegin(); song != Rows.Songs.rend(); ++song)
        if (song->File.starts_with(folder)) found.push_back(*song);
      std::stable_sort(found.begin(), found.end(),
                       [](const auto& a, const auto& b) { return a.Ended > b.Ended; });
      answer(base::Result::Done(), found);
    });
  }

  void ReadLags(LagsAnswer answer) override {
    Ask([this, answer = std::move(answer)] {
      if (!QuestionFailure.empty()) return answer(base::Result::Failed(QuestionFailure), {});
      std::vector<platform::HistoryLag> lags = Rows.Lags;
      std::sort(lags.begin(), lags.end(), [](const auto& a, const auto& b) { return a.Channel < b.Channel; });
      answer(base::Result::Done(), lags);
    });
  }

  void SetTroubleHandler(TroubleHandler handler) override { handler_ = std::move(handler); }

  std::string Failure;          ///< why nothing can be written; empty if it can
  std::string QuestionFailure;  ///< why questions are refused
  bool Forgets = false;         ///< nothing is kept, as in a run that is only measured
  int Writes = 0;
  platform::HistoryRows Rows;  ///< what is on the disk
  platform::HistorySearch LastSearch;
  platform::MostPlayedSearch LastCount;

 private:
  static void Append(platform::HistoryRows& to, platform::HistoryRows from) {
    const auto append = [](auto& rows, auto& more) {
      rows.insert(rows.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    };
    for (platform::HistoryMove& move : from.Moves)
      if (!platform::Moved(to.Songs, move)) to.Moves.push_back(std::move(move));
    append(to.Songs, from.Songs);
    append(to.Events, from.Events);
    append(to.Incidents, from.Incidents);
    append(to.Runs, from.Runs);
    append(to.Plays, from.Plays);
    append(to.Lags, from.Lags);
  }

  /// Adds the rows, in the place of those of the same name.
  template <typename Row, typename IsSame>
  static void Merge(std::vector<Row>& rows, std::vector<Row>& more, IsSame isSame) {
    for (Row& row : more) {
      const auto found =
          std::find_if(rows.begin(), rows.end(), [&](const Row& one) { return isSame(one, row); });
      if (found == rows.end()) {
        rows.push_back(std::move(row));
      } else {
        *found = std::move(row);
      }
    }
  }

  static double Thousandth(double chance) { return std::round(chance * 1000) / 1000; }
  static void Trim(platform::HistoryCut& cut) {
    cut.Confidence = Thousandth(cut.Confidence);
    cut.Candidates.resize(std::min(cut.Candidates.size(), platform::kMostCandidates));
    for (platform::CutCandidate& candidate : cut.Candidates) candidate.Chance = Thousandth(candidate.Chance);
  }

  void Put(platform::HistoryRows more) {
    using namespace platform;
    for (const HistoryMove& move : more.Moves) static_cast<void>(Moved(Rows.Songs, move));
    for (HistorySong& song : more.Songs) {
      if (song.Cut) Trim(*song.Cut);
      Rows.Songs.push_back(std::move(song));
    }
    Merge(Rows.Events, more.Events, [](const HistoryEvent& a, const HistoryEvent& b) {
      return a.Entry == b.Entry && a.Due == b.Due && a.Began == b.Began;
    });
    Merge(Rows.Incidents, more.Incidents, [](const HistoryIncident& a, const HistoryIncident& b) {
      return a.Kind == b.Kind && a.Began == b.Began;
    });
    Merge(Rows.Runs, more.Runs, [](const HistoryRun& a, const HistoryRun& b) { return a.Began == b.Began; });
    Merge(Rows.Plays, more.Plays, [](const HistoryPlay& a, const HistoryPlay& b) {
      return a.From == b.From && a.Channel == b.Channel && a.Artist == b.Artist && a.Title == b.Title;
    });
    Merge(Rows.Lags, more.Lags,
          [](const HistoryLag& a, const HistoryLag& b) { return a.Channel == b.Channel; });
  }

  void Ask(std::function<void()> question) {
    questions_.push_back(std::move(question));
    tmrAnswer_->SetEnabled(true);
  }

  void Answer() {
    tmrAnswer_->SetEnabled(false);
    if (!Failure.empty() && !told_ && handler_) handler_(Failure);
    told_ = !Failure.empty();
    std::deque<std::function<void()>> questions;
    questions.swap(questions_);
    for (const auto& question : questions) question();
  }

  /// When an incident without an end was last known to last.
  [[nodiscard]] base::DateValue LastKnown(const platform::HistoryIncident& incident) const {
    const platform::HistoryRun* run = nullptr;
    for (const platform::HistoryRun& one : Rows.Runs)
      if (one.Began <= incident.Began && (run == nullptr || one.Began >= run->Began)) run = &one;
    return incident.Ended.value_or(run == nullptr ? incident.Began : std::max(run->Alive, incident.Began));
  }

  [[nodiscard]] platform::HistoryRows Span(base::DateValue from, base::DateValue to) const {
    platform::HistoryRows span;
    const auto take = [from, to](const auto& rows, auto& taken, auto begin, auto end) {
      for (const auto& row : rows)
        if (begin(row) <= to && end(row) >= from) taken.push_back(row);
      std::stable_sort(taken.begin(), taken.end(),
                       [&begin](const auto& a, const auto& b) { return begin(a) < begin(b); });
    };
    using namespace platform;
    take(
        Rows.Songs, span.Songs, [](const HistorySong& row) { return row.Began; },
        [](const HistorySong& row) { return row.Ended; });
    take(
        Rows.Events, span.Events, [](const HistoryEvent& row) { return row.Due; },
        [](const HistoryEvent& row) {
          const base::DateValue planned = row.Due.AddSeconds(row.PlannedSeconds);
          return std::max(planned, row.Ended.value_or(row.Began.value_or(planned)));
        });
    take(
        Rows.Incidents, span.Incidents, [](const HistoryIncident& row) { return row.Began; },
        [this](const HistoryIncident& row) { return LastKnown(row); });
    take(
        Rows.Runs, span.Runs, [](const HistoryRun& row) { return row.Began; },
        [](const HistoryRun& row) { return row.Alive; });
    return span;
  }

  [[nodiscard]] std::vector<platform::HistoryPlay> Found(const platform::HistorySearch& search) const {
    const std::vector<std::string> words = base::Split(search.Text, ' ');
    std::vector<platform::HistoryPlay> found;
    for (const platform::HistoryPlay& play : Rows.Plays) {
      if (search.Channel != 0 && play.Channel != search.Channel) continue;
      if (search.Since && play.From < *search.Since) continue;
      const bool matches = std::all_of(words.begin(), words.end(), [&play](const std::string& word) {
        return word.empty() || base::ContainsNoCase(play.Artist, word) ||
               base::ContainsNoCase(play.Title, word);
      });
      if (matches) found.push_back(play);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.From > b.From; });
    found.resize(std::min(found.size(), search.Limit));
    return found;
  }

  [[nodiscard]] std::vector<platform::PlayCount> Counts(const platform::MostPlayedSearch& search) const {
    const bool songs = search.As == platform::PlayedAs::Song;
    std::vector<platform::PlayCount> counts;
    for (const platform::HistoryPlay& play : Rows.Plays) {
      if (search.Channel != 0 && play.Channel != search.Channel) continue;
      if (search.Since && play.From < *search.Since) continue;
      if (play.Artist.empty() || (songs && play.Title.empty())) continue;
      const std::string title = songs ? play.Title : "";
      auto count = std::find_if(counts.begin(), counts.end(), [&](const platform::PlayCount& one) {
        return base::ToLower(one.Artist) == base::ToLower(play.Artist) &&
               base::ToLower(one.Title) == base::ToLower(title);
      });
      if (count == counts.end()) {
        counts.push_back({.Artist = play.Artist, .Title = title, .Plays = 0, .Last = play.From});
        count = counts.end() - 1;
      }
      ++count->Plays;
      count->Last = std::max(count->Last, play.From);
    }
    std::sort(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
      return std::tie(b.Plays, b.Last, a.Artist, a.Title) < std::tie(a.Plays, a.Last, b.Artist, b.Title);
    });
    counts.resize(std::min(counts.size(), search.Limit));
    return counts;
  }

  [[nodiscard]] std::vector<platform::HistorySong> Cuts(const platform::CutSearch& search) const {
    std::vector<platform::HistorySong> found;
    for (auto song = Rows.Songs.rbegin(); song != Rows.Songs.rend(); ++song)
      if (song->Cut && (search.Channel == 0 || song->Channel == search.Channel)) found.push_back(*song);
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.Ended > b.Ended; });
    found.resize(std::min(found.size(), search.Limit));
    return found;
  }

  TroubleHandler handler_;
  bool told_ = false;
  platform::HistoryRows waiting_;
  std::deque<std::function<void()>> questions_;
  std::unique_ptr<base::Timer> tmrAnswer_;
};

}  // namespace kestrune::test
