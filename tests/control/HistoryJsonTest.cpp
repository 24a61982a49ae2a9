#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "control/HistoryJson.h"
#include "control/PeopleText.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using history::Report;
using platform::HistoryPlay;

const DateValue kNight = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

HistoryPlay Play() {
  return {.Channel = 44,
          .Station = "Harbour",
          .Genre = "Rock",
          .Artist = "Moon",
          .Title = "River",
          .From = kNight,
          .To = kNight.AddSeconds(225)};
}

Report Night() {
  platform::HistorySong song;
  song.Began = kNight;
  song.Ended = kNight.AddMinutes(3);
  song.Channel = 44;
  song.Artist = "Moon";
  song.Title = "River";
  song.LengthMs = 180'000;
  song.Fate = platform::SongFate::NotWanted;
  song.File = "/music/a.mp3";
  history::EventStory event;
  event.Entry = 3;
  event.Due = kNight;
  event.Until = kNight.AddHours(1);
  event.Began = kNight;
  event.State = history::EventState::Missed;
  event.MissingSeconds = 60;
  event.Missing = {
      {.From = kNight, .To = kNight.AddMinutes(1), .Seconds = 60, .Why = "gone", .Intended = true}};
  event.Songs = {song};
  Report report;
  report.From = kNight.AddHours(-2);
  report.To = kNight.AddHours(12);
  report.Events = {event};
  report.OtherSongs = {song};
  report.Incidents = {
      {.Kind = platform::IncidentKind::Crash, .Began = kNight, .Ended = {}, .Seconds = 0, .Cause = "x"}};
  report.Advice = {"Look at it."};
  return report;
}

constexpr const char* kSong =
    R"({"began":"2026-11-21 20:00:00","ended":"2026-11-21 20:03:00","channel":44,"station":"","genre":"",)"
    R"("artist":"Moon","song":"River","lengthMs":180000,"fate":"not wanted","reason":"","file":"/music/a.mp3",)"
    R"("event":0,"samplesLost":0,"missingMs":0,"silentMs":0,"overloadedMs":0,"lineLostMs":0})";

std::string FullReport() {
  return R"({"from":"2026-11-21 18:00:00","to":"2026-11-22 08:00:00","events":[{"entry":3,"channel":0,"station":"",)"
         R"("due":"2026-11-21 20:00:00","until":"2026-11-21 21:00:00","began":"2026-11-21 20:00:00","ended":"",)"
         R"("state":"missed","why":"","kept":0,"keptLater":0,"dropped":0,"missingSeconds":60,"missing":[{"from":)"
         R"("2026-11-21 20:00:00","to":"2026-11-21 20:01:00","seconds":60,"why":"gone","intended":true}],"songs":[)" +
         std::string(kSong) + R"(]}],"otherSongs":[)" + kSong +
         R"(],"incidents":[{"kind":"program","began":"2026-11-21 20:00:00","ended":"","seconds":0,"cause":"x"}],)"
         R"("advice":["Look at it."]})";
}

TEST(HistoryJson, AReportHasTheseNames) {
  EXPECT_EQ(ToJson(Night()).dump(), FullReport());
}

TEST(HistoryJson, AReportComesBackAsItWent) {
  EXPECT_EQ(NightFromJson(Json::parse(FullReport())), Night());
  EXPECT_EQ(NightFromJson(ToJson(Report())), Report());
}

/// Every member of every object, each taken away in turn.
void TakeAwayEach(const Json& whole, const Json::json_pointer& at) {
  const Json& here = whole.at(at);
  if (here.is_array() && !here.empty()) return TakeAwayEach(whole, at / 0);
  if (!here.is_object()) return;
  for (const auto& [name, value] : here.items()) {
    Json without = whole;
    without.at(at).erase(name);
    EXPECT_FALSE(NightFromJson(without)) << at << '/' << name;
    Json other = whole;
    other.at(at)[name] = Json::object();
    EXPECT_FALSE(NightFromJson(other)) << at << '/' << name;
    TakeAwayEach(whole, at / name);
  }
}

TEST(HistoryJson, AReportWithoutAnyOneMemberIsNone) {
  TakeAwayEach(Json::parse(FullReport()), Json::json_pointer());
}

TEST(HistoryJson, AMomentThatIsNoneIsRefused) {
  Json report = Json::parse(FullReport());
  report["from"] = "";
  EXPECT_FALSE(NightFromJson(report)) << "there is always one";
  report = Json::parse(FullReport());
  report["events"][0]["began"] = "soon";
  EXPECT_FALSE(NightFromJson(report));
  report["events"][0]["began"] = "";
  EXPECT_TRUE(NightFromJson(report)) << "it never began";
}

TEST(HistoryJson, EveryFateKindAndStateHasAWordOfItsOwn) {
  std::set<std::string> words;
  for (int i = 0; i < platform::kSongFates; ++i) {
    Report report = Night();
    report.OtherSongs[0].Fate = static_cast<platform::SongFate>(i);
    const Json json = ToJson(report);
    words.insert(json["otherSongs"][0]["fate"].get<std::string>());
    EXPECT_EQ(NightFromJson(json), report);
  }
  EXPECT_EQ(words.size(), static_cast<std::size_t>(platform::kSongFates));
  for (int i = 0; i < platform::kIncidentKinds; ++i) {
    Report report = Night();
    report.Incidents[0].Kind = static_cast<platform::IncidentKind>(i);
    EXPECT_EQ(NightFromJson(ToJson(report)), report);
  }
  for (int i = 0; i < 4; ++i) {
    Report report = Night();
    report.Events[0].State = static_cast<history::EventState>(i);
    EXPECT_EQ(NightFromJson(ToJson(report)), report);
  }
}

TEST(HistoryJson, PlaysComeBackAsTheyWent) {
  const std::vector<HistoryPlay> plays{Play()};
  const Json json = ToJson(plays);
  EXPECT_EQ(json.dump(),
            R"([{"from":"2026-11-21 20:00:00","to":"2026-11-21 20:03:45","channel":44,"station":"Harbour",)"
            R"("genre":"Rock","artist":"Moon","song":"River"}])");
  EXPECT_EQ(PlaysFromJson(json), plays);
  EXPECT_FALSE(PlaysFromJson(Json::object()));
  EXPECT_FALSE(PlaysFromJson(Json::parse(R"([{"from":"2026-11-21 20:00:00"}])")));
}

TEST(HistoryJson, WhatWasPlayedMostComesBackAsItWent) {
  const platform::PlayCount song{.Artist = "Moon", .Title = "River", .Plays = 12'345, .Last = kNight};
  const Json songs = ToJson(std::vector{song}, platform::PlayedAs::Song);
  EXPECT_EQ(songs.dump(),
            R"({"songs":[{"plays":12345,"artist":"Moon","song":"River","last":"2026-11-21 20:00:00"}]})");
  EXPECT_EQ(MostPlayedFromJson(songs)->As, platform::PlayedAs::Song);
  EXPECT_EQ(MostPlayedFromJson(songs)->Counts, std::vector{song});
  const platform::PlayCount artist{.Artist = "Moon", .Title = "", .Plays = 12'345, .Last = kNight};
  const Json artists = ToJson(std::vector{artist}, platform::PlayedAs::Artist);
  EXPECT_EQ(artists.dump(), R"({"artists":[{"plays":12345,"artist":"Moon","last":"2026-11-21 20:00:00"}]})");
  EXPECT_EQ(MostPlayedFromJson(artists)->As, platform::PlayedAs::Artist);
  EXPECT_EQ(MostPlayedFromJson(artists)->Counts, std::vector{artist});
  EXPECT_FALSE(MostPlayedFromJson(Json::array()));
  EXPECT_FALSE(MostPlayedFromJson(Json::parse(R"({"songs":[{"plays":1}]})")));
  EXPECT_FALSE(MostPlayedFromJson(Json::parse(R"({"artists":{}})")));
  EXPECT_EQ(PeopleText("history", songs),
            "Plays  Last              Artist  Song\n12345  2026-11-21 20:00  Moon    River\n");
  EXPECT_EQ(PeopleText("history", artists),
            "Plays  Last              Artist\n12345  2026-11-21 20:00  Moon\n");
  EXPECT_EQ(PeopleText("history", Json::parse(R"({"songs":[]})")), "nothing is found\n");
}

/// The names of all members, at any depth.
void NamesOf(const Json& json, std::set<std::string>& names) {
  if (json.is_object()) {
    for (const auto& [name, value] : json.items()) {
      names.insert(name);
      NamesOf(value, names);
    }
  }
  if (json.is_array())
    for (const Json& one : json) NamesOf(one, names);
}

TEST(HistoryJson, EveryMemberIsDocumented) {
  std::ifstream file(KESTRUNE_DOCS "/json.md");
  const std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const auto check = [&page](const std::string& command, const Json& json) {
    const std::size_t begin = page.find("\n## " + command + "\n");
    ASSERT_NE(begin, std::string::npos) << command;
    const std::string section = page.substr(begin, page.find("\n## ", begin + 1) - begin);
    std::set<std::string> names;
    NamesOf(json, names);
    for (const std::string& name : names)
      EXPECT_NE(section.find("`" + name + "`"), std::string::npos) << command << ": " << name;
  };
  check("report", ToJson(Night()));
  check("history", ToJson(std::vector{Play()}));
  check("history", ToJson(std::vector<platform::PlayCount>(1), platform::PlayedAs::Song));
  check("history", ToJson(std::vector<platform::PlayCount>(1), platform::PlayedAs::Artist));
}

TEST(HistoryJson, PeopleReadTheSame) {
  const auto report = PeopleText("report", ToJson(Night()));
  ASSERT_TRUE(report);
  EXPECT_TRUE(report->starts_with("Kestrune, Sat, Nov 21, 18:00 to Sun, Nov 22, 08:00\n\n1 event, "))
      << *report;
  EXPECT_EQ(PeopleText("history", ToJson(std::vector{Play()})),
            "From              For     Channel  Station  Artist  Song\n"
            "2026-11-21 20:00    3:45       44  Harbour  Moon    River\n");
  EXPECT_EQ(PeopleText("history", Json::array()), "nothing is found\n");
  EXPECT_FALSE(PeopleText("report", Json::array()));
  EXPECT_FALSE(PeopleText("history", Json::object()));
}

TEST(HistoryJson, NoTextReachesTheTerminalAsItIs) {
  const std::string evil =
      "a\x1B[2J\xE2\x80\xAE"
      "b";
  Report night = Night();
  night.Events[0].Station = night.Events[0].Why = night.Events[0].Songs[0].Title = evil;
  HistoryPlay play = Play();
  play.Station = play.Artist = play.Title = evil;
  const platform::PlayCount count{.Artist = evil, .Title = evil, .Plays = 1, .Last = kNight};
  for (const auto& text :
       {PeopleText("report", ToJson(night)), PeopleText("history", ToJson(std::vector{play})),
        PeopleText("history", ToJson(std::vector{count}, platform::PlayedAs::Song))}) {
    ASSERT_TRUE(text);
    EXPECT_EQ(text->find('\x1B'), std::string::npos);
    EXPECT_EQ(text->find("\xE2\x80\xAE"), std::string::npos) << "a mark that turns the direction of writing";
  }
}

TEST(HistoryJson, APlayWhoseEndLiesBeforeItsBeginningHasNoLength) {
  HistoryPlay play = Play();
  play.To = kNight.AddHours(-1);
  EXPECT_NE(PeopleText("history", ToJson(std::vector{play}))->find("  0:00"), std::string::npos);
}

}  // namespace
}  // namespace kestrune::control
