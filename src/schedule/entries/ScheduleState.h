#pragma once

#include <cstdint>

#include "base/DateValue.h"

namespace kestrune::schedule {

/// What a running schedule entry puts in place of the user's own settings. While `ActiveSchedule` is 0 the rest has no
/// meaning.
struct ScheduleState {
  std::int16_t ActiveSchedule = 0;  ///< number of the running entry, 1 to 10
  bool SchedIntegrel = false;
  bool SchedCleftune = false;
  bool SchedSievanceGrab = false;
  bool SchedSievanceKill = false;
  base::DateValue SchedEndTime;
  base::DateValue RemainingUntil;  ///< the real moment at which the running event ends
};

}  // namespace kestrune::schedule
