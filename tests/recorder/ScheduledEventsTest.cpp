// Scheduled events on a whole unit: ticks, radio, sound and files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// March 9, 2005 was a Wednesday; the rest of the year's days by their date.
DateValue On(int month, int day, int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, month, day, hour, minute, second);
}
DateValue At(int hour, int minute, int second = 0) {
  return On(3, 9, hour, minute, second);
}

struct Planned {
  std::string Start = "Mar 9, 2005 8:00 PM";
  std::string Duration = "1:00";
  int Channel = 46;
  bool Integrel = true;
  bool Cleftune = true;
  std::string BitRate = "128 Stereo";
  bool Enabled = true;
};

// More than a pass takes, and less than two.
constexpr auto kOnePass = 6s;

class ScheduledEventsTest : public ::testing::Test {
 protected:
  UnitRig rig;

  void Store(int number, const Planned& planned) {
    const auto set = [&](const std::string& name, const std::string& value) {
      rig.Set(name + std::to_string(number), value);
    };
    set("ScheduleEnabled", planned.Enabled ? "1" : "0");
    set("ScheduleChannel", std::to_string(planned.Channel));
    set("ScheduleStartDate", planned.Start);
    set("ScheduleDuration", planned.Duration);
    set("ScheduleIntegrel", planned.Integrel ? "1" : "0");
    set("ScheduleCleftune", planned.Cleftune ? "1" : "0");
    set("ScheduleMatchGrab", "0");
    set("ScheduleMatchKill", "0");
    set("ScheduleMP3BitRate", planned.BitRate);
  }
  /// As the scheduler window does: stored, and reloaded at its close.
  void Plan(int number, const Planned& planned) {
    Store(number, planned);
    rig->ReloadSchedule();
  }
  /// Sets the wall clock, as a person or a time server does.
  void SetClock(DateValue wall) {
    rig.Loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(rig.Loop.Now(), wall)));
  }
  void RunTo(DateValue wall) {
    ASSERT_LT(rig.Loop.Now(), wall);
    const std::chrono::seconds left(base::SecondsBetween(rig.Loop.Now(), wall));
    ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig.Loop.Now() >= wall; }, left));
  }
  /// An idle unit at this moment.
  void StartIdleAt(DateValue wall) {
    SetClock(wall);
    rig.StartIdle();
    SetClock(wall);
  }
  [[nodiscard]] std::vector<std::string> ScheduleLines() {
    std::vector<std::string> lines;
    for (const std::string& line : rig.LogTexts()) {
      if (line.starts_with("Schedule")) lines.push_back(line);
    }
    return lines;
  }
  [[nodiscard]] int Active() { return rig->State().Schedule.ActiveSchedule; }
  [[nodiscard]] presenters::MainWindow Window() { return rig.Window(); }
};

TEST_F(ScheduledEventsTest, AnEmptyStoreGivesDisabledEntriesAndNothingHappens) {
  rig.StartIdle();
  EXPECT_FALSE(rig->State().Entries[0].Enabled);
  EXPECT_EQ(rig->State().Entries[9].Channel, 1);
  rig.Run(10min);
  EXPECT_THAT(ScheduleLines(), IsEmpty());
}

TEST_F(ScheduledEventsTest, AnEventBeginsRecordsWholeSongsAndEndsWithinFourSecondsOfItsTimes) {
  Store(1, {.Duration = "0:10"});
  StartIdleAt(At(19, 59, 40));
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 1min));
  EXPECT_GE(rig.Loop.Now(), At(20, 0, 0));
  EXPECT_LE(rig.Loop.Now(), At(20, 0, 6)) << "the tick that tunes the radio takes its time too";
  EXPECT_EQ(Window().lblRecording.Caption, "Waiting for next song");
  RunTo(At(20, 1));
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(Window().lblRecording.Caption, "Recording");
  RunTo(At(20, 4));
  rig.NextSong("Cellar", "Blue Door");
  RunTo(At(20, 8));
  rig.NextSong("Moonlighters", "Slow Tide");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 0; }, 10min));
  EXPECT_GE(rig.Loop.Now(), At(20, 10, 59));
  EXPECT_LE(rig.Loop.Now(), At(20, 11, 4));
  EXPECT_THAT(
      ScheduleLines(),
      ElementsAre("Scheduled event 1 beginning on channel 46 until Mar 9, 8:10:59 pm",
                  "Scheduled event is utilizing Integrel", "Scheduled event 1 completed - 2 songs recorded"));
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 46  \"Lanterns - North Pier\"")));
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 46  \"Cellar - Blue Door\"")));
  EXPECT_FALSE(rig.Logged("Artist 46"))
      << "the song that was playing when the event began is none of its songs";
}

TEST_F(ScheduledEventsTest, AfterAnEventTheRadioStaysOnItsChannelAndNoLineSaysSo) {
  Store(1, {.Duration = "0:01"});
  StartIdleAt(At(19, 59));
  ASSERT_EQ(rig->State().Radio.ChannelNumber, 44);
  RunTo(At(20, 3));
  ASSERT_EQ(Active(), 0);
  EXPECT_EQ(rig->State().Radio.ChannelNumber, 46);
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
  EXPECT_THAT(ScheduleLines().back(), "Scheduled event 1 completed - 0 songs recorded");
  const std::vector<std::string> log = rig.LogTexts();
  EXPECT_EQ(log.back(), ScheduleLines().back());
}

TEST_F(ScheduledEventsTest, TheCountdownShowsWhatIsLeftAndStaysAtItsLastValue) {
  Store(1, {.Duration = "0:02"});
  StartIdleAt(At(19, 59));
  EXPECT_FALSE(Window().lblRemaining.Visible);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 2min));
  RunTo(At(20, 1));
  rig.Run(200ms);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:01:59");
  RunTo(At(20, 2, 58));
  rig.Run(200ms);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:00:01");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 0; }, 10s));
  EXPECT_FALSE(Window().lblRemaining.Visible);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:00:00");
  rig.Run(10s);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:00:00");
}

TEST_F(ScheduledEventsTest, TheMarkBlinksWithTheStatusWhileTheEventRecords) {
  Store(1, {.Integrel = false});
  StartIdleAt(At(20, 0));
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 10s));
  int changes = 0;
  bool visible = Window().pctTimer.Visible;
  for (int tenth = 0; tenth < 100; ++tenth) {
    rig.Run(100ms);
    changes += Window().pctTimer.Visible != visible ? 1 : 0;
    visible = Window().pctTimer.Visible;
  }
  EXPECT_EQ(changes, 20);
}

TEST_F(ScheduledEventsTest, AManualRecordingIsStoppedAndTheEventBeginsOnePassLater) {
  StartIdleAt(At(19, 50));
  rig.NextSong("Lanterns", "North Pier");
  rig->cmdRecord();
  rig.Run(30s);
  SetClock(At(20, 0));
  Plan(1, {});
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return !rig->State().Recording.RecordRequested; }, kOnePass));
  const auto stopped = rig.Loop.SteadyNow();
  EXPECT_EQ(Active(), 0);
  EXPECT_THAT(ScheduleLines(), IsEmpty());
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, kOnePass));
  EXPECT_GE(rig.Loop.SteadyNow() - stopped, 3900ms);
  EXPECT_LE(rig.Loop.SteadyNow() - stopped, kOnePass);
}

TEST_F(ScheduledEventsTest, AChannelChangedDuringAnEventIsTunedBackWithinOnePass) {
  Store(1, {});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 1));
  rig->SetChannelNumber(50);
  EXPECT_EQ(rig.Radio.TunedChannel, 50);
  rig.Run(kOnePass);
  EXPECT_EQ(ScheduleLines().back(), "Schedule changed, now recording channel 46");
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
  EXPECT_EQ(Active(), 1);
  EXPECT_TRUE(rig->State().Recording.RecordRequested);
  EXPECT_FALSE(Window().cmdStop.Enabled);
  const std::size_t lines = ScheduleLines().size();
  rig.Run(1min);
  EXPECT_EQ(ScheduleLines().size(), lines);
}

TEST_F(ScheduledEventsTest, AnEditedEndOfTheRunningEntryHoldsFromTheNextPass) {
  Store(1, {});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 1));
  Plan(1, {.Duration = "0:05"});
  EXPECT_EQ(rig->State().Schedule.RemainingUntil, At(21, 0, 59))
      << "the reload itself does not touch the event";
  rig.Run(kOnePass);
  EXPECT_EQ(ScheduleLines().back(), "Schedule changed, now recording until Mar 9, 8:05 pm");
  EXPECT_EQ(rig->State().Schedule.RemainingUntil, At(20, 5, 59));
  RunTo(At(20, 6, 10));
  EXPECT_EQ(ScheduleLines().back(), "Scheduled event 1 completed - 0 songs recorded");
}

TEST_F(ScheduledEventsTest, ADisabledRunningEntryEndsAtTheNextPass) {
  Store(1, {});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 1));
  Plan(1, {.Enabled = false});
  rig.Run(kOnePass);
  EXPECT_EQ(Active(), 0);
  EXPECT_EQ(ScheduleLines().back(), "Scheduled event 1 completed - 0 songs recorded");
}

TEST_F(ScheduledEventsTest, WithoutCleftuneTheEventIsOneFile) {
  Store(1, {.Duration = "0:10", .Integrel = false, .Cleftune = false});
  StartIdleAt(At(19, 59));
  RunTo(At(20, 0, 10));
  for (const char* song : {"One", "Two", "Three"}) {
    rig.Run(2min);
    rig.NextSong("Lanterns", song);
  }
  RunTo(At(20, 11, 10));
  EXPECT_THAT(ScheduleLines(),
              ElementsAre("Scheduled event 1 beginning on channel 46 until Mar 9, 8:10:59 pm",
                          "Scheduled event is NOT utilizing Cleftune",
                          "Scheduled event 1 completed - 0 songs recorded"))
      << "the one file is closed after the line";
  int recorded = 0;
  for (const std::string& line : rig.LogTexts()) recorded += line.starts_with("Recorded: ") ? 1 : 0;
  EXPECT_EQ(recorded, 1);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 46  \"Artist 46 - Song 46 (Incomplete)\"")));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 1);
}

TEST_F(ScheduledEventsTest, ALowerEntryEndsARunningOneWhichBeginsAgainAfterIt) {
  Store(3, {.Channel = 50});
  Store(1, {.Start = "Mar 9, 2005 8:02 PM", .Duration = "0:01", .Channel = 45});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 4, 10));
  const std::string whole = "Scheduled event is utilizing Integrel";
  EXPECT_THAT(ScheduleLines(),
              ElementsAre("Scheduled event 3 beginning on channel 50 until Mar 9, 9:00:59 pm", whole,
                          "Scheduled event 3 completed - 0 songs recorded",
                          "Scheduled event 1 beginning on channel 45 until Mar 9, 8:03:59 pm", whole,
                          "Scheduled event 1 completed - 0 songs recorded",
                          "Scheduled event 3 beginning on channel 50 until Mar 9, 9:00:59 pm", whole));
  EXPECT_EQ(rig.Radio.TunedChannel, 50);
}

TEST_F(ScheduledEventsTest, AnEveryDayEventEndsAfterMidnightAtTheFirstPassAfterItsEnd) {
  Store(1, {.Start = "Jan 15, 1967 11:00 PM", .Duration = "2:00"});
  StartIdleAt(On(3, 10, 0, 30));
  rig.Run(kOnePass);
  EXPECT_EQ(ScheduleLines().at(0), "Scheduled event 1 beginning on channel 46 until Mar 10, 1:00:59 am");
  EXPECT_EQ(rig->State().Schedule.RemainingUntil, On(3, 10, 1, 0, 59));
  SetClock(On(3, 10, 1, 0, 30));
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 0; }, 1min));
  EXPECT_GE(rig.Loop.Now(), On(3, 10, 1, 0, 59));
  EXPECT_LE(rig.Loop.Now(), On(3, 10, 1, 1, 3));
}

TEST_F(ScheduledEventsTest, AStartInTheMiddleOfAnEventBeginsItWithItsRealEnd) {
  Store(1, {.Start = "Jan 7, 1967 11:00 PM", .Duration = "2:00"});
  // A Saturday's event, and Sunday already.
  SetClock(On(3, 6, 0, 20));
  rig.Start();
  EXPECT_THAT(ScheduleLines(), IsEmpty()) << "not before the radio is ready";
  rig.FinishWalk();
  rig.Run(kOnePass);
  EXPECT_EQ(Active(), 1);
  EXPECT_THAT(ScheduleLines(),
              ElementsAre("Scheduled event 1 beginning on channel 46 until Mar 6, 1:00:59 am",
                          "Scheduled event is utilizing Integrel"));
  EXPECT_TRUE(rig->State().Recording.RecordRequested);
}

TEST_F(ScheduledEventsTest, AnEventThatBeginsDuringTheChannelLoadRecordsAfterIt) {
  Store(1, {});
  SetClock(At(20, 0));
  rig.Start();
  // A radio that takes its time with its list.
  rig.Radio.AnswerDelay = 900ms;
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 1min));
  ASSERT_TRUE(rig->State().Radio.ChannelsLoading);
  EXPECT_EQ(Window().lblRecording.Caption, "Waiting for channel load");
  rig.Radio.AnswerDelay = 40ms;
  rig.FinishWalk();
  rig.Run(kOnePass);
  EXPECT_TRUE(rig->State().Recording.RecordRequested);
  EXPECT_EQ(Active(), 1);
}

TEST_F(ScheduledEventsTest, AnEventTakesItsOwnBitRateAndTheUsersComesBack) {
  rig.Set("FileFormat", "MP3");
  rig.Set("MP3_Bitrate", "192");
  Store(1, {.Duration = "0:05", .BitRate = "64 Mono"});
  StartIdleAt(At(19, 59));
  const auto prepared = [&] {
    return rig.Audio.CaptureFiles.at(static_cast<std::size_t>(rig->State().Recording.CaptureSlot))->Mp3;
  };
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(prepared().Bitrate, 192);
  EXPECT_EQ(prepared().Channels, 2);
  RunTo(At(20, 1));
  rig.NextSong("Cellar", "Blue Door");
  ASSERT_EQ(Active(), 1);
  EXPECT_EQ(prepared().Bitrate, 64);
  EXPECT_EQ(prepared().Channels, 1);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 0; }, 10min));
  rig.Run(500ms);
  EXPECT_EQ(prepared().Bitrate, 192) << "from the event's end on, not only from the next song";
  EXPECT_EQ(prepared().Channels, 2);
}

TEST_F(ScheduledEventsTest, AfterAnEventOfWholeSongsTheCaptureInHandIsNoWholeSong) {
  Store(1, {.Duration = "0:05"});
  StartIdleAt(At(19, 59));
  RunTo(At(20, 3));
  rig.NextSong("Lanterns", "North Pier");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 0; }, 10min));
  rig.Run(1s);
  EXPECT_FALSE(rig->State().Recording.SongBoundarySeen);
  EXPECT_LT(rig->State()
                .Recording.CaptureSlots.at(static_cast<std::size_t>(rig->State().Recording.CaptureSlot))
                .LengthMs,
            1100);
  EXPECT_EQ(rig.Recordings().size(), 1U) << "the song that the event's end cut short is gone";
}

TEST_F(ScheduledEventsTest, AFileOfOneEventIsFinishedBeforeTheNextEventBegins) {
  Store(3, {.Channel = 50, .Integrel = false, .Cleftune = false});
  Store(1, {.Start = "Mar 9, 2005 8:02 PM", .Duration = "0:05", .Channel = 45});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 2, 20));
  EXPECT_EQ(Active(), 1);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 50  \"Artist 50 - Song 50 (Incomplete)\"")));
  EXPECT_THAT(ScheduleLines(),
              ElementsAre("Scheduled event 3 beginning on channel 50 until Mar 9, 9:00:59 pm",
                          "Scheduled event is NOT utilizing Cleftune",
                          "Scheduled event 3 completed - 0 songs recorded",
                          "Scheduled event 1 beginning on channel 45 until Mar 9, 8:07:59 pm",
                          "Scheduled event is utilizing Integrel"));
}

TEST_F(ScheduledEventsTest, AnEventWithoutIntegrelBeginsWithACutOfItsOwn) {
  rig.Set("FilenameFormat", "%d %s");
  Store(1, {.Duration = "0:01", .Channel = 44, .Integrel = false, .Cleftune = false});
  StartIdleAt(At(19, 50));
  RunTo(At(20, 3));
  int recorded = 0;
  for (const std::string& line : rig.LogTexts()) {
    if (!line.starts_with("Recorded: ")) continue;
    ++recorded;
    EXPECT_NE(line.find("Song length: 1:5"), std::string::npos) << line;
  }
  EXPECT_EQ(recorded, 1);
  ASSERT_EQ(rig.Recordings().size(), 2U) << "the file, and the capture in hand";
  bool named = false;
  for (const std::string& name : rig.Recordings()) named = named || name.starts_with("20050309_2000 ");
  EXPECT_TRUE(named);
}

TEST_F(ScheduledEventsTest, TheFilesOfAnEventAreJudgedByItsModesTheLastOneToo) {
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "2Artist 46\n");
  rig.Set("SievanceKill", "1");
  rig.Set("SievanceGrab", "1");
  Store(1, {.Duration = "0:02", .Integrel = false});
  StartIdleAt(At(20, 0));
  ASSERT_TRUE(rig->Parts().Restrictions.IsInKillList("Artist 46", ""));
  ASSERT_TRUE(rig->State().Settings.SievanceKill);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 10s));
  RunTo(At(20, 3, 10));
  ASSERT_EQ(Active(), 0);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 46  \"Artist 46 - Song 46 (Incomplete)\"")))
      << "the user's lists are no matter of this event";
}

TEST_F(ScheduledEventsTest, TickingIntegrelDoesNotLoseTheOneFileOfARunningEvent) {
  const Planned oneFile{.Duration = "0:02", .Integrel = false, .Cleftune = false};
  Store(1, oneFile);
  StartIdleAt(At(20, 0));
  RunTo(At(20, 1));
  Planned whole = oneFile;
  whole.Integrel = true;
  Plan(1, whole);
  RunTo(At(20, 3, 10));
  ASSERT_EQ(Active(), 0);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 46  \"Artist 46 - Song 46 (Incomplete)\"")));
}

TEST_F(ScheduledEventsTest, AChangeOfTheFormatDoesNotEndTheRecordingOfAnEvent) {
  for (const bool whole : {false, true}) {
    UnitRig unit;
    const auto set = [&](const char* key, const char* value) { unit.Set(key, value); };
    set("ScheduleEnabled1", "1");
    set("ScheduleChannel1", "46");
    set("ScheduleStartDate1", "Jan 15, 1967 12:00 AM");
    set("ScheduleDuration1", "23:59");
    set("ScheduleIntegrel1", whole ? "1" : "0");
    set("ScheduleMatchGrab1", "0");
    set("ScheduleMatchKill1", "0");
    unit.StartIdle();
    unit.Run(10s);
    unit.NextSong("Lanterns", "North Pier");
    unit.Run(1min);
    unit.NextSong("Cellar", "Blue Door");
    unit.Run(1min);
    ASSERT_EQ(unit->State().Schedule.ActiveSchedule, 1);
    const int recorded = unit->State().Recording.RecordedCount;
    ASSERT_GE(recorded, 1);
    ASSERT_TRUE(unit->Parts().Settings.Set("FileFormat", "OGG").Done());
    unit.Run(kOnePass);
    EXPECT_TRUE(unit->State().Recording.RecordRequested);
    EXPECT_TRUE(unit.Logged("Scheduled event 1 recording again"));
    EXPECT_GE(unit->State().Recording.RecordedCount, recorded) << "the event counts on";
    EXPECT_FALSE(unit.Window().cmdStop.Enabled);
    unit.Run(1min);
    unit.NextSong("Moonlighters", "Slow Tide");
    EXPECT_THAT(unit.LogTexts(), Contains(StartsWith("Recorded: Channel 46  \"Cellar - Blue Door")));
    unit.Run(1min);
    unit.NextSong("Harbour", "Grey Gulls");
    EXPECT_THAT(unit.LogTexts(), Contains(StartsWith("Recorded: Channel 46  \"Moonlighters - Slow Tide\"")));
  }
}

TEST_F(ScheduledEventsTest, TheUsersModesAreAskedAgainAfterTheEvent) {
  // The user wants pieces, the event whole songs.
  rig.Set("Integrel", "False");
  Store(1, {.Duration = "0:01"});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 0, 30));
  EXPECT_EQ(Window().lblRecording.Caption, "Waiting for next song");
  RunTo(At(20, 3));
  ASSERT_EQ(Active(), 0);
  rig->cmdRecord();
  EXPECT_EQ(Window().lblRecording.Caption, "Recording");
  EXPECT_FALSE(rig->State().Settings.Integrel);
}

TEST_F(ScheduledEventsTest, AButtonPressedWithinABoundaryDoesNotGetInTheWayOfAnEventThatFallsDue) {
  // The boundary's wait blocks, so that the press is served after the cut; whenever it comes, the event runs
  // in the end.
  int withinABoundary = 0;
  for (const bool recording : {false, true}) {
    for (auto press = 0ms; press < 4500ms; press += 300ms) {
      UnitRig unit;
      unit.Set("SongDelay", "1000");
      unit.StartIdle();
      unit.Set("ScheduleEnabled1", "1");
      unit.Set("ScheduleChannel1", "46");
      unit.Set("ScheduleStartDate1", "Jan 15, 1967 12:00 AM");
      unit.Set("ScheduleDuration1", "24:00");
      if (recording) unit->cmdRecord();
      unit.Radio.Play(44, "Lanterns", "North Pier");
      const auto pressButton = [&] {
        if (unit->State().Recording.BoundaryBusy) ++withinABoundary;
        if (unit.Window().cmdRecord.Enabled) {
          unit->Wishes().Record();
        } else if (unit.Window().cmdStop.Enabled) {
          unit->Wishes().Stop();
        }
      };
      unit.Loop.AtHardware(press, [&] { unit.Loop.Post(pressButton); });
      unit->ReloadSchedule();
      unit.Run(20s);
      EXPECT_EQ(unit->State().Schedule.ActiveSchedule, 1) << press.count();
      EXPECT_TRUE(unit->State().Recording.RecordRequested) << press.count();
      EXPECT_FALSE(unit.Window().cmdStop.Enabled) << press.count();
      EXPECT_FALSE(unit.Window().cmdRecord.Enabled) << press.count();
    }
  }
  EXPECT_GT(withinABoundary, 0);
}

TEST_F(ScheduledEventsTest, ACloseDuringAnEventEndsTheProgram) {
  Store(1, {});
  StartIdleAt(At(20, 0));
  RunTo(At(20, 1));
  ASSERT_EQ(Active(), 1);
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), IsEmpty());
  EXPECT_EQ(rig.Setting("Channel"), "46");
}

TEST_F(ScheduledEventsTest, ACloseWhileTheEventTunesEndsTheProgram) {
  // Wherever in the first passes the close comes.
  for (auto when = 0ms; when < 6s; when += 170ms) {
    UnitRig unit;
    unit.StartIdle();
    unit.Set("ScheduleEnabled1", "1");
    unit.Set("ScheduleChannel1", "46");
    unit.Set("ScheduleStartDate1", "Jan 15, 1967 12:00 AM");
    unit.Set("ScheduleDuration1", "24:00");
    unit->ReloadSchedule();
    unit.Loop.AtHardware(when, [&] { unit.Loop.Post([&] { unit->Close(); }); });
    EXPECT_TRUE(unit.Loop.RunUntil([&] { return unit.Closed; }, 1min)) << when.count();
    unit.Run(10s);
  }
}

// Clocks that are set. A pass looks at nothing but the present moment.

class SteppedClockTest : public ScheduledEventsTest {
 protected:
  /// The night on which clocks go from 2:00 to 3:00, and the one on which they go from 2:00 back to 1:00.
  void SpringForward() {
    ASSERT_EQ(rig.Loop.Now(), On(4, 3, 2, 0));
    SetClock(On(4, 3, 3, 0));
  }
  void FallBack() {
    ASSERT_EQ(rig.Loop.Now(), On(10, 30, 2, 0));
    SetClock(On(10, 30, 1, 0));
  }
  /// Runs to a moment on the wall, the long way only near it.
  void JumpTo(DateValue wall) {
    SetClock(wall.AddSeconds(-10));
    RunTo(wall);
  }
  static std::string Begins(const std::string& until) {
    return "Scheduled event 1 beginning on channel 46 until " + until;
  }
  const std::string whole = "Scheduled event is utilizing Integrel";
  const std::string completed = "Scheduled event 1 completed - 0 songs recorded";
};

TEST_F(SteppedClockTest, InSpringAnEventAcrossTheGapIsAnHourShorter) {
  Store(1, {.Start = "Jan 15, 1967 1:00 AM", .Duration = "2:30"});
  StartIdleAt(On(4, 3, 1, 0));
  rig.Run(kOnePass);
  JumpTo(On(4, 3, 2, 0));
  SpringForward();
  rig.Run(kOnePass);
  EXPECT_EQ(Active(), 1);
  EXPECT_EQ(rig->State().Schedule.RemainingUntil, On(4, 3, 3, 30, 59));
  JumpTo(On(4, 3, 3, 31, 10));
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Apr 3, 3:30:59 am"), whole, completed));
}

TEST_F(SteppedClockTest, InSpringAnEventThatEndsInTheGapEndsAtTheStep) {
  Store(1, {.Start = "Jan 15, 1967 1:00 AM", .Duration = "1:30"});
  StartIdleAt(On(4, 3, 1, 59));
  RunTo(On(4, 3, 2, 0));
  ASSERT_EQ(Active(), 1);
  SpringForward();
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Apr 3, 2:30:59 am"), whole, completed));
}

TEST_F(SteppedClockTest, InSpringAnEventInsideTheGapIsLoggedAsMissed) {
  Store(1, {.Start = "Jan 1, 1967 2:15 AM", .Duration = "0:30"});
  StartIdleAt(On(4, 3, 1, 59));
  RunTo(On(4, 3, 2, 0));
  SpringForward();
  rig.Run(1min);
  ASSERT_EQ(ScheduleLines().size(), 1U);
  EXPECT_THAT(ScheduleLines().front(),
              StartsWith("Scheduled event 1 missed - the clock went from Apr 3, 1:59:"));
  EXPECT_THAT(ScheduleLines().front(), HasSubstr(" am to Apr 3, 3:00:0"));
}

TEST_F(SteppedClockTest, InSpringTheTimeLeftCountsTheHourThatIsLeftOut) {
  Store(1, {.Start = "Jan 1, 1967 1:00 AM", .Duration = "2:30"});
  StartIdleAt(On(4, 3, 1, 0));
  rig.Loop.StepWallClockAt(On(4, 3, 2, 0), 1h);
  RunTo(On(4, 3, 1, 30));
  rig.Run(200ms);
  EXPECT_EQ(Window().lblRemaining.Caption, "01:00:59");
  RunTo(On(4, 3, 3, 10));
  rig.Run(200ms);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:20:59");
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Apr 3, 3:30:59 am"), whole));
}

TEST_F(SteppedClockTest, InSpringAnEndInTheGapIsTheStep) {
  Store(1, {.Start = "Jan 1, 1967 1:00 AM", .Duration = "1:30"});
  StartIdleAt(On(4, 3, 0, 59));
  rig.Loop.StepWallClockAt(On(4, 3, 2, 0), 1h);
  RunTo(On(4, 3, 1, 30));
  rig.Run(200ms);
  EXPECT_EQ(Window().lblRemaining.Caption, "00:30:00");
  RunTo(On(4, 3, 3, 1));
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Apr 3, 3:00:00 am"), whole, completed));
}

TEST_F(SteppedClockTest, InSpringAnEventThatBeginsInTheGapBeginsAtTheStepWithItsTrueEnd) {
  Store(1, {.Start = "Jan 1, 1967 2:30 AM", .Duration = "1:00"});
  StartIdleAt(On(4, 3, 1, 59));
  RunTo(On(4, 3, 2, 0));
  SpringForward();
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Apr 3, 3:30:59 am"), whole));
}

TEST_F(SteppedClockTest, InAutumnAnEventInsideTheDoubledHourRunsTwice) {
  Store(1, {.Start = "Jan 1, 1967 1:15 AM", .Duration = "0:15"});
  StartIdleAt(On(10, 30, 1, 15));
  rig.Run(kOnePass);
  JumpTo(On(10, 30, 1, 31, 10));
  JumpTo(On(10, 30, 2, 0));
  FallBack();
  JumpTo(On(10, 30, 1, 15, 10));
  JumpTo(On(10, 30, 1, 31, 10));
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Oct 30, 1:30:59 am"), whole, completed,
                                           Begins("Oct 30, 1:30:59 am"), whole, completed));
}

TEST_F(SteppedClockTest, InAutumnAnEventAcrossTheStepRunsAnHourLongerWithoutABreak) {
  Store(1, {.Start = "Jan 15, 1967 12:30 AM", .Duration = "2:00"});
  StartIdleAt(On(10, 30, 0, 30));
  rig.Run(kOnePass);
  JumpTo(On(10, 30, 2, 0));
  FallBack();
  rig.Run(kOnePass);
  JumpTo(On(10, 30, 2, 31, 10));
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Oct 30, 2:30:59 am"), whole, completed));
}

TEST_F(SteppedClockTest, InAutumnAnEventThatBeganInTheHourStopsAtTheStepAndBeginsAgain) {
  Store(1, {.Start = "Jan 15, 1967 1:30 AM", .Duration = "1:00"});
  StartIdleAt(On(10, 30, 1, 30));
  rig.Run(kOnePass);
  JumpTo(On(10, 30, 2, 0));
  FallBack();
  rig.Run(kOnePass);
  EXPECT_EQ(Active(), 0);
  JumpTo(On(10, 30, 1, 30, 10));
  JumpTo(On(10, 30, 2, 31, 10));
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Oct 30, 2:30:59 am"), whole, completed,
                                           Begins("Oct 30, 2:30:59 am"), whole, completed));
}

TEST_F(SteppedClockTest, InAutumnAnEventThatEndedInTheHourBeginsAgainAtTheStep) {
  Store(1, {.Start = "Jan 15, 1967 12:30 AM", .Duration = "1:00"});
  StartIdleAt(On(10, 30, 1, 29));
  rig.Run(kOnePass);
  JumpTo(On(10, 30, 1, 31, 10));
  JumpTo(On(10, 30, 2, 0));
  FallBack();
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Oct 30, 1:30:59 am"), whole, completed,
                                           Begins("Oct 30, 1:30:59 am"), whole));
}

TEST_F(SteppedClockTest, AStepForwardPastAStartBeginsTheEventLateWithItsTrueEnd) {
  Store(1, {});
  StartIdleAt(At(19, 0));
  SetClock(At(20, 40));
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Mar 9, 9:00:59 pm"), whole));
}

TEST_F(SteppedClockTest, AStepForwardPastAWholeEventIsLogged) {
  Store(1, {});
  StartIdleAt(At(19, 0));
  SetClock(At(21, 1));
  rig.Run(1min);
  ASSERT_EQ(ScheduleLines().size(), 1U);
  EXPECT_THAT(ScheduleLines().front(), StartsWith("Scheduled event 1 missed - "));
}

TEST_F(SteppedClockTest, AStepBackIntoAnEventThatWasOverBeginsItAgain) {
  Store(1, {});
  StartIdleAt(At(20, 59));
  rig.Run(kOnePass);
  JumpTo(At(21, 1, 10));
  SetClock(At(20, 30));
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(),
              ElementsAre(Begins("Mar 9, 9:00:59 pm"), whole, completed, Begins("Mar 9, 9:00:59 pm"), whole));
}

TEST_F(SteppedClockTest, AStepBackToBeforeARunningEventEndsIt) {
  Store(1, {});
  StartIdleAt(At(20, 30));
  rig.Run(kOnePass);
  SetClock(At(19, 30));
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(), ElementsAre(Begins("Mar 9, 9:00:59 pm"), whole, completed));
}

TEST_F(SteppedClockTest, ADayLostInSleepBeginsWhatIsDueAtTheWaking) {
  Store(1, {.Start = "Jan 15, 1967 7:00 AM", .Duration = "2:00"});
  StartIdleAt(At(22, 0));
  SetClock(On(3, 11, 8, 30));
  rig.Run(kOnePass);
  EXPECT_THAT(ScheduleLines(),
              ElementsAre(StartsWith("Scheduled event 1 missed - "), Begins("Mar 11, 9:00:59 am"), whole))
      << "and says that the day before was missed";
}

TEST_F(ScheduledEventsTest, AChangeOfTextRightAfterTheBeginningIsFollowedAndIsNoChangeOfSong) {
  Store(1, {});
  StartIdleAt(At(19, 59));
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 2min));
  rig.Radio.Play(46, "Lanterns", "North Pier");
  rig.Radio.Report(46);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->State().Radio.CurrentSong == "North Pier"; }, 700ms));
  ASSERT_GT(rig->State().Recording.SettleTicks, 0);
  rig.Run(5s);
  EXPECT_EQ(rig->State().Recording.LastSong, "North Pier");
  EXPECT_EQ(rig->State().Recording.Phase, recorder::Phase::WaitingForNextSong);
}

TEST_F(ScheduledEventsTest, AfterAnEventItsMarkDoesNotBlinkWithARecordingByHand) {
  Store(1, {.Duration = "0:01"});
  StartIdleAt(At(19, 59));
  RunTo(At(20, 2, 30));
  ASSERT_EQ(Active(), 0);
  rig.NextSong("Lanterns", "North Pier");
  rig.NextSong("Cellar", "Blue Door");
  rig->cmdRecord();
  ASSERT_EQ(rig->State().Recording.Phase, recorder::Phase::Recording);
  for (int tenth = 0; tenth < 30; ++tenth) {
    rig.Run(100ms);
    EXPECT_FALSE(Window().pctTimer.Visible);
  }
}

TEST_F(ScheduledEventsTest, TheUserCannotStopAnEventThatBeganDuringTheChannelLoad) {
  Store(1, {});
  SetClock(At(20, 30));
  rig.Start();
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 10s));
  ASSERT_EQ(rig->State().Recording.Phase, recorder::Phase::WaitingForChannelLoad);
  EXPECT_FALSE(Window().cmdStop.Enabled);
  rig.FinishWalk();
  rig.Run(2s);
  ASSERT_EQ(rig->State().Recording.Phase, recorder::Phase::WaitingForNextSong);
  EXPECT_FALSE(Window().cmdStop.Enabled);
  EXPECT_FALSE(rig->State().MayStop());
}

TEST_F(ScheduledEventsTest, TheEndOfTheChannelLoadAsksTheEventAboutWholeSongs) {
  rig.Set("Integrel", "False");
  Store(1, {.Integrel = true});
  SetClock(At(20, 30));
  rig.Start();
  rig.Run(100ms);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return Active() == 1; }, 10s));
  ASSERT_TRUE(rig->State().Radio.ChannelsLoading);
  rig.FinishWalk();
  rig.Run(5s);
  EXPECT_EQ(rig->State().Recording.Phase, recorder::Phase::WaitingForNextSong)
      << "the song that plays when the load ends is none of the event's";
}

}  // namespace
}  // namespace kestrune::test
