#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/StayAwake.h"
#include "support/FakeSleepInhibitor.h"
#include "support/SimulatedEventLoop.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class StayAwakeTest : public ::testing::Test {
 protected:
  SimulatedEventLoop loop;
  recorder::State state;
  recorder::RecordingState& recording = state.Recording;
  schedule::ScheduleState& running = state.Schedule;
  schedule::ScheduleEntries& entries = state.Entries;
  FakeSleepInhibitor inhibitor;
  recorder::StayAwake awake{state, inhibitor, loop};
};

TEST_F(StayAwakeTest, AnIdleMachineMaySleep) {
  awake.Start();
  loop.Run(1h);
  EXPECT_FALSE(inhibitor.Held);
  EXPECT_TRUE(inhibitor.Reasons.empty());
}

TEST_F(StayAwakeTest, ARecordingByHandKeepsItAwake) {
  awake.Start();
  recording.RecordArmed = true;
  loop.Run(10s);
  EXPECT_TRUE(inhibitor.Held);
  EXPECT_THAT(inhibitor.Reasons, ElementsAre("Recording from the radio"));
  recording.RecordArmed = false;
  loop.Run(10s);
  EXPECT_FALSE(inhibitor.Held);
}

TEST_F(StayAwakeTest, ARunningEventKeepsItAwake) {
  running.ActiveSchedule = 3;
  awake.Start();
  EXPECT_TRUE(inhibitor.Held);
}

TEST_F(StayAwakeTest, AnEventIsAwaitedFromFiveMinutesBeforeIt) {
  entries[4].Enabled = true;
  entries[4].StartDate = loop.Now().AddMinutes(20).AddSeconds(1);
  entries[4].EndDate = entries[4].StartDate.AddSeconds(59);
  awake.Start();
  loop.Run(15min);
  EXPECT_FALSE(inhibitor.Held);
  loop.Run(10s);
  EXPECT_TRUE(inhibitor.Held);
  loop.Run(5min);
  EXPECT_TRUE(inhibitor.Held) << "it is due, and the next pass of the schedule begins it";
  loop.Run(40s);
  EXPECT_TRUE(inhibitor.Held);
  loop.Run(10s);
  EXPECT_FALSE(inhibitor.Held) << "it did not run";
}

TEST_F(StayAwakeTest, NothingIsHeldOnceItHasStopped) {
  running.ActiveSchedule = 1;
  awake.Start();
  awake.Stop();
  EXPECT_FALSE(inhibitor.Held);
  loop.Run(1h);
  EXPECT_FALSE(inhibitor.Held);
}

TEST(StayAwakeInAUnit, HoldsWhileItRecordsAndLetsGoAtTheClose) {
  UnitRig rig;
  rig.StartIdle();
  EXPECT_FALSE(rig.SleepInhibitor.Held);
  rig->cmdRecord();
  rig.Run(11s);
  EXPECT_TRUE(rig.SleepInhibitor.Held);
  rig.CloseAndWait();
  EXPECT_FALSE(rig.SleepInhibitor.Held);
}

}  // namespace
}  // namespace kestrune::test
