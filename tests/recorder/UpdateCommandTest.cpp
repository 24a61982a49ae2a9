#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class UpdateCommandTest : public ::testing::Test {
 protected:
  UpdateCommandTest() {
    rig.Environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "https://h/NewVersion.txt";
    rig.Environment.Variables["KESTRUNE_WEB_SITE"] = "https://site.invalid";
  }
  /// A newer version, and a user who wants it.
  void OfferUpdate() {
    rig.Web.Text = "003.000.030\nhttps://h/My Setup.bin\n";
    rig.Web.Bytes = "installer";
    rig.Dialogs.Answer = MessageAnswer::Yes;
  }
  /// The menu's command, up to the answer of the last message.
  void CheckUpdate() {
    rig->mnuCheckUpdate();
    rig.Run(100ms);
  }
  [[nodiscard]] const platform::Message& OnlyMessage() {
    EXPECT_EQ(rig.Dialogs.Shown.size(), 1U);
    return rig.Dialogs.Shown.front();
  }

  UnitRig rig;
};

TEST_F(UpdateCommandTest, UpToDateIsTold) {
  rig.StartIdle();
  rig.Web.Text = "003.000.029";
  CheckUpdate();
  EXPECT_EQ(OnlyMessage().Text, "You are running the current, most up-to-date version of Kestrune.");
  EXPECT_EQ(OnlyMessage().Title, "Current Version");
  EXPECT_EQ(OnlyMessage().Icon, MessageIcon::Information);
  EXPECT_EQ(OnlyMessage().Buttons, MessageButtons::Ok);
}

TEST_F(UpdateCommandTest, AVersionThatCannotBeRetrievedIsTold) {
  rig.StartIdle();
  CheckUpdate();
  EXPECT_EQ(OnlyMessage().Text, "Unable to retrieve current version number from the web.");
  EXPECT_EQ(OnlyMessage().Title, "Error");
  EXPECT_EQ(OnlyMessage().Icon, MessageIcon::Information);
  EXPECT_EQ(OnlyMessage().Buttons, MessageButtons::Ok);
}

TEST_F(UpdateCommandTest, ANewerVersionIsAskedAboutAndNoChangesNothing) {
  rig.StartIdle();
  OfferUpdate();
  rig.Dialogs.Answer = MessageAnswer::No;
  rig->cmdRecord();
  CheckUpdate();
  EXPECT_EQ(OnlyMessage().Text,
            "There is an updated version of Kestrune available. Do you want to install it?");
  EXPECT_EQ(OnlyMessage().Title, "New Version Available");
  EXPECT_EQ(OnlyMessage().Icon, MessageIcon::Information);
  EXPECT_EQ(OnlyMessage().Buttons, MessageButtons::YesNo);
  EXPECT_TRUE(rig->State().Recording.RecordRequested);
  EXPECT_THAT(rig.Web.Calls, Not(Contains("FetchBytes https://h/My Setup.bin")));
  EXPECT_THAT(rig.Processes.Calls, IsEmpty());
}

TEST_F(UpdateCommandTest, YesStopsRecordingDownloadsRunsAndCloses) {
  rig.StartIdle();
  OfferUpdate();
  rig->cmdRecord();
  bool recordingAtDownload = true;
  std::string installed;
  rig.Processes.During = [&] {
    recordingAtDownload = rig->State().Recording.RecordRequested;
    installed = rig.Files.Text("/tmp/private1/My Setup.bin");
  };
  CheckUpdate();
  EXPECT_FALSE(recordingAtDownload);
  EXPECT_EQ(installed, "installer");
  EXPECT_THAT(rig.Processes.Calls, ElementsAre("normal \"/tmp/private1/My Setup.bin\"", "wait 4711 0",
                                               "stop waiting", "stop waiting"));
  EXPECT_TRUE(rig->State().Run.ShuttingDown);
  EXPECT_TRUE(rig.Loop.RunUntil([&] { return rig.Closed; }, 1min));
}

TEST_F(UpdateCommandTest, TheWindowOfTheDownloadIsOpenWhileItLasts) {
  rig.StartIdle();
  OfferUpdate();
  bool openWithin = false;
  int barWithin = 0;
  rig.Web.During = [&] {
    rig.Loop.Run(50ms);
    openWithin = rig->UpdatingWindow().Visible;
    barWithin = rig->UpdatingWindow().pbrDownload;
  };
  CheckUpdate();
  EXPECT_TRUE(openWithin);
  EXPECT_EQ(barWithin, 10);
  EXPECT_FALSE(rig->UpdatingWindow().Visible);
}

TEST_F(UpdateCommandTest, AFailedDownloadRunsNothingAndSendsTheUserToTheWebSite) {
  rig.StartIdle();
  OfferUpdate();
  rig.Web.Bytes.clear();
  CheckUpdate();
  EXPECT_THAT(rig.Processes.Calls, IsEmpty());
  EXPECT_EQ(rig.Dialogs.Shown.back().Title, "Download Error");
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, YesWhileIdleSavesNoRecording) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(60s);
  OfferUpdate();
  rig.Web.Bytes.clear();
  rig->mnuCheckUpdate();
  rig.Run(60s);
  EXPECT_FALSE(rig.Logged("Recorded: "));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 0);
}

TEST_F(UpdateCommandTest, AnInstallerThatCannotBeStartedLeavesTheProgramRunning) {
  rig.StartIdle();
  OfferUpdate();
  rig.Processes.Starts = false;
  CheckUpdate();
  EXPECT_THAT(rig.Processes.Calls, ElementsAre("normal \"/tmp/private1/My Setup.bin\""));
  EXPECT_EQ(rig.Dialogs.Shown.back().Title, "Download Error");
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
  EXPECT_FALSE(rig.Files.Exists("/tmp/private1"));
}

TEST_F(UpdateCommandTest, TheDownloadsFolderGoesOnceTheInstallerHasEnded) {
  rig.StartIdle();
  OfferUpdate();
  bool thereWithin = false;
  rig.Processes.During = [&] { thereWithin = rig.Files.Exists("/tmp/private1/My Setup.bin"); };
  CheckUpdate();
  EXPECT_TRUE(thereWithin);
  EXPECT_FALSE(rig.Files.Exists("/tmp/private1"));
}

TEST_F(UpdateCommandTest, WithoutAPlaceForTheFileTheUserIsSentToTheWebSite) {
  rig.StartIdle();
  OfferUpdate();
  rig.Files.MakeUnwritable("/tmp");
  CheckUpdate();
  ASSERT_EQ(rig.Dialogs.Shown.size(), 2U);
  EXPECT_EQ(rig.Dialogs.Shown[1].Title, "Download Error");
  EXPECT_EQ(rig.Dialogs.Shown[1].Text,
            "An error occurred downloading the update.\nPlease visit Kestrune at https://site.invalid");
  EXPECT_EQ(rig.Dialogs.Shown[1].Icon, MessageIcon::None);
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, AFileThatIsNotThereIsPassedOver) {
  rig.StartIdle();
  OfferUpdate();
  rig.Files.FailNext(FileOperation::CreateProgram);
  CheckUpdate();
  EXPECT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_THAT(rig.Processes.Calls, IsEmpty());
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, AVersionWithoutAnAddressInstallsNothing) {
  rig.StartIdle();
  OfferUpdate();
  rig.Web.Text = "003.000.030";
  CheckUpdate();
  EXPECT_THAT(rig.Processes.Calls, IsEmpty());
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, WithoutANetworkEveryStartEndsWithTheErrorBox) {
  rig.Set("CheckUpdatesAtStartup", "True");
  rig.Start();
  rig.Run(100ms);
  EXPECT_EQ(OnlyMessage().Text, "Unable to retrieve current version number from the web.");
}

TEST_F(UpdateCommandTest, AStartWithAServerThatHasNothingNewSaysSoToo) {
  rig.Set("CheckUpdatesAtStartup", "True");
  rig.Web.Text = "003.000.029";
  rig.Start();
  rig.Run(100ms);
  EXPECT_EQ(OnlyMessage().Title, "Current Version");
}

TEST_F(UpdateCommandTest, AStartThatIsNotToCheckAsksNobody) {
  rig.Start();
  EXPECT_THAT(rig.Web.Calls, IsEmpty());
}

TEST_F(UpdateCommandTest, OneCheckAtATime) {
  rig.StartIdle();
  rig.Web.Text = "003.000.029";
  bool refused = false;
  rig.Web.During = [&] {
    rig->mnuCheckUpdate();
    rig->AskForUpdate([&](const base::Result& asked, const recorder::UpdateAnswer& /*answer*/) {
      refused = asked.Cause() == "an update check is under way already";
    });
  };
  CheckUpdate();
  EXPECT_TRUE(refused);
  EXPECT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_THAT(rig.Web.Calls, ElementsAre("FetchText https://h/NewVersion.txt"));
}

TEST_F(UpdateCommandTest, AskingAloneTellsTheUserNothing) {
  rig.StartIdle();
  OfferUpdate();
  std::optional<recorder::UpdateAnswer> answer;
  rig->AskForUpdate([&](const base::Result& asked, const recorder::UpdateAnswer& given) {
    if (asked.Ok()) answer = given;
  });
  rig.Run(100ms);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->Result, 1);
  EXPECT_EQ(answer->DownloadAddress, "https://h/My Setup.bin");
  EXPECT_THAT(rig.Dialogs.Shown, IsEmpty());
  EXPECT_FALSE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, ACloseWithinTheCheckEndsItWithoutAWord) {
  rig.StartIdle();
  OfferUpdate();
  rig.Web.During = [&] { rig->Close(); };
  CheckUpdate();
  EXPECT_THAT(rig.Dialogs.Shown, IsEmpty());
  EXPECT_THAT(rig.Web.Calls, ElementsAre("FetchText https://h/NewVersion.txt", "StopWaiting"));
}

TEST_F(UpdateCommandTest, WishesAreServedWhileTheServerIsAsked) {
  rig.StartIdle();
  bool recording = false;
  rig.Web.During = [&] {
    rig->Wishes().Record();
    rig.Run(10ms);
    recording = rig->State().Recording.RecordRequested;
  };
  CheckUpdate();
  EXPECT_TRUE(recording);
}

TEST_F(UpdateCommandTest, AMessageStopsNothingAndItsAnswerIsAWish) {
  rig.StartIdle();
  OfferUpdate();
  rig.Dialogs.KeepOpen = true;
  rig->Wishes().Record();
  CheckUpdate();
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(rig->State().Recording.LastSong, "North Pier") << "the songs are followed while the box is open";
  EXPECT_THAT(rig.Processes.Calls, IsEmpty());
  rig.Dialogs.Press(MessageAnswer::Yes);
  EXPECT_TRUE(rig->State().Recording.RecordRequested);
  rig.Run(100ms);
  EXPECT_FALSE(rig->State().Recording.RecordRequested);
  EXPECT_TRUE(rig->State().Run.ShuttingDown);
}

TEST_F(UpdateCommandTest, ACloseWithinTheDownloadRunsNothing) {
  rig.StartIdle();
  OfferUpdate();
  rig.Web.During = [&] {
    if (rig->UpdatingWindow().Visible) rig->Close();
  };
  CheckUpdate();
  EXPECT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_THAT(rig.Processes.Calls, ElementsAre("stop waiting"));
}

}  // namespace
}  // namespace kestrune::test
