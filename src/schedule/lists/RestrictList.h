#pragma once

#include <cstdint>

namespace kestrune::schedule {

/// The four lists, by the digit that stands for each in the list file.
enum class RestrictList : std::uint8_t { GrabArtists = 0, GrabSongs = 1, KillArtists = 2, KillSongs = 3 };

}  // namespace kestrune::schedule
