#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/PresetSetup.h"
#include "radio/channels/ChannelsFixture.h"

namespace kestrune::test {
namespace {

using platform::MessageAnswer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PresetSetupTest : public ChannelsFixture {
 protected:
  PresetSetupTest() {
    setup.MainWindowToFront = [this] { ++toFront; };
  }
  [[nodiscard]] Strings Texts() const {
    Strings texts;
    for (const auto& line : setup.Lines()) texts.push_back(line.Text);
    return texts;
  }

  presenters::Presets presets{channels, sounds, Keys(), [] { return false; }};
  presenters::PresetSetup setup{channels.Grid(), presets, dialogs};
  int toFront = 0;
};

TEST_F(PresetSetupTest, TheListsHoldTheChannelsInTheGridsPresentOrder) {
  ThreeChannels();
  channels.Grid().Sort(radio::ChannelGrid::Artist, radio::ChannelGrid::Order::Ascending);
  setup.Load();
  EXPECT_THAT(Texts(), ElementsAre("No Preset", "45 - Lucy", "44 - Fred", "46 - Top Tracks"));
  EXPECT_EQ(setup.Lines()[1].Channel, 45);
}

TEST_F(PresetSetupTest, BeforeAnyChannelIsKnownEveryListHoldsNoPresetAlone) {
  stored["Preset1"] = "44 - Fred";
  setup.Load();
  EXPECT_THAT(Texts(), ElementsAre("No Preset"));
  for (int i = 0; i < 12; ++i) EXPECT_EQ(setup.Selected(i), 0);
}

TEST_F(PresetSetupTest, EachListShowsItsStoredChannelWhateverTheStoredNameIs) {
  for (std::uint8_t channel = 1; channel <= 13; ++channel) {
    if (channel != 2) Plays(channel, "S" + std::to_string(channel));
  }
  // List i: the channel in row 12 - i.
  for (int i = 0; i < 12; ++i) {
    stored["Preset" + std::to_string(i + 1)] =
        std::to_string(channels.Grid().NumberAt(12 - i)) + " - of long ago";
  }
  setup.Load();
  for (int i = 0; i < 12; ++i) EXPECT_EQ(setup.Selected(i), 12 - i);
}

TEST_F(PresetSetupTest, AStoredTextThatNamesNoKnownChannelShowsAsNoPreset) {
  ThreeChannels();
  stored = {{"Preset1", "99 - Gone"}, {"Preset2", "Lucy"}, {"Preset3", ""}, {"Preset4", "44.5"}};
  setup.Load();
  for (int i = 0; i < 12; ++i) EXPECT_EQ(setup.Selected(i), 0) << i;
}

TEST_F(PresetSetupTest, SavingWritesTheTwelveKeysFillsTheButtonsAndLeadsToTheMainWindow) {
  ThreeChannels();
  stored["Preset3"] = "99 - Gone";
  setup.Load();
  setup.cboPreset_Click(0, 2);
  setup.cboPreset_Click(11, 3);
  EXPECT_EQ(stored.size(), 1U);
  setup.cmdSave();
  EXPECT_EQ(stored.size(), 12U);
  EXPECT_EQ(stored["Preset1"], "45 - Lucy");
  EXPECT_EQ(stored["Preset3"], "");
  EXPECT_EQ(stored["Preset12"], "46 - Top Tracks");
  EXPECT_EQ(presets.Buttons()[0].Caption, "45 - Lucy");
  EXPECT_EQ(presets.Buttons()[11].Caption, "46 - Top Tracks");
  EXPECT_EQ(toFront, 1);
}

TEST_F(PresetSetupTest, CancellingWritesNothingAndLeadsToTheMainWindow) {
  ThreeChannels();
  setup.Load();
  setup.cboPreset_Click(0, 2);
  setup.cmdCancel();
  EXPECT_THAT(stored, IsEmpty());
  EXPECT_EQ(toFront, 1);
}

TEST_F(PresetSetupTest, AChannelThatComesWhileTheWindowIsOpenIsNotInItsLists) {
  ThreeChannels();
  setup.Load();
  setup.cboPreset_Click(0, 1);
  Plays(47, "Late");
  channels.Grid().Sort(0, radio::ChannelGrid::Order::Descending);
  setup.cboPreset_Click(1, 4);
  setup.cmdSave();
  EXPECT_EQ(stored["Preset1"], "44 - Fred");
  EXPECT_EQ(stored["Preset2"], "");
}

TEST_F(PresetSetupTest, TheCloseBoxAsksNothingWhateverWasChosenAndDoesNotSave) {
  ThreeChannels();
  setup.Load();
  setup.cboPreset_Click(0, 2);
  EXPECT_TRUE(setup.Close());
  EXPECT_THAT(dialogs.Shown, IsEmpty());
  EXPECT_THAT(stored, IsEmpty());
  EXPECT_EQ(toFront, 0);
}

TEST_F(PresetSetupTest, TheQuestionOfAChangedWindowSavesLeavesOrStays) {
  struct Case {
    MessageAnswer Answer;
    bool Closes;
    std::size_t Saved;
  };
  for (const Case& each : {Case{MessageAnswer::Yes, true, 12},
                           {MessageAnswer::No, true, 0},
                           {MessageAnswer::Cancel, false, 0}}) {
    stored.clear();
    dialogs.Shown.clear();
    setup.Load();
    EXPECT_FALSE(setup.Changed);
    setup.Changed = true;
    dialogs.Answer = each.Answer;
    EXPECT_EQ(setup.Close(), each.Closes);
    EXPECT_EQ(stored.size(), each.Saved);
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Title, "Save Preset Changes");
    EXPECT_EQ(dialogs.Shown[0].Text, "You have made changes, do you want to save your changes first?");
    EXPECT_EQ(dialogs.Shown[0].Icon, platform::MessageIcon::Question);
    EXPECT_EQ(dialogs.Shown[0].Buttons, platform::MessageButtons::YesNoCancel);
  }
}

}  // namespace
}  // namespace kestrune::test
