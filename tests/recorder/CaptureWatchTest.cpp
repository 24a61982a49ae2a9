// What becomes of the sound when the disk fails, or when nobody wants it for long, on a whole unit.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class CaptureWatchTest : public ::testing::Test {
 protected:
  CaptureWatchTest() {
    rig.Set("FilenameFormat", "%a - %s");
    rig.Set("MinSongLength", "5");
  }
  void Record() {
    rig.StartIdle();
    rig->cmdRecord();
    rig.Run(60s);
  }
  [[nodiscard]] std::vector<std::string> Finished() const {
    std::vector<std::string> names = rig.Recordings();
    std::erase_if(names, [](const std::string& name) { return name.starts_with("Capture"); });
    return names;
  }
  [[nodiscard]] int Lines(std::string_view beginning) const {
    const auto lines = rig.LogTexts();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
  }
  [[nodiscard]] const recorder::CaptureRecord& InHand() const {
    const recorder::RecordingState& state = rig.Unit->State().Recording;
    return state.CaptureSlots.at(static_cast<std::size_t>(state.CaptureSlot));
  }
  [[nodiscard]] int FilesMade() const {
    std::size_t made = 0;
    for (const RecordingCaptureFile* file : rig.Audio.CaptureFiles) made += file->Written.size();
    return static_cast<int>(made);
  }

  UnitRig rig;
};

TEST_F(CaptureWatchTest, TheDiskFillsInMidSongAndBothPiecesAreKept) {
  rig.Set("SaveDuplicates", "False");
  Record();
  rig.Files.DiskFull = true;
  rig.Run(45s);
  EXPECT_THAT(Finished(), ElementsAre("Moonlighters - Slow Tide (Incomplete).wav"))
      << "closed and named as soon as no more can be written";
  EXPECT_EQ(Lines("Cannot write"), 1);
  EXPECT_EQ(Lines("Cannot create"), 0) << "one failure, one line";
  EXPECT_EQ(Lines("Error"), 0);
  EXPECT_EQ(rig.Window().Warning, "The recording cannot be written: No space left on device.");
  rig.Files.DiskFull = false;
  rig.Run(30s);
  EXPECT_THAT(rig.LogTexts(), Contains("Writing goes on after 0:52"));
  EXPECT_EQ(rig.Window().Warning, "");
  EXPECT_EQ(rig.Window().lblRecording.Caption, "Recording");
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(Finished(), ElementsAre("Moonlighters - Slow Tide (Incomplete).wav",
                                      "Moonlighters - Slow Tide1 (Incomplete).wav"));
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(Finished(), Contains("Lanterns - North Pier.wav")) << "the next song is whole again";
  EXPECT_EQ(rig->State().Recording.RecordedCount, 3);
}

TEST_F(CaptureWatchTest, AnotherFileIsTriedEveryTenSeconds) {
  Record();
  const int before = FilesMade();
  rig.Audio.CaptureFiles[0]->FailWrites = rig.Audio.CaptureFiles[1]->FailWrites = true;
  rig.Run(60s);
  EXPECT_THAT(FilesMade() - before, ::testing::AllOf(::testing::Ge(6), ::testing::Le(8)));
  EXPECT_EQ(Lines("Cannot write"), 1);
  EXPECT_EQ(Lines("Recorded: "), 1);
  EXPECT_EQ(Lines("Not Recorded: "), 0) << "the tries leave no lines";
}

TEST_F(CaptureWatchTest, SongsThatChangeMeanwhileAreAccountedFor) {
  Record();
  rig.Files.DiskFull = true;
  rig.Run(5s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.NextSong("Cellar", "Blue Door");
  rig.Run(5s);
  rig.Files.DiskFull = false;
  rig.Run(60s);
  rig.NextSong("Harbour", "Grey Gulls");
  EXPECT_THAT(rig.LogTexts(),
              Contains("Not Recorded: Channel 44  \"Lanterns - North Pier (Incomplete)\"  Song length: "
                       "0:00, Minimum length: 0:05"));
  EXPECT_THAT(Finished(), ElementsAre("Cellar - Blue Door (Incomplete).wav",
                                      "Moonlighters - Slow Tide (Incomplete).wav"));
  EXPECT_EQ(Lines("Cannot"), 1);
  EXPECT_EQ(Lines("No sound"), 0) << "the sound is not to blame";
}

TEST_F(CaptureWatchTest, AStopWhileTheDiskIsFullEndsAllTheSame) {
  rig.Set("Integrel", "False");
  Record();
  rig.Files.DiskFull = true;
  rig.Run(20s);
  rig->cmdStop();
  rig.Run(5s);
  EXPECT_EQ(rig.Window().lblRecording.Caption, "");
  EXPECT_THAT(Finished(), SizeIs(1));
}

TEST_F(CaptureWatchTest, WhatIsOnTheDiskAlreadyIsNeverDeleted) {
  rig.Files.Put("/music/Old - Song.wav", "of last year");
  Record();
  rig.Files.DiskFull = true;
  rig.Run(10min);
  EXPECT_EQ(rig.Files.Text("/music/Old - Song.wav"), "of last year");
}

TEST_F(CaptureWatchTest, AnIdleCaptureBeginsAnewAfterTheMinutesOfItsSetting) {
  rig.Set("IdleCaptureMinutes", "5");
  rig.StartIdle();
  const int before = FilesMade();
  rig.Run(4min);
  EXPECT_EQ(FilesMade(), before);
  rig.Run(2min);
  EXPECT_EQ(FilesMade(), before + 1);
  EXPECT_LT(InHand().LengthMs, 120000);
  EXPECT_THAT(Finished(), IsEmpty());
  EXPECT_THAT(rig.Recordings(), SizeIs(1)) << "the old one is gone";
  EXPECT_EQ(Lines("Not Recorded"), 0);
  rig->cmdRecord();
  EXPECT_EQ(rig.Window().lblRecording.Caption, "Waiting for next song")
      << "the capture in hand no longer has the song's beginning";
}

TEST_F(CaptureWatchTest, ACaptureThatSomebodyWantsGrowsAsLongAsItsSong) {
  rig.Set("IdleCaptureMinutes", "5");
  Record();
  const int before = FilesMade();
  rig.Run(15min);
  EXPECT_EQ(FilesMade(), before);
}

TEST_F(CaptureWatchTest, WaitingForTheNextSongIsIdleToo) {
  rig.Set("IdleCaptureMinutes", "5");
  rig.StartIdle();
  rig->SetChannelNumber(45);
  rig.Run(5s);
  rig->cmdRecord();
  ASSERT_EQ(rig.Window().lblRecording.Caption, "Waiting for next song");
  const int before = FilesMade();
  rig.Run(6min);
  EXPECT_EQ(FilesMade(), before + 1);
  EXPECT_EQ(rig.Window().lblRecording.Caption, "Waiting for next song");
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(30s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(Finished(), ElementsAre("Lanterns - North Pier.wav"));
}

TEST_F(CaptureWatchTest, ZeroMinutesOrNoWatchLeavesIdleCapturesAlone) {
  for (const auto& [key, value] : {std::pair("IdleCaptureMinutes", "0"), std::pair("Watch", "False")}) {
    UnitRig own;
    own.Set("IdleCaptureMinutes", "5");
    own.Set(key, value);
    own.StartIdle();
    const auto made = [&own] {
      return own.Audio.CaptureFiles[0]->Written.size() + own.Audio.CaptureFiles[1]->Written.size();
    };
    const std::size_t before = made();
    own.Run(15min);
    EXPECT_EQ(made(), before) << key;
  }
}

TEST_F(CaptureWatchTest, ACloseWhileTheDiskIsFullLeavesNoTemporaryFile) {
  Record();
  rig.Files.DiskFull = true;
  rig.Run(20s);
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ElementsAre("Moonlighters - Slow Tide (Incomplete).wav"));
}

}  // namespace
}  // namespace kestrune::test
