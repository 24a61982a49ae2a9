#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/Scheduler.h"
#include "presenters/SchedulerFixture.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using presenters::Scheduler;
using schedule::SchedulerRow;
using testing::ElementsAre;

// The clock of these tests stands at Saturday, January 1, 2005, 12:00.

TEST(SchedulerLoad, AnEmptyStoreGivesTenRowsForTheNextHour) {
  SchedulerWorld world;
  const Scheduler scheduler = world.Open();
  for (const SchedulerRow& row : scheduler.Rows()) {
    EXPECT_FALSE(row.Enabled);
    EXPECT_EQ(row.Channel, 0);
    EXPECT_EQ(Shown(row.Start), "Jan 1, 2005 12:00 PM");
    EXPECT_EQ(row.DurationInMinutes(), 60);
    EXPECT_EQ(Shown(row.End), "Jan 1, 2005 1:00 PM");
    EXPECT_TRUE(row.Integrel);
    EXPECT_TRUE(row.Cleftune);
    EXPECT_FALSE(row.Grab);
    EXPECT_FALSE(row.Kill);
    EXPECT_EQ(row.MP3BitRate, " ");
  }
  EXPECT_FALSE(scheduler.SchedDirty());
}

TEST(SchedulerLoad, ReadsEveryKeyOfAnEntry) {
  SchedulerWorld world;
  world.Put("ScheduleEnabled10", "1");
  world.Put("ScheduleChannel10", "8");
  world.Put("ScheduleStartDate10", "Jan 7, 1967 11:00 PM");
  world.Put("ScheduleDuration10", "2:05");
  world.Put("ScheduleIntegrel10", "0");
  world.Put("ScheduleCleftune10", "0");
  world.Put("ScheduleMatchGrab10", "1");
  world.Put("ScheduleMatchKill10", "1");
  world.Put("ScheduleMP3BitRate10", "64 Mono");
  const Scheduler scheduler = world.Open();
  const SchedulerRow& row = scheduler.Row(9);
  EXPECT_TRUE(row.Enabled);
  EXPECT_EQ(row.Channel, 1);
  EXPECT_EQ(Shown(row.Start), "Every Saturday 11:00 PM");
  EXPECT_EQ(row.DurationHours, 2);
  EXPECT_EQ(row.DurationMinutes, 5);
  EXPECT_EQ(Shown(row.End), "Every Sunday 1:05 AM");
  EXPECT_FALSE(row.Integrel);
  EXPECT_FALSE(row.Cleftune);
  EXPECT_TRUE(row.Grab);
  EXPECT_TRUE(row.Kill);
  EXPECT_EQ(row.MP3BitRate, "64 Mono");
}

TEST(SchedulerLoad, AsksForTheBitRateInSmallLetters) {
  SchedulerWorld world;
  const Scheduler scheduler = world.Open();
  EXPECT_THAT(world.Store.Calls, testing::Contains("get Lorimel/Kestrune/Schedulemp3bitrate1"));
}

TEST(SchedulerLoad, EveryStoredDateHasItsCaption) {
  const struct {
    const char* Stored;
    const char* Caption;
  } kCases[] = {{"Jan 1, 1967 8:00 PM", "Every Sunday"},   {"Jan 7, 1967 11:59 PM", "Every Saturday"},
                {"Jan 10, 1967 8:00 PM", "Every Tuesday"}, {"Jan 15, 1967 11:59 PM", "Every Day"},
                {"Jan 16, 1967 12:00 AM", "Jan 16, 1967"}, {"Dec 31, 1966 11:59 PM", "Dec 31, 1966"},
                {"Dec 24, 2026 8:00 PM", "Dec 24, 2026"}};
  for (const auto& one : kCases) {
    SchedulerWorld world;
    world.Put("ScheduleStartDate1", one.Stored);
    EXPECT_EQ(world.Open().Row(0).Start.Caption, one.Caption) << one.Stored;
  }
}

TEST(SchedulerLoad, ADatedEntryThatHasEndedIsNotEnabledAndTheSaveStoresThat) {
  SchedulerWorld world;
  world.Put("ScheduleEnabled1", "1");
  world.Put("ScheduleStartDate1", "Jan 1, 2005 10:59 AM");
  world.Put("ScheduleEnabled2", "1");
  world.Put("ScheduleStartDate2", "Jan 1, 2005 11:00 AM");
  world.Put("ScheduleEnabled3", "1");
  world.Put("ScheduleStartDate3", "Jan 1, 1967 10:00 AM");
  world.Put("ScheduleDuration3", "0:30");
  world.Put("ScheduleEnabled4", "1");
  world.Put("ScheduleStartDate4", "Jan 15, 1967 10:00 AM");
  world.Put("ScheduleDuration4", "0:30");
  Scheduler scheduler = world.Open();
  EXPECT_FALSE(scheduler.Row(0).Enabled);
  EXPECT_TRUE(scheduler.Row(1).Enabled) << "an end at this very moment is not before it";
  EXPECT_TRUE(scheduler.Row(2).Enabled) << "what recurs never ends";
  EXPECT_TRUE(scheduler.Row(3).Enabled);
  EXPECT_FALSE(scheduler.SchedDirty());
  EXPECT_EQ(world.Stored("ScheduleEnabled1"), "1");
  scheduler.TickEnabled(1, false);
  scheduler.TickEnabled(2, false);
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Stored("ScheduleEnabled1"), "0");
}

TEST(SchedulerLoad, AChannelThatIsNotListedIsAnItemOfItsOwn) {
  SchedulerWorld world;
  world.Put("ScheduleChannel1", "99");
  world.Put("ScheduleChannel2", "soon");
  world.Put("ScheduleChannel3", "8");
  world.Put("ScheduleChannel4", "99");
  Scheduler scheduler = world.Open();
  ASSERT_EQ(scheduler.Channels().size(), 3U);
  EXPECT_EQ(Scheduler::ChannelItem(scheduler.Channels()[2]), " 99 - not in the channel list");
  EXPECT_EQ(scheduler.Row(0).Channel, 2);
  EXPECT_EQ(scheduler.Row(1).Channel, 0) << "a text that is no number leaves the first";
  EXPECT_EQ(scheduler.Row(2).Channel, 1);
  EXPECT_EQ(scheduler.Row(3).Channel, 2);
  EXPECT_EQ(scheduler.Row(4).Channel, 0) << "an entry that was never set leaves the first";
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Stored("ScheduleChannel1"), "99");
  EXPECT_EQ(world.Stored("ScheduleChannel3"), "8");
}

TEST(SchedulerLoad, BeforeTheChannelsAreThereASaveLeavesTheStoredOnes) {
  SchedulerWorld world;
  world.Channels.clear();
  world.Put("ScheduleChannel1", "99");
  Scheduler scheduler = world.Open();
  EXPECT_EQ(scheduler.Row(0).Channel, 0);
  EXPECT_EQ(scheduler.Row(1).Channel, -1);
  scheduler.cmdClear(2);
  EXPECT_EQ(scheduler.Row(2).Channel, -1);
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Stored("ScheduleChannel1"), "99");
  EXPECT_EQ(world.Stored("ScheduleChannel2"), "(absent)");
}

TEST(SchedulerLoad, EntriesThatAreChangedElsewhereAreReadAgain) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  int reread = 0;
  scheduler.Reread = [&] { ++reread; };
  EXPECT_FALSE(world.Editors.HaveChanges());
  world.Put("ScheduleEnabled1", "1");
  world.Put("ScheduleChannel1", "99");
  world.Put("ScheduleStartDate1", "Jan 7, 1967 8:00 PM");
  world.Editors.EntriesChanged();
  EXPECT_EQ(reread, 1);
  EXPECT_TRUE(scheduler.Row(0).Enabled);
  EXPECT_EQ(scheduler.Row(0).Start.Caption, "Every Saturday");
  EXPECT_EQ(scheduler.Row(0).Channel, 2);
  EXPECT_FALSE(scheduler.SchedDirty());
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Stored("ScheduleStartDate1"), "Jan 7, 1967 8:00 PM");
}

TEST(SchedulerLoad, AnOpenSchedulerIsKnownForItsChangesUntilItIsSavedOrGone) {
  SchedulerWorld world;
  {
    Scheduler scheduler = world.Open();
    scheduler.TickKill(3, true);
    EXPECT_TRUE(world.Editors.HaveChanges());
    EXPECT_TRUE(scheduler.cmdSave());
    EXPECT_FALSE(world.Editors.HaveChanges());
    scheduler.TickKill(3, false);
    EXPECT_TRUE(world.Editors.HaveChanges());
  }
  EXPECT_FALSE(world.Editors.HaveChanges());
}

TEST(SchedulerLoad, TextsThatNoControlCanShowLeaveTheControlsAsTheyWere) {
  SchedulerWorld world;
  world.Put("ScheduleEnabled1", "yes");
  world.Put("ScheduleStartDate1", "some day");
  for (const auto& [key, text] : {std::pair{"ScheduleDuration1", "long"},
                                  {"ScheduleDuration2", "48:00"},
                                  {"ScheduleDuration3", "-1:00"},
                                  {"ScheduleDuration4", "1:60"},
                                  {"ScheduleDuration5", "90"},
                                  {"ScheduleDuration6", ":"}}) {
    world.Put(key, text);
  }
  world.Put("ScheduleMP3BitRate1", "320 Stereo");
  Scheduler scheduler = world.Open();
  EXPECT_FALSE(scheduler.Row(0).Enabled);
  EXPECT_EQ(Shown(scheduler.Row(0).Start), "Jan 1, 2005 12:00 AM");
  for (int index = 0; index < 6; ++index) EXPECT_EQ(scheduler.Row(index).DurationInMinutes(), 60) << index;
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Stored("ScheduleMP3BitRate1"), "320 Stereo") << "what the list does not have is kept";
}

TEST(SchedulerLists, BitRatesGoFrom8MonoTo192Stereo) {
  const auto& rates = schedule::SchedulerBitRates();
  ASSERT_EQ(rates.size(), 28U);
  EXPECT_EQ(rates[0], "8 Mono");
  EXPECT_EQ(rates[1], "8 Stereo");
  EXPECT_EQ(rates[2], "16 Mono");
  EXPECT_EQ(rates[23], "128 Stereo");
  EXPECT_EQ(rates[26], "192 Mono");
  EXPECT_EQ(rates[27], "192 Stereo");
}

TEST(SchedulerLists, AChannelStandsWithItsNumberRightAligned) {
  EXPECT_EQ(Scheduler::ChannelItem({.Number = 8, .Station = "Neon 80s"}), "  8 - Neon 80s");
  EXPECT_EQ(Scheduler::ChannelItem({.Number = 144, .Station = ""}), "144 - ");
}

// What each control does to the rest of its row.
TEST(SchedulerControls, EveryControlFollowsItsRule) {
  using Act = void (*)(Scheduler&);
  const struct {
    const char* Control;
    Act Change;
    bool Ticks;
    const char* End;  ///< of a row that starts at 12:00 PM for an hour
    int Minutes;
  } kRules[] = {
      {"cboStartHour", [](Scheduler& s) { s.ChooseStartTime(3, {.Hour = 11, .Minute = 0, .PM = true}); },
       true, "Jan 2, 2005 12:00 AM", 60},
      {"cboDurationHour", [](Scheduler& s) { s.ChooseDuration(3, 2, 0); }, true, "Jan 1, 2005 2:00 PM", 120},
      {"cboDurationMinute", [](Scheduler& s) { s.ChooseDuration(3, 1, 5); }, true, "Jan 1, 2005 1:05 PM", 65},
      {"cboEndHour", [](Scheduler& s) { s.ChooseEndTime(3, {.Hour = 3, .Minute = 0, .PM = true}); }, true,
       "Jan 1, 2005 3:00 PM", 180},
      {"cboEndAMPM", [](Scheduler& s) { s.ChooseEndTime(3, {.Hour = 1, .Minute = 0, .PM = false}); }, true,
       "Jan 2, 2005 1:00 AM", 13 * 60},
      {"cboChannel", [](Scheduler& s) { s.ChooseChannel(3, 1); }, true, "Jan 1, 2005 1:00 PM", 60},
      {"chkIntegrel", [](Scheduler& s) { s.TickIntegrel(3, false); }, true, "Jan 1, 2005 1:00 PM", 60},
      {"chkCleftune", [](Scheduler& s) { s.TickCleftune(3, false); }, true, "Jan 1, 2005 1:00 PM", 60},
      {"chkGrab", [](Scheduler& s) { s.TickGrab(3, true); }, true, "Jan 1, 2005 1:00 PM", 60},
      {"chkKill", [](Scheduler& s) { s.TickKill(3, true); }, true, "Jan 1, 2005 1:00 PM", 60},
      {"cboMP3BitRate", [](Scheduler& s) { s.ChooseMP3BitRate(3, "8 Mono"); }, false, "Jan 1, 2005 1:00 PM",
       60},
      {"chkEnabled", [](Scheduler& s) { s.TickEnabled(3, false); }, false, "Jan 1, 2005 1:00 PM", 60},
      {"cmdStartDate", [](Scheduler& s) { s.SetStartDate(3, schedule::CodedDay(7)); }, true,
       "Every Saturday 1:00 PM", 60},
      {"cmdEndDate", [](Scheduler& s) { s.SetEndDate(3, DateValue::FromCivil(2005, 1, 2)); }, true,
       "Jan 2, 2005 1:00 PM", 25 * 60},
  };
  for (const auto& rule : kRules) {
    SchedulerWorld world;
    Scheduler scheduler = world.Open();
    rule.Change(scheduler);
    EXPECT_TRUE(scheduler.SchedDirty()) << rule.Control;
    EXPECT_EQ(scheduler.Row(3).Enabled, rule.Ticks) << rule.Control;
    EXPECT_EQ(Shown(scheduler.Row(3).End), rule.End) << rule.Control;
    EXPECT_EQ(scheduler.Row(3).DurationInMinutes(), rule.Minutes) << rule.Control;
    EXPECT_EQ(scheduler.Row(2), world.Open().Row(2)) << rule.Control << " touches its own row alone";
  }
}

TEST(SchedulerControls, AnEndTooFarOffMovesBack) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.SetEndDate(0, DateValue::FromCivil(2005, 3, 1));
  EXPECT_EQ(scheduler.Row(0).DurationHours, 47);
  EXPECT_EQ(scheduler.Row(0).DurationMinutes, 59);
  EXPECT_EQ(Shown(scheduler.Row(0).End), "Jan 3, 2005 11:59 AM");
}

TEST(SchedulerDates, ThePickerStartsAtNowForWhatRecursAndAtTheDateOtherwise) {
  SchedulerWorld world;
  world.Put("ScheduleStartDate1", "Jan 15, 1967 8:00 PM");
  world.Put("ScheduleStartDate2", "Dec 24, 2026 8:00 PM");
  Scheduler scheduler = world.Open();
  DateValue seen;
  const auto closeWithoutChoice = [&] { seen = scheduler.SelDate; };
  scheduler.cmdStartDate(1, closeWithoutChoice);
  EXPECT_EQ(seen, DateValue::FromCivil(2026, 12, 24));
  EXPECT_EQ(Shown(scheduler.Row(1).Start), "Dec 24, 2026 8:00 PM");
  scheduler.cmdEndDate(1, closeWithoutChoice);
  EXPECT_EQ(seen, DateValue::FromCivil(2026, 12, 24));
  scheduler.cmdStartDate(0, closeWithoutChoice);
  EXPECT_EQ(seen, world.Loop.Now());
  EXPECT_EQ(Shown(scheduler.Row(0).Start), "Jan 1, 2005 8:00 PM") << "a close is an answer as well";
  EXPECT_TRUE(scheduler.Row(0).Enabled);
}

TEST(SchedulerDates, EveryAnswerHasItsCaption) {
  const struct {
    DateValue Answer;
    const char* Caption;
  } kAnswers[] = {{schedule::CodedDay(1), "Every Sunday"},
                  {schedule::CodedDay(4), "Every Wednesday"},
                  {schedule::CodedDay(7), "Every Saturday"},
                  {schedule::CodedDay(14), "Every Saturday"},
                  {schedule::CodedDay(15), "Every Day"},
                  {schedule::CodedDay(15).AddSeconds(1), "Jan 15, 1967"},
                  {schedule::CodedDay(1).AddSeconds(-1), "Dec 31, 1966"},
                  {DateValue::FromCivil(2026, 2, 3), "Feb 3, 2026"}};
  for (const auto& one : kAnswers) {
    SchedulerWorld world;
    Scheduler scheduler = world.Open();
    scheduler.cmdStartDate(0, [&] { scheduler.SelDate = one.Answer; });
    EXPECT_EQ(scheduler.Row(0).Start.Caption, one.Caption);
  }
}

TEST(SchedulerDates, TheEndOfADailyRowStaysDailyWhateverIsChosen) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.SetStartDate(0, schedule::CodedDay(15));
  scheduler.ChooseStartTime(0, {.Hour = 11, .Minute = 0, .PM = true});
  scheduler.cmdEndDate(0, [&] { scheduler.SelDate = DateValue::FromCivil(2026, 2, 3); });
  EXPECT_EQ(scheduler.SelDate, schedule::CodedDay(15));
  EXPECT_EQ(scheduler.Row(0).End.Caption, "Every Day");
  scheduler.ChooseEndTime(0, {.Hour = 1, .Minute = 0, .PM = false});
  EXPECT_EQ(scheduler.Row(0).DurationHours, 2);
  EXPECT_EQ(scheduler.Row(0).DurationMinutes, 0);
}

TEST(SchedulerClear, EmptiesARowButForItsEndAndBitRate) {
  SchedulerWorld world;
  world.Put("ScheduleEnabled1", "1");
  world.Put("ScheduleChannel1", "8");
  world.Put("ScheduleStartDate1", "Jan 7, 1967 11:00 PM");
  world.Put("ScheduleDuration1", "2:05");
  world.Put("ScheduleIntegrel1", "0");
  world.Put("ScheduleCleftune1", "0");
  world.Put("ScheduleMatchGrab1", "1");
  world.Put("ScheduleMatchKill1", "1");
  world.Put("ScheduleMP3BitRate1", "64 Mono");
  Scheduler scheduler = world.Open();
  scheduler.cmdClear(0);
  const SchedulerRow& row = scheduler.Row(0);
  EXPECT_TRUE(scheduler.SchedDirty());
  EXPECT_FALSE(row.Enabled);
  EXPECT_EQ(row.Channel, 0);
  EXPECT_EQ(Shown(row.Start), "Jan 1, 2005 12:00 AM");
  EXPECT_EQ(row.DurationInMinutes(), 60);
  EXPECT_TRUE(row.Integrel && row.Cleftune);
  EXPECT_FALSE(row.Grab || row.Kill);
  EXPECT_EQ(Shown(row.End), "Every Sunday 1:05 AM");
  EXPECT_EQ(row.MP3BitRate, "64 Mono");
}

TEST(SchedulerSave, WritesTheKeysInTheirOrder) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.ChooseChannel(0, 1);
  scheduler.SetStartDate(0, schedule::CodedDay(7));
  scheduler.ChooseStartTime(0, {.Hour = 11, .Minute = 5, .PM = true});
  scheduler.ChooseDuration(0, 12, 0);
  scheduler.TickKill(0, true);
  scheduler.ChooseMP3BitRate(0, "128 Stereo");
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_FALSE(scheduler.SchedDirty());
  EXPECT_FALSE(scheduler.SaveFailed());
  std::vector<std::string> saves = world.Saves();
  ASSERT_EQ(saves.size(), 90U);
  saves.resize(18);
  EXPECT_THAT(
      saves,
      ElementsAre("ScheduleEnabled1=1", "ScheduleChannel1=8", "ScheduleStartDate1=Jan 7, 1967 11:05 PM",
                  "ScheduleDuration1=12:00", "ScheduleIntegrel1=1", "ScheduleCleftune1=1",
                  "ScheduleMatchGrab1=0", "ScheduleMatchKill1=1", "ScheduleMP3BitRate1=128 Stereo",
                  "ScheduleEnabled2=0", "ScheduleChannel2=44", "ScheduleStartDate2=Jan 1, 2005 12:00 PM",
                  "ScheduleDuration2=1:00", "ScheduleIntegrel2=1", "ScheduleCleftune2=1",
                  "ScheduleMatchGrab2=0", "ScheduleMatchKill2=0", "ScheduleMP3BitRate2= "));
}

TEST(SchedulerSave, WhatIsSavedIsLoadedAgain) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.SetStartDate(4, schedule::CodedDay(15));
  scheduler.ChooseEndTime(4, {.Hour = 4, .Minute = 44, .PM = true});
  scheduler.SetStartDate(5, DateValue::FromCivil(2026, 12, 24));
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(world.Open().Rows(), scheduler.Rows());
}

TEST(SchedulerSave, ARowWithoutLengthIsStoredDisabledAndNoMessageIsShown) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.ChooseDuration(2, 0, 0);
  EXPECT_TRUE(scheduler.Row(2).Enabled);
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_FALSE(scheduler.Row(2).Enabled);
  EXPECT_EQ(world.Stored("ScheduleEnabled3"), "0");
  EXPECT_EQ(world.Stored("ScheduleDuration3"), "0:00");
  EXPECT_TRUE(world.Dialogs.Shown.empty());
}

TEST(SchedulerSave, AConflictIsShownAndNothingIsWritten) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.TickEnabled(1, true);
  scheduler.TickEnabled(3, true);
  EXPECT_FALSE(scheduler.cmdSave());
  EXPECT_TRUE(scheduler.SaveFailed());
  EXPECT_TRUE(scheduler.SchedDirty());
  EXPECT_TRUE(world.Saves().empty());
  ASSERT_EQ(world.Dialogs.Shown.size(), 1U);
  const platform::Message& message = world.Dialogs.Shown.front();
  EXPECT_EQ(message.Title, "Schedule Conflict");
  EXPECT_EQ(message.Text, "Item 2 conflicts with item 4. Please correct before saving.");
  EXPECT_EQ(message.Icon, platform::MessageIcon::Information);
  EXPECT_EQ(message.Buttons, platform::MessageButtons::Ok);
  scheduler.TickEnabled(3, false);
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_FALSE(scheduler.SaveFailed());
}

TEST(SchedulerSave, ADailyRowOf24HoursIsRefused) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.SetStartDate(6, schedule::CodedDay(15));
  scheduler.ChooseDuration(6, 24, 0);
  EXPECT_FALSE(scheduler.cmdSave());
  EXPECT_EQ(
      world.Dialogs.Shown.at(0).Text,
      "Item 7 runs daily, but is set to run longer than one day, thereby overlapping itself. Please correct "
      "before saving.");
  scheduler.ChooseDuration(6, 23, 59);
  EXPECT_TRUE(scheduler.cmdSave());
}

TEST(SchedulerSave, SettingsThatCannotBeWrittenAreLoggedAndTheWindowStays) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.TickEnabled(1, true);
  world.Store.FailWrites = true;
  EXPECT_FALSE(scheduler.cmdSave());
  EXPECT_TRUE(scheduler.SaveFailed());
  EXPECT_TRUE(scheduler.SchedDirty());
  EXPECT_EQ(world.Journal.Log,
            std::vector<std::string>{"The schedule was not saved: the settings could not be written"});
  world.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(scheduler.MayClose(true));
  world.Store.FailWrites = false;
  EXPECT_TRUE(scheduler.MayClose(true));
  EXPECT_EQ(world.Stored("ScheduleEnabled2"), "1");
}

TEST(SchedulerClose, WithoutChangesReloadsTheScheduleAndAsksNothing) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  EXPECT_TRUE(scheduler.MayClose(true));
  EXPECT_TRUE(world.Dialogs.Shown.empty());
  EXPECT_EQ(world.Reloads, 1);
}

TEST(SchedulerClose, EveryAnswerHasItsEffect) {
  const struct {
    platform::MessageAnswer Answer;
    bool Closes;
    std::size_t Saves;
  } kAnswers[] = {{platform::MessageAnswer::Yes, true, 90},
                  {platform::MessageAnswer::No, true, 0},
                  {platform::MessageAnswer::Cancel, false, 0}};
  for (const auto& one : kAnswers) {
    SchedulerWorld world;
    Scheduler scheduler = world.Open();
    scheduler.TickEnabled(0, true);
    world.Dialogs.Answer = one.Answer;
    EXPECT_EQ(scheduler.MayClose(true), one.Closes);
    ASSERT_EQ(world.Dialogs.Shown.size(), 1U);
    const platform::Message& question = world.Dialogs.Shown.front();
    EXPECT_EQ(question.Title, "Save Schedule Changes");
    EXPECT_EQ(question.Text, "You have made changes, do you want to save your changes first?");
    EXPECT_EQ(question.Icon, platform::MessageIcon::Question);
    EXPECT_EQ(question.Buttons, platform::MessageButtons::YesNoCancel);
    EXPECT_EQ(world.Saves().size(), one.Saves);
    EXPECT_EQ(world.Reloads, one.Closes ? 1 : 0);
  }
}

TEST(SchedulerClose, ARefusedSaveRefusesTheClose) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.TickEnabled(0, true);
  scheduler.TickEnabled(1, true);
  world.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(scheduler.MayClose(true));
  EXPECT_EQ(world.Dialogs.Shown.size(), 2U);
  EXPECT_EQ(world.Reloads, 0);
}

TEST(SchedulerClose, TheSystemIsNotAskedAnything) {
  SchedulerWorld world;
  Scheduler scheduler = world.Open();
  scheduler.TickEnabled(0, true);
  EXPECT_TRUE(scheduler.MayClose(false));
  EXPECT_TRUE(world.Dialogs.Shown.empty());
  EXPECT_TRUE(world.Saves().empty());
  EXPECT_EQ(world.Reloads, 1);
}

}  // namespace
}  // namespace kestrune::test
