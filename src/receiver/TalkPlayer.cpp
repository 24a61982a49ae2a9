#include "receiver/TalkPlayer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "receiver/Dice.h"
#include "receiver/Noise.h"
#include "receiver/Vowel.h"

namespace kestrune::receiver {
namespace {

constexpr double kVoiceGain = 0.2;
constexpr double kHissGain = 0.1;

}  // namespace

TalkPlayer::TalkPlayer(std::uint64_t seed, double seconds, int sampleRate) : sampleRate_(sampleRate) {
  Dice dice(seed);
  const double pitch = 90 + 130 * dice.Fraction();
  for (int vowel = 0; vowel < kVowels; ++vowel) vowels_.push_back(MakeVowel(vowel, pitch));
  double at = 0;
  while (at < seconds) {
    Syllable syllable{.Start = at, .Length = std::min(0.08 + 0.15 * dice.Fraction(), seconds - at)};
    if (dice.Fraction() >= 0.25) syllable.Pitch = pitch * (0.85 + 0.3 * dice.Fraction());
    syllable.Vowel = static_cast<std::size_t>(dice.Between(0, kVowels - 1));
    syllables_.push_back(syllable);
    at += syllable.Length + (dice.Fraction() < 0.2 ? 0.15 : 0);
  }
}

double TalkPlayer::At(std::int64_t frame) const {
  const double time = static_cast<double>(frame) / sampleRate_;
  const auto after =
      std::upper_bound(syllables_.begin(), syllables_.end(), time,
                       [](double moment, const Syllable& syllable) { return moment < syllable.Start; });
  if (after == syllables_.begin()) return 0;
  const Syllable& syllable = *std::prev(after);
  const double into = time - syllable.Start;
  if (into >= syllable.Length) return 0;
  const double swell = std::sin(std::numbers::pi * into / syllable.Length);
  if (syllable.Pitch == 0) return kHissGain * swell * NoiseAt(frame);
  return kVoiceGain * swell * vowels_[syllable.Vowel].At(syllable.Pitch * into);
}

}  // namespace kestrune::receiver
