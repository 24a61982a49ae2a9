#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "presenters/MostPlayed.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using presenters::MostPlayed;
using presenters::MostPlayedRow;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MostPlayedTest : public ::testing::Test {
 protected:
  MostPlayedTest() {
    Play(47, "Abigail Wren", "Winter Apples", 1);
    Play(47, "Abigail Wren", "Low Water", 2);
    Play(44, "abigail wren", "Winter Apples", 3);
    Play(44, "Lanterns", "North Pier", 10);
    Play(44, "Lanterns", "North Pier", 40);
  }
  void Play(std::int16_t channel, const char* artist, const char* title, int daysAgo) {
    const DateValue from = loop.Now().AddDays(-daysAgo).AddHours(1);
    store.Rows.Plays.push_back({.Channel = channel,
                                .Station = {},
                                .Genre = {},
                                .Artist = artist,
                                .Title = title,
                                .From = from,
                                .To = from});
  }
  /// "3 Abigail Wren - Title"
  [[nodiscard]] std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    for (const MostPlayedRow& row : rules->Rows())
      rows.push_back(row.Plays + " " + row.Artist + (row.Title.empty() ? "" : " - " + row.Title));
    return rows;
  }
  void Show() {
    rules->Show();
    loop.Run(1s);
  }
  void Choose(void (MostPlayed::*list)(int row), int row) {
    (rules.get()->*list)(row);
    loop.Run(1s);
  }

  SimulatedEventLoop loop;
  FakeHistoryStore store{loop};
  history::History history{store, loop};
  std::vector<schedule::SchedulerChannel> channels{{.Number = 47, .Station = "Campfire\nFolk"},
                                                   {.Number = 44, .Station = "Harbour"}};
  std::unique_ptr<MostPlayed> rules =
      std::make_unique<MostPlayed>(history, loop, [this] { return channels; });
};

TEST_F(MostPlayedTest, AWeekOfArtistsOnAllChannelsIsCountedFirst) {
  Show();
  EXPECT_THAT(Rows(), ElementsAre("3 Abigail Wren"));
  EXPECT_EQ(rules->Rows()[0].Last, base::FormatDate(loop.Now().AddDays(-1).AddHours(1), "ddd, mmm d, hh:nn"));
  EXPECT_EQ(rules->Message(), "1 artist");
  EXPECT_FALSE(rules->BySong());
  EXPECT_EQ(rules->Days().Text(), "the last 7 days");
  EXPECT_EQ(store.LastCount.Limit, MostPlayed::kRows);
}

TEST_F(MostPlayedTest, TheSongsOfOneChannelCanBeAskedForFromOutside) {
  rules->ShowSongsOf(47);
  loop.Run(1s);
  EXPECT_THAT(Rows(), ElementsAre("1 Abigail Wren - Winter Apples", "1 Abigail Wren - Low Water"));
  EXPECT_EQ(rules->Channels().Text(), "47 - Campfire Folk");
  rules->ShowSongsOf(99);
  loop.Run(1s);
  EXPECT_EQ(rules->Channels().Text(), "all channels");
  EXPECT_THAT(Rows(), ElementsAre("2 Abigail Wren - Winter Apples", "1 Abigail Wren - Low Water"));
}

TEST_F(MostPlayedTest, SongsAreCountedWithTheirTitles) {
  Show();
  Choose(&MostPlayed::cboPlayedAs, 1);
  EXPECT_THAT(Rows(), ElementsAre("2 Abigail Wren - Winter Apples", "1 Abigail Wren - Low Water"));
  EXPECT_TRUE(rules->BySong());
}

TEST_F(MostPlayedTest, OneChannelAlone) {
  Show();
  const std::vector<presenters::ChoiceRow>& rows = rules->Channels().Rows;
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].Text, "all channels");
  EXPECT_EQ(rows[1].Text, "44 - Harbour") << "by number";
  EXPECT_EQ(rows[2].Text.find('\n'), std::string::npos);
  Choose(&MostPlayed::cboPlayedChannel, 2);
  EXPECT_THAT(Rows(), ElementsAre("2 Abigail Wren"));
}

TEST_F(MostPlayedTest, AsManyDaysAsAreChosen) {
  Show();
  Choose(&MostPlayed::cboPlayedDays, 0);
  EXPECT_THAT(Rows(), ElementsAre("1 Abigail Wren"));
  Choose(&MostPlayed::cboPlayedDays, 2);
  EXPECT_THAT(Rows(), ElementsAre("3 Abigail Wren", "1 Lanterns"));
  Choose(&MostPlayed::cboPlayedDays, 3);
  EXPECT_THAT(Rows(), ElementsAre("3 Abigail Wren", "2 Lanterns"));
  EXPECT_FALSE(store.LastCount.Since.has_value());
}

TEST_F(MostPlayedTest, WhileItCountsItSaysSoAndShowsNothingOfTheQuestionBefore) {
  Show();
  const std::uint32_t changes = rules->Changes();
  rules->cboPlayedAs(1);
  EXPECT_EQ(rules->Message(), "Counting...");
  EXPECT_THAT(Rows(), IsEmpty());
  EXPECT_GT(rules->Changes(), changes);
}

TEST_F(MostPlayedTest, OnlyTheAnswerToTheLastQuestionIsTaken) {
  rules->Show();
  rules->cboPlayedAs(1);
  rules->cboPlayedDays(3);
  loop.Run(1s);
  EXPECT_THAT(Rows(), ElementsAre("2 Abigail Wren - Winter Apples", "2 Lanterns - North Pier",
                                  "1 Abigail Wren - Low Water"));
}

TEST_F(MostPlayedTest, AnAnswerAfterTheCloseIsNotTaken) {
  rules->Show();
  rules->Unload();
  const std::uint32_t changes = rules->Changes();
  loop.Run(1s);
  EXPECT_EQ(rules->Changes(), changes);
  EXPECT_THAT(Rows(), IsEmpty());
  Show();
  EXPECT_THAT(Rows(), ElementsAre("3 Abigail Wren"));
}

TEST_F(MostPlayedTest, AnAnswerAfterItsEndReachesNobody) {
  rules->Show();
  rules.reset();
  loop.Run(1s);
}

TEST_F(MostPlayedTest, WhatWasChosenStaysForTheNextTimeUnlessTheChannelIsGone) {
  Show();
  Choose(&MostPlayed::cboPlayedAs, 1);
  Choose(&MostPlayed::cboPlayedChannel, 1);
  rules->Unload();
  channels.insert(channels.begin(), {.Number = 2, .Station = "New"});
  Show();
  EXPECT_EQ(rules->Channels().Text(), "44 - Harbour");
  EXPECT_TRUE(rules->BySong());
  channels.clear();
  Show();
  EXPECT_EQ(rules->Channels().Text(), "all channels");
  EXPECT_EQ(store.LastCount.Channel, 0);
}

TEST_F(MostPlayedTest, NothingAndAFailureAreSaid) {
  store.Rows.Plays.clear();
  Show();
  EXPECT_EQ(rules->Message(), "Nothing was played there in that time.");
  store.QuestionFailure = "disk I/O error";
  Show();
  EXPECT_EQ(rules->Message(), "The record cannot be read: disk I/O error");
}

TEST_F(MostPlayedTest, ThoseBeyondTheFirstAreNotShown) {
  for (std::size_t song = 0; song <= MostPlayed::kRows; ++song)
    Play(44, "Many", std::to_string(song).c_str(), 1);
  Show();
  Choose(&MostPlayed::cboPlayedAs, 1);
  EXPECT_EQ(rules->Rows().size(), MostPlayed::kRows);
  EXPECT_EQ(rules->Message(), "The first 200 songs");
}

TEST_F(MostPlayedTest, ARowThatIsNotThereIsIgnored) {
  Show();
  const std::uint32_t changes = rules->Changes();
  rules->cboPlayedAs(-1);
  rules->cboPlayedDays(4);
  rules->cboPlayedChannel(3);
  EXPECT_EQ(rules->Changes(), changes);
}

TEST_F(MostPlayedTest, AStrangersTextIsOneLine) {
  Play(44, "Salt\nSun", "Red\x1b[31m", 1);
  Choose(&MostPlayed::cboPlayedAs, 1);
  for (const MostPlayedRow& row : rules->Rows())
    EXPECT_EQ((row.Artist + row.Title).find_first_of("\n\x1b"), std::string::npos);
}

}  // namespace
}  // namespace kestrune::test
