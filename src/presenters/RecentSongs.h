#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "history/History.h"
#include "platform/HistoryRows.h"
#include "recorder/RecordingState.h"

namespace kestrune::presenters {

/// A song in the collection.
struct KeptRow {
  std::string Time;  ///< of its end, with the day if that is another one
  std::string Artist;
  std::string Title;
  std::string Length;  ///< empty if it is not known
  std::string File;    ///< full path; it may have gone since

  bool operator==(const KeptRow&) const = default;
};

/// The songs that ended in the last days, also before this run: the last ones that were kept, and how long each song is.
class RecentSongs {
 public:
  static constexpr std::size_t kMostKept = 30;
  static constexpr int kDays = 7;

  /// All must outlive the object.
  RecentSongs(const recorder::RecordingState& recording, history::History& history, base::EventLoop& loop);

  /// Takes what has ended since the last call. The first call asks the record for what was before.
  void Follow();

  /// The newest first.
  [[nodiscard]] const std::vector<KeptRow>& Kept() const { return rows_; }
  /// Grows with every change of the rows.
  [[nodiscard]] std::uint32_t Changes() const { return changes_; }
  /// Milliseconds that the song lasted, case aside: the most of all times that it was captured, since some were captured
  /// in part. Nothing if it was not.
  [[nodiscard]] std::optional<std::int64_t> LengthOf(std::string_view artist, std::string_view title) const;

 private:
  struct KeptSong {
    base::DateValue Ended;
    std::string Artist;
    std::string Title;
    std::int64_t LengthMs = 0;
    std::string File;
  };
  struct Length {
    std::int64_t Milliseconds = 0;  // the most of all times
    base::DateValue Ended;          // the last time
  };
  using Name = std::pair<std::string, std::string>;  // artist and title in lower case

  void TakeRecord(const std::vector<platform::HistorySong>& songs);
  void NoteLength(std::string_view artist, std::string_view title, const Length& length);
  /// Those of songs that have not been heard for `kDays`, so that a run of months does not grow.
  void ForgetOldLengths();
  [[nodiscard]] bool HasFile(const std::string& file) const;
  void Rebuild();

  const recorder::RecordingState& recording_;
  history::History& history_;
  base::EventLoop& loop_;
  bool asked_ = false;
  std::int64_t last_ = 0;       // number of the last song taken
  std::vector<KeptSong> kept_;  // the newest first
  std::map<Name, Length> lengths_;
  base::DateValue shownOn_;
  std::vector<KeptRow> rows_;
  std::uint32_t changes_ = 0;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace kestrune::presenters
