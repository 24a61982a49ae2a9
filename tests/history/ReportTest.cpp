#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "history/Report.h"

namespace kestrune::history {
namespace {

using base::DateValue;
using platform::HistoryEvent;
using platform::HistoryRows;
using platform::HistorySong;
using platform::IncidentKind;
using platform::SongFate;

const DateValue kDue = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

DateValue At(std::int64_t minutes, std::int64_t seconds = 0) {
  return kDue.AddSeconds(minutes * 60 + seconds);
}

/// A night with an event of one hour, on a program that ran all the time.
class ReportTest : public testing::Test {
 protected:
  ReportTest() { Rows.Runs.push_back({.Began = At(-600), .Alive = At(600), .Closed = false}); }

  void Event(std::optional<std::int64_t> endedMinute = 60, const std::string& why = "", bool whole = false) {
    HistoryEvent event;
    event.Entry = 3;
    event.Due = kDue;
    event.PlannedSeconds = 3600;
    event.Channel = 44;
    event.Station = "Harbour";
    event.WholeSongs = whole;
    event.Began = kDue;
    if (endedMinute) event.Ended = At(*endedMinute);
    event.WhyNot = why;
    Rows.Events.push_back(event);
  }

  HistorySong& Song(DateValue from, DateValue to, SongFate fate = SongFate::Kept, std::int16_t event = 3) {
    HistorySong song;
    song.Began = from;
    song.Ended = to;
    song.LengthMs = base::SecondsBetween(from, to) * 1000;
    song.Fate = fate;
    song.Event = event;
    return Rows.Songs.emplace_back(song);
  }

  void Incident(IncidentKind kind, std::optional<DateValue> to, DateValue from, const std::string& cause) {
    Rows.Incidents.push_back({.Kind = kind,
                              .Began = from,
                              .Ended = to,
                              .Seconds = to ? base::SecondsBetween(from, *to) : 0,
                              .Cause = cause});
  }

  [[nodiscard]] Report Make(std::int64_t nowMinute = 600) const {
    return MakeReport(Rows, At(-120), At(nowMinute));
  }
  [[nodiscard]] EventStory Story(std::int64_t nowMinute = 600) const {
    const Report report = Make(nowMinute);
    EXPECT_EQ(report.Events.size(), 1U);
    return report.Events.empty() ? EventStory() : report.Events.front();
  }

  HistoryRows Rows;
};

TEST_F(ReportTest, AnEventWhoseCapturesLieEndToEndMissesNothing) {
  Event();
  Song(At(0), At(20));
  Song(At(20), At(21), SongFate::TooShort);
  Song(At(21), At(60));
  const EventStory story = Story();
  EXPECT_EQ(story.State, EventState::Completed);
  EXPECT_EQ(story.Kept, 2);
  EXPECT_EQ(story.Dropped, 1);
  EXPECT_EQ(story.MissingSeconds, 0);
  EXPECT_TRUE(story.Missing.empty());
  EXPECT_EQ(story.Until, At(60));
  EXPECT_EQ(story.Songs.size(), 3U);
  EXPECT_TRUE(Make().Advice.empty());
}

TEST_F(ReportTest, AGapIsAccountedForByTheIncidentInIt) {
  Event();
  Song(At(0), At(20));
  Song(At(32), At(60));
  Incident(IncidentKind::Line, At(32), At(20), "the device is gone");
  const EventStory story = Story();
  EXPECT_EQ(story.MissingSeconds, 720);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0], (MissingPart{.From = At(20),
                                           .To = At(32),
                                           .Seconds = 720,
                                           .Why = "radio: the device is gone",
                                           .Intended = false}));
  ASSERT_EQ(Make().Advice.size(), 1U);
  EXPECT_TRUE(Make().Advice[0].starts_with("The radio was lost"));
}

TEST_F(ReportTest, AGapOfWhichNothingIsKnownSaysSo) {
  Event();
  Song(At(0), At(20));
  Song(At(32), At(60));
  Incident(IncidentKind::Line, At(-30), At(-40), "long before");
  ASSERT_EQ(Story().Missing.size(), 1U);
  EXPECT_EQ(Story().Missing[0].Why, "");
  EXPECT_EQ(Story().MissingSeconds, 720);
}

TEST_F(ReportTest, WhatIsLeftOutBeforeTheFirstWholeSongIsIntended) {
  Event(60, "", true);
  Song(At(3), At(60));
  const EventStory story = Story();
  EXPECT_EQ(story.MissingSeconds, 0);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_TRUE(story.Missing[0].Intended);
  EXPECT_EQ(story.Missing[0].Why, "before the first whole song");
}

TEST_F(ReportTest, AnIncidentBeforeTheFirstWholeSongIsNotIntended) {
  Event(60, "", true);
  Incident(IncidentKind::Sound, At(3), At(-5), "the server is gone");
  Song(At(3), At(60));
  EXPECT_EQ(Story().MissingSeconds, 180);
  EXPECT_FALSE(Story().Missing.at(0).Intended);
}

TEST_F(ReportTest, SoundThatIsLostWithinASongIsMissing) {
  Event();
  HistorySong& song = Song(At(0), At(60));
  song.LengthMs -= 90'000;
  song.MissingMs = 90'000;
  EXPECT_EQ(Story().MissingSeconds, 90);
  ASSERT_EQ(Story().Missing.size(), 1U);
  EXPECT_EQ(Story().Missing[0].Seconds, 90);
  EXPECT_EQ(Story().Missing[0].Why, "sound was lost in this song");
}

TEST_F(ReportTest, SilenceThatWasNoticedIsMissing) {
  Event();
  Song(At(0), At(60)).SilentMs = 600'000;
  EXPECT_EQ(Story().MissingSeconds, 600);
  ASSERT_EQ(Story().Missing.size(), 1U);
  EXPECT_EQ(Story().Missing[0].Why, "there is silence in this song");
  Incident(IncidentKind::Sound, At(20), At(10), "no sound comes from the radio");
  EXPECT_EQ(Story().Missing.at(0).Why, "sound: no sound comes from the radio");
  Rows.Songs[0].SilentMs = 0;
  Rows.Songs[0].LineLostMs = 600'000;
  EXPECT_EQ(Story().MissingSeconds, 0) << "a radio without a line may sound on";
}

TEST_F(ReportTest, ASongThatCouldNotBeWrittenIsMissingWithItsReason) {
  Event();
  Song(At(0), At(20));
  Song(At(20), At(25), SongFate::Failed).Reason = "No space left on device";
  Song(At(25), At(60));
  const EventStory story = Story();
  EXPECT_EQ(story.MissingSeconds, 300);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "No space left on device");
  EXPECT_EQ(story.Dropped, 1);
}

TEST_F(ReportTest, AStepOfTheClockChangesNothingInTheSum) {
  // At two the clock goes back to one: the songs overlap on the clock's face, and their lengths count.
  Event();
  Song(At(0), At(30));
  Song(At(30), At(0)).LengthMs = 1'800'000;
  EXPECT_EQ(Story().MissingSeconds, 0);
}

TEST_F(ReportTest, AClockThatIsSetForwardWithinASongAccountsForTheGapBeforeIt) {
  Event();
  Song(At(0), At(20));
  // It began at 20, and seems to have begun when its length says.
  Song(At(21), At(31));
  Song(At(31), At(60));
  Incident(IncidentKind::ClockStep, At(26), At(25), "the clock was set 0:01:00 forward");
  EventStory story = Story();
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "clock: the clock was set 0:01:00 forward");

  Rows.Incidents.clear();
  Incident(IncidentKind::ClockStep, At(41), At(40), "the clock was set 0:01:00 forward");
  EXPECT_EQ(Story().Missing[0].Why, "") << "in a later song";
  Rows.Incidents.clear();
  Incident(IncidentKind::Line, At(26), At(25), "the device is gone");
  EXPECT_EQ(Story().Missing[0].Why, "") << "what else happens in the song is no reason";
}

TEST_F(ReportTest, AMissedEventMissesAllOfItAndSaysWhy) {
  Event(std::nullopt, "the clock went past it");
  Rows.Events[0].Began.reset();
  const EventStory story = Story();
  EXPECT_EQ(story.State, EventState::Missed);
  EXPECT_EQ(story.MissingSeconds, 3600);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "the clock went past it");
  EXPECT_EQ(Make().Advice.size(), 1U);
}

TEST_F(ReportTest, AnEventThatEndedEarlyBrokeOff) {
  Event(45, "the program was closed");
  Song(At(0), At(45));
  const EventStory story = Story();
  EXPECT_EQ(story.State, EventState::BrokenOff);
  EXPECT_EQ(story.MissingSeconds, 900);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "the program was closed");
}

TEST_F(ReportTest, TheSongInHandOfAnEventThatBrokeOffIsMissingForTheSameReason) {
  Event(45, "the program was closed");
  Song(At(0), At(42));
  const EventStory story = Story();
  EXPECT_EQ(story.MissingSeconds, 18 * 60);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "the program was closed");
}

TEST_F(ReportTest, ACrashFollowsFromTheRunsAndBothPartsAreOneStory) {
  Rows.Runs = {{.Began = At(-600), .Alive = At(30), .Closed = false},
               {.Began = At(40), .Alive = At(600), .Closed = false}};
  Event(std::nullopt);
  Rows.Events.push_back(Rows.Events[0]);
  Rows.Events[1].Began = At(40);
  Rows.Events[1].Ended = At(60);
  Song(At(0), At(29));
  Song(At(40), At(60));
  const Report report = Make();
  ASSERT_EQ(report.Incidents.size(), 1U);
  EXPECT_EQ(report.Incidents[0].Kind, IncidentKind::Crash);
  EXPECT_EQ(report.Incidents[0].Began, At(30));
  EXPECT_EQ(report.Incidents[0].Ended, At(40));
  const EventStory story = Story();
  EXPECT_EQ(story.Began, kDue);
  EXPECT_EQ(story.Ended, At(60));
  EXPECT_EQ(story.Kept, 2);
  EXPECT_EQ(story.MissingSeconds, 660);
  ASSERT_EQ(story.Missing.size(), 1U);
  EXPECT_EQ(story.Missing[0].Why, "program: the program ended without being closed");
}

TEST_F(ReportTest, ACrashThatIsToldIsNotToldTwice) {
  Rows.Runs = {{.Began = At(-600), .Alive = At(30), .Closed = false},
               {.Began = At(40), .Alive = At(600), .Closed = false}};
  Incident(IncidentKind::Crash, At(40), At(31), "killed");
  EXPECT_EQ(Make().Incidents.size(), 1U);
}

TEST_F(ReportTest, ARunThatWasClosedIsNoCrashButMissesWhatItMissed) {
  Rows.Runs = {{.Began = At(-600), .Alive = At(30), .Closed = true},
               {.Began = At(40), .Alive = At(600), .Closed = false}};
  Event();
  Song(At(0), At(30));
  Song(At(40), At(60));
  EXPECT_TRUE(Make().Incidents.empty());
  ASSERT_EQ(Story().Missing.size(), 1U);
  EXPECT_EQ(Story().Missing[0].Why, "the program was not running");
}

TEST_F(ReportTest, AnEventOfARunThatEndedBrokeOffWhenTheRunWasLastSeen) {
  Rows.Runs = {{.Began = At(-600), .Alive = At(30), .Closed = false},
               {.Began = At(90), .Alive = At(600), .Closed = false}};
  Event(std::nullopt);
  Song(At(0), At(28));
  const EventStory story = Story();
  EXPECT_EQ(story.State, EventState::BrokenOff);
  EXPECT_EQ(story.Ended, At(30));
  EXPECT_EQ(story.MissingSeconds, 32 * 60);
}

TEST_F(ReportTest, AnEventThatRunsIsKnownThoughTheClockWasSetBack) {
  // A second run of the program began at the fiftieth minute, the clock was set back, and the event began once more.
  Rows.Runs = {{.Began = At(-600), .Alive = At(49), .Closed = false},
               {.Began = At(50), .Alive = At(27), .Closed = false}};
  Event(5, "its entry was changed or disabled");
  Rows.Events.back().Began = At(3);
  Event(std::nullopt);
  Rows.Events.back().Began = At(1);
  Song(At(1), At(25));
  const Report report = MakeReport(Rows, At(-120), At(27), Rows.Events.back());
  ASSERT_EQ(report.Events.size(), 1U);
  EXPECT_EQ(report.Events.front().State, EventState::Running);
  EXPECT_EQ(report.Events.front().Why, "");
  EXPECT_EQ(report.Events.front().Missing.size(), 1U) << "the first minute, and nothing of the future";
}

TEST_F(ReportTest, ARunningEventMissesOnlyWhatHasPassed) {
  Event(std::nullopt);
  Song(At(0), At(10));
  Song(At(15), At(25));
  const EventStory story = Story(27);
  EXPECT_EQ(story.State, EventState::Running);
  EXPECT_EQ(story.MissingSeconds, 300) << "the song in hand is not missing";
  EXPECT_EQ(story.Missing.size(), 1U);
}

TEST_F(ReportTest, AnEventThatHasJustBegunMissesNothing) {
  Event(std::nullopt);
  EXPECT_EQ(Story(2).MissingSeconds, 0);
  EXPECT_TRUE(Story(2).Missing.empty());
}

TEST_F(ReportTest, AnIncidentOfARunThatEndedLastedNoLonger) {
  Rows.Runs = {{.Began = At(-600), .Alive = At(30), .Closed = true},
               {.Began = At(90), .Alive = At(600), .Closed = false}};
  Incident(IncidentKind::Sound, std::nullopt, At(10), "gone");
  Incident(IncidentKind::Line, std::nullopt, At(100), "gone");
  const Report report = Make();
  ASSERT_EQ(report.Incidents.size(), 2U);
  EXPECT_EQ(report.Incidents[0].Ended, At(30));
  EXPECT_EQ(report.Incidents[0].Seconds, 1200);
  EXPECT_FALSE(report.Incidents[1].Ended) << "it still lasts";
}

TEST_F(ReportTest, SongsOfTheSameEntryOnTwoDaysBelongToTheirDay) {
  Event();
  Event();
  Rows.Events[1].Due = Rows.Events[1].Due.AddDays(1);
  Rows.Events[1].Began = Rows.Events[1].Due;
  Rows.Events[1].Ended = At(25 * 60);
  Song(At(0), At(60));
  Song(At(24 * 60), At(24 * 60 + 30));
  Song(At(24 * 60 + 30), At(25 * 60), SongFate::Killed);
  const Report report = MakeReport(Rows, At(-120), At(30 * 60));
  ASSERT_EQ(report.Events.size(), 2U);
  EXPECT_EQ(report.Events[0].Songs.size(), 1U);
  EXPECT_EQ(report.Events[1].Kept, 1);
  EXPECT_EQ(report.Events[1].Dropped, 1);
}

TEST_F(ReportTest, WhatWasRecordedByHandStandsApartAndWhatNobodyWantedIsLeftOut) {
  Song(At(0), At(3), SongFate::Kept, 0);
  Song(At(3), At(6), SongFate::NotWanted, 0);
  Song(At(6), At(9), SongFate::NotWhole, 0);
  Song(At(9), At(12), SongFate::Killed, 0);
  const Report report = Make();
  ASSERT_EQ(report.OtherSongs.size(), 2U);
  EXPECT_EQ(report.OtherSongs[1].Fate, SongFate::Killed);
}

TEST_F(ReportTest, AdviceFitsWhatTheSongsTell) {
  Event();
  Song(At(0), At(30), SongFate::NotGrabbed);
  Song(At(30), At(60), SongFate::NotGrabbed);
  ASSERT_EQ(Make().Advice.size(), 1U);
  EXPECT_NE(Make().Advice[0].find("Grab"), std::string::npos);

  Rows.Songs[0].Fate = SongFate::Kept;
  Rows.Songs[0].OverloadedMs = Rows.Songs[0].LengthMs / 100;
  EXPECT_TRUE(Make().Advice.empty()) << "a hundredth is not more than a hundredth";
  Rows.Songs[0].OverloadedMs += 1;
  Rows.Songs[1].SilentMs = 30'000;
  const std::vector<std::string> advice = Make().Advice;
  ASSERT_EQ(advice.size(), 2U);
  EXPECT_NE(advice[0].find("overloaded"), std::string::npos);
  EXPECT_NE(advice[1].find("silence"), std::string::npos);
}

}  // namespace
}  // namespace kestrune::history
