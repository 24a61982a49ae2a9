#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shelf/Shelf.h"
#include "support/MemoryFiles.h"

namespace kestrune::shelf {
namespace {

using platform::SongFate;
using test::FileOperation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kFloor = 1e9;

class ShelfTest : public ::testing::Test {
 protected:
  ShelfTest() {
    files.MakeFolders("/music");
    files.Now = [this] { return now; };
    Open();
  }

  void Open() { shelf.Open({.Wished = kPlace, .BesideRecordings = kPlace}, {"mp3", "wav"}); }

  /// A capture of so many bytes ends, and is put on the shelf.
  bool Put(const std::string& name, std::size_t bytes = 10) {
    now = now.AddSeconds(60);
    files.Put("/music/Capture0.mp3", std::string(bytes, 's'));
    files.Calls.clear();
    ShelvedSong song;
    song.Ended = now;
    song.Artist = "Artist";
    song.Title = name;
    const bool put = shelf.Put("/music/Capture0.mp3", name, "mp3", song, bounds);
    EXPECT_EQ(files.Exists("/music/Capture0.mp3"), !put);
    return put;
  }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const ShelvedSong& song : shelf.Songs()) names.push_back(song.Path.substr(song.Path.rfind('/') + 1));
    return names;
  }
  std::vector<std::string> OnDisk(const std::string& folder) { return files.Matching(folder, "*"); }

  static constexpr const char* kPlace = "/music/Kestrune/Shelf/";
  test::MemoryFiles files;
  base::DateValue now = base::DateValue::FromCivil(2026, 11, 1);
  std::vector<std::string> gone;
  Shelf shelf{files, [this](const std::string& path) { gone.push_back(path); }};
  Bounds bounds{.Songs = 3, .Bytes = 1000, .FreeBytes = kFloor};
};

TEST_F(ShelfTest, WhatIsPutLiesThereUnderItsNameTheNewestFirst) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B", 20));
  EXPECT_THAT(Names(), ElementsAre("B.mp3", "A.mp3"));
  EXPECT_THAT(OnDisk(kPlace), ElementsAre("A.mp3", "B.mp3"));
  EXPECT_FALSE(files.Exists("/music/Capture0.mp3"));
  EXPECT_EQ(shelf.Songs()[0].Bytes, 20);
  EXPECT_EQ(shelf.Songs()[0].Title, "B");
  EXPECT_EQ(shelf.Bytes(), 30);
  EXPECT_THAT(gone, IsEmpty());
}

TEST_F(ShelfTest, ASongMoreThanTheCountMakesTheOldestGo) {
  for (const char* name : {"A", "B", "C", "D", "E"}) EXPECT_TRUE(Put(name));
  EXPECT_THAT(Names(), ElementsAre("E.mp3", "D.mp3", "C.mp3"));
  EXPECT_THAT(OnDisk(kPlace), ElementsAre("C.mp3", "D.mp3", "E.mp3"));
  EXPECT_THAT(gone, ElementsAre("/music/Kestrune/Shelf/A.mp3", "/music/Kestrune/Shelf/B.mp3"));
}

TEST_F(ShelfTest, MoreThanItsBytesMakesAsManyGoAsAreNeeded) {
  EXPECT_TRUE(Put("A", 400));
  EXPECT_TRUE(Put("B", 400));
  EXPECT_TRUE(Put("C", 200));
  EXPECT_THAT(gone, IsEmpty()) << "exactly the bound";
  EXPECT_TRUE(Put("D", 401));
  EXPECT_THAT(Names(), ElementsAre("D.mp3", "C.mp3"));
  EXPECT_EQ(shelf.Bytes(), 601);
}

TEST_F(ShelfTest, ASongLargerThanTheShelfMakesNobodyGo) {
  EXPECT_TRUE(Put("A"));
  EXPECT_FALSE(Put("B", 1001));
  EXPECT_THAT(Names(), ElementsAre("A.mp3"));
  EXPECT_TRUE(Put("C", 1000));
  EXPECT_THAT(Names(), ElementsAre("C.mp3"));
}

TEST_F(ShelfTest, WhileTheDiskHasTooLittleRoomTheOldestGoAndNoneComesIn) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  EXPECT_TRUE(Put("C"));
  // One song that goes is enough.
  files.Free = kFloor - 10;
  EXPECT_TRUE(Put("D"));
  EXPECT_THAT(Names(), ElementsAre("D.mp3", "C.mp3", "B.mp3"));
  files.Free = kFloor - 100;
  EXPECT_FALSE(Put("E"));
  EXPECT_THAT(Names(), IsEmpty());
  files.Free = kFloor;
  EXPECT_TRUE(Put("F"));
  // A volume that does not tell.
  files.Free = -1;
  EXPECT_TRUE(Put("G"));
}

TEST_F(ShelfTest, TheDiskIsAskedOnceASong) {
  EXPECT_TRUE(Put("A"));
  files.Asked = 0;
  EXPECT_TRUE(Put("B"));
  EXPECT_EQ(files.Asked, 1);
}

TEST_F(ShelfTest, ASongCostsOneRenameAndOneRemovalAtMost) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  EXPECT_TRUE(Put("D"));
  EXPECT_THAT(files.Calls, ElementsAre("Rename /music/Capture0.mp3 /music/Kestrune/Shelf/D.mp3",
                                       "Remove /music/Kestrune/Shelf/A.mp3"));
  // A name that is known to be taken is not tried.
  EXPECT_TRUE(Put("D"));
  EXPECT_THAT(files.Calls, ElementsAre("Rename /music/Capture0.mp3 /music/Kestrune/Shelf/D (2).mp3",
                                       "Remove /music/Kestrune/Shelf/B.mp3"));
}

TEST_F(ShelfTest, WhatSomebodyListensToStaysAndTheNextOldestGoes) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  files.OpenByAnother("/music/Kestrune/Shelf/A.mp3");
  EXPECT_TRUE(Put("D"));
  EXPECT_THAT(Names(), ElementsAre("D.mp3", "C.mp3", "A.mp3"));
  files.Free = kFloor - 15;
  EXPECT_TRUE(Put("E"));
  EXPECT_THAT(Names(), ElementsAre("E.mp3", "A.mp3"));
  EXPECT_TRUE(files.Exists("/music/Kestrune/Shelf/A.mp3"));
}

TEST_F(ShelfTest, IfAllAreListenedToNoneComesInAndNoneGoes) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  for (const ShelvedSong& song : shelf.Songs()) files.OpenByAnother(song.Path);
  EXPECT_FALSE(Put("D"));
  EXPECT_THAT(Names(), ElementsAre("C.mp3", "B.mp3", "A.mp3"));
}

TEST_F(ShelfTest, IfNothingCanBeRemovedItIsNeverMoreThanOneSongAboveItsBounds) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  files.FailAlways(FileOperation::Remove);
  EXPECT_TRUE(Put("D"));
  EXPECT_EQ(shelf.Songs().size(), 4U);
  EXPECT_FALSE(Put("E"));
  EXPECT_EQ(shelf.Songs().size(), 4U);
  EXPECT_EQ(OnDisk(kPlace).size(), 4U);
  files.Heal();
  EXPECT_TRUE(Put("F"));
  EXPECT_THAT(Names(), ElementsAre("F.mp3", "D.mp3", "C.mp3"));
}

TEST_F(ShelfTest, FilesOfOneNameAreNumbered) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("A"));
  // One that only the disk knows.
  files.Put("/music/Kestrune/Shelf/A (3).mp3", "other");
  EXPECT_TRUE(Put("A"));
  EXPECT_THAT(Names(), ElementsAre("A (4).mp3", "A (2).mp3", "A.mp3"));
  EXPECT_EQ(files.Text("/music/Kestrune/Shelf/A (3).mp3"), "other");
}

TEST_F(ShelfTest, ACaptureThatCannotBeMovedStaysWhereItIs) {
  files.FailAlways(FileOperation::CreateFolder);
  EXPECT_FALSE(Put("A"));
  files.Heal();
  files.FailAlways(FileOperation::Replace);
  EXPECT_FALSE(Put("A")) << "without its mark the folder would not be the shelf's after a restart";
  files.Heal();
  files.FailAlways(FileOperation::Rename);
  EXPECT_FALSE(Put("A"));
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_FALSE(shelf.Put("/music/none.mp3", "N", "mp3", {}, bounds));
  files.Heal();
  shelf.Close();
  EXPECT_FALSE(Put("A"));
}

TEST_F(ShelfTest, AFolderThatSomebodyRemovedIsMadeAgain) {
  EXPECT_TRUE(Put("A"));
  ASSERT_TRUE(files.Remove("/music/Kestrune/Shelf/A.mp3"));
  ASSERT_TRUE(files.Remove("/music/Kestrune/Shelf/.kestrune-shelf"));
  ASSERT_TRUE(files.RemoveFolder("/music/Kestrune/Shelf"));
  EXPECT_TRUE(Put("B"));
  shelf.Follow();
  EXPECT_THAT(Names(), ElementsAre("B.mp3"));
  EXPECT_THAT(gone, ElementsAre("/music/Kestrune/Shelf/A.mp3"));
}

TEST_F(ShelfTest, FromAnotherVolumeItLiesBesideTheRecordings) {
  files.MakeFolders("/disk");
  files.PutOnOtherVolume("/disk");
  const Places places{.Wished = "/disk/shelf/", .BesideRecordings = kPlace};
  shelf.Open(places, {"mp3"});
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  EXPECT_THAT(files.Calls, ElementsAre("Rename /music/Capture0.mp3 /music/Kestrune/Shelf/B.mp3"))
      << "the other volume is tried once";
  EXPECT_THAT(OnDisk(kPlace), ElementsAre("A.mp3", "B.mp3"));
  // Both places together are the shelf.
  files.Put("/disk/shelf/C.mp3", "sound");
  shelf.Open(places, {"mp3"});
  EXPECT_THAT(Names(), ElementsAre("C.mp3", "B.mp3", "A.mp3"));
}

TEST_F(ShelfTest, AWishedFolderOnTheSameVolumeIsTheShelf) {
  shelf.Open({.Wished = "/music/other/place/", .BesideRecordings = kPlace}, {"mp3"});
  EXPECT_TRUE(Put("A"));
  EXPECT_THAT(OnDisk("/music/other/place"), ElementsAre("A.mp3"));
}

TEST_F(ShelfTest, AFolderWithOtherFilesIsNeverTheShelf) {
  files.Put("/music/mine/Old Song.mp3", "mine");
  shelf.Open({.Wished = "/music/mine/", .BesideRecordings = kPlace}, {"mp3"});
  EXPECT_THAT(Names(), IsEmpty());
  for (const char* name : {"A", "B", "C", "D"}) EXPECT_TRUE(Put(name));
  EXPECT_EQ(shelf.RefusedFolder(), "/music/mine/");
  EXPECT_THAT(OnDisk("/music/mine"), ElementsAre("Old Song.mp3"));
  EXPECT_THAT(OnDisk(kPlace), ElementsAre("B.mp3", "C.mp3", "D.mp3"));
  files.Put("/music/Kestrune/Own/x.txt", "");
  shelf.Open({.Wished = "/music/Kestrune/Own/", .BesideRecordings = "/music/Kestrune/Own/"}, {"mp3"});
  EXPECT_FALSE(Put("E"));
}

TEST_F(ShelfTest, AnotherStartFindsTheSameShelf) {
  for (const char* name : {"C", "A - x (Incomplete)", "B"}) EXPECT_TRUE(Put(name));
  files.Put("/music/Kestrune/Shelf/cover.jpg", "no song");
  files.Put("/music/Kestrune/Shelf/mp3", "no song either");
  const std::vector<std::string> before = Names();
  const base::DateValue ended = shelf.Songs()[1].Ended;
  Open();
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(shelf.Bytes(), 30);
  EXPECT_EQ(shelf.Songs()[1].Ended, ended);
  EXPECT_EQ(shelf.Songs()[1].Artist, "A");
  EXPECT_EQ(shelf.Songs()[1].Title, "x");
  EXPECT_TRUE(shelf.Songs()[1].Incomplete);
  EXPECT_EQ(shelf.Songs()[1].Fate, SongFate::NotWanted);
}

TEST_F(ShelfTest, WhatTheRecordKnowsIsTakenFromThere) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  EXPECT_TRUE(Put("C"));
  Open();
  platform::HistorySong row;
  row.File = "/music/Kestrune/Shelf/A.mp3";
  row.Ended = now.AddSeconds(-3);
  row.LengthMs = 200000;
  row.Channel = 44;
  row.Station = "Harbour";
  row.Genre = "Rock";
  row.Artist = "Moonlighters";
  row.Title = "Slow: Tide";
  row.Fate = SongFate::TooShort;
  platform::HistorySong kept = row;
  kept.File = "/music/Kestrune/Shelf/B.mp3";
  kept.Fate = SongFate::Kept;
  platform::HistorySong older = row;
  older.Title = "Older";
  shelf.Describe({row, kept, older});
  ASSERT_THAT(Names(), ElementsAre("C.mp3", "A.mp3")) << "what was kept is not on the shelf";
  EXPECT_TRUE(files.Exists("/music/Kestrune/Shelf/B.mp3"));
  const ShelvedSong& song = shelf.Songs()[1];
  EXPECT_EQ(song.Ended, row.Ended);
  EXPECT_EQ(song.LengthMs, 200000);
  EXPECT_EQ(song.Channel, 44);
  EXPECT_EQ(song.Station, "Harbour");
  EXPECT_EQ(song.Genre, "Rock");
  EXPECT_EQ(song.Artist, "Moonlighters");
  EXPECT_EQ(song.Title, "Slow: Tide");
  EXPECT_EQ(song.Fate, SongFate::TooShort);
  EXPECT_EQ(song.Bytes, 10);
}

TEST_F(ShelfTest, SmallerBoundsHoldAtOnce) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  shelf.Trim({.Songs = 2, .Bytes = 1000});
  EXPECT_THAT(Names(), ElementsAre("C.mp3", "B.mp3"));
  shelf.Trim({.Songs = 2, .Bytes = 10});
  EXPECT_THAT(Names(), ElementsAre("C.mp3"));
}

TEST_F(ShelfTest, TheDiskGetsItsRoomBack) {
  for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(Put(name));
  files.Free = kFloor - 15;
  EXPECT_TRUE(shelf.KeepFree(kFloor));
  EXPECT_THAT(Names(), ElementsAre("C.mp3"));
  EXPECT_TRUE(shelf.KeepFree(0));
  EXPECT_THAT(Names(), ElementsAre("C.mp3"));
}

TEST_F(ShelfTest, AGivenSongIsNotOnTheShelfAnyMoreAndHasNotGone) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  EXPECT_TRUE(shelf.Give("/music/Kestrune/Shelf/A.mp3", "/music/A.mp3"));
  EXPECT_TRUE(files.Exists("/music/A.mp3"));
  EXPECT_THAT(Names(), ElementsAre("B.mp3"));
  EXPECT_EQ(shelf.Bytes(), 10);
  EXPECT_THAT(gone, IsEmpty());
  const platform::RenameResult taken = shelf.Give("/music/Kestrune/Shelf/B.mp3", "/music/A.mp3");
  EXPECT_FALSE(taken);
  EXPECT_TRUE(taken.NameTaken);
  EXPECT_THAT(Names(), ElementsAre("B.mp3"));
}

TEST_F(ShelfTest, ToAnotherVolumeASongIsCopied) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  files.MakeFolders("/disk");
  files.PutOnOtherVolume("/disk");
  files.TakeNameAtRename("mine");
  EXPECT_TRUE(shelf.Give("/music/Kestrune/Shelf/A.mp3", "/disk/A.mp3").NameTaken);
  EXPECT_EQ(files.Text("/disk/A.mp3"), "mine");
  EXPECT_TRUE(files.Exists("/music/Kestrune/Shelf/A.mp3"));
  files.FailNext(FileOperation::Copy);
  EXPECT_FALSE(shelf.Give("/music/Kestrune/Shelf/B.mp3", "/disk/B.mp3"));
  EXPECT_THAT(Names(), ElementsAre("B.mp3", "A.mp3"));
  EXPECT_TRUE(shelf.Give("/music/Kestrune/Shelf/B.mp3", "/disk/B.mp3"));
  EXPECT_EQ(files.Text("/disk/B.mp3"), std::string(10, 's'));
  EXPECT_FALSE(files.Exists("/music/Kestrune/Shelf/B.mp3"));
  EXPECT_THAT(Names(), ElementsAre("A.mp3"));
  for (const std::string& path : files.AllFiles()) EXPECT_EQ(path.find("part"), std::string::npos) << path;
}

TEST_F(ShelfTest, FilesThatSomebodyTookAwayAreForgotten) {
  EXPECT_TRUE(Put("A"));
  EXPECT_TRUE(Put("B"));
  ASSERT_TRUE(files.Remove("/music/Kestrune/Shelf/A.mp3"));
  shelf.Follow();
  EXPECT_THAT(Names(), ElementsAre("B.mp3"));
  EXPECT_EQ(shelf.Bytes(), 10);
  EXPECT_THAT(gone, ElementsAre("/music/Kestrune/Shelf/A.mp3"));
}

// Whatever happens, at random: the bounds hold, and another start finds the same shelf.
TEST_F(ShelfTest, RandomSongsNeverLeaveTheBounds) {
  const std::uint32_t seed = std::random_device{}();
  SCOPED_TRACE(fmt::format("seed {}", seed));
  std::mt19937 random(seed);
  const auto draw = [&random](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(random);
  };
  for (int step = 0; step < 3000; ++step) {
    switch (draw(0, 9)) {
      case 0:
        bounds = {.Songs = static_cast<std::size_t>(draw(0, 6)), .Bytes = draw(0, 600), .FreeBytes = kFloor};
        shelf.Trim(bounds);
        break;
      case 1:
        files.Free = kFloor + draw(-300, 300);
        break;
      case 2: {
        const std::vector<std::string> before = Names();
        Open();
        EXPECT_EQ(Names(), before);
        break;
      }
      case 3:
        if (!shelf.Songs().empty()) {
          ASSERT_TRUE(shelf.Give(shelf.Songs()[0].Path, fmt::format("/music/kept{}.mp3", step)));
        }
        break;
      default: {
        const double free = files.Free;
        const bool put = Put(fmt::format("Song {}", draw(0, 4)), static_cast<std::size_t>(draw(1, 300)));
        EXPECT_TRUE(!put || free + 600 >= kFloor);
        break;
      }
    }
    EXPECT_LE(shelf.Songs().size(), bounds.Songs);
    EXPECT_LE(shelf.Bytes(), bounds.Bytes);
    EXPECT_EQ(OnDisk(kPlace).size(), shelf.Songs().size());
  }
}

}  // namespace
}  // namespace kestrune::shelf
