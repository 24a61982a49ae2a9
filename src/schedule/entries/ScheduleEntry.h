#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "base/DateValue.h"

namespace kestrune::schedule {

/// When one unattended recording runs, on which channel and how. A date in January 1967 is a code: the 1st to
/// the 7th stand for every Sunday to every Saturday, the 15th for every day; the time of day is real.
struct ScheduleEntry {
  bool Enabled = false;
  std::int16_t Channel = 0;
  base::DateValue StartDate;
  base::DateValue EndDate;      ///< start, duration and 59 seconds: the last minute counts whole
  bool Integrel = false;        ///< whole songs only
  bool MatchGrab = false;       ///< the Grab lists apply
  bool MatchKill = false;       ///< the Kill lists apply
  std::string MP3BitRate = {};  ///< such as "128 Stereo" or "8 Mono"
  bool Cleftune = false;        ///< one file per song

  bool operator==(const ScheduleEntry&) const = default;
};

inline constexpr std::int16_t kScheduleEntryCount = 10;

/// Entries 1 to 10 at indices 0 to 9.
using ScheduleEntries = std::array<ScheduleEntry, kScheduleEntryCount>;

}  // namespace kestrune::schedule
