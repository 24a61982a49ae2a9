#pragma once

#include <vector>

#include "base/DateValue.h"
#include "schedule/entries/ScheduleEntry.h"
#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// One run of an entry on the clock, its last minute whole.
struct EntryRun {
  base::DateValue Start;
  base::DateValue End;  ///< no longer part of it

  bool operator==(const EntryRun&) const = default;
};

/// When a row would run if it were saved as it is: enabled, start and end. What and how it records is left out.
[[nodiscard]] ScheduleEntry EntryOf(const SchedulerRow& row);

/// The runs of an entry of which any part lies between the two moments, in their order; none if it is not enabled.
[[nodiscard]] std::vector<EntryRun> RunsBetween(const ScheduleEntry& entry, base::DateValue from,
                                                base::DateValue to);

}  // namespace kestrune::schedule
