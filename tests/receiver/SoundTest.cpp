#include <cmath>
#include <cstdlib>
#include <numbers>
#include <set>

#include <gtest/gtest.h>

#include "receiver/Dice.h"
#include "receiver/JoinShape.h"
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
  for (const SignalKind kind :
       {SignalKind::Tunes, SignalKind::Tones, SignalKind::Counter, SignalKind::Music}) {
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
  for (const SignalKind kind : {SignalKind::Tunes, SignalKind::Tones, SignalKind::Music}) {
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

/// Songs of 20 s, each with its own join.
LineUp JoinedSongs(receiver::JoinKind join) {
  LineUp lineUp{{{8, "Eight", "", {}, {}}}};
  for (int i = 0; i < 10; ++i)
    lineUp.Stations[0].Songs.push_back({"Band", "Song " + std::to_string(i), milliseconds(20000), join});
  return lineUp;
}

double Loudness(const Samples& samples) {
  double power = 0;
  for (const std::int16_t sample : samples) power += static_cast<double>(sample) * sample;
  return std::sqrt(power / static_cast<double>(samples.size())) / 32768;
}

/// The loudness of 0.2 s from a moment on, counted from the start of the second song, in seconds.
double LoudnessAt(receiver::JoinKind join, double seconds) {
  const LineUp lineUp = JoinedSongs(join);
  StationSound sound(lineUp, SignalKind::Music, kRate);
  return Loudness(Render(sound, 8, std::llround((20 + seconds) * kRate), kRate / 5));
}

TEST(Music, IsAsLoudAsMusicAndNeverReachesFullScale) {
  const LineUp lineUp = JoinedSongs(receiver::JoinKind::Hard);
  StationSound sound(lineUp, SignalKind::Music, kRate);
  for (int song = 0; song < 10; ++song) {
    const Samples samples = Render(sound, 8, std::int64_t{kRate} * (20 * song + 8), std::size_t{kRate} * 4);
    EXPECT_GT(Loudness(samples), 0.04) << song;
    EXPECT_LT(Loudness(samples), 0.3) << song;
    for (const std::int16_t sample : samples) ASSERT_LT(std::abs(static_cast<int>(sample)), 32500) << song;
  }
}

TEST(Music, TheLowestBitsNumberTheFrames) {
  const LineUp lineUp = JoinedSongs(receiver::JoinKind::Hard);
  StationSound sound(lineUp, SignalKind::Music, kRate);
  // Group 31250, 0111 1010 0001 0010 in binary, and two frames of the next one.
  const Samples samples = Render(sound, 8, 1000000, 34);
  std::string left;
  std::string right;
  for (std::size_t i = 0; i < samples.size(); i += 2) {
    left += (samples[i] & 1) != 0 ? '1' : '0';
    right += (samples[i + 1] & 1) != 0 ? '1' : '0';
  }
  EXPECT_EQ(left, "0100100001011110000000000000000011");
  EXPECT_EQ(right, "1000000000000000000000000000000010");
}

TEST(Music, EachJoinSoundsAsItIsCalled) {
  using receiver::JoinKind;
  for (const JoinKind join : {JoinKind::Silence, JoinKind::NaturalEnd, JoinKind::Hard, JoinKind::Segue}) {
    EXPECT_GT(LoudnessAt(join, 0), 0.03) << receiver::NameOf(join) << ": the next song begins at once";
    EXPECT_GT(LoudnessAt(join, -8), 0.03) << receiver::NameOf(join);
  }
  EXPECT_LT(LoudnessAt(JoinKind::Silence, -0.2), 0.001);
  EXPECT_LT(LoudnessAt(JoinKind::NaturalEnd, -0.2), 0.01);
  EXPECT_GT(LoudnessAt(JoinKind::Hard, -0.2), 0.03);
  EXPECT_GT(LoudnessAt(JoinKind::Segue, -0.2), 0.01);
}

TEST(Music, ASegueGoesOnUnderTheNextSongAndAnAnnouncerTalksOverBoth) {
  const auto difference = [](receiver::JoinKind join, double seconds) {
    const LineUp lineUp = JoinedSongs(join);
    const LineUp hard = JoinedSongs(receiver::JoinKind::Hard);
    StationSound sound(lineUp, SignalKind::Music, kRate);
    StationSound plain(hard, SignalKind::Music, kRate);
    const std::int64_t from = std::llround((20 + seconds) * kRate);
    Samples samples = Render(sound, 8, from, kRate / 2);
    const Samples other = Render(plain, 8, from, kRate / 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
      samples[i] = static_cast<std::int16_t>(samples[i] - other[i]);
    return Loudness(samples);
  };
  EXPECT_GT(difference(receiver::JoinKind::Segue, 0), 0.01);
  EXPECT_EQ(difference(receiver::JoinKind::Segue, 7), 0) << "no segue is longer than six seconds";
  EXPECT_GT(difference(receiver::JoinKind::Talk, -0.5), 0.01);
  EXPECT_GT(difference(receiver::JoinKind::Talk, 0), 0.01);
  EXPECT_EQ(difference(receiver::JoinKind::Talk, 7), 0);
}

TEST(JoinShape, NothingIsHeardWhereItIsSaidToBeQuiet) {
  for (const auto join : {receiver::JoinKind::Silence, receiver::JoinKind::NaturalEnd}) {
    const LineUp lineUp = JoinedSongs(join);
    StationSound sound(lineUp, SignalKind::Music, kRate);
    for (int song = 1; song < 10; ++song) {
      const double quiet =
          receiver::ShapeOf(lineUp.Stations[0].Songs[static_cast<std::size_t>(song - 1)]).QuietBefore();
      const auto frames = static_cast<std::size_t>(quiet * kRate);
      const std::int64_t start = std::int64_t{kRate} * 20 * song;
      EXPECT_LT(Loudness(Render(sound, 8, start - static_cast<std::int64_t>(frames), frames)), 0.0015)
          << song;
    }
  }
}

TEST(JoinShape, NoPartIsLongerThanAThirdOfTheSong) {
  for (int i = 0; i < 50; ++i) {
    const receiver::JoinShape shape = receiver::ShapeOf(
        {"Band", "Song " + std::to_string(i), milliseconds(1500), static_cast<receiver::JoinKind>(i % 5)});
    for (const double part :
         {shape.Fade, shape.Silence, shape.Overlap, shape.FadeIn, shape.TalkBefore, shape.TalkAfter}) {
      EXPECT_GE(part, 0);
      EXPECT_LE(part, 0.5);
    }
  }
}

}  // namespace
}  // namespace kestrune::test
