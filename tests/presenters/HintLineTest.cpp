#include <gtest/gtest.h>

#include "presenters/Explanation.h"
#include "presenters/HintLine.h"
#include "presenters/MainWindow.h"
#include "support/UnitRig.h"

namespace kestrune::presenters {
namespace {

using recorder::Hint;
using recorder::Phase;
using recorder::State;

State WithHint(bool fresh = false) {
  State state;
  state.Hints = {Hint{.Number = 2,
                      .Began = {},
                      .Channel = 47,
                      .Station = "Campfire Folk",
                      .Artist = "Abigail Wren",
                      .Song = "Winter Apples",
                      .Since = {},
                      .Fresh = fresh},
                 Hint{.Number = 1,
                      .Began = {},
                      .Channel = 8,
                      .Station = "Neon 80s",
                      .Artist = "A",
                      .Song = "B",
                      .Since = {},
                      .Fresh = fresh}};
  return state;
}

void Record(State& state) {
  state.Recording.Phase = Phase::Recording;
  state.Recording.RecordRequested = state.Recording.RecordArmed = true;
}

TEST(HintLine, TheNewestIsShownWhileNothingIsRecorded) {
  const State state = WithHint();
  ASSERT_NE(ShownHint(state), nullptr);
  EXPECT_EQ(recorder::HintText(*ShownHint(state)), "Now on 47 Campfire Folk: Abigail Wren - Winter Apples");
  EXPECT_EQ(HintChannel(state), 47);
  EXPECT_EQ(ShownHint(State()), nullptr);
  EXPECT_EQ(HintChannel(State()), 0);
}

TEST(HintLine, BesideARecordingOnlyAFreshOneIsShownAndNobodyTunesToIt) {
  State state = WithHint(true);
  Record(state);
  EXPECT_NE(ShownHint(state), nullptr);
  EXPECT_EQ(HintChannel(state), 0);
  state.Hints.front().Fresh = false;
  EXPECT_EQ(ShownHint(state), nullptr);
}

TEST(HintLine, WhoeverWaitsForTheNextSongMayTune) {
  State state = WithHint(true);
  state.Recording.Phase = Phase::WaitingForNextSong;
  state.Recording.RecordArmed = state.Recording.WaitingForNextSong = true;
  EXPECT_EQ(HintChannel(state), 47);
  state.Recording.RecordRequested = true;
  EXPECT_EQ(HintChannel(state), 0) << "as the product has it, the channel is kept then";
}

TEST(HintLine, AFailureAndTheLoadOfTheChannelsGoFirst) {
  State state = WithHint(true);
  state.Watch.RadioFailure = "the device is gone";
  EXPECT_EQ(ShownHint(state), nullptr);
  state.Watch = {};
  state.HintHome = 44;
  EXPECT_EQ(ShownHint(state), nullptr);
  state.HintHome = 0;
  state.Radio.ChannelsLoading = true;
  EXPECT_EQ(ShownHint(state), nullptr);
}

TEST(HintLine, ATextThatIsMissingLeavesNoDash) {
  Hint hint = WithHint().Hints.front();
  hint.Artist.clear();
  hint.Station.clear();
  EXPECT_EQ(recorder::HintText(hint), "Now on 47: Winter Apples");
}

TEST(HintLine, TheTipOfTheTrayHasItInPlaceOfTheSong) {
  State state = WithHint();
  state.Announcement.TrayTip = {.Phase = Phase::Idle, .Artist = "Moonlighters", .Song = "Slow Tide"};
  const MainWindow window = ShowState(state, {});
  EXPECT_EQ(window.TrayTip, "Kestrune: \nNow on 47 Campfire Folk: Abigail Wren - Winter Apples");
  EXPECT_EQ(window.HintChannel, 47);
  EXPECT_EQ(window.HintStation, "47 Campfire Folk");
  state.Announcement.TrayTip.reset();
  EXPECT_EQ(ShowState(state, {}).TrayTip, "Kestrune\nNow on 47 Campfire Folk: Abigail Wren - Winter Apples");
  state.Hints.clear();
  EXPECT_EQ(ShowState(state, {}).TrayTip, "Kestrune");
}

TEST(HintLine, TheLineSaysItAndTunesToIt) {
  test::UnitRig rig;
  rig.Set("Hints", "True");
  rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
  rig.StartIdle();
  rig.Rules->TuneToHint();
  rig.Run(std::chrono::seconds(20));
  EXPECT_EQ(rig.Radio.TunedChannel, 44) << "there is none yet";
  EXPECT_EQ(rig.Rules->Explanation(), "Not recording.");
  rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(std::chrono::seconds(20));
  EXPECT_EQ(rig.Rules->Explanation(), "Now on 47 Station 47: Abigail Wren - Winter Apples");
  rig.Rules->TuneToHint();
  rig.Run(std::chrono::seconds(3));
  EXPECT_EQ(rig.Radio.TunedChannel, 47);
  EXPECT_EQ(rig.Rules->Explanation(), "Not recording.");
}

}  // namespace
}  // namespace kestrune::presenters
