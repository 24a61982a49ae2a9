// What a whole unit tells a service manager.

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/ServiceReporter.h"
#include "support/FakeServiceManager.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ServiceReporterTest : public ::testing::Test {
 protected:
  void Begin() {
    reporter = std::make_unique<control::ServiceReporter>(*rig, rig.Loop, manager);
    reporter->Start();
  }
  void BeginIdle() {
    Begin();
    rig.StartIdle();
    rig.Run(1s);
  }

  UnitRig rig;
  FakeServiceManager manager;
  std::unique_ptr<control::ServiceReporter> reporter;
};

TEST_F(ServiceReporterTest, TheUnitIsReadyWhenItsChannelsAreLoadedAndSaysSoOnce) {
  Begin();
  rig.Start();
  EXPECT_EQ(manager.Readies(), 0);
  rig.FinishWalk();
  rig.Run(1s);
  EXPECT_EQ(manager.Readies(), 1);
  rig.Run(60s);
  EXPECT_EQ(manager.Readies(), 1);
}

TEST_F(ServiceReporterTest, AStartThatGoesOnAsksForMoreTimeAndOneThatIsOverDoesNot) {
  BeginIdle();
  EXPECT_EQ(manager.All.front().MoreTime, 60s);
  manager.All.clear();
  rig.Run(60s);
  EXPECT_THAT(manager.All, testing::Each(testing::Field(&platform::ServiceManager::News::MoreTime, 0s)));
}

TEST_F(ServiceReporterTest, TheSearchForTheRadioIsToldWhileItRuns) {
  rig.Radio.Answers = false;
  Begin();
  rig.Start(recorder::StartOutcome::Failed);
  EXPECT_GT(manager.All.size(), 5U);
  EXPECT_THAT(manager.Status(), HasSubstr("starting"));
}

TEST_F(ServiceReporterTest, AReadinessThatDidNotArriveIsToldAgain) {
  Begin();
  rig.Start();
  manager.Deaf = true;
  rig.FinishWalk();
  rig.Run(5s);
  manager.Deaf = false;
  rig.Run(2s);
  EXPECT_EQ(manager.Readies(), 1);
}

TEST_F(ServiceReporterTest, AnIdleUnitIsHeardEveryTenSeconds) {
  BeginIdle();
  manager.All.clear();
  rig.Run(100s);
  EXPECT_THAT(manager.All, SizeIs(10));
  EXPECT_TRUE(
      std::all_of(manager.All.begin(), manager.All.end(), [](const auto& news) { return news.Alive; }));
}

TEST_F(ServiceReporterTest, AnImpatientManagerHearsThreeTimesInItsPatience) {
  manager.Patient = 6s;
  BeginIdle();
  manager.All.clear();
  rig.Run(60s);
  EXPECT_THAT(manager.All, SizeIs(30));
}

TEST_F(ServiceReporterTest, TheLongestSongDelayIsFarWithinThePatience) {
  rig.Set("SongDelay", "32767");
  BeginIdle();
  std::chrono::milliseconds longest{0};
  std::chrono::milliseconds last = rig.Loop.SteadyNow();
  manager.WhenTold = [&] {
    longest = std::max(longest, rig.Loop.SteadyNow() - last);
    last = rig.Loop.SteadyNow();
  };
  for (const char* song : {"One", "Two", "Three"}) {
    rig.NextSong("Artist", song);
    rig.Run(60s);
  }
  EXPECT_GT(longest, 20s) << "no delay held up the loop";
  EXPECT_LT(longest, 60s) << "the unit's service file gives it five minutes";
}

TEST_F(ServiceReporterTest, TheStatusSaysWhatTheUnitDoesAndOnlyWhenThatChanges) {
  BeginIdle();
  rig->Wishes().Record();
  rig.NextSong("Moon", "River");
  rig.Run(20s);
  EXPECT_THAT(manager.Status(), AllOf(HasSubstr("Recording"), HasSubstr("Moon - River")));
  manager.All.clear();
  rig.Run(60s);
  for (const auto& news : manager.All) EXPECT_THAT(news.Status, IsEmpty());
}

TEST_F(ServiceReporterTest, TheEndIsToldOnce) {
  BeginIdle();
  manager.Patient = 3s;
  manager.All.clear();
  rig.CloseAndWait();
  rig.Run(20s);
  EXPECT_EQ(
      std::count_if(manager.All.begin(), manager.All.end(), [](const auto& news) { return news.Stopping; }),
      1);
}

TEST_F(ServiceReporterTest, WhereNobodyListensNoTimerRuns) {
  manager.Listening = false;
  BeginIdle();
  rig.Run(60s);
  EXPECT_THAT(manager.All, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
