#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using recorder::StartOutcome;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

/// Keeps the calls, so that a test sees which window had its turn when.
class CalledWindows final : public recorder::Windows {
 public:
  void AddTrayIcon() override { Calls.emplace_back("tray icon"); }
  void RemoveTrayIcon() override { Calls.emplace_back("no tray icon"); }
  void PlaceMainWindow() override { Calls.emplace_back("place"); }
  void HideAndDisableMainWindow() override { Calls.emplace_back("hide"); }
  void ShowPleaseWaitAndSplash() override { Calls.emplace_back("please wait"); }
  void ShowSearch() override { Calls.emplace_back("search"); }
  void ClosePleaseWait() override { Calls.emplace_back("no please wait"); }
  void LoadChannelsWindow() override { Calls.emplace_back("channels window"); }
  void ShowFirstConfiguration() override { Calls.emplace_back("first configuration"); }
  void ShowMainWindowDisabled() override { ++ShownDisabled; }
  void EnableMainWindow() override { Calls.emplace_back("enable"); }
  void ShowRememberedWindows() override { Calls.emplace_back("remembered windows"); }
  void ShowWaitCursor(bool wait) override { Calls.emplace_back(wait ? "wait cursor" : "normal cursor"); }
  std::vector<std::string> Calls;
  int ShownDisabled = 0;
};

class StartupTest : public ::testing::Test {
 protected:
  CalledWindows windows;
  UnitRig rig;

  [[nodiscard]] std::size_t Sent(std::string_view hex) {
    return static_cast<std::size_t>(std::count(rig.Radio.Commands.begin(), rig.Radio.Commands.end(), hex));
  }
};

constexpr std::string_view kPowerOn =
    "5AA50005001010"
    "1001EDED";

TEST_F(StartupTest, ARadioOnTheStoredPortIsFoundPoweredIdentifiedAndTuned) {
  rig.Set("Channel", "51");
  rig.Start();
  EXPECT_EQ(rig->State().Settings.PortNum, 1);
  EXPECT_EQ(rig->State().Radio.RadioID, "ABCD1234");
  EXPECT_EQ(rig.Radio.TunedChannel, 51);
  EXPECT_THAT(rig.LogTexts(),
              ElementsAre("Kestrune 3.0.29", "Using input device: " + rig->Snapshot().InputDeviceName,
                          "Radio found on port 1", "Radio ID ABCD1234", "Satellite 1 signal quality: 80%",
                          "Satellite 2 signal quality: 99%", "Terrestrial signal quality: 100%",
                          "Using file format: SetFormatWAV 1000 1 16"));
}

TEST_F(StartupTest, TheWindowsHaveTheirTurnsInOrder) {
  rig.Set("CheckUpdatesAtStartup", "True");
  rig.Environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "https://updates.invalid/NewVersion.txt";
  rig.MeetWindows(windows);
  rig.Start();
  rig.Run(10ms);
  EXPECT_THAT(windows.Calls, ElementsAre("tray icon", "place", "hide", "please wait", "search", "search",
                                         "no please wait", "channels window", "first configuration", "enable",
                                         "remembered windows", "wait cursor", "normal cursor"));
}

TEST_F(StartupTest, ThePresetButtonsAreFilledFromTheUnitsSettings) {
  rig.Set("Preset1", "51 - Fred");
  rig.Set("Preset12", "44 - Lucy");
  rig.Start();
  EXPECT_EQ(rig.Rules->PresetButtons().Buttons()[0].Caption, "51 - Fred");
  EXPECT_EQ(rig.Rules->PresetButtons().Buttons()[1].Caption, "");
  EXPECT_EQ(rig.Rules->PresetButtons().Buttons()[11].Caption, "44 - Lucy");
  rig.Rules->PresetButtons().Keys().Write("Preset2", "7 - Saved");
  EXPECT_EQ(rig.Setting("Preset2"), "7 - Saved");
}

TEST_F(StartupTest, TheChannelsWindowTakesNoInputBeforeTheFirstChannelHasCome) {
  rig.Start();
  EXPECT_FALSE(rig->Parts().Channels.Grid().Enabled);
  EXPECT_EQ(rig->Parts().Channels.Grid().Titles()[1], "Station Name");
  rig.FinishWalk();
  EXPECT_TRUE(rig->Parts().Channels.Grid().Enabled);
}

TEST_F(StartupTest, TheNowWindowShowsWhatTheMainWindowShows) {
  rig.StartIdle();
  rig.NextSong("Queen", "Innuendo");
  rig.Rules->NowWindow().Load();
  EXPECT_EQ(rig.Rules->NowWindow().Lines().lblArtist, "Queen");
  EXPECT_EQ(rig.Rules->NowWindow().Lines().lblSong, "Innuendo");
  EXPECT_EQ(rig.Rules->NowWindow().Lines().lblChannel, rig.Window().lblChannel.Caption);
  EXPECT_EQ(rig.Rules->NowWindow().Lines().Status, "Not recording.");
  EXPECT_FALSE(rig.Rules->NowWindow().Lines().Locked);
  rig.Unit->cmdRecord();
  rig.Run(3s);
  EXPECT_THAT(rig.Rules->NowWindow().Lines().Status,
              ::testing::MatchesRegex("Recording 00:00:0[0-9] - This song is kept .*"));
  EXPECT_TRUE(rig.Rules->NowWindow().Lines().Locked);
}

TEST_F(StartupTest, TheIdentifierIsKnownOnceTheRadioIsFound) {
  rig.Start();
  rig.Radio.Commands.clear();
  EXPECT_EQ(rig->pcrRadioID(), "ABCD1234");
  EXPECT_THAT(rig.Radio.Commands, IsEmpty());
}

TEST_F(StartupTest, TheConfigurationIsShownOnAFirstRunAlone) {
  rig.Set("MainTop", "120");
  rig.MeetWindows(windows);
  rig.Start();
  EXPECT_THAT(windows.Calls, Not(Contains("first configuration")));
}

TEST_F(StartupTest, TheAgreementIsAskedForOnceBeforeTheRadioIsSought) {
  rig.Set("LegalAgreement", "False");
  rig.Start();
  EXPECT_EQ(rig.Dialogs.AgreementAsked, 1);
  EXPECT_EQ(rig.Setting("LegalAgreement"), "True");
}

TEST_F(StartupTest, ARefusedAgreementEndsTheProgramAtOnce) {
  rig.Set("LegalAgreement", "False");
  rig.Dialogs.Agrees = false;
  rig.Start(StartOutcome::NotAgreed);
  EXPECT_THAT(rig.Radio.Commands, IsEmpty()) << "the radio has not been spoken to";
  EXPECT_EQ(rig.Setting("LegalAgreement"), "False");
}

TEST_F(StartupTest, TheInputDeviceIsFoundAgainAtAnotherIndex) {
  rig.Sound.SetDevices({{"New", "new"}, {"Radio", "radio"}});
  rig.Set("InputDevice", "0");
  rig.Set("InputDeviceId", "radio");
  rig.Start();
  EXPECT_EQ(rig->Snapshot().InputDeviceName, "Radio");
  EXPECT_EQ(rig->InputDeviceId(), "radio");
  EXPECT_THAT(rig.LogTexts(), Contains("Using input device: Radio"));
  EXPECT_EQ(rig->Parts().Settings.Get("InputDevice"), "1");
}

TEST_F(StartupTest, TheIdOfTheInputDeviceIsStoredBesideItsIndex) {
  rig.Sound.SetDevices({{"New", "new"}, {"Radio", "radio"}});
  rig.Set("InputDevice", "1");
  rig.Start();
  EXPECT_EQ(rig->Parts().Settings.Get("InputDeviceId"), "radio");
  EXPECT_EQ(rig->Parts().Settings.Set("InputDevice", "0").Refusal, "");
  EXPECT_EQ(rig->Parts().Settings.Get("InputDeviceId"), "new");
}

TEST_F(StartupTest, AnInputDeviceThatIsNotThereLeavesItsPlaceToTheOneAtItsIndex) {
  rig.Set("InputDeviceId", "gone");
  rig.Start();
  EXPECT_EQ(rig->Snapshot().InputDeviceName, "Radio");
  EXPECT_THAT(rig.LogTexts(), Contains("Input device gone is not there; device number 0 takes its place"));
  EXPECT_EQ(rig->Parts().Settings.Get("InputDeviceId"), "gone") << "it may come back";
}

TEST_F(StartupTest, WithoutAnInputDeviceTheUserIsToldAndTheProgramCloses) {
  rig.Sound.SetDevices({});
  rig.Start(StartOutcome::Failed);
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Title, "Kestrune: Input Device Error");
  EXPECT_EQ(rig.Dialogs.Shown[0].Icon, platform::MessageIcon::Critical);
  EXPECT_EQ(rig.Dialogs.Shown[0].Text,
            "There are no available audio input devices on this PC. There is no way\n"
            "for Kestrune to record. Have you configured your sound card correctly?\n"
            "Is another program currently recording from your sound card?\n\n"
            "The following sound cards are capable, but unavailable:\n\nConfigured to use: ");
  EXPECT_TRUE(rig.Logged("No available audio input devices found"));
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
}

TEST_F(StartupTest, WithoutARadioTheUserIsToldAndTheProgramCloses) {
  rig.Radio.Answers = false;
  rig.Start(StartOutcome::Failed);
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Title, "Error connecting to radio");
  EXPECT_EQ(rig.Dialogs.Shown[0].Text,
            "An error has occurred attempting to connect to your satellite radio. Is it connected? Is it "
            "turned on? "
            "Do you have any other satellite radio applications running at the same time? Check the "
            "connections and "
            "try again.\n\nReason: port 1 opens, but no radio answers there.");
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
  EXPECT_TRUE(rig.Logged("Shutting Down"));
  EXPECT_THAT(rig.Recordings(), IsEmpty());
}

TEST_F(StartupTest, TheStoredPortIsTriedTwiceAndThenAllPortsFourTimes) {
  rig.Radio.Answers = false;
  rig.Start(StartOutcome::Failed);
  EXPECT_EQ(Sent(kPowerOn), 2U + 4U);
}

TEST_F(StartupTest, WithoutAStoredPortTheSearchFindsTheRadio) {
  rig.Set("PortNum", "0");
  rig.Radio.SittingOnPort = 7;
  rig.Start();
  EXPECT_EQ(rig->State().Settings.PortNum, 7);
  EXPECT_TRUE(rig.Logged("Radio found on port 7"));
}

TEST_F(StartupTest, AStoredPortWithoutARadioFallsBackToTheSearch) {
  rig.Set("PortNum", "3");
  rig.Start();
  EXPECT_EQ(rig->State().Settings.PortNum, 1);
}

TEST_F(StartupTest, AForcedPortIsTakenForTheStoredOne) {
  rig.Set("PortNum", "3");
  rig.Environment.Command = "/port 1";
  rig.Start();
  EXPECT_EQ(rig->State().Settings.PortNum, 1);
  EXPECT_TRUE(rig.Logged("Forced COM port to port 1"));
}

TEST_F(StartupTest, ARefusedPortIsLoggedAsZeroAndTheStoredOneIsUsed) {
  rig.Environment.Command = "/port 300";
  rig.Start();
  EXPECT_TRUE(rig.Logged("Forced COM port to port 0"));
  EXPECT_EQ(rig->State().Settings.PortNum, 1);
}

TEST_F(StartupTest, AForcedPortWithoutARadioFallsBackToTheSearch) {
  rig.Set("PortNum", "5");
  rig.Radio.SittingOnPort = 2;
  rig.Environment.Command = "/port 5";
  rig.Start();
  EXPECT_EQ(rig->State().Settings.PortNum, 2);
}

TEST_F(StartupTest, AStartWithoutARadioLeavesTheStoredPortAsItWas) {
  rig.Set("PortNum", "3");
  rig.Radio.SittingOnPort = 0;
  rig.Start(StartOutcome::Failed);
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
  EXPECT_EQ(rig.Setting("PortNum"), "3");
}

TEST_F(StartupTest, AStartWithoutARadioLeavesTheStoredPortAsItWasThoughAnotherOneWasForced) {
  rig.Set("PortNum", "3");
  rig.Environment.Command = "/port 7";
  rig.Radio.SittingOnPort = 0;
  rig.Start(StartOutcome::Failed);
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
  EXPECT_EQ(rig.Setting("PortNum"), "3");
}

constexpr const char* kChannelList = "/home/user/Application Data/Kestrune/ChannelList.txt";
constexpr const char* kSavedList = "44\tHarbour\t\t\tRock\n51\tFred\t\t\tAlternative\n";

TEST_F(StartupTest, AStartWithoutARadioLeavesTheChannelListAsItWas) {
  rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Files.Put(kChannelList, kSavedList);
  rig.Radio.SittingOnPort = 0;
  rig.Start(StartOutcome::Failed);
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
  EXPECT_EQ(rig.Files.Text(kChannelList), kSavedList);
}

TEST_F(StartupTest, ACloseDuringTheWalkLeavesTheChannelListAsItWas) {
  rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Files.Put(kChannelList, kSavedList);
  rig.Start();
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->Parts().Channels.Table().ChannelCount() > 4; }, 20s));
  rig.CloseAndWait();
  EXPECT_EQ(rig.Files.Text(kChannelList), kSavedList);
}

TEST_F(StartupTest, ACloseDuringTheFirstWalkKeepsNoPartOfTheList) {
  rig.Start();
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->Parts().Channels.Table().ChannelCount() > 4; }, 20s));
  rig.CloseAndWait();
  EXPECT_FALSE(rig.Files.Exists(kChannelList));
}

TEST_F(StartupTest, WhyADeviceCannotBeOpenedIsNotHiddenByThePortsAfterIt) {
  rig.Radio.SittingOnPort = 4;
  rig.Radio.Answers = false;
  rig.Radio.Obstacles = {{3, "/dev/ttyUSB2 is in use by gpsd (process 7); close that program first"}};
  rig.Start(StartOutcome::Failed);
  EXPECT_EQ(rig->WhyNoRadio(), "/dev/ttyUSB2 is in use by gpsd (process 7); close that program first");
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_THAT(
      rig.Dialogs.Shown[0].Text,
      ::testing::EndsWith("and try again.\n\nReason: /dev/ttyUSB2 is in use by gpsd (process 7); close "
                          "that program first."));
  EXPECT_THAT(rig.LogTexts(), ::testing::IsSupersetOf(
                                  {std::string("No radio on port 3: /dev/ttyUSB2 is in use by gpsd (process "
                                               "7); close that program first"),
                                   std::string("No radio on port 4: the port opens, but no radio answers")}));
}

TEST_F(StartupTest, WithoutAnySerialDeviceTheMessageGivesNoReason) {
  rig.Radio.SittingOnPort = 0;
  rig.Start(StartOutcome::Failed);
  EXPECT_EQ(rig->WhyNoRadio(), "there is no serial device; is the radio plugged in?");
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_THAT(rig.Dialogs.Shown[0].Text, ::testing::EndsWith("Check the connections and try again."));
  EXPECT_FALSE(rig.Logged("No radio on port"));
}

TEST_F(StartupTest, TheMessageHasTheLinesOfTheLogAsDetails) {
  rig.Radio.SittingOnPort = 4;
  rig.Radio.Answers = false;
  rig.Radio.Obstacles = {{3, "/dev/ttyUSB2: permission denied"}};
  rig.Start(StartOutcome::Failed);
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Details,
            "No radio on port 3: /dev/ttyUSB2: permission denied\n"
            "No radio on port 4: the port opens, but no radio answers");
}

TEST_F(StartupTest, WithoutAnySerialDeviceDetailsAndLogSaySo) {
  rig.Radio.SittingOnPort = 0;
  rig.Start(StartOutcome::Failed);
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Details, "No radio: there is no serial device; is the radio plugged in?");
  EXPECT_THAT(rig.LogTexts(), Contains(rig.Dialogs.Shown[0].Details));
}

TEST_F(StartupTest, TheSearchIsInTheStateFromItsFirstStepToTheRadio) {
  class LookingWindows final : public recorder::Windows {
   public:
    explicit LookingWindows(UnitRig& rig) : rig_(rig) {}
    void ShowSearch() override { Seen.push_back(rig_->State().Search); }
    std::vector<radio::SearchProgress> Seen;

   private:
    UnitRig& rig_;
  };
  LookingWindows looking(rig);
  rig.Set("PortNum", "3");
  rig.Radio.SittingOnPort = 7;
  rig.MeetWindows(looking);
  rig.Start();
  ASSERT_EQ(looking.Seen.size(), 2U);
  EXPECT_EQ(looking.Seen[0].Port, 7);
  EXPECT_FALSE(looking.Seen[0].Found);
  EXPECT_EQ(looking.Seen[1].Port, 7);
  EXPECT_TRUE(looking.Seen[1].Found);
  EXPECT_TRUE(rig->State().Search.Found);
}

TEST_F(StartupTest, MiceOnSerialLinesAreDisabledBeforeTheRadioIsSought) {
  rig.SerialEnumerator.Answer = "ACPI mouse: 1 matching device";
  rig.SerialEnumerator.WhenDisabled = [&] { EXPECT_THAT(rig.Radio.Commands, IsEmpty()); };
  rig.Start();
  EXPECT_EQ(rig.SerialEnumerator.Disabled, 1);
}

TEST_F(StartupTest, TheMainWindowIsShownEachHalfSecondWhileTheRadioSettles) {
  rig.MeetWindows(windows);
  rig.Start();
  EXPECT_EQ(windows.ShownDisabled, 1 + 8);
}

TEST_F(StartupTest, AnEmptyIdentifierIsLoggedAndAccepted) {
  rig.Radio.Identifier = std::string(8, ' ');
  rig.Start();
  EXPECT_TRUE(rig.Logged("Radio ID "));
}

TEST_F(StartupTest, AUnitHasItsOwnSectionListAndLog) {
  rig.Environment.Command = "/MULTI 2";
  rig.Store.Put("Lorimel", "Kestrune2", "PortNum", "1");
  rig.Store.Put("Lorimel", "Kestrune2", "LegalAgreement", "True");
  rig.Store.Put("Lorimel", "Kestrune2", "Channel", "47");
  rig.Start();
  rig.FinishWalk();
  EXPECT_EQ(rig->Snapshot().MultiUnit, "2");
  EXPECT_EQ(rig.Radio.TunedChannel, 47);
  EXPECT_TRUE(rig.Logged("Running as Multi-Unit 2"));
  EXPECT_TRUE(rig.Files.Exists("/home/user/Application Data/Kestrune/Kestrune2.log"));
  EXPECT_TRUE(rig.Files.Exists("/home/user/Application Data/Kestrune/ChannelList2.txt"));
  EXPECT_FALSE(rig.Files.Exists("/home/user/Application Data/Kestrune/Kestrune.log"));
}

TEST_F(StartupTest, DebugModeTracesFramesInAFileOfItsOwn) {
  rig.Environment.Command = "/debug";
  rig.Start();
  const std::string trace =
      rig.Files.Text("/home/user/Application Data/Kestrune/Kestrune2005-01-01_1200.txt");
  EXPECT_THAT(trace, ::testing::HasSubstr(" > 5A A5 00 05 00 10 10 10 01 ED ED"));
  EXPECT_THAT(trace, ::testing::HasSubstr(" !PowerOn"));
  EXPECT_THAT(trace, ::testing::HasSubstr("Trying port 1"));
  EXPECT_TRUE(rig.Logged("Debug mode enabled"));
  EXPECT_TRUE(rig.Logged("Debug: Trying port 1"));
}

TEST_F(StartupTest, LittleTemporarySpaceIsAWarningAndNoMore) {
  rig.Files.Free = 2047999999.0;
  rig.Start();
  EXPECT_TRUE(rig.Logged("Less than 2 gigabytes free on Temp drive"));
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Title, "Drive Space");
  EXPECT_EQ(rig.Dialogs.Shown[0].Icon, platform::MessageIcon::Information);
}

TEST_F(StartupTest, TwoGigabytesOfTemporarySpaceAreEnough) {
  rig.Files.Free = 2048000000.0;
  rig.Start();
  EXPECT_FALSE(rig.Logged("Less than 2 gigabytes free on Temp drive"));
}

TEST_F(StartupTest, TheChannelLoadEndsWithItsCount) {
  rig.Start();
  EXPECT_TRUE(rig->State().Radio.ChannelsLoading);
  rig.FinishWalk();
  EXPECT_TRUE(rig.Logged("Channels loaded: 16"));
  EXPECT_TRUE(rig.Window().mnuReload.Enabled);
}

TEST_F(StartupTest, ACloseWithinTheSearchEndsTheStart) {
  rig.Radio.Answers = false;
  rig.Loop.AtHardware(3s, [&] { rig.Loop.Post([&] { rig->Close(); }); });
  EXPECT_EQ(rig->Load(), StartOutcome::Closed);
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 20s));
  EXPECT_THAT(rig.Dialogs.Shown, IsEmpty()) << "nobody is to be told of a radio that was not missing";
}

TEST_F(StartupTest, ARadioThatWasLeftMutedIsHeardAfterTheLoad) {
  rig.Radio.Muted = true;
  rig.Start();
  EXPECT_FALSE(rig.Radio.Muted);
}

}  // namespace
}  // namespace kestrune::test
