#include <gtest/gtest.h>

#include "receiver/Timeline.h"

namespace kestrune::test {
namespace {

using receiver::Playing;
using receiver::PlayingAt;
using receiver::Station;
using receiver::TextAt;
using std::chrono::milliseconds;
using std::chrono::seconds;

Station ThreeSongs() {
  return {
      8, "Eight", "Genre", {{"A", "a", seconds(10)}, {"B", "b", seconds(20)}, {"C", "c", seconds(5)}}, {}};
}

TEST(Timeline, ASongPlaysFromItsStartUpToTheNext) {
  const Station station = ThreeSongs();
  EXPECT_EQ(PlayingAt(station, seconds(0)).Index, 0U);
  EXPECT_EQ(PlayingAt(station, milliseconds(9999)).Index, 0U);
  const Playing second = PlayingAt(station, seconds(10));
  EXPECT_EQ(second.Index, 1U);
  EXPECT_EQ(second.What, &station.Songs[1]);
  EXPECT_EQ(second.Start, seconds(10));
  EXPECT_EQ(second.End, seconds(30));
}

TEST(Timeline, AfterTheLastSongTheFirstComesAgain) {
  const Playing again = PlayingAt(ThreeSongs(), seconds(35 * 1000 + 3));
  EXPECT_EQ(again.Index, 0U);
  EXPECT_EQ(again.Start, seconds(35 * 1000));
}

TEST(Timeline, APhasePutsTheStationIntoItsRound) {
  Station station = ThreeSongs();
  station.Phase = seconds(12);
  const Playing playing = PlayingAt(station, seconds(0));
  EXPECT_EQ(playing.Index, 1U);
  EXPECT_EQ(playing.Start, seconds(-2));
  EXPECT_EQ(playing.End, seconds(18));
}

TEST(Timeline, AStationWithoutSongsPlaysNothing) {
  EXPECT_EQ(PlayingAt(Station(), seconds(1)).What, nullptr);
}

TEST(Timeline, SongsFollowWithoutAGap) {
  const Station station = ThreeSongs();
  milliseconds time{0};
  for (int i = 0; i < 30; ++i) {
    const Playing playing = PlayingAt(station, time);
    EXPECT_EQ(playing.Start, time);
    EXPECT_EQ(playing.Index, static_cast<std::size_t>(i % 3));
    time = playing.End;
  }
}

TEST(Timeline, TheTextRunsAheadByTheLead) {
  const Station station = ThreeSongs();
  EXPECT_EQ(TextAt(station, milliseconds(9399), milliseconds(600)).Index, 0U);
  EXPECT_EQ(TextAt(station, milliseconds(9400), milliseconds(600)).Index, 1U);
  EXPECT_EQ(TextAt(station, milliseconds(11999), milliseconds(-2000)).Index, 0U);
  EXPECT_EQ(TextAt(station, milliseconds(12000), milliseconds(-2000)).Index, 1U);
}

TEST(Timeline, ASongsOwnLeadPutsItsTextElsewhere) {
  Station station = ThreeSongs();
  station.Songs[1].Lead = seconds(-2);
  station.Songs[2].Lead = seconds(2);
  EXPECT_EQ(TextAt(station, milliseconds(11999), milliseconds(600)).Index, 0U);
  EXPECT_EQ(TextAt(station, milliseconds(12000), milliseconds(600)).Index, 1U);
  EXPECT_EQ(TextAt(station, milliseconds(27999), milliseconds(600)).Index, 1U);
  const Playing third = TextAt(station, milliseconds(28000), milliseconds(600));
  EXPECT_EQ(third.Index, 2U);
  EXPECT_EQ(third.Start, seconds(30));
  EXPECT_EQ(TextAt(station, milliseconds(34399), milliseconds(600)).Index, 2U);
  EXPECT_EQ(TextAt(station, milliseconds(34400), milliseconds(600)).Index, 0U);
}

TEST(Timeline, AStationWithoutSongsShowsNothing) {
  EXPECT_EQ(TextAt(Station(), seconds(1), seconds(1)).What, nullptr);
}

}  // namespace
}  // namespace kestrune::test
