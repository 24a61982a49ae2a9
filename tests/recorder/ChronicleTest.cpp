// What a whole unit tells the record of what happened.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/History.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using platform::HistoryEvent;
using platform::HistoryPlay;
using platform::HistorySong;
using platform::SongFate;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// March 9, 2005 was a Wednesday.
DateValue At(int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, 3, 9, hour, minute, second);
}

class ChronicleTest : public ::testing::Test {
 protected:
  void SetClock(DateValue wall) {
    rig.Loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(rig.Loop.Now(), wall)));
  }
  void StartIdleAt(DateValue wall) {
    SetClock(wall);
    rig.StartIdle();
    SetClock(wall);
  }
  void RunTo(DateValue wall) {
    const std::chrono::seconds left(base::SecondsBetween(rig.Loop.Now(), wall));
    ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig.Loop.Now() >= wall; }, left));
  }
  void Plan(int number, const std::string& start, int channel, bool integrel) {
    const auto set = [&](const std::string& name, const std::string& value) {
      rig.Set(name + std::to_string(number), value);
    };
    set("ScheduleEnabled", "1");
    set("ScheduleChannel", std::to_string(channel));
    set("ScheduleStartDate", start);
    set("ScheduleDuration", "1:00");
    set("ScheduleIntegrel", integrel ? "1" : "0");
    set("ScheduleCleftune", "1");
    set("ScheduleMatchGrab", "0");
    set("ScheduleMatchKill", "0");
    set("ScheduleMP3BitRate", "128 Stereo");
    rig->ReloadSchedule();
  }
  /// "title: fate" of each song that ended.
  [[nodiscard]] std::vector<std::string> Songs() {
    static const char* const kFates[] = {"kept",        "incomplete", "unnamed",   "short",    "long",
                                         "not grabbed", "killed",     "duplicate", "no sound", "failed",
                                         "not whole",   "not wanted", "kept later"};
    rig.Run(3s);
    std::vector<std::string> songs;
    for (const HistorySong& song : rig.History.Rows.Songs)
      songs.push_back(song.Title + ": " + kFates[static_cast<int>(song.Fate)]);
    return songs;
  }
  [[nodiscard]] history::Report Report() {
    std::optional<history::Report> report;
    rig->Parts().History.AskReport(At(0, 0),
                                   [&report](const base::Result& asked, const history::Report& made) {
                                     EXPECT_TRUE(asked.Ok());
                                     report = made;
                                   });
    EXPECT_TRUE(rig.Loop.RunUntil([&report] { return report.has_value(); }, 10s));
    return report.value_or(history::Report());
  }

  UnitRig rig;
};

TEST_F(ChronicleTest, ARunIsNotedOnceTheRadioIsFoundAndClosedAtItsEnd) {
  rig.StartIdle();
  ASSERT_EQ(rig.History.Rows.Runs.size(), 1U);
  EXPECT_FALSE(rig.History.Rows.Runs[0].Closed);
  rig.CloseAndWait();
  ASSERT_EQ(rig.History.Rows.Runs.size(), 1U);
  EXPECT_TRUE(rig.History.Rows.Runs[0].Closed);
}

TEST_F(ChronicleTest, ARunThatIsNeverClosedWasKilled) {
  rig.StartIdle();
  rig.Rules.reset();
  rig.Unit.reset();
  EXPECT_FALSE(rig.History.Rows.Runs.at(0).Closed);
}

TEST_F(ChronicleTest, AStartWithoutARadioIsNoRun) {
  rig.Radio.Unplug();
  rig.Start(recorder::StartOutcome::Failed);
  rig.Run(5min);
  EXPECT_THAT(rig.History.Rows.Runs, IsEmpty());
}

TEST_F(ChronicleTest, ASongThatIsKeptIsNotedWithAllThatIsKnownOfIt) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.NextSong("Sun", "Whole");
  rig.Run(60s);
  const DateValue ended = rig.Loop.Now();
  rig.NextSong("Rain", "Next");
  EXPECT_THAT(Songs(), ::testing::Contains("Whole: kept"));
  const auto& rows = rig.History.Rows.Songs;
  const auto song =
      std::find_if(rows.begin(), rows.end(), [](const HistorySong& one) { return one.Title == "Whole"; });
  ASSERT_NE(song, rows.end());
  EXPECT_EQ(song->Artist, "Sun");
  EXPECT_EQ(song->Channel, 44);
  EXPECT_EQ(song->Station, "Harbour");
  EXPECT_EQ(song->Genre, "Rock");
  EXPECT_THAT(song->File, HasSubstr("/music/"));
  EXPECT_THAT(song->File, HasSubstr("Whole.wav"));
  EXPECT_EQ(song->Event, 0);
  EXPECT_EQ(song->MissingMs, 0);
  EXPECT_NEAR(static_cast<double>(base::SecondsBetween(ended, song->Ended)), 2, 3);
  EXPECT_NEAR(static_cast<double>(song->LengthMs), 63'000, 3'000);
  EXPECT_EQ(base::SecondsBetween(song->Began, song->Ended), (song->LengthMs + 500) / 1000);
}

TEST_F(ChronicleTest, WhatIsDroppedIsNotedWithItsFateAndReason) {
  rig.Set("MinSongLength", "30");
  rig.StartIdle();
  rig->cmdRecord();
  rig.NextSong("Sun", "Short");
  rig.Run(10s);
  rig.NextSong("Sun", "Twice");
  rig.Run(40s);
  rig.NextSong("Rain", "Between");
  rig.Run(40s);
  rig.NextSong("Sun", "Twice");
  rig.Run(40s);
  rig.NextSong("Rain", "After");
  const std::vector<std::string> songs = Songs();
  EXPECT_THAT(songs, ::testing::IsSupersetOf({"Short: short", "Twice: kept", "Between: kept"}));
  for (const HistorySong& song : rig.History.Rows.Songs) {
    if (song.Title == "Short") {
      EXPECT_EQ(song.Reason, "Minimum length: 0:30");
      EXPECT_EQ(song.File, "");
    }
  }
}

TEST_F(ChronicleTest, WhatNobodyWantedIsNotedAsSuch) {
  rig.StartIdle();
  rig.NextSong("Sun", "One");
  rig.Run(40s);
  rig.NextSong("Sun", "Two");
  EXPECT_THAT(Songs(), ::testing::Contains("One: not wanted"));
}

TEST_F(ChronicleTest, SoundThatIsMissingIsNotedInItsSong) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.NextSong("Sun", "Torn");
  rig.Run(20s);
  rig.Sound.Drop(2500);  // frames of a thousand a second
  rig.Run(20s);
  rig.NextSong("Rain", "Next");
  EXPECT_THAT(Songs(), ::testing::Contains("Torn: incomplete"));
  for (const HistorySong& song : rig.History.Rows.Songs) {
    if (song.Title != "Torn") continue;
    EXPECT_EQ(song.MissingMs, 2500);
    EXPECT_EQ(song.SamplesLost, 2500);
  }
}

TEST_F(ChronicleTest, AnEventIsNotedWithItsSongsAndMissesNothing) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, true);
  RunTo(At(20, 0, 10));
  for (int song = 1; song <= 12; ++song) {
    rig.Radio.Play(46, "Sun", "Song " + std::to_string(song));
    rig.Run(5min);
  }
  RunTo(At(21, 2));
  const history::Report report = Report();
  ASSERT_EQ(report.Events.size(), 1U);
  const history::EventStory& event = report.Events[0];
  EXPECT_EQ(event.Entry, 3);
  EXPECT_EQ(event.Channel, 46);
  EXPECT_EQ(event.Station, "Station 46");
  EXPECT_EQ(event.Due, At(20, 0));
  EXPECT_EQ(event.Until, At(21, 0, 59));
  EXPECT_EQ(event.State, history::EventState::Completed);
  EXPECT_EQ(event.Why, "");
  EXPECT_GE(event.Kept, 11);
  EXPECT_EQ(event.MissingSeconds, 0);
  ASSERT_EQ(rig.History.Rows.Events.size(), 1U) << "its end replaces its beginning";
  EXPECT_EQ(rig.History.Rows.Events[0].Kept, event.Kept) << "the log counts the same";
  for (const HistorySong& song : event.Songs) EXPECT_EQ(song.Channel, 46);
}

TEST_F(ChronicleTest, AnEventWhoseEntryIsDisabledBreaksOff) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, false);
  RunTo(At(20, 30));
  rig.Set("ScheduleEnabled3", "0");
  rig->ReloadSchedule();
  rig.Run(1min);
  const history::Report report = Report();
  ASSERT_EQ(report.Events.size(), 1U);
  EXPECT_EQ(report.Events[0].State, history::EventState::BrokenOff);
  EXPECT_EQ(report.Events[0].Why, "its entry was changed or disabled");
  EXPECT_NEAR(static_cast<double>(report.Events[0].MissingSeconds), 30 * 60, 90);
}

TEST_F(ChronicleTest, AnEventThatAnotherOneEndsSaysSo) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, false);
  RunTo(At(20, 30));
  Plan(1, "Mar 9, 2005 8:15 PM", 47, false);
  rig.Run(1min);
  const history::Report report = Report();
  ASSERT_EQ(report.Events.size(), 2U);
  EXPECT_EQ(report.Events[0].Why, "another event took its place");
  EXPECT_EQ(report.Events[1].Due, At(20, 15)) << "due before it could begin";
  EXPECT_EQ(report.Events[1].State, history::EventState::Running);
}

TEST_F(ChronicleTest, AnEventThatIsMovedIsFollowed) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, false);
  RunTo(At(20, 30));
  rig.Set("ScheduleChannel3", "47");
  rig.Set("ScheduleDuration3", "2:00");
  rig->ReloadSchedule();
  rig.Run(1min);
  ASSERT_EQ(rig.History.Rows.Events.size(), 1U);
  const HistoryEvent& event = rig.History.Rows.Events[0];
  EXPECT_EQ(event.Channel, 47);
  EXPECT_EQ(event.Due, At(20, 0));
  EXPECT_NEAR(static_cast<double>(event.PlannedSeconds), 7259, 2);
  EXPECT_FALSE(event.Ended);
}

TEST_F(ChronicleTest, AnEventThatTheClockWentPastIsMissed) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, false);
  SetClock(At(22, 0));
  rig.Run(10s);
  const history::Report report = Report();
  ASSERT_EQ(report.Events.size(), 1U);
  EXPECT_EQ(report.Events[0].State, history::EventState::Missed);
  EXPECT_EQ(report.Events[0].Due, At(20, 0));
  EXPECT_EQ(report.Events[0].MissingSeconds, 3659);
  EXPECT_THAT(report.Events[0].Why, HasSubstr("the clock went from Mar 9, 7:5"));
}

TEST_F(ChronicleTest, ACloseInTheMiddleOfAnEventBreaksItOff) {
  StartIdleAt(At(19, 55));
  Plan(3, "Mar 9, 2005 8:00 PM", 46, false);
  RunTo(At(20, 30));
  rig.CloseAndWait();
  const HistoryEvent& event = rig.History.Rows.Events.at(0);
  EXPECT_TRUE(event.Ended);
  EXPECT_EQ(event.WhyNot, "the program was closed");
}

TEST_F(ChronicleTest, WhatOtherChannelsPlayIsNotedAsItChanges) {
  rig.StartIdle();
  rig.Radio.Play(50, "Sun", "One");
  rig.Run(2min);
  rig.Radio.Play(50, "Sun", "Two");
  rig.Run(2min);
  rig.Radio.Play(50, "", "");
  rig.Run(2min);
  std::vector<std::string> titles;
  for (const HistoryPlay& play : rig.History.Rows.Plays) {
    if (play.Channel != 50) continue;
    titles.push_back(play.Title);
    EXPECT_EQ(play.Station, "Station 50");
    EXPECT_GE(play.To, play.From);
  }
  EXPECT_THAT(titles, ElementsAre("Song 50", "One", "Two"));
}

TEST_F(ChronicleTest, TheTroublesOfTheRecordAreInTheLog) {
  rig.StartIdle();
  rig.History.Failure = "The record cannot be written: the disk is full.";
  rig.Run(5min);
  const std::vector<std::string> lines = rig.LogTexts();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), rig.History.Failure), 1);
}

TEST_F(ChronicleTest, ARecordThatFailsDisturbsNoRecording) {
  rig.StartIdle();
  rig.History.Failure = "The record cannot be written: the disk is full.";
  rig->cmdRecord();
  rig.NextSong("Sun", "Whole");
  rig.Run(60s);
  rig.NextSong("Rain", "Next");
  EXPECT_THAT(rig.Recordings(), ::testing::Contains(HasSubstr("Whole.wav")));
}

TEST_F(ChronicleTest, SoundThatIsLostIsAnIncidentUntilItIsBack) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.NextSong("Sun", "One");
  rig.Run(20s);
  rig.Sound.Die(60s);
  rig.Run(30s);
  ASSERT_EQ(rig.History.Rows.Incidents.size(), 1U);
  EXPECT_EQ(rig.History.Rows.Incidents[0].Kind, platform::IncidentKind::Sound);
  EXPECT_FALSE(rig.History.Rows.Incidents[0].Ended);
  EXPECT_NE(rig.History.Rows.Incidents[0].Cause, "");
  rig.Run(60s);
  ASSERT_EQ(rig.History.Rows.Incidents.size(), 1U);
  EXPECT_TRUE(rig.History.Rows.Incidents[0].Ended);
  EXPECT_NEAR(static_cast<double>(rig.History.Rows.Incidents[0].Seconds), 57, 5);
}

TEST(Chronicle, TheWatchIsFollowedFromCauseToCause) {
  SimulatedEventLoop loop;
  FakeHistoryStore store(loop);
  history::History history(store, loop);
  recorder::Chronicle chronicle(history, loop);
  history.Begin();
  recorder::WatchState watch;
  const auto follow = [&] {
    for (int i = 0; i < 50; ++i) chronicle.Follow(watch);
    loop.Run(10s);
  };
  const auto& incidents = store.Rows.Incidents;
  follow();
  EXPECT_THAT(incidents, IsEmpty());
  watch.Silent = true;
  watch.WriteFailure = "No space left on device";
  watch.LittleRoom = "room for 0:10";
  follow();
  ASSERT_EQ(incidents.size(), 2U) << "little room is a warning, no incident";
  EXPECT_EQ(incidents[0].Cause, "no sound comes from the radio");
  EXPECT_EQ(incidents[1].Kind, platform::IncidentKind::Disk);
  EXPECT_EQ(incidents[1].Cause, "No space left on device");
  watch.SoundInputFailure = "the server is gone";
  watch.WriteFailure.clear();
  follow();
  ASSERT_EQ(incidents.size(), 2U);
  EXPECT_EQ(incidents[0].Cause, "the server is gone") << "the same incident with another cause";
  EXPECT_FALSE(incidents[0].Ended);
  EXPECT_TRUE(incidents[1].Ended);
  EXPECT_EQ(incidents[1].Seconds, 10);
  watch = {};
  const int writes = store.Writes;
  follow();
  EXPECT_TRUE(incidents[0].Ended);
  EXPECT_EQ(store.Writes, writes + 1);
}

TEST(Chronicle, ASongSaysHowMuchOfItWasSilentOrWithoutARadio) {
  SimulatedEventLoop loop;
  FakeHistoryStore store(loop);
  history::History history(store, loop);
  recorder::Chronicle chronicle(history, loop);
  history.Begin();
  recorder::CaptureRecord capture;
  capture.LengthMs = 200'000;
  const auto songEnds = [&] { chronicle.SongEnded(capture, SongFate::Kept, ""); };
  recorder::WatchState watch;
  loop.Run(100s);
  const base::DateValue silentSince = loop.Now().AddSeconds(-20);
  watch.Silent = true;
  chronicle.Follow(watch);
  loop.Run(30s);
  songEnds();
  loop.Run(15s);
  watch.Silent = false;
  watch.RadioFailure = "the device is gone";
  chronicle.Follow(watch);
  loop.Run(40s);
  songEnds();
  loop.Run(300s);
  songEnds();
  watch = {};
  chronicle.Follow(watch);
  songEnds();
  loop.Run(10s);
  ASSERT_EQ(store.Rows.Songs.size(), 4U);
  EXPECT_EQ(store.Rows.Songs[0].SilentMs, 50'000) << "it was noticed after twenty seconds";
  EXPECT_EQ(store.Rows.Songs[1].SilentMs, 15'000);
  EXPECT_EQ(store.Rows.Songs[1].LineLostMs, 40'000);
  EXPECT_EQ(store.Rows.Songs[2].LineLostMs, 200'000) << "never more than the song is long";
  EXPECT_EQ(store.Rows.Songs[3].SilentMs, 0);
  EXPECT_EQ(store.Rows.Songs[3].LineLostMs, 0);
  ASSERT_EQ(store.Rows.Incidents.size(), 2U);
  EXPECT_EQ(store.Rows.Incidents[0].Kind, platform::IncidentKind::Sound);
  EXPECT_EQ(store.Rows.Incidents[0].Began, silentSince);
  EXPECT_EQ(store.Rows.Incidents[0].Seconds, 65) << "the silence, not only what came after it was noticed";
  EXPECT_EQ(store.Rows.Incidents[1].Kind, platform::IncidentKind::Line);
  EXPECT_EQ(store.Rows.Incidents[1].Cause, "the device is gone");
  EXPECT_EQ(store.Rows.Incidents[1].Seconds, 340);
}

TEST(Chronicle, ASongThatWasTooLoudSaysHowMuchOfIt) {
  SimulatedEventLoop loop;
  FakeHistoryStore store(loop);
  history::History history(store, loop);
  recorder::Chronicle chronicle(history, loop);
  history.Begin();
  recorder::CaptureRecord capture;
  capture.LengthMs = 200'000;
  capture.Outcome.FullScalePercent = 1;
  chronicle.SongEnded(capture, SongFate::Kept, "");
  capture.Outcome.Overloaded = true;
  chronicle.SongEnded(capture, SongFate::Kept, "");
  capture.Outcome.FullScalePercent = 7;
  chronicle.SongEnded(capture, SongFate::Kept, "");
  loop.Run(10s);
  ASSERT_EQ(store.Rows.Songs.size(), 3U);
  EXPECT_EQ(store.Rows.Songs[0].OverloadedMs, 0);
  EXPECT_EQ(store.Rows.Songs[1].OverloadedMs, 2001) << "more than a hundredth";
  EXPECT_EQ(store.Rows.Songs[2].OverloadedMs, 14'000);
}

}  // namespace
}  // namespace kestrune::test
