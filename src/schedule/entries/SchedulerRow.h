#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/DateValue.h"
#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::schedule {

inline constexpr int kSchedulerRows = 10;

/// A channel that an entry can record from.
struct SchedulerChannel {
  std::int16_t Number = 0;
  std::string Station;

  bool operator==(const SchedulerChannel&) const = default;
};

/// What one row of the scheduler shows: an entry of the schedule.
struct SchedulerRow {
  bool Enabled = false;
  int Channel = 0;  ///< position in the list of channels, from 0; -1 if that list is empty
  SchedulerMoment Start;
  int DurationHours = 1;    ///< 0 to 47
  int DurationMinutes = 0;  ///< 0 to 59
  SchedulerMoment End;
  bool Integrel = true;
  bool Cleftune = true;
  bool Grab = false;
  bool Kill = false;
  std::string MP3BitRate;  ///< an item of the list of bit rates, or the text that is stored

  [[nodiscard]] std::int64_t DurationInMinutes() const { return DurationHours * 60 + DurationMinutes; }

  bool operator==(const SchedulerRow&) const = default;
};

using SchedulerRows = std::array<SchedulerRow, kSchedulerRows>;

}  // namespace kestrune::schedule
