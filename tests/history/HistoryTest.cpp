#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "history/History.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::history {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using platform::HistorySong;
using platform::IncidentKind;

const DateValue kBegin = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

class HistoryTest : public testing::Test {
 protected:
  HistoryTest() { Chronicle.Begin(); }

  static HistorySong Song(std::string title) {
    HistorySong song;
    song.Began = kBegin;
    song.Ended = kBegin.AddMinutes(3);
    song.Title = std::move(title);
    return song;
  }
  static EventStart Event() {
    return {.Entry = 3,
            .Due = kBegin,
            .PlannedSeconds = 7200,
            .Channel = 44,
            .Station = "Harbour",
            .WholeSongs = true};
  }
  static Playing Text(std::string_view title) {
    return {.Station = "S", .Genre = "G", .Artist = "A", .Title = title};
  }

  test::SimulatedEventLoop Loop{kBegin};
  test::FakeHistoryStore Store{Loop};
  History Chronicle{Store, Loop};
};

TEST_F(HistoryTest, ARunIsKnownFromItsBeginningAndSeenEveryMinute) {
  ASSERT_EQ(Store.Rows.Runs.size(), 1U);
  EXPECT_EQ(Store.Rows.Runs[0], (platform::HistoryRun{.Began = kBegin, .Alive = kBegin, .Closed = false}));
  Loop.Run(10min);
  ASSERT_EQ(Store.Rows.Runs.size(), 1U);
  EXPECT_EQ(Store.Rows.Runs[0].Alive, kBegin.AddMinutes(10));
  EXPECT_FALSE(Store.Rows.Runs[0].Closed);
  EXPECT_EQ(Store.Writes, 11);
}

TEST_F(HistoryTest, ARunThatIsClosedSaysSoAndNothingComesAfter) {
  Loop.Run(30s);
  Chronicle.Close("closed");
  ASSERT_EQ(Store.Rows.Runs.size(), 1U);
  EXPECT_TRUE(Store.Rows.Runs[0].Closed);
  EXPECT_EQ(Store.Rows.Runs[0].Alive, kBegin.AddSeconds(30));
  const int writes = Store.Writes;
  Chronicle.SongEnded(Song("late"));
  Chronicle.EventBegan(Event());
  Chronicle.EventMissed(Event(), "late");
  Chronicle.IncidentBegan(IncidentKind::Line, "late");
  Chronicle.IncidentHappened(IncidentKind::Sleep, kBegin, kBegin, 0s, "late");
  Chronicle.Heard(44, Text("late"));
  Chronicle.Close("again");
  Loop.Run(10min);
  EXPECT_EQ(Store.Writes, writes);
}

TEST_F(HistoryTest, NothingIsCollectedBeforeTheRunBegins) {
  test::FakeHistoryStore store(Loop);
  {
    History history(store, Loop);
    history.SongEnded(Song("early"));
    history.Heard(44, Text("a"));
    history.Heard(44, Text("b"));
    Loop.Run(10min);
    history.Close("never begun");
  }
  EXPECT_EQ(store.Writes, 0);
}

TEST_F(HistoryTest, ARunWhoseCloseIsNeverCalledStaysOpen) {
  test::FakeHistoryStore store(Loop);
  {
    History history(store, Loop);
    history.Begin();
  }
  EXPECT_FALSE(store.Rows.Runs.at(0).Closed);
}

TEST_F(HistoryTest, SongsWaitTwoSecondsAndGoInOnePiece) {
  const int writes = Store.Writes;
  Chronicle.SongEnded(Song("one"));
  Loop.Run(1s);
  Chronicle.SongEnded(Song("two"));
  EXPECT_TRUE(Store.Rows.Songs.empty()) << "never within the call";
  Loop.Run(1s);
  EXPECT_EQ(Store.Rows.Songs.size(), 2U);
  EXPECT_EQ(Store.Writes, writes + 1);
}

TEST_F(HistoryTest, WhatOtherChannelsPlayWaitsForTheMinute) {
  Loop.Run(1s);
  Chronicle.Heard(44, Text("one"));
  Chronicle.Heard(44, Text("two"));
  Loop.Run(50s);
  EXPECT_TRUE(Store.Rows.Plays.empty());
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Plays.size(), 1U);
  EXPECT_EQ(Store.Rows.Plays[0].Title, "one");
}

TEST_F(HistoryTest, WhatWasLearnedWaitsForTheMinuteAndTheLastOfAChannelGoes) {
  Loop.Run(1s);
  const int writes = Store.Writes;
  Chronicle.LagLearned({.Channel = 44, .Changed = kBegin, .Model = "one"});
  Chronicle.LagLearned({.Channel = 7, .Changed = kBegin, .Model = "other"});
  Chronicle.LagLearned({.Channel = 44, .Changed = kBegin.AddSeconds(1), .Model = "two"});
  Loop.Run(50s);
  EXPECT_EQ(Store.Writes, writes);
  Loop.Run(10s);
  EXPECT_EQ(Store.Writes, writes + 1);
  ASSERT_EQ(Store.Rows.Lags.size(), 2U);
  EXPECT_EQ(Store.Rows.Lags[0].Model, "two");
}

TEST_F(HistoryTest, WhatWasLearnedGoesWithASongAndWithTheEnd) {
  Chronicle.LagLearned({.Channel = 44, .Changed = kBegin, .Model = "one"});
  Chronicle.SongEnded(Song("one"));
  Loop.Run(2s);
  ASSERT_EQ(Store.Rows.Lags.size(), 1U);
  Chronicle.LagLearned({.Channel = 44, .Changed = kBegin, .Model = "two"});
  Chronicle.Close("closed");
  EXPECT_EQ(Store.Rows.Lags.at(0).Model, "two");
  Chronicle.LagLearned({.Channel = 44, .Changed = kBegin, .Model = "late"});
  Loop.Run(10min);
  EXPECT_EQ(Store.Rows.Lags.at(0).Model, "two");
}

TEST_F(HistoryTest, AQuestionForCutsSeesTheSongThatHasJustEnded) {
  HistorySong song = Song("one");
  song.Cut = platform::HistoryCut{};
  Chronicle.SongEnded(song);
  std::vector<HistorySong> got;
  Chronicle.AskCuts({}, [&got](const base::Result&, const std::vector<HistorySong>& songs) { got = songs; });
  Loop.Run(1s);
  EXPECT_EQ(got, std::vector{song});
}

TEST_F(HistoryTest, AFloodOfTextsDoesNotWaitForTheMinute) {
  for (int i = 0; i <= 500; ++i) Chronicle.Heard(44, Text(std::to_string(i)));
  Loop.Run(2s);
  EXPECT_EQ(Store.Rows.Plays.size(), 500U);
}

TEST_F(HistoryTest, AnEventIsThereWhileItRunsAndReplacedAtItsEnd) {
  Chronicle.EventBegan(Event());
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Events.size(), 1U);
  EXPECT_EQ(Store.Rows.Events[0].Began, kBegin);
  EXPECT_FALSE(Store.Rows.Events[0].Ended);
  EXPECT_TRUE(Store.Rows.Events[0].WholeSongs);
  Chronicle.EventEnded(12, 3, "");
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Events.size(), 1U);
  EXPECT_EQ(Store.Rows.Events[0].Ended, kBegin.AddSeconds(10));
  EXPECT_EQ(Store.Rows.Events[0].Kept, 12);
  EXPECT_EQ(Store.Rows.Events[0].Dropped, 3);
  Chronicle.EventEnded(1, 1, "twice");
  Loop.Run(10s);
  EXPECT_EQ(Store.Rows.Events[0].Kept, 12) << "an event ends once";
}

TEST_F(HistoryTest, AnEventThatIsChangedKeepsItsBeginning) {
  Chronicle.EventBegan(Event());
  Loop.Run(10s);
  EventStart changed = Event();
  changed.PlannedSeconds = 3600;
  changed.Channel = 45;
  Chronicle.EventChanged(changed);
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Events.size(), 1U);
  EXPECT_EQ(Store.Rows.Events[0].Began, kBegin);
  EXPECT_EQ(Store.Rows.Events[0].PlannedSeconds, 3600);
  EXPECT_EQ(Store.Rows.Events[0].Channel, 45);
}

TEST_F(HistoryTest, TheNextEventEndsTheOneBefore) {
  Chronicle.EventBegan(Event());
  Loop.Run(10s);
  EventStart next = Event();
  next.Entry = 4;
  Chronicle.EventBegan(next);
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Events.size(), 2U);
  EXPECT_TRUE(Store.Rows.Events[0].Ended);
  EXPECT_FALSE(Store.Rows.Events[1].Ended);
}

TEST_F(HistoryTest, AMissedEventNeverBegan) {
  Chronicle.EventMissed(Event(), "the clock went on\n");
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Events.size(), 1U);
  EXPECT_FALSE(Store.Rows.Events[0].Began);
  EXPECT_EQ(Store.Rows.Events[0].WhyNot, "the clock went on ");
}

TEST_F(HistoryTest, AnIncidentIsThereWhileItLastsAndTellsTheRealTime) {
  Chronicle.IncidentBegan(IncidentKind::Line, "the device is gone");
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Incidents.size(), 1U);
  EXPECT_FALSE(Store.Rows.Incidents[0].Ended);
  Loop.StepWallClock(1h);
  Loop.Run(13s);
  Chronicle.IncidentEnded(IncidentKind::Line);
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Incidents.size(), 1U);
  EXPECT_EQ(Store.Rows.Incidents[0].Ended, kBegin.AddSeconds(3600 + 23));
  EXPECT_EQ(Store.Rows.Incidents[0].Seconds, 23);
}

TEST_F(HistoryTest, AClockThatIsSetBackEndsNoIncidentBeforeItsBeginning) {
  Chronicle.IncidentBegan(IncidentKind::Sound, "the server is gone");
  Loop.Run(10s);
  Loop.StepWallClock(-1h);
  Chronicle.IncidentEnded(IncidentKind::Sound);
  Loop.Run(10s);
  EXPECT_EQ(Store.Rows.Incidents[0].Ended, kBegin);
  EXPECT_EQ(Store.Rows.Incidents[0].Seconds, 10);
}

TEST_F(HistoryTest, AnIncidentThatGoesOnOnlyGetsTheNewCause) {
  Chronicle.IncidentBegan(IncidentKind::Line, "no reply");
  Loop.Run(10s);
  Chronicle.IncidentBegan(IncidentKind::Line, "the device is gone");
  Chronicle.IncidentBegan(IncidentKind::Disk, "the disk is full");
  Loop.Run(10s);
  ASSERT_EQ(Store.Rows.Incidents.size(), 2U);
  EXPECT_EQ(Store.Rows.Incidents[0].Cause, "the device is gone");
  EXPECT_EQ(Store.Rows.Incidents[0].Began, kBegin);
  Chronicle.IncidentEnded(IncidentKind::Sound);
  Loop.Run(10s);
  EXPECT_EQ(Store.Rows.Incidents.size(), 2U) << "what did not fail does not end";
}

TEST_F(HistoryTest, TheCloseEndsWhatIsOpen) {
  Chronicle.EventBegan(Event());
  Chronicle.IncidentBegan(IncidentKind::Line, "the device is gone");
  Chronicle.Heard(44, Text("one"));
  Loop.Run(90s);
  Chronicle.Close("the program was closed");
  EXPECT_EQ(Store.Rows.Events.at(0).Ended, kBegin.AddSeconds(90));
  EXPECT_EQ(Store.Rows.Events.at(0).WhyNot, "the program was closed");
  EXPECT_EQ(Store.Rows.Incidents.at(0).Ended, kBegin.AddSeconds(90));
  EXPECT_EQ(Store.Rows.Plays.size(), 1U);
}

TEST_F(HistoryTest, AReportHasWhatHappenedAMomentBefore) {
  Chronicle.EventBegan(Event());
  HistorySong song = Song("one");
  song.Event = 3;
  Chronicle.SongEnded(song);
  std::optional<Report> report;
  Chronicle.AskReport(kBegin.AddHours(-1), [&report](const base::Result& asked, const Report& made) {
    EXPECT_TRUE(asked.Ok());
    report = made;
  });
  EXPECT_FALSE(report) << "never within the call";
  Loop.Run(1s);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->From, kBegin.AddHours(-1));
  EXPECT_EQ(report->To, kBegin);
  ASSERT_EQ(report->Events.size(), 1U);
  EXPECT_EQ(report->Events[0].Kept, 1);
}

TEST_F(HistoryTest, AQuestionThatIsRefusedComesWithItsCause) {
  Store.QuestionFailure = "the disk failed";
  std::string causes;
  Chronicle.AskReport(kBegin,
                      [&causes](const base::Result& asked, const Report&) { causes += asked.Cause() + "|"; });
  Chronicle.Search({}, [&causes](const base::Result& asked, const auto&) { causes += asked.Cause() + "|"; });
  Loop.Run(1s);
  EXPECT_EQ(causes, "the disk failed|the disk failed|");
}

}  // namespace
}  // namespace kestrune::history
