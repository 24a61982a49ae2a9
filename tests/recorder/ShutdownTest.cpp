#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;

class ShutdownTest : public ::testing::Test {
 protected:
  UnitRig rig;
};

TEST_F(ShutdownTest, TheSongInHandIsLostWithoutALineWithWholeSongs) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  ASSERT_EQ(rig.Recordings().size(), 1U);
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), IsEmpty());
  EXPECT_FALSE(rig.Logged("ecorded: "));
  EXPECT_TRUE(rig.Logged("Shutting Down"));
}

TEST_F(ShutdownTest, TheSongInHandIsLostWithoutALineInPlainModeToo) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), IsEmpty());
  EXPECT_FALSE(rig.Logged("ecorded: "));
}

TEST_F(ShutdownTest, FinishedSongsStay) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  rig.NextSong("Lanterns", "North Pier");
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ::testing::ElementsAre("Rock/44 - Harbour/Moonlighters - Slow Tide.wav"));
}

TEST_F(ShutdownTest, LeftoversGoFromBothSlotsFolders) {
  rig.Set("FilenameFormat", "%s\\%a");
  rig.StartIdle();
  rig.NextSong("A", "One");
  rig.NextSong("B", "Two");
  rig.Files.Put("/music/One/Capture0.mp3", "old");
  rig.Files.Put("/music/One/Capture1.ogg", "old");
  rig.Files.Put("/music/Two/Capture0.wav", "old");
  rig.Files.Put("/music/Two/Capture1.vox", "old");
  rig.Files.Put("/music/Two/Capture2.vox", "no leftover");
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ::testing::ElementsAre("Two/Capture2.vox"));
}

TEST_F(ShutdownTest, TheRadioIsMutedAndPoweredOff) {
  rig.StartIdle();
  rig.CloseAndWait();
  EXPECT_TRUE(rig.Radio.Muted || !rig.Radio.PoweredOn);
  EXPECT_FALSE(rig.Radio.PoweredOn);
  EXPECT_FALSE(rig.Radio.IsOpen());
}

TEST_F(ShutdownTest, TheSoundIsCutBeforeThePower) {
  rig.StartIdle();
  rig.Radio.Commands.clear();
  rig.CloseAndWait();
  const auto place = [this](std::string_view start) {
    return std::find_if(rig.Radio.Commands.begin(), rig.Radio.Commands.end(),
                        [start](const std::string& command) { return command.starts_with(start); });
  };
  const auto mute = place("5AA500021301");
  ASSERT_NE(mute, rig.Radio.Commands.end());
  EXPECT_LT(mute, place("5AA5000201"));
}

TEST_F(ShutdownTest, RadioOnAtExitLeavesItPoweredAndUnmuted) {
  rig.Set("RadioOnAtExit", "True");
  rig.StartIdle();
  rig.CloseAndWait();
  EXPECT_TRUE(rig.Radio.PoweredOn);
  EXPECT_FALSE(rig.Radio.Muted);
  EXPECT_FALSE(rig.Radio.IsOpen());
}

TEST_F(ShutdownTest, TwoSecondsLieBetweenThePasses) {
  rig.Set("RadioOnAtExit", "True");
  rig.StartIdle();
  rig->Close();
  rig.Run(1900ms);
  EXPECT_FALSE(rig.Closed);
  rig.Run(200ms);
  EXPECT_TRUE(rig.Closed);
}

TEST_F(ShutdownTest, ASecondRequestMeanwhileChangesNothing) {
  rig.StartIdle();
  rig->Close();
  rig->Close();
  rig.Run(1min);
  EXPECT_TRUE(rig.Closed);
  const std::vector<std::string> texts = rig.LogTexts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Shutting Down"), 1);
}

TEST_F(ShutdownTest, ChannelSwitchesAndPortAreSaved) {
  rig.StartIdle();
  rig->SetChannelNumber(52);
  EXPECT_TRUE(rig->Parts().Settings.Set("SievanceGrab", "1").Done());
  EXPECT_EQ(rig.Setting("SievanceGrab"), "(absent)") << "the list switches are stored at the exit";
  rig.CloseAndWait();
  EXPECT_EQ(rig.Setting("Channel"), "52");
  EXPECT_EQ(rig.Setting("SievanceGrab"), "1");
  EXPECT_EQ(rig.Setting("SievanceKill"), "0");
  EXPECT_EQ(rig.Setting("PortNum"), "1");
}

TEST_F(ShutdownTest, WithoutAWindowNoPositionIsSavedSoThatAFirstRunStaysOne) {
  rig.StartIdle();
  rig.CloseAndWait();
  EXPECT_EQ(rig.Setting("MainTop"), "(absent)");
}

TEST_F(ShutdownTest, TheChannelListIsSaved) {
  rig.StartIdle();
  rig.Files.Put("/home/user/Application Data/Kestrune/ChannelList.txt", "");
  rig.CloseAndWait();
  EXPECT_THAT(rig.Files.Text("/home/user/Application Data/Kestrune/ChannelList.txt"),
              ::testing::HasSubstr("44\tHarbour\t\t\tRock\n"));
}

TEST_F(ShutdownTest, RepliesBetweenThePassesChangeNothing) {
  rig.StartIdle();
  rig->Close();
  rig.Radio.Play(44, "Late", "Song");
  rig.Run(1min);
  EXPECT_EQ(rig->State().Radio.CurrentArtist, "Moonlighters");
}

TEST_F(ShutdownTest, ACloseWithinTheChannelLoadIsClean) {
  rig.Start();
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), IsEmpty());
}

TEST_F(ShutdownTest, ALineThatKeepsSendingDoesNotHoldUpTheEnd) {
  rig.Set("RadioOnAtExit", "True");
  rig.StartIdle();
  rig.Radio.Chatters = true;
  rig.CloseAndWait();
  EXPECT_FALSE(rig.Radio.IsOpen());
}

TEST_F(ShutdownTest, AChannelThatWasChosenAMomentBeforeIsNotTunedAnyMore) {
  rig.StartIdle();
  const int row = rig->Parts().Channels.Grid().SelectedRow() == 1 ? 2 : 1;
  rig.Rules->ChannelsWindow().ClickRow(row);
  ASSERT_TRUE(rig.Rules->ChannelsWindow().tmrChannelChange().Enabled());
  const int tuned = rig.Radio.TunedChannel;
  rig.CloseAndWait();
  EXPECT_TRUE(rig.Rules->ChannelsWindow().QuitFlag());
  EXPECT_FALSE(rig.Rules->ChannelsWindow().tmrChannelChange().Enabled());
  EXPECT_EQ(rig.Radio.TunedChannel, tuned);
}

}  // namespace
}  // namespace kestrune::test
