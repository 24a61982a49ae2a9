#pragma once

#include <cstdint>

namespace kestrune::recorder {

/// A scheduled event that has ended.
struct EndedEvent {
  std::int64_t Number = 0;  ///< counts those of this run, from 1; 0: none has ended yet
  std::int16_t Event = 0;   ///< its entry, 1 to 10
  std::int16_t Songs = 0;   ///< so many were recorded
};

}  // namespace kestrune::recorder
