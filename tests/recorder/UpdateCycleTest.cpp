#include <functional>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/UpdateCycle.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::StartsWith;

class UpdateCycleTest : public ::testing::Test {
 protected:
  UnitRig rig;
  [[nodiscard]] const recorder::RecordingState& State() { return rig->State().Recording; }
  [[nodiscard]] std::size_t CapturesMade() {
    return rig.Audio.CaptureFiles[0]->Written.size() + rig.Audio.CaptureFiles[1]->Written.size();
  }
};

TEST_F(UpdateCycleTest, NothingIsCapturedBeforeTheChannelWalkHasEnded) {
  rig.Start();
  rig.Run(1s);
  EXPECT_TRUE(rig->State().Radio.ChannelsLoading);
  EXPECT_EQ(CapturesMade(), 0U);
}

TEST_F(UpdateCycleTest, TheFirstCaptureGoesToSlotOneAndNothingIsTagged) {
  rig.StartIdle();
  EXPECT_EQ(State().CaptureSlot, 1);
  EXPECT_EQ(CapturesMade(), 1U);
  EXPECT_TRUE(rig.Audio.CaptureFiles[1]->IsOpen());
  EXPECT_TRUE(rig.Audio.Tagged.empty());
}

TEST_F(UpdateCycleTest, SlotsAlternateFromSongToSong) {
  rig.StartIdle();
  rig.NextSong("A", "1");
  EXPECT_EQ(State().CaptureSlot, 0);
  rig.NextSong("B", "2");
  EXPECT_EQ(State().CaptureSlot, 1);
}

TEST_F(UpdateCycleTest, AnUnwantedCaptureIsDeletedAtItsEnd) {
  rig.StartIdle();
  rig.NextSong("A", "1");
  rig.NextSong("B", "2");
  EXPECT_EQ(rig.Recordings().size(), 1U);
  EXPECT_FALSE(rig.Logged("ecorded: "));
}

TEST_F(UpdateCycleTest, TheSameArtistAndTitleAgainIsNoChange) {
  rig.StartIdle();
  rig.NextSong("Moonlighters", "Slow Tide");
  EXPECT_EQ(CapturesMade(), 1U);
}

TEST_F(UpdateCycleTest, AChangeToEmptyTextIsAChange) {
  rig.StartIdle();
  rig.NextSong("", "");
  EXPECT_EQ(CapturesMade(), 2U);
  EXPECT_EQ(State().LastArtist, "");
}

TEST_F(UpdateCycleTest, AChangeOfCaseAloneIsAChange) {
  rig.StartIdle();
  rig.NextSong("MoonLighters", "Slow Tide");
  EXPECT_EQ(CapturesMade(), 2U);
}

TEST_F(UpdateCycleTest, ASongChangeWaitsForTheSoundWithTheThreadBlocked) {
  rig.Set("SongDelay", "2000");
  rig.StartIdle();
  const auto before = rig.Audio.CaptureFiles[1]->Written.back().Samples.size();
  rig.Radio.Play(44, "A", "1");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return State().CaptureSlot == 0; }, 5s));
  const auto& finished = rig.Audio.CaptureFiles[1]->Written.back().Samples;
  EXPECT_GE(finished.size() - before, 2000U)
      << "the delay's own sound belongs to the old song, at 1000 a second";
  EXPECT_TRUE(State().SongBoundarySeen);
}

TEST_F(UpdateCycleTest, AfterAChannelChangeTheFirstBoundaryIsImmediateAndNoWholeSongBegins) {
  rig.Set("SongDelay", "5000");
  rig.StartIdle();
  rig->SetChannelNumber(50);
  EXPECT_TRUE(State().SkipSongDelay);
  EXPECT_FALSE(State().SongBoundarySeen);
  const auto asked = rig.Loop.SteadyNow();
  ASSERT_TRUE(
      rig.Loop.RunUntil([&] { return State().LastChannel == 50 && State().LastArtist == "Artist 50"; }, 4s));
  EXPECT_LT(rig.Loop.SteadyNow() - asked, 4s);
  EXPECT_FALSE(State().SongBoundarySeen);
  EXPECT_FALSE(State().SkipSongDelay);
}

TEST_F(UpdateCycleTest, WithoutSplittingTheCaptureRunsOnAcrossSongs) {
  rig.Set("Cleftune", "False");
  rig.StartIdle();
  const std::size_t made = CapturesMade();
  rig.NextSong("A", "1");
  rig.NextSong("B", "2");
  EXPECT_EQ(CapturesMade(), made);
  EXPECT_EQ(State().LastArtist, "Moonlighters") << "the file bears the song at which it began";
}

TEST_F(UpdateCycleTest, WithoutSplittingAStopClosesTheOneFile) {
  rig.Set("Cleftune", "False");
  rig.Set("Integrel", "False");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  rig.NextSong("A", "1");
  rig.Run(60s);
  rig->cmdStop();
  rig.Run(1s);
  EXPECT_THAT(rig.LogTexts(),
              Contains(StartsWith(
                  "Recorded: Channel 44  \"Moonlighters - Slow Tide (Incomplete)\"  Song length: 2:")));
}

TEST_F(UpdateCycleTest, WholeSongsWithoutSplittingWaitUntilAStop) {
  rig.Set("Cleftune", "False");
  rig.StartIdle();
  rig->SetChannelNumber(45);
  rig.Run(5s);
  rig->cmdRecord();
  ASSERT_EQ(rig.Window().lblRecording.Caption, "Waiting for next song");
  rig.NextSong("A", "1");
  rig.NextSong("B", "2");
  EXPECT_EQ(rig.Window().lblRecording.Caption, "Waiting for next song");
  rig->cmdStop();
  EXPECT_EQ(rig.Window().lblRecording.Caption, "");
}

TEST_F(UpdateCycleTest, LabelsShowTheTunedChannelWithAmpersandsDoubled) {
  rig.Radio.Channels[44] = {"R&B", "Soul & more", "Salt & Sea", "You & I"};
  rig.StartIdle();
  rig.Run(5s);
  EXPECT_EQ(rig.Window().lblChannel.Caption, "44: R&&B");
  EXPECT_EQ(rig.Window().lblGenre.Caption, "Soul && more");
  EXPECT_EQ(rig.Window().lblArtist.Caption, "Salt && Sea");
  EXPECT_EQ(rig.Window().lblSong.Caption, "You && I");
  EXPECT_EQ(rig.Window().Title, "Kestrune: Salt & Sea");
}

TEST_F(UpdateCycleTest, WithoutTheWatchASilentRadioChangesNothingAndTheCaptureRunsOn) {
  rig.Set("Watch", "False");
  rig.StartIdle();
  rig.Radio.Answers = false;
  rig.Run(10min);
  EXPECT_EQ(CapturesMade(), 1U);
  EXPECT_GT(State().CaptureSlots[1].LengthMs, 600000);
  rig.Radio.Answers = true;
  rig.NextSong("A", "1");
  rig.Run(3s);
  EXPECT_EQ(CapturesMade(), 2U);
}

TEST_F(UpdateCycleTest, TheCutTakesNoSampleFromEitherSide) {
  rig.StartIdle();
  for (int song = 0; song < 6; ++song) {
    rig.Run(std::chrono::milliseconds(7777 + 313 * song));
    rig.NextSong("Artist", std::to_string(song));
  }
  std::vector<std::int16_t> all;
  for (std::size_t file = 0; file < 3; ++file) {
    for (const std::size_t slot : {1U, 0U}) {
      const auto& samples = rig.Audio.CaptureFiles[slot]->Written.at(file).Samples;
      all.insert(all.end(), samples.begin(), samples.end());
    }
  }
  ASSERT_GT(all.size(), 50000U);
  for (std::size_t i = 1; i < all.size(); ++i) {
    ASSERT_EQ(all[i], static_cast<std::int16_t>(all[i - 1] + 1)) << "at sample " << i;
  }
}

/// The cycle alone, with the schedule pass replaced by a count.
TEST_F(UpdateCycleTest, TheTickComesFiveTimesASecondAndLengthsFollow) {
  rig.StartIdle();
  const std::int64_t before = State().CaptureSlots[1].LengthMs;
  rig.Run(1s);
  EXPECT_NEAR(static_cast<double>(State().CaptureSlots[1].LengthMs - before), 1000, 150);
}

TEST_F(UpdateCycleTest, TheTimeOfABoundaryIsThatAfterTheDelay) {
  rig.Set("SongDelay", "5000");
  rig.StartIdle();
  rig.Radio.Play(44, "A", "1");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->State().Radio.CurrentSong == "1"; }, 5s));
  const base::DateValue changed = rig.Loop.Now();
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return State().CaptureSlot == 0; }, 10s));
  EXPECT_GE(base::SecondsBetween(changed, State().SongBoundaryTime), 5);
}

TEST_F(UpdateCycleTest, ABoundaryCopiesTheRadiosTextIntoTheGrid) {
  rig.StartIdle();
  rig.NextSong("A", "1");
  const radio::ChannelGrid& grid = rig->Parts().Channels.Grid();
  const auto& row = grid.At(grid.FindRow(44));
  EXPECT_EQ(row[radio::ChannelGrid::Artist], " A ");
  EXPECT_EQ(row[radio::ChannelGrid::Song], " 1 ");
}

TEST_F(UpdateCycleTest, NoTickWorksWithinATickThatHasItsTimerBack) {
  // A schedule pass may turn the timer on and then wait for the radio; here a press within the first pump of a
  // tick stands for it. The delay of the song lets the next tick fall due within this one.
  rig.StartIdle();
  const std::size_t made = CapturesMade();
  rig.Radio.Play(44, "A", "1");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return rig->State().Radio.CurrentSong == "1"; }, 5s));
  bool pressed = false;
  rig.Radio.WhenCommanded = [&] {
    if (!std::exchange(pressed, true)) rig->cmdRecord();
  };
  rig.Run(5s);
  EXPECT_EQ(CapturesMade(), made + 1);
}

TEST_F(UpdateCycleTest, NoTickWorksWithinTheHandlingOfAReply) {
  rig.Set("SongDelay", "1000");
  rig.StartIdle();
  // Something slow, such as a window with much to paint, is served while the reply with the new song is handled, so
  // that a tick falls due before that handling is over.
  bool slept = false;
  std::function<void()> slow = [&] {
    if (rig->State().Radio.InfoBusy && rig->Parts().Channels.TunedRow()->Song == "1") {
      slept = true;
      rig.Loop.Sleep(300ms);
    } else if (rig.Loop.Pumping()) {
      rig.Loop.Post(slow);
    }
  };
  bool cutWithin = false;
  std::function<void()> look = [&] {
    cutWithin = cutWithin || (rig->State().Recording.BoundaryBusy && rig->State().Radio.InfoBusy);
    rig.Loop.AtHardware(10ms, look);
  };
  look();
  rig.Radio.Play(44, "A", "1");
  rig.Radio.WhenCommanded = [&] {
    if (slept) return;
    // It comes just before the reply, and comes again at each pump.
    rig.Loop.AtHardware(rig.Radio.AnswerDelay, [&] { rig.Loop.Post([&] { rig.Loop.Post(slow); }); });
  };
  rig.Run(5s);
  EXPECT_TRUE(slept);
  EXPECT_FALSE(cutWithin);
  EXPECT_EQ(State().LastSong, "1") << "a later tick has cut";
}

TEST_F(UpdateCycleTest, NoBoundaryIsTakenWhileTheProgramLoads) {
  bool loading = true;
  auto report = rig.Loop.MakeTimer(100ms, [&] {
    if (rig->State().Run.FormLoading && rig.Radio.IsOpen()) rig.Radio.Report(44);
    loading = rig->State().Run.FormLoading;
  });
  report->SetEnabled(true);
  rig.Start();
  report->SetEnabled(false);
  ASSERT_EQ(rig->State().Radio.CurrentSong, "Slow Tide") << "the radio said so during the load";
  EXPECT_EQ(CapturesMade(), 0U);
  EXPECT_EQ(State().LastSong, "");
}

}  // namespace
}  // namespace kestrune::test
