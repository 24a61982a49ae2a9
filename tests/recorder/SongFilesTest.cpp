#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "recorder/SongFiles.h"
#include "support/FakeFileSync.h"
#include "support/MemoryFiles.h"

namespace kestrune::recorder {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class KeptLog final : public base::Journal {
 public:
  void DoLog(std::string_view text) override { Lines.emplace_back(text); }
  void DebugPrint(std::string_view /*text*/) override {}
  [[nodiscard]] bool Tracing() const override { return false; }
  void Trace(std::string_view /*text*/) override {}
  std::vector<std::string> Lines;
};

class SongFilesTest : public ::testing::Test {
 protected:
  SongFilesTest() {
    files.Put("/music/Capture1.mp3", "sound");
    capture.Extension = "mp3";
    capture.Folder = "/music/";
    capture.Outcome.File = "/music/Capture1.mp3";
  }
  MovedSong Move(const std::string& target) {
    return songFiles.Move(capture, target, base::DateValue::FromCivil(2005, 1, 2, 3, 4, 5));
  }

  test::MemoryFiles files;
  test::FakeFileSync sync;
  KeptLog log;
  SongFiles songFiles{files, sync, log};
  CaptureRecord capture;
};

TEST_F(SongFilesTest, AMovedSongHasItsNameAndGoesToTheDisk) {
  const MovedSong moved = Move("/music/song.mp3");
  EXPECT_EQ(moved.Where, MovedSong::To::FinalName);
  EXPECT_EQ(files.Text("/music/song.mp3"), "sound");
  EXPECT_EQ(capture.Outcome.FinalName, "/music/song.mp3");
  EXPECT_EQ(capture.Outcome.File, "");
  EXPECT_THAT(sync.Synced, ElementsAre("/music/song.mp3"));
}

TEST_F(SongFilesTest, ANameInUseMovesNothing) {
  files.Put("/music/song.mp3", "first");
  EXPECT_EQ(Move("/music/song.mp3").Where, MovedSong::To::NameTaken);
  EXPECT_EQ(files.Text("/music/song.mp3"), "first");
  EXPECT_EQ(capture.Outcome.File, "/music/Capture1.mp3");
  EXPECT_THAT(sync.Synced, IsEmpty());
}

TEST_F(SongFilesTest, AFailedRenameGivesTheSongANameOfItsOwn) {
  files.FailNext(test::FileOperation::Rename);
  const MovedSong moved = Move("/music/song.mp3");
  EXPECT_EQ(moved.Where, MovedSong::To::OwnName);
  EXPECT_EQ(moved.Path, "/music/Kept 20050102_030405.mp3");
  EXPECT_EQ(moved.Cause, "Input/output error");
  EXPECT_EQ(files.Text(moved.Path), "sound");
  EXPECT_THAT(sync.Synced, ElementsAre(moved.Path));
}

TEST_F(SongFilesTest, TwoSuchNamesOfOneSecondDiffer) {
  files.Put("/music/Kept 20050102_030405.mp3", "other");
  files.FailNext(test::FileOperation::Rename);
  EXPECT_EQ(Move("/music/song.mp3").Path, "/music/Kept 20050102_030406.mp3");
  EXPECT_EQ(files.Text("/music/Kept 20050102_030405.mp3"), "other");
}

TEST_F(SongFilesTest, ASongThatCannotBeRenamedAtAllStaysAndIsKept) {
  files.FailAlways(test::FileOperation::Rename);
  const MovedSong moved = Move("/music/song.mp3");
  EXPECT_EQ(moved.Where, MovedSong::To::OwnName);
  EXPECT_EQ(moved.Path, "/music/Capture1.mp3");
  EXPECT_TRUE(songFiles.IsKept("/music/Capture1.mp3"));
  songFiles.RemoveLeftovers("/music/", "Capture1.*");
  songFiles.Discard(capture);
  EXPECT_EQ(files.Text("/music/Capture1.mp3"), "sound");
}

TEST_F(SongFilesTest, ACaptureThatIsGoneGoesNowhere) {
  base::Ignored(files.Remove("/music/Capture1.mp3"));
  const MovedSong moved = Move("/music/song.mp3");
  EXPECT_EQ(moved.Where, MovedSong::To::Nowhere);
  EXPECT_EQ(moved.Cause, "No such file or directory");
  EXPECT_EQ(capture.Outcome.FinalName, "");
}

TEST_F(SongFilesTest, LeftoversGoButNotWhatAnotherProcessHolds) {
  files.Put("/music/Capture1.wav", "left");
  files.HoldByAnother("/music/Capture1.mp3");
  songFiles.RemoveLeftovers("/music/", "Capture1.*");
  EXPECT_THAT(files.AllFiles(), ElementsAre("/music/Capture1.mp3"));
}

TEST_F(SongFilesTest, AFolderThatCannotBeMadeIsLoggedWithTheReason) {
  files.MakeUnwritable("/music");
  songFiles.MakeFolder("/music/Rock/44/");
  EXPECT_THAT(log.Lines, ElementsAre("Cannot create the folder \"/music/Rock\": Permission denied"));
}

TEST_F(SongFilesTest, AFolderThatIsThereIsNoFailure) {
  songFiles.MakeFolder("/music/Rock/44/");
  songFiles.MakeFolder("/music/Rock/44/");
  EXPECT_TRUE(files.IsFolder("/music/Rock/44"));
  EXPECT_THAT(log.Lines, IsEmpty());
}

TEST_F(SongFilesTest, AFailureOfTheDiskIsLogged) {
  sync.Fail("/music/song.mp3", "Input/output error");
  EXPECT_THAT(log.Lines, ElementsAre("\"/music/song.mp3\" may not be on the disk: Input/output error"));
}

}  // namespace
}  // namespace kestrune::recorder
