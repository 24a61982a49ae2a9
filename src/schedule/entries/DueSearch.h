#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "base/DateValue.h"
#include "schedule/entries/ScheduleEntry.h"

namespace kestrune::schedule {

/// The entry that is to run, and the real moment at which it ends.
struct DueEntry {
  std::int16_t Due = 0;  ///< 1 to 10
  base::DateValue RemainingUntil;

  bool operator==(const DueEntry&) const = default;
};

/// Finds the entry that is due at the present moment. What ran before, or was missed, makes no difference.
///
/// A start before Jan 15, 1967 is weekly, one on that day is daily, and every later one a single date. The
/// scheduler's window draws these lines a little differently.
class DueSearch {
 public:
  using Clock = std::function<base::DateValue()>;

  /// The table must outlive the search. `now` is read anew at each comparison.
  DueSearch(const ScheduleEntries& entries, Clock now) : entries_(entries), now_(std::move(now)) {}

  /// The due entry with the lowest number, if any is due.
  [[nodiscard]] std::optional<DueEntry> Find() const;

 private:
  [[nodiscard]] std::optional<base::DateValue> EndIfDue(const ScheduleEntry& entry) const;
  [[nodiscard]] std::optional<base::DateValue> SingleEnd(base::DateValue start, base::DateValue end) const;
  [[nodiscard]] std::optional<base::DateValue> WeeklyEnd(base::DateValue start, base::DateValue end) const;
  [[nodiscard]] std::optional<base::DateValue> DailyEnd(base::DateValue start, base::DateValue end) const;
  [[nodiscard]] base::DateValue NowInCodeWeek() const;

  const ScheduleEntries& entries_;
  Clock now_;
};

}  // namespace kestrune::schedule
