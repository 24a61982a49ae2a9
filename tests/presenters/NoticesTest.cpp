// What a whole unit says by the desktop's notifications.

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "presenters/Notices.h"
#include "support/RecordingShell.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using platform::Notice;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Keeps what it was asked to show, and what of it is still there.
class FakeNotifications final : public platform::Notifications {
 public:
  void Show(const Notice& notice) override {
    All.push_back(notice);
    Present[notice.Subject] = notice;
  }
  void Withdraw(std::string_view subject) override { Present.erase(std::string(subject)); }
  void Click(const std::string& subject, const std::string& key) { Choose(subject, key); }
  /// Presses the button with this label, as a person who sees the message.
  void Press(const std::string& subject, const std::string& label) {
    const auto shown = Present.find(subject);
    ASSERT_NE(shown, Present.end()) << "nothing is said of " << subject;
    for (const Notice::Action& action : shown->second.Actions) {
      if (action.Label != label) continue;
      const std::string key = action.Key;
      Present.erase(shown);
      return Choose(subject, key);
    }
    FAIL() << "there is no " << label;
  }

  std::vector<Notice> All;
  std::map<std::string, Notice> Present;
};

class NoticesTest : public ::testing::Test {
 protected:
  NoticesTest() {
    rig.Set("FilenameFormat", "%a - %s");
    rig.Set("Hints", "True");
    rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
    rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
    notices = std::make_unique<presenters::Notices>(
        *rig, presenters::Notices::Outside{
                  .Loop = rig.Loop,
                  .Shell = shell,
                  .Notifications = notifications,
                  .Windows = {.InFront = [this] { return inFront; }, .Raise = [this] { ++raised; }}});
  }
  void RecordOne(const std::string& artist, const std::string& song, std::chrono::seconds length = 60s) {
    rig.NextSong(artist, song);
    rig.Run(length);
    rig.NextSong("Next", "One");
  }
  void StartRecording() {
    rig.StartIdle();
    rig->Wishes().Record();
    rig.Run(1s);
  }
  /// Lets a song of the Grab lists begin on channel 47.
  void Hint(std::chrono::seconds heard = 10s) {
    rig.Run(12s);
    rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
    rig.Run(heard);
  }
  void Plan(int number, const std::string& start, const std::string& duration, int channel) {
    const auto set = [&](const std::string& name, const std::string& value) {
      rig.Set(name + std::to_string(number), value);
    };
    set("ScheduleEnabled", "1");
    set("ScheduleChannel", std::to_string(channel));
    set("ScheduleStartDate", start);
    set("ScheduleDuration", duration);
    set("ScheduleIntegrel", "1");
    set("ScheduleCleftune", "1");
    set("ScheduleMatchGrab", "0");
    set("ScheduleMatchKill", "0");
    set("ScheduleMP3BitRate", "128 Stereo");
    rig->ReloadSchedule();
  }
  void SetClock(DateValue wall) {
    rig.Loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(rig.Loop.Now(), wall)));
  }
  [[nodiscard]] bool Says(const std::string& subject) const {
    return notifications.Present.contains(subject);
  }
  [[nodiscard]] Notice Said(const std::string& subject) const {
    EXPECT_TRUE(Says(subject)) << subject;
    return Says(subject) ? notifications.Present.at(subject) : Notice();
  }
  [[nodiscard]] std::vector<std::string> Labels(const std::string& subject) const {
    std::vector<std::string> labels;
    for (const Notice::Action& action : Said(subject).Actions) labels.push_back(action.Label);
    return labels;
  }
  [[nodiscard]] std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    for (const Notice& notice : notifications.All) titles.push_back(notice.Title);
    return titles;
  }

  UnitRig rig;
  RecordingShell shell;
  FakeNotifications notifications;
  bool inFront = false;
  int raised = 0;
  std::unique_ptr<presenters::Notices> notices;
};

TEST_F(NoticesTest, ASongThatBeginsOrIsKeptIsNotToldUnlessAUserWishesIt) {
  StartRecording();
  RecordOne("Abigail Wren", "Winter Apples");
  EXPECT_EQ(rig->State().Recording.RecordedCount, 1);
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, AKeptSongIsToldAndItsFolderShown) {
  rig.Set("NotifySongs", "True");
  rig.Set("FilenameFormat", "%c\\%a - %s");
  StartRecording();
  RecordOne("Abigail Wren", "Winter Apples");
  const Notice said = Said("kept");
  EXPECT_EQ(said.Title, "Song kept");
  EXPECT_EQ(said.Text, "Abigail Wren - Winter Apples");
  EXPECT_EQ(said.Urgency, Notice::Weight::Normal);
  EXPECT_THAT(Labels("kept"), ElementsAre("Show Kestrune", "Show in Folder"));
  notifications.Press("kept", "Show in Folder");
  EXPECT_THAT(shell.Opened, ElementsAre("/music/44/"));
}

TEST_F(NoticesTest, EachSongHasItsMessageInThePlaceOfTheOneBefore) {
  rig.Set("NotifySongs", "True");
  StartRecording();
  rig.NextSong("A", "One");
  rig.Run(60s);
  rig.NextSong("B", "Two");
  rig.Run(60s);
  rig.NextSong("C", "Three");
  EXPECT_THAT(notifications.All, SizeIs(2));
  EXPECT_THAT(notifications.Present, SizeIs(1));
  EXPECT_EQ(Said("kept").Text, "B - Two");
}

TEST_F(NoticesTest, APieceIsCalledOne) {
  rig.Set("NotifySongs", "True");
  rig.Set("Integrel", "False");
  StartRecording();
  rig.Run(20s);
  rig->Wishes().Stop();
  rig.Run(3s);
  EXPECT_EQ(Said("kept").Text, "Moonlighters - Slow Tide (Incomplete)");
}

TEST_F(NoticesTest, ASongThatIsDroppedForItsLengthCanBeKept) {
  rig.Set("NotifySongs", "True");
  rig.Set("MaxSongLength", "30");
  rig.Set("ShelfSongs", "5");
  StartRecording();
  RecordOne("Abigail Wren", "Winter Apples", 70s);
  EXPECT_EQ(Said("dropped").Title, "Song not kept");
  EXPECT_EQ(Said("dropped").Text, "Abigail Wren - Winter Apples: too long, 1:13");
  EXPECT_EQ(Said("dropped").Urgency, Notice::Weight::Light);
  EXPECT_FALSE(Says("kept"));
  notifications.Press("dropped", "Keep");
  rig.Run(2s);
  EXPECT_FALSE(Says("dropped"));
  EXPECT_EQ(Said("kept").Text, "Abigail Wren - Winter Apples");
  EXPECT_TRUE(rig.Files.Exists("/music/Abigail Wren - Winter Apples.wav"));
}

TEST_F(NoticesTest, ASongThatHasLeftTheShelfMeanwhileIsSaidToBeGone) {
  rig.Set("NotifySongs", "True");
  rig.Set("MaxSongLength", "30");
  rig.Set("ShelfSongs", "5");
  StartRecording();
  RecordOne("Abigail Wren", "Winter Apples", 70s);
  base::Ignored(rig.Files.Remove("/music/Kestrune/Shelf/Abigail Wren - Winter Apples.wav"));
  notifications.Press("dropped", "Keep");
  rig.Run(2s);
  EXPECT_EQ(Said("dropped").Text, "Abigail Wren - Winter Apples: the song is not on the shelf any more.");
}

TEST_F(NoticesTest, WhatIsDroppedByAListIsNotTold) {
  rig.Set("MinSongLength", "0");
  rig.Set("NotifySongs", "True");
  rig.Set("ShelfSongs", "5");
  rig.Set("SievanceGrab", "1");
  StartRecording();
  RecordOne("Dune", "Low Road");
  EXPECT_GE(rig->State().Recording.RestrictedCount, 1);
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, WithoutAShelfThereIsNothingToKeep) {
  rig.Set("NotifySongs", "True");
  rig.Set("MaxSongLength", "30");
  StartRecording();
  RecordOne("Abigail Wren", "Winter Apples", 70s);
  EXPECT_EQ(rig->State().Recording.TooLongCount, 1);
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, IdleSongsThatNobodyWantedAreNotTold) {
  rig.Set("NotifySongs", "True");
  rig.Set("ShelfSongs", "5");
  rig.StartIdle();
  RecordOne("Abigail Wren", "Winter Apples");
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, AnEventIsToldAtItsBeginningAndItsEnd) {
  SetClock(DateValue::FromCivil(2005, 3, 9, 19, 59, 30));
  rig.StartIdle();
  SetClock(DateValue::FromCivil(2005, 3, 9, 19, 59, 30));
  Plan(3, "Mar 9, 2005 8:00 PM", "0:05", 46);
  rig.Run(40s);
  EXPECT_EQ(Said("event").Title, "Event 3 began");
  EXPECT_EQ(Said("event").Text, "Recording 46 Station 46 until 8:05 pm.");
  rig.NextSong("A", "One");
  rig.Run(60s);
  rig.NextSong("B", "Two");
  rig.Run(6min);
  EXPECT_EQ(Said("event").Title, "Event 3 ended");
  EXPECT_EQ(Said("event").Text, "1 song was recorded.");
  EXPECT_THAT(Titles(), ElementsAre("Event 3 began", "Event 3 ended"));
  notifications.Press("event", "Show in Folder");
  EXPECT_THAT(shell.Opened, ElementsAre("/music/"));
}

TEST_F(NoticesTest, AnEventWithoutASongHasNothingToShow) {
  SetClock(DateValue::FromCivil(2005, 3, 9, 19, 59, 30));
  rig.StartIdle();
  SetClock(DateValue::FromCivil(2005, 3, 9, 23, 59, 30));
  Plan(3, "Mar 10, 2005 12:00 AM", "0:02", 46);
  rig.Run(4min);
  EXPECT_EQ(Said("event").Text, "No song was recorded.");
  EXPECT_THAT(Labels("event"), ElementsAre("Show Kestrune"));
}

TEST_F(NoticesTest, AnEventThatFollowsAnotherAtOnceIsToldWithTheEndOfThat) {
  SetClock(DateValue::FromCivil(2005, 3, 9, 23, 49, 30));
  rig.StartIdle();
  SetClock(DateValue::FromCivil(2005, 3, 9, 23, 49, 30));
  Plan(3, "Mar 9, 2005 11:50 PM", "0:04", 46);
  Plan(4, "Mar 9, 2005 11:55 PM", "0:10", 47);
  rig.Run(6min);
  EXPECT_THAT(Titles(), ElementsAre("Event 3 began", "Event 4 began"));
  EXPECT_EQ(Said("event").Text,
            "Event 3 ended. No song was recorded.\nRecording 47 Station 47 until Mar 10, 12:05 am.");
}

TEST_F(NoticesTest, EventsCanBeSwitchedOff) {
  rig.Set("NotifyEvents", "False");
  SetClock(DateValue::FromCivil(2005, 3, 9, 19, 59, 30));
  rig.StartIdle();
  SetClock(DateValue::FromCivil(2005, 3, 9, 19, 59, 30));
  Plan(3, "Mar 9, 2005 8:00 PM", "0:02", 46);
  rig.Run(40s);
  ASSERT_EQ(rig->State().Schedule.ActiveSchedule, 3);
  rig->Wishes().ChangeSetting("NotifyEvents", "True");
  rig.Run(2s);
  EXPECT_THAT(Titles(), IsEmpty()) << "it is no news any more";
  rig.Run(3min);
  EXPECT_THAT(Titles(), ElementsAre("Event 3 ended"));
}

TEST_F(NoticesTest, AProblemIsToldOnceAndItsEnd) {
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(5min);
  const Notice said = Said("problem");
  EXPECT_EQ(said.Title, "A problem");
  EXPECT_EQ(said.Text, rig->State().Watch.Warning());
  EXPECT_EQ(said.Urgency, Notice::Weight::Heavy);
  EXPECT_THAT(notifications.All, SizeIs(1));
  rig.Radio.Plug();
  rig.Run(1min);
  ASSERT_EQ(rig->State().Watch.Warning(), "");
  EXPECT_THAT(Titles(), ElementsAre("A problem", "The problem is over"));
  EXPECT_EQ(Said("problem").Text, "It was: " + said.Text);
  EXPECT_EQ(Said("problem").Urgency, Notice::Weight::Normal);
}

TEST_F(NoticesTest, AProblemThatOnlyGrowsIsNoNews) {
  rig.StartIdle();
  rig.Files.Free = 400e6;
  rig.Run(2min);
  EXPECT_THAT(Said("problem").Text, HasSubstr("The disk is nearly full"));
  const std::string before = rig->State().Watch.LittleRoom;
  rig.Files.Free = 300e6;
  rig.Run(2min);
  EXPECT_NE(rig->State().Watch.LittleRoom, before);
  EXPECT_THAT(notifications.All, SizeIs(1));
}

TEST_F(NoticesTest, AWorseProblemTakesTheMessageOver) {
  rig.StartIdle();
  rig.Files.Free = 400e6;
  rig.Run(2min);
  rig.Radio.Unplug();
  rig.Run(2min);
  EXPECT_THAT(Said("problem").Text, HasSubstr("The radio is lost"));
  EXPECT_THAT(notifications.Present, SizeIs(1));
}

TEST_F(NoticesTest, AProblemOfAMomentIsNotTold) {
  rig.StartIdle();
  rig.Files.Free = 400e6;
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return !rig->State().Watch.LittleRoom.empty(); }, 2min));
  rig.Run(2s);
  // The watch looks again long after; whoever makes room lets it look by a setting.
  rig->Wishes().ChangeSetting("Watch", "False");
  rig.Run(2min);
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, WithoutProblemsOrWatchTheMessageGoesWithoutAWord) {
  for (const char* setting : {"NotifyProblems", "Watch"}) {
    if (rig->State().Run.FormLoading) rig.StartIdle();
    rig->Wishes().ChangeSetting(setting, "True");
    rig.Files.Free = 400e6;
    rig.Run(2min);
    ASSERT_TRUE(Says("problem"));
    notifications.All.clear();
    rig->Wishes().ChangeSetting(setting, "False");
    rig.Run(10s);
    EXPECT_FALSE(Says("problem")) << setting;
    EXPECT_THAT(Titles(), IsEmpty()) << setting;
    rig->Wishes().ChangeSetting(setting, "True");
  }
}

TEST_F(NoticesTest, AHintIsPointedOutAndGoesWithItsSong) {
  rig.StartIdle();
  Hint();
  const Notice said = Said("hint");
  EXPECT_EQ(said.Title, "Now on 47 Station 47");
  EXPECT_EQ(said.Text, "Abigail Wren - Winter Apples");
  EXPECT_THAT(Labels("hint"), ElementsAre("Show Kestrune", "Tune"));
  rig.Run(1min);
  EXPECT_THAT(notifications.All, SizeIs(1));
  EXPECT_TRUE(Says("hint"));
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  rig.Run(15s);
  EXPECT_FALSE(Says("hint")) << "Tune would lead to another song";
}

TEST_F(NoticesTest, TuneThenKeepKeepsTheSong) {
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Run(8s);
  EXPECT_EQ(rig.Radio.TunedChannel, 47);
  EXPECT_EQ(Said("hint").Title, "Tuned to 47 Station 47");
  EXPECT_EQ(Said("hint").Text, "Abigail Wren - Winter Apples");
  notifications.Press("hint", "Keep");
  rig.Run(1min);
  EXPECT_FALSE(Says("hint"));
  EXPECT_FALSE(Says("kept"));
  rig.NextSong("Juniper & Rue", "Tin Cup");
  rig.Run(2s);
  EXPECT_EQ(Said("kept").Title, "Song kept") << "the user has asked for it, whatever NotifySongs is";
  EXPECT_EQ(Said("kept").Text, "Abigail Wren - Winter Apples");
  const std::size_t all = notifications.All.size();
  rig->Wishes().Record();
  rig.Run(1min);
  RecordOne("Abigail Wren", "Winter Apples");
  EXPECT_EQ(rig->State().Recording.RecordedCount, 2);
  EXPECT_EQ(notifications.All.size(), all) << "once";
}

TEST_F(NoticesTest, AnOldHintIsNoNews) {
  rig.StartIdle();
  rig.Files.Free = 400e6;
  rig.Run(2min);
  Hint(1min);
  EXPECT_FALSE(Says("hint")) << "the problem goes first";
  rig.Files.Free = 100e9;
  rig.Run(2min);
  ASSERT_EQ(rig->State().Watch.Warning(), "");
  ASSERT_FALSE(rig->State().Hints.empty());
  EXPECT_FALSE(Says("hint"));
}

TEST_F(NoticesTest, AnotherHintLetsAUserKeepTheSongThatWasChosen) {
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Radio.Play(48, "Abigail Wren", "Harbor");
  rig.Radio.Report(48);
  rig.Run(12s);
  EXPECT_EQ(Said("hint").Title, "Tuned to 47 Station 47");
  rig.Run(5s);
  EXPECT_EQ(Said("hint").Title, "Now on 48 Station 48");
}

TEST_F(NoticesTest, ASongThatWasOverOnArrivalIsNotWaitedForAnyLonger) {
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  rig.Run(20s);
  ASSERT_EQ(rig.Radio.TunedChannel, 47);
  rig.NextSong("Abigail Wren", "Winter Apples");
  rig.Run(5s);
  EXPECT_FALSE(Says("hint"));
}

TEST_F(NoticesTest, TheOfferToKeepGoesWithTheSong) {
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Run(8s);
  ASSERT_TRUE(Says("hint"));
  rig.NextSong("Juniper & Rue", "Tin Cup");
  rig.Run(1s);
  EXPECT_FALSE(Says("hint"));
}

TEST_F(NoticesTest, TheOfferToKeepGoesOnceTheSongIsRecordedAnyway) {
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Run(8s);
  ASSERT_TRUE(Says("hint"));
  rig->Wishes().KeepCurrent();
  rig.Run(1s);
  EXPECT_FALSE(Says("hint"));
}

TEST_F(NoticesTest, AKeepThatComesTooLateDoesNotKeepTheNextSong) {
  rig.Set("SongDelay", "0");
  rig.StartIdle();
  Hint();
  notifications.Press("hint", "Tune");
  rig.Run(8s);
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  const recorder::RecordingState& recording = rig->State().Recording;
  ASSERT_TRUE(rig.Loop.RunUntil(
      [&] { return recording.CaptureSlots.at(recording.CaptureSlot == 0 ? 0 : 1).Song == "Tin Cup"; }, 10s));
  notifications.Press("hint", "Keep");
  rig.Run(1min);
  EXPECT_EQ(Said("hint").Text, "Abigail Wren - Winter Apples: the song is over.");
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_FALSE(rig.Files.Exists("/music/Juniper & Rue - Tin Cup.wav"));
  EXPECT_FALSE(Says("kept"));
}

TEST_F(NoticesTest, ARefusedTuneIsTold) {
  rig.StartIdle();
  Hint();
  rig->Wishes().Record();
  rig.Run(100ms);
  notifications.Press("hint", "Tune");
  rig.Run(1s);
  EXPECT_EQ(Said("hint").Title, "Not tuned to 47 Station 47");
  EXPECT_EQ(Said("hint").Text, "the channel cannot be changed while recording is under way; stop it first.");
}

TEST_F(NoticesTest, BesideARecordingAHintOffersNothing) {
  StartRecording();
  Hint();
  EXPECT_EQ(Said("hint").Title, "Now on 47 Station 47");
  EXPECT_THAT(Labels("hint"), ElementsAre("Show Kestrune"));
}

TEST_F(NoticesTest, AHintThatTheProgramFollowsIsToldWithoutAChoice) {
  rig.Set("FollowHints", "True");
  rig.StartIdle();
  Hint(15s);
  ASSERT_EQ(rig.Radio.TunedChannel, 47);
  EXPECT_THAT(Titles(), ElementsAre("Keeping a song of the Grab lists"));
  EXPECT_EQ(Said("hint").Text, "47 Station 47: Abigail Wren - Winter Apples\nBack on channel 44 afterwards.");
  EXPECT_THAT(Labels("hint"), ElementsAre("Show Kestrune"));
  rig.Run(1min);
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  rig.Run(5s);
  ASSERT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_FALSE(Says("hint"));
  EXPECT_EQ(Said("kept").Title, "Song kept");
}

TEST_F(NoticesTest, HintsCanBeSwitchedOff) {
  rig.StartIdle();
  Hint();
  ASSERT_TRUE(Says("hint"));
  rig->Wishes().ChangeSetting("NotifyHints", "False");
  rig.Run(1s);
  EXPECT_FALSE(Says("hint"));
  rig.Radio.Play(48, "Abigail Wren", "Harbor");
  rig.Run(15s);
  EXPECT_FALSE(Says("hint"));
}

TEST_F(NoticesTest, WhileAWindowIsInFrontNothingIsSaidNorAfterwards) {
  rig.Set("NotifySongs", "True");
  inFront = true;
  StartRecording();
  Hint();
  RecordOne("Abigail Wren", "Winter Apples");
  rig.Files.Free = 400e6;
  rig.Run(2min);
  inFront = false;
  rig.Run(1min);
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, OnceAWindowIsInFrontTheMessagesGo) {
  rig.StartIdle();
  Hint();
  rig.Files.Free = 400e6;
  rig.Run(2min);
  ASSERT_THAT(notifications.Present, SizeIs(2));
  const std::string key = Said("hint").Actions.at(1).Key;
  inFront = true;
  rig.Run(1s);
  EXPECT_THAT(notifications.Present, IsEmpty());
  notifications.Click("hint", key);
  rig.Run(5s);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
}

TEST_F(NoticesTest, AClickOnTheMessageShowsTheProgram) {
  rig.StartIdle();
  Hint();
  notifications.Click("hint", "default");
  EXPECT_EQ(raised, 1);
}

TEST_F(NoticesTest, KeysThatWereNotOfferedOrHaveGivenWayMeanNothing) {
  rig.StartIdle();
  notifications.Click("hint", "default");
  notifications.Click("nobody", "default");
  Hint();
  const std::string old = Said("hint").Actions.at(1).Key;
  rig.Radio.Play(48, "Abigail Wren", "Harbor");
  rig.Run(15s);
  ASSERT_EQ(Said("hint").Title, "Now on 48 Station 48");
  for (const std::string& key : {old, std::string(), std::string("offer-"), std::string("offer-99")})
    notifications.Click("hint", key);
  rig.Run(5s);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_EQ(raised, 0);
  EXPECT_TRUE(Says("hint"));
}

TEST_F(NoticesTest, TextOfTheRadioStaysOnItsLine) {
  rig.Radio.Channels[47].Station = "Sta\ntion\x1b";
  rig.StartIdle();
  rig.Run(12s);
  rig.Radio.Play(47, "Abigail Wren\n<b>", "Winter\r\x07 Apples");
  rig.Run(10s);
  EXPECT_EQ(Said("hint").Title.find_first_of("\n\r\x1b\x07"), std::string::npos);
  EXPECT_EQ(Said("hint").Text.find_first_of("\n\r\x1b\x07"), std::string::npos);
  EXPECT_THAT(Said("hint").Text, HasSubstr("<b>")) << "whatever shows it knows it for plain text";
}

TEST_F(NoticesTest, TheEndTakesEverythingAway) {
  rig.StartIdle();
  Hint();
  ASSERT_TRUE(Says("hint"));
  notices.reset();
  EXPECT_THAT(notifications.Present, IsEmpty());
  notifications.Click("hint", "default");
  EXPECT_EQ(raised, 0);
}

TEST_F(NoticesTest, WhileTheProgramClosesNothingMoreIsSaid) {
  rig.Set("NotifySongs", "True");
  rig.Set("Integrel", "False");
  StartRecording();
  rig.Run(20s);
  rig->Wishes().Stop();
  rig->Wishes().Close();
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  EXPECT_TRUE(rig.Files.Exists("/music/Moonlighters - Slow Tide (Incomplete).wav"));
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(NoticesTest, AnAnswerThatComesAfterTheEndIsNoHarm) {
  rig.StartIdle();
  Hint();
  rig->Wishes().Record();
  rig.Run(100ms);
  const std::size_t all = notifications.All.size();
  notifications.Press("hint", "Tune");
  notices.reset();
  EXPECT_EQ(notifications.All.size(), all);
  rig.Run(10s);
  EXPECT_THAT(notifications.Present, IsEmpty());
}

TEST_F(NoticesTest, WhileTheProgramStartsNothingIsSaid) {
  rig.Files.Free = 400e6;
  bool early = false;
  rig.Radio.WhenCommanded = [&] {
    early = early || (rig->State().Run.FormLoading && !notifications.All.empty());
  };
  rig.StartIdle();
  rig.Run(2min);
  EXPECT_FALSE(early);
  EXPECT_TRUE(Says("problem"));
}

}  // namespace
}  // namespace kestrune::test
