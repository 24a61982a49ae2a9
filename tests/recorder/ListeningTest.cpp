// Cuts by listening, with the whole unit on simulated time: each song is noise, and between two songs it is quiet.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "recorder/SongBoundary.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr int kRate = 8000;
constexpr std::int64_t kGap = kRate * 2 / 5;  // frames of quiet before a song

class ListeningTest : public ::testing::Test {
 protected:
  ListeningTest() {
    rig.Set("WAV_Frequency", std::to_string(kRate));
    rig.Set("CutPlacement", "Listen");
    rig.Sound.SetSignal([this](std::uint64_t frame, int /*channel*/) { return Sample(frame); });
  }

  /// Noise that never repeats, so that a stretch of it is found again; every second song is duller.
  [[nodiscard]] std::int16_t Sample(std::uint64_t frame) const {
    const auto at = static_cast<std::int64_t>(frame);
    const auto song =
        std::count_if(starts_.begin(), starts_.end(), [at](std::int64_t start) { return start <= at; });
    const bool quiet = std::any_of(starts_.begin(), starts_.end(),
                                   [at](std::int64_t start) { return at >= start - kGap && at < start; });
    int sample = Noise(frame);
    if (song % 2 == 1) sample = (Noise(frame) + Noise(frame - 1) + Noise(frame - 2) + Noise(frame - 3)) / 2;
    return static_cast<std::int16_t>(quiet ? sample / 1000 : sample);
  }
  [[nodiscard]] static int Noise(std::uint64_t frame) {
    std::uint64_t x = frame * 0x9E3779B97F4A7C15U;
    x ^= x >> 29U;
    x *= 0xBF58476D1CE4E5B9U;
    return static_cast<int>((x >> 40U) & 0x3FFFU) - 0x2000;
  }

  /// The text changes now, and the song itself begins after `lag`, which is at least the gap.
  void Change(const std::string& artist, const std::string& song, std::chrono::milliseconds lag) {
    starts_.push_back(FrameNow() + lag.count() * kRate / 1000);
    rig.Radio.Play(44, artist, song);
  }
  [[nodiscard]] std::int64_t FrameNow() {
    return static_cast<std::int64_t>(SimulatedSoundSource::FrameAt(rig.Loop.SteadyNow(), kRate));
  }
  [[nodiscard]] const recorder::RecordingState& State() { return rig->State().Recording; }

  /// The files of the run in their order: the slots take turns, and slot 1 begins.
  [[nodiscard]] std::vector<const RecordingCaptureFile::File*> FilesMade() {
    std::vector<const RecordingCaptureFile::File*> files;
    for (std::size_t i = 0; i < rig.Audio.CaptureFiles[1]->Written.size(); ++i) {
      files.push_back(&rig.Audio.CaptureFiles[1]->Written[i]);
      if (i < rig.Audio.CaptureFiles[0]->Written.size())
        files.push_back(&rig.Audio.CaptureFiles[0]->Written[i]);
    }
    return files;
  }
  /// The source's number of the first sample of a file.
  [[nodiscard]] std::int64_t FirstFrame(const RecordingCaptureFile::File& file) {
    constexpr std::int64_t kEnough = 20;
    if (file.Samples.size() < kEnough) return -1;
    for (std::int64_t frame = 0; frame < FrameNow(); ++frame) {
      std::int64_t i = 0;
      while (i < kEnough &&
             file.Samples[static_cast<std::size_t>(i)] == Sample(static_cast<std::uint64_t>(frame + i)))
        ++i;
      if (i == kEnough) return frame;
    }
    return -1;
  }
  /// Every file is what the source played, and each begins where the one before ended.
  void ExpectUnbroken() {
    std::int64_t next = -1;
    for (const RecordingCaptureFile::File* file : FilesMade()) {
      if (file->Samples.empty()) continue;
      if (next < 0) next = FirstFrame(*file);
      ASSERT_GE(next, 0);
      for (const std::int16_t sample : file->Samples) {
        ASSERT_EQ(sample, Sample(static_cast<std::uint64_t>(next))) << file->Path << " at frame " << next;
        ++next;
      }
    }
  }
  /// In seconds, how far file `index` begins from the start of song `song`.
  [[nodiscard]] double Error(std::size_t index, std::size_t song) {
    return static_cast<double>(FirstFrame(*FilesMade().at(index)) - starts_.at(song)) / kRate;
  }

  /// Songs `from` to `to` - 1 begin with their files, which are cut in the quiet before them.
  void ExpectCutsInTheGaps(std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      EXPECT_GT(Error(i + 1, i), -0.45) << i;
      EXPECT_LT(Error(i + 1, i), 0.01) << i;
    }
  }
  /// "A - 1" has been recorded from its beginning, for a minute.
  void RecordWholeSong() {
    rig.StartIdle();
    Change("A", "1", 1s);
    rig.Run(20s);
    rig->cmdRecord();
    rig.Run(40s);
  }

  void SetDisk(bool RecordingCaptureFile::*fails, bool value) {
    for (RecordingCaptureFile* file : rig.Audio.CaptureFiles) file->*fails = value;
  }

  UnitRig rig;
  std::vector<std::int64_t> starts_;
};

TEST_F(ListeningTest, AFileBeginsWhereItsSongDoesAndNothingIsLost) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  for (const auto lag : {1500ms, 1700ms, 1200ms, 1600ms}) {
    Change("Artist", "Song " + std::to_string(starts_.size()), lag);
    rig.Run(25s);
  }
  ASSERT_EQ(FilesMade().size(), 5U);
  ExpectCutsInTheGaps(0, 4);
  ExpectUnbroken();
}

TEST_F(ListeningTest, ATextThatComesLateIsLearnedAndNoHindrance) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  for (int i = 0; i < 5; ++i) {
    starts_.push_back(FrameNow() + 5 * kRate);
    rig.Run(6s);
    rig.Radio.Play(44, "Artist", "Late " + std::to_string(i));
    rig.Run(25s);
  }
  ASSERT_EQ(FilesMade().size(), 6U);
  ExpectCutsInTheGaps(2, 5);
  ExpectUnbroken();
}

TEST_F(ListeningTest, TheWindowGoesOnAtOnceAndTheFileFollows) {
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(3s);
  EXPECT_EQ(rig.Window().lblSong.Caption, "2");
  EXPECT_TRUE(State().SongBoundarySeen);
  EXPECT_LT(State().CaptureSlots[static_cast<std::size_t>(State().CaptureSlot)].LengthMs, 3500);
  EXPECT_FALSE(rig.Logged("Recorded:"));
  rig.Run(12s);
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"A - 1\"  Song length: 1:00")));
  EXPECT_GT(State().CaptureSlots[static_cast<std::size_t>(State().CaptureSlot)].LengthMs, 13000);
}

TEST_F(ListeningTest, ARecordInASongKeepsItFromItsBeginning) {
  rig.StartIdle();
  rig.Run(10s);
  Change("A", "1", 2s);
  rig.Run(3s);
  rig->cmdRecord();
  rig.Run(40s);
  Change("B", "2", 2s);
  rig.Run(20s);
  EXPECT_THAT(rig.Recordings(), Contains(testing::HasSubstr("A - 1.wav")));
  EXPECT_LT(std::abs(Error(1, 0) + 0.2), 0.25);
  ExpectUnbroken();
}

TEST_F(ListeningTest, AStopEndsTheFileWithTheSoundOfThatMoment) {
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  const std::int64_t stopped = FrameNow();
  rig->cmdStop();
  rig.Run(1s);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith("Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"")));
  ASSERT_EQ(FilesMade().size(), 2U);
  const RecordingCaptureFile::File& song = *FilesMade().front();
  const std::int64_t end = FirstFrame(song) + static_cast<std::int64_t>(song.Samples.size());
  EXPECT_GE(end, stopped);
  EXPECT_LT(end, stopped + kRate / 2);
  rig.Run(20s);
  ExpectUnbroken();
}

TEST_F(ListeningTest, AStopSoonAfterAChangeKeepsTheSongBefore) {
  rig.Set("Integrel", "False");
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(4s);
  rig->cmdStop();
  rig.Run(1s);
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"A - 1\"")));
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Not Recorded: Channel 44  \"B - 2 (Incomplete)\"")));
  ExpectUnbroken();
}

TEST_F(ListeningTest, AStopOfWholeSongsLetsTheFinishedOneEnd) {
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(3s);
  rig->cmdStop();
  rig.Run(20s);
  EXPECT_THAT(rig.Recordings(), Contains(testing::HasSubstr("A - 1.wav")));
  ExpectUnbroken();
}

TEST_F(ListeningTest, ACloseKeepsTheSongWhoseCutIsAwaited) {
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(3s);
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), ElementsAre(testing::HasSubstr("A - 1.wav")));
}

TEST_F(ListeningTest, TheCutOfASongIsChosenBeforeAnotherChannelIsHeard) {
  rig.StartIdle();
  Change("A", "1", 1s);
  rig.Run(20s);
  Change("B", "2", 1s);
  rig.Run(4s);
  ASSERT_EQ(State().AwaitedCuts.size(), 1U);
  EXPECT_FALSE(State().AwaitedCuts.front().Frame);
  rig->SetChannelNumber(50);
  ASSERT_EQ(State().AwaitedCuts.size(), 1U);
  EXPECT_TRUE(State().AwaitedCuts.front().Frame);
  rig.Run(20s);
  EXPECT_LT(std::abs(Error(2, 1) + 0.2), 0.25);
  ExpectUnbroken();
}

TEST_F(ListeningTest, ASecondChangeLeavesTheFirstItsTenSeconds) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  for (int i = 0; i < 4; ++i) {
    Change("A", "Early " + std::to_string(i), 3s);
    rig.Run(25s);
  }
  // The text of each comes before the song before it is heard.
  Change("B", "1", 3s);
  rig.Run(2s);
  Change("C", "2", 3s);
  rig.Run(7s);
  EXPECT_EQ(State().AwaitedCuts.size(), 2U);
  rig.Run(30s);
  EXPECT_TRUE(State().AwaitedCuts.empty());
  ASSERT_EQ(FilesMade().size(), 7U);
  ExpectCutsInTheGaps(3, 6);
  ExpectUnbroken();
}

TEST_F(ListeningTest, TwoLateTextsInQuickSuccessionAreCutWhereTheirSongsBegan) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  for (int i = 0; i < 3; ++i) {
    starts_.push_back(FrameNow() + 5 * kRate);
    rig.Run(6500ms);
    rig.Radio.Play(44, "Artist", "Late " + std::to_string(i));
    rig.Run(25s);
  }
  starts_.push_back(FrameNow() + 5 * kRate);
  starts_.push_back(FrameNow() + 8 * kRate);
  rig.Run(6500ms);
  rig.Radio.Play(44, "B", "1");
  rig.Run(3s);
  rig.Radio.Play(44, "C", "2");
  rig.Run(40s);
  ASSERT_EQ(FilesMade().size(), 6U);
  ExpectCutsInTheGaps(2, 5);
  ExpectUnbroken();
}

TEST_F(ListeningTest, MoreChangesThanCanBeAwaitedSettleTheFirst) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  for (int i = 0; i < 8; ++i) {
    Change("A", std::to_string(i), 600ms);
    rig.Run(1500ms);
    EXPECT_LE(State().AwaitedCuts.size(), recorder::SongBoundary::kMostAwaited);
  }
  EXPECT_EQ(State().AwaitedCuts.size(), recorder::SongBoundary::kMostAwaited);
  rig.Run(60s);
  EXPECT_TRUE(State().AwaitedCuts.empty());
  EXPECT_EQ(FilesMade().size(), 9U);
  ExpectUnbroken();
}

TEST_F(ListeningTest, AStopSettlesAllCutsThatAreAwaited) {
  rig.Set("Integrel", "False");
  rig.Set("MinSongLength", "0");
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(4s);
  Change("C", "3", 1s);
  rig.Run(4s);
  rig->cmdStop();
  rig.Run(1s);
  EXPECT_TRUE(State().AwaitedCuts.empty());
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"A - 1\"")));
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"B - 2\"")));
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Recorded: Channel 44  \"C - 3 (Incomplete)\"")));
  ExpectUnbroken();
}

TEST_F(ListeningTest, TheSettingIsSwitchedWhileSoundIsHeldBackAndNothingIsLost) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  Change("A", "1", 1s);
  rig.Run(3s);
  static_cast<void>(rig->Parts().Settings.Set("CutPlacement", "Text"));
  rig.Run(30s);
  Change("B", "2", 600ms);
  rig.Run(30s);
  static_cast<void>(rig->Parts().Settings.Set("CutPlacement", "Listen"));
  rig.Run(30s);
  Change("C", "3", 1s);
  rig.Run(30s);
  ASSERT_EQ(FilesMade().size(), 4U);
  EXPECT_LT(std::abs(Error(1, 0) + 0.2), 0.25) << "what was heard before the switch counts";
  EXPECT_LT(std::abs(Error(3, 2) + 0.2), 0.25);
  ExpectUnbroken();
}

TEST_F(ListeningTest, OtherSoundParametersEndTheFileNow) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  Change("A", "1", 1s);
  rig.Run(20s);
  static_cast<void>(rig->Parts().Settings.Set("WAV_Frequency", "16000"));
  rig.Run(2s);
  rig.Radio.Play(44, "B", "2");
  rig.Run(20s);
  EXPECT_EQ(FilesMade().back()->Format.SampleRate, 16000);
  EXPECT_GT(FilesMade().back()->Samples.size(), 16000U);
}

TEST_F(ListeningTest, SoundThatStopsComingEndsNoSongLater) {
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(2s);
  rig.Sound.Die(60s);
  rig.Run(30s);
  EXPECT_THAT(rig.Recordings(), Contains(testing::HasSubstr("A - 1.wav")));
}

TEST_F(ListeningTest, ADiskThatIsFullForAShortTimeLosesNothing) {
  RecordWholeSong();
  SetDisk(&RecordingCaptureFile::FailWrites, true);
  rig.Run(16s);
  SetDisk(&RecordingCaptureFile::FailWrites, false);
  rig.Run(30s);
  EXPECT_THAT(rig.Recordings(),
              ElementsAre(testing::HasSubstr("A - 1 (Incomplete)"), testing::HasSubstr("/Capture")))
      << "what was tried in between is no song";
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Writing goes on after ")).Times(1));
  ExpectUnbroken();
}

TEST_F(ListeningTest, AFileThatCannotBeCreatedForAShortTimeLosesNothing) {
  RecordWholeSong();
  SetDisk(&RecordingCaptureFile::FailCreate, true);
  SetDisk(&RecordingCaptureFile::FailWrites, true);
  rig.Run(16s);
  SetDisk(&RecordingCaptureFile::FailCreate, false);
  SetDisk(&RecordingCaptureFile::FailWrites, false);
  rig.Run(30s);
  EXPECT_THAT(rig.LogTexts(), Contains(StartsWith("Writing goes on after ")));
  ExpectUnbroken();
}

TEST_F(ListeningTest, AfterALongTimeTheFileBeginsWithTheOldestSoundThatIsLeft) {
  RecordWholeSong();
  SetDisk(&RecordingCaptureFile::FailWrites, true);
  rig.Run(65s);
  SetDisk(&RecordingCaptureFile::FailWrites, false);
  const std::int64_t room = FrameNow();
  rig.Run(30s);
  const std::int64_t first = FirstFrame(*FilesMade().back());
  EXPECT_LE(first, room - 29 * kRate) << "another file is tried each ten seconds";
  EXPECT_GE(first, room - 41 * kRate);
  const RecordingCaptureFile::File& file = *FilesMade().back();
  for (std::size_t i = 0; i < file.Samples.size(); ++i)
    ASSERT_EQ(file.Samples[i], Sample(static_cast<std::uint64_t>(first) + i)) << i;
}

TEST_F(ListeningTest, TheNextSongHasNothingOfOneThatCouldNotBeWritten) {
  rig.Set("Watch", "False");
  rig.Set("Integrel", "False");
  RecordWholeSong();
  SetDisk(&RecordingCaptureFile::FailWrites, true);
  rig.Run(5s);
  const std::int64_t stopped = FrameNow();
  rig->cmdStop();
  rig.Run(1s);
  SetDisk(&RecordingCaptureFile::FailWrites, false);
  rig.Run(30s);
  EXPECT_GE(FirstFrame(*FilesMade().back()), stopped);
}

TEST_F(ListeningTest, WhatAFullFileDidNotTakeIsInTheNext) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(40s);
  rig.Audio.CaptureFiles.at(static_cast<std::size_t>(State().CaptureSlot))->FailWrites = true;
  const std::int64_t full = FrameNow();
  rig.Run(30s);
  ASSERT_EQ(FilesMade().size(), 2U);
  EXPECT_NEAR(static_cast<double>(FirstFrame(*FilesMade().back())), static_cast<double>(full - 10 * kRate),
              kRate);
}

TEST_F(ListeningTest, TheLastSongOfAnEventIsCountedWhoseCutIsAwaited) {
  // Whole songs from a minute on, for two minutes.
  rig.StartIdle();
  const base::DateValue start = rig->Now().AddSeconds(60);
  rig.Set("ScheduleEnabled1", "1");
  rig.Set("ScheduleChannel1", "44");
  rig.Set("ScheduleStartDate1", base::FormatDate(start, "mmm d, yyyy h:nn AM/PM"));
  rig.Set("ScheduleDuration1", "0:02");
  rig.Set("ScheduleIntegrel1", "1");
  rig.Set("ScheduleCleftune1", "1");
  rig.Set("ScheduleMatchGrab1", "0");
  rig.Set("ScheduleMatchKill1", "0");
  rig->ReloadSchedule();
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->State().Schedule.ActiveSchedule == 1; }, 3min));
  rig.Run(10s);
  Change("A", "1", 1s);
  rig.Run(80s);
  ASSERT_TRUE(
      rig.Loop.RunUntil([&] { return rig->TimeUntil(rig->State().Schedule.RemainingUntil) <= 3s; }, 3min));
  Change("B", "2", 1s);
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->State().Schedule.ActiveSchedule == 0; }, 1min));
  EXPECT_THAT(rig.LogTexts(), Contains("Scheduled event 1 completed - 1 songs recorded"));
}

TEST_F(ListeningTest, ACutIsInTheRecordWithItsReason) {
  RecordWholeSong();
  Change("B", "2", 1s);
  rig.Run(20s);
  rig.CloseAndWait();
  const auto& songs = rig.History.Rows.Songs;
  const auto found = std::find_if(songs.begin(), songs.end(),
                                  [](const platform::HistorySong& row) { return row.Title == "1"; });
  ASSERT_NE(found, songs.end());
  const platform::HistorySong& song = *found;
  ASSERT_TRUE(song.Cut);
  EXPECT_EQ(song.Cut->Next, "B - 2");
  EXPECT_NEAR(song.Cut->LagMs, 500, 300) << "in the gap; the text was asked for a moment after it changed";
  EXPECT_FALSE(song.Cut->Candidates.empty());
  EXPECT_FALSE(song.Cut->Reason.empty());
  EXPECT_GT(song.Cut->Confidence, 0.3);
}

TEST_F(ListeningTest, TextLeavesEverythingAsItWas) {
  rig.Set("CutPlacement", "Text");
  rig.StartIdle();
  rig->cmdRecord();
  Change("A", "1", 1s);
  rig.Run(2s);
  const RecordingCaptureFile::File& file = *FilesMade().back();
  EXPECT_GT(file.Samples.size(), 5000U) << "nothing is held back";
  EXPECT_EQ(State().CaptureSlots[0].LengthMs, static_cast<std::int64_t>(file.Samples.size()) * 1000 / kRate);
}

}  // namespace
}  // namespace kestrune::test
