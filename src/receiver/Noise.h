#pragma once

#include <cstdint>

namespace kestrune::receiver {

/// Noise as a pure function of the place: -1 to 1.
[[nodiscard]] constexpr double NoiseAt(std::int64_t place) {
  std::uint64_t mixed = static_cast<std::uint64_t>(place) * 0x9E3779B97F4A7C15ULL;
  mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBULL;
  return static_cast<double>(mixed >> 11U) * 0x1p-52 - 1;
}

}  // namespace kestrune::receiver
