#pragma once

#include <cstdint>
#include <vector>

#include "base/DateValue.h"
#include "schedule/entries/ScheduleEntry.h"

namespace kestrune::schedule {

/// The numbers of the entries of which a whole run, start and end, lies after `from` and not after `to`: what is
/// missed when the clock goes from the one moment to the other at once.
[[nodiscard]] std::vector<std::int16_t> MissedRuns(const ScheduleEntries& entries, base::DateValue from,
                                                   base::DateValue to);

}  // namespace kestrune::schedule
