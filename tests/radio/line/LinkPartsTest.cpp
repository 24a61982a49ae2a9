// The small parts of the link: its texts, its pace, the clocks and the ports.
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/LinkState.h"
#include "radio/line/PortRoster.h"
#include "radio/line/RemedyPace.h"
#include "radio/line/TimeJump.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using radio::LinkState;
using radio::LinkStatus;
using radio::PortRoster;
using radio::RemedyPace;
using radio::TimeJump;

// Lines of the log.

TEST(LinkLines, SayWhereWhyAndForHowLong) {
  EXPECT_EQ(radio::RadioLostLine({.State = LinkState::Lost, .Cause = "the device is gone", .Port = 1}),
            "Radio lost on port 1: the device is gone");
  const LinkStatus found{.Port = 2};
  EXPECT_EQ(radio::RadioFoundLine(found, 23s), "Radio found again on port 2 after 0:23");
  EXPECT_EQ(radio::RadioFoundLine(found, 999ms), "Radio found again on port 2 after 0:00");
  EXPECT_EQ(radio::RadioFoundLine(found, 59min + 59s), "Radio found again on port 2 after 59:59");
  EXPECT_EQ(radio::RadioFoundLine(found, 26h + 3min + 4s), "Radio found again on port 2 after 26:03:04");
}

// The pace.

TEST(RemedyPaceTest, TwoSecondsForFiveMinutesAndThirtySecondsThen) {
  RemedyPace pace;
  pace.Begin(100s);
  std::vector<std::chrono::milliseconds> tries;
  for (auto now = 100s; now < 500s; now += 1s) {
    if (!pace.Due(now)) continue;
    pace.Tried(now);
    tries.emplace_back(now);
  }
  ASSERT_EQ(tries.size(), 154U);
  EXPECT_EQ(tries[0], 100s);
  EXPECT_EQ(tries[1], 102s);
  EXPECT_EQ(tries[150], 400s) << "the last of the fast ones leads to this";
  EXPECT_EQ(tries[151], 430s);
  EXPECT_EQ(tries[153], 490s);
}

// The clocks.

class TimeJumpTest : public ::testing::Test {
 protected:
  SimulatedEventLoop loop;
  TimeJump jump{loop};
};

TEST_F(TimeJumpTest, RegularBeatsAreNone) {
  for (int beat = 0; beat < 100; ++beat) {
    loop.Run(250ms);
    EXPECT_FALSE(jump.Seen());
  }
}

TEST_F(TimeJumpTest, TheLongestSongDelayIsNone) {
  loop.Sleep(33s);
  EXPECT_FALSE(jump.Seen());
}

TEST_F(TimeJumpTest, AMachineThatSleptIsOne) {
  loop.Run(250ms);
  loop.SleepMachine(11s);
  EXPECT_TRUE(jump.Seen());
  EXPECT_FALSE(jump.Seen()) << "each jump once";
}

TEST_F(TimeJumpTest, AShortSleepIsNone) {
  loop.SleepMachine(5s);
  EXPECT_FALSE(jump.Seen());
}

TEST_F(TimeJumpTest, AWallClockThatIsSetIsNone) {
  loop.StepWallClock(1h);
  EXPECT_FALSE(jump.Seen());
  loop.StepWallClock(-1h);
  EXPECT_FALSE(jump.Seen());
}

TEST_F(TimeJumpTest, AProgramThatWasStoppedIsOne) {
  loop.Sleep(2min);
  EXPECT_TRUE(jump.Seen());
}

// The ports.

class PortRosterTest : public ::testing::Test {
 protected:
  std::set<std::int16_t> devices;
  PortRoster roster{[this](std::int16_t port) { return devices.contains(port); }};
};

TEST_F(PortRosterTest, NothingIsTriedWhileThereIsNoDevice) {
  devices = {1};
  roster.Remember(1);
  devices.clear();
  EXPECT_EQ(roster.Next(), 0);
}

TEST_F(PortRosterTest, ItsOwnNumberComesFirst) {
  devices = {3};
  roster.Remember(3);
  devices = {1, 3};
  EXPECT_EQ(roster.Next(), 3);
  EXPECT_EQ(roster.Next(), 1) << "there was none at 1 before";
  EXPECT_EQ(roster.Next(), 3);
}

TEST_F(PortRosterTest, ADeviceThatWasThereAllAlongIsLeftAlone) {
  devices = {1, 2};
  roster.Remember(1);
  devices = {2};
  EXPECT_EQ(roster.Next(), 0);
  devices = {2, 16};
  EXPECT_EQ(roster.Next(), 16);
  EXPECT_EQ(roster.Next(), 16);
}

TEST_F(PortRosterTest, ANumberThatWasFreeForAMomentIsACandidate) {
  devices = {1, 2};
  roster.Remember(1);
  devices = {};
  roster.Look();
  devices = {2};
  roster.Look();
  EXPECT_EQ(roster.Next(), 2);
}

TEST_F(PortRosterTest, UnderSuspicionAllAreTriedInTurn) {
  devices = {1, 2, 5};
  roster.Remember(1);
  EXPECT_EQ(roster.Next(), 1);
  roster.SuspectAll();
  EXPECT_EQ(roster.Next(), 2);
  EXPECT_EQ(roster.Next(), 5);
  EXPECT_EQ(roster.Next(), 1);
}

}  // namespace
}  // namespace kestrune::test
