#pragma once

#include <array>
#include <cstddef>

#include "cut/Evidence.h"

namespace kestrune::cut {

/// The size of the one layer between the numbers and their sum.
inline constexpr std::size_t kHidden = 16;

/// How features become one number: a weight each, and a small layer for what only counts together.
struct EvidenceWeights {
  std::array<float, kFeatures> Linear{};
  std::array<std::array<float, kFeatures>, kHidden> Layer{};
  std::array<float, kHidden> Bias{};
  std::array<float, kHidden> Out{};
};

/// The weights that the program uses; FittedWeights.cpp tells where they come from.
[[nodiscard]] const EvidenceWeights& FittedWeights();

/// The logarithm of how much likelier the features are if a song begins here, up to a common constant.
[[nodiscard]] float Score(const EvidenceWeights& weights, const Features& features);

}  // namespace kestrune::cut
