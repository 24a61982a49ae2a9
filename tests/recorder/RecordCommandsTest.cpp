#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

/// The commands and what the update cycle makes of them, on a whole unit.
class RecordCommandsTest : public ::testing::Test {
 protected:
  UnitRig rig;

  [[nodiscard]] std::string Status() { return rig.Window().lblRecording.Caption; }
  [[nodiscard]] const recorder::RecordingState& State() { return rig->State().Recording; }

  void PressRecord() {
    ASSERT_TRUE(rig.Window().cmdRecord.Enabled);
    rig->cmdRecord();
    EXPECT_FALSE(rig.Window().cmdRecord.Enabled);
    EXPECT_TRUE(rig.Window().cmdStop.Enabled);
  }
  void PressStop() {
    ASSERT_TRUE(rig.Window().cmdStop.Enabled);
    rig->cmdStop();
    EXPECT_TRUE(rig.Window().cmdRecord.Enabled);
    EXPECT_FALSE(rig.Window().cmdStop.Enabled);
  }
  /// Makes the unit forget the boundary of the song in hand, as a channel change does.
  void ForgetBoundary() {
    rig->SetChannelNumber(45);
    rig.Run(3s);
    rig->SetChannelNumber(44);
    rig.Run(3s);
    ASSERT_FALSE(State().SongBoundarySeen);
  }
};

TEST_F(RecordCommandsTest, RecordDuringTheChannelLoadOnlyArms) {
  rig.Start();
  PressRecord();
  EXPECT_EQ(Status(), "Waiting for channel load");
  EXPECT_TRUE(rig.Window().lblRecording.Visible);
  EXPECT_FALSE(State().RecordRequested);
}

TEST_F(RecordCommandsTest, StopDuringTheChannelLoadDisarms) {
  rig.Start();
  PressRecord();
  PressStop();
  EXPECT_EQ(Status(), "");
  EXPECT_FALSE(rig.Window().lblRecording.Visible);
  rig.FinishWalk();
  EXPECT_FALSE(State().RecordRequested);
}

TEST_F(RecordCommandsTest, ArmedDuringTheLoadItWaitsForAWholeSong) {
  rig.Start();
  PressRecord();
  rig.FinishWalk();
  rig.Run(2s);
  EXPECT_EQ(Status(), "Waiting for next song");
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(Status(), "Recording");
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(rig.Recordings(), ::testing::Contains("Rock/44 - Harbour/Lanterns - North Pier.wav"));
}

TEST_F(RecordCommandsTest, ArmedDuringTheLoadWithoutWholeSongsItStartsAtOnce) {
  rig.Set("Integrel", "False");
  rig.Start();
  PressRecord();
  rig.FinishWalk();
  rig.Run(2s);
  EXPECT_EQ(Status(), "Recording");
  EXPECT_TRUE(State().Incomplete);
}

TEST_F(RecordCommandsTest, RecordRightAfterABoundaryKeepsThatSongWholeWithItsRealStart) {
  rig.Set("FilenameFormat", "%d");
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  const base::DateValue boundary = State().SongBoundaryTime;
  rig.Run(2min);
  PressRecord();
  EXPECT_EQ(Status(), "Recording");
  EXPECT_EQ(State().SessionStart, boundary);
  EXPECT_EQ(State().RecordStartTime, boundary);
  EXPECT_FALSE(State().Incomplete);
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 44  \"Lanterns - North Pier\"  Song length: 3:0")));
}

TEST_F(RecordCommandsTest, TheFirstForcedBoundaryCountsAsOneSoRecordKeepsThePartialCapture) {
  rig.StartIdle();
  EXPECT_TRUE(State().SongBoundarySeen);
  PressRecord();
  EXPECT_EQ(Status(), "Recording");
  rig.Run(30s);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(rig.Recordings(), ::testing::Contains("Rock/44 - Harbour/Moonlighters - Slow Tide.wav"));
}

TEST_F(RecordCommandsTest, WholeSongsWaitForTheNextBoundaryAndDropTheCaptureInHand) {
  rig.StartIdle();
  ForgetBoundary();
  PressRecord();
  EXPECT_EQ(Status(), "Waiting for next song");
  EXPECT_TRUE(State().WaitingForNextSong);
  EXPECT_FALSE(rig->State().Recording.SongBoundarySeen);
  rig.Run(60s);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(Status(), "Recording");
  EXPECT_FALSE(rig.Logged("Recorded: ")) << "what was cut at its beginning leaves no line";
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"Lanterns - North Pier\"")));
  EXPECT_EQ(State().RecordedCount, 1);
}

TEST_F(RecordCommandsTest, PlainRecordingStartsAtOnceWithTheCaptureInHand) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  ForgetBoundary();
  rig.Run(30s);
  PressRecord();
  EXPECT_EQ(Status(), "Recording");
  EXPECT_TRUE(State().StartPending);
  rig.Run(30s);
  EXPECT_FALSE(State().StartPending);
  rig.NextSong("Lanterns", "North Pier");
  ASSERT_THAT(rig.LogTexts(),
              Contains(StartsWith(
                  "Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"  Song length: 1:0")))
      << "the beginning before the press belongs to it";
}

TEST_F(RecordCommandsTest, PlainStopCutsAtOnceAndKeepsThePieceAsIncomplete) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  PressRecord();
  rig.Run(30s);
  PressStop();
  EXPECT_EQ(Status(), "");
  EXPECT_TRUE(State().StopPending);
  rig.Run(1s);
  EXPECT_FALSE(State().StopPending);
  EXPECT_FALSE(State().SongBoundarySeen);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"")));
}

TEST_F(RecordCommandsTest, StopWithWholeSongsCutsNothingAndTheSongInHandGoesAtItsEnd) {
  rig.StartIdle();
  PressRecord();
  rig.Run(30s);
  const std::int16_t slot = State().CaptureSlot;
  PressStop();
  rig.Run(2s);
  EXPECT_EQ(State().CaptureSlot, slot);
  EXPECT_FALSE(State().StopPending);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_FALSE(rig.Logged("Recorded: "));
  EXPECT_EQ(rig.Recordings().size(), 1U) << "only the capture in hand is there";
}

TEST_F(RecordCommandsTest, StopWhileWaitingWithWholeSongsLeavesTheCaptureAsInIdle) {
  rig.StartIdle();
  ForgetBoundary();
  PressRecord();
  const std::int16_t slot = State().CaptureSlot;
  PressStop();
  rig.Run(10s);
  EXPECT_EQ(State().CaptureSlot, slot);
  EXPECT_EQ(rig.Recordings().size(), 1U);
  EXPECT_FALSE(rig.Logged("ecorded: "));
}

TEST_F(RecordCommandsTest, StopWhileWaitingInPlainModeDisposesAtTheTickAsIncomplete) {
  rig.StartIdle();
  ForgetBoundary();
  PressRecord();
  ASSERT_EQ(Status(), "Waiting for next song");
  rig.Run(20s);
  EXPECT_TRUE(rig->Parts().Settings.Set("Integrel", "False").Done());
  PressStop();
  EXPECT_FALSE(rig.Logged("ecorded: ")) << "nothing at once";
  rig.Run(1s);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"")));
}

TEST_F(RecordCommandsTest, AStopWithinABoundaryLeavesTheFinishedSongWhole) {
  for (const char* wholeSongs : {"True", "False"}) {
    UnitRig unit;
    unit.Set("Integrel", wholeSongs);
    unit.StartIdle();
    unit->cmdRecord();
    unit.Run(30s);
    // The press falls into the wait for the sound, and the pump after the cut must not serve it.
    unit.Radio.Play(44, "Lanterns", "North Pier");
    ASSERT_TRUE(unit.Loop.RunUntil([&] { return unit->State().Radio.CurrentSong == "North Pier"; }, 5s));
    unit.Loop.AtHardware(300ms, [&] { unit.Loop.Post([&] { unit->Wishes().Stop(); }); });
    unit.Run(3s);
    EXPECT_THAT(unit.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"Moonlighters - Slow Tide\"")))
        << wholeSongs;
    EXPECT_EQ(unit.Window().lblRecording.Caption, "") << wholeSongs;
    EXPECT_FALSE(unit->State().Recording.RecordRequested);
    EXPECT_TRUE(unit.Window().cmdRecord.Enabled);
  }
}

TEST_F(RecordCommandsTest, ARecordWithinTheBoundaryOfAStopKeepsThePieceThatWasStopped) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  PressRecord();
  rig.Run(30s);
  PressStop();
  rig.Loop.Post([&] {});
  rig.Loop.AtHardware(1ms, [&] { rig.Loop.Post([&] { rig->Wishes().Record(); }); });
  rig.Run(3s);
  EXPECT_TRUE(State().RecordRequested);
  EXPECT_EQ(Status(), "Recording");
}

TEST_F(RecordCommandsTest, ANewSessionStartsItsCountersAtZero) {
  rig.StartIdle();
  PressRecord();
  rig.Run(30s);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_EQ(State().RecordedCount, 1);
  PressStop();
  PressRecord();
  EXPECT_EQ(State().RecordedCount, 0);
}

TEST_F(RecordCommandsTest, RecordLiftsAMute) {
  rig.StartIdle();
  EXPECT_TRUE(rig->SetMute(true));
  rig.Run(1s);
  EXPECT_TRUE(rig.Radio.Muted);
  PressRecord();
  EXPECT_FALSE(rig.Window().mnuMute);
  rig.Run(1s);
  EXPECT_FALSE(rig.Radio.Muted);
}

TEST_F(RecordCommandsTest, AMuteDuringRecordingIsRefusedWithASound) {
  rig.StartIdle();
  PressRecord();
  EXPECT_FALSE(rig->SetMute(true));
  EXPECT_THAT(rig.Sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_FALSE(rig.Radio.Muted);
}

TEST_F(RecordCommandsTest, TheTrayTipTellsStatusAndSong) {
  rig.StartIdle();
  PressRecord();
  EXPECT_EQ(rig.Window().TrayTip, "Kestrune: Recording\nMoonlighters - Slow Tide");
  PressStop();
  EXPECT_EQ(rig.Window().TrayTip, "Kestrune: \nMoonlighters - Slow Tide");
}

TEST_F(RecordCommandsTest, AnotherFormatStopsARecordingAndTheSameOneDoesNot) {
  rig.StartIdle();
  PressRecord();
  EXPECT_TRUE(rig->Parts().Settings.Set("FileFormat", "WAV").Done());
  EXPECT_EQ(Status(), "Recording");
  EXPECT_TRUE(rig->Parts().Settings.Set("FileFormat", "OGG").Done());
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(rig->State().Settings.FileFormat, "OGG");
  EXPECT_EQ(rig.Setting("FileFormat"), "OGG");
}

TEST_F(RecordCommandsTest, TheChannelStaysWhileRecordingStatusHolds) {
  rig.StartIdle();
  EXPECT_FALSE(State().GetRecordingStatus());
  ForgetBoundary();
  PressRecord();
  EXPECT_TRUE(State().GetRecordingStatus()) << "waiting counts, since recording has been asked for";
  PressStop();
  EXPECT_FALSE(State().GetRecordingStatus());
}

TEST_F(RecordCommandsTest, RecordAndAtOnceStopCutsThePieceTagsItAndLetsTheNextCaptureGoOn) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  ForgetBoundary();
  rig.Run(30s);
  const std::int16_t slot = State().CaptureSlot;
  const std::size_t tagged = rig.Audio.Tagged.size();
  PressRecord();
  PressStop();
  rig.Run(1s);
  const std::string kept = "/music/Rock/44 - Harbour/Moonlighters - Slow Tide (Incomplete).wav";
  ASSERT_TRUE(rig.Files.Exists(kept));
  EXPECT_NE(State().CaptureSlot, slot);
  EXPECT_FALSE(rig.Audio.CaptureFiles[static_cast<std::size_t>(slot)]->IsOpen());
  EXPECT_EQ(rig.Audio.Tagged.size(), tagged + 1);
  EXPECT_FALSE(State().StopPending);
  EXPECT_FALSE(State().StartPending);
}

TEST_F(RecordCommandsTest, TheFirstSongOfASessionBearsTheSessionsStartAndCount) {
  rig.Set("FilenameFormat", "%d\\%n %s");
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  PressRecord();
  rig.Run(2min);
  rig.NextSong("Cellar", "Blue Door");
  rig.Run(2min);
  rig.NextSong("Lanterns", "South Pier");
  PressStop();
  ASSERT_EQ(State().RecordedCount, 2);
  rig.Run(10min);
  rig.NextSong("Cellar", "Red Door");
  const std::string session = base::FormatDate(State().SongBoundaryTime, "yyyymmdd_hhnn");
  rig.Run(2min);
  PressRecord();
  rig.Run(2min);
  rig.NextSong("Moonlighters", "Slow Tide");
  rig.Run(2min);
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(rig.Recordings(),
              ::testing::IsSupersetOf({session + "/000 Red Door.wav", session + "/000 Slow Tide.wav"}));
}

TEST_F(RecordCommandsTest, APieceBegunWithinASongBearsTheTimeOfThePress) {
  rig.Set("FilenameFormat", "%d %n %s");
  rig.Set("Integrel", "False");
  rig.StartIdle();
  ForgetBoundary();
  rig.Run(10min);
  PressRecord();
  const std::string session = base::FormatDate(rig.Loop.Now(), "yyyymmdd_hhnn");
  rig.Run(2min);
  PressStop();
  rig.Run(1s);
  EXPECT_THAT(rig.Recordings(), ::testing::Contains(session + " 000 Slow Tide (Incomplete).wav"));
}

TEST_F(RecordCommandsTest, APieceThatWasStoppedLeavesNoBoundaryToRecordFrom) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  ASSERT_TRUE(State().SongBoundarySeen);
  PressRecord();
  rig.Run(30s);
  PressStop();
  rig.Run(1s);
  EXPECT_FALSE(State().SongBoundarySeen) << "what follows the piece began within the song";
  PressRecord();
  EXPECT_TRUE(State().Incomplete);
}

}  // namespace
}  // namespace kestrune::test
