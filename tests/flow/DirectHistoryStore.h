#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "platform/HistoryStore.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/PlayCounter.h"

namespace kestrune::test {

/// The real database without its threads: what is handed over is written, and the old removed, within the call, so
/// that two runs are the same. It counts what it was given, and keeps all of it but the plays in memory.
class DirectHistoryStore final : public platform::HistoryStore {
 public:
  DirectHistoryStore(base::EventLoop& loop, const std::string& path, platform::HistoryLimits limits)
      : loop_(loop),
        opened_(platform::OpenHistoryFile(path, stop_)),
        writer_(*opened_.Database, limits),
        tmrAnswer_(loop.MakeTimer(std::chrono::milliseconds(1), [this] { Answer(); })) {}

  void Write(platform::HistoryRows rows) override {
    Plays += rows.Plays.size();
    const auto append = [](auto& to, const auto& from) { to.insert(to.end(), from.begin(), from.end()); };
    append(Rows.Songs, rows.Songs);
    append(Rows.Events, rows.Events);
    append(Rows.Incidents, rows.Incidents);
    for (const platform::HistoryRun& run : rows.Runs) {
      if (!Rows.Runs.empty() && Rows.Runs.back().Began == run.Began) Rows.Runs.pop_back();
      Rows.Runs.push_back(run);
    }
    if (!writer_.Write(rows)) ++Failures;
    constexpr int kMost = 10'000;
    for (int i = 0; i < kMost && writer_.Prune(loop_.Now()); ++i) {
    }
  }

  void ReadSpan(base::DateValue from, base::DateValue to, RowsAnswer answer) override {
    Ask([from, to](auto& reader) { return reader.ReadSpan(from, to); }, std::move(answer));
  }
  void Search(platform::HistorySearch search, PlaysAnswer answer) override {
    Ask([search = std::move(search)](auto& reader) { return reader.Search(search); }, std::move(answer));
  }
  void CountPlays(platform::MostPlayedSearch search, CountsAnswer answer) override {
    Ask(
        [search](platform::HistoryReader& reader) -> std::optional<std::vector<platform::PlayCount>> {
          platform::PlayCounter counter(search);
          auto piece = platform::PlayCounter::Piece::More;
          while (piece == platform::PlayCounter::Piece::More) piece = counter.CountOn(reader.Database());
          if (piece == platform::PlayCounter::Piece::Failed) return std::nullopt;
          return counter.MostPlayed();
        },
        std::move(answer));
  }
  void ReadCuts(platform::CutSearch search, SongsAnswer answer) override {
    Ask([search](auto& reader) { return reader.ReadCuts(search); }, std::move(answer));
  }
  void ReadFolder(std::string folder, SongsAnswer answer) override {
    Ask([folder = std::move(folder)](auto& reader) { return reader.ReadFolder(folder); }, std::move(answer));
  }
  void ReadLags(LagsAnswer answer) override {
    Ask([](auto& reader) { return reader.ReadLags(); }, std::move(answer));
  }

  void SetTroubleHandler(TroubleHandler /*handler*/) override {}

  /// Nobody is there any more to whom an answer could go.
  void ForgetQuestions() { questions_.clear(); }

  platform::HistoryRows Rows;  ///< all that was handed over, but plays; each run once
  std::size_t Plays = 0;
  int Failures = 0;

 private:
  template <typename Question, typename GiveAnswer>
  void Ask(Question question, GiveAnswer answer) {
    questions_.push_back([this, question = std::move(question), answer = std::move(answer)] {
      platform::HistoryReader reader(*opened_.Database);
      const auto found = question(reader);
      if (!found) return answer(opened_.Database->Failure(), {});
      answer(base::Result::Done(), *found);
    });
    tmrAnswer_->SetEnabled(true);
  }
  void Answer() {
    tmrAnswer_->SetEnabled(false);
    std::deque<std::function<void()>> questions;
    questions.swap(questions_);
    for (const auto& question : questions) question();
  }

  base::EventLoop& loop_;
  std::atomic<bool> stop_{false};
  platform::HistoryFileOpened opened_;
  platform::HistoryWriter writer_;
  std::deque<std::function<void()>> questions_;
  std::unique_ptr<base::Timer> tmrAnswer_;
};

}  // namespace kestrune::test
