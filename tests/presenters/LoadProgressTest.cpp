#include <algorithm>
#include <chrono>
#include <vector>

#include <gtest/gtest.h>

#include "presenters/LoadProgress.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::LoadProgress;
using presenters::ShowLoad;

LoadProgress Shown(radio::ChannelLoad load) {
  radio::RadioState state;
  state.ChannelsLoading = true;
  state.Load = load;
  return ShowLoad(state);
}

TEST(LoadProgress, NothingIsShownWithoutALoad) {
  radio::RadioState state;
  state.Load = {.Checking = true, .Done = 120, .Expected = 120};
  EXPECT_FALSE(ShowLoad(state).Visible);
}

TEST(LoadProgress, WithASavedListItCountsUpToItsLength) {
  const LoadProgress shown = Shown({.Done = 37, .Expected = 120});
  EXPECT_TRUE(shown.Visible);
  EXPECT_EQ(shown.Text, "Loading the radio's channels: 37 of 120");
  EXPECT_TRUE(shown.Known);
  EXPECT_EQ(shown.Value, 500 * 37 / 120);
}

TEST(LoadProgress, TheSecondPassIsTheSecondHalf) {
  const LoadProgress shown = Shown({.Checking = true, .Done = 60, .Expected = 120});
  EXPECT_EQ(shown.Text, "Checking the radio's channels: 60 of 120");
  EXPECT_EQ(shown.Value, 750);
  EXPECT_EQ(Shown({.Checking = true, .Done = 120, .Expected = 120}).Value, LoadProgress::kWhole);
}

TEST(LoadProgress, WithoutAListItOnlyCounts) {
  EXPECT_EQ(Shown({}).Text, "The radio's channels are being loaded.");
  EXPECT_EQ(Shown({.Done = 37}).Text, "Loading the radio's channels: 37 so far");
  EXPECT_FALSE(Shown({.Done = 37}).Known);
}

TEST(LoadProgress, ALoadGrowsFromNothingToTheWholeAndGoes) {
  UnitRig rig;
  rig.Start();
  std::vector<int> values;
  const auto timer = rig.Loop.MakeTimer(50ms, [&] {
    const LoadProgress load = rig.Window().Load;
    if (load.Visible && load.Known) values.push_back(load.Value);
  });
  timer->SetEnabled(true);
  EXPECT_TRUE(rig.Window().Load.Visible);
  rig.FinishWalk();
  EXPECT_FALSE(rig.Window().Load.Visible);
  ASSERT_FALSE(values.empty());
  EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
  EXPECT_EQ(values.front(), LoadProgress::kWhole / 2) << "how many there are the first pass has found out";
  EXPECT_EQ(values.back(), LoadProgress::kWhole);
}

}  // namespace
}  // namespace kestrune::test
