#pragma once

#include <chrono>
#include <cstddef>

#include "receiver/LineUp.h"

namespace kestrune::receiver {

struct Playing {
  const Song* What = nullptr;  ///< null on a station without songs
  std::size_t Index = 0;       ///< of the song in the station's list
  std::chrono::milliseconds Start{0};
  std::chrono::milliseconds End{0};
};

/// What a station plays at a moment. Times count from the receiver's start; a song may have begun before it.
[[nodiscard]] Playing PlayingAt(const Station& station, std::chrono::milliseconds time);

/// The song whose text a station shows at a moment: it runs ahead of the sound by the song's own lead, or by `lead`.
[[nodiscard]] Playing TextAt(const Station& station, std::chrono::milliseconds time,
                             std::chrono::milliseconds lead);

}  // namespace kestrune::receiver
