#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "control/CutJson.h"
#include "control/PeopleText.h"

namespace kestrune::control {
namespace {

const base::DateValue kNight = base::DateValue::FromCivil(2026, 11, 21, 20, 3, 45);

CutReport Cut() {
  return {.At = kNight,
          .Channel = 44,
          .Station = "Harbour",
          .Artist = "Moon",
          .Song = "River",
          .Next = "Sun - Lake",
          .Frame = 5'000'000'000,
          .LagMs = 1240,
          .Reason = "gap",
          .Confidence = 0.937,
          .Candidates = {{.LagMs = 1240, .Chance = 0.641}, {.LagMs = -600, .Chance = 0.25}}};
}

StationLagReport Station() {
  return {.Channel = 7, .Station = "Lake", .LagMs = -640, .JitterMs = 305, .Changes = 34};
}

TEST(CutJson, CutsComeBackAsTheyWent) {
  const std::vector<CutReport> cuts{Cut()};
  const Json json = ToJson(cuts);
  EXPECT_EQ(
      json.dump(),
      R"({"cuts":[{"at":"2026-11-21 20:03:45","channel":44,"station":"Harbour","artist":"Moon",)"
      R"("song":"River","next":"Sun - Lake","frame":5000000000,"lagMs":1240,"reason":"gap",)"
      R"("confidence":0.937,"candidates":[{"lagMs":1240,"chance":0.641},{"lagMs":-600,"chance":0.25}]}]})");
  EXPECT_EQ(CutsFromJson(json), cuts);
  EXPECT_EQ(CutsFromJson(ToJson(std::vector<CutReport>())), std::vector<CutReport>());
}

TEST(CutJson, StationsComeBackAsTheyWent) {
  const std::vector<StationLagReport> stations{Station()};
  const Json json = ToJson(stations);
  EXPECT_EQ(json.dump(),
            R"({"stations":[{"channel":7,"station":"Lake","lagMs":-640,"jitterMs":305,"changes":34}]})");
  EXPECT_EQ(StationLagsFromJson(json), stations);
}

TEST(CutJson, WhatHasAnotherShapeIsNotRead) {
  for (const char* text : {"null", "[]", "5", "{}", R"({"cuts":5})", R"({"cuts":[5]})", R"({"cuts":[{}]})",
                           R"({"stations":{}})", R"({"stations":[{"channel":7}]})"}) {
    const Json json = Json::parse(text);
    EXPECT_FALSE(CutsFromJson(json)) << text;
    EXPECT_FALSE(StationLagsFromJson(json)) << text;
    EXPECT_FALSE(PeopleText("cuts", json)) << text;
  }
  Json json = ToJson(std::vector{Cut()});
  json["cuts"][0]["confidence"] = "sure";
  EXPECT_FALSE(CutsFromJson(json));
  json["cuts"][0]["confidence"] = 1;
  EXPECT_TRUE(CutsFromJson(json)) << "a whole number is a number";
}

TEST(CutJson, OnlySongsThatWereCutAreTold) {
  platform::HistorySong song;
  song.Ended = kNight;
  song.Channel = 44;
  song.Station = "Harbour";
  song.Artist = "Moon";
  song.Title = "River";
  platform::HistorySong cut = song;
  cut.Cut = platform::HistoryCut{.Frame = 5'000'000'000,
                                 .LagMs = 1240,
                                 .Reason = "gap",
                                 .Confidence = 0.937,
                                 .Candidates = {{1240, 0.641}, {-600, 0.25}},
                                 .Next = "Sun - Lake"};
  EXPECT_EQ(CutsOf({song, cut}), std::vector{Cut()});
}

TEST(CutJson, EveryMemberIsDocumented) {
  std::ifstream file(KESTRUNE_DOCS "/json.md");
  const std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t begin = page.find("\n## cuts\n");
  ASSERT_NE(begin, std::string::npos);
  const std::string section = page.substr(begin, page.find("\n## ", begin + 1) - begin);
  const auto check = [&section](const Json& rows) {
    for (const auto& [name, value] : rows.at(0).items())
      EXPECT_NE(section.find("`" + name + "`"), std::string::npos) << name;
  };
  check(ToJson(std::vector{Cut()})["cuts"]);
  check(ToJson(std::vector{Cut()})["cuts"][0]["candidates"]);
  check(ToJson(std::vector{Station()})["stations"]);
}

TEST(CutJson, PeopleReadTheSame) {
  CutReport late = Cut();
  late.LagMs = -60;
  late.Confidence = 1;
  late.Artist = "";
  EXPECT_EQ(PeopleText("cuts", ToJson(std::vector{Cut(), late})),
            "At                   Channel  Song          Next        Lag       Reason  Sure\n"
            "2026-11-21 20:03:45       44  Moon - River  Sun - Lake   +1.24 s  gap      94%\n"
            "2026-11-21 20:03:45       44  River         Sun - Lake   -0.06 s  gap     100%\n");
  EXPECT_EQ(PeopleText("cuts", ToJson(std::vector{Station()})),
            "Channel  Station  Lag       Jitter  Changes\n"
            "      7  Lake      -0.64 s  0.30 s       34\n");
  EXPECT_EQ(PeopleText("cuts", ToJson(std::vector<CutReport>())), "no cut by listening is found\n");
  EXPECT_EQ(PeopleText("cuts", ToJson(std::vector<StationLagReport>())), "nothing was learned yet\n");
}

TEST(CutJson, NoTextReachesTheTerminalAsItIs) {
  const std::string evil =
      "a\x1B[2J\xE2\x80\xAE"
      "b";
  CutReport cut = Cut();
  cut.Artist = cut.Song = cut.Next = cut.Reason = evil;
  StationLagReport station = Station();
  station.Station = evil;
  for (const auto& text :
       {PeopleText("cuts", ToJson(std::vector{cut})), PeopleText("cuts", ToJson(std::vector{station}))}) {
    ASSERT_TRUE(text);
    EXPECT_EQ(text->find('\x1B'), std::string::npos);
    EXPECT_EQ(text->find("\xE2\x80\xAE"), std::string::npos);
  }
}

}  // namespace
}  // namespace kestrune::control
