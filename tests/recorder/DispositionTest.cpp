#include <functional>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "recorder/Disposition.h"
#include "support/FakeEnvironment.h"
#include "support/FakeFileSync.h"
#include "support/FakeHistoryStore.h"
#include "support/MemoryFiles.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::recorder {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class KeptLog final : public base::Journal {
 public:
  void DoLog(std::string_view text) override {
    Lines.emplace_back(text);
    if (OnLine) OnLine();
  }
  void DebugPrint(std::string_view /*text*/) override {}
  [[nodiscard]] bool Tracing() const override { return false; }
  void Trace(std::string_view /*text*/) override {}
  std::vector<std::string> Lines;
  std::function<void()> OnLine;
};

class DispositionTest : public ::testing::Test {
 protected:
  DispositionTest() {
    radio.ChannelNumber = 44;
    settings.MinSongLength = 45;
    settings.MaxSongLength = 0;
    settings.ShelfSongs = 0;
    state.RecordRequested = state.RecordArmed = true;
    state.LastArtist = "Moonlighters";
    state.LastSong = "Slow Tide";
    CaptureRecord& capture = state.CaptureSlots[1];
    capture = {.FileName = "/music/Moonlighters - Slow Tide",
               .Extension = "mp3",
               .LengthMs = 200000,
               .Song = "Slow Tide",
               .Artist = "Moonlighters",
               .Genre = "Rock",
               .Folder = "/music/",
               .Outcome = {}};
    capture.Outcome.File = "/music/Capture1.mp3";
    files.Put("/music/Capture1.mp3", "sound");
    files.MakeFolders("/home/user/Application Data/Kestrune");
  }

  void Dispose() {
    CaptureRecord& capture = state.CaptureSlots[1];
    capture.Ending = EndingNow(all);
    disposition.Dispose(capture);
  }
  void Lists(std::string_view text) {
    files.Put("/home/user/Application Data/Kestrune/Restriction.txt", text);
    restrictions.LoadRestrictions();
  }
  std::vector<std::string> Music() {
    std::vector<std::string> names;
    for (const std::string& path : files.AllFiles()) {
      if (path.starts_with("/music/")) names.push_back(path.substr(7));
    }
    return names;
  }

  test::SimulatedEventLoop loop;
  test::MemoryFiles files;
  test::FakeEnvironment environment;
  KeptLog log;
  State all;
  RecordingState& state = all.Recording;
  radio::RadioState& radio = all.Radio;
  config::Settings& settings = all.Settings;
  schedule::ScheduleState& schedule = all.Schedule;
  schedule::Restrictions restrictions{files, environment, log};
  config::FileSpecs fileSpecs{[](std::int16_t) { return nullptr; }, settings, state.CaptureSlot,
                              [] { return std::nullopt; }};
  test::FakeFileSync sync;
  SongFiles songFiles{files, sync, log};
  test::FakeHistoryStore store{loop};
  history::History history{store, loop};
  Chronicle chronicle{history, loop};
  Shelving shelving{
      all, {.Files = files, .SongFiles = songFiles, .Chronicle = chronicle, .History = history}, loop, log};
  Disposition disposition{all,
                          {.FileSpecs = fileSpecs,
                           .Restrictions = restrictions,
                           .SongFiles = songFiles,
                           .Chronicle = chronicle,
                           .Shelving = shelving},
                          loop,
                          log};
};

TEST_F(DispositionTest, AKeptSongIsRenamedAndLoggedAndCounted) {
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide.mp3"));
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide.mp3"), "sound");
  EXPECT_THAT(log.Lines,
              ElementsAre("Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 3:20 "));
  EXPECT_EQ(state.RecordedCount, 1);
}

TEST_F(DispositionTest, ASongWhoseFateIsKnownIsRememberedWithItsPlace) {
  state.CaptureSlots[1].Naming.Values.Channel = 44;
  state.CaptureSlots[1].Naming.Values.Station = "Harbour";
  Dispose();
  ASSERT_EQ(state.EndedSongs.Songs().size(), 1U);
  const EndedSong& song = state.EndedSongs.Songs().front();
  EXPECT_EQ(song.Number, 1);
  EXPECT_EQ(song.Channel, 44);
  EXPECT_EQ(song.Station, "Harbour");
  EXPECT_EQ(song.Artist, "Moonlighters");
  EXPECT_EQ(song.Song, "Slow Tide");
  EXPECT_EQ(song.LengthMs, 200000);
  EXPECT_EQ(song.Fate, platform::SongFate::Kept);
  EXPECT_EQ(song.Path, "/music/Moonlighters - Slow Tide.mp3");
}

TEST_F(DispositionTest, OneThatIsDroppedIsRememberedWithItsPlaceOnTheShelf) {
  settings.ShelfSongs = 5;
  settings.FileDir = "/music/";
  state.CaptureSlots[1].LengthMs = 44999;
  Dispose();
  ASSERT_EQ(state.EndedSongs.Songs().size(), 1U);
  EXPECT_EQ(state.EndedSongs.Songs().front().Fate, platform::SongFate::TooShort);
  EXPECT_EQ(state.EndedSongs.Songs().front().Path, "/music/Kestrune/Shelf/Moonlighters - Slow Tide.mp3");
  // And one that is deleted has none.
  settings.ShelfSongs = 0;
  state.CaptureSlots[1].Outcome = {};
  state.CaptureSlots[1].Outcome.File = "/music/Capture1.mp3";
  files.Put("/music/Capture1.mp3", "sound");
  Dispose();
  ASSERT_EQ(state.EndedSongs.Songs().size(), 2U);
  EXPECT_EQ(state.EndedSongs.Songs().front().Number, 2);
  EXPECT_EQ(state.EndedSongs.Songs().front().Path, "");
}

TEST_F(DispositionTest, TheLastTenAreRememberedTheNewestFirst) {
  EndedSongs songs;
  for (int i = 1; i <= 25; ++i) {
    EndedSong song;
    song.Song = std::to_string(i);
    songs.Add(song);
  }
  ASSERT_EQ(songs.Songs().size(), EndedSongs::kMost);
  EXPECT_EQ(songs.Songs().front().Song, "25");
  EXPECT_EQ(songs.Songs().front().Number, 25);
  EXPECT_EQ(songs.Songs().back().Song, "16");
}

TEST_F(DispositionTest, ExactlyTheMinimumIsKept) {
  state.CaptureSlots[1].LengthMs = 45000;
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1);
  EXPECT_EQ(state.TooShortCount, 0);
}

TEST_F(DispositionTest, TooShortIsDroppedWithTheLengthAndTheLimit) {
  state.CaptureSlots[1].LengthMs = 44999;
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_EQ(state.TooShortCount, 1);
  EXPECT_EQ(state.RecordedCount, 0);
  EXPECT_THAT(log.Lines,
              ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 0:44, "
                          "Minimum length: 0:45"));
}

TEST_F(DispositionTest, TooLongIsDroppedAndItsLineSaysMinimumToo) {
  settings.MaxSongLength = 120;
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_EQ(state.TooLongCount, 1);
  EXPECT_THAT(log.Lines,
              ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 3:20, "
                          "Minimum length: 2:00"));
}

TEST_F(DispositionTest, ExactlyTheMaximumIsKept) {
  settings.MaxSongLength = 200;
  state.CaptureSlots[1].LengthMs = 200999;
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1);
}

TEST_F(DispositionTest, AMaximumOfZeroIsNoLimit) {
  state.CaptureSlots[1].LengthMs = 10 * 3600 * 1000;
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1);
}

TEST_F(DispositionTest, ACaptureCanBeTooShortAndTooLongAtOnce) {
  settings.MinSongLength = 300;
  settings.MaxSongLength = 100;
  Dispose();
  EXPECT_EQ(state.TooShortCount, 1);
  EXPECT_EQ(state.TooLongCount, 1);
  EXPECT_EQ(log.Lines.size(), 2U);
}

TEST_F(DispositionTest, NotOnTheGrabListIsDropped) {
  settings.SievanceGrab = 1;
  Lists("0Somebody else\n");
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_EQ(state.RestrictedCount, 1);
  EXPECT_THAT(log.Lines,
              ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 3:20, "
                          "not found in the grab list"));
}

TEST_F(DispositionTest, OnTheGrabListIsKept) {
  settings.SievanceGrab = 1;
  Lists("0moon\n");
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1);
}

TEST_F(DispositionTest, OnTheKillListIsDropped) {
  settings.SievanceKill = 1;
  Lists("3tide\n");
  Dispose();
  EXPECT_EQ(state.RestrictedCount, 1);
  EXPECT_THAT(log.Lines,
              ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 3:20, "
                          "found in the kill list"));
}

TEST_F(DispositionTest, KillBeatsGrabAndCountsOnce) {
  settings.SievanceGrab = settings.SievanceKill = 1;
  Lists("0Moon\n2Moon\n");
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_EQ(state.RestrictedCount, 1);
  EXPECT_EQ(log.Lines.size(), 1U);
  EXPECT_TRUE(log.Lines[0].ends_with(", found in the kill list"));
}

TEST_F(DispositionTest, TheListsSeeTheSongThatEndedAndTheLogTheOneOfTheCapture) {
  settings.SievanceKill = 1;
  state.LastArtist = "Other";
  state.LastSong = "Thing";
  Lists("2Other\n");
  Dispose();
  ASSERT_EQ(log.Lines.size(), 1U);
  EXPECT_THAT(log.Lines[0], ::testing::HasSubstr("\"Moonlighters - Slow Tide\""));
}

TEST_F(DispositionTest, GrabDoesNotRescueASongThatIsTooShort) {
  settings.SievanceGrab = 1;
  Lists("0Moon\n");
  state.CaptureSlots[1].LengthMs = 1000;
  Dispose();
  EXPECT_EQ(state.TooShortCount, 1);
  EXPECT_EQ(state.RestrictedCount, 0);
}

TEST_F(DispositionTest, IncompleteCarriesItsSuffixInTheFileAndInTheLog) {
  state.Incomplete = true;
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide (Incomplete).mp3"));
  EXPECT_THAT(log.Lines, ElementsAre("Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"  "
                                     "Song length: 3:20 "));
}

TEST_F(DispositionTest, IncompleteLeavesAnEarlierWholeSongAlone) {
  files.Put("/music/Moonlighters - Slow Tide.mp3", "whole");
  state.Incomplete = true;
  Dispose();
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide.mp3"), "whole");
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide (Incomplete).mp3"), "sound");
}

TEST_F(DispositionTest, DuplicatesGetRisingNames) {
  settings.SaveDuplicates = true;
  std::vector<std::string> expected;
  for (int copy = 0; copy <= 11; ++copy) {
    state.CaptureSlots[1].FileName = "/music/x";
    files.Put("/music/Capture1.mp3", std::to_string(copy));
    state.CaptureSlots[1].Outcome.File = "/music/Capture1.mp3";
    Dispose();
  }
  EXPECT_THAT(Music(), ElementsAre("x.mp3", "x1.mp3", "x2.mp3", "x3.mp3", "x4.mp3", "x5.mp3", "x6.mp3",
                                   "x7.mp3", "x8.mp3", "x9.mp3", "x91.mp3", "x92.mp3"));
  EXPECT_EQ(files.Text("/music/x91.mp3"), "10");
}

TEST_F(DispositionTest, ADuplicateOfATitleThatEndsInADigitGoesUpByOne) {
  state.CaptureSlots[1].FileName = "/music/Route 5";
  files.Put("/music/Route 5.mp3", "first");
  Dispose();
  EXPECT_EQ(files.Text("/music/Route 6.mp3"), "sound");
}

TEST_F(DispositionTest, ADuplicateOfATitleThatEndsInNineGetsAOneBehindIt) {
  state.CaptureSlots[1].FileName = "/music/Cloud 9";
  files.Put("/music/Cloud 9.mp3", "first");
  Dispose();
  EXPECT_EQ(files.Text("/music/Cloud 91.mp3"), "sound");
}

TEST_F(DispositionTest, DuplicatesAreSoughtUnderTheNameWithTheSuffix) {
  files.Put("/music/Moonlighters - Slow Tide (Incomplete).mp3", "first");
  state.Incomplete = true;
  Dispose();
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide (Incomplete).mp3"), "first");
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide1 (Incomplete).mp3"), "sound");
}

TEST_F(DispositionTest, WithoutSavedDuplicatesTheSecondIsDroppedAndNothingIsCounted) {
  settings.SaveDuplicates = false;
  files.Put("/music/Moonlighters - Slow Tide.mp3", "first");
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide.mp3"));
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide.mp3"), "first");
  EXPECT_THAT(log.Lines,
              ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: 3:20, "
                          "duplicate song in output directory"));
  EXPECT_EQ(state.RecordedCount + state.TooShortCount + state.TooLongCount + state.RestrictedCount, 0);
}

TEST_F(DispositionTest, WhatWasCutAtItsBeginningGoesWithoutATestOrALine) {
  state.WaitingForNextSong = true;
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_THAT(log.Lines, IsEmpty());
  EXPECT_EQ(state.RecordedCount, 0);
}

TEST_F(DispositionTest, AStopWhileWaitingDisposesOfTheCaptureAsIncomplete) {
  state.WaitingForNextSong = state.StopPending = state.Incomplete = true;
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide (Incomplete).mp3"));
}

TEST_F(DispositionTest, AFailedRenameKeepsTheSongUnderANameOfItsOwnAndIsNotCalledRecorded) {
  files.FailNext(test::FileOperation::Rename);
  Dispose();
  ASSERT_EQ(Music().size(), 1U);
  const std::string kept = "/music/" + Music()[0];
  EXPECT_NE(kept, "/music/Capture1.mp3");
  EXPECT_EQ(files.Text(kept), "sound");
  EXPECT_EQ(state.RecordedCount, 0);
  EXPECT_THAT(log.Lines, ElementsAre("Not Renamed: Channel 44  \"Moonlighters - Slow Tide\"  Song length: "
                                     "3:20, kept as \"" +
                                     kept + "\": Input/output error"));
}

TEST_F(DispositionTest, ANameThatIsTakenMeanwhileGivesTheNextOne) {
  files.TakeNameAtRename("of another unit");
  Dispose();
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide.mp3"), "of another unit");
  EXPECT_EQ(files.Text("/music/Moonlighters - Slow Tide1.mp3"), "sound");
  EXPECT_EQ(state.RecordedCount, 1);
}

TEST_F(DispositionTest, WithoutSavedDuplicatesANameThatIsTakenMeanwhileMakesTheSongADuplicate) {
  settings.SaveDuplicates = false;
  files.TakeNameAtRename("of another unit");
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide.mp3"));
  ASSERT_EQ(log.Lines.size(), 1U);
  EXPECT_TRUE(log.Lines[0].ends_with(", duplicate song in output directory"));
}

TEST_F(DispositionTest, ACaptureThatIsGoneIsNotCalledRecorded) {
  base::Ignored(files.Remove("/music/Capture1.mp3"));
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_EQ(state.RecordedCount, 0);
  EXPECT_THAT(log.Lines, ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: "
                                     "3:20, No such file or directory"));
}

TEST_F(DispositionTest, NothingIsCalledRecordedBeforeItHasItsName) {
  std::vector<std::string> atTheLine;
  log.OnLine = [&] { atTheLine = Music(); };
  Dispose();
  EXPECT_THAT(atTheLine, ElementsAre("Moonlighters - Slow Tide.mp3"));
}

TEST_F(DispositionTest, ASongThatLacksSoundIsIncomplete) {
  state.CaptureSlots[1].Outcome.MissingMs = 100;
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide (Incomplete).mp3"));
}

TEST_F(DispositionTest, LessThanABlockOfMissingSoundDoesNotMakeASongIncomplete) {
  state.CaptureSlots[1].Outcome.MissingMs = 99;
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide.mp3"));
}

TEST_F(DispositionTest, ASongThatTheDiskDidNotTakeToItsEndIsIncomplete) {
  state.CaptureSlots[1].Outcome.WriteFailure = "No space left on device";
  Dispose();
  EXPECT_THAT(Music(), ElementsAre("Moonlighters - Slow Tide (Incomplete).mp3"));
}

TEST_F(DispositionTest, ASongWithoutAnySoundIsDroppedEvenIfAnyLengthIsKept) {
  settings.MinSongLength = 0;
  state.CaptureSlots[1].LengthMs = 0;
  Dispose();
  EXPECT_THAT(Music(), IsEmpty());
  EXPECT_THAT(log.Lines, ElementsAre("Not Recorded: Channel 44  \"Moonlighters - Slow Tide\"  Song length: "
                                     "0:00, no sound came"));
}

TEST_F(DispositionTest, AnEventsLastSongIsJudgedByItsModesAfterItsEnd) {
  Lists("0Somebody else\n");
  state.CaptureSlots[1].Outcome.Event = 3;
  state.CaptureSlots[1].Outcome.Modes.Grab = true;
  Dispose();
  EXPECT_EQ(state.RestrictedCount, 1) << "the event asked for the Grab list";

  files.Put("/music/Capture1.mp3", "sound");
  state.CaptureSlots[1].Outcome.File = "/music/Capture1.mp3";
  state.CaptureSlots[1].Outcome.Modes.Grab = false;
  settings.SievanceGrab = 1;
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1) << "the user's own box must have no say";
}

TEST_F(DispositionTest, ARunningScheduleEntryDecidesWhetherTheListsApply) {
  settings.SievanceGrab = 1;
  schedule.ActiveSchedule = 3;
  schedule.SchedSievanceGrab = false;
  Dispose();
  EXPECT_EQ(state.RecordedCount, 1) << "the user's own box must have no say";
  schedule.SchedSievanceGrab = true;
  files.Put("/music/Capture1.mp3", "sound");
  state.CaptureSlots[1].Outcome.File = "/music/Capture1.mp3";
  Dispose();
  EXPECT_EQ(state.RestrictedCount, 1);
}

}  // namespace
}  // namespace kestrune::recorder
