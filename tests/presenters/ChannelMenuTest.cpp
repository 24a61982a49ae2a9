#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ChannelMenuRig.h"
#include "radio/channels/ChannelsFixture.h"

namespace kestrune::test {
namespace {

using presenters::ChannelMenuItems;
using presenters::GrabKill;
using ::testing::ElementsAre;

class ChannelMenuTest : public ChannelsFixture {
 protected:
  ChannelMenuTest() {
    tmrUpdate->SetEnabled(true);
    ThreeChannels();
    Tune(44);
    stored["Preset2"] = "45 - An Old Name";
    rig.Presets.LoadPresets();
  }

  std::unique_ptr<base::Timer> tmrUpdate = loop.MakeTimer(Milliseconds(3600000), [] {});
  presenters::ChannelChooser chooser{channels, run, sounds, loop, *tmrUpdate, [this] { return recording; }};
  ChannelMenuRig rig{channels, sounds, Keys(), chooser, [this] { return recording; }};
  presenters::ChannelMenu& menu = rig.Menu;
};

TEST_F(ChannelMenuTest, NamesTheChannelAndWhatItPlays) {
  const ChannelMenuItems items = menu.ItemsOf(2);
  EXPECT_EQ(items.Channel, 45);
  EXPECT_EQ(items.Name, "45 - Lucy");
  EXPECT_EQ(items.Artist, "Abba");
  EXPECT_EQ(items.Song, "Waterloo");
  EXPECT_TRUE(items.MayTune);
  EXPECT_FALSE(items.Favourite);
  for (const int row : {-1, 0, 4}) EXPECT_EQ(menu.ItemsOf(row).Channel, 0) << row;
}

TEST_F(ChannelMenuTest, ListsThePresetsAndWhichHasTheChannel) {
  const auto presets = menu.ItemsOf(2).PresetButtons;
  EXPECT_EQ(presets[0].Text, "(empty)");
  EXPECT_FALSE(presets[0].Chosen);
  EXPECT_EQ(presets[1].Text, "45 - An Old Name");
  EXPECT_TRUE(presets[1].Chosen);
  EXPECT_FALSE(menu.ItemsOf(1).PresetButtons[1].Chosen);
}

TEST_F(ChannelMenuTest, TuneIsAClickOnTheRowWhereverItIsByThen) {
  channels.Grid().Sort(radio::ChannelGrid::Number, radio::ChannelGrid::Order::Descending);
  menu.Tune(45);
  EXPECT_EQ(chooser.PendingChannel(), 45);
  loop.Run(Milliseconds(300));
  EXPECT_EQ(channels.ChannelNumber(), 45);
}

TEST_F(ChannelMenuTest, WhileRecordingTuneIsNotOfferedAndRefusedByASound) {
  recording = true;
  EXPECT_FALSE(menu.ItemsOf(2).MayTune);
  menu.Tune(45);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  loop.Run(Milliseconds(1000));
  EXPECT_EQ(channels.ChannelNumber(), 44);
}

TEST_F(ChannelMenuTest, AChannelThatIsGoneIsTolerated) {
  channels.Grid().RemoveRow(2);
  menu.Tune(45);
  menu.StorePreset(0, 45);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  EXPECT_EQ(stored.count("Preset1"), 0U);
}

TEST_F(ChannelMenuTest, APresetIsStoredAsItsWindowStoresItAndIsOnItsButtonAtOnce) {
  menu.StorePreset(11, 46);
  EXPECT_EQ(stored["Preset12"], "46 - Top Tracks");
  EXPECT_EQ(rig.Presets.Buttons()[11].Caption, "46 - Top Tracks");
  menu.StorePreset(1, 45);
  EXPECT_EQ(stored["Preset2"], "45 - Lucy");
}

TEST_F(ChannelMenuTest, AFavouriteIsOneUntilItIsChosenAgain) {
  menu.ToggleFavourite(45);
  EXPECT_TRUE(menu.ItemsOf(2).Favourite);
  EXPECT_FALSE(menu.ItemsOf(1).Favourite);
  menu.ToggleFavourite(45);
  EXPECT_FALSE(menu.ItemsOf(2).Favourite);
}

TEST_F(ChannelMenuTest, ATextGoesToItsListWithoutAQuestion) {
  int questions = 0;
  rig.Lists.SetWindow([&] { ++questions; });
  menu.AddToList(GrabKill::Field::Artist, false, "Salt && Sand");
  menu.AddToList(GrabKill::Field::Song, false, "Waterloo");
  menu.AddToList(GrabKill::Field::Artist, true, "Yes");
  menu.AddToList(GrabKill::Field::Song, true, "Low\nWater ");
  menu.AddToList(GrabKill::Field::Song, true, "  ");
  EXPECT_EQ(rig.Listed(), "0Salt && Sand\n1Waterloo\n2Yes\n3Low Water\n");
  EXPECT_EQ(questions, 0);
}

}  // namespace
}  // namespace kestrune::test
