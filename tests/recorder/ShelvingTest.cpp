// The shelf of a whole unit on simulated time: what is not kept lies there, and can be kept after all.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::SongFate;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kShelf = "/music/Kestrune/Shelf/";

class ShelvingTest : public ::testing::Test {
 protected:
  ShelvingTest() {
    rig.Set("ShelfSongs", "20");
    rig.Set("FilenameFormat", "%g\\%c\\%a - %s");
  }

  /// "A - 1" plays from its beginning for so long, after the song of the start.
  void PlayWhole(std::chrono::seconds length = 61s) {
    rig.StartIdle();
    Next("A", "1", length);
  }
  void Next(const std::string& artist, const std::string& song, std::chrono::seconds length = 61s) {
    rig.NextSong(artist, song);
    rig.Run(length - 3s);
  }
  /// The whole answer to a wish.
  template <typename Wish>
  std::string Ask(Wish wish) {
    std::string said = "no answer";
    wish([&said](const base::Result& result) { said = result.Cause(); });
    rig.Run(100ms);
    return said;
  }
  std::string KeepCurrent() {
    return Ask([this](auto answered) { rig->Wishes().KeepCurrent(answered); });
  }
  std::string Keep(std::size_t number) {
    return Ask([this, number](auto answered) { rig->Wishes().Keep(number, answered); });
  }
  std::vector<std::string> OnShelf() { return rig.Files.Matching(kShelf, "*"); }
  const std::vector<shelf::ShelvedSong>& Songs() { return rig->Parts().Shelving.Songs(); }
  std::vector<std::string> Titles() {
    std::vector<std::string> titles;
    for (const shelf::ShelvedSong& song : Songs()) titles.push_back(song.Artist + " - " + song.Title);
    return titles;
  }
  /// What was recorded, apart from the shelf and what is being captured.
  std::vector<std::string> Collection() {
    std::vector<std::string> names = rig.Recordings();
    std::erase_if(names, [](const std::string& name) {
      return name.starts_with("Kestrune/Shelf/") || name.find("/Capture") != std::string::npos;
    });
    return names;
  }
  const platform::HistorySong* Row(const std::string& title) {
    rig.Run(3s);
    const platform::HistorySong* found = nullptr;
    for (const platform::HistorySong& song : rig.History.Rows.Songs)
      if (song.Title == title) found = &song;
    return found;
  }
  recorder::CaptureRecord& InHand() {
    const recorder::RecordingState& state = rig->State().Recording;
    return const_cast<
        recorder::CaptureRecord&>(  // NOLINT(cppcoreguidelines-pro-type-const-cast): a test's own unit
        state.CaptureSlots.at(static_cast<std::size_t>(state.CaptureSlot)));
  }
  std::vector<std::string> SongLines() {
    std::vector<std::string> lines = rig.LogTexts();
    std::erase_if(lines,
                  [](const std::string& line) { return line.find("Song length") == std::string::npos; });
    return lines;
  }
  void Crash() {
    rig.MeetWindows(rig.Windows);
    rig.StartIdle();
  }

  UnitRig rig;
};

TEST_F(ShelvingTest, ASongThatNobodyRecordedLiesOnTheShelfUnderItsName) {
  PlayWhole();
  Next("B", "2");
  Next("C", "3");
  EXPECT_THAT(OnShelf(), ElementsAre("A - 1.wav", "B - 2.wav", HasSubstr("Moonlighters - Slow Tide")));
  EXPECT_THAT(Collection(), IsEmpty());
  const shelf::ShelvedSong song = Songs().front();
  EXPECT_EQ(song.Path, "/music/Kestrune/Shelf/B - 2.wav");
  EXPECT_EQ(song.Artist, "B");
  EXPECT_EQ(song.Title, "2");
  EXPECT_EQ(song.Channel, 44);
  EXPECT_EQ(song.Station, "Harbour");
  EXPECT_EQ(song.Genre, "Rock");
  EXPECT_EQ(song.Fate, SongFate::NotWanted);
  EXPECT_FALSE(song.Incomplete);
  EXPECT_NEAR(static_cast<double>(song.LengthMs), 60000, 1500);
  EXPECT_GT(song.Bytes, 0);
  // Being shelved is no event for anybody.
  EXPECT_THAT(SongLines(), IsEmpty());
  const recorder::RecordingState& state = rig->State().Recording;
  EXPECT_EQ(state.RecordedCount + state.TooShortCount + state.TooLongCount + state.RestrictedCount, 0);
  ASSERT_NE(Row("1"), nullptr);
  EXPECT_EQ(Row("1")->Fate, SongFate::NotWanted);
  EXPECT_EQ(Row("1")->File, "/music/Kestrune/Shelf/A - 1.wav");
}

TEST_F(ShelvingTest, WhatARecordingDropsIsLoggedAsEverAndLiesOnTheShelf) {
  rig.Set("MinSongLength", "30");
  rig.Set("MaxSongLength", "90");
  rig.Set("SaveDuplicates", "False");
  rig.Set("SievanceKill", "1");
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "3Bad\n");
  PlayWhole(5s);
  rig->cmdRecord();
  rig.Run(60s);
  Next("Short", "x", 20s);
  Next("Long", "x", 100s);
  Next("A", "1");
  Next("Bad", "Bad");
  Next("End", "x");
  const recorder::RecordingState& state = rig->State().Recording;
  EXPECT_EQ(state.RecordedCount, 1);
  EXPECT_EQ(state.TooShortCount, 1);
  EXPECT_EQ(state.TooLongCount, 1);
  EXPECT_EQ(state.RestrictedCount, 1);
  EXPECT_THAT(SongLines(), ElementsAre(StartsWith("Recorded: Channel 44  \"A - 1\""),
                                       StartsWith("Not Recorded: Channel 44  \"Short - X\""),
                                       StartsWith("Not Recorded: Channel 44  \"Long - X\""),
                                       StartsWith("Not Recorded: Channel 44  \"A - 1\""),
                                       StartsWith("Not Recorded: Channel 44  \"Bad - Bad\"")));
  ASSERT_GE(Songs().size(), 4U);
  EXPECT_EQ(Songs()[0].Fate, SongFate::Killed);
  EXPECT_EQ(Songs()[1].Fate, SongFate::Duplicate);
  EXPECT_EQ(Songs()[2].Fate, SongFate::TooLong);
  EXPECT_EQ(Songs()[3].Fate, SongFate::TooShort);
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
}

TEST_F(ShelvingTest, APartOfASongIsIncompleteAndAShortPartIsNoUse) {
  PlayWhole(30s);
  rig->SetChannelNumber(45);
  rig.Run(5s);
  rig->SetChannelNumber(46);
  rig.Run(40s);
  rig->SetChannelNumber(44);
  rig.Run(5s);
  EXPECT_THAT(OnShelf(), ElementsAre("A - 1 (Incomplete).wav", "Artist 46 - Song 46 (Incomplete).wav",
                                     StartsWith("Moonlighters - Slow Tide")));
  EXPECT_TRUE(Songs().front().Incomplete);
  EXPECT_EQ(Songs().front().Channel, 46);
}

TEST_F(ShelvingTest, WhileNoSongIsWholeYetTheBeginningsAreIncomplete) {
  PlayWhole(30s);
  rig->SetChannelNumber(45);
  rig.Run(2s);
  rig->cmdRecord();  // whole songs only: it waits
  rig.Run(40s);
  Next("B", "2");
  EXPECT_EQ(Songs().front().Title, "Song 45");
  EXPECT_EQ(Songs().front().Fate, SongFate::NotWhole);
  EXPECT_TRUE(Songs().front().Incomplete);
}

TEST_F(ShelvingTest, WithoutAShelfNothingIsMovedAndNothingIsRead) {
  rig.Set("ShelfSongs", "0");
  rig.Files.Put("/music/Kestrune/Shelf/.kestrune-shelf", "");
  rig.Files.Put("/music/Kestrune/Shelf/Old - Song.wav", "old");
  PlayWhole();
  Next("B", "2");
  EXPECT_THAT(OnShelf(), ElementsAre("Old - Song.wav"));
  EXPECT_THAT(Songs(), IsEmpty());
  EXPECT_EQ(Keep(1), "there is no shelf: the setting ShelfSongs is 0");
  for (const std::string& call : rig.Files.Calls) EXPECT_EQ(call.find("Shelf"), std::string::npos) << call;
}

TEST_F(ShelvingTest, TheCountIsFollowedAsSoonAsItChanges) {
  PlayWhole();
  Next("B", "2");
  Next("C", "3");
  ASSERT_EQ(Songs().size(), 3U);
  ASSERT_TRUE(rig->Parts().Settings.Set("ShelfSongs", "2").Done());
  EXPECT_THAT(Titles(), ElementsAre("B - 2", "A - 1"));
  ASSERT_TRUE(rig->Parts().Settings.Set("ShelfMegabytes", "1").Done());
  Next("D", "4");
  EXPECT_THAT(Titles(), ElementsAre("C - 3", "B - 2"));
  ASSERT_NE(Row("1"), nullptr);
  EXPECT_EQ(Row("1")->File, "") << "the record knows that it is gone";
}

TEST_F(ShelvingTest, TheDiskKeepsItsRoomAlsoWhileSongsAreRecorded) {
  PlayWhole();
  Next("B", "2");
  ASSERT_EQ(Songs().size(), 2U);
  rig->cmdRecord();
  rig.Files.Free = 1024.0 * 1024 * 1024 - 1;
  Next("C", "3");
  EXPECT_EQ(Songs().size(), 1U);
  rig.Files.Free = 5e8;
  Next("D", "4");
  EXPECT_THAT(Songs(), IsEmpty());
  EXPECT_EQ(rig->State().Recording.RecordedCount, 2);
}

TEST_F(ShelvingTest, TheDiskKeepsItsRoomAlsoAfterAPartThatIsNoUse) {
  PlayWhole();
  Next("B", "2");
  ASSERT_EQ(OnShelf().size(), 2U);
  rig.Files.Free = 1024.0 * 1024 * 1024 - 1;
  rig->SetChannelNumber(45);
  rig.Run(3s);
  EXPECT_EQ(OnShelf().size(), 1U);
}

TEST_F(ShelvingTest, ALowerBoundHoldsAlsoWhileSongsAreRecorded) {
  PlayWhole();
  Next("B", "2");
  rig->cmdRecord();
  Next("C", "3");
  ASSERT_EQ(OnShelf().size(), 2U);
  ASSERT_TRUE(rig->Parts().Settings.Set("ShelfSongs", "1").Done());
  Next("D", "4");
  EXPECT_EQ(OnShelf().size(), 1U);
}

TEST_F(ShelvingTest, ANamedUnitHasAShelfOfItsOwn) {
  rig.Environment.Command = "/multi 2";
  for (const auto& [key, value] : std::map<std::string, std::string>{{"ShelfSongs", "5"},
                                                                     {"FileFormat", "WAV"},
                                                                     {"WAV_Frequency", "1000"},
                                                                     {"WAV_Channels", "1"},
                                                                     {"FileDir", "/music/"},
                                                                     {"FilenameFormat", "%a - %s"},
                                                                     {"LegalAgreement", "True"},
                                                                     {"PortNum", "1"},
                                                                     {"Channel", "44"},
                                                                     {"CheckUpdatesAtStartup", "False"}}) {
    rig.Store.Put("Lorimel", "Kestrune2", key, value);
  }
  PlayWhole();
  Next("B", "2");
  EXPECT_TRUE(rig.Files.Exists("/music/Kestrune/Shelf-2/A - 1.wav"));
}

TEST_F(ShelvingTest, AFolderWithOtherFilesIsSaidOnceAndLeftAlone) {
  rig.Set("ShelfFolder", "/music/mine");
  rig.Files.Put("/music/mine/Old.mp3", "mine");
  PlayWhole();
  Next("B", "2");
  Next("C", "3");
  EXPECT_THAT(OnShelf(), ElementsAre("A - 1.wav", "B - 2.wav", HasSubstr("Slow Tide")));
  EXPECT_THAT(rig.Files.Matching("/music/mine", "*"), ElementsAre("Old.mp3"));
  int said = 0;
  for (const std::string& line : rig.LogTexts())
    said += line == "The folder \"/music/mine/\" has other files in it and cannot be the shelf" ? 1 : 0;
  EXPECT_EQ(said, 1);
}

TEST_F(ShelvingTest, ASongOfTheShelfIsKeptUnderTheNameOfARecording) {
  PlayWhole();
  Next("B", "2");
  Next("C", "3");
  EXPECT_EQ(Keep(2), "");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
  EXPECT_THAT(Titles(), ElementsAre("B - 2", "Moonlighters - Slow Tide"));
  EXPECT_THAT(SongLines(), ElementsAre(AllOf(StartsWith("Kept: Channel 44  \"A - 1\"  Song length: 1:0"),
                                             EndsWith(" WAV"))));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 0);
  EXPECT_THAT(rig.FileSync.Synced, testing::Contains("/music/Rock/44/A - 1.wav"));
  ASSERT_NE(Row("1"), nullptr);
  EXPECT_EQ(Row("1")->Fate, SongFate::KeptLater);
  EXPECT_EQ(Row("1")->File, "/music/Rock/44/A - 1.wav");
  const recorder::EndedSong& remembered = rig->State().Recording.EndedSongs.Songs().front();
  EXPECT_EQ(remembered.Song, "1");
  EXPECT_EQ(remembered.Fate, SongFate::KeptLater);
  EXPECT_EQ(remembered.Path, "/music/Rock/44/A - 1.wav");
  EXPECT_EQ(Keep(0), "there are 2 songs on the shelf");
  EXPECT_EQ(Keep(3), "there are 2 songs on the shelf");
  EXPECT_EQ(Keep(2), "");
  EXPECT_EQ(Keep(1), "");
  EXPECT_EQ(Keep(1), "nothing is on the shelf");
}

TEST_F(ShelvingTest, ASongIsFoundByItsPathToo) {
  PlayWhole();
  Next("B", "2");
  const std::string path = "/music/Kestrune/Shelf/A - 1.wav";
  const auto keep = [this, &path] {
    return Ask([this, &path](auto answered) { rig->Wishes().KeepFile(path, answered); });
  };
  EXPECT_EQ(keep(), "");
  EXPECT_EQ(keep(), "the song is not on the shelf any more");
}

TEST_F(ShelvingTest, TheRulesForDuplicatesHold) {
  PlayWhole();
  Next("X", "X", 20s);
  Next("A", "1");
  Next("Y", "Y", 20s);
  ASSERT_TRUE(rig->Parts().Settings.Set("SaveDuplicates", "0").Done());
  EXPECT_EQ(Keep(1), "");
  const std::size_t left = Songs().size();
  EXPECT_EQ(Keep(2), "duplicate song in output directory");
  EXPECT_EQ(Songs().size(), left) << "it stays on the shelf";
  ASSERT_TRUE(rig->Parts().Settings.Set("SaveDuplicates", "1").Done());
  EXPECT_EQ(Keep(2), "");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav", "Rock/44/A - 2.wav"));
}

TEST_F(ShelvingTest, ASongThatCannotBeMovedStaysOnTheShelf) {
  PlayWhole();
  Next("B", "2");
  rig.Files.FailAlways(FileOperation::Rename);
  EXPECT_THAT(Keep(1), StartsWith("cannot move it to \"/music/Rock/44/A - 1.wav\": "));
  rig.Files.Heal();
  EXPECT_EQ(Songs().size(), 2U);
}

TEST_F(ShelvingTest, ThePresentSongIsKeptAtItsEndAndNothingAfterIt) {
  PlayWhole();
  EXPECT_EQ(KeepCurrent(), "");
  EXPECT_TRUE(InHand().KeepAtEnd);
  EXPECT_THAT(Collection(), IsEmpty());
  Next("B", "2");
  EXPECT_FALSE(InHand().KeepAtEnd);
  Next("C", "3");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
  EXPECT_THAT(SongLines(), ElementsAre(AllOf(StartsWith("Kept: Channel 44  \"A - 1\"  Song length: 1:0"),
                                             EndsWith(" WAV"))));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 0);
  EXPECT_EQ(Row("1")->Fate, SongFate::KeptLater);
  EXPECT_EQ(Row("1")->File, "/music/Rock/44/A - 1.wav");
  EXPECT_EQ(Row("2")->Fate, SongFate::NotWanted);
}

TEST_F(ShelvingTest, WithoutAShelfThePresentSongIsKeptToo) {
  rig.Set("ShelfSongs", "0");
  PlayWhole();
  EXPECT_EQ(KeepCurrent(), "");
  Next("B", "2");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
}

TEST_F(ShelvingTest, ASongWhoseBeginningOrEndIsMissingIsKeptIncomplete) {
  PlayWhole(30s);
  rig->SetChannelNumber(45);
  rig.Run(30s);
  EXPECT_EQ(KeepCurrent(), "");
  Next("B", "2");
  EXPECT_THAT(Collection(), ElementsAre("Genre/45/Artist 45 - Song 45 (Incomplete).wav"));
  EXPECT_EQ(KeepCurrent(), "");
  rig->SetChannelNumber(44);
  rig.Run(10s);
  EXPECT_THAT(Collection(), ElementsAre("Genre/45/Artist 45 - Song 45 (Incomplete).wav",
                                        "Genre/45/B - 2 (Incomplete).wav"));
  EXPECT_THAT(SongLines().back(), StartsWith("Kept: Channel 45  \"B - 2 (Incomplete)\""));
}

TEST_F(ShelvingTest, LengthsAndListsDoNotStandAgainstAWish) {
  rig.Set("MinSongLength", "90");
  rig.Set("SievanceGrab", "1");
  rig.Set("SievanceKill", "1");
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "2A\n");
  PlayWhole(10s);
  rig->cmdRecord();
  rig.Run(51s);
  EXPECT_EQ(KeepCurrent(), "");
  Next("B", "2");
  Next("C", "3");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
  EXPECT_THAT(SongLines(), ElementsAre(AllOf(StartsWith("Kept: Channel 44  \"A - 1\"  Song length: 1:0"),
                                             EndsWith(" WAV")),
                                       StartsWith("Not Recorded: Channel 44  \"B - 2\"")));
  const recorder::RecordingState& state = rig->State().Recording;
  EXPECT_EQ(state.RecordedCount, 0);
  EXPECT_EQ(state.TooShortCount, 1) << "of the song that nobody asked for";
  EXPECT_EQ(state.RestrictedCount, 0);
}

TEST_F(ShelvingTest, ARecordingThatKeepsTheSongAnywayCountsAndSaysAsEver) {
  PlayWhole(10s);
  rig->cmdRecord();
  rig.Run(51s);
  EXPECT_EQ(KeepCurrent(), "");
  Next("B", "2");
  EXPECT_THAT(SongLines(), ElementsAre(StartsWith("Recorded: Channel 44  \"A - 1\"")));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 1);
  EXPECT_EQ(Row("1")->Fate, SongFate::Kept);
}

TEST_F(ShelvingTest, WhileARecordingWaitsForAWholeSongAWishIsKept) {
  PlayWhole(30s);
  rig->SetChannelNumber(45);
  rig.Run(2s);
  rig->cmdRecord();
  EXPECT_EQ(KeepCurrent(), "");
  rig.Run(40s);
  Next("B", "2");
  Next("C", "3");
  EXPECT_THAT(Collection(),
              ElementsAre("Genre/45/Artist 45 - Song 45 (Incomplete).wav", "Genre/45/B - 2.wav"));
}

TEST_F(ShelvingTest, AfterAStopOfWholeSongsTheWishStillHolds) {
  PlayWhole(10s);
  rig->cmdRecord();
  EXPECT_EQ(KeepCurrent(), "");
  rig.Run(20s);
  rig->cmdStop();
  rig.Run(30s);
  Next("B", "2");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
  EXPECT_THAT(SongLines(), ElementsAre(StartsWith("Kept: ")));
}

TEST_F(ShelvingTest, ADuplicateIsRefusedWithTheToldWordsAndLiesOnTheShelf) {
  rig.Set("SaveDuplicates", "False");
  rig.Files.Put("/music/Rock/44/A - 1.wav", "mine");
  PlayWhole();
  EXPECT_EQ(KeepCurrent(), "");
  Next("B", "2");
  EXPECT_THAT(SongLines(),
              ElementsAre(AllOf(StartsWith("Not Recorded: Channel 44  \"A - 1\"  Song length: 1:0"),
                                EndsWith(", duplicate song in output directory"))));
  EXPECT_EQ(rig.Files.Text("/music/Rock/44/A - 1.wav"), "mine");
  EXPECT_EQ(Songs().front().Fate, SongFate::Duplicate);
}

TEST_F(ShelvingTest, ALongSongThatIsWantedIsNotBegunAnew) {
  rig.Set("IdleCaptureMinutes", "1");
  PlayWhole(10s);
  EXPECT_EQ(KeepCurrent(), "");
  rig.Run(171s);
  Next("B", "2");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1.wav"));
  EXPECT_THAT(SongLines(), ElementsAre(AllOf(StartsWith("Kept: Channel 44  \"A - 1\"  Song length: 3:0"),
                                             EndsWith(" WAV"))));
}

TEST_F(ShelvingTest, AFullDiskDividesAWantedSongAndBothPiecesAreKept) {
  PlayWhole(40s);
  EXPECT_EQ(KeepCurrent(), "");
  rig.Files.DiskFull = true;
  rig.Run(45s);
  EXPECT_THAT(KeepCurrent(), StartsWith("the song is not being captured: "));
  rig.Files.DiskFull = false;
  rig.Run(60s);
  Next("B", "2");
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/A - 1 (Incomplete).wav", "Rock/44/A - 2 (Incomplete).wav"));
}

TEST_F(ShelvingTest, AtTheCloseAWantedSongIsKeptAndAnotherLiesOnTheShelf) {
  PlayWhole(30s);
  rig.CloseAndWait();
  EXPECT_THAT(OnShelf(), ElementsAre("A - 1 (Incomplete).wav", StartsWith("Moonlighters - Slow Tide")));
  rig.Closed = false;
  Crash();
  Next("B", "2", 30s);
  EXPECT_EQ(KeepCurrent(), "");
  rig.CloseAndWait();
  EXPECT_THAT(Collection(), ElementsAre("Rock/44/B - 2 (Incomplete).wav"));
  for (const std::string& path : rig.Files.AllFiles())
    EXPECT_EQ(path.find("/Capture"), std::string::npos) << path;
}

TEST_F(ShelvingTest, TheWishIsRefusedWhileNothingIsCaptured) {
  rig.Start();
  EXPECT_EQ(KeepCurrent(), "no song is captured yet");
}

TEST_F(ShelvingTest, AfterACrashTheShelfIsTheSame) {
  PlayWhole();
  Next("B", "2");
  Next("C", "3");
  rig.Run(3s);
  const std::vector<shelf::ShelvedSong> before = Songs();
  ASSERT_EQ(before.size(), 3U);
  Crash();
  rig.Run(100ms);
  std::vector<shelf::ShelvedSong> after = Songs();
  ASSERT_GE(after.size(), 3U);
  after.erase(after.begin(), after.end() - 3);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(after[i].Path, before[i].Path);
  EXPECT_EQ(after[0], before[0]) << "with all that the record knows";
  EXPECT_EQ(Keep(Songs().size()), "") << "the oldest";
}

TEST_F(ShelvingTest, OfASongThatTheRecordDoesNotKnowTheNameIsEnough) {
  rig.Files.Put("/music/Kestrune/Shelf/.kestrune-shelf", "");
  rig.Files.Put("/music/Kestrune/Shelf/Lanterns - North Pier (Incomplete).wav", "sound");
  rig.StartIdle();
  EXPECT_THAT(Titles(), ElementsAre("Lanterns - North Pier"));
  EXPECT_EQ(Keep(1), "");
  EXPECT_THAT(Collection(), ElementsAre("Lanterns - North Pier (Incomplete).wav"));
}

}  // namespace
}  // namespace kestrune::test
