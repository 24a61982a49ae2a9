#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/ControlServer.h"
#include "support/FakeControlTarget.h"

namespace kestrune::control {
namespace {

/// What a line is answered with, at once.
std::string Dispatch(ControlTarget& target, std::string_view line) {
  std::vector<std::string> answers;
  control::Dispatch(target, line, [&answers](const std::string& answer) { answers.push_back(answer); });
  EXPECT_EQ(answers.size(), 1U) << line;
  return answers.empty() ? std::string() : answers.front();
}

using test::FakeControlTarget;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr std::string_view kDone = R"({"exit":0,"reason":"","result":null})";

struct Road {
  const char* Line;
  const char* Call;
};

TEST(ControlServer, EachCommandReachesItsDoor) {
  constexpr Road kRoads[] = {
      {R"({"command":"record"})", "Record"},
      {R"({"command":"stop"})", "Stop"},
      {R"({"command":"tune","arguments":["44"]})", "Tune 44"},
      {R"({"command":"tune","arguments":["255"]})", "Tune 255"},
      {R"({"command":"mute","arguments":["on"]})", "Mute true"},
      {R"({"command":"mute","arguments":["off"]})", "Mute false"},
      {R"({"command":"set","arguments":["AGCLowLevel","-10"]})", "Set AGCLowLevel=-10"},
      {R"({"command":"set","arguments":["FileDir",""]})", "Set FileDir="},
      {R"({"command":"schedule","arguments":["set","3","--at","20:00"]})", "SetSchedule 3"},
      {R"({"command":"schedule","arguments":["enable","1"]})", "EnableSchedule 1 true"},
      {R"({"command":"schedule","arguments":["disable","10"]})", "EnableSchedule 10 false"},
      {R"({"command":"schedule","arguments":["clear","2"]})", "ClearSchedule 2"},
      {R"({"command":"lists","arguments":["add","grab-artist","Moon"]})", "AddToList 0 Moon"},
      {R"({"command":"lists","arguments":["add","grab-song","Moon"]})", "AddToList 1 Moon"},
      {R"({"command":"lists","arguments":["add","kill-artist","Moon"]})", "AddToList 2 Moon"},
      {R"({"command":"lists","arguments":["remove","kill-song","Moon"]})", "RemoveFromList 3 Moon"},
      {R"({"command":"quit"})", "Quit"},
  };
  for (const Road& road : kRoads) {
    FakeControlTarget target;
    EXPECT_EQ(Dispatch(target, road.Line), kDone) << road.Line;
    EXPECT_THAT(target.Calls, ElementsAre(road.Call));

    target.NextResult = base::Result::Failed("the radio is busy");
    EXPECT_EQ(Dispatch(target, road.Line), R"({"exit":1,"reason":"the radio is busy","result":null})");
  }
}

TEST(ControlServer, AWishIsAnsweredWhenItHasBeenCarriedOut) {
  for (const char* command : {"record", "stop", "quit"}) {
    FakeControlTarget target;
    target.KeepWishes = true;
    std::vector<std::string> answers;
    const auto keep = [&answers](const std::string& answer) { answers.push_back(answer); };
    control::Dispatch(target, R"({"command":")" + std::string(command) + R"("})", keep);
    EXPECT_THAT(answers, IsEmpty());
    ASSERT_EQ(target.Kept.size(), 1U);
    target.Kept.front()(base::Result::Failed("too late"));
    EXPECT_THAT(answers, ElementsAre(R"({"exit":1,"reason":"too late","result":null})"));
  }
}

TEST(ControlServer, AQuestionIsAnsweredAlthoughAWishWaits) {
  FakeControlTarget target;
  target.KeepWishes = true;
  control::Dispatch(target, R"({"command":"record"})", [](const std::string& /*answer*/) {});
  EXPECT_THAT(Dispatch(target, R"({"command":"status"})"), StartsWith(R"({"exit":0)"));
}

TEST(ControlServer, StatusAnswersWithTheReport) {
  FakeControlTarget target;
  target.NextStatus.Station = "Fred";
  const std::string reply = Dispatch(target, R"({"command":"status"})");
  EXPECT_THAT(reply, StartsWith(R"({"exit":0,"reason":"","result":{"unit":"","version":"",)"));
  EXPECT_THAT(reply, HasSubstr(R"("station":"Fred")"));
  EXPECT_THAT(target.Calls, ElementsAre("Status"));
}

TEST(ControlServer, UpdateAnswersWithWhatTheServerSaid) {
  FakeControlTarget target;
  target.NextUpdate.Report = {.Running = "003.000.029", .Newer = true, .DownloadAddress = "https://h/a"};
  EXPECT_EQ(
      Dispatch(target, R"({"command":"update"})"),
      R"({"exit":0,"reason":"","result":{"running":"003.000.029","newer":true,"downloadAddress":"https://h/a"}})");
  EXPECT_THAT(target.Calls, ElementsAre("Update"));
  target.NextUpdate = {.Done = false, .Reason = "no server", .Report = {}};
  EXPECT_EQ(Dispatch(target, R"({"command":"update"})"), R"({"exit":1,"reason":"no server","result":null})");
}

TEST(ControlServer, ChannelsAnswersWithTheRows) {
  FakeControlTarget target;
  target.NextChannels = {{8, "80s on 8", "Decades", "a-ha", "Take On Me"}};
  EXPECT_EQ(Dispatch(target, R"({"command":"channels"})"),
            R"({"exit":0,"reason":"","result":[{"number":8,"station":"80s on 8","genre":"Decades",)"
            R"("artist":"a-ha","song":"Take On Me"}]})");
  EXPECT_THAT(target.Calls, ElementsAre("Channels"));
}

TEST(ControlServer, LogAsksForTwentyLinesOrTheGivenNumber) {
  FakeControlTarget target;
  target.Log = {"one", "two"};
  EXPECT_EQ(Dispatch(target, R"({"command":"log"})"), R"({"exit":0,"reason":"","result":["one","two"]})");
  EXPECT_THAT(Dispatch(target, R"({"command":"log","arguments":["5000"]})"), HasSubstr("one"));
  EXPECT_THAT(target.Calls, ElementsAre("LogLines 20", "LogLines 5000"));
}

TEST(ControlServer, AnEmptyLogIsAnEmptyArray) {
  FakeControlTarget target;
  EXPECT_EQ(Dispatch(target, R"({"command":"log"})"), R"({"exit":0,"reason":"","result":[]})");
}

TEST(ControlServer, GetAnswersWithTheValueOrIsRefused) {
  FakeControlTarget target;
  target.NextSetting = {true, "", "MP3"};
  EXPECT_EQ(Dispatch(target, R"({"command":"get","arguments":["FileFormat"]})"),
            R"({"exit":0,"reason":"","result":"MP3"})");
  target.NextSetting = {false, "there is no setting Foo", "left over"};
  EXPECT_EQ(Dispatch(target, R"({"command":"get","arguments":["Foo"]})"),
            R"({"exit":1,"reason":"there is no setting Foo","result":null})");
  EXPECT_THAT(target.Calls, ElementsAre("Get FileFormat", "Get Foo"));
}

TEST(ControlServer, AWrongRequestNeverReachesTheTarget) {
  const std::vector<std::string> lines{
      "",
      "quit",
      R"({"command":"quit","arguments":["now"]})",
      R"({"command":"quit","command":"quit"})",
      R"({"command":"tune","arguments":[44]})",
      R"({"command":"tune","arguments":["256"]})",
      R"({"command":"schedule","arguments":["set","3"]})",
      R"({"command":"schedule","arguments":["set","3","--at"]})",
      R"({"command":"schedule set","arguments":["3","--at","20:00"]})",
      R"({"command":"lists","arguments":["add","grab","Moon"]})",
      R"({"command":"lists","arguments":["add","grab-artist","  "]})",
      R"({"command":"QUIT"})",
      std::string(70000, 'x'),
      std::string(50000, '['),
      "{\"command\":\"quit\",\"arguments\":[\"\xC0\xAF\"]}",
  };
  FakeControlTarget target;
  for (const std::string& line : lines) {
    const std::string reply = Dispatch(target, line);
    EXPECT_THAT(reply, StartsWith(R"({"exit":2,"reason":")")) << line;
    EXPECT_EQ(reply.find('\n'), std::string::npos);
    EXPECT_LT(reply.size(), 500U);
  }
  EXPECT_THAT(target.Calls, IsEmpty());
}

TEST(ControlServer, StrangeBytesOfAStationGoOutAsOneLineOfUtf8) {
  FakeControlTarget target;
  target.NextStatus.Station = "a\nb\xFF\x1B";
  EXPECT_THAT(Dispatch(target, R"({"command":"status"})"), HasSubstr("\"a\\nb\xEF\xBF\xBD\\u001b\""));
}

TEST(ControlServer, QuestionsAboutTheRecordReachItAsTheyWereAsked) {
  const std::pair<const char*, const char*> kQuestions[] = {
      {R"({"command":"report"})", "Report "},
      {R"({"command":"report","arguments":["--last-night"]})", "Report "},
      {R"({"command":"report","arguments":["--since","yesterday 18:00"]})", "Report yesterday 18:00"},
      {R"({"command":"history"})", "History |0||0|50"},
      {R"({"command":"history","arguments":["--search","moon","--channel","44","--since","2d","--limit","7"]})",
       "History moon|44|2d|0|7"},
      {R"({"command":"history","arguments":["--search","--since","--limit","9"]})", "History --since|0||0|9"},
      {R"({"command":"history","arguments":["--days","3"]})", "History |0||3|50"},
      {R"({"command":"history","arguments":["--top","artists"]})", "MostPlayed artists|0||0|50"},
      {R"({"command":"history","arguments":["--days","7","--top","songs","--channel","44","--limit","5"]})",
       "MostPlayed songs|44||7|5"},
      {R"({"command":"history","arguments":["--since","2d","--top","artists"]})",
       "MostPlayed artists|0|2d|0|50"},
      {R"({"command":"cuts"})", "Cuts 0|20"},
      {R"({"command":"cuts","arguments":["--channel","44","--last","7"]})", "Cuts 44|7"},
  };
  for (const auto& [line, call] : kQuestions) {
    test::FakeControlTarget target;
    target.NextReport.Advice = {"Look at it."};
    target.NextPlays.emplace_back().Title = "River";
    target.NextCuts.emplace_back().Song = "River";
    target.NextCounts.emplace_back().Artist = "River";
    const std::string answer = Dispatch(target, line);
    EXPECT_THAT(target.Calls, ElementsAre(call));
    EXPECT_TRUE(answer.starts_with(R"({"exit":0,"reason":"","result":)")) << answer;
    EXPECT_NE(answer.find(call[0] == 'R' ? "Look at it." : "River"), std::string::npos) << answer;
    target.NextResult = base::Result::Failed("the disk failed");
    EXPECT_EQ(Dispatch(target, line), R"({"exit":1,"reason":"the disk failed","result":null})");
  }
}

TEST(ControlServer, HintsAreToldAtOnceOrRefused) {
  FakeControlTarget target;
  target.NextHints.Hints.emplace_back().Text = "Now on 47";
  for (const char* line : {R"({"command":"hints"})", R"({"command":"hints","arguments":["--follow"]})"}) {
    EXPECT_THAT(Dispatch(target, line), HasSubstr(R"("text":"Now on 47")"));
  }
  EXPECT_THAT(target.Calls, ElementsAre("Hints", "Hints"));
  target.NextHints = {.Done = false, .Reason = "off", .Hints = {}};
  EXPECT_EQ(Dispatch(target, R"({"command":"hints"})"), R"({"exit":1,"reason":"off","result":null})");
}

TEST(ControlServer, WhatIsToBeKeptReachesItAsItWasAsked) {
  const std::pair<const char*, const char*> kWishes[] = {
      {R"({"command":"keep"})", "Keep 1"},
      {R"({"command":"keep","arguments":["last"]})", "Keep 1"},
      {R"({"command":"keep","arguments":["17"]})", "Keep 17"},
      {R"({"command":"keep","arguments":["current"]})", "KeepCurrent"},
  };
  for (const auto& [line, call] : kWishes) {
    test::FakeControlTarget target;
    EXPECT_EQ(Dispatch(target, line), R"({"exit":0,"reason":"","result":null})");
    EXPECT_THAT(target.Calls, ElementsAre(call));
    target.NextResult = base::Result::Failed("nothing is on the shelf");
    EXPECT_EQ(Dispatch(target, line), R"({"exit":1,"reason":"nothing is on the shelf","result":null})");
  }
}

TEST(ControlServer, TheShelfIsToldAtOnce) {
  test::FakeControlTarget target;
  target.NextShelf.push_back({.Number = 1,
                              .Ended = base::DateValue::FromCivil(2026, 11, 21, 18, 0, 5),
                              .Channel = 47,
                              .Station = "Campfire",
                              .Genre = "Folk",
                              .Artist = "Abigail Wren",
                              .Song = "Winter Apples",
                              .LengthMs = 200000,
                              .Fate = platform::SongFate::TooShort,
                              .Incomplete = true,
                              .Bytes = 3200000000,
                              .File = "/music/Kestrune/Shelf/x.mp3"});
  EXPECT_EQ(
      Dispatch(target, R"({"command":"shelf"})"),
      R"({"exit":0,"reason":"","result":[{"number":1,"ended":"2026-11-21 18:00:05","channel":47,"station":"Campfire",)"
      R"("genre":"Folk","artist":"Abigail Wren","song":"Winter Apples","lengthMs":200000,"fate":"too short",)"
      R"("incomplete":true,"bytes":3200000000,"file":"/music/Kestrune/Shelf/x.mp3"}]})");
  EXPECT_THAT(target.Calls, ElementsAre("Shelf"));
}

TEST(ControlServer, WhatWasLearnedOfTheStationsIsToldAtOnce) {
  const std::pair<const char*, const char*> kQuestions[] = {
      {R"({"command":"cuts","arguments":["--stations"]})", "StationLags 0"},
      {R"({"command":"cuts","arguments":["--stations","--channel","44"]})", "StationLags 44"},
      {R"({"command":"cuts","arguments":["--channel","44","--stations"]})", "StationLags 44"},
  };
  for (const auto& [line, call] : kQuestions) {
    test::FakeControlTarget target;
    target.NextStationLags.emplace_back().Station = "Harbour";
    EXPECT_THAT(Dispatch(target, line), HasSubstr("Harbour"));
    EXPECT_THAT(target.Calls, ElementsAre(call));
  }
}

}  // namespace
}  // namespace kestrune::control
