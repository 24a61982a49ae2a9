#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "control/Reports.h"
#include "presenters/Scheduler.h"
#include "schedule/entries/ScheduleEntry.h"
#include "schedule/entries/ScheduleState.h"

namespace kestrune::control {

/// The entries as the schedule has them; `station` gives a channel's name, empty if it is not known.
[[nodiscard]] std::vector<ScheduleReport> ReportSchedule(
    const schedule::ScheduleEntries& entries, const schedule::ScheduleState& state, base::DateValue now,
    const std::function<std::string(std::int16_t channel)>& station);

/// The commands that change an entry, each on a scheduler that was opened for it: through the same rules as a
/// person at the scheduler's window, but only the one entry is written. The text is why it is refused.
[[nodiscard]] std::optional<std::string> SetEntry(presenters::Scheduler& scheduler,
                                                  const ScheduleChange& change, base::DateValue now);
[[nodiscard]] std::optional<std::string> EnableEntry(presenters::Scheduler& scheduler, int number,
                                                     bool enabled, base::DateValue now);
[[nodiscard]] std::optional<std::string> ClearEntry(presenters::Scheduler& scheduler, int number);

}  // namespace kestrune::control
