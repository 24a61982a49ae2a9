#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "cut/Cut.h"
#include "cutlab/Judge.h"
#include "cutlab/Pieces.h"
#include "cutlab/Station.h"

namespace kestrune::cut {
namespace {

using cutlab::kRate;
constexpr std::int64_t kSecond = kRate;

/// Twenty seconds of one song, a second of silence, twenty of another.
std::vector<std::int16_t> TwoSongs() {
  cutlab::SyntheticPieces pieces(5, 2, 20);
  std::vector<std::int16_t> samples;
  for (std::size_t song = 0; song < 2; ++song) {
    const auto piece = pieces.Music(song);
    if (song == 1) samples.resize(samples.size() + 2 * kRate, 0);
    for (std::size_t i = 0; i < piece.Head.Left.size(); ++i) {
      samples.push_back(static_cast<std::int16_t>(piece.Head.Left[i] * 12000));
      samples.push_back(static_cast<std::int16_t>(piece.Head.Right[i] * 12000));
    }
  }
  return samples;
}

Sound Of(const std::vector<std::int16_t>& samples) {
  Sound sound;
  sound.Samples = samples;
  return sound;
}

TEST(Cut, SilenceBetweenSongsIsCutWhereverTheTextComes) {
  const auto samples = TwoSongs();
  for (const double lag : {-1.0, -0.3, 0.0, 0.6, 1.4, 2.5}) {
    LagModel station;
    const auto stamp = 21 * kSecond - static_cast<std::int64_t>(lag * kRate);
    const Cut cut = FindCut(Of(samples), stamp, station);
    EXPECT_GE(cut.Frame, 20 * kSecond - kSecond / 10) << lag;
    EXPECT_LE(cut.Frame, 21 * kSecond + kSecond / 20) << lag;
    EXPECT_EQ(cut.Reason, Reason::Gap) << lag;
    EXPECT_GT(cut.Confidence, 0.5F) << lag;
    EXPECT_EQ(cut.LagMs, (cut.Frame - stamp) * 1000 / kRate);
    EXPECT_EQ(station.Changes(), 1);
  }
}

TEST(Cut, WithoutSoundTheTextAndWhatIsExpectedDecide) {
  LagModel station(600);
  const Cut cut = FindCut(Sound(), 5 * kSecond, station);
  EXPECT_EQ(cut.Reason, Reason::Text);
  EXPECT_NEAR(static_cast<double>(cut.LagMs), 600, 40);
  EXPECT_EQ(cut.Heard, 5 * kSecond);
  EXPECT_EQ(station.Changes(), 0);
}

TEST(Cut, WithoutSoundAStationsLearnedLagDecides) {
  LagModel station(600);
  LagRow clear{};
  clear[static_cast<std::size_t>((1800 - kLowestLag) / kBlockMs)] = 12;
  for (int i = 0; i < 12; ++i) station.Renew(clear);
  const Cut cut = FindCut(Sound(), 5 * kSecond, station);
  EXPECT_EQ(cut.Reason, Reason::Lag);
  EXPECT_NEAR(static_cast<double>(cut.LagMs), 1800, 60);
}

TEST(Cut, NothingAfterTenSecondsAndBeforeNineMatters) {
  auto samples = TwoSongs();
  const std::int64_t stamp = 20 * kSecond;
  LagModel station;
  const Cut before = FindCut(Of(samples), stamp, station);
  EXPECT_LT(before.Heard, stamp + 10 * kSecond);
  EXPECT_GE(before.Heard, stamp + 10 * kSecond - kSecond / 50);
  const auto end = static_cast<std::ptrdiff_t>(2 * (before.Heard + 1));
  std::fill(samples.begin() + end, samples.end(), 30000);
  std::fill(samples.begin(), samples.begin() + 2 * 11 * kSecond - 2, -30000);
  LagModel other;
  const Cut after = FindCut(Of(samples), stamp, other);
  EXPECT_EQ(before.Frame, after.Frame);
  EXPECT_EQ(before.Confidence, after.Confidence);
  EXPECT_EQ(station.Text(), other.Text());
}

TEST(Cut, FramesAreCountedFromTheBeginningOfTheStretch) {
  const auto samples = TwoSongs();
  Sound sound = Of(samples);
  LagModel one;
  const Cut early = FindCut(sound, 20 * kSecond, one);
  sound.First = 1'000'000'000'000;
  LagModel two;
  const Cut late = FindCut(sound, sound.First + 20 * kSecond, two);
  EXPECT_EQ(late.Frame - sound.First, early.Frame);
  EXPECT_EQ(late.LagMs, early.LagMs);
}

TEST(Cut, ACutLiesInTheSoundHoweverLittleThereIs) {
  const auto samples = TwoSongs();
  for (const std::int64_t frames : {1, 881, 882, 883, 3 * 882, 10 * 882, 44100, 88200}) {
    Sound sound = Of(samples);
    sound.First = 1000;
    sound.Samples = sound.Samples.first(static_cast<std::size_t>(2 * frames));
    for (const std::int64_t stamp :
         {-10 * kSecond, std::int64_t{0}, 1000 + frames / 2, 1000 + frames + 20 * kSecond}) {
      LagModel station;
      const Cut cut = FindCut(sound, stamp, station);
      EXPECT_GE(cut.Frame, stamp + (kLowestLag - 100) * kSecond / 1000);
      EXPECT_LE(cut.Frame, stamp + (kHighestLag + 100) * kSecond / 1000);
      EXPECT_TRUE(std::isfinite(cut.Confidence));
    }
  }
}

TEST(Cut, SilenceAndNoiseAloneAreCutNearTheExpectedLag) {
  std::vector<std::int16_t> samples(40 * 2 * kRate, 0);
  for (const bool noise : {false, true}) {
    std::uint32_t chance = 1;
    for (auto& sample : samples) {
      chance = chance * 1664525U + 1013904223U;
      sample = noise ? static_cast<std::int16_t>(chance >> 17U) : std::int16_t{0};
    }
    LagModel station(600);
    const Cut cut = FindCut(Of(samples), 20 * kSecond, station);
    EXPECT_NEAR(static_cast<double>(cut.LagMs), 600, 900) << noise;
  }
}

TEST(Cut, AStationMadeBySeedIsCutBetterThanByItsText) {
  const std::uint64_t seed = 77;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  cutlab::SyntheticPieces pieces(seed, 12);
  const auto station = cutlab::MakeStation(pieces, 12, seed);
  std::vector<cutlab::Judged> judged;
  cutlab::JudgeStation(station, cutlab::MakeStamps(station, {}, seed), false, FittedWeights(), judged);
  ASSERT_EQ(judged.size(), 12U);
  const auto within = [&](double cutlab::Judged::*which) {
    return std::count_if(judged.begin(), judged.end(),
                         [&](const auto& one) { return std::abs(one.*which) <= 0.1; });
  };
  EXPECT_GE(within(&cutlab::Judged::Listen), 6);
  EXPECT_GT(within(&cutlab::Judged::Listen), within(&cutlab::Judged::Text));
}

}  // namespace
}  // namespace kestrune::cut
