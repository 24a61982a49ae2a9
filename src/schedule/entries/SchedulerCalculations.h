#pragma once

#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// How a row shows the end of its entry: as "Every Day" from January 15 to 20, 1967, as a weekday before, and as a
/// date after.
[[nodiscard]] SchedulerMoment ShownEnd(base::DateValue end);

/// The end of a row, from its start and duration.
[[nodiscard]] SchedulerMoment EndTimeOf(const SchedulerRow& row);

/// The minutes from a row's start to the end that it shows, always 1 to 2879. If only one of the two recurs, the
/// end's time of day alone counts; an end that is not later than the start is taken as the next day's.
[[nodiscard]] int DurationOf(const SchedulerRow& row);

}  // namespace kestrune::schedule
