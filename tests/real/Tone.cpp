#include "real/Tone.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kestrune::test {

double ToneShare(std::span<const std::int16_t> mono, int rate, double frequency) {
  // Goertzel's recurrence: one term of the Fourier transform.
  const double coefficient = 2 * std::cos(2 * std::numbers::pi * frequency / rate);
  double last = 0;
  double before = 0;
  double energy = 0;
  for (const std::int16_t sample : mono) {
    const double next = sample + coefficient * last - before;
    before = last;
    last = next;
    energy += static_cast<double>(sample) * sample;
  }
  const auto count = static_cast<double>(mono.size());
  // A few steps of the quantiser are silence, whatever their spectrum.
  if (energy < 100 * count) return 0;
  const double power = last * last + before * before - coefficient * last * before;
  return 2 * power / (count * energy);
}

std::vector<double> TonesOver(std::span<const std::int16_t> mono, int rate,
                              std::span<const double> frequencies) {
  constexpr double kFills = 0.7;
  const auto window = static_cast<std::size_t>(rate / 10);
  std::vector<double> tones;
  for (; mono.size() >= window; mono = mono.subspan(window)) {
    double found = 0;
    for (const double frequency : frequencies) {
      if (ToneShare(mono.first(window), rate, frequency) > kFills) found = frequency;
    }
    tones.push_back(found);
  }
  return tones;
}

}  // namespace kestrune::test
