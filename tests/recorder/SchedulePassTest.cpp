// The schedule pass alone, one pass at a time, at moments to the second.
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunState.h"
#include "recorder/SchedulePass.h"
#include "support/FakeHistoryStore.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedSerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using recorder::Phase;
using schedule::ScheduleEntry;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

DateValue At(int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, 3, 9, hour, minute, second);
}

/// Once on March 9, 2005.
ScheduleEntry Once(int hour, int minute, int minutes, std::int16_t channel) {
  const DateValue start = At(hour, minute);
  return {.Enabled = true,
          .Channel = channel,
          .StartDate = start,
          .EndDate = start.AddMinutes(minutes).AddSeconds(59),
          .Integrel = true,
          .MatchGrab = false,
          .MatchKill = false,
          .MP3BitRate = "128 Stereo",
          .Cleftune = true};
}

class SchedulePassTest : public ::testing::Test, private radio::ChannelEvents {
 protected:
  SchedulePassTest() {
    channels.StartWalk();
    for (const std::int16_t number : {44, 45, 46}) {
      const std::string text = std::to_string(number);
      channels.pcrChannelInfoReceived({.Channel = number,
                                       .Genre = "Genre " + text,
                                       .Station = "Station " + text,
                                       .Artist = "Artist " + text,
                                       .Song = "Song " + text});
    }
    radio.ChannelsLoading = false;
    radio.ChannelNumber = 44;
    radio.CurrentArtist = "Artist 44";
    radio.CurrentSong = "Song 44";
    journal.Log.clear();
  }

  /// One pass at a moment of March 9, as the update tick makes it; gives the lines that it logged.
  std::vector<std::string> PassAt(int hour, int minute, int second = 0) {
    loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(loop.Now(), At(hour, minute, second))));
    tmrUpdate->SetEnabled(false);
    journal.Log.clear();
    // The ticks since the last pass have finished a stopped piece.
    state.StopPending = false;
    pass.Run();
    return journal.Log;
  }
  void Press(bool record) {
    if (record) {
      commands.cmdRecord();
    } else {
      commands.cmdStop();
    }
  }

  SimulatedEventLoop loop{At(7, 0)};
  ScriptedSerialPort port{loop};
  MemoryFiles files;
  RecordingJournal journal;
  recorder::State all;
  base::RunState& run = all.Run;
  radio::RadioState& radio = all.Radio;
  recorder::RecordingState& state = all.Recording;
  schedule::ScheduleState& schedule = all.Schedule;
  schedule::ScheduleEntries& entries = all.Entries;
  config::Settings& settings = all.Settings;
  std::unique_ptr<base::Timer> tmrUpdate = loop.MakeTimer(milliseconds(200), [] {});
  radio::RadioLink link{port, loop, run, journal};
  radio::Channels channels{
      radio, run, {.Link = link, .Files = files, .Loop = loop, .Journal = journal}, *this};
  recorder::Modes modes{all};
  recorder::Announcer announcer{all, journal};
  recorder::RecordCommands commands{all, announcer, link, loop, *tmrUpdate};
  test::FakeHistoryStore store{loop};
  history::History history{store, loop};
  recorder::Chronicle chronicle{history, loop};
  recorder::SchedulePass pass{
      all, {.Channels = channels, .Commands = commands, .Chronicle = chronicle}, journal, loop, *tmrUpdate};
  std::function<void()> whileTuning = [] {};

 private:
  void ShowChannel(const radio::ChannelEntry& /*entry*/) override {}
  void ShowTunedChannel(std::int16_t /*number*/, const radio::ChannelEntry& /*entry*/) override {
    whileTuning();
  }
  void ShowBareTitle() override {}
  void ChannelTuned() override {
    state.SongBoundarySeen = false;
    state.SkipSongDelay = true;
  }
  void WalkFinished() override {}
};

TEST_F(SchedulePassTest, AnEventBeginsWithItsLinesItsMarksAndItsChannel) {
  entries[2] = Once(20, 0, 60, 46);
  entries[2].MatchKill = true;
  entries[2].Cleftune = false;
  state.SongBoundarySeen = true;
  all.Clock.SecondsLeft = 7;

  EXPECT_THAT(
      PassAt(20, 0, 2),
      ElementsAre("Scheduled event 3 beginning on channel 46 until Mar 9, 9:00:59 pm",
                  "Scheduled event is utilizing Integrel", "Scheduled event is utilizing Grab/Kill lists",
                  "Scheduled event is NOT utilizing Cleftune"));
  EXPECT_EQ(schedule.ActiveSchedule, 3);
  EXPECT_EQ(schedule.RemainingUntil, At(21, 0, 59));
  EXPECT_EQ(schedule.SchedEndTime, At(21, 0, 59));
  EXPECT_TRUE(modes.CheckIntegrel());
  EXPECT_FALSE(modes.CheckCleftune());
  EXPECT_FALSE(modes.CheckGrab());
  EXPECT_TRUE(modes.CheckKill());
  EXPECT_EQ(radio.ChannelNumber, 46);
  EXPECT_TRUE(state.RecordRequested);
  EXPECT_FALSE(state.SongBoundarySeen) << "the song in hand is not whole on the new channel";
  EXPECT_EQ(all.Clock.SecondsLeft, std::nullopt);
  EXPECT_TRUE(all.Clock.EventMarkShown);
  EXPECT_FALSE(all.MayRecord());
  EXPECT_FALSE(all.MayStop()) << "only the schedule ends an event";
  EXPECT_EQ(state.Phase, Phase::WaitingForNextSong);
}

TEST_F(SchedulePassTest, EachModeHasItsLineAndTheListsShareOne) {
  struct Row {
    bool Integrel, Grab, Kill, Cleftune;
    std::vector<std::string> Lines;
  };
  const std::string whole = "Scheduled event is utilizing Integrel";
  const std::string lists = "Scheduled event is utilizing Grab/Kill lists";
  const std::string unsplit = "Scheduled event is NOT utilizing Cleftune";
  const Row rows[] = {{false, false, false, true, {}},
                      {true, false, false, true, {whole}},
                      {false, true, false, true, {lists}},
                      {false, false, true, true, {lists}},
                      {false, true, true, true, {lists}},
                      {false, false, false, false, {unsplit}},
                      {true, true, true, false, {whole, lists, unsplit}}};
  for (const Row& row : rows) {
    entries[0] = Once(20, 0, 60, 45);
    entries[0].Integrel = row.Integrel;
    entries[0].MatchGrab = row.Grab;
    entries[0].MatchKill = row.Kill;
    entries[0].Cleftune = row.Cleftune;
    std::vector<std::string> lines = PassAt(20, 0);
    ASSERT_FALSE(lines.empty());
    lines.erase(lines.begin());
    EXPECT_EQ(lines, row.Lines);
    entries[0].Enabled = false;
    PassAt(20, 1);
    ASSERT_EQ(schedule.ActiveSchedule, 0);
  }
}

TEST_F(SchedulePassTest, TheSongThatPlaysWhenTheEventBeginsIsNoChangeOfSong) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  EXPECT_EQ(state.SettleTicks, 4);
  EXPECT_TRUE(state.WaitingForNextSong);
  EXPECT_EQ(state.LastArtist, "Artist 46");
  EXPECT_EQ(state.LastSong, "Song 46");
  EXPECT_EQ(state.LastGenre, "Genre 46");
  EXPECT_EQ(state.LastStation, "Station 46");
  EXPECT_EQ(state.LastChannel, 3) << "the slot of the table, not the channel's number";
  EXPECT_EQ(radio.CurrentArtist, "Artist 46");
  EXPECT_EQ(radio.CurrentSong, "Song 46");
}

TEST_F(SchedulePassTest, AnEventOnAChannelThatTheTableDoesNotHaveBeginsAllTheSame) {
  entries[0] = Once(20, 0, 60, 99);
  EXPECT_THAT(PassAt(20, 0), ElementsAre("Scheduled event 1 beginning on channel 99 until Mar 9, 9:00:59 pm",
                                         "Scheduled event is utilizing Integrel"));
  EXPECT_EQ(radio.ChannelNumber, 99);
  EXPECT_EQ(state.LastArtist, "");
  EXPECT_EQ(state.LastChannel, 0);
}

TEST_F(SchedulePassTest, WithoutWholeSongsTheEventRecordsAtOnce) {
  entries[0] = Once(20, 0, 60, 46);
  entries[0].Integrel = false;
  PassAt(20, 0);
  EXPECT_EQ(state.Phase, Phase::Recording);
  EXPECT_TRUE(state.StartPending);
  EXPECT_TRUE(state.Incomplete);
}

TEST_F(SchedulePassTest, AnEventEndsWithOneLineAndLeavesTheUsersModes) {
  entries[3] = Once(20, 0, 60, 46);
  entries[3].Cleftune = false;
  PassAt(20, 0);
  state.RecordedCount = 7;
  EXPECT_THAT(PassAt(21, 0, 58), IsEmpty());
  EXPECT_EQ(all.EndedEvent.Number, 0);
  EXPECT_THAT(PassAt(21, 0, 59), ElementsAre("Scheduled event 4 completed - 7 songs recorded"));
  EXPECT_EQ(all.EndedEvent.Number, 1);
  EXPECT_EQ(all.EndedEvent.Event, 4);
  EXPECT_EQ(all.EndedEvent.Songs, 7);
  EXPECT_EQ(schedule.ActiveSchedule, 0);
  EXPECT_TRUE(modes.CheckCleftune());
  EXPECT_FALSE(all.Clock.EventMarkShown);
  EXPECT_TRUE(all.MayRecord());
  EXPECT_FALSE(all.MayStop());
  EXPECT_FALSE(state.RecordRequested);
  EXPECT_EQ(radio.ChannelNumber, 46) << "the channel alone is not given back";
  EXPECT_THAT(PassAt(21, 1, 3), IsEmpty());
}

TEST_F(SchedulePassTest, TheStopAtTheEndStillAnswersFromTheEntry) {
  // The user wants whole songs, the event does not: its last song is cut and kept.
  settings.Integrel = true;
  entries[0] = Once(20, 0, 60, 46);
  entries[0].Integrel = false;
  PassAt(20, 0);
  PassAt(21, 1);
  EXPECT_TRUE(state.StopPending);
}

TEST_F(SchedulePassTest, ARecordingByHandIsStoppedAndTheEventBeginsOnePassLater) {
  Press(true);
  entries[0] = Once(20, 0, 60, 46);
  EXPECT_THAT(PassAt(20, 0), IsEmpty());
  EXPECT_FALSE(state.RecordRequested);
  EXPECT_TRUE(all.MayRecord());
  EXPECT_EQ(radio.ChannelNumber, 44);
  EXPECT_EQ(schedule.ActiveSchedule, 0);
  EXPECT_EQ(PassAt(20, 0, 4).size(), 2U);
  EXPECT_EQ(schedule.ActiveSchedule, 1);
}

TEST_F(SchedulePassTest, ARecordingByHandWithNothingDueGoesOn) {
  entries[0] = Once(20, 0, 60, 46);
  Press(true);
  EXPECT_THAT(PassAt(19, 59, 59), IsEmpty());
  EXPECT_TRUE(state.RecordRequested);
}

TEST_F(SchedulePassTest, ARecordArmedDuringTheChannelLoadIsTakenForOneByHand) {
  radio.ChannelsLoading = true;
  Press(true);
  ASSERT_EQ(state.Phase, Phase::WaitingForChannelLoad);
  entries[0] = Once(20, 0, 60, 46);
  EXPECT_THAT(PassAt(20, 0), IsEmpty());
  EXPECT_EQ(state.Phase, Phase::Idle);
  EXPECT_EQ(PassAt(20, 0, 4).size(), 2U);
  EXPECT_EQ(state.Phase, Phase::WaitingForChannelLoad) << "the load's end starts the recording";
  EXPECT_FALSE(all.MayStop());
}

TEST_F(SchedulePassTest, TwoEventsInARowChangeOverInOnePass) {
  entries[0] = Once(20, 0, 59, 45);
  entries[1] = Once(21, 0, 30, 46);
  PassAt(20, 0);
  EXPECT_THAT(PassAt(20, 59, 58), IsEmpty());
  EXPECT_THAT(PassAt(21, 0, 0),
              ElementsAre("Scheduled event 1 completed - 0 songs recorded",
                          "Scheduled event 2 beginning on channel 46 until Mar 9, 9:30:59 pm",
                          "Scheduled event is utilizing Integrel"));
  EXPECT_TRUE(state.RecordRequested);
}

TEST_F(SchedulePassTest, APassBetweenTwoEventsEndsTheFirstAndTheNextPassBeginsTheSecond) {
  entries[0] = Once(20, 0, 59, 45);
  entries[1] = Once(21, 0, 30, 46);
  PassAt(20, 0);
  EXPECT_THAT(PassAt(20, 59, 59), ElementsAre("Scheduled event 1 completed - 0 songs recorded"));
  EXPECT_EQ(PassAt(21, 0, 3).size(), 2U);
  EXPECT_EQ(schedule.ActiveSchedule, 2);
  EXPECT_EQ(all.EndedEvent.Number, 1) << "a beginning is no end";
}

TEST_F(SchedulePassTest, ALowerEntryEndsARunningOneWhichBeginsAgainAfterIt) {
  entries[2] = Once(20, 0, 120, 46);
  entries[0] = Once(20, 30, 10, 45);
  PassAt(20, 0);
  EXPECT_THAT(PassAt(20, 30), ElementsAre("Scheduled event 3 completed - 0 songs recorded",
                                          "Scheduled event 1 beginning on channel 45 until Mar 9, 8:40:59 pm",
                                          "Scheduled event is utilizing Integrel"));
  EXPECT_THAT(PassAt(20, 41),
              ElementsAre("Scheduled event 1 completed - 0 songs recorded",
                          "Scheduled event 3 beginning on channel 46 until Mar 9, 10:00:59 pm",
                          "Scheduled event is utilizing Integrel"));
}

TEST_F(SchedulePassTest, ADisabledRunningEntryEndsWithTheUsualLine) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  entries[0].Enabled = false;
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Scheduled event 1 completed - 0 songs recorded"));
}

TEST_F(SchedulePassTest, AnotherEndOfTheRunningEntryIsLoggedOnce) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  entries[0].EndDate = At(20, 30, 59);
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Schedule changed, now recording until Mar 9, 8:30 pm"));
  EXPECT_EQ(schedule.RemainingUntil, At(20, 30, 59));
  EXPECT_EQ(schedule.SchedEndTime, At(20, 30, 59));
  EXPECT_THAT(PassAt(20, 10, 4), IsEmpty());
  EXPECT_THAT(PassAt(20, 31), ElementsAre("Scheduled event 1 completed - 0 songs recorded"));
}

TEST_F(SchedulePassTest, OtherModesOfTheRunningEntryAreTakenWithoutALine) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  const std::vector<std::pair<bool ScheduleEntry::*, bool schedule::ScheduleState::*>> modesOfEntry = {
      {&ScheduleEntry::Integrel, &schedule::ScheduleState::SchedIntegrel},
      {&ScheduleEntry::Cleftune, &schedule::ScheduleState::SchedCleftune},
      {&ScheduleEntry::MatchGrab, &schedule::ScheduleState::SchedSievanceGrab},
      {&ScheduleEntry::MatchKill, &schedule::ScheduleState::SchedSievanceKill}};
  for (const auto& [stored, running] : modesOfEntry) {
    entries[0].*stored = !(entries[0].*stored);
    EXPECT_THAT(PassAt(20, 10), IsEmpty());
    for (const auto& [otherStored, otherRunning] : modesOfEntry) {
      EXPECT_EQ(schedule.*otherRunning, entries[0].*otherStored);
    }
  }
  EXPECT_EQ(state.SettleTicks, 4) << "from the beginning; nothing has moved since";
}

TEST_F(SchedulePassTest, AnotherChannelOfTheRunningEntryStartsTheRecordingAnew) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  state.RecordedCount = 5;
  state.SettleTicks = 0;
  state.SongBoundarySeen = true;
  entries[0].Channel = 45;
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Schedule changed, now recording channel 45"));
  EXPECT_EQ(radio.ChannelNumber, 45);
  EXPECT_EQ(state.RecordedCount, 0) << "the count begins with the recording";
  EXPECT_EQ(state.SettleTicks, 4);
  EXPECT_EQ(state.LastSong, "Song 45");
  EXPECT_EQ(state.LastChannel, 2);
  EXPECT_EQ(radio.CurrentSong, "Song 45");
  EXPECT_TRUE(state.WaitingForNextSong);
  EXPECT_TRUE(state.RecordRequested);
  EXPECT_FALSE(all.MayStop());
  EXPECT_FALSE(all.Clock.EventMarkShown) << "the next blink shows it again";
  EXPECT_THAT(PassAt(20, 10, 4), IsEmpty());
}

TEST_F(SchedulePassTest, AChannelChangedByTheUserIsTunedBack) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  channels.SetChannelNumber(44);
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Schedule changed, now recording channel 46"));
  EXPECT_EQ(radio.ChannelNumber, 46);
}

TEST_F(SchedulePassTest, AnotherEndAndAnotherChannelLogTheEndFirst) {
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  entries[0].Channel = 45;
  entries[0].EndDate = At(22, 0, 59);
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Schedule changed, now recording until Mar 9, 10:00 pm",
                                          "Schedule changed, now recording channel 45"));
}

TEST_F(SchedulePassTest, AChangeOfChannelWithoutWholeSongsRecordsAtOnce) {
  entries[0] = Once(20, 0, 60, 46);
  entries[0].Integrel = false;
  PassAt(20, 0);
  entries[0].Channel = 45;
  PassAt(20, 10);
  EXPECT_FALSE(state.WaitingForNextSong);
  EXPECT_TRUE(state.StartPending);
  EXPECT_FALSE(state.StopPending) << "the new start takes the place of the stop";
}

TEST_F(SchedulePassTest, ARecordPressedWhileTheEventTunesDoesNotGetInItsWay) {
  entries[0] = Once(20, 0, 60, 46);
  whileTuning = [this] { Press(true); };
  EXPECT_EQ(PassAt(20, 0).size(), 2U);
  EXPECT_EQ(schedule.ActiveSchedule, 1);
  EXPECT_TRUE(state.RecordRequested);
  EXPECT_FALSE(all.MayRecord());
  EXPECT_FALSE(all.MayStop());
}

TEST_F(SchedulePassTest, TheCountersBeforeAnEventStandUntilItHasTuned) {
  entries[0] = Once(20, 0, 60, 46);
  state.RecordedCount = 2;
  state.TooShortCount = 3;
  int kept = -1;
  int tooShort = -1;
  bool told = false;
  whileTuning = [&] {
    told = !journal.Log.empty();
    kept = state.RecordedCount;
    tooShort = state.TooShortCount;
  };
  PassAt(20, 0);
  EXPECT_TRUE(told) << "the line of the beginning comes first";
  EXPECT_EQ(kept, 2);
  EXPECT_EQ(tooShort, 3);
  EXPECT_EQ(state.RecordedCount, 0);
  EXPECT_EQ(state.TooShortCount, 0);
}

TEST_F(SchedulePassTest, ARecordPressedWhileTheEventTunesBeginsTheCountEarly) {
  entries[0] = Once(20, 0, 60, 46);
  state.RecordedCount = 2;
  int kept = -1;
  whileTuning = [&] {
    Press(true);
    kept = state.RecordedCount;
  };
  PassAt(20, 0);
  EXPECT_EQ(kept, 0);
  EXPECT_EQ(state.RecordedCount, 0);
}

TEST_F(SchedulePassTest, AStopFromElsewhereDoesNotEndTheRecordingOfAnEvent) {
  // A change of the file format stops whatever is being recorded.
  entries[0] = Once(20, 0, 60, 46);
  PassAt(20, 0);
  state.RecordedCount = 3;
  state.TooShortCount = 2;
  Press(false);
  EXPECT_THAT(PassAt(20, 10), ElementsAre("Scheduled event 1 recording again"));
  EXPECT_EQ(schedule.ActiveSchedule, 1);
  EXPECT_TRUE(state.RecordRequested);
  EXPECT_FALSE(all.MayRecord());
  EXPECT_FALSE(tmrUpdate->Enabled());
  EXPECT_EQ(state.TooShortCount, 2);
  EXPECT_THAT(PassAt(20, 10, 4), IsEmpty());
  EXPECT_THAT(PassAt(21, 1), ElementsAre("Scheduled event 1 completed - 3 songs recorded"));
}

TEST_F(SchedulePassTest, AStopThatCutsIsFinishedBeforeAnEventBegins) {
  entries[2] = Once(20, 0, 60, 46);
  entries[2].Integrel = false;
  entries[0] = Once(20, 30, 10, 45);
  PassAt(20, 0);
  EXPECT_THAT(PassAt(20, 31), ElementsAre("Scheduled event 3 completed - 0 songs recorded"));
  EXPECT_TRUE(state.StopPending);
  EXPECT_EQ(schedule.ActiveSchedule, 0);
  EXPECT_EQ(PassAt(20, 31, 4).at(0), "Scheduled event 1 beginning on channel 45 until Mar 9, 8:40:59 pm");
}

TEST_F(SchedulePassTest, MorningNoonAndMidnightReadAsOnAClockFace) {
  entries[0] = Once(0, 0, 5, 46);
  EXPECT_EQ(PassAt(0, 0).at(0), "Scheduled event 1 beginning on channel 46 until Mar 9, 12:05:59 am");
  entries[0] = Once(12, 0, 5, 46);
  EXPECT_EQ(PassAt(12, 0).at(0), "Schedule changed, now recording until Mar 9, 12:05 pm")
      << "the same entry, moved while it ran";
}

}  // namespace
}  // namespace kestrune::test
