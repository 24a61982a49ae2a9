#include "receiver/TunePlayer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "receiver/Dice.h"

namespace kestrune::receiver {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr int kDegrees = 5;
constexpr std::array<int, kDegrees> kMajor = {0, 2, 4, 7, 9};
constexpr std::array<int, kDegrees> kMinor = {0, 3, 5, 7, 10};
// A note rings on while the next ones begin.
constexpr int kStepsANote = 4;
constexpr double kAttackSeconds = 0.012;
constexpr double kDecaySeconds = 0.35;
// The sum of all voices at their loudest stays below full scale: 4 * 0.14 * 1.4 + 0.14 = 0.92.
constexpr double kMelodyGain = 0.14;
constexpr double kBassGain = 0.14;

double FrequencyOf(int semitonesAboveA2) {
  return 110.0 * std::exp2(semitonesAboveA2 / 12.0);
}

int SemitonesOf(const std::array<int, kDegrees>& scale, int degree) {
  return degree / kDegrees * 12 + scale[static_cast<std::size_t>(degree % kDegrees)];
}

}  // namespace

TunePlayer::TunePlayer(std::uint64_t seed, int sampleRate) : sampleRate_(sampleRate) {
  Dice dice(seed);
  stepSeconds_ = 60.0 / dice.Between(84, 132) / 2;
  const int root = dice.Between(0, 11);
  const auto& scale = dice.Between(0, 1) == 0 ? kMajor : kMinor;
  // Two phrases of sixteen steps, in the order A A B A.
  std::array<Note, kSteps> phrases;
  int degree = kDegrees + dice.Between(0, kDegrees - 1);
  for (std::size_t step = 0; step < 32; ++step) {
    degree = std::clamp(degree + dice.Between(-2, 2), kDegrees, 3 * kDegrees - 1);
    const double pan = 0.5 + 0.4 * (dice.Fraction() - 0.5) * 2;
    // The beats always sound, the steps between them often.
    const bool sounds = step % 4 == 0 || dice.Fraction() < 0.6;
    if (sounds)
      phrases[step] = {FrequencyOf(root + SemitonesOf(scale, degree)), 1 - pan * 0.6, 0.4 + pan * 0.6};
  }
  constexpr std::array<std::size_t, 4> kOrder = {0, 0, 1, 0};
  for (std::size_t step = 0; step < kSteps; ++step) {
    melody_[step] = phrases[kOrder[step / 16] * 16 + step % 16];
  }
  for (double& frequency : bass_) frequency = FrequencyOf(root + SemitonesOf(scale, dice.Between(0, 4)) - 12);
}

double TunePlayer::Voice(const Note& note, double seconds) const {
  const double length = kStepsANote * stepSeconds_;
  const double attack = std::min(1.0, seconds / kAttackSeconds);
  const double release = 1 - seconds / length;
  const double turn = kTurn * note.Frequency * seconds;
  const double wave = std::sin(turn) + 0.3 * std::sin(2 * turn) + 0.1 * std::sin(3 * turn);
  return kMelodyGain * wave * attack * release * std::exp(-seconds / kDecaySeconds);
}

void TunePlayer::Render(std::int64_t position, std::span<std::int16_t> interleaved) const {
  for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2, ++position) {
    const double time = static_cast<double>(position) / sampleRate_;
    const auto step = static_cast<std::int64_t>(time / stepSeconds_);
    double left = 0;
    double right = 0;
    for (std::int64_t back = 0; back < kStepsANote && back <= step; ++back) {
      const Note& note = melody_[static_cast<std::size_t>(step - back) % kSteps];
      if (note.Frequency == 0) continue;
      const double value = Voice(note, time - static_cast<double>(step - back) * stepSeconds_);
      left += value * note.Left;
      right += value * note.Right;
    }
    const std::int64_t bar = step / 8;
    const double bassStart = static_cast<double>(bar) * 8 * stepSeconds_;
    const double sinceBass = time - bassStart;
    const double swell = std::min(1.0, sinceBass / 0.03) * (1 - sinceBass / (8 * stepSeconds_));
    const double bass =
        kBassGain * swell * std::sin(kTurn * bass_[static_cast<std::size_t>(bar) % bass_.size()] * sinceBass);
    interleaved[i] = static_cast<std::int16_t>(std::lround((left + bass) * 32767));
    interleaved[i + 1] = static_cast<std::int16_t>(std::lround((right + bass) * 32767));
  }
}

}  // namespace kestrune::receiver
