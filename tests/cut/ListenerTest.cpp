#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "cut/Listener.h"
#include "cutlab/Judge.h"
#include "cutlab/Pieces.h"
#include "cutlab/Station.h"
#include "receiver/Dice.h"

namespace kestrune::cut {
namespace {

using cutlab::kRate;
constexpr std::int64_t kSecond = kRate;

/// Twenty seconds of one song, a second of silence, twenty of another.
std::vector<std::int16_t> MakeTwoSongs() {
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

const std::vector<std::int16_t>& TwoSongs() {
  static const auto kSongs = MakeTwoSongs();
  return kSongs;
}

Listener Heard(std::span<const std::int16_t> samples, std::int64_t first = 0) {
  Listener listener(kRate, 2, first);
  listener.Hear(samples);
  return listener;
}

TEST(Listener, SilenceBetweenSongsIsCutWhereverTheTextComes) {
  const Listener listener = Heard(TwoSongs());
  for (const double lag : {-1.0, -0.3, 0.0, 0.6, 1.4, 2.5}) {
    LagModel station;
    const auto stamp = 21 * kSecond - static_cast<std::int64_t>(lag * kRate);
    const Cut cut = listener.Choose(stamp, station);
    EXPECT_GE(cut.Frame, 20 * kSecond - kSecond / 10) << lag;
    EXPECT_LE(cut.Frame, 21 * kSecond + kSecond / 20) << lag;
    EXPECT_EQ(cut.Reason, Reason::Gap) << lag;
    EXPECT_GT(cut.Confidence, 0.5F) << lag;
    EXPECT_EQ(cut.LagMs, (cut.Frame - stamp) * 1000 / kRate);
    EXPECT_EQ(station.Changes(), 1);
  }
}

TEST(Listener, WithoutSoundTheTextAndWhatIsExpectedDecide) {
  LagModel station(600);
  const Cut cut = Listener(kRate, 2, 0).Choose(5 * kSecond, station);
  EXPECT_EQ(cut.Reason, Reason::Text);
  EXPECT_NEAR(static_cast<double>(cut.LagMs), 600, 40);
  EXPECT_EQ(cut.Heard, 5 * kSecond);
  EXPECT_EQ(station.Changes(), 0);
}

TEST(Listener, WithoutSoundAStationsLearnedLagDecides) {
  LagModel station(600);
  LagRow clear{};
  clear[static_cast<std::size_t>((1800 - kLowestLag) / kBlockMs)] = 12;
  for (int i = 0; i < 12; ++i) station.Renew(clear);
  const Cut cut = Listener(kRate, 2, 0).Choose(5 * kSecond, station);
  EXPECT_EQ(cut.Reason, Reason::Lag);
  EXPECT_NEAR(static_cast<double>(cut.LagMs), 1800, 60);
}

TEST(Listener, NothingAfterTenSecondsAndBeforeNineMatters) {
  auto samples = MakeTwoSongs();
  const std::int64_t stamp = 20 * kSecond;
  LagModel station;
  const Cut before = Heard(samples).Choose(stamp, station);
  EXPECT_LT(before.Heard, stamp + 10 * kSecond);
  EXPECT_GE(before.Heard, stamp + 10 * kSecond - kSecond / 50);
  const auto end = static_cast<std::ptrdiff_t>(2 * (before.Heard + 1));
  std::fill(samples.begin() + end, samples.end(), 30000);
  // The filter at 100 Hz needs a moment to forget.
  std::fill(samples.begin(), samples.begin() + 2 * 10 * kSecond, -30000);
  LagModel other;
  const Cut after = Heard(samples).Choose(stamp, other);
  EXPECT_EQ(before, after);
  EXPECT_EQ(station.Text(), other.Text());
}

TEST(Listener, FramesAreCountedFromTheFirst) {
  const auto& samples = TwoSongs();
  constexpr std::int64_t kFirst = 1'000'000'000'000;
  LagModel one;
  LagModel two;
  const Listener late = Heard(samples, kFirst);
  EXPECT_EQ(late.End(), kFirst + 41 * kSecond);
  Cut cut = late.Choose(kFirst + 20 * kSecond, two);
  cut.Frame -= kFirst;
  cut.Heard -= kFirst;
  EXPECT_EQ(cut, Heard(samples).Choose(20 * kSecond, one));
}

TEST(Listener, AFewFramesOfTheStampDoNotMoveACut) {
  const Listener listener = Heard(TwoSongs());
  LagModel fresh;
  const Cut cut = listener.Choose(20 * kSecond, fresh);
  for (const int frames : {-400, -100, 300}) {
    LagModel station;
    const Cut other = listener.Choose(20 * kSecond + frames, station);
    EXPECT_EQ(other.Frame, cut.Frame) << frames;
    EXPECT_EQ(other.LagMs, (other.Frame - 20 * kSecond - frames) * 1000 / kRate);
  }
}

TEST(Listener, SoundInPiecesOfAnySizeGivesTheSameChoicesToTheBit) {
  const std::uint64_t seed = 31;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  receiver::Dice dice(seed);
  const auto& samples = TwoSongs();
  const Listener atOnce = Heard(samples);
  for (const int longest : {1, 900, 4410, 100000}) {
    Listener inPieces(kRate, 2, 0);
    std::span<const std::int16_t> rest(samples);
    while (!rest.empty()) {
      const auto frames = static_cast<std::size_t>(dice.Between(0, longest));
      const auto part = rest.first(std::min(rest.size(), 2 * frames));
      inPieces.Hear(part);
      rest = rest.subspan(part.size());
    }
    ASSERT_EQ(inPieces.End(), atOnce.End());
    for (const std::int64_t stamp : {19 * kSecond + 17, 22 * kSecond, 31 * kSecond, 36 * kSecond}) {
      LagModel one;
      LagModel two;
      EXPECT_EQ(inPieces.Choose(stamp, one), atOnce.Choose(stamp, two)) << longest << " " << stamp;
      EXPECT_EQ(one.Text(), two.Text());
    }
  }
}

TEST(Listener, WhatIsHeardLaterDoesNotChangeAChoice) {
  const auto& samples = TwoSongs();
  const std::int64_t stamp = 20 * kSecond + 123;
  Listener listener(kRate, 2, 0);
  listener.Hear(std::span(samples).first(static_cast<std::size_t>(2 * (stamp + 10 * kSecond))));
  LagModel atTime;
  const Cut cut = listener.Choose(stamp, atTime);
  listener.Hear(
      std::span(samples).subspan(static_cast<std::size_t>(2 * (stamp + 10 * kSecond)), 2 * kSecond));
  LagModel late;
  EXPECT_EQ(listener.Choose(stamp, late), cut);
}

TEST(Listener, HoursOfSoundLeaveNoMoreThanTheLastSeconds) {
  // At the lowest rate, to be quick.
  const std::vector<std::int16_t> samples(8000 * 10, 300);
  Listener listener(8000, 1, 0);
  for (int i = 0; i < 7; ++i) listener.Hear(samples);
  const Block* const blocks = listener.Around(listener.End()).Blocks.data();
  const Block* lowest = blocks;
  const Block* highest = blocks;
  for (int i = 0; i < 200; ++i) {
    listener.Hear(samples);
    const auto stretch = listener.Around(listener.End() - 8000 * 10);
    ASSERT_EQ(stretch.Blocks.size(), 948U);
    lowest = std::min(lowest, stretch.Blocks.data());
    highest = std::max(highest, stretch.Blocks.data());
  }
  // All in the room that was made in the beginning.
  EXPECT_LT(highest - lowest, 2 * Listener::kKeptMs / kBlockMs);
}

TEST(Listener, AStampBeforeWhatIsKeptIsCutByTheLagAlone) {
  Listener listener = Heard(TwoSongs());
  listener.Hear(std::vector<std::int16_t>(2 * kRate, 0));
  const std::int64_t kept = listener.End() - kSecond * Listener::kKeptMs / 1000;
  LagModel station(600);
  // Ten seconds after this stamp nothing is kept.
  const Cut gone = listener.Choose(kept - 10 * kSecond - kSecond / 10, station);
  EXPECT_EQ(gone.Reason, Reason::Text);
  EXPECT_NEAR(static_cast<double>(gone.LagMs), 600, 40);
  EXPECT_EQ(gone.Heard, kept - 10 * kSecond - kSecond / 10);
  EXPECT_EQ(station.Changes(), 0);
  const Cut partly = listener.Choose(kept, station);
  EXPECT_NE(partly.Reason, Reason::Text);
  EXPECT_GE(partly.Frame, kept - kSecond / 10);
  EXPECT_EQ(station.Changes(), 1);
}

TEST(Listener, TheLikeliestPlacesComeWithACut) {
  const Listener listener = Heard(TwoSongs());
  LagModel station;
  const Cut cut = listener.Choose(20 * kSecond, station);
  ASSERT_FALSE(cut.Candidates.empty());
  ASSERT_LE(cut.Candidates.size(), kCandidates);
  EXPECT_GT(cut.Candidates.front().Chance, 0.2F);
  const bool among = std::any_of(cut.Candidates.begin(), cut.Candidates.end(), [&](const Candidate& one) {
    return std::abs(one.LagMs - cut.LagMs) <= 120;
  });
  EXPECT_TRUE(among);
}

TEST(Listener, ACutLiesNearItsStampHoweverLittleSoundThereIs) {
  const auto& samples = TwoSongs();
  for (const std::int64_t frames : {1, 881, 882, 953, 954, 3 * 882, 10 * 882, 44100, 88200}) {
    const Listener listener = Heard(std::span(samples).first(static_cast<std::size_t>(2 * frames)), 1000);
    for (const std::int64_t stamp : {-1000 * kSecond, -10 * kSecond, std::int64_t{0}, 1000 + frames / 2,
                                     1000 + frames + 20 * kSecond, 1000 * kSecond}) {
      LagModel station;
      const Cut cut = listener.Choose(stamp, station);
      EXPECT_GE(cut.Frame, stamp + (kLowestLag - 100) * kSecond / 1000);
      EXPECT_LE(cut.Frame, stamp + (kHighestLag + 100) * kSecond / 1000);
      EXPECT_TRUE(std::isfinite(cut.Confidence));
    }
  }
}

TEST(Listener, OtherRatesAndOneChannelFindTheSilenceToo) {
  const auto& samples = TwoSongs();
  for (const int divisor : {1, 2, 4}) {
    // Of so many frames only one is kept: a rough lower rate.
    std::vector<std::int16_t> one;
    for (std::size_t i = 0; i + 1 < samples.size(); i += 2 * static_cast<std::size_t>(divisor)) {
      one.push_back(samples[i]);
    }
    const int rate = kRate / divisor;
    Listener listener(rate, 1, 0);
    listener.Hear(one);
    LagModel station;
    const Cut cut = listener.Choose(20 * rate, station);
    EXPECT_NEAR(static_cast<double>(cut.Frame) / rate, 20.5, 0.6) << rate;
    EXPECT_EQ(cut.Reason, Reason::Gap) << rate;
  }
}

TEST(Listener, SilenceAloneIsCutNearTheExpectedLag) {
  LagModel station(600);
  const Cut cut = Heard(std::vector<std::int16_t>(40 * 2 * kRate, 0)).Choose(20 * kSecond + 123, station);
  EXPECT_NEAR(static_cast<double>(cut.LagMs), 600, 900);
  // Where nothing rises, a block's beginning.
  EXPECT_EQ(cut.Frame % (kRate / 50), 0);
}

TEST(Listener, AStationMadeBySeedIsCutBetterThanByItsText) {
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
