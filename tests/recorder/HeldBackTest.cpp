#include <algorithm>
#include <cstdint>
#include <iostream>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/HeldBack.h"

namespace kestrune::recorder {
namespace {

constexpr platform::PcmFormat kForm{.SampleRate = 8000, .Channels = 1};
constexpr std::int64_t kBlock = 800;
constexpr std::int64_t kHeld = HeldBack::kSeconds * std::int64_t{8000};

/// Sound whose samples count up, and files that keep theirs.
class HeldBackTest : public ::testing::Test {
 protected:
  HeldBackTest() { Begin(); }

  void Begin() {
    Files.emplace_back();
    held.Begin(kForm);
  }
  /// Tenths of a second.
  void Come(int blocks, bool isHeld = true) {
    for (; blocks > 0; --blocks) {
      std::vector<std::int16_t> block;
      for (std::int64_t i = 0; i < kBlock; ++i) block.push_back(static_cast<std::int16_t>(next_++));
      held.Take(block, isHeld, File());
    }
  }
  [[nodiscard]] HeldBack::File File() {
    return [this](std::span<const std::int16_t> samples) {
      if (full) return false;
      Files.back().insert(Files.back().end(), samples.begin(), samples.end());
      return true;
    };
  }
  void Cut() {
    held.Cut(File());
    Files.emplace_back();
  }
  [[nodiscard]] std::int64_t Length(std::size_t file) const {
    return static_cast<std::int64_t>(Files.at(file).size());
  }
  /// All files, laid end to end, count up from `first`.
  void ExpectUnbroken(std::int64_t first = 0) {
    for (const auto& file : Files) {
      const auto wrong = std::find_if(file.begin(), file.end(), [&first](std::int16_t sample) {
        return sample != static_cast<std::int16_t>(first++);
      });
      ASSERT_EQ(wrong, file.end()) << "at frame " << first - 1;
    }
  }

  HeldBack held;
  bool full = false;  ///< the file takes nothing
  std::vector<std::vector<std::int16_t>> Files;

 private:
  std::int64_t next_ = 0;
};

TEST_F(HeldBackTest, WithoutHoldingABlockReachesTheFileAtOnce) {
  Come(3, false);
  EXPECT_EQ(Length(0), 3 * kBlock);
  EXPECT_EQ(held.End(), 3 * kBlock);
  ExpectUnbroken();
}

TEST_F(HeldBackTest, SoundReachesTheFileTenSecondsLate) {
  Come(100);
  EXPECT_EQ(Length(0), 0);
  Come(50);
  EXPECT_EQ(Length(0), 50 * kBlock);
  EXPECT_EQ(held.End() - held.Written(), kHeld);
  ExpectUnbroken();
}

TEST_F(HeldBackTest, AFlushWritesAllOfIt) {
  Come(150);
  held.Flush(File());
  EXPECT_EQ(Length(0), 150 * kBlock);
  Begin();
  Come(1, false);
  EXPECT_EQ(Length(1), kBlock);
  ExpectUnbroken();
}

TEST_F(HeldBackTest, AnAwaitedCutStopsTheFileAtItsLimit) {
  Come(200);
  held.AwaitCut(held.End() - 4 * 8000);
  Come(100);
  EXPECT_EQ(held.Written(), 200 * kBlock - 4 * 8000);
  EXPECT_FALSE(held.CutReached());
}

TEST_F(HeldBackTest, AChosenCutIsReachedLittleByLittle) {
  Come(200);
  const std::int64_t stamp = held.End();
  held.AwaitCut(stamp - 4 * 8000);
  Come(100);
  held.SetCut(stamp + 800, 0);
  const std::int64_t before = Length(0);
  Come(1);
  EXPECT_EQ(Length(0) - before, 4 * kBlock) << "four blocks for one that comes";
  int blocks = 1;
  for (; !held.CutReached(); ++blocks) Come(1);
  EXPECT_EQ(blocks, 11);
  Cut();
  EXPECT_EQ(Length(0), stamp + 800);
  Come(200);
  ExpectUnbroken();
  EXPECT_EQ(held.End() - held.Written(), kHeld) << "the next file has made up for it";
}

TEST_F(HeldBackTest, ACutThatIsSettledEarlyWritesTheRestAtOnce) {
  Come(200);
  held.AwaitCut(held.End() - 4 * 8000);
  Come(10);
  held.SetCut(200 * kBlock + 123, 0);
  Cut();
  EXPECT_EQ(Length(0), 200 * kBlock + 123);
  held.Flush(File());
  EXPECT_EQ(Length(1), 10 * kBlock - 123);
  ExpectUnbroken();
}

TEST_F(HeldBackTest, WhatIsWrittenOrHasNotComeCannotBeChosen) {
  Come(200);
  held.AwaitCut(held.End() - 4 * 8000);
  Come(1);
  held.SetCut(held.End() + 5000, 0);
  EXPECT_EQ(held.ChosenCut(), held.End());
  held.SetCut(5, 0);
  EXPECT_EQ(held.ChosenCut(), held.Written());
}

TEST_F(HeldBackTest, AnOverlapIsInBothFiles) {
  Come(200);
  const std::int64_t stamp = held.End();
  held.AwaitCut(stamp - 4 * 8000);
  Come(100);
  held.SetCut(stamp, 1000);
  Cut();
  held.Flush(File());
  EXPECT_EQ(Length(0), stamp + 500);
  EXPECT_EQ(Length(1), held.End() - stamp + 500);
  EXPECT_EQ(Files[1].front(), static_cast<std::int16_t>(stamp - 500));
}

TEST_F(HeldBackTest, TheLongestOverlapIsThereAfterMuchWasWritten) {
  Come(200);
  const std::int64_t stamp = held.End();
  held.AwaitCut(stamp - 4 * 8000);
  Come(100);
  held.SetCut(stamp, 5 * 8000);
  while (!held.CutReached()) Come(1);
  Cut();
  held.Flush(File());
  EXPECT_EQ(Length(0), stamp + 20000);
  EXPECT_EQ(Files[1].front(), static_cast<std::int16_t>(stamp - 20000));
  EXPECT_EQ(Length(1), held.End() - stamp + 20000);
}

TEST_F(HeldBackTest, AnOverlapReachesNoFurtherThanTheSoundAndTheFile) {
  Come(10);
  held.AwaitCut(0);
  held.SetCut(8 * kBlock, 40000);
  Cut();
  held.Flush(File());
  EXPECT_EQ(Length(0), 10 * kBlock);
  EXPECT_EQ(Files[1].front(), static_cast<std::int16_t>(6 * kBlock));
}

TEST_F(HeldBackTest, WhatAFileLeftComesIntoTheNext) {
  Come(200);
  const std::int64_t written = held.Written();
  Begin();
  EXPECT_EQ(held.Start(), written);
  Come(1);
  held.Flush(File());
  EXPECT_EQ(Files[1].front(), static_cast<std::int16_t>(written));
  ExpectUnbroken();
}

TEST_F(HeldBackTest, WhatTheFileDoesNotTakeStaysForTheNext) {
  Come(150);
  full = true;
  Come(100);
  EXPECT_EQ(held.Written(), 50 * kBlock);
  held.Flush(File());
  EXPECT_EQ(held.Written(), 50 * kBlock);
  full = false;
  Begin();
  EXPECT_EQ(held.Start(), 50 * kBlock);
  Come(100);
  EXPECT_EQ(held.End() - held.Written(), kHeld) << "it has caught up";
  ExpectUnbroken();
}

TEST_F(HeldBackTest, WhatNoFileTakesStaysForHalfAMinute) {
  constexpr int kMost = HeldBack::kMostSeconds * 10;
  Come(150);
  full = true;
  Come(500);
  EXPECT_EQ(held.Written(), (650 - kMost) * kBlock);
  Begin();
  Come(20);
  EXPECT_EQ(held.Start(), (670 - kMost) * kBlock) << "a file begins with what it has";
  full = false;
  held.Flush(File());
  EXPECT_EQ(Length(1), kMost * kBlock);
  EXPECT_EQ(Files[1].front(), static_cast<std::int16_t>((670 - kMost) * kBlock));
}

TEST_F(HeldBackTest, SoundOfAnotherFormIsNotMixedIn) {
  Come(200);
  held.Begin({.SampleRate = 16000, .Channels = 2});
  EXPECT_EQ(held.Start(), held.End());
  EXPECT_EQ(held.Written(), held.End());
}

TEST_F(HeldBackTest, ASwitchToTextWritesWhatWasHeld) {
  Come(150);
  Come(1, false);
  EXPECT_EQ(Length(0), 151 * kBlock);
  Come(1, false);
  ExpectUnbroken();
}

TEST_F(HeldBackTest, AnythingInAnyOrderLosesAndDoublesNothing) {
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const auto draw = [&random](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  for (int step = 0; step < 400; ++step) {
    switch (draw(0, 5)) {
      case 0:
        Come(draw(1, 150), draw(0, 9) > 0);
        break;
      case 1:
        if (!held.AwaitsCut()) held.AwaitCut(held.End() - 4 * 8000);
        break;
      case 2:
        if (held.AwaitsCut()) held.SetCut(held.End() + draw(-15 * 8000, 8000), 0);
        break;
      case 3:
        if (held.ChosenCut()) Cut();
        break;
      case 4:
        if (held.AwaitsCut()) break;
        held.Flush(File());
        Begin();
        break;
      default:
        Come(1);
        break;
    }
  }
  held.Flush(File());
  ExpectUnbroken();
  std::int64_t sum = 0;
  for (const auto& file : Files) sum += static_cast<std::int64_t>(file.size());
  EXPECT_EQ(sum, held.End());
}

}  // namespace
}  // namespace kestrune::recorder
