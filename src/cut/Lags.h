#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrune::cut {

/// A lag is the true start of a song minus the stamp of its text: positive if the text is early. Lags are
/// judged in steps of a block, from kLowestLag to kHighestLag milliseconds, both included.
inline constexpr int kBlockMs = 20;
inline constexpr int kLowestLag = -4000;
inline constexpr int kHighestLag = 5000;
inline constexpr std::size_t kLags = (kHighestLag - kLowestLag) / kBlockMs + 1;

/// One number for each lag.
using LagRow = std::array<float, kLags>;

[[nodiscard]] constexpr int LagAt(std::size_t index) {
  return kLowestLag + static_cast<int>(index) * kBlockMs;
}

}  // namespace kestrune::cut
