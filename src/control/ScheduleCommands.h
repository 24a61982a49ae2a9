#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "control/Reports.h"
#include "schedule/entries/ScheduleEntry.h"
#include "schedule/entries/ScheduleState.h"
#include "schedule/entries/SchedulerSettings.h"

namespace kestrune::control {

/// What a report on the entries needs besides them.
struct ScheduleSources {
  base::DateValue Now;
  /// A channel's station, empty if it is not known.
  std::function<std::string(std::int16_t channel)> Station;
  /// Whether entry `number`, 1 to 10, was ever set.
  std::function<bool(int number)> IsSet;
  /// The seconds that will pass until the clock shows a moment.
  std::function<std::int64_t(base::DateValue wall)> SecondsUntil;
};

/// The ten entries of the table, in their order.
[[nodiscard]] std::vector<ScheduleReport> ReportSchedule(const schedule::ScheduleEntries& entries,
                                                         const schedule::ScheduleState& state,
                                                         const ScheduleSources& sources);

/// What the commands on entries work on.
struct StoredSchedule {
  schedule::SchedulerSettings Settings;
  std::vector<schedule::SchedulerChannel> Channels;  ///< that an entry can be set to
  base::DateValue Now;
};

// The commands that change an entry. Each writes one stored entry, and of an entry that was set before only what was
// asked for. An entry that is enabled or moved must not conflict with another enabled one; pairs of other entries
// are not looked at. Each returns why it was refused, or nothing.

/// Sets what is given and enables the entry. An entry that was never set needs a start, a duration and a channel.
[[nodiscard]] std::optional<std::string> SetEntry(const StoredSchedule& stored, const ScheduleChange& change);
[[nodiscard]] std::optional<std::string> EnableEntry(const StoredSchedule& stored, int number);
[[nodiscard]] std::optional<std::string> DisableEntry(const StoredSchedule& stored, int number);
/// As the Clear button of the scheduler does: disabled, today at midnight for an hour, the bit rate kept.
[[nodiscard]] std::optional<std::string> ClearEntry(const StoredSchedule& stored, int number);

}  // namespace kestrune::control
