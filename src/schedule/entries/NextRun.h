#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "base/DateValue.h"
#include "schedule/entries/ScheduleEntry.h"

namespace kestrune::schedule {

/// The next moment at which an entry begins, `now` included: once on a date, each week on a weekday, or each day.
/// Nothing if the entry is not enabled, lies in the past, ends before it starts, or can never be due.
[[nodiscard]] std::optional<base::DateValue> NextStart(const ScheduleEntry& entry, base::DateValue now);

struct NextRun {
  std::int16_t Number = 0;  ///< of the entry, 1 to 10
  base::DateValue Start;
};

/// The entry that begins next; of several at the same moment the one with the lowest number.
[[nodiscard]] std::optional<NextRun> FindNextRun(const ScheduleEntries& entries, base::DateValue now);

/// Whether an entry begins within `time` from `now`.
[[nodiscard]] bool RunsWithin(const ScheduleEntries& entries, base::DateValue now, std::chrono::seconds time);

}  // namespace kestrune::schedule
