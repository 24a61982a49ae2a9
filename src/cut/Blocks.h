#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "cut/Sound.h"

namespace kestrune::cut {

inline constexpr std::size_t kBands = 24;

/// What 20 ms of sound contain, after all below 100 Hz is taken away. Levels are in decibels against full
/// scale, -90 at the lowest.
struct Block {
  float Level = -90;  ///< middle and side together
  float Middle = -90;
  float Side = -90;
  std::array<float, kBands> MiddleBands{};  ///< log bands from 100 Hz to 14 kHz
  std::array<float, kBands> SideBands{};
};

inline constexpr float kSilence = -90;

/// The blocks of a stretch of sound, of Rate / 50 frames each; a part block at the end is left out.
[[nodiscard]] std::vector<Block> MeasureBlocks(const Sound& sound);

}  // namespace kestrune::cut
