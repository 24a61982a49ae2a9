#include "receiver/Vowel.h"

#include <vector>

namespace kestrune::receiver {
namespace {

constexpr std::size_t kFormants = 3;
/// In Hz, of A, E, I, O, U.
constexpr std::array<std::array<double, kFormants>, kVowels> kFrequencies = {
    {{730, 1090, 2440}, {530, 1840, 2480}, {270, 2290, 3010}, {570, 840, 2410}, {300, 870, 2240}}};
constexpr std::array<double, kFormants> kLoudness = {1, 0.5, 0.25};
constexpr double kWidth = 90;  // Hz
constexpr double kHighest = 4000;

}  // namespace

WaveTable MakeVowel(int vowel, double pitch) {
  const auto& formants = kFrequencies.at(static_cast<std::size_t>(vowel));
  std::vector<double> harmonics;
  for (double frequency = pitch; frequency < kHighest; frequency += pitch) {
    double amplitude = 0.02;
    for (std::size_t i = 0; i < kFormants; ++i) {
      const double away = (frequency - formants[i]) / kWidth;
      amplitude += kLoudness[i] / (1 + away * away);
    }
    harmonics.push_back(amplitude);
  }
  return WaveTable(harmonics);
}

}  // namespace kestrune::receiver
