#include "receiver/WaveTable.h"

#include <numbers>

namespace kestrune::receiver {

WaveTable::WaveTable(std::span<const double> harmonics) {
  double power = 0;
  for (const double amplitude : harmonics) power += amplitude * amplitude / 2;
  for (std::size_t i = 0; i <= kSize; ++i) {
    const double turn = 2 * std::numbers::pi * static_cast<double>(i) / kSize;
    double sum = 0;
    for (std::size_t k = 0; k < harmonics.size(); ++k) {
      sum += harmonics[k] * std::sin(turn * static_cast<double>(k + 1));
    }
    samples_[i] = sum / std::sqrt(power);
  }
}

}  // namespace kestrune::receiver
