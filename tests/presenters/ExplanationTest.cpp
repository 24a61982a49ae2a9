#include <string>

#include <gtest/gtest.h>

#include "presenters/Explanation.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

class ExplanationTest : public ::testing::Test {
 protected:
  void Lists(const std::string& text) {
    rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
    rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", text);
  }
  UnitRig rig;
};

TEST_F(ExplanationTest, FollowsAWholeSongFromTheLoadToTheStop) {
  std::string atStart;
  rig.Radio.WhenCommanded = [&] {
    if (rig->State().Run.FormLoading) atStart = rig.Rules->Explanation();
  };
  rig.Start();
  EXPECT_EQ(atStart, "Starting...");
  EXPECT_EQ(rig.Rules->Explanation(), "The radio's channels are being loaded.");
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "Recording begins once the channels are loaded.");
  rig->cmdStop();
  rig.FinishWalk();
  rig.Run(5s);
  EXPECT_EQ(rig.Rules->Explanation(), "Not recording.");
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "This song is kept from its beginning.");
  rig->cmdStop();
  EXPECT_EQ(rig.Rules->Explanation(), "Not recording.");
}

TEST_F(ExplanationTest, AWaitForTheNextSongSaysWhy) {
  rig.StartIdle();
  rig->SetChannelNumber(45);
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "Whole songs only: it begins with the next song.");
}

TEST_F(ExplanationTest, ASongBegunInItsMiddleWillBeNamedIncomplete) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->SetChannelNumber(45);
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "Begun within the song: its name will say (Incomplete).");
}

TEST_F(ExplanationTest, ASongThatTheListsWillDeleteSaysSo) {
  Lists("0Nobody\n2Moonlighters\n");
  rig.Set("SievanceKill", "1");
  rig.StartIdle();
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "In the Kill list: it will be deleted at its end.");
  rig.Rules->Options().chkSievanceKill_Click(false);
  rig.Rules->Options().chkSievanceGrab_Click(true);
  EXPECT_EQ(rig.Rules->Explanation(), "Not in the Grab list: it will be deleted at its end.");
}

TEST_F(ExplanationTest, ASongThatTheUserKeepsSaysSoWhateverTheListsSay) {
  Lists("2Moonlighters\n");
  rig.Set("SievanceKill", "1");
  rig.StartIdle();
  rig->Wishes().KeepCurrent();
  rig.Run(1s);
  EXPECT_EQ(rig.Rules->Explanation(), "This song is kept at its end, because you asked.");
  rig->cmdRecord();
  EXPECT_EQ(rig.Rules->Explanation(), "This song is kept at its end, because you asked.");
  rig.NextSong("New", "Song");
  rig.Run(5s);
  EXPECT_EQ(rig.Rules->Explanation(), "This song is kept from its beginning.");
}

TEST_F(ExplanationTest, WhileAHintIsFollowedItSaysToWhichChannelTheProgramGoesBack) {
  recorder::State state;
  const auto line = [&] { return presenters::ExplainRecording(state, rig->Parts().Restrictions); };
  state.Hints = {recorder::Hint{.Number = 2,
                                .Began = {},
                                .Channel = 47,
                                .Station = "Campfire Folk",
                                .Artist = "Abigail Wren",
                                .Song = "Winter Apples",
                                .Since = {}}};
  state.HintHome = 8;
  EXPECT_EQ(line(), "Following a hint: back to channel 8 after this song.");
  state.Watch.RadioFailure = "the device is gone";
  EXPECT_EQ(line(), state.Watch.Warning());
  state.Watch = {};
  state.Radio.ChannelsLoading = true;
  EXPECT_EQ(line(), "The radio's channels are being loaded.");
  state.Radio.ChannelsLoading = false;
  state.HintHome = 0;
  EXPECT_EQ(line(), "Now on 47 Campfire Folk: Abigail Wren - Winter Apples");
  state.Hints.clear();
  EXPECT_EQ(line(), "Not recording.");
}

}  // namespace
}  // namespace kestrune::test
