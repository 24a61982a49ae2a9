#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "cutlab/Pieces.h"

namespace kestrune::cutlab {

namespace {

constexpr double kTau = 2 * std::numbers::pi;

/// Adds one note that decays.
void AddNote(Stereo& sound, std::size_t from, double seconds, double pitch, double loudness, double place,
             double brightness) {
  const auto length = std::min(static_cast<std::size_t>(seconds * kRate), sound.Left.size() - from);
  constexpr std::size_t kRise = kRate / 125;
  double share = loudness;
  for (int harmonic = 1; harmonic <= 4; ++harmonic, share *= brightness) {
    // Each sample of a decaying sine follows from the two before it.
    const double angle = kTau * pitch * harmonic / kRate;
    const double decay = std::exp(-2.5 / (seconds * kRate));
    const double first = 2 * decay * std::cos(angle);
    const double second = -decay * decay;
    double now = 0;
    double last = -std::sin(angle) / decay;
    for (std::size_t i = 0; i < length; ++i) {
      const double wave = share * now * (i < kRise ? static_cast<double>(i) / kRise : 1.0);
      sound.Left[from + i] += static_cast<float>(wave * (1 - place));
      sound.Right[from + i] += static_cast<float>(wave * place);
      const double next = first * now + second * last;
      last = now;
      now = next;
    }
  }
}

void AddDrum(Stereo& sound, std::size_t from, double loudness, double decay, receiver::Dice& dice) {
  const auto length = static_cast<std::size_t>(decay * 3 * kRate);
  for (std::size_t i = 0; i < length && from + i < sound.Left.size(); ++i) {
    const double at = static_cast<double>(i) / kRate;
    const auto noise = static_cast<float>((dice.Fraction() - 0.5) * loudness * std::exp(-at / decay));
    sound.Left[from + i] += noise;
    sound.Right[from + i] += noise;
  }
}

/// A style is a tempo, a scale, an instrument and a share of drums.
Stereo Play(receiver::Dice& dice, int seconds) {
  Stereo sound;
  const auto frames = static_cast<std::size_t>(seconds) * kRate;
  sound.Left.assign(frames, 0);
  sound.Right.assign(frames, 0);
  const double beat = 0.3 + 0.4 * dice.Fraction();
  const double root = 110 * std::pow(2.0, dice.Fraction());
  const double brightness = 0.2 + 0.6 * dice.Fraction();
  const double drums = dice.Fraction() < 0.6 ? 0.1 + 0.4 * dice.Fraction() : 0;
  constexpr std::array<int, 7> kScale = {0, 2, 3, 5, 7, 8, 10};
  int degree = 0;
  for (double at = 0; at + beat < seconds; at += beat) {
    const auto from = static_cast<std::size_t>(at * kRate);
    const int count = static_cast<int>(at / beat);
    if (count % 4 == 0) degree = dice.Between(0, 6);
    for (int voice = 0; voice < 3 && count % 2 == 0; ++voice) {
      const int tone = kScale[static_cast<std::size_t>((degree + 2 * voice) % 7)];
      AddNote(sound, from, beat * 3, root * std::pow(2.0, tone / 12.0), 0.12, 0.2 + 0.3 * voice, brightness);
    }
    const int tone = kScale[static_cast<std::size_t>(dice.Between(0, 6))] + 12;
    if (dice.Fraction() < 0.7)
      AddNote(sound, from, beat, root * std::pow(2.0, tone / 12.0), 0.15, 0.4, brightness);
    if (drums > 0)
      AddDrum(sound, from, count % 2 == 0 ? drums : drums * 0.5, count % 2 == 0 ? 0.08 : 0.03, dice);
  }
  return sound;
}

}  // namespace

Piece SyntheticPieces::Music(std::size_t index) {
  receiver::Dice dice(seed_ * 7919 + index);
  Piece piece;
  piece.Head = Play(dice, seconds_);
  piece.Tail = piece.Head;
  return piece;
}

std::vector<float> SyntheticPieces::Voice(receiver::Dice& dice) {
  const auto frames = static_cast<std::size_t>((3 + 4 * dice.Fraction()) * kRate);
  std::vector<float> voice(frames, 0);
  const double pitch = 90 + 130 * dice.Fraction();
  std::size_t at = 0;
  while (at < frames) {
    const auto length = static_cast<std::size_t>((0.08 + 0.15 * dice.Fraction()) * kRate);
    const bool hiss = dice.Fraction() < 0.25;
    const double formant = 400 + 1600 * dice.Fraction();
    for (std::size_t i = 0; i < length && at + i < frames; ++i) {
      const double time = static_cast<double>(i) / kRate;
      const double shape = std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(length));
      const double buzz = std::sin(kTau * pitch * time) * std::sin(kTau * formant * time) +
                          0.5 * std::sin(kTau * pitch * 3 * time);
      voice[at + i] = static_cast<float>(shape * (hiss ? 0.2 * (dice.Fraction() - 0.5) : 0.4 * buzz));
    }
    at += length + (dice.Fraction() < 0.2 ? static_cast<std::size_t>(0.15 * kRate) : 0);
  }
  return voice;
}

}  // namespace kestrune::cutlab
