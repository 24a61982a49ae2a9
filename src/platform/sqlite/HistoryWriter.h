#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/DateValue.h"
#include "platform/HistoryRows.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

/// How much of the record is kept.
struct HistoryLimits {
  int Days = 90;
  std::int64_t Bytes = 200'000'000;  ///< of the database itself
};

/// Writes rows into the open record, and removes the oldest ones. Used by one thread.
class HistoryWriter {
 public:
  /// The database must outlive the object.
  HistoryWriter(SqliteConnection& database, HistoryLimits limits);

  /// All of them or, if it fails, none: then the connection has the reason.
  [[nodiscard]] bool Write(const HistoryRows& rows);

  /// Removes a part of what is too old or too much; true if there may be more to remove. `now` is the present moment.
  /// A failure ends it until the next day.
  [[nodiscard]] bool Prune(base::DateValue now);

 private:
  [[nodiscard]] bool WriteRows(const HistoryRows& rows);
  [[nodiscard]] bool Write(const HistorySong& song);
  [[nodiscard]] bool Write(const HistoryMove& move);
  [[nodiscard]] bool Write(const HistoryEvent& event);
  [[nodiscard]] bool Write(const HistoryIncident& incident);
  [[nodiscard]] bool Write(const HistoryPlay& play);
  [[nodiscard]] bool Write(const HistoryLag& lag);
  [[nodiscard]] std::optional<std::int64_t> StationOf(const HistoryPlay& play);
  [[nodiscard]] std::optional<std::int64_t> TitleOf(const HistoryPlay& play);

  void FindWhatIsTooMuch(base::DateValue now);
  struct Size {
    std::int64_t File = 0;  ///< bytes
    std::int64_t Free = 0;  ///< of them
  };
  [[nodiscard]] std::optional<Size> SizeNow();
  /// True if there is more of it.
  [[nodiscard]] bool RemoveSomeRows();
  [[nodiscard]] bool RemoveSomeTitles();
  [[nodiscard]] bool RemoveUnusedStations();
  [[nodiscard]] bool MergeSomeIndex();
  [[nodiscard]] bool GiveBackSomeRoom();

  SqliteConnection& database_;
  HistoryLimits limits_;
  SqliteStatement run_;
  SqliteStatement song_;
  SqliteStatement move_;
  SqliteStatement event_;
  SqliteStatement incident_;
  SqliteStatement play_;
  SqliteStatement heard_;
  SqliteStatement lag_;
  SqliteStatement findStation_;
  SqliteStatement station_;
  SqliteStatement findTitle_;
  SqliteStatement title_;
  SqliteStatement titleText_;

  /// What is removed goes in this order: rows that are too old, titles and stations that no play has any more, what
  /// these leave behind in the index, and the room that all of it took in the file, if the file is too large.
  enum class Removing { Nothing, Rows, Titles, Index, Room };

  std::optional<base::DateValue> lastLook_;  // at what is too old
  Removing removing_ = Removing::Nothing;
  base::DateValue removeBefore_;
  std::int64_t sweptTitles_ = 0;  // all up to this one have been looked at
  bool rowsRemoved_ = false;
  bool titlesRemoved_ = false;
  bool mergeBegun_ = false;
};

}  // namespace kestrune::platform
