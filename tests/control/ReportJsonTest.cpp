#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "control/ReportJson.h"
#include "control/ShelfJson.h"

namespace kestrune::control {
namespace {

StatusReport FullStatus() {
  StatusReport report;
  report.Loading = true;
  report.Unit = "2";
  report.Version = "3.0.29";
  report.Port = 3;
  report.RadioID = "ABC12345";
  report.RadioLost = "the device is gone";
  report.RadioDoubt = "the radio refuses channel 9";
  report.ChannelNumber = 44;
  report.Station = "Fred";
  report.Genre = "Rock";
  report.Artist = "The Cure";
  report.Song = "Lullaby";
  report.Recording = "Recording";
  report.RecordRequested = true;
  report.WaitingForNextSong = true;
  report.CaptureLengthMs = 5'000'000'000;
  report.Keep = true;
  report.Warning = "The disk is nearly full: room for 1:40.";
  report.CaptureFailure = "No space left on device";
  report.RecordedCount = 1;
  report.TooShortCount = 2;
  report.TooLongCount = 3;
  report.RestrictedCount = 4;
  report.ChannelsLoading = true;
  report.ChannelCount = 123;
  report.ActiveSchedule = 5;
  report.FileFormat = "MP3";
  report.FormatDescription = "160 kbps";
  report.FileDir = "/music/";
  report.InputDevice = "Line In";
  report.Satellite1 = 60;
  report.Satellite2 = 70;
  report.Terrestrial = 80;
  report.SamplesCaptured = 9'000'000'000;
  report.SamplesLost = 6;
  return report;
}

constexpr const char* kFullStatus =
    R"({"unit":"2","version":"3.0.29","loading":true,"port":3,"radioID":"ABC12345",)"
    R"("radioLost":"the device is gone","radioDoubt":"the radio refuses channel 9","channelNumber":44,)"
    R"("station":"Fred","genre":"Rock","artist":"The Cure","song":"Lullaby","recording":"Recording",)"
    R"("recordRequested":true,"waitingForNextSong":true,"captureLengthMs":5000000000,"keep":true,)"
    R"("warning":"The disk is nearly full: room for 1:40.","captureFailure":"No space left on device",)"
    R"("recordedCount":1,)"
    R"("tooShortCount":2,"tooLongCount":3,"restrictedCount":4,"channelsLoading":true,"channelCount":123,)"
    R"("activeSchedule":5,"fileFormat":"MP3","formatDescription":"160 kbps","fileDir":"/music/",)"
    R"("inputDevice":"Line In","satellite1":60,"satellite2":70,"terrestrial":80,)"
    R"("samplesCaptured":9000000000,"samplesLost":6})";

/// The part of the page under the heading of a command.
std::string Documented(const std::string& command) {
  std::ifstream file(KESTRUNE_DOCS "/json.md");
  const std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t begin = page.find("\n## " + command + "\n");
  EXPECT_NE(begin, std::string::npos) << command;
  if (begin == std::string::npos) return {};
  return page.substr(begin, page.find("\n## ", begin + 1) - begin);
}

TEST(ReportJson, EveryMemberIsDocumented) {
  const std::pair<std::string, Json> reports[] = {
      {"status", ToJson(StatusReport())},
      {"channels", ToJson(std::vector<ChannelReport>(1)).front()},
      {"schedule", ToJson(std::vector<ScheduleReport>(1)).front()},
      {"lists", ToJson(ListsReport())},
      {"shelf", ToJson(std::vector<ShelvedReport>(1)).front()},
      {"update", ToJson(UpdateReport())},
  };
  for (const auto& [command, report] : reports) {
    const std::string section = Documented(command);
    for (const auto& member : report.items()) {
      EXPECT_NE(section.find("`" + member.key() + "`"), std::string::npos) << command << ": " << member.key();
    }
  }
}

TEST(ReportJson, StatusMembersHaveTheirNames) {
  EXPECT_EQ(ToJson(FullStatus()).dump(), kFullStatus);
}

TEST(ReportJson, AStatusComesBackAsItWent) {
  const auto report = StatusFromJson(Json::parse(kFullStatus));
  ASSERT_TRUE(report);
  EXPECT_EQ(ToJson(*report).dump(), kFullStatus);
  EXPECT_EQ(report->SamplesCaptured, 9'000'000'000);
  EXPECT_EQ(report->RadioID, "ABC12345");
}

TEST(ReportJson, AStatusWithoutAnyOneMemberIsNone) {
  const Json full = Json::parse(kFullStatus);
  for (const auto& [name, value] : full.items()) {
    Json without = full;
    without.erase(name);
    EXPECT_FALSE(StatusFromJson(without)) << name;
    Json other = full;
    other[name] = Json::array();
    EXPECT_FALSE(StatusFromJson(other)) << name;
  }
}

TEST(ReportJson, ANumberOutsideItsWidthIsNone) {
  Json json = Json::parse(kFullStatus);
  json["port"] = 5'000'000'000;
  EXPECT_FALSE(StatusFromJson(json));
}

TEST(ReportJson, UnknownMembersAreLetBy) {
  Json json = Json::parse(kFullStatus);
  json["later"] = 1;
  EXPECT_TRUE(StatusFromJson(json));
}

TEST(ReportJson, ChannelMembersHaveTheirNames) {
  const std::vector<ChannelReport> channels{{8, "80s on 8", "Decades", "a-ha", "Take On Me"},
                                            {9, "", "", "", ""}};
  const std::string text =
      R"([{"number":8,"station":"80s on 8","genre":"Decades","artist":"a-ha","song":"Take On Me"},)"
      R"({"number":9,"station":"","genre":"","artist":"","song":""}])";
  EXPECT_EQ(ToJson(channels).dump(), text);
  const auto back = ChannelsFromJson(Json::parse(text));
  ASSERT_TRUE(back);
  EXPECT_EQ(ToJson(*back).dump(), text);
}

TEST(ReportJson, AnUpdateComesBackAsItWentAndNoMemberMayLack) {
  const Json json = ToJson(UpdateReport{.Running = "003.000.029", .Newer = true, .DownloadAddress = "x"});
  const auto back = UpdateFromJson(json);
  ASSERT_TRUE(back);
  EXPECT_EQ(ToJson(*back).dump(), R"({"running":"003.000.029","newer":true,"downloadAddress":"x"})");
  for (const char* name : {"running", "newer", "downloadAddress"}) {
    Json without = json;
    without.erase(name);
    EXPECT_FALSE(UpdateFromJson(without)) << name;
  }
  EXPECT_FALSE(UpdateFromJson(Json::array()));
}

TEST(ReportJson, ScheduleMembersHaveTheirNamesAndComeBackAsTheyWent) {
  const std::string text =
      R"([{"number":3,"set":true,"enabled":true,"on":"Every Day","at":"8:00 PM","minutes":61,"channel":44,"station":"Fred",)"
      R"("integrel":true,"cleftune":false,"grab":true,"kill":false,"bitrate":"64 Mono",)"
      R"("nextRun":"2026-11-21 20:00","running":true,"secondsLeft":12}])";
  const auto entries = ScheduleFromJson(Json::parse(text));
  ASSERT_TRUE(entries);
  EXPECT_EQ(entries->at(0).Minutes, 61);
  EXPECT_EQ(ToJson(*entries).dump(), text);
  const Json row = Json::parse(text)[0];
  for (const auto& [name, value] : row.items()) {
    Json without = row;
    without.erase(name);
    EXPECT_FALSE(ScheduleFromJson(Json::array({without}))) << name;
  }
  EXPECT_FALSE(ScheduleFromJson(Json()));
  EXPECT_FALSE(ScheduleFromJson(Json::array({1})));
}

TEST(ReportJson, TheListsHaveTheirNamesAndComeBackAsTheyWent) {
  const std::string text =
      R"({"grabArtists":["Moon","Sun"],"grabSongs":[],"killArtists":["Rain"],"killSongs":["Wind"]})";
  const auto lists = ListsFromJson(Json::parse(text));
  ASSERT_TRUE(lists);
  EXPECT_EQ(ToJson(*lists).dump(), text);
  for (const char* wrong :
       {"null", "[]", "{}", R"({"grabArtists":[1],"grabSongs":[],"killArtists":[],"killSongs":[]})",
        R"({"grabArtists":[],"grabSongs":{},"killArtists":[],"killSongs":[]})"}) {
    EXPECT_FALSE(ListsFromJson(Json::parse(wrong))) << wrong;
  }
}

TEST(ReportJson, NoChannelsAreAnEmptyArray) {
  EXPECT_EQ(ToJson(std::vector<ChannelReport>{}).dump(), "[]");
  EXPECT_TRUE(ChannelsFromJson(Json::parse("[]"))->empty());
}

TEST(ReportJson, WhatIsNoChannelListIsNone) {
  for (const char* text : {"null", "{}", "[1]", "[{}]", R"([{"number":"8"}])", "[[]]"}) {
    EXPECT_FALSE(ChannelsFromJson(Json::parse(text))) << text;
  }
  for (const char* text : {"null", "{}", "[]", "1", "\"\""}) {
    EXPECT_FALSE(StatusFromJson(Json::parse(text))) << text;
  }
}

}  // namespace
}  // namespace kestrune::control
