#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/Presets.h"
#include "radio/channels/ChannelsFixture.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PresetsTest : public ChannelsFixture {
 protected:
  PresetsTest() {
    presets.ShowPresets = [this] { ++shown; };
    ThreeChannels();
    Tune(44);
  }

  presenters::Presets presets{channels, sounds, Keys(), [this] { return recording; }};
  int shown = 0;
};

TEST_F(PresetsTest, TheButtonsShowTheStoredTextsAsTheyStand) {
  for (int n = 1; n <= 12; ++n) {
    stored["Preset" + std::to_string(n)] = std::to_string(n) + " - R&B <b>" + std::to_string(n);
  }
  presets.LoadPresets();
  for (int i = 0; i < 12; ++i) {
    const std::string n = std::to_string(i + 1);
    const presenters::PresetButton& button = presets.Buttons().at(static_cast<std::size_t>(i));
    EXPECT_EQ(button.Caption, fmt::format("{0} - R&B <b>{0}", n));
    EXPECT_EQ(button.Tip, fmt::format("Preset {0} (CTRL-F{0})", n));
    EXPECT_EQ(presets.ChannelOf(i), i + 1);
  }
}

TEST_F(PresetsTest, AMissingKeyEmptiesItsButton) {
  stored["Preset5"] = "45 - Lucy";
  presets.LoadPresets();
  stored.clear();
  presets.LoadPresets();
  EXPECT_EQ(presets.Buttons()[4].Caption, "");
  EXPECT_EQ(presets.ChannelOf(4), 0);
}

TEST_F(PresetsTest, APressTunesTheNumberThatTheTextBeginsWith) {
  stored["Preset5"] = "45 - A name of long ago";
  presets.LoadPresets();
  presets.cmdPresetStation_Click(4);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 2D 00 00 01 01 19"}));
}

TEST_F(PresetsTest, APressOfAnEmptyPresetShowsTheSetupEvenDuringRecording) {
  presets.LoadPresets();
  presets.cmdPresetStation_Click(4);
  EXPECT_EQ(shown, 1);
  recording = true;
  presets.cmdPresetStation_Click(4);
  EXPECT_EQ(shown, 2);
  EXPECT_THAT(sounds.Played, IsEmpty());
}

TEST_F(PresetsTest, APressOfAFilledPresetDuringRecordingIsASoundAndNoChange) {
  stored["Preset5"] = "45 - Lucy";
  presets.LoadPresets();
  recording = true;
  presets.cmdPresetStation_Click(4);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_TRUE(Wrote({}));
  EXPECT_EQ(shown, 0);
}

TEST_F(PresetsTest, APresetOnTheChannelAlreadyTunedSendsNoFrame) {
  stored["Preset1"] = "44 - Fred";
  presets.LoadPresets();
  presets.cmdPresetStation_Click(0);
  EXPECT_TRUE(Wrote({}));
}

TEST_F(PresetsTest, APresetForAChannelThatTheTableDoesNotHaveStillTunesTheRadio) {
  stored["Preset1"] = "99 - Gone";
  presets.LoadPresets();
  presets.cmdPresetStation_Click(0);
  EXPECT_EQ(channels.ChannelNumber(), 99);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 63 00 00 01 01 19"}));
}

TEST_F(PresetsTest, ATextWithoutANumberTunesChannelZeroWhichTheRadioLayerRejects) {
  for (const char* text : {"Fred", "99999 - too far", "-"}) {
    Tune(44);
    stored["Preset1"] = text;
    presets.LoadPresets();
    presets.cmdPresetStation_Click(0);
    EXPECT_EQ(channels.ChannelNumber(), 0) << text;
    EXPECT_TRUE(Wrote({})) << text;
  }
}

TEST_F(PresetsTest, TheTwelveTipsAreThereBeforeAnythingIsLoaded) {
  EXPECT_EQ(presets.Buttons()[0].Tip, "Preset 1 (CTRL-F1)");
  EXPECT_EQ(presets.Buttons()[11].Tip, "Preset 12 (CTRL-F12)");
}

}  // namespace
}  // namespace kestrune::test
