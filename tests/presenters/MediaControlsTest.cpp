#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/MediaControls.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MediaCommand;
using ::testing::ElementsAre;

class FakePlayer final : public platform::MediaPlayer {
 public:
  void Show(const platform::MediaState& state) override { Shown = state; }
  void Press(MediaCommand command) { Ask(command); }
  platform::MediaState Shown;
};

/// A unit on channel 45, and presets for 44, 45 and 46 with gaps between them.
class MediaControlsTest : public ::testing::Test {
 protected:
  MediaControlsTest() {
    for (const int channel : {44, 45, 46})
      rig.Radio.Channels[channel] = {"Station " + std::to_string(channel), "Folk", "Wren", "Apples"};
    rig.Set("Preset2", "44 - a");
    rig.Set("Preset5", "45 - b");
    rig.Set("Preset12", "46 - c");
    rig.Set("LastChannel", "45");
    rig.StartIdle();
    rig->Wishes().Tune(45);
    rig.Run(5s);
    controls.emplace(*rig, rig.Rules->PresetButtons(), rig.Loop, player);
    rig.Run(1s);
  }
  void Press(MediaCommand command) {
    player.Press(command);
    rig.Run(2s);
  }

  UnitRig rig;
  FakePlayer player;
  std::optional<presenters::MediaControls> controls;
};

TEST_F(MediaControlsTest, TheTunedChannelIsShown) {
  EXPECT_EQ(player.Shown, (platform::MediaState{.Title = "Apples",
                                                .Artist = "Wren",
                                                .Album = "Station 45",
                                                .Sounding = true,
                                                .CanSwitch = true,
                                                .CanStep = true}));
  rig.NextSong("Abigail Wren", "Winter");
  EXPECT_EQ(player.Shown.Artist, "Abigail Wren");
  EXPECT_EQ(player.Shown.Title, "Winter");
}

TEST_F(MediaControlsTest, PlayAndPauseSwitchTheSound) {
  Press(MediaCommand::Pause);
  EXPECT_TRUE(rig.Radio.Muted);
  EXPECT_FALSE(player.Shown.Sounding);
  Press(MediaCommand::Stop);
  EXPECT_TRUE(rig.Radio.Muted);
  Press(MediaCommand::Play);
  EXPECT_FALSE(rig.Radio.Muted);
  EXPECT_TRUE(player.Shown.Sounding);
  Press(MediaCommand::PlayPause);
  EXPECT_TRUE(rig.Radio.Muted);
  Press(MediaCommand::PlayPause);
  EXPECT_FALSE(rig.Radio.Muted);
}

TEST_F(MediaControlsTest, NextAndPreviousGoRoundThePresets) {
  Press(MediaCommand::Next);
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
  Press(MediaCommand::Next);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  Press(MediaCommand::Previous);
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
  Press(MediaCommand::Previous);
  EXPECT_EQ(rig.Radio.TunedChannel, 45);
}

TEST_F(MediaControlsTest, FromAChannelWithoutAPresetTheyBeginAtTheEnds) {
  rig.Radio.Channels[7] = {"Seven", "Folk", "", ""};
  rig->Wishes().Tune(7);
  rig.Run(2s);
  Press(MediaCommand::Next);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  rig->Wishes().Tune(7);
  rig.Run(2s);
  Press(MediaCommand::Previous);
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
}

TEST_F(MediaControlsTest, WhileARecordingKeepsTheChannelNothingIsSwitched) {
  rig->Wishes().Record();
  rig.Run(1s);
  rig.NextSong("a", "b");
  ASSERT_TRUE(rig->State().Recording.GetRecordingStatus());
  EXPECT_FALSE(player.Shown.CanSwitch);
  EXPECT_FALSE(player.Shown.CanStep);
  EXPECT_TRUE(player.Shown.Sounding);
  rig.Sounds.Played.clear();
  Press(MediaCommand::Pause);
  Press(MediaCommand::Next);
  EXPECT_THAT(rig.Sounds.Played, ElementsAre("SystemAsterisk", "SystemAsterisk"));
  EXPECT_FALSE(rig.Radio.Muted);
  EXPECT_EQ(rig.Radio.TunedChannel, 45);
}

TEST_F(MediaControlsTest, WithoutPresetsNextLeadsNowhere) {
  for (int i = 1; i <= presenters::Presets::kCount; ++i) rig.Set("Preset" + std::to_string(i), "");
  rig.Rules->PresetButtons().LoadPresets();
  rig.Run(1s);
  EXPECT_FALSE(player.Shown.CanStep);
  bool shown = false;
  rig.Rules->PresetButtons().ShowPresets = [&shown] { shown = true; };
  Press(MediaCommand::Next);
  Press(MediaCommand::Previous);
  EXPECT_FALSE(shown);
  EXPECT_EQ(rig.Radio.TunedChannel, 45);
}

TEST_F(MediaControlsTest, ARadioThatIsGoneIsSilent) {
  rig.Radio.Unplug();
  rig.Run(60s);
  EXPECT_FALSE(player.Shown.Sounding);
  EXPECT_FALSE(player.Shown.CanSwitch);
}

TEST(MediaControlsAtStart, WhileTheProgramStartsNothingSoundsOrCanBeSwitched) {
  UnitRig rig;
  rig.Radio.Channels[44] = {"Station 44", "Folk", "Wren", "Apples"};
  FakePlayer player;
  const presenters::MediaControls controls(*rig, rig.Rules->PresetButtons(), rig.Loop, player);
  bool early = false;
  rig.Radio.WhenCommanded = [&] {
    early = early || (rig->State().Run.FormLoading && (player.Shown.Sounding || player.Shown.CanSwitch));
  };
  rig.StartIdle();
  EXPECT_FALSE(early);
  EXPECT_TRUE(player.Shown.Sounding);
}

TEST_F(MediaControlsTest, QuitClosesTheProgramAndRaiseShowsIt) {
  int raised = 0;
  controls->Raise = [&raised] { ++raised; };
  Press(MediaCommand::Raise);
  EXPECT_EQ(raised, 1);
  player.Press(MediaCommand::Quit);
  EXPECT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  controls.reset();
  player.Press(MediaCommand::Play);
}

}  // namespace
}  // namespace kestrune::test
