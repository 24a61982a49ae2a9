#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kestrune::test {

/// How much of the energy of a mono piece of sound lies at one frequency: 1 for a pure tone, about 0 for
/// silence and for everything else.
[[nodiscard]] double ToneShare(std::span<const std::int16_t> mono, int rate, double frequency);

/// The windows of 100 ms of a sound, each by the frequency that fills it; 0 where none does.
[[nodiscard]] std::vector<double> TonesOver(std::span<const std::int16_t> mono, int rate,
                                            std::span<const double> frequencies);

}  // namespace kestrune::test
