#include <memory>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::HasSubstr;

/// kestrune-ctl against one unit that runs through all of these tests; each leaves it idle on channel 8.
class Control : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    world_ = new World;
    world_->Radio = std::make_unique<Receiver>(world_->Folder / "radio", Receiver::Setup{TenStations(6)});
    world_->Recorder =
        std::make_unique<Unit>(world_->Folder / "profile",
                               Unit::Setup{"pipe:" + QuietFile(world_->Folder.Path()),
                                           world_->Radio->Link(),
                                           {{"Channel", "8"}, {"MinSongLength", "2"}, {"FileFormat", "WAV"}},
                                           {}});
    world_->Recorder->Start();
    world_->Idle = world_->Recorder->WaitUntilIdle();
  }
  static void TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
  }

  void SetUp() override { ASSERT_TRUE(world_->Idle) << Recorder().Program().Errors(); }

  static Unit& Recorder() { return *world_->Recorder; }
  static Receiver& Radio() { return *world_->Radio; }
  static const std::string& Folder() { return world_->Folder.Path(); }

 private:
  struct World {
    TemporaryFolder Folder;
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<Unit> Recorder;
    bool Idle = false;
  };
  static inline World* world_ = nullptr;
};

TEST_F(Control, StatusTellsEveryFieldByItsName) {
  const Json status = Recorder().Status();
  for (const char* text : {"unit", "version", "radioID", "station", "genre", "artist", "song", "recording",
                           "fileFormat", "formatDescription", "fileDir", "inputDevice"}) {
    EXPECT_TRUE(status.contains(text) && status[text].is_string()) << text;
  }
  for (const char* number : {"port", "channelNumber", "captureLengthMs", "recordedCount", "tooShortCount",
                             "tooLongCount", "restrictedCount", "channelCount", "activeSchedule",
                             "satellite1", "satellite2", "terrestrial", "samplesCaptured", "samplesLost"}) {
    EXPECT_TRUE(status.contains(number) && status[number].is_number_integer()) << number;
  }
  for (const char* flag : {"recordRequested", "waitingForNextSong", "channelsLoading"}) {
    EXPECT_TRUE(status.contains(flag) && status[flag].is_boolean()) << flag;
  }
}

TEST_F(Control, StatusTellsWhatTheRadioPlays) {
  EXPECT_TRUE(
      Recorder().WaitForStatus([](const Json& status) { return status["song"] == "Canción/Puerto"; }));
  const Json status = Recorder().Status();
  EXPECT_EQ(status["version"], "3.0.29");
  EXPECT_EQ(status["port"], 1);
  EXPECT_NE(status["radioID"], "");
  EXPECT_EQ(status["channelNumber"], 8);
  EXPECT_EQ(status["station"], "Neon 80s");
  EXPECT_EQ(status["genre"], "Decades");
  EXPECT_EQ(status["channelCount"], 10);
  EXPECT_EQ(status["fileFormat"], "WAV");
  EXPECT_EQ(status["fileDir"], Recorder().RecordingFolder() + "/");
  EXPECT_TRUE(Recorder().WaitForStatus([](const Json& now) { return now["samplesCaptured"] > 0; }));
}

TEST_F(Control, ChannelsAreListedInOrderWithWhatTheyPlay) {
  // The background polling comes round to each of them.
  EXPECT_TRUE(WaitUntil(
      kPatience,
      [] {
        const Json channels = Recorder().Ask({"channels"});
        return channels.is_array() && !channels.empty() && channels.back().value("song", "") == "Song 28";
      },
      300ms));
  const Json channels = Recorder().Ask({"channels"});
  ASSERT_EQ(channels.size(), 10U);
  EXPECT_EQ(channels[0]["number"], 8);
  EXPECT_EQ(channels[0]["station"], "Neon 80s");
  for (std::size_t i = 1; i < channels.size(); ++i) {
    const std::string number = std::to_string(19 + i);
    EXPECT_EQ(channels[i]["number"], 19 + static_cast<int>(i));
    EXPECT_EQ(channels[i]["station"], "Station " + number);
    EXPECT_EQ(channels[i]["genre"], "Talk");
    EXPECT_EQ(channels[i]["artist"], "Artist " + number);
    EXPECT_EQ(channels[i]["song"], "Song " + number);
  }
}

TEST_F(Control, PeopleGetColumns) {
  const Outcome status = Recorder().Ctl({"status"});
  EXPECT_EQ(status.Exit, 0);
  EXPECT_THAT(status.Output, HasSubstr("Neon 80s"));
  const Outcome channels = Recorder().Ctl({"channels"});
  EXPECT_EQ(channels.Exit, 0);
  EXPECT_THAT(channels.Output, HasSubstr("Station 28"));
}

TEST_F(Control, ASettingThatIsSetIsGivenBackAndStored) {
  EXPECT_EQ(Recorder().Ctl({"set", "MaxSongLength", "1234"}).Exit, 0);
  EXPECT_EQ(Recorder().Ctl({"get", "MaxSongLength"}).Output, "1234\n");
  EXPECT_EQ(Recorder().Ask({"get", "maxsonglength"}), "1234") << "keys have no case";
  EXPECT_THAT(FileText(Recorder().SettingsFile()), HasSubstr("MaxSongLength=1234"));
  EXPECT_EQ(Recorder().Ctl({"set", "MaxSongLength", "0"}).Exit, 0);
}

TEST_F(Control, RubbishForASettingIsRefusedByName) {
  const Outcome number = Recorder().Ctl({"set", "MinSongLength", "soon"});
  EXPECT_EQ(number.Exit, 1);
  EXPECT_THAT(number.Errors, HasSubstr("MinSongLength"));
  EXPECT_EQ(Recorder().Ask({"get", "MinSongLength"}), "2");

  const Outcome key = Recorder().Ctl({"set", "NoSuchSetting", "1"});
  EXPECT_EQ(key.Exit, 1);
  EXPECT_THAT(key.Errors, HasSubstr("NoSuchSetting"));
  EXPECT_EQ(Recorder().Ctl({"get", "NoSuchSetting"}).Exit, 1);

  const Outcome format = Recorder().Ctl({"set", "FileFormat", "8TRACK"});
  EXPECT_EQ(format.Exit, 1);
  EXPECT_THAT(format.Errors, HasSubstr("FileFormat"));
  EXPECT_EQ(Recorder().Ask({"get", "FileFormat"}), "WAV");
}

TEST_F(Control, TuneChangesTheRadiosChannel) {
  EXPECT_EQ(Recorder().Ctl({"tune", "25"}).Exit, 0);
  EXPECT_TRUE(Recorder().WaitForStatus([](const Json& status) { return status["song"] == "Song 25"; }));
  EXPECT_EQ(Recorder().Status()["channelNumber"], 25);
  const auto tuned = Radio().Events("tuned");
  ASSERT_FALSE(tuned.empty());
  EXPECT_EQ(tuned.back()["channel"], 25);
  EXPECT_EQ(Recorder().Ctl({"tune", "8"}).Exit, 0);
  EXPECT_TRUE(Recorder().WaitForStatus([](const Json& status) { return status["station"] == "Neon 80s"; }));
}

TEST_F(Control, MuteSilencesTheRadio) {
  EXPECT_EQ(Recorder().Ctl({"mute", "on"}).Exit, 0);
  EXPECT_TRUE(WaitUntil(kPatience, [] {
    const auto events = Radio().Events("mute");
    return !events.empty() && events.back()["on"] == true;
  }));
  EXPECT_EQ(Recorder().Ctl({"mute", "off"}).Exit, 0);
  EXPECT_TRUE(WaitUntil(kPatience, [] { return Radio().Events("mute").back()["on"] == false; }));
}

TEST_F(Control, RecordAndStopArePressed) {
  EXPECT_EQ(Recorder().Ctl({"record"}).Exit, 0);
  EXPECT_TRUE(Recorder().WaitForStatus([](const Json& status) {
    return status["recording"] == "Recording" && status["recordRequested"] == true;
  }));
  EXPECT_TRUE(Recorder().WaitForStatus([](const Json& status) { return status["captureLengthMs"] > 1000; }));
  EXPECT_EQ(Recorder().Ctl({"record"}).Exit, 1) << "the button is not enabled twice";
  EXPECT_EQ(Recorder().Ctl({"tune", "25"}).Exit, 1) << "a recording keeps its channel";
  EXPECT_EQ(Recorder().Status()["channelNumber"], 8);
  EXPECT_EQ(Recorder().Ctl({"stop"}).Exit, 0);
  EXPECT_TRUE(Recorder().WaitForStatus(
      [](const Json& status) { return status["recording"] == "" && status["recordRequested"] == false; }));
  EXPECT_EQ(Recorder().Ctl({"stop"}).Exit, 1);
}

TEST_F(Control, LogShowsTheNewestLines) {
  const Json log = Recorder().Ask({"log", "5000"});
  ASSERT_TRUE(log.is_array());
  EXPECT_THAT(log.dump(), HasSubstr("Radio found on port 1"));
  EXPECT_THAT(log.dump(), HasSubstr("Channels loaded: 10"));
  EXPECT_EQ(Recorder().Ask({"log", "1"}).size(), 1U);
}

TEST_F(Control, AScheduleEntryIsSetListedAndCleared) {
  EXPECT_EQ(Recorder()
                .Ctl({"schedule", "set", "3", "--on", "2099-12-24", "--at", "8:00 PM", "--for=2:05",
                      "--channel", "25", "--integrel", "off", "--bitrate", "64 mono"})
                .Exit,
            0);
  const Json entry = Recorder().Ask({"schedule"}).at(2);
  EXPECT_EQ(entry["on"], "Dec 24, 2099");
  EXPECT_EQ(entry["at"], "8:00 PM");
  EXPECT_EQ(entry["minutes"], 125);
  EXPECT_EQ(entry["station"], "Station 25");
  EXPECT_EQ(entry["integrel"], false);
  EXPECT_EQ(entry["nextRun"], "2099-12-24 20:00");
  EXPECT_EQ(entry["running"], false);
  EXPECT_THAT(Recorder().Ctl({"schedule"}).Output,
              HasSubstr("    3  Dec 24, 2099   8:00 PM   2:05   25 - Station 25"));
  EXPECT_THAT(FileText(Recorder().SettingsFile()), HasSubstr("ScheduleStartDate3=Dec 24, 2099 8:00 PM"));

  const Outcome conflict = Recorder().Ctl(
      {"schedule", "set", "2", "--on", "Dec 24, 2099", "--at", "21:00", "--for", "0:30", "--channel", "8"});
  EXPECT_EQ(conflict.Exit, 1);
  EXPECT_EQ(conflict.Errors, "kestrune-ctl: Item 2 conflicts with item 3. Please correct before saving.\n");

  EXPECT_EQ(Recorder().Ctl({"schedule", "disable", "3"}).Exit, 0);
  EXPECT_EQ(Recorder().Ask({"schedule"}).at(2)["enabled"], false);
  EXPECT_EQ(Recorder().Ctl({"schedule", "clear", "3"}).Exit, 0);
  const Outcome wrong = Recorder().Ctl({"schedule", "set", "3", "--at", "soon"});
  EXPECT_EQ(wrong.Exit, 2);
  EXPECT_THAT(wrong.Errors, HasSubstr("--at"));
  EXPECT_EQ(Recorder().Ctl({"status", "--at", "8:00 PM"}).Exit, 2);
}

TEST_F(Control, ListsAreShownAndChanged) {
  EXPECT_EQ(Recorder().Ctl({"lists", "add", "grab-artist", "Moön & Co"}).Exit, 0);
  EXPECT_EQ(Recorder().Ask({"lists"})["grabArtists"], Json::array({"Moön & Co"}));
  EXPECT_EQ(FileText(Recorder().DataFolder() + "/Restriction.txt"), "0Moön & Co\n");
  EXPECT_THAT(Recorder().Ctl({"lists"}).Output, HasSubstr("Grab artists\n  Moön & Co\nGrab songs\n  none\n"));
  EXPECT_EQ(Recorder().Ctl({"lists", "add", "grab-artist", "moön & co"}).Exit, 1);
  EXPECT_EQ(Recorder().Ctl({"lists", "remove", "grab-artist", "Moön & Co"}).Exit, 0);
  EXPECT_EQ(Recorder().Ctl({"lists", "remove", "grab-artist", "Moön & Co"}).Exit, 1);
  EXPECT_EQ(Recorder().Ask({"lists"})["grabArtists"], Json::array());
}

TEST_F(Control, TheSameUnitIsNotStartedTwice) {
  const Outcome second = RunToEnd({"kestrune",
                                   {"--headless", "--accept-agreement", "--profile", Recorder().Profile(),
                                    "--audio", "pipe:" + QuietFile(Folder())},
                                   {}},
                                  kPatience);
  EXPECT_EQ(second.Exit, 1);
  EXPECT_THAT(second.Errors, HasSubstr("running"));
  EXPECT_TRUE(Recorder().Status().is_object()) << "the first one still answers";
}

TEST_F(Control, AnotherUnitIsNotThisOne) {
  EXPECT_EQ(Recorder().Ctl({"--unit", "7", "status"}).Exit, 3);
}

}  // namespace
}  // namespace kestrune::test
