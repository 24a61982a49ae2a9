#include <chrono>

#include <gtest/gtest.h>

#include "platform/ring/GapCounter.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;

/// Sound of 44100 frames a second in pieces of 10 ms, counted from its start on.
class GapCounterTest : public ::testing::Test {
 protected:
  GapCounterTest() { Gaps.Start(44100, Now); }

  /// A piece comes after so long.
  std::int64_t After(milliseconds time, std::int64_t frames = 441) {
    return Gaps.Arrived(frames, Now += time);
  }
  /// Pieces come as they should for a second; returns what is missing meanwhile.
  std::int64_t Flow() {
    std::int64_t missing = 0;
    for (int piece = 0; piece < 100; ++piece) missing += After(milliseconds(10));
    return missing;
  }

  GapCounter Gaps;
  GapCounter::Moment Now{5'000'000};
};

TEST_F(GapCounterTest, CountsNothingWhileTheSoundGoesOn) {
  EXPECT_EQ(Flow(), 0);
  EXPECT_EQ(After(milliseconds(900)), 0) << "late is not lost";
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, ADeviceThatStartsAtOnceMissesNothing) {
  EXPECT_EQ(After(milliseconds(200)), 0);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, ADeviceThatStartsLateMissesAllFromTheStartOn) {
  EXPECT_EQ(After(milliseconds(3010)), 3 * 44100);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, WhatADeviceBringsOfTheTimeBeforeItStartedIsNotMissing) {
  EXPECT_EQ(After(milliseconds(2000), 2 * 44100), 0);
}

TEST_F(GapCounterTest, AnInterruptionDuringTheStartChangesNothing) {
  Gaps.Interrupt();
  EXPECT_EQ(After(milliseconds(100)), 0);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, AfterAnInterruptionTheTimeWithoutSoundIsCountedOnce) {
  EXPECT_EQ(Flow(), 0);
  Gaps.Interrupt();
  Gaps.Interrupt();
  EXPECT_EQ(After(milliseconds(2010)), 88200);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, SoundThatCoversTheTimeLeavesNoGap) {
  EXPECT_EQ(Flow(), 0);
  Gaps.Interrupt();
  EXPECT_EQ(After(milliseconds(100), 5000), 0);
}

// The machine slept: nobody interrupted anything, and the clock has gone on.
TEST_F(GapCounterTest, ASilenceThatNobodyReportedIsMissingOnceTheSoundIsBack) {
  EXPECT_EQ(Flow(), 0);
  EXPECT_EQ(After(milliseconds(3'600'010)), 0) << "the rest may still come";
  EXPECT_EQ(Flow(), 3600 * 44100);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, SoundThatIsOnlyLateIsNotMissing) {
  EXPECT_EQ(Flow(), 0);
  EXPECT_EQ(After(milliseconds(3000), 44100), 0);
  EXPECT_EQ(After(milliseconds(10), 2 * 44100), 0);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, AnInterruptionAfterASilenceAccountsForBoth) {
  EXPECT_EQ(Flow(), 0);
  EXPECT_EQ(After(milliseconds(2010)), 0);
  Gaps.Interrupt();
  EXPECT_EQ(After(milliseconds(1010)), 3 * 44100);
  EXPECT_EQ(Flow(), 0);
}

TEST_F(GapCounterTest, StartForgetsAnInterruption) {
  EXPECT_EQ(Flow(), 0);
  Gaps.Interrupt();
  Gaps.Start(44100, Now += milliseconds(5000));
  EXPECT_EQ(After(milliseconds(10)), 0);
}

TEST(GapCounterClock, GoesOnWithTheMachine) {
  const auto one = GapCounter::Now();
  EXPECT_GT(one.count(), 0);
  EXPECT_GE(GapCounter::Now(), one);
}

}  // namespace
}  // namespace kestrune::platform
