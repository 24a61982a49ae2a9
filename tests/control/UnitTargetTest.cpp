#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "control/UnitTarget.h"
#include "support/UnitRig.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using test::UnitRig;

ScheduleChange TonightOn(int channel) {
  ScheduleChange change;
  change.Number = 3;
  change.On = schedule::CodedDay(7);
  change.At = 20 * 60;
  change.For = 60;
  change.Channel = channel;
  return change;
}

using schedule::RestrictList;

/// A unit behind the control socket's target; each wish is asked for and given the time to be answered.
class UnitTargetTest : public ::testing::Test {
 protected:
  /// Asks, lets time pass and returns the one answer.
  base::Result Ask(const std::function<void(Answered)>& ask) {
    std::vector<base::Result> answers;
    ask([&answers](const base::Result& result) { answers.push_back(result); });
    rig.Run(std::chrono::seconds(3));
    EXPECT_EQ(answers.size(), 1U);
    return answers.empty() ? base::Result::Failed("no answer") : answers.front();
  }
  base::Result Set(const ScheduleChange& change) {
    return Ask([this, &change](Answered answered) { target.SetSchedule(change, std::move(answered)); });
  }
  base::Result Enable(int number, bool enabled) {
    return Ask([&](Answered answered) { target.EnableSchedule(number, enabled, std::move(answered)); });
  }
  base::Result Clear(int number) {
    return Ask([&](Answered answered) { target.ClearSchedule(number, std::move(answered)); });
  }
  base::Result Add(RestrictList list, const std::string& text) {
    return Ask([&](Answered answered) { target.AddToList(list, text, std::move(answered)); });
  }
  base::Result Remove(RestrictList list, const std::string& text) {
    return Ask([&](Answered answered) { target.RemoveFromList(list, text, std::move(answered)); });
  }

  UnitRig rig;
  UnitTarget target{*rig};
};

TEST_F(UnitTargetTest, AnEntryThatIsSetCountsAtOnce) {
  rig.StartIdle();
  const std::vector<ChannelReport> channels = target.Channels();
  ASSERT_FALSE(channels.empty());
  const base::Result set = Set(TonightOn(channels[0].Number));
  EXPECT_TRUE(set.Ok()) << set.Cause();
  EXPECT_TRUE(rig->State().Entries[2].Enabled);
  const ScheduleReport report = target.Schedule().at(2);
  EXPECT_EQ(report.On, "Every Saturday");
  EXPECT_EQ(report.At, "8:00 PM");
  EXPECT_EQ(report.Minutes, 60);
  EXPECT_EQ(report.Station, channels[0].Station);
  EXPECT_TRUE(Enable(3, false).Ok());
  EXPECT_FALSE(rig->State().Entries[2].Enabled);
  EXPECT_TRUE(Clear(3).Ok());
  EXPECT_NE(target.Schedule().at(2).On, "Every Saturday");
}

TEST_F(UnitTargetTest, ARefusalLeavesTheScheduleAlone) {
  rig.StartIdle();
  const base::Result set = Set(TonightOn(254));
  EXPECT_FALSE(set.Ok());
  EXPECT_EQ(set.Cause(), "channel 254 is not in the channel list");
  EXPECT_FALSE(rig->State().Entries[2].Enabled);
}

TEST_F(UnitTargetTest, AnOpenSchedulerWithChangesKeepsCommandsOnEntriesOut) {
  rig.StartIdle();
  const int channel = target.Channels().at(0).Number;
  const auto scheduler = rig.Rules->OpenScheduler();
  EXPECT_TRUE(Set(TonightOn(channel)).Ok()) << "it has none yet";
  EXPECT_TRUE(scheduler->Row(2).Enabled) << "and shows what the command did";
  scheduler->TickKill(5, true);
  const std::string why = "the schedule is being edited in its window; save or close it first";
  EXPECT_EQ(Set(TonightOn(channel)).Cause(), why);
  EXPECT_EQ(Enable(3, false).Cause(), why);
  EXPECT_EQ(Clear(3).Cause(), why);
  EXPECT_TRUE(scheduler->cmdSave());
  EXPECT_EQ(rig.Setting("ScheduleEnabled3"), "1") << "the save does not undo the command";
  EXPECT_TRUE(Enable(3, false).Ok());
}

TEST_F(UnitTargetTest, BeforeTheLoadNoEntryIsShown) {
  rig.Set("ScheduleStartDate1", "Jan 7, 1967 8:00 PM");
  std::vector<ScheduleReport> early;
  rig.Loop.AtHardware(std::chrono::milliseconds(1),
                      [&] { rig.Loop.Post([&] { early = target.Schedule(); }); });
  rig.StartIdle();
  ASSERT_EQ(early.size(), 10U);
  EXPECT_FALSE(early[0].Set);
  EXPECT_EQ(early[0].On, "");
  EXPECT_TRUE(target.Schedule().at(0).Set);
  EXPECT_EQ(target.Schedule().at(0).On, "Every Saturday");
  EXPECT_FALSE(target.Schedule().at(1).Set);
}

TEST_F(UnitTargetTest, NothingIsScheduledBeforeTheStartIsOver) {
  bool asked = false;
  rig.Loop.AtHardware(std::chrono::seconds(1), [&] {
    rig.Loop.Post([&] {
      target.SetSchedule(TonightOn(8), [&asked](const base::Result& result) {
        EXPECT_EQ(result.Cause(), "the program is still starting");
        asked = true;
      });
    });
  });
  rig.Start();
  EXPECT_TRUE(asked);
}

TEST_F(UnitTargetTest, WhatIsAddedToAListCountsAtOnceAndIsInTheFile) {
  rig.StartIdle();
  EXPECT_TRUE(Add(RestrictList::GrabArtists, " Moon ").Ok());
  EXPECT_TRUE(Add(RestrictList::KillSongs, "Rain & Sun").Ok());
  EXPECT_TRUE(rig->Parts().Restrictions.IsInGrabList("The Moonlighters", ""));
  EXPECT_EQ(target.Lists().GrabArtists, std::vector<std::string>{"Moon"});
  EXPECT_EQ(target.Lists().KillSongs, std::vector<std::string>{"Rain & Sun"});
  EXPECT_EQ(rig.Files.Read(rig->Parts().Restrictions.RestrictionFile()), "0Moon\n3Rain & Sun\n");
  EXPECT_EQ(Add(RestrictList::GrabArtists, "moon").Cause(), R"("moon" is on the list already)");
}

TEST_F(UnitTargetTest, WhatIsRemovedFromAListIsGoneFromThatListAlone) {
  rig.StartIdle();
  for (const auto list : {RestrictList::GrabArtists, RestrictList::KillArtists})
    EXPECT_TRUE(Add(list, "Moon").Ok());
  EXPECT_TRUE(Add(RestrictList::GrabArtists, "Moonlight").Ok());
  EXPECT_TRUE(Remove(RestrictList::GrabArtists, "MOON").Ok());
  EXPECT_EQ(target.Lists().GrabArtists, std::vector<std::string>{"Moonlight"});
  EXPECT_EQ(target.Lists().KillArtists, std::vector<std::string>{"Moon"});
  EXPECT_EQ(Remove(RestrictList::GrabArtists, "Moon").Cause(), R"("Moon" is not on the list)");
  rig.Rules->RestrictListEditor().Load();
  EXPECT_EQ(Remove(RestrictList::KillArtists, "Moon").Cause(),
            "the lists are being edited in their window; close it first");
}

TEST_F(UnitTargetTest, AFullListTakesNoMore) {
  rig.StartIdle();
  for (int row = 0; row < schedule::Restrictions::kMaxRows; ++row)
    EXPECT_TRUE(rig->Parts().Restrictions.Add(RestrictList::GrabSongs, std::to_string(row)).Ok());
  EXPECT_EQ(Add(RestrictList::GrabSongs, "Moon").Cause(), "the list is full");
  EXPECT_TRUE(Add(RestrictList::GrabArtists, "Moon").Ok());
}

TEST_F(UnitTargetTest, HintsAreToldUnlessTheyAreSwitchedOff) {
  rig.StartIdle();
  EXPECT_FALSE(target.Hints().Done);
  EXPECT_EQ(target.Hints().Reason, "hints are switched off; set Hints to True");
  rig->Wishes().ChangeSetting("Hints", "True");
  EXPECT_TRUE(rig->Parts().Restrictions.Add(RestrictList::GrabArtists, "Wren").Ok());
  rig.Run(std::chrono::seconds(12));
  EXPECT_TRUE(target.Hints().Done);
  EXPECT_TRUE(target.Hints().Hints.empty());
  rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(std::chrono::seconds(12));
  const HintsResult result = target.Hints();
  ASSERT_EQ(result.Hints.size(), 1U);
  EXPECT_EQ(result.Hints[0], (HintReport{.Number = 1,
                                         .Began = rig->State().Hints[0].Began,
                                         .Channel = 47,
                                         .Station = "Station 47",
                                         .Artist = "Abigail Wren",
                                         .Song = "Winter Apples",
                                         .Text = "Now on 47 Station 47: Abigail Wren - Winter Apples"}));
}

// The record of what happened.

class RecordTest : public UnitTargetTest {
 protected:
  std::string Report(const std::string& since) {
    std::string said = "no answer";
    target.Report({.Since = since}, [&](const base::Result& asked, const history::Report& report) {
      said = asked.Cause();
      LastReport = report;
    });
    rig.Run(std::chrono::seconds(1));
    return said;
  }
  std::string History(const HistoryQuestion& question) {
    std::string said = "no answer";
    target.History(question, [&](const base::Result& asked, const auto&) { said = asked.Cause(); });
    rig.Run(std::chrono::seconds(1));
    return said;
  }

  test::FakeHistoryStore& store = rig.History;
  history::Report LastReport;
};

TEST_F(RecordTest, AReportBeginsLastNightUnlessAskedOtherwise) {
  const DateValue now = rig.Loop.Now();
  EXPECT_EQ(Report(""), "");
  EXPECT_EQ(LastReport.From, DateValue::FromCivil(now.Year(), now.Month(), now.Day()).AddHours(-6));
  EXPECT_EQ(LastReport.To, now);
  EXPECT_EQ(Report("3h"), "");
  EXPECT_EQ(LastReport.From, now.AddSeconds(1).AddHours(-3));
}

TEST_F(RecordTest, AMomentToComeIsRefused) {
  EXPECT_EQ(Report("9999-01-01"), "9999-01-01 00:00 is still to come");
  EXPECT_EQ(History({.Text = {}, .Channel = 0, .Since = "9999-01-01", .Days = 0, .Limit = 1}),
            "9999-01-01 00:00 is still to come");
}

TEST_F(RecordTest, ASearchReachesTheRecordAsItWasAsked) {
  const DateValue now = rig.Loop.Now();
  EXPECT_EQ(History({.Text = "moon", .Channel = 44, .Since = "1h", .Days = 0, .Limit = 7}), "");
  EXPECT_EQ(store.LastSearch,
            (platform::HistorySearch{.Text = "moon", .Channel = 44, .Since = now.AddHours(-1), .Limit = 7}));
  EXPECT_EQ(History({.Text = "", .Channel = 0, .Since = "", .Days = 0, .Limit = 50}), "");
  EXPECT_FALSE(store.LastSearch.Since);
  EXPECT_EQ(History({.Text = "", .Channel = 0, .Since = "", .Days = 3, .Limit = 50}), "");
  EXPECT_EQ(store.LastSearch.Since, now.AddSeconds(2).AddDays(-3));
}

TEST_F(RecordTest, WhatWasPlayedMostIsAskedForAsItWas) {
  const DateValue now = rig.Loop.Now();
  store.Rows.Plays.emplace_back().Artist = "Moon";
  std::string got;
  const auto ask = [&](const MostPlayedQuestion& question) {
    target.MostPlayed(question, [&](const base::Result& asked, const auto& counts) {
      got = asked.Ok() ? counts.empty() ? "nothing" : counts.front().Artist : asked.Cause();
    });
    rig.Run(std::chrono::seconds(1));
  };
  ask({.As = platform::PlayedAs::Song, .Channel = 44, .Since = "", .Days = 7, .Limit = 9});
  EXPECT_EQ(store.LastCount,
            (platform::MostPlayedSearch{
                .As = platform::PlayedAs::Song, .Channel = 44, .Since = now.AddDays(-7), .Limit = 9}));
  EXPECT_EQ(got, "nothing");
  ask({.As = platform::PlayedAs::Artist, .Channel = 0, .Since = "", .Days = 0, .Limit = 50});
  EXPECT_EQ(store.LastCount, platform::MostPlayedSearch{});
  EXPECT_EQ(got, "Moon");
  ask({.As = platform::PlayedAs::Artist, .Channel = 0, .Since = "1h", .Days = 0, .Limit = 50});
  EXPECT_EQ(store.LastCount.Since, now.AddSeconds(2).AddHours(-1));
  ask({.As = platform::PlayedAs::Artist, .Channel = 0, .Since = "9999-01-01", .Days = 0, .Limit = 50});
  EXPECT_EQ(got, "9999-01-01 00:00 is still to come");
  store.QuestionFailure = "the disk failed";
  ask({});
  EXPECT_EQ(got, "the disk failed");
}

TEST_F(RecordTest, TheLastCutsComeFromTheRecord) {
  platform::HistorySong song;
  song.Channel = 44;
  song.Title = "River";
  song.Cut = platform::HistoryCut{};
  song.Cut->Candidates = {{.LagMs = 600, .Chance = 0.5}};
  store.Rows.Songs = {song, {}, song};
  store.Rows.Songs[2].Channel = 7;
  std::vector<CutReport> got;
  const auto ask = [&](int channel, std::size_t limit) {
    target.Cuts({.Channel = channel, .Limit = limit},
                [&](const base::Result&, const std::vector<CutReport>& cuts) { got = cuts; });
    rig.Run(std::chrono::seconds(1));
  };
  ask(0, 20);
  EXPECT_EQ(got.size(), 2U);
  ask(0, 1);
  EXPECT_EQ(got.size(), 1U);
  ask(44, 20);
  ASSERT_EQ(got.size(), 1U);
  EXPECT_EQ(got[0].Song, "River");
  EXPECT_EQ(got[0].Candidates.at(0).LagMs, 600);
}

TEST_F(RecordTest, WhatWasLearnedOfTheStationsIsToldWithTheirNames) {
  rig.StartIdle();
  recorder::StationLags& lags = rig->Parts().StationLags;
  EXPECT_TRUE(target.StationLags(0).empty());
  const std::int16_t known = rig->State().Radio.ChannelNumber;
  cut::LagRow evidence{};
  evidence[0] = 30;
  for (int i = 0; i < 3; ++i) lags.Of(known).Renew(evidence);
  lags.Of(250).Renew(evidence);
  const std::vector<StationLagReport> reports = target.StationLags(0);
  ASSERT_EQ(reports.size(), 2U);
  EXPECT_EQ(reports[0].Channel, known);
  EXPECT_FALSE(reports[0].Station.empty());
  EXPECT_EQ(reports[0].LagMs, lags.Of(known).MedianMs());
  EXPECT_EQ(reports[0].JitterMs, lags.Of(known).JitterMs());
  EXPECT_EQ(reports[0].Changes, 3);
  EXPECT_EQ(reports[1].Station, "");
  EXPECT_EQ(target.StationLags(250), std::vector{reports[1]});
  EXPECT_TRUE(target.StationLags(249).empty());
}

TEST_F(RecordTest, AFailureOfTheRecordIsToldAsItIs) {
  store.QuestionFailure = "the disk failed";
  std::string said;
  target.Cuts({}, [&said](const base::Result& asked, const auto&) { said = asked.Cause(); });
  rig.Run(std::chrono::seconds(1));
  EXPECT_EQ(said, "the disk failed");
  EXPECT_EQ(Report(""), "the disk failed");
  EXPECT_EQ(History({}), "the disk failed");
}

}  // namespace
}  // namespace kestrune::control
