#include <chrono>

#include <gtest/gtest.h>

#include "platform/ring/GapCounter.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;

TEST(GapCounter, CountsNothingWhileTheSoundGoesOn) {
  GapCounter gaps;
  GapCounter::Moment now;
  gaps.Start(44100, now);
  // Late is not lost.
  EXPECT_EQ(gaps.Arrived(441, now += milliseconds(10)), 0);
  EXPECT_EQ(gaps.Arrived(441, now += milliseconds(3000)), 0);
}

TEST(GapCounter, AfterAnInterruptionTheTimeWithoutSoundIsCountedOnce) {
  GapCounter gaps;
  GapCounter::Moment now;
  gaps.Start(44100, now);
  EXPECT_EQ(gaps.Arrived(441, now += milliseconds(10)), 0);
  gaps.Interrupt();
  gaps.Interrupt();
  EXPECT_EQ(gaps.Arrived(441, now += milliseconds(2010)), 88200);
  EXPECT_EQ(gaps.Arrived(441, now += milliseconds(10)), 0);
}

TEST(GapCounter, SoundThatCoversTheTimeLeavesNoGap) {
  GapCounter gaps;
  GapCounter::Moment now;
  gaps.Start(8000, now);
  gaps.Interrupt();
  EXPECT_EQ(gaps.Arrived(900, now += milliseconds(100)), 0);
}

TEST(GapCounter, StartForgetsAnInterruption) {
  GapCounter gaps;
  GapCounter::Moment now;
  gaps.Start(8000, now);
  gaps.Interrupt();
  gaps.Start(8000, now += milliseconds(5000));
  EXPECT_EQ(gaps.Arrived(80, now += milliseconds(1000)), 0);
}

}  // namespace
}  // namespace kestrune::platform
