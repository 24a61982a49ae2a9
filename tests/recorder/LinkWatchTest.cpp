// Outages of the radio on a whole unit: what is logged, recorded and shown.
#include <algorithm>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/StatusOf.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::Result;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

class LinkWatchTest : public ::testing::Test {
 protected:
  LinkWatchTest() { rig.Set("FilenameFormat", "%c %a - %s"); }

  void Unplugged(std::chrono::milliseconds length) {
    rig.Radio.Unplug();
    rig.Run(length);
    rig.Radio.Plug();
    ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig->State().Link.Up(); }, 40s));
    rig.Run(10s);
  }
  [[nodiscard]] std::vector<std::string> LinkLines() const {
    std::vector<std::string> lines;
    for (const std::string& line : rig.LogTexts()) {
      if (line.starts_with("Radio lost") || line.starts_with("Radio found again")) lines.push_back(line);
    }
    return lines;
  }
  /// The finished songs, without the capture in hand.
  [[nodiscard]] std::vector<std::string> Songs() const {
    std::vector<std::string> songs;
    for (const std::string& name : rig.Recordings()) {
      if (!name.starts_with("Capture")) songs.push_back(name);
    }
    return songs;
  }
  std::string Answer(const std::function<void(recorder::Wishes::Answered)>& ask) {
    std::string answer = "none";
    ask([&answer](const Result& result) { answer = result.Ok() ? "done" : result.Cause(); });
    rig.Run(3s);
    return answer;
  }

  UnitRig rig;
};

TEST_F(LinkWatchTest, AnOutageIsTwoLinesInTheLog) {
  rig.StartIdle();
  Unplugged(10s);
  EXPECT_THAT(LinkLines(), ElementsAre("Radio lost on port 1: the device is gone",
                                       MatchesRegex("Radio found again on port 1 after 0:1[2-9]")));
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
}

TEST_F(LinkWatchTest, ALongOutageIsTwoLinesToo) {
  rig.StartIdle();
  Unplugged(30min);
  EXPECT_EQ(LinkLines().size(), 2U);
}

TEST_F(LinkWatchTest, AHealthyHourHasNone) {
  rig.StartIdle();
  rig.Run(1h);
  EXPECT_THAT(LinkLines(), IsEmpty());
}

TEST_F(LinkWatchTest, TheFileInHandAndTheOneThatFollowsAreIncompleteAndTheNextIsWhole) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.Radio.Unplug();
  rig.Run(10s);
  rig.Radio.Play(44, "Owls", "Midnight");  // nobody hears of it
  rig.Run(10s);
  rig.Radio.Plug();
  rig.Run(60s);
  EXPECT_THAT(Songs(), Contains("44 Lanterns - North Pier (Incomplete).wav"));
  rig.NextSong("Herons", "Reed");
  EXPECT_THAT(Songs(), Contains("44 Owls - Midnight (Incomplete).wav"));
  rig.Run(30s);
  rig.NextSong("Herons", "Still Water");
  EXPECT_THAT(Songs(), Contains("44 Herons - Reed.wav"));
}

TEST_F(LinkWatchTest, TheSameSongAfterAShortOutageBeginsANewFileToo) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  Unplugged(10s);
  EXPECT_THAT(Songs(), Contains("44 Lanterns - North Pier (Incomplete).wav"));
  rig.Run(20s);
  rig.NextSong("Herons", "Reed");
  EXPECT_EQ(Songs().size(), 3U);
}

TEST_F(LinkWatchTest, ASongChangedUnseenIsNotCutBeforeTheTextIsRead) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.Radio.Unplug();
  rig.Run(5s);
  rig.Radio.Play(44, "Owls", "Midnight");
  rig.Radio.Plug();
  rig.Run(30s);
  // One cut at the return and no other.
  EXPECT_EQ(Songs().size(), 2U);
  EXPECT_EQ(rig->State().Recording.TooShortCount, 0);
}

TEST_F(LinkWatchTest, ASilentRadioThatAnswersWithAnotherSongLeadsToOneCut) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.Radio.Answers = false;
  rig.Run(40s);
  ASSERT_FALSE(rig->State().Link.Up());
  rig.Radio.Play(44, "Owls", "Midnight");
  rig.Radio.Answers = true;
  rig.Run(30s);
  ASSERT_TRUE(rig->State().Link.Up());
  EXPECT_THAT(Songs(), Contains("44 Lanterns - North Pier (Incomplete).wav"));
  EXPECT_EQ(rig->State().Recording.TooShortCount, 0);
  rig.NextSong("Herons", "Reed");
  EXPECT_THAT(Songs(), Contains("44 Owls - Midnight (Incomplete).wav"));
}

TEST_F(LinkWatchTest, AFileThatBeganJustBeforeTheReturnIsNotCutAgain) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.Radio.Answers = false;
  rig.Run(40s);
  ASSERT_FALSE(rig->State().Link.Up());
  // The text comes before the radio says who it is.
  rig.Radio.Play(44, "Owls", "Midnight");
  const std::int16_t slot = rig->State().Recording.CaptureSlot;
  rig.Radio.WhenCommanded = [&] {
    const bool poll = rig.Radio.Commands.back().starts_with("5AA5000425");
    rig.Radio.Answers = poll || rig->State().Recording.CaptureSlot != slot;
  };
  rig.Run(30s);
  rig.Radio.WhenCommanded = [] {};
  ASSERT_TRUE(rig->State().Link.Up());
  EXPECT_NE(rig->State().Recording.CaptureSlot, slot);
  EXPECT_EQ(rig->State().Recording.TooShortCount, 0);
  rig.NextSong("Herons", "Reed");
  EXPECT_THAT(Songs(), Contains("44 Owls - Midnight (Incomplete).wav"));
}

TEST_F(LinkWatchTest, AFileThatBeginsInAnOutageIsIncompleteToo) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(5s);
  rig->cmdRecord();
  rig.Run(20s);
  rig->cmdStop();
  rig.Run(5s);
  const recorder::RecordingState& recording = rig->State().Recording;
  EXPECT_TRUE(recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot)).Outcome.RadioLost);
}

TEST_F(LinkWatchTest, WhoWaitsForAWholeSongGoesOnWaiting) {
  rig.StartIdle();
  rig->SetChannelNumber(45);
  rig.Run(5s);
  rig->cmdRecord();
  rig.Run(5s);
  ASSERT_TRUE(rig->State().Recording.WaitingForNextSong);
  rig.Radio.Unplug();
  rig.Run(5s);
  rig.Radio.Play(45, "Owls", "Midnight");
  rig.Radio.Plug();
  rig.Run(30s);
  EXPECT_TRUE(rig->State().Recording.WaitingForNextSong) << "what plays is the rest of a song";
  rig.NextSong("Herons", "Reed");
  EXPECT_FALSE(rig->State().Recording.WaitingForNextSong);
  rig.Run(20s);
  rig.NextSong("Herons", "Still Water");
  EXPECT_THAT(Songs(), ElementsAre("45 Herons - Reed.wav"));
}

TEST_F(LinkWatchTest, ARecordingAskedForInAnOutageBeginsIncomplete) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(5s);
  rig->cmdRecord();
  rig.Run(20s);
  rig.Radio.Plug();
  rig.Run(30s);
  EXPECT_THAT(Songs(), Each(HasSubstr("(Incomplete)")));
  EXPECT_THAT(Songs(), Not(IsEmpty()));
}

TEST_F(LinkWatchTest, ARunningEventGoesOnAndItsRadioIsTunedBack) {
  // Simulated time begins at noon of January 1, 2005.
  rig.Set("ScheduleEnabled1", "1");
  rig.Set("ScheduleChannel1", "46");
  rig.Set("ScheduleStartDate1", "Jan 1, 2005 12:10 PM");
  rig.Set("ScheduleDuration1", "1:00");
  rig.Set("ScheduleIntegrel1", "1");
  rig.Set("ScheduleCleftune1", "1");
  rig.Set("ScheduleMatchGrab1", "0");
  rig.Set("ScheduleMatchKill1", "0");
  rig.StartIdle();
  rig.Run(12min);
  ASSERT_EQ(rig->State().Schedule.ActiveSchedule, 1);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.Radio.PoweredOn = false;
  rig.Radio.TunedChannel = 1;
  Unplugged(3min);
  EXPECT_EQ(rig.Radio.TunedChannel, 46);
  EXPECT_EQ(rig->State().Schedule.ActiveSchedule, 1);
  EXPECT_TRUE(rig->State().Recording.IsRecording());
  rig.Run(20s);
  rig.NextSong("Herons", "Reed");
  rig.Run(30s);
  rig.NextSong("Herons", "Still Water");
  EXPECT_THAT(Songs(), Contains("46 Herons - Reed.wav"));
  rig.Run(1h);
  EXPECT_TRUE(rig.Logged("Scheduled event 1 completed"));
}

TEST_F(LinkWatchTest, AfterMoreThanAMinuteTheChannelsAreGoneThroughOnceMore) {
  rig.StartIdle();
  rig.Radio.Channels[60] = {"Newcomer", "Genre", "New", "Song"};
  Unplugged(10s);
  rig.Run(1min);
  EXPECT_EQ(rig->Parts().Channels.Table().ChannelIndex(60), 0);
  Unplugged(61s);
  rig.Run(1min);
  EXPECT_NE(rig->Parts().Channels.Table().ChannelIndex(60), 0);
  EXPECT_FALSE(rig->State().Radio.ChannelsLoading) << "songs are cut meanwhile";
}

TEST_F(LinkWatchTest, TheNewPortIsStored) {
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(3s);
  rig.Radio.SittingOnPort = 2;
  rig.Radio.Plug();
  rig.Run(10s);
  EXPECT_EQ(rig->State().Settings.PortNum, 2);
  EXPECT_THAT(LinkLines().back(), StartsWith("Radio found again on port 2"));
  rig.CloseAndWait();
  EXPECT_EQ(rig.Setting("PortNum"), "2");
}

TEST_F(LinkWatchTest, CommandsThatNeedTheRadioSayThatItIsLost) {
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(1s);
  recorder::Wishes& wishes = rig->Wishes();
  EXPECT_EQ(Answer([&](auto answered) { wishes.Tune(45, answered); }),
            "the radio is lost: the device is gone");
  EXPECT_EQ(Answer([&](auto answered) { wishes.Mute(true, answered); }),
            "the radio is lost: the device is gone");
  EXPECT_EQ(Answer([&](auto answered) { wishes.ToggleMute(answered); }),
            "the radio is lost: the device is gone");
  EXPECT_EQ(rig->State().Radio.ChannelNumber, 44);
  EXPECT_FALSE(rig->State().Recording.Muted);
  EXPECT_EQ(Answer([&](auto answered) { wishes.ChangeSetting("SongDelay", "700", answered); }), "done");
}

TEST_F(LinkWatchTest, WindowAndStatusShowNothingStale) {
  rig.StartIdle();
  ASSERT_EQ(rig.Window().pbrSatSignal[0].Caption, "80%");
  rig.Radio.Unplug();
  rig.Run(1s);
  EXPECT_EQ(rig.Rules->Explanation(), "The radio is lost: the device is gone.");
  EXPECT_EQ(rig.Window().Warning, "The radio is lost: the device is gone.");
  EXPECT_THAT(rig.Window().TrayTip, EndsWith("\nThe radio is lost: the device is gone."));
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "");
  const control::StatusReport lost = control::StatusOf(rig->Snapshot());
  EXPECT_EQ(lost.Port, 0);
  EXPECT_EQ(lost.RadioLost, "the device is gone");
  EXPECT_EQ(lost.Satellite1, 0);
  rig.Radio.Plug();
  rig.Run(20s);
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "80%");
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Port, 1);
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).RadioLost, "");
}

TEST_F(LinkWatchTest, TheSignalIsUnknownUntilTheRadioReportsItAnew) {
  rig.StartIdle();
  ASSERT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 80);
  // Everything is answered but the question for the signal.
  rig.Radio.WhenCommanded = [this] { rig.Radio.Answers = rig.Radio.Commands.back() != "5AA5000143EDED"; };
  Unplugged(10s);
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 0);
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "");
  rig.Radio.WhenCommanded = [] {};
  rig.Radio.Answers = true;
  rig.Run(10s);
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 80);
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "80%");
  EXPECT_EQ(std::ranges::count(rig.LogTexts(), "Satellite 1 signal quality: 80%"), 1) << "as told";
}

TEST_F(LinkWatchTest, ASignalReportedInAnOutageIsNotShownAfterIt) {
  rig.StartIdle();
  rig.Radio.Answers = false;
  rig.Run(15s);
  ASSERT_FALSE(rig->State().Link.Up());
  // One answer to the signal's question, before the radio has said who it is.
  bool signal = true;
  rig.Radio.WhenCommanded = [&] {
    const bool asked = rig.Radio.Commands.back() == "5AA5000143EDED";
    rig.Radio.Answers = asked ? std::exchange(signal, false) : !signal;
  };
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig->State().Announcement.Signal.has_value(); }, 40s));
  EXPECT_FALSE(rig->State().Link.Up());
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 0);
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig->State().Link.Up(); }, 40s));
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 0);
  rig.Run(10s);
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 0);
}

TEST_F(LinkWatchTest, TheSignalFromBeforeStaysAwayIfTheWatchIsSwitchedOffInAnOutage) {
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(3s);
  EXPECT_EQ(Answer([&](auto answered) { rig->Wishes().ChangeSetting("Watch", "False", answered); }), "done");
  ASSERT_TRUE(rig->State().Link.Up());
  EXPECT_EQ(control::StatusOf(rig->Snapshot()).Satellite1, 0);
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "");
}

TEST_F(LinkWatchTest, ASongWithAnOutageIsExplained) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  Unplugged(10s);
  EXPECT_EQ(rig.Rules->Explanation(), "The radio was lost within this song: its name will say (Incomplete).");
}

TEST_F(LinkWatchTest, WithoutTheWatchFailuresPassAsTold) {
  rig.Set("Watch", "False");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(20s);
  rig.Radio.Unplug();
  rig.Run(1min);
  rig.Radio.Plug();
  rig.Run(10min);
  EXPECT_THAT(LinkLines(), IsEmpty());
  EXPECT_FALSE(rig.Radio.IsOpen());
  EXPECT_TRUE(rig->State().Recording.IsRecording());
  EXPECT_EQ(Songs().size(), 1U) << "the capture runs on into the file in hand";
  EXPECT_EQ(rig.Rules->Explanation(), "This song is kept from its beginning.");
}

TEST_F(LinkWatchTest, TheWatchIsSwitchedByACommand) {
  rig.Set("Watch", "False");
  rig.StartIdle();
  rig.Radio.Unplug();
  rig.Run(1min);
  rig.Radio.Plug();
  EXPECT_EQ(Answer([&](auto answered) { rig->Wishes().ChangeSetting("Watch", "True", answered); }), "done");
  rig.Run(10s);
  EXPECT_TRUE(rig.Radio.IsOpen());
  EXPECT_EQ(LinkLines().size(), 2U);
}

TEST_F(LinkWatchTest, ACloseInAnOutageWaitsForNoRadio) {
  rig.StartIdle();
  rig.Radio.Answers = false;
  rig.Run(1min);
  const auto before = rig.Loop.SteadyNow();
  rig.CloseAndWait();
  EXPECT_LT(rig.Loop.SteadyNow() - before, 4s);
  EXPECT_FALSE(rig.Radio.IsOpen());
}

}  // namespace
}  // namespace kestrune::test
