// What a user is told when the sound fails, on a whole unit.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;

class SoundWatchTest : public ::testing::Test {
 protected:
  void Loudness(std::int16_t sample) {
    rig.Sound.SetSignal([sample](std::uint64_t /*frame*/, int /*channel*/) { return sample; });
  }
  void Record() {
    rig.StartIdle();
    rig->cmdRecord();
    rig.Run(10s);
  }
  [[nodiscard]] int Lines(std::string_view beginning) const {
    const auto lines = rig.LogTexts();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
  }
  [[nodiscard]] const recorder::WatchState& Watch() const { return rig.Unit->State().Watch; }

  static constexpr const char* kSilent =
      "No sound from the radio for 20 seconds; check the cable, the input device and its level";

  UnitRig rig;
};

TEST_F(SoundWatchTest, SilenceWhileRecordingIsSaidOnceAndSoIsItsEnd) {
  Loudness(1000);
  Record();
  Loudness(10);
  rig.Run(18s);
  EXPECT_FALSE(Watch().Silent);
  rig.Run(4s);
  EXPECT_TRUE(Watch().Silent);
  EXPECT_EQ(Lines(kSilent), 1);
  EXPECT_EQ(rig.Window().Warning, "No sound comes from the radio: check the cable and the input device.");
  EXPECT_EQ(rig.Rules->Explanation(), rig.Window().Warning);
  EXPECT_TRUE(rig.Window().TrayTip.ends_with("\n" + rig.Window().Warning));
  rig.Run(10min);
  EXPECT_EQ(Lines("No sound"), 1);
  Loudness(1000);
  rig.Run(2s);
  EXPECT_FALSE(Watch().Silent);
  EXPECT_EQ(Lines("Sound is back after 10:2"), 1);
  EXPECT_EQ(rig.Window().Warning, "");
}

TEST_F(SoundWatchTest, PausesOf19SecondsAreNoSilence) {
  Loudness(1000);
  Record();
  for (int pause = 0; pause < 20; ++pause) {
    Loudness(0);
    rig.Run(18500ms);
    Loudness(1000);
    rig.Run(500ms);
  }
  EXPECT_EQ(Lines("No sound"), 0);
}

TEST_F(SoundWatchTest, NobodyIsToldOfASilenceThatNobodyRecords) {
  Loudness(0);
  rig.StartIdle();
  rig.Run(5min);
  EXPECT_EQ(Lines("No sound"), 0);
  rig->cmdRecord();
  rig.Run(19s);
  EXPECT_EQ(Lines("No sound"), 0) << "the seconds before do not count";
  rig.Run(4s);
  EXPECT_EQ(Lines(kSilent), 1);
  rig->cmdStop();
  rig.Run(2s);
  EXPECT_FALSE(Watch().Silent);
  EXPECT_EQ(Lines("Sound is back"), 0);
}

TEST_F(SoundWatchTest, AnInputThatIsGoneIsSaidWithItsLength) {
  Record();
  rig.Sound.Die(30s);
  rig.Run(3s);
  EXPECT_EQ(Lines("Sound input lost"), 0);
  rig.Run(4s);
  EXPECT_EQ(Lines("Sound input lost: nothing comes from it"), 1);
  EXPECT_EQ(rig.Window().Warning, "The sound input is lost: nothing comes from it.");
  rig.Run(30s);
  EXPECT_EQ(Lines("Sound input found again after 0:3"), 1);
  EXPECT_EQ(Lines("No sound"), 0) << "one line, not two, for one failure";
  EXPECT_EQ(rig.Window().Warning, "");
}

TEST_F(SoundWatchTest, AnInputThatDoesNotOpenSaysWhy) {
  rig.Sound.FailOpening("Connection refused");
  rig.StartIdle();
  rig.Run(10s);
  EXPECT_EQ(Lines("Sound input lost: Connection refused"), 1);
  rig.Sound.FailOpening("");
  rig.Run(5s);
  EXPECT_EQ(Lines("Sound input found again after "), 1);
}

TEST_F(SoundWatchTest, AProgramThatWasHeldUpDoesNotBlameTheInput) {
  Record();
  rig.Loop.Sleep(20s);
  rig.Run(5s);
  EXPECT_EQ(Lines("Sound input lost"), 0);
}

TEST_F(SoundWatchTest, TooLoudASoundIsSaidOnceADay) {
  rig.Set("MinSongLength", "0");
  Loudness(32767);
  Record();
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(2s);
  EXPECT_THAT(rig.LogTexts(),
              Contains("The sound of \"Moonlighters - Slow Tide\" is too loud: 100 % of it is at "
                       "full scale; lower the recording level"));
  EXPECT_TRUE(rig->State().Recording.CaptureSlots[1].Outcome.Overloaded ||
              rig->State().Recording.CaptureSlots[0].Outcome.Overloaded);
  for (int song = 0; song < 5; ++song) rig.NextSong("Lanterns", "Song " + std::to_string(song));
  EXPECT_EQ(Lines("The sound of"), 1);
  rig.Loop.StepWallClock(24h);
  rig.NextSong("Lanterns", "Tomorrow");
  rig.Run(2s);
  EXPECT_EQ(Lines("The sound of"), 2);
}

TEST_F(SoundWatchTest, WithoutTheWatchNothingIsSaid) {
  rig.Set("Watch", "False");
  rig.Set("MinSongLength", "0");
  Loudness(0);
  Record();
  rig.Run(1min);
  rig.Sound.Die(30s);
  rig.Run(1min);
  Loudness(32767);
  rig.NextSong("Lanterns", "North Pier");
  rig.NextSong("Lanterns", "South Pier");
  EXPECT_EQ(Lines("No sound from the radio"), 0);
  EXPECT_EQ(Lines("Sound"), 0);
  EXPECT_EQ(Lines("The sound of"), 0);
  EXPECT_EQ(rig.Window().Warning, "");
}

TEST_F(SoundWatchTest, TurningTheWatchOffForgetsWhatItHasSeen) {
  Loudness(0);
  Record();
  rig.Run(1min);
  ASSERT_TRUE(Watch().Silent);
  ASSERT_TRUE(rig->Parts().Settings.Set("Watch", "False").Done());
  rig.Run(2s);
  EXPECT_FALSE(Watch().Silent);
  ASSERT_TRUE(rig->Parts().Settings.Set("Watch", "True").Done());
  rig.Run(10s);
  EXPECT_FALSE(Watch().Silent);
}

}  // namespace
}  // namespace kestrune::test
