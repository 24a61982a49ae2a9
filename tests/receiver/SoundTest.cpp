#include <cmath>
#include <cstdlib>
#include <numbers>
#include <set>

#include <gtest/gtest.h>

#include "receiver/Dice.h"
#include "receiver/StationSound.h"
#include "receiver/TunePlayer.h"

namespace kestrune::test {
namespace {

using receiver::LineUp;
using receiver::SignalKind;
using receiver::StationSound;
using receiver::TunePlayer;
using std::chrono::milliseconds;

constexpr int kRate = 44100;
using Samples = std::vector<std::int16_t>;

LineUp TwoSongs() {
  return {{{8, "Eight", "", {{"A", "a", milliseconds(1001)}, {"B", "b", milliseconds(500)}}, {}},
           {9, "Nine", "", {}, {}}}};
}

Samples Render(StationSound& sound, int channel, std::int64_t first, std::size_t frames) {
  Samples samples(frames * 2);
  sound.Render(channel, first, samples);
  return samples;
}

/// How much of a frequency is in the left channel: the amplitude of that sine.
double AmplitudeAt(const Samples& samples, double frequency) {
  double real = 0;
  double imaginary = 0;
  const std::size_t frames = samples.size() / 2;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const double turn = 2 * std::numbers::pi * frequency * static_cast<double>(frame) / kRate;
    real += samples[2 * frame] * std::cos(turn);
    imaginary += samples[2 * frame] * std::sin(turn);
  }
  return 2 * std::hypot(real, imaginary) / static_cast<double>(frames);
}

TEST(Tones, EachSongHasItsOwnFrequency) {
  const LineUp lineUp = TwoSongs();
  StationSound sound(lineUp, SignalKind::Tones, kRate);
  const Samples first = Render(sound, 8, 0, 4410);
  EXPECT_NEAR(AmplitudeAt(first, receiver::ToneFrequency(0)), 16384, 200);
  EXPECT_LT(AmplitudeAt(first, receiver::ToneFrequency(1)), 1500);
  const Samples second = Render(sound, 8, sound.FramesUntil(milliseconds(1001)), 4410);
  EXPECT_NEAR(AmplitudeAt(second, receiver::ToneFrequency(1)), 16384, 200);
}

TEST(Tones, FourHundredSongsHaveFourHundredFrequenciesBelowHalfTheRate) {
  std::set<double> frequencies;
  for (int ordinal = 0; ordinal < 400; ++ordinal) {
    const double frequency = receiver::ToneFrequency(ordinal);
    EXPECT_TRUE(frequencies.insert(frequency).second);
    EXPECT_GE(frequency, 200);
    EXPECT_LE(frequency, 8180);
    EXPECT_GE(std::abs(frequency - receiver::ToneFrequency(ordinal + 1)), 140);
  }
}

TEST(Counter, NumbersEveryFrame) {
  const LineUp lineUp = TwoSongs();
  StationSound sound(lineUp, SignalKind::Counter, kRate);
  const Samples samples = Render(sound, 8, 65534, 4);
  EXPECT_EQ(samples, (Samples{-2, 0, -1, 0, 0, 1, 1, 1}));
}

TEST(Counter, CountsOnWhereThereAreNoSongsButNotWhereThereIsNoStation) {
  const LineUp lineUp = TwoSongs();
  StationSound sound(lineUp, SignalKind::Counter, kRate);
  EXPECT_EQ(Render(sound, 9, 5, 1), (Samples{5, 0}));
  EXPECT_EQ(Render(sound, 0, 5, 1), (Samples{0, 0}));
}

TEST(StationSound, ASongBeginsWithTheFirstFrameThatIsNotBeforeItsMoment) {
  const LineUp lineUp = TwoSongs();
  const StationSound sound(lineUp, SignalKind::Tones, kRate);
  // 1.001 s at 44100 Hz is frame 44144.1.
  EXPECT_EQ(sound.FramesUntil(milliseconds(1001)), 44145);
  EXPECT_EQ(sound.PlaceAt(8, 44144).Ordinal, 0);
  EXPECT_EQ(sound.PlaceAt(8, 44144).EndFrame, 44145);
  EXPECT_EQ(sound.PlaceAt(8, 44145).Ordinal, 1);
  EXPECT_EQ(sound.PlaceAt(8, 44145).StartFrame, 44145);
}

TEST(StationSound, PiecesAreTheSameAsTheWhole) {
  const LineUp lineUp = TwoSongs();
  for (const SignalKind kind : {SignalKind::Tunes, SignalKind::Tones, SignalKind::Counter}) {
    StationSound sound(lineUp, kind, kRate);
    const Samples whole = Render(sound, 8, 0, 80000);
    StationSound again(lineUp, kind, kRate);
    Samples pieces;
    for (std::size_t at = 0; at < 80000; at += 777) {
      const Samples piece =
          Render(again, 8, static_cast<std::int64_t>(at), std::min<std::size_t>(777, 80000 - at));
      pieces.insert(pieces.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(whole, pieces);
  }
}

TEST(StationSound, AStationWithoutSongsAndNoStationAreSilent) {
  const LineUp lineUp = TwoSongs();
  for (const SignalKind kind : {SignalKind::Tunes, SignalKind::Tones}) {
    StationSound sound(lineUp, kind, kRate);
    EXPECT_EQ(Render(sound, 9, 100, 50), Samples(100, 0));
    EXPECT_EQ(Render(sound, 0, 100, 50), Samples(100, 0));
  }
}

TEST(Tunes, EachSongOfTheBuiltInLineUpSoundsDifferent) {
  std::set<Samples> seen;
  for (const auto& station : receiver::BuiltInLineUp().Stations) {
    for (const auto& song : station.Songs) {
      Samples samples(4000);
      TunePlayer(receiver::HashOf(song.Artist + '\n' + song.Title), kRate).Render(kRate / 2, samples);
      EXPECT_TRUE(seen.insert(samples).second) << song.Title;
    }
  }
}

TEST(Tunes, AreLoudEnoughAndNeverReachFullScale) {
  for (std::uint64_t seed = 0; seed < 25; ++seed) {
    Samples samples(std::size_t{2} * kRate * 4);
    TunePlayer(seed, kRate).Render(0, samples);
    int peak = 0;
    for (const std::int16_t sample : samples) peak = std::max(peak, std::abs(static_cast<int>(sample)));
    EXPECT_GT(peak, 4000) << "seed " << seed;
    EXPECT_LT(peak, 32000) << "seed " << seed;
  }
}

TEST(Tunes, HaveNoClicks) {
  // A step between neighbouring samples beyond what the highest note's slope can make is a click.
  Samples samples(std::size_t{2} * kRate * 10);
  TunePlayer(11, kRate).Render(0, samples);
  int steepest = 0;
  for (std::size_t i = 2; i < samples.size(); ++i) {
    steepest = std::max(steepest, std::abs(samples[i] - samples[i - 2]));
  }
  EXPECT_LT(steepest, 4000);
}

TEST(Tunes, AreStereo) {
  Samples samples(std::size_t{2} * kRate);
  TunePlayer(3, kRate).Render(kRate, samples);
  std::size_t different = 0;
  for (std::size_t i = 0; i < samples.size(); i += 2) different += samples[i] != samples[i + 1] ? 1U : 0U;
  EXPECT_GT(different, samples.size() / 4);
}

TEST(Tunes, ASongStartsAndEndsInQuiet) {
  const LineUp lineUp = TwoSongs();
  StationSound sound(lineUp, SignalKind::Tunes, kRate);
  const std::int64_t end = sound.FramesUntil(milliseconds(1001));
  for (const std::int16_t sample : Render(sound, 8, end - 20, 40)) EXPECT_LT(std::abs(sample), 200);
}

}  // namespace
}  // namespace kestrune::test
