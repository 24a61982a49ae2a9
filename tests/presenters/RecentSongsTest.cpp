#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/History.h"
#include "presenters/RecentSongs.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::SongFate;
using presenters::KeptRow;
using presenters::RecentSongs;
using ::testing::ElementsAre;
using ::testing::Optional;
using ::testing::SizeIs;

class RecentSongsTest : public ::testing::Test {
 protected:
  /// In the record of an earlier run.
  void Before(int minutesAgo, const char* title, std::int64_t lengthMs = 200'000,
              SongFate fate = SongFate::Kept, const char* file = nullptr) {
    platform::HistorySong song;
    song.Ended = loop.Now().AddMinutes(-minutesAgo);
    song.Began = song.Ended.AddMinutes(-4);
    song.Artist = "Abigail Wren";
    song.Title = title;
    song.LengthMs = lengthMs;
    song.Fate = fate;
    song.File = file == nullptr ? std::string("/music/") + title + ".mp3" : file;
    store.Rows.Songs.push_back(song);
  }
  void Ends(const char* title, SongFate fate = SongFate::Kept, std::int64_t lengthMs = 180'000) {
    recording.EndedSongs.Add({.Number = 0,
                              .Channel = 47,
                              .Station = "Campfire Folk",
                              .Artist = "Abigail Wren",
                              .Song = title,
                              .LengthMs = lengthMs,
                              .Fate = fate,
                              .Path = std::string("/music/") + title + ".mp3"});
  }
  void Follow() {
    songs.Follow();
    loop.Run(1s);
  }
  [[nodiscard]] std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    for (const KeptRow& row : songs.Kept()) titles.push_back(row.Title);
    return titles;
  }

  SimulatedEventLoop loop;
  FakeHistoryStore store{loop};
  history::History history{store, loop};
  recorder::RecordingState recording;
  RecentSongs songs{recording, history, loop};
};

TEST_F(RecentSongsTest, ListsWhatEarlierRunsKeptTheNewestFirst) {
  Before(20, "Low Water", 203'999);
  Before(60, "North Pier");
  Before(10, "Slow Tide", 1'000, SongFate::TooShort);
  Before(5, "Winter Apples", 65'000, SongFate::KeptLater);
  Before(3, "No File", 65'000, SongFate::Kept, "");
  Follow();
  EXPECT_THAT(Titles(), ElementsAre("Winter Apples", "Low Water", "North Pier"));
  EXPECT_EQ(songs.Kept()[0], (KeptRow{.Time = "11:55",
                                      .Artist = "Abigail Wren",
                                      .Title = "Winter Apples",
                                      .Length = "1:05",
                                      .File = "/music/Winter Apples.mp3"}));
  EXPECT_EQ(songs.Kept()[1].Length, "3:23");
}

TEST_F(RecentSongsTest, AsksOnceAndNotForWhatIsOlderThanAWeek) {
  Before(7 * 24 * 60 + 5, "Long Ago");
  Before(7 * 24 * 60 - 5, "A Week Ago");
  Follow();
  EXPECT_THAT(Titles(), ElementsAre("A Week Ago"));
  Before(1, "Never Asked For");
  Follow();
  EXPECT_THAT(Titles(), SizeIs(1));
}

TEST_F(RecentSongsTest, WhatIsKeptNowComesToTheFrontOnce) {
  Before(20, "Low Water");
  Follow();
  const std::uint32_t before = songs.Changes();
  Ends("One");
  Ends("Dropped", SongFate::Killed);
  Ends("Two", SongFate::KeptIncomplete);
  Follow();
  EXPECT_THAT(Titles(), ElementsAre("Two", "One", "Low Water"));
  EXPECT_GT(songs.Changes(), before);
  const std::uint32_t after = songs.Changes();
  Follow();
  EXPECT_THAT(Titles(), SizeIs(3));
  EXPECT_EQ(songs.Changes(), after);
}

TEST_F(RecentSongsTest, ASongOfThisRunThatTheAnswerHasTooIsListedOnce) {
  Before(1, "One");
  Ends("One");
  Follow();
  EXPECT_THAT(Titles(), ElementsAre("One"));
}

TEST_F(RecentSongsTest, ARecordThatCannotBeReadCostsNoneOfThisRun) {
  store.QuestionFailure = "the disk is gone";
  Before(20, "Low Water");
  Ends("One");
  Follow();
  EXPECT_THAT(Titles(), ElementsAre("One"));
}

TEST_F(RecentSongsTest, TheListIsBoundAndItsTimesGetTheirDayAtMidnight) {
  for (int song = 0; song < 50; ++song) Before(60 - song, ("Song " + std::to_string(song)).c_str());
  Follow();
  EXPECT_THAT(songs.Kept(), SizeIs(RecentSongs::kMostKept));
  EXPECT_EQ(songs.Kept()[0].Title, "Song 49");
  EXPECT_EQ(songs.Kept()[0].Time, "11:49");
  loop.Run(13h);
  Follow();
  EXPECT_THAT(songs.Kept()[0].Time, ::testing::EndsWith(", 11:49"));
  EXPECT_THAT(songs.Kept(), SizeIs(RecentSongs::kMostKept));
}

TEST_F(RecentSongsTest, ASongIsAsLongAsItWasAtTheMost) {
  Before(100, "Low Water", 200'000);
  Before(20, "Low Water", 90'000, SongFate::NotWanted, "");
  Follow();
  EXPECT_THAT(songs.LengthOf("abigail wren", "LOW WATER"), Optional(200'000));
  Ends("Low Water", SongFate::Killed, 210'000);
  Follow();
  EXPECT_THAT(songs.LengthOf("Abigail Wren", "Low Water"), Optional(210'000));
  EXPECT_EQ(songs.LengthOf("Abigail Wren", "Other"), std::nullopt);
  EXPECT_EQ(songs.LengthOf("", ""), std::nullopt);
}

TEST_F(RecentSongsTest, TheLengthOfASongNotHeardForAWeekIsForgotten) {
  Before(60, "Low Water");
  Before(60, "North Pier");
  Follow();
  loop.Run(std::chrono::hours(24 * 5));
  Ends("North Pier");
  Follow();
  EXPECT_THAT(songs.LengthOf("Abigail Wren", "Low Water"), Optional(200'000));
  loop.Run(std::chrono::hours(24 * 3));
  Follow();
  EXPECT_EQ(songs.LengthOf("Abigail Wren", "Low Water"), std::nullopt);
  EXPECT_THAT(songs.LengthOf("Abigail Wren", "North Pier"), Optional(200'000));
}

}  // namespace
}  // namespace kestrune::test
