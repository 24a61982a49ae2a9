#pragma once

#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// How a row shows the end of its entry: as "Every Day" from January 15 to 20, 1967, as a weekday before that,
/// and as a date after it.
[[nodiscard]] SchedulerMoment ShownEnd(base::DateValue end);

/// The end of a row as its start and its duration make it.
[[nodiscard]] SchedulerMoment EndTimeOf(const SchedulerRow& row);

/// The minutes from a row's start to the end that it shows, always 1 to 2879. An end that fits the start in
/// no other way is taken as the same time of day, and one that is not later as the next day's.
[[nodiscard]] int DurationOf(const SchedulerRow& row);

}  // namespace kestrune::schedule
