#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/PleaseWait.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::PleaseWait;
using presenters::ShowSearch;
using ::testing::ElementsAre;

recorder::State Searching() {
  recorder::State state;
  state.Search = {.Port = 3,
                  .Device = "/dev/ttyUSB2",
                  .Searching = true,
                  .Round = 2,
                  .Rounds = 4,
                  .StepsDone = 1,
                  .Steps = 4,
                  .Began = 10s,
                  .Longest = 5s};
  return state;
}

TEST(PleaseWait, BeforeTheFirstDeviceNothingIsNamed) {
  const PleaseWait shown = ShowSearch(recorder::State(), 5s);
  EXPECT_EQ(shown.lblPort, "");
  EXPECT_EQ(shown.lblStep, "Looking for serial devices...");
  EXPECT_EQ(shown.pbrSearch, 0);
  EXPECT_TRUE(shown.cmdCancelEnabled);
}

TEST(PleaseWait, TheKnownPortIsTriedAndTheOthersAreSearched) {
  recorder::State state = Searching();
  EXPECT_EQ(ShowSearch(state, 10s).lblPort, "3");
  EXPECT_EQ(ShowSearch(state, 10s).lblStep, "Searching on /dev/ttyUSB2: round 2 of 4");
  state.Search.Searching = false;
  state.Search.Rounds = 2;
  EXPECT_EQ(ShowSearch(state, 10s).lblStep, "Trying /dev/ttyUSB2: attempt 2 of 2");
}

TEST(PleaseWait, ADeviceWithoutANameIsItsPort) {
  recorder::State state = Searching();
  state.Search.Device.clear();
  EXPECT_EQ(ShowSearch(state, 10s).lblStep, "Searching on port 3: round 2 of 4");
}

TEST(PleaseWait, TheBarGrowsWithinAStepAndNeverBeyondIt) {
  const recorder::State state = Searching();
  std::vector<int> values;
  for (const auto now : {9s, 10s, 11s, 15s, 60s}) values.push_back(ShowSearch(state, now).pbrSearch);
  EXPECT_THAT(values, ElementsAre(250, 250, 300, 500, 500));
}

TEST(PleaseWait, TheBarIsFullOnceTheRadioIsFound) {
  recorder::State state = Searching();
  state.Search.Found = true;
  EXPECT_EQ(ShowSearch(state, 10s).pbrSearch, PleaseWait::kWhole);
  EXPECT_EQ(ShowSearch(state, 10s).lblPort, "3");
  EXPECT_EQ(ShowSearch(state, 10s).lblStep, "The radio is on /dev/ttyUSB2. Asking who it is...");
}

TEST(PleaseWait, ACloseIsSaidAndAskedForOnce) {
  recorder::State state = Searching();
  state.Run.ShuttingDown = true;
  EXPECT_EQ(ShowSearch(state, 10s).lblStep, "Closing...");
  EXPECT_FALSE(ShowSearch(state, 10s).cmdCancelEnabled);
}

TEST(PleaseWait, ASearchInVainGrowsFromNothingToTheWhole) {
  UnitRig rig;
  rig.Radio.Answers = false;
  rig.Radio.Obstacles = {{3, "/dev/ttyUSB2: permission denied"}};
  int last = 0;
  int shrunk = 0;
  const auto look = [&] {
    const int value = rig.Rules->PleaseWaitWindow().pbrSearch;
    if (value < last) ++shrunk;
    last = value;
  };
  const auto timer = rig.Loop.MakeTimer(100ms, look);
  timer->SetEnabled(true);
  rig.Start(recorder::StartOutcome::Failed);
  EXPECT_EQ(shrunk, 0);
  EXPECT_EQ(last, PleaseWait::kWhole * 9 / 10)
      << "the last of ten steps, a device that cannot be opened, takes no time";
}

}  // namespace
}  // namespace kestrune::test
