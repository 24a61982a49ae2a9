#include <set>

#include <gtest/gtest.h>

#include "receiver/LineUp.h"
#include "receiver/WireText.h"

namespace kestrune::test {
namespace {

using receiver::LineUp;
using receiver::Station;
using receiver::WireText;

void ExpectInOrder(const LineUp& lineUp) {
  int last = 0;
  for (const Station& station : lineUp.Stations) {
    EXPECT_GT(station.Number, last);
    EXPECT_LE(station.Number, 255);
    EXPECT_NE(station.Number, 2) << "the program never shows channel 2";
    last = station.Number;
  }
}

TEST(BuiltInLineUp, HasTwentyFiveStationsRisingByNumber) {
  const LineUp lineUp = receiver::BuiltInLineUp();
  EXPECT_EQ(lineUp.Stations.size(), 25U);
  ExpectInOrder(lineUp);
}

TEST(BuiltInLineUp, EverySongHasTextsAndALengthAndIsAnotherOne) {
  std::set<std::string> seen;
  for (const Station& station : receiver::BuiltInLineUp().Stations) {
    EXPECT_FALSE(station.Name.empty());
    EXPECT_LE(WireText(station.Name, 100).find('\0'), 16U) << station.Name;
    EXPECT_FALSE(station.Genre.empty());
    EXPECT_FALSE(station.Songs.empty());
    for (const receiver::Song& song : station.Songs) {
      EXPECT_FALSE(song.Artist.empty());
      EXPECT_FALSE(song.Title.empty());
      EXPECT_GE(song.Length, std::chrono::minutes(1));
      EXPECT_TRUE(seen.insert(song.Artist + "|" + song.Title).second) << song.Artist << " " << song.Title;
      EXPECT_EQ(WireText(song.Artist + song.Title, 200).find('?') != std::string::npos,
                (song.Artist + song.Title).find('?') != std::string::npos)
          << song.Artist << " " << song.Title << " has a character that the radio cannot send";
    }
  }
}

TEST(LineUp, FindsAStationByItsNumber) {
  const LineUp lineUp = receiver::BuiltInLineUp();
  ASSERT_NE(lineUp.Find(8), nullptr);
  EXPECT_EQ(lineUp.Find(8)->Name, "Neon 80s");
  EXPECT_EQ(lineUp.Find(0), nullptr);
  EXPECT_EQ(lineUp.Find(3), nullptr);
  EXPECT_EQ(lineUp.Find(255), nullptr);
}

TEST(LineUp, WalksFromStationToStation) {
  const LineUp lineUp = receiver::BuiltInLineUp();
  int number = 0;
  std::size_t count = 0;
  while (const Station* station = lineUp.After(number)) {
    EXPECT_EQ(station, &lineUp.Stations[count]);
    number = station->Number;
    ++count;
  }
  EXPECT_EQ(count, 25U);
}

TEST(LineUp, SongLengthCanBeSetForAll) {
  LineUp lineUp = receiver::BuiltInLineUp();
  lineUp.SetSongLength(std::chrono::seconds(7));
  for (const Station& station : lineUp.Stations) {
    for (const receiver::Song& song : station.Songs) EXPECT_EQ(song.Length, std::chrono::seconds(7));
  }
}

TEST(LineUpOfSize, HasTheNumberOfChannelsAskedFor) {
  for (const int channels : {0, 1, 2, 100, 254}) {
    const LineUp lineUp = receiver::LineUpOfSize(channels);
    EXPECT_EQ(lineUp.Stations.size(), static_cast<std::size_t>(channels));
    ExpectInOrder(lineUp);
  }
  EXPECT_EQ(receiver::LineUpOfSize(1000).Stations.size(), 254U);
}

TEST(LineUpFromJson, ReadsStationsAndSortsThem) {
  const auto [lineUp, error] = receiver::LineUpFromJson(R"({"stations": [
      {"number": 9, "name": "Nine", "genre": "Late"},
      {"number": 3, "name": "Three", "genre": "Early", "phase": 1.5,
       "songs": [{"artist": "Émile", "title": "Un", "length": 90.25}]}]})");
  EXPECT_EQ(error, "");
  ASSERT_EQ(lineUp.Stations.size(), 2U);
  const Station& three = lineUp.Stations[0];
  EXPECT_EQ(three.Number, 3);
  EXPECT_EQ(three.Name, "Three");
  EXPECT_EQ(three.Genre, "Early");
  EXPECT_EQ(three.Phase, std::chrono::milliseconds(1500));
  ASSERT_EQ(three.Songs.size(), 1U);
  EXPECT_EQ(three.Songs[0].Artist, "Émile");
  EXPECT_EQ(three.Songs[0].Title, "Un");
  EXPECT_EQ(three.Songs[0].Length, std::chrono::milliseconds(90250));
  EXPECT_TRUE(lineUp.Stations[1].Songs.empty());
}

TEST(LineUpFromJson, ASongHasAJoinAndALeadOfItsOwn) {
  const auto [lineUp, error] = receiver::LineUpFromJson(R"({"stations": [
      {"number": 3, "name": "Three", "genre": "", "songs": [
        {"artist": "A", "title": "1", "length": 9, "join": "talk", "lead": -1.25},
        {"artist": "A", "title": "2", "length": 9, "join": "silence"},
        {"artist": "A", "title": "3", "length": 9}]}]})");
  EXPECT_EQ(error, "");
  const std::vector<receiver::Song>& songs = lineUp.Stations.at(0).Songs;
  EXPECT_EQ(songs[0].Join, receiver::JoinKind::Talk);
  EXPECT_EQ(songs[0].Lead, std::chrono::milliseconds(-1250));
  EXPECT_EQ(songs[1].Join, receiver::JoinKind::Silence);
  EXPECT_EQ(songs[1].Lead, std::nullopt);
  EXPECT_EQ(songs[2].Join, receiver::JoinKind::NaturalEnd);
}

TEST(LineUpFromJson, SaysWhatIsWrong) {
  const struct {
    const char* Json;
    const char* Error;
  } rows[] = {
      {"{", "the line-up is not JSON"},
      {"[]", "the line-up needs a list \"stations\""},
      {R"({"stations": 1})", "the line-up needs a list \"stations\""},
      {R"({"stations": [1]})", "a station is not an object"},
      {R"({"stations": [{"number": "1"}]})", "a station needs a \"number\""},
      {R"({"stations": [{"number": 0}]})", "number 0 is not within 1 to 255"},
      {R"({"stations": [{"number": 256}]})", "number 256 is not within 1 to 255"},
      {R"({"stations": [{"number": 4, "name": "x"}]})", "station 4 needs a \"name\" and a \"genre\""},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "", "phase": -1}]})",
       "station 4: \"phase\" is not a number of seconds"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "", "songs": 1}]})",
       "station 4: \"songs\" is not a list"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "", "songs": [1]}]})",
       "station 4: a song is not an object"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "", "songs": [{"artist": ""}]}]})",
       "station 4: a song needs an \"artist\" and a \"title\""},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "",
          "songs": [{"artist": "", "title": "", "length": 0}]}]})",
       "station 4: a song needs a \"length\" in seconds above 0"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "",
          "songs": [{"artist": "", "title": "", "length": 1, "join": "loud"}]}]})",
       "station 4: a \"join\" is not silence, natural, hard, segue or talk"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "",
          "songs": [{"artist": "", "title": "", "length": 1, "join": 1}]}]})",
       "station 4: a \"join\" is not silence, natural, hard, segue or talk"},
      {R"({"stations": [{"number": 4, "name": "x", "genre": "",
          "songs": [{"artist": "", "title": "", "length": 1, "lead": 61}]}]})",
       "station 4: a \"lead\" is not a number of seconds from -60 to 60"},
      {R"({"stations": [{"number": 4, "name": "", "genre": ""}, {"number": 4, "name": "", "genre": ""}]})",
       "station 4 is listed twice"},
  };
  for (const auto& row : rows) {
    const auto result = receiver::LineUpFromJson(row.Json);
    EXPECT_EQ(result.Error, row.Error) << row.Json;
    EXPECT_TRUE(result.Value.Stations.empty()) << row.Json;
  }
}

TEST(WireText, IsOneByteACharacterFilledUpWithZeros) {
  EXPECT_EQ(WireText("Été", 5), std::string("\xC9t\xE9\0\0", 5));
  EXPECT_EQ(WireText("€Ÿ’", 3), "\x80\x9F\x92");
}

TEST(WireText, IsCutAtItsWidthInCharacters) {
  EXPECT_EQ(WireText("ééééé", 3), "\xE9\xE9\xE9");
}

TEST(WireText, AForeignCharacterBecomesAQuestionMark) {
  EXPECT_EQ(WireText("a語b", 3), "a?b");
  EXPECT_EQ(WireText("😀", 1), "?");
}

TEST(WireText, BrokenUtf8LosesNothingElse) {
  EXPECT_EQ(WireText("a\xC3", 2), "a\xC3");
}

}  // namespace
}  // namespace kestrune::test
