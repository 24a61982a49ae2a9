#include <string>

#include <gtest/gtest.h>

#include "history/OnAir.h"

namespace kestrune::history {
namespace {

using base::DateValue;
using platform::HistoryPlay;

const DateValue kBegin = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

Playing Song(std::string_view artist, std::string_view title) {
  return {.Station = "Harbour", .Genre = "Rock", .Artist = artist, .Title = title};
}

HistoryPlay Row(std::string artist, std::string title, std::int64_t from, std::int64_t to) {
  return {.Channel = 44,
          .Station = "Harbour",
          .Genre = "Rock",
          .Artist = std::move(artist),
          .Title = std::move(title),
          .From = kBegin.AddSeconds(from),
          .To = kBegin.AddSeconds(to)};
}

class OnAirTest : public testing::Test {
 protected:
  std::optional<HistoryPlay> Hear(std::int64_t second, const Playing& playing, std::int16_t channel = 44) {
    return OnTheAir.Heard(channel, playing, kBegin.AddSeconds(second));
  }
  OnAir OnTheAir;
};

TEST_F(OnAirTest, AChangeOfTextEndsOneRowAndBeginsTheNext) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_FALSE(Hear(48, Song("Moon", "River")));
  EXPECT_EQ(Hear(96, Song("Moon", "Lake")), Row("Moon", "River", 0, 96));
  EXPECT_EQ(Hear(144, Song("Sun", "Lake")), Row("Moon", "Lake", 96, 144)) << "the artist counts too";
}

TEST_F(OnAirTest, StationAndGenreDoNotMakeAnotherSong) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_FALSE(Hear(48, {.Station = "Port", .Genre = "Pop", .Artist = "Moon", .Title = "River"}));
  EXPECT_EQ(Hear(96, Song("", "")), Row("Moon", "River", 0, 96));
}

TEST_F(OnAirTest, NoTextIsNoSong) {
  EXPECT_FALSE(Hear(0, Song("", "")));
  EXPECT_FALSE(Hear(48, Song("Moon", "River")));
  EXPECT_TRUE(Hear(96, Song("", "")));
  EXPECT_FALSE(Hear(144, Song("", "")));
  EXPECT_TRUE(OnTheAir.End().empty());
}

TEST_F(OnAirTest, ATitleAloneIsASong) {
  EXPECT_FALSE(Hear(0, Song("", "News")));
  EXPECT_EQ(Hear(48, Song("", "Sport")), Row("", "News", 0, 48));
}

TEST_F(OnAirTest, AfterALongSilenceTheSongEndedWhenItWasLastHeardOf) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_FALSE(Hear(300, Song("Moon", "River")));
  EXPECT_EQ(Hear(601, Song("Sun", "Lake")), Row("Moon", "River", 0, 300));
}

TEST_F(OnAirTest, TheSameTextAfterALongSilenceIsAnotherPlay) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_EQ(Hear(301, Song("Moon", "River")), Row("Moon", "River", 0, 0));
  EXPECT_EQ(Hear(400, Song("Sun", "Lake")), Row("Moon", "River", 301, 400));
}

TEST_F(OnAirTest, AClockThatIsSetBackLeavesNoNegativeLength) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_FALSE(Hear(-3600, Song("Moon", "River")));
  EXPECT_EQ(Hear(-3500, Song("Sun", "Lake")), Row("Moon", "River", 0, 0));
}

TEST_F(OnAirTest, ChannelsAreKeptApart) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River"), 1));
  EXPECT_FALSE(Hear(0, Song("Sun", "Lake"), 255));
  EXPECT_FALSE(Hear(48, Song("Moon", "River"), 1));
  EXPECT_EQ(Hear(96, Song("Sun", "Sea"), 255)->Channel, 255);
  EXPECT_EQ(OnTheAir.End().size(), 2U);
}

TEST_F(OnAirTest, WhatIsNoChannelPlaysNothing) {
  for (const std::int16_t channel : {-32768, -1, 0, 256, 32767})
    EXPECT_FALSE(Hear(0, Song("Moon", "River"), channel));
  EXPECT_TRUE(OnTheAir.End().empty());
}

TEST_F(OnAirTest, TheEndEndsEverySongWhenItWasLastHeardOf) {
  EXPECT_FALSE(Hear(0, Song("Moon", "River")));
  EXPECT_FALSE(Hear(48, Song("Moon", "River")));
  EXPECT_EQ(OnTheAir.End(), std::vector<HistoryPlay>{Row("Moon", "River", 0, 48)});
  EXPECT_TRUE(OnTheAir.End().empty());
}

TEST_F(OnAirTest, ATextThatIsTooLongIsCutAndStaysTheSameSong) {
  const std::string longTitle(300, 'x');
  EXPECT_FALSE(Hear(0, Song("Moon", longTitle)));
  EXPECT_FALSE(Hear(48, Song("Moon", longTitle)));
  EXPECT_EQ(OnTheAir.End().at(0).Title, std::string(255, 'x'));
}

}  // namespace
}  // namespace kestrune::history
