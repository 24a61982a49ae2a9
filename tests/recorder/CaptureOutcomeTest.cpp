// What becomes of captures on a whole unit when files, names and disk do not play along.
#include <algorithm>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CaptureOutcomeTest : public ::testing::Test {
 protected:
  CaptureOutcomeTest() { rig.Set("FilenameFormat", "%a - %s"); }

  /// Records from the next song on.
  void Record() {
    rig->cmdRecord();
    rig.Run(60s);
  }
  [[nodiscard]] const recorder::CaptureOutcome& InHand() {
    const recorder::RecordingState& state = rig->State().Recording;
    return state.CaptureSlots.at(static_cast<std::size_t>(state.CaptureSlot)).Outcome;
  }
  [[nodiscard]] std::vector<std::string> Finished() const {
    std::vector<std::string> names = rig.Recordings();
    std::erase_if(names, [](const std::string& name) { return name.starts_with("Capture"); });
    return names;
  }
  /// Log lines about songs and files, without the song's quoted name.
  [[nodiscard]] int Lines(std::string_view beginning) const {
    const auto lines = rig.LogTexts();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
  }

  UnitRig rig;
};

TEST_F(CaptureOutcomeTest, ASongIsBroughtToTheDiskOnceItHasItsName) {
  rig.StartIdle();
  Record();
  EXPECT_THAT(rig.FileSync.Synced, IsEmpty());
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(rig.FileSync.Synced, ElementsAre("/music/Moonlighters - Slow Tide.wav"));
  EXPECT_EQ(rig->State().Recording.CaptureSlots.at(1).Outcome.FinalName,
            "/music/Moonlighters - Slow Tide.wav");
}

TEST_F(CaptureOutcomeTest, AFileThatAnotherProcessHoldsIsLeftAloneAndTheNextNumberTaken) {
  rig.Files.Put("/music/Capture0.wav", "of another unit");
  rig.Files.Put("/music/Capture1.wav", "of another unit");
  rig.Files.HoldByAnother("/music/Capture0.wav");
  rig.Files.HoldByAnother("/music/Capture1.wav");
  rig.StartIdle();
  EXPECT_THAT(rig.LogTexts(),
              Contains("\"/music/Capture1.wav\" is in use, capturing to \"/music/Capture3.wav\" instead"));
  Record();
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(rig.LogTexts(),
              Contains("\"/music/Capture0.wav\" is in use, capturing to \"/music/Capture2.wav\" instead"));
  EXPECT_THAT(rig.Recordings(),
              ElementsAre("Capture0.wav", "Capture1.wav", "Capture2.wav", "Moonlighters - Slow Tide.wav"));
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ElementsAre("Capture0.wav", "Capture1.wav", "Moonlighters - Slow Tide.wav"));
  EXPECT_EQ(rig.Files.Text("/music/Capture0.wav"), "of another unit");
  EXPECT_EQ(rig.Files.Text("/music/Capture1.wav"), "of another unit");
}

TEST_F(CaptureOutcomeTest, ANamedUnitAddsItsCharacterAndLeavesTheFilesOfOthers) {
  rig.Environment.Command = "/multi 2";
  for (const auto& [key, value] : std::map<std::string, std::string>{{"FileFormat", "WAV"},
                                                                     {"WAV_Frequency", "1000"},
                                                                     {"WAV_Channels", "1"},
                                                                     {"FileDir", "/music/"},
                                                                     {"FilenameFormat", "%a - %s"},
                                                                     {"CheckUpdatesAtStartup", "False"},
                                                                     {"LegalAgreement", "True"},
                                                                     {"ShelfSongs", "0"},
                                                                     {"PortNum", "1"}}) {
    rig.Store.Put("Lorimel", "Kestrune2", key, value);
  }
  rig.StartIdle();
  rig.Files.Put("/music/Capture0.wav", "of the single unit");
  rig.Files.Put("/music/Capture1-3.wav", "of unit 3");
  EXPECT_THAT(rig.Recordings(), Contains("Capture1-2.wav"));
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(rig.Recordings(), ElementsAre("Capture0-2.wav", "Capture0.wav", "Capture1-3.wav"));
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ElementsAre("Capture0.wav", "Capture1-3.wav"));
}

TEST_F(CaptureOutcomeTest, APlantedLinkIsNotWrittenThrough) {
  rig.Files.Put("/home/user/diary", "private");
  rig.Files.PlantLink("/music/Capture1.wav", "/home/user/diary");
  rig.StartIdle();
  rig.Run(10s);
  EXPECT_EQ(rig.Files.Text("/home/user/diary"), "private");
  EXPECT_THAT(rig.Recordings(), ElementsAre("Capture1.wav"));
}

TEST_F(CaptureOutcomeTest, AFullDiskIsLoggedAtOnceAndTheSongIsIncomplete) {
  rig.Set("Watch", "False");
  rig.Set("MinSongLength", "0");
  rig.StartIdle();
  Record();
  rig.Files.DiskFull = true;
  rig.Run(60s);
  EXPECT_EQ(Lines("Cannot write \"/music/Capture1.wav\": No space left on device"), 1)
      << "once, not for every block";
  EXPECT_EQ(InHand().WriteFailure, "No space left on device");
  EXPECT_EQ(rig.Rules->Explanation(), "This song is not being written: No space left on device.");
  rig.Files.DiskFull = false;
  rig.NextSong("Lanterns", "North Pier");
  EXPECT_THAT(Finished(), ElementsAre("Moonlighters - Slow Tide (Incomplete).wav"));
}

TEST_F(CaptureOutcomeTest, ASongWithoutAnySoundIsNotCalledRecorded) {
  rig.Set("Watch", "False");
  rig.Set("MinSongLength", "0");
  rig.StartIdle();
  Record();
  rig.Files.DiskFull = true;
  rig.NextSong("Lanterns", "North Pier");  // its file cannot be created
  rig.Files.DiskFull = false;
  rig.Run(60s);
  EXPECT_EQ(Lines("Error -1 creating output file"), 1);
  EXPECT_EQ(Lines("Cannot create \"/music/Capture0.wav\": No space left on device"), 1);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_EQ(Lines("Recorded: "), 1);
  EXPECT_THAT(rig.LogTexts(),
              Contains("Not Recorded: Channel 44  \"Lanterns - North Pier\"  Song length: 0:00, no sound was "
                       "recorded: No space left on device"));
}

TEST_F(CaptureOutcomeTest, ASongThatCannotBeRenamedOutlivesTheNextCapturesAndTheClose) {
  rig.StartIdle();
  Record();
  rig.Files.FailAlways(FileOperation::Rename);
  rig.NextSong("Lanterns", "North Pier");
  const std::string song = rig.Files.Text("/music/Capture1.wav");
  ASSERT_GT(song.size(), 1000U);
  EXPECT_EQ(Lines("Recorded: "), 0);
  EXPECT_EQ(rig->State().Recording.RecordedCount, 0);
  rig.Files.Heal();
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(rig.LogTexts(),
              Contains("\"/music/Capture1.wav\" is in use, capturing to \"/music/Capture3.wav\" instead"));
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ElementsAre("Capture1.wav", "Lanterns - North Pier.wav"));
  EXPECT_EQ(rig.Files.Text("/music/Capture1.wav"), song);
}

TEST_F(CaptureOutcomeTest, ASongThatLacksSoundIsIncompleteAndTheLogSaysWhereItIsMissing) {
  rig.StartIdle();
  Record();
  rig.Sound.Die(20s);
  rig.Run(60s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(Finished(),
              ElementsAre("Lanterns - North Pier.wav", "Moonlighters - Slow Tide (Incomplete).wav"));
  EXPECT_EQ(Lines("20.0 s of sound are missing from \"Moonlighters - Slow Tide\", the first at 1:0"), 1);
}

TEST_F(CaptureOutcomeTest, ASongThatTheDeviceMissedAltogetherIsNotKept) {
  rig.Set("MinSongLength", "0");
  rig.StartIdle();
  Record();
  rig.Sound.Die(120s);
  rig.Run(20s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(50s);
  rig.NextSong("Cellar", "Blue Door");
  rig.Run(120s);
  rig.NextSong("Quays", "Low Water");
  EXPECT_THAT(Finished(), ElementsAre("Cellar - Blue Door (Incomplete).wav",
                                      "Moonlighters - Slow Tide (Incomplete).wav"));
  EXPECT_THAT(rig.LogTexts(), Contains("Not Recorded: Channel 44  \"Lanterns - North Pier (Incomplete)\"  "
                                       "Song length: 0:00, no sound came"));
}

}  // namespace
}  // namespace kestrune::test
