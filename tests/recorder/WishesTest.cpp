// Wishes to a whole unit: where they are served, where not, and how they are answered.
#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::Result;
using recorder::Wishes;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class WishesTest : public ::testing::Test {
 protected:
  /// Notes the answer under a name.
  Wishes::Answered Note(const std::string& name) {
    return [this, name](const Result& result) {
      Answers.push_back(name + (result.Ok() ? " done" : " refused: " + result.Cause()));
    };
  }
  /// Asks for something that notes when it is carried out.
  void AskAndWatch() {
    rig->Wishes().Ask([this] {
      ++Served;
      EXPECT_FALSE(rig.Loop.Pumping());
      EXPECT_FALSE(rig->State().Recording.BoundaryBusy);
      EXPECT_FALSE(rig->State().Radio.InfoBusy);
      return Result::Done();
    });
  }
  /// Records whole songs since before the song that plays.
  void RecordWholeSongs() {
    rig.StartIdle();
    rig->Wishes().Record();
    rig.Run(30s);
    rig.NextSong("Lanterns", "North Pier");
    rig.Run(30s);
  }

  /// The lines of the log that begin so.
  [[nodiscard]] std::vector<std::string> Lines(std::string_view start) const {
    std::vector<std::string> lines = rig.LogTexts();
    std::erase_if(lines, [start](const std::string& line) { return !line.starts_with(start); });
    return lines;
  }

  UnitRig rig;
  std::vector<std::string> Answers;
  int Served = 0;
};

TEST_F(WishesTest, NoneIsServedInAWaitAPumpABoundaryOrTheReceivePath) {
  rig.Set("SongDelay", "700");
  rig.StartIdle();
  rig->cmdRecord();
  // Asked every 7 ms, whatever the unit is doing: polling, receiving, tuning, cutting.
  int asked = 0;
  int pumping = 0;
  int cutting = 0;
  int receiving = 0;
  std::function<void(int)> ask = [&](int more) {
    ++asked;
    pumping += rig.Loop.Pumping() ? 1 : 0;
    cutting += rig->State().Recording.BoundaryBusy ? 1 : 0;
    receiving += rig->State().Radio.InfoBusy ? 1 : 0;
    AskAndWatch();
    // The next one gets as deep as the next pump.
    if (more > 0) rig.Loop.Post([&, more] { ask(more - 1); });
  };
  for (auto at = 0ms; at < 20s; at += 7ms) {
    rig.Loop.AtHardware(at, [&] { rig.Loop.Post([&] { ask(8); }); });
  }
  for (int song = 0; song < 4; ++song) rig.NextSong("Artist", "Song " + std::to_string(song));
  rig->cmdStop();
  rig.Run(1s);
  rig->Wishes().Tune(46);
  rig.Run(1min);
  EXPECT_EQ(Served, asked);
  EXPECT_GT(pumping, 0);
  EXPECT_GT(cutting, 0);
  EXPECT_GT(receiving, 0);
}

TEST_F(WishesTest, EachIsAnsweredInItsOrder) {
  rig.StartIdle();
  rig->Wishes().Record(Note("record"));
  rig->Wishes().Tune(46, Note("tune"));
  rig->Wishes().Stop(Note("stop"));
  rig->Wishes().Tune(46, Note("tune"));
  rig->Wishes().Close(Note("close"));
  rig->Wishes().Record(Note("late"));
  EXPECT_THAT(Answers, IsEmpty());
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  EXPECT_THAT(Answers,
              ElementsAre("record done",
                          "tune refused: the channel cannot be changed while recording is under way; stop it "
                          "first",
                          "stop done", "tune done", "close done", "late refused: the program is closing"));
}

TEST_F(WishesTest, EachToggleTogglesOnce) {
  for (const int times : {1, 2, 3}) {
    UnitRig own;
    own.StartIdle();
    own.Run(5s);
    own.Radio.Commands.clear();
    int done = 0;
    for (int i = 0; i < times; ++i)
      own->Wishes().ToggleMute([&done](const Result& result) { done += result.Ok() ? 1 : 0; });
    own.Run(3s);
    EXPECT_EQ(done, times);
    EXPECT_EQ(own.Radio.Muted, times % 2 == 1) << times;
    EXPECT_EQ(own->State().Recording.Muted, times % 2 == 1) << times;
    const std::vector<std::string>& sent = own.Radio.Commands;
    EXPECT_EQ(std::count_if(sent.begin(), sent.end(),
                            [](const std::string& frame) { return frame.starts_with("5AA5000213"); }),
              times);
  }
}

TEST_F(WishesTest, ARecordThatIsAskedForTwiceActsOnce) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->Wishes().Record(Note("record"));
  rig->Wishes().Record(Note("record"));
  rig.Run(30s);
  rig->Wishes().Stop(Note("stop"));
  rig.Run(30s);
  EXPECT_THAT(Answers, ElementsAre("record done", "record refused: recording has been asked for already",
                                   "stop done"));
  EXPECT_TRUE(rig->State().MayRecord());
  EXPECT_THAT(Lines("Recorded: "), SizeIs(1));
  rig.Run(1min);
  EXPECT_THAT(Lines("Recorded: "), SizeIs(1)) << "nothing is left of the second one";
}

TEST_F(WishesTest, ASongThatIsAskedForTwiceIsKeptOnce) {
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig->Wishes().KeepCurrent(Note("keep"));
  rig->Wishes().KeepCurrent(Note("keep"));
  rig.Run(30s);
  rig.NextSong("Sailors", "Low Water");
  rig.Run(1min);
  rig.NextSong("Keel & Oar", "Red Buoy");
  EXPECT_THAT(Answers, ElementsAre("keep done", "keep done"));
  EXPECT_THAT(Lines("Kept: "), ElementsAre(StartsWith("Kept: Channel 44  \"Lanterns - North Pier\"")));
  EXPECT_TRUE(rig->State().MayRecord());
}

TEST_F(WishesTest, AllAreAnsweredWhenTheUnitHasClosed) {
  rig.StartIdle();
  // So late in the close that only its end can answer.
  rig.Loop.AtHardware(1s, [&] { rig.Radio.Chatters = true; });
  rig->Wishes().Close(Note("close"));
  for (auto at = 0ms; at < 12s; at += 500ms) {
    rig.Loop.AtHardware(at, [&] { rig.Loop.Post([&] { rig->Wishes().Record(Note("record")); }); });
  }
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  rig.Run(15s);
  EXPECT_EQ(Answers.size(), 25U);
  EXPECT_EQ(Answers.front(), "close done");
  EXPECT_EQ(std::count(Answers.begin(), Answers.end(), "record refused: the program is closing"), 24);
}

TEST_F(WishesTest, ThoseThatTheStateForbidsSayWhatStandsInTheWay) {
  rig.StartIdle();
  rig->Wishes().Stop(Note("stop"));
  rig->Wishes().Record(Note("record"));
  rig->Wishes().Record(Note("record"));
  rig->Wishes().Mute(true, Note("mute"));
  rig.Run(1s);
  EXPECT_THAT(Answers, ElementsAre("stop refused: nothing is being recorded", "record done",
                                   "record refused: recording has been asked for already",
                                   "mute refused: the radio cannot be muted while recording is under way; "
                                   "stop it first"));
  EXPECT_THAT(rig.Sounds.Played, ElementsAre("SystemAsterisk"));
}

TEST_F(WishesTest, InAnEventTheyNameTheEntryAndWhatToDo) {
  rig.StartIdle();
  rig.Set("ScheduleEnabled3", "1");
  rig.Set("ScheduleChannel3", "46");
  rig.Set("ScheduleStartDate3", "Jan 15, 1967 12:00 AM");
  rig.Set("ScheduleDuration3", "13:30");
  rig->ReloadSchedule();
  rig.Run(20s);
  ASSERT_EQ(rig->State().Schedule.ActiveSchedule, 3);
  rig->Wishes().Record(Note("record"));
  rig->Wishes().Stop(Note("stop"));
  rig->Wishes().Tune(44, Note("tune"));
  rig->Wishes().Mute(true, Note("mute"));
  rig.Run(1s);
  const std::string event = "schedule entry 3 is recording until Jan 1, 1:30 pm";
  EXPECT_THAT(Answers, ElementsAre("record refused: " + event + " already",
                                   "stop refused: " + event + "; disable that entry first",
                                   "tune refused: " + event + "; disable that entry first",
                                   "mute refused: " + event + "; disable that entry first"));
}

TEST_F(WishesTest, WhileTheUnitStartsAllButTheCloseIsRefusedAtOnce) {
  rig.Loop.AtHardware(1s, [&] {
    rig.Loop.Post([&] {
      rig->Wishes().Record(Note("record"));
      rig->Wishes().Tune(46, Note("tune"));
      rig->Wishes().ToggleMute(Note("mute"));
      rig->Wishes().KeepCurrent(Note("keep"));
      rig->Wishes().AskForUpdate([this](const Result& asked, const recorder::UpdateAnswer& /*answer*/) {
        Answers.push_back("update refused: " + asked.Cause());
      });
    });
  });
  rig.Start();
  EXPECT_THAT(Answers, ElementsAre("record refused: the program is still starting",
                                   "tune refused: the program is still starting",
                                   "mute refused: the program is still starting",
                                   "keep refused: the program is still starting",
                                   "update refused: the program is still starting"));
  rig.FinishWalk();
  rig.Run(30s);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_TRUE(rig->State().MayRecord()) << "nothing of it comes later";
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_FALSE(rig.Radio.Muted);
  EXPECT_THAT(Lines("Kept: "), IsEmpty());
}

TEST_F(WishesTest, ACloseIsTakenAtAnyMomentOfTheStart) {
  for (auto moment = 0ms; moment < 8s; moment += 130ms) {
    UnitRig own;
    bool answered = false;
    bool loading = true;
    own.Loop.AtHardware(moment, [&] {
      own.Loop.Post([&] {
        own->Wishes().Close([&](const Result& result) {
          EXPECT_TRUE(result.Ok());
          EXPECT_FALSE(loading) << "not within the load";
          answered = true;
        });
      });
    });
    static_cast<void>(own->Load());
    loading = false;
    EXPECT_TRUE(own.Loop.RunUntil([&] { return own.Closed; }, 20s)) << moment.count();
    EXPECT_TRUE(answered) << moment.count();
    EXPECT_FALSE(own.Radio.IsOpen()) << moment.count();
  }
}

TEST_F(WishesTest, ACloseDuringASongDelayKeepsTheFinishedSong) {
  for (auto moment = 0ms; moment <= 2500ms; moment += 50ms) {
    UnitRig own;
    own.StartIdle();
    own->cmdRecord();
    own.Run(30s);
    own.NextSong("Lanterns", "North Pier");
    own.Run(30s);
    own.Radio.Play(44, "Sailors", "Low Water");
    own.Loop.AtHardware(moment, [&] { own.Loop.Post([&] { own->Wishes().Close(); }); });
    ASSERT_TRUE(own.Loop.RunUntil([&] { return own.Closed; }, 1min));
    const bool said = own.Logged("Recorded: Channel 44  \"Lanterns - North Pier\"");
    const std::string file = "Rock/44 - Harbour/Lanterns - North Pier.wav";
    const std::vector<std::string> files = own.Recordings();
    EXPECT_EQ(std::count(files.begin(), files.end(), file), said ? 1 : 0) << moment.count();
    // The change is seen within a second; what comes after that finds the song finished.
    EXPECT_TRUE(said || moment < 1s) << moment.count();
  }
}

TEST_F(WishesTest, StopAndAtOnceCloseKeepsThePiece) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->Wishes().Record();
  rig.Run(30s);
  rig->Wishes().Stop(Note("stop"));
  rig->Wishes().Close(Note("close"));
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  EXPECT_THAT(Answers, ElementsAre("stop done", "close done"));
  EXPECT_THAT(rig.Recordings(), ElementsAre("Rock/44 - Harbour/Moonlighters - Slow Tide (Incomplete).wav"));
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"")));
}

TEST_F(WishesTest, ACloseBetweenAStopAndItsTickKeepsThePiece) {
  for (auto moment = 0ms; moment <= 400ms; moment += 20ms) {
    UnitRig own;
    own.Set("Integrel", "False");
    own.StartIdle();
    own->cmdRecord();
    own.Run(30s);
    own->Wishes().Stop();
    own.Loop.AtHardware(moment, [&] { own.Loop.Post([&] { own->Wishes().Close(); }); });
    ASSERT_TRUE(own.Loop.RunUntil([&] { return own.Closed; }, 1min));
    EXPECT_THAT(own.Recordings(), ElementsAre("Rock/44 - Harbour/Moonlighters - Slow Tide (Incomplete).wav"))
        << moment.count();
  }
}

TEST_F(WishesTest, TheRadioIsAskedForItsIdentifierAfterWhatWasAskedForBefore) {
  rig.StartIdle();
  std::vector<std::string> answers;
  rig.Radio.Answers = false;
  rig->Wishes().Tune(46, [&](const base::Result&) { answers.emplace_back("tuned"); });
  rig->Wishes().AskForRadioID([&](const std::string& radioID) { answers.push_back(radioID); });
  EXPECT_THAT(answers, IsEmpty());
  rig.Run(3s);
  EXPECT_THAT(answers, ElementsAre("tuned", "ABCD1234"));
}

TEST_F(WishesTest, TwoTuningsAtATimeLeaveRadioLabelAndGridOnOneChannel) {
  for (auto moment = 0ms; moment < 1500ms; moment += 40ms) {
    UnitRig own;
    own.StartIdle();
    own->Wishes().Tune(46);
    own.Loop.AtHardware(moment, [&] { own.Loop.Post([&] { own->Wishes().Tune(52); }); });
    own.Run(10s);
    EXPECT_EQ(own->State().Radio.ChannelNumber, 52) << moment.count();
    EXPECT_EQ(own.Radio.TunedChannel, 52) << moment.count();
    EXPECT_EQ(own.Window().lblChannel.Caption, "52: Station 52") << moment.count();
    const radio::ChannelGrid& grid = own->Parts().Channels.Grid();
    EXPECT_EQ(grid.NumberAt(grid.SelectedRow()), 52) << moment.count();
  }
}

TEST_F(WishesTest, ATuningAndAnEventThatBeginsLeaveAllOnTheEventsChannel) {
  for (auto moment = 0ms; moment < 4500ms; moment += 90ms) {
    UnitRig own;
    own.StartIdle();
    own.Set("ScheduleEnabled1", "1");
    own.Set("ScheduleChannel1", "46");
    own.Set("ScheduleStartDate1", "Jan 15, 1967 12:00 AM");
    own.Set("ScheduleDuration1", "24:00");
    own->ReloadSchedule();
    own.Loop.AtHardware(moment, [&] { own.Loop.Post([&] { own->Wishes().Tune(52); }); });
    own.Run(20s);
    EXPECT_EQ(own->State().Schedule.ActiveSchedule, 1);
    EXPECT_EQ(own->State().Radio.ChannelNumber, 46) << moment.count();
    EXPECT_EQ(own.Radio.TunedChannel, 46) << moment.count();
    const radio::ChannelGrid& grid = own->Parts().Channels.Grid();
    EXPECT_EQ(grid.NumberAt(grid.SelectedRow()), 46) << moment.count();
  }
}

TEST_F(WishesTest, TheReloadsBoxStopsNothing) {
  rig.StartIdle();
  rig.Dialogs.KeepOpen = true;
  rig->cmdRecord();
  rig.Run(20s);
  rig->Wishes().ReloadChannels(Note("reload"));
  rig.Run(1s);
  EXPECT_THAT(Answers, ElementsAre("reload done"));
  ASSERT_EQ(rig.Dialogs.OpenBoxes.size(), 1U);
  rig.FinishWalk();
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(rig->State().Recording.LastSong, "North Pier");
}

TEST_F(WishesTest, ABoxThatIsOpenAtTheCloseHoldsUpNothing) {
  rig.StartIdle();
  rig.Dialogs.KeepOpen = true;
  rig->Wishes().ReloadChannels();
  rig.Run(1s);
  ASSERT_EQ(rig.Dialogs.OpenBoxes.size(), 1U);
  rig->Wishes().Close();
  EXPECT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
}

TEST_F(WishesTest, AStartThatFailsClosesWhenItsBoxIsAnswered) {
  rig.Radio.Answers = false;
  rig.Dialogs.KeepOpen = true;
  rig.Start(recorder::StartOutcome::Failed);
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Title, "Error connecting to radio");
  rig.Run(1min);
  EXPECT_FALSE(rig.Closed) << "the user has not read it yet";
  rig.Dialogs.Press(platform::MessageAnswer::Ok);
  EXPECT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
}

TEST_F(WishesTest, TheBoxOfTheTemporaryDriveComesBeforeTheRememberedWindowsAndStopsNothing) {
  struct NotedWindows final : recorder::Windows {
    void ShowRememberedWindows() override { Remembered = true; }
    bool Remembered = false;
  };
  NotedWindows windows;
  rig.MeetWindows(windows);
  rig.Files.Free = 1e9;
  rig.Dialogs.KeepOpen = true;
  rig.Start();
  ASSERT_EQ(rig.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig.Dialogs.Shown[0].Title, "Drive Space");
  rig.FinishWalk();
  EXPECT_FALSE(windows.Remembered);
  rig.Dialogs.Press(platform::MessageAnswer::Ok);
  rig.Run(1s);
  EXPECT_TRUE(windows.Remembered);
  // The windows go before the rig does.
  rig.Rules.reset();
  rig.Unit.reset();
}

}  // namespace
}  // namespace kestrune::test
