#include "receiver/BandPlayer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "receiver/Dice.h"
#include "receiver/Noise.h"
#include "receiver/Vowel.h"

namespace kestrune::receiver {
namespace {

constexpr std::array<int, 7> kMajor = {0, 2, 4, 5, 7, 9, 11};
constexpr std::array<int, 7> kMinor = {0, 2, 3, 5, 7, 8, 10};
constexpr int kHarmonics = 8;
constexpr std::int64_t kStepsANote = 3;
// A chord rings on so long into the next bar.
constexpr double kRing = 0.25;
constexpr double kSungPitch = 260;  // Hz, of the middle of a singer's voice
constexpr std::size_t kChords = 0;
constexpr std::size_t kMelody = 1;
constexpr std::size_t kBass = 2;

double Decibels(double value) {
  return std::pow(10.0, value / 20);
}

WaveTable MakeInstrument(double brightness) {
  std::array<double, kHarmonics> harmonics{};
  double amplitude = 1;
  for (double& harmonic : harmonics) {
    harmonic = amplitude;
    amplitude *= brightness;
  }
  return WaveTable(harmonics);
}

double Pitch(double root, const std::array<int, 7>& scale, int degree) {
  const int octave = degree / 7;
  return root * std::exp2(octave + scale[static_cast<std::size_t>(degree % 7)] / 12.0);
}

/// Rises within the attack and falls to nothing at the end of the note.
double Envelope(double seconds, double attack, double length) {
  const double left = std::max(0.0, 1 - seconds / length);
  return std::min(1.0, seconds / attack) * left * left;
}

}  // namespace

BandPlayer::BandPlayer(std::uint64_t seed, int sampleRate) : sampleRate_(sampleRate) {
  Compose(seed);
}

void BandPlayer::Compose(std::uint64_t seed) {
  Dice dice(seed);
  stepSeconds_ = 0.16 + 0.2 * dice.Fraction();
  loudness_ = Decibels(1 + 6 * dice.Fraction());
  melodyPan_ = 0.3 + 0.4 * dice.Fraction();
  attackSeconds_ = 0.003 + 0.03 * dice.Fraction();
  sings_ = dice.Fraction() < 0.5;
  if (dice.Fraction() < 0.7) drums_ = 0.1 + 0.15 * dice.Fraction();
  // Some bands let the drums come later.
  if (dice.Fraction() < 0.3) drumsFrom_ = static_cast<std::int64_t>(kStepsABar) * dice.Between(1, 3);
  for (int i = 0; i < 3; ++i) instruments_.push_back(MakeInstrument(0.15 + 0.6 * dice.Fraction()));
  for (int vowel = 0; vowel < kVowels; ++vowel) vowels_.push_back(MakeVowel(vowel, kSungPitch));

  const double root = 110 * std::exp2(dice.Fraction());
  const auto& scale = dice.Between(0, 1) == 0 ? kMajor : kMinor;
  for (std::size_t i = 0; i < kBars; ++i) {
    Bar& bar = bars_[i];
    const int degree = i == 0 ? 0 : dice.Between(0, 6);
    for (std::size_t note = 0; note < kChordNotes; ++note) {
      bar.Chord[note] = Pitch(root, scale, degree + 2 * static_cast<int>(note));
    }
    bar.Bass = Pitch(root, scale, degree) / 2;
    for (std::size_t step = 0; step < kStepsABar; ++step) {
      const int tone = dice.Between(7, 14);
      const bool sounds = step == 0 || dice.Fraction() < 0.55;
      const auto vowel = static_cast<std::size_t>(dice.Between(0, kVowels - 1));
      if (sounds) bar.Melody[step] = {Pitch(root, scale, tone), vowel};
    }
  }
}

void BandPlayer::AddMelody(const Note& note, double seconds, double& left, double& right,
                           double& middle) const {
  if (note.Frequency == 0) return;
  const double length = kStepsANote * stepSeconds_;
  if (sings_) {
    // A singer sings an octave lower, in the middle.
    middle += 0.09 * Envelope(seconds, 0.03, length) * vowels_[note.Vowel].At(note.Frequency / 2 * seconds);
    return;
  }
  const double wave =
      0.09 * Envelope(seconds, attackSeconds_, length) * instruments_[kMelody].At(note.Frequency * seconds);
  left += wave * (1 - melodyPan_);
  right += wave * melodyPan_;
}

double BandPlayer::Drums(std::int64_t step, double seconds, std::int64_t position) const {
  if (drums_ == 0 || step < drumsFrom_) return 0;
  const std::int64_t beat = step % 8;
  double value = 0.25 * NoiseAt(position) * std::exp(-seconds / 0.02);
  if (beat == 0 || beat == 4) {
    const double turns = 50 * seconds + 2.5 * (1 - std::exp(-seconds / 0.03));
    value += 1.2 * std::exp(-seconds / 0.09) * std::sin(2 * std::numbers::pi * turns);
  }
  if (beat == 2 || beat == 6) value += 0.7 * NoiseAt(position + 1) * std::exp(-seconds / 0.06);
  return drums_ * value;
}

void BandPlayer::Render(std::int64_t position, std::span<double> interleaved) const {
  const double barSeconds = stepSeconds_ * kStepsABar;
  for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2, ++position) {
    const double time = static_cast<double>(position) / sampleRate_;
    const auto step = static_cast<std::int64_t>(time / stepSeconds_);
    const std::int64_t barNumber = step / static_cast<std::int64_t>(kStepsABar);
    double left = 0;
    double right = 0;
    double middle = 0;
    for (std::int64_t back = 0; back < kStepsANote && back <= step; ++back) {
      const auto at = static_cast<std::size_t>(step - back);
      AddMelody(bars_[at / kStepsABar % kBars].Melody[at % kStepsABar],
                time - static_cast<double>(at) * stepSeconds_, left, right, middle);
    }
    for (std::int64_t back = 0; back < 2 && back <= barNumber; ++back) {
      const Bar& bar = bars_[static_cast<std::size_t>(barNumber - back) % kBars];
      const double seconds = time - static_cast<double>(barNumber - back) * barSeconds;
      const double swell = Envelope(seconds, attackSeconds_, barSeconds * (1 + kRing));
      if (swell == 0) continue;
      for (std::size_t note = 0; note < kChordNotes; ++note) {
        const double wave = 0.06 * swell * instruments_[kChords].At(bar.Chord[note] * seconds);
        const double pan = 0.15 + 0.35 * static_cast<double>(note);
        left += wave * (1 - pan);
        right += wave * pan;
      }
      middle += 0.06 * swell * instruments_[kBass].At(bar.Bass * seconds);
    }
    middle += Drums(step, time - static_cast<double>(step) * stepSeconds_, position);
    interleaved[i] = loudness_ * (left + middle);
    interleaved[i + 1] = loudness_ * (right + middle);
  }
}

}  // namespace kestrune::receiver
