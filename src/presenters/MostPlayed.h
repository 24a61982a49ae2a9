#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "base/Result.h"
#include "history/History.h"
#include "presenters/ChoiceList.h"
#include "schedule/entries/SchedulerRow.h"

namespace kestrune::presenters {

/// An artist, or a song, and how often it was played.
struct MostPlayedRow {
  std::string Plays;
  std::string Artist;
  std::string Title;  ///< empty if artists are counted
  std::string Last;   ///< when the last of the plays began

  bool operator==(const MostPlayedRow&) const = default;
};

/// What was played most, as the window of the recording report shows it: by artist or by song, on one channel or on all,
/// within some days. The record is asked each time the page is shown, and after each choice; a count takes a second or
/// two, and the answer to an earlier question is not taken any more.
class MostPlayed {
 public:
  static constexpr std::size_t kRows = 200;  ///< at most

  /// `channels` gives those to choose from. All must outlive the object.
  MostPlayed(history::History& history, base::EventLoop& loop,
             std::function<std::vector<schedule::SchedulerChannel>()> channels);
  MostPlayed(const MostPlayed&) = delete;
  MostPlayed& operator=(const MostPlayed&) = delete;

  /// The page is shown: asks, with what was chosen last.
  void Show();
  /// The same for the songs of one channel; for those of all if it is not listed.
  void ShowSongsOf(std::int16_t channel);
  /// The window closes: an answer that is still to come is not taken.
  void Unload();

  [[nodiscard]] const ChoiceList& PlayedAs() const { return playedAs_; }
  [[nodiscard]] const ChoiceList& Channels() const { return channels_; }
  [[nodiscard]] const ChoiceList& Days() const { return days_; }
  // Each asks anew. A row that does not exist is ignored.
  void cboPlayedAs(int row) { Choose(playedAs_, row); }
  void cboPlayedChannel(int row) { Choose(channels_, row); }
  void cboPlayedDays(int row) { Choose(days_, row); }

  /// Whether songs are counted, so that rows have titles.
  [[nodiscard]] bool BySong() const;
  /// The most played first.
  [[nodiscard]] const std::vector<MostPlayedRow>& Rows() const { return rows_; }
  /// How many there are, or why there are none, one line.
  [[nodiscard]] const std::string& Message() const { return message_; }
  /// Grows with every change of what is shown.
  [[nodiscard]] std::uint32_t Changes() const { return changes_; }

 private:
  void Choose(ChoiceList& list, int row);
  void ListChannels();
  void Ask();
  void Take(const base::Result& asked, const std::vector<platform::PlayCount>& counts);

  history::History& history_;
  base::EventLoop& loop_;
  std::function<std::vector<schedule::SchedulerChannel>()> listed_;
  ChoiceList playedAs_;
  ChoiceList channels_;
  ChoiceList days_;
  std::vector<MostPlayedRow> rows_;
  std::string message_;
  std::uint32_t changes_ = 0;
  std::shared_ptr<int> question_;  // the last one; only its answer is taken
};

}  // namespace kestrune::presenters
