#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "presenters/SongProgress.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::SongProgress;

class SongProgressTest : public ::testing::Test {
 protected:
  void Heard(const char* title, std::int64_t lengthMs) {
    platform::HistorySong song;
    song.Ended = rig.Loop.Now().AddHours(-1);
    song.Began = song.Ended.AddMinutes(-4);
    song.Artist = "Queen";
    song.Title = title;
    song.LengthMs = lengthMs;
    rig.History.Rows.Songs.push_back(song);
  }
  void Plays(const char* title) {
    rig.StartIdle();
    rig.NextSong("Queen", title);
  }
  [[nodiscard]] SongProgress Now() const { return rig.Rules->Progress(); }

  UnitRig rig;
};

TEST_F(SongProgressTest, ASongNeverHeardBeforeShowsHowLongItHasPlayed) {
  Plays("Innuendo");
  const std::int64_t begun = rig.Unit->State().Recording.CaptureSlots.at(0).LengthMs;
  rig.Run(65s);
  EXPECT_TRUE(Now().Shown);
  EXPECT_FALSE(Now().LengthKnown);
  EXPECT_TRUE(Now().Text == "1:05" || Now().Text == "1:06") << Now().Text << " after " << begun;
}

TEST_F(SongProgressTest, ASongHeardBeforeShowsHowFarItIs) {
  Heard("Innuendo", 220'000);
  Plays("Innuendo");
  rig.Run(110s);
  EXPECT_TRUE(Now().LengthKnown);
  EXPECT_TRUE(Now().Text.ends_with(" of 3:40")) << Now().Text;
  EXPECT_NEAR(2 * Now().Value, SongProgress::kEnd, 20);
}

TEST_F(SongProgressTest, OnceItLastsLongerThanItEverDidTheLengthIsForgotten) {
  Heard("Innuendo", 60'000);
  Plays("Innuendo");
  rig.Run(50s);
  EXPECT_TRUE(Now().LengthKnown);
  rig.Run(15s);
  EXPECT_TRUE(Now().Shown);
  EXPECT_FALSE(Now().LengthKnown);
  EXPECT_EQ(Now().Text.find("of"), std::string::npos);
}

TEST_F(SongProgressTest, AFewSecondsOfASongAreNoLength) {
  Heard("Innuendo", 29'999);
  Plays("Innuendo");
  EXPECT_TRUE(Now().Shown);
  EXPECT_FALSE(Now().LengthKnown);
}

TEST_F(SongProgressTest, SongsInOneFileHaveNone) {
  rig.Set("Cleftune", "False");
  rig.Set("Integrel", "False");
  Plays("Innuendo");
  EXPECT_TRUE(Now().Shown);
  rig.Unit->cmdRecord();
  rig.Run(5s);
  rig.NextSong("Queen", "Bicycle Race");
  rig.Run(5s);
  EXPECT_FALSE(Now().Shown);
}

TEST_F(SongProgressTest, NothingIsShownBeforeAnythingIsCaptured) {
  rig.Start();
  EXPECT_EQ(Now(), SongProgress{});
}

}  // namespace
}  // namespace kestrune::test
