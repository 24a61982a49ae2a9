#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "cut/Blocks.h"

namespace kestrune::cut {

/// What speaks for and against a new song beginning with a block; Evidence.cpp tells what each number means.
inline constexpr std::size_t kFeatures = 76;
using Features = std::array<float, kFeatures>;

/// The numbers of blocks `from` to `from` + `count` - 1 of a stretch. Sound before and after that, as far as
/// the stretch has it, four seconds at most, is what a block is judged by. Blocks outside the stretch get
/// zeros.
[[nodiscard]] std::vector<Features> MeasureEvidence(std::span<const Block> blocks, std::ptrdiff_t from,
                                                    std::size_t count);

}  // namespace kestrune::cut
