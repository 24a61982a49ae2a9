#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "control/PeopleText.h"
#include "control/ShelfJson.h"

namespace kestrune::control {
namespace {

StatusReport Busy() {
  StatusReport report;
  report.Unit = "2";
  report.Version = "3.0.29";
  report.Port = 3;
  report.RadioID = "ABC12345";
  report.ChannelNumber = 44;
  report.Station = "Fred";
  report.Genre = "Rock";
  report.Artist = "The Cure";
  report.Song = "Lullaby";
  report.Recording = "Recording";
  report.RecordRequested = true;
  report.CaptureLengthMs = 61'999;
  report.RecordedCount = 5;
  report.TooShortCount = 1;
  report.RestrictedCount = 2;
  report.ChannelCount = 123;
  report.FileFormat = "MP3";
  report.FormatDescription = "160 kbps";
  report.FileDir = "/music/";
  report.InputDevice = "Line In";
  report.Satellite1 = 60;
  report.Satellite2 = 70;
  report.Terrestrial = 80;
  report.SamplesCaptured = 44100;
  return report;
}

std::string Status(const StatusReport& report) {
  return PeopleText("status", ToJson(report)).value_or("none");
}

TEST(PeopleText, ARecordingThatIsNotWrittenSaysWhy) {
  StatusReport report = Busy();
  report.CaptureFailure = "No space left on device";
  EXPECT_NE(Status(report).find("Recording  Recording, 1:01, not being written: No space left on device\n"),
            std::string::npos);
}

TEST(PeopleText, WhatHasFailedStandsBelowTheProgram) {
  StatusReport report = Busy();
  report.Warning = "The disk is nearly full: room for 1:40.";
  EXPECT_TRUE(
      Status(report).starts_with("Program    Kestrune 3.0.29, unit 2\n"
                                 "Warning    The disk is nearly full: room for 1:40.\n"
                                 "Radio      "));
}

TEST(PeopleText, ABusyUnitsStatus) {
  EXPECT_EQ(Status(Busy()),
            "Program    Kestrune 3.0.29, unit 2\n"
            "Radio      ABC12345 on port 3\n"
            "Channel    44, Fred, Rock\n"
            "Playing    The Cure - Lullaby\n"
            "Recording  Recording, 1:01\n"
            "Songs      5 recorded, 1 too short, 0 too long, 2 restricted\n"
            "Channels   123\n"
            "Schedule   none running\n"
            "Format     MP3, 160 kbps\n"
            "Folder     /music/\n"
            "Input      Line In\n"
            "Signal     satellite 1 60%, satellite 2 70%, terrestrial 80%\n"
            "Samples    44100 captured, 0 lost\n");
}

TEST(PeopleText, ALostRadioSaysWhyAndHasNoSignal) {
  StatusReport report = Busy();
  report.Port = 0;
  report.RadioLost = "the device is gone";
  EXPECT_NE(Status(report).find("Radio      ABC12345 lost: the device is gone\n"), std::string::npos);
  EXPECT_NE(Status(report).find("Signal     unknown\n"), std::string::npos);
}

TEST(PeopleText, ARadioInDoubtSaysWhy) {
  StatusReport report = Busy();
  report.RadioDoubt = "the radio refuses channel 9";
  EXPECT_NE(Status(report).find("Radio      ABC12345 on port 3, the radio refuses channel 9\n"),
            std::string::npos);
}

TEST(PeopleText, AStartingUnitsStatus) {
  StatusReport report;
  report.Version = "3.0.29";
  report.Loading = true;
  report.ChannelsLoading = true;
  EXPECT_EQ(Status(report),
            "Program    Kestrune 3.0.29, starting\n"
            "Radio      none found\n"
            "Channel    0\n"
            "Playing    none\n"
            "Recording  no\n"
            "Songs      0 recorded, 0 too short, 0 too long, 0 restricted\n"
            "Channels   0, loading\n"
            "Schedule   none running\n"
            "Format\n"
            "Folder\n"
            "Input      none\n"
            "Signal     satellite 1 0%, satellite 2 0%, terrestrial 0%\n"
            "Samples    0 captured, 0 lost\n");
}

TEST(PeopleText, NoLengthWhileWaiting) {
  StatusReport report = Busy();
  report.Recording = "Waiting for next song";
  report.WaitingForNextSong = true;
  EXPECT_NE(Status(report).find("Recording  Waiting for next song\n"), std::string::npos);
}

TEST(PeopleText, ARunningScheduleIsNamed) {
  StatusReport report = Busy();
  report.ActiveSchedule = 10;
  EXPECT_NE(Status(report).find("Schedule   entry 10\n"), std::string::npos);
}

TEST(PeopleText, ChannelsStandInColumns) {
  const std::vector<ChannelReport> channels{{8, "80s on 8", "Decades", "Beyonc\xC3\xA9", "Halo"},
                                            {144, "Fred", "", "", ""}};
  EXPECT_EQ(PeopleText("channels", ToJson(channels)),
            "Channel  Station   Genre    Artist   Song\n"
            "      8  80s on 8  Decades  Beyonc\xC3\xA9  Halo\n"
            "    144  Fred\n");
}

TEST(PeopleText, TheScheduleStandsInColumns) {
  ScheduleReport saturday;
  saturday.Number = 1;
  saturday.Set = true;
  saturday.Enabled = true;
  saturday.On = "Every Saturday";
  saturday.At = "11:00 PM";
  saturday.Minutes = 125;
  saturday.Channel = 8;
  saturday.Station = "80s on 8";
  saturday.Integrel = saturday.Cleftune = saturday.Kill = true;
  saturday.BitRate = "128 Stereo";
  saturday.NextRun = "2026-11-21 23:00";
  ScheduleReport running = saturday;
  running.Number = 2;
  running.Running = true;
  running.SecondsLeft = 2 * 3600 + 61;
  ScheduleReport over;
  over.Number = 7;
  over.Set = true;
  over.Enabled = true;
  over.On = "Nov 1, 2026";
  over.At = "8:00 AM";
  over.Minutes = 60;
  over.Channel = 144;
  ScheduleReport off = over;
  off.Number = 8;
  off.Enabled = false;
  off.Grab = true;
  ScheduleReport rubbish = over;
  rubbish.Number = 9;
  rubbish.On = rubbish.At = "";
  rubbish.Minutes = -1;
  ScheduleReport never;
  never.Number = 10;
  EXPECT_EQ(
      PeopleText("schedule", ToJson(std::vector{saturday, running, over, off, rubbish, never})),
      "Entry  On              At        For    Channel         Modes                     MP3         Next "
      "run\n"
      "    1  Every Saturday  11:00 PM   2:05    8 - 80s on 8  Integrel, Cleftune, Kill  128 Stereo  "
      "2026-11-21 23:00\n"
      "    2  Every Saturday  11:00 PM   2:05    8 - 80s on 8  Integrel, Cleftune, Kill  128 Stereo  "
      "running, 2:01:01 left\n"
      "    7  Nov 1, 2026      8:00 AM   1:00  144             none                      -           over\n"
      "    8  Nov 1, 2026      8:00 AM   1:00  144             Grab                      -           off\n"
      "    9  -               -         -      144             none                      -           never\n"
      "   10  -               -         -      -               -                         -           -\n");
}

TEST(PeopleText, TheListsStandUnderTheirNames) {
  ListsReport lists;
  lists.GrabArtists = {"Moon", "{Blank}"};
  lists.KillSongs = {"a\x1B"};
  EXPECT_EQ(PeopleText("lists", ToJson(lists)),
            "Grab artists\n  Moon\n  {Blank}\n"
            "Grab songs\n  none\n"
            "Kill artists\n  none\n"
            "Kill songs\n  a\xEF\xBF\xBD\n");
}

TEST(PeopleText, LogLinesAndValuesStandAsTheyAre) {
  EXPECT_EQ(PeopleText("log", Json::array({"one", "two"})), "one\ntwo\n");
  EXPECT_EQ(PeopleText("log", Json::array()), "");
  EXPECT_EQ(PeopleText("get", Json("MP3")), "MP3\n");
  EXPECT_EQ(PeopleText("get", Json("a\x1B"
                                   "b")),
            "a\xEF\xBF\xBD"
            "b\n");
}

TEST(PeopleText, ACommandWithoutResultSaysNothing) {
  for (const char* command :
       {"record", "stop", "tune", "mute", "set", "schedule set", "schedule clear", "lists add", "quit"}) {
    EXPECT_EQ(PeopleText(command, Json()), "") << command;
  }
}

TEST(PeopleText, AnUpdateIsToldInASentence) {
  EXPECT_EQ(PeopleText("update",
                       ToJson(UpdateReport{.Running = "003.000.029", .Newer = false, .DownloadAddress = ""})),
            "You are running the current, most up-to-date version of Kestrune.\n");
  EXPECT_EQ(PeopleText("update",
                       ToJson(UpdateReport{.Running = "003.000.029", .Newer = true, .DownloadAddress = ""})),
            "There is an updated version of Kestrune available.\n");
  EXPECT_EQ(PeopleText("update", ToJson(UpdateReport{.Running = "003.000.029",
                                                     .Newer = true,
                                                     .DownloadAddress = "https://h/a\x1B.bin"})),
            "There is an updated version of Kestrune available.\nhttps://h/a\xEF\xBF\xBD.bin\n");
}

TEST(PeopleText, AResultOfAnotherShapeIsNone) {
  EXPECT_FALSE(PeopleText("status", Json::object()));
  EXPECT_FALSE(PeopleText("channels", Json::object()));
  EXPECT_FALSE(PeopleText("update", Json::object()));
  EXPECT_FALSE(PeopleText("schedule", Json()));
  EXPECT_FALSE(PeopleText("lists", Json()));
  EXPECT_FALSE(PeopleText("shelf", Json()));
  EXPECT_FALSE(PeopleText("schedule set", Json(1)));
  EXPECT_FALSE(PeopleText("log", Json("x")));
  EXPECT_FALSE(PeopleText("log", Json::array({1})));
  EXPECT_FALSE(PeopleText("get", Json(1)));
  EXPECT_FALSE(PeopleText("stop", Json(1)));
}

TEST(PeopleTextTest, TheShelfIsATableAndUnknownIsALine) {
  std::vector<ShelvedReport> songs(2);
  songs[0] = {.Number = 1,
              .Ended = base::DateValue::FromCivil(2026, 11, 21, 18, 0, 5),
              .Channel = 47,
              .Station = "Campfire",
              .Genre = "Folk",
              .Artist = "Abigail Wren",
              .Song = "Winter Apples",
              .LengthMs = 200900,
              .Fate = platform::SongFate::TooShort,
              .Incomplete = true,
              .Bytes = 1,
              .File = "x"};
  songs[1].Number = 2;
  songs[1].Ended = songs[0].Ended;
  songs[1].Song = "North Pier";
  EXPECT_EQ(PeopleText("shelf", ToJson(songs)),
            "No.  Ended             Channel  Station   Song                                       Length  "
            "Not kept\n"
            "  1  2026-11-21 18:00       47  Campfire  Abigail Wren - Winter Apples (Incomplete)    3:20  "
            "too short\n"
            "  2  2026-11-21 18:00  -                  North Pier                                 -       "
            "not wanted\n");
  EXPECT_EQ(PeopleText("shelf", Json::array()), "nothing is on the shelf\n");
}

TEST(PeopleTextTest, AStatusSaysThatThePresentSongWillBeKept) {
  StatusReport report;
  report.Keep = true;
  EXPECT_NE(PeopleText("status", ToJson(report))->find("no, but the present song will be kept"),
            std::string::npos);
}

}  // namespace
}  // namespace kestrune::control
