#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ExecWait.h"
#include "support/FakeProcesses.h"

namespace kestrune::test {
namespace {

using platform::WaitEnd;
using radio::ExecWait;
using ::testing::ElementsAre;

constexpr std::int16_t kUntouched = 77;

class ExecWaitTest : public ::testing::Test {
 protected:
  FakeProcesses processes;
  std::int16_t waitResult = kUntouched;
};

TEST_F(ExecWaitTest, WithoutAWaitItReturnsAtOnceAndTheResultStaysUntouched) {
  EXPECT_EQ(ExecWait(processes, "tool x", true, 500, waitResult, true), 4711);
  EXPECT_EQ(waitResult, kUntouched);
  EXPECT_THAT(processes.Calls, ElementsAre("hidden tool x"));
}

TEST_F(ExecWaitTest, AProgramThatEndsGivesZeroAndItsNumber) {
  EXPECT_EQ(ExecWait(processes, "tool", false, 0, waitResult, false), 4711);
  EXPECT_EQ(waitResult, 0);
  EXPECT_THAT(processes.Calls, ElementsAre("normal tool", "wait 4711 0"));
}

TEST_F(ExecWaitTest, AProgramThatOutlivesItsTimeIsKilledAndThatIsNotWaitedFor) {
  processes.End = WaitEnd::TimedOut;
  EXPECT_EQ(ExecWait(processes, "tool", true, 500, waitResult, false), 4711);
  EXPECT_EQ(waitResult, 258);
  EXPECT_THAT(processes.Calls, ElementsAre("hidden tool", "wait 4711 500", "hidden kill 4711"));
}

TEST_F(ExecWaitTest, AFailedWaitKillsToo) {
  processes.End = WaitEnd::Failed;
  ExecWait(processes, "tool", true, 500, waitResult, false);
  EXPECT_EQ(waitResult, -1);
  EXPECT_THAT(processes.Calls, ElementsAre("hidden tool", "wait 4711 500", "hidden kill 4711"));
}

TEST_F(ExecWaitTest, WhatDidNotStartIsNeitherWaitedForNorKilled) {
  processes.Starts = false;
  EXPECT_EQ(ExecWait(processes, "tool", true, 500, waitResult, false), 0);
  EXPECT_EQ(waitResult, -1);
  EXPECT_THAT(processes.Calls, ElementsAre("hidden tool")) << "the number 0 means this program itself";
}

TEST_F(ExecWaitTest, AProgramLeftBecauseThisOneEndsRunsOn) {
  processes.End = WaitEnd::GivenUp;
  ExecWait(processes, "tool", false, 0, waitResult, false);
  EXPECT_EQ(waitResult, 128);
  EXPECT_THAT(processes.Calls, ElementsAre("normal tool", "wait 4711 0"));
}

TEST_F(ExecWaitTest, ANegativeTimeIsAVeryLongOne) {
  ExecWait(processes, "tool", false, -1, waitResult, false);
  EXPECT_THAT(processes.Calls, ElementsAre("normal tool", "wait 4711 4294967295"));
}

}  // namespace
}  // namespace kestrune::test
