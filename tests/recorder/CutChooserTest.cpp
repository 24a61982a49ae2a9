#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "recorder/CutChooser.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::recorder {
namespace {

constexpr platform::PcmFormat kForm{.SampleRate = 8000, .Channels = 1};

class CutChooserTest : public ::testing::Test {
 protected:
  config::Settings settings;
  test::SimulatedEventLoop loop;
  test::FakeHistoryStore store{loop};
  history::History history{store, loop};
  StationLags lags{history, settings, loop};
  CutChooser cuts{lags};
  std::vector<std::int16_t> block = std::vector<std::int16_t>(800);
};

TEST_F(CutChooserTest, ATextIsStampedWhenItFirstComes) {
  cuts.TextCame("A", "1", 1000);
  cuts.TextCame("A", "1", 2000);
  EXPECT_EQ(cuts.StampOf("A", "1", 9000), 1000);
  cuts.TextCame("A", "2", 3000);
  EXPECT_EQ(cuts.StampOf("A", "2", 9000), 3000);
  EXPECT_EQ(cuts.StampOf("A", "1", 9000), 9000) << "what is not on the air any more has no stamp";
}

TEST_F(CutChooserTest, ATextThatWasNotSeenToComeIsStampedNow) {
  EXPECT_EQ(cuts.StampOf("", "", 77), 77);
}

TEST_F(CutChooserTest, SoundTooCoarseToTellSongsByIsNotHeard) {
  cuts.Hear(block, 0, {.SampleRate = 6000, .Channels = 1});
  EXPECT_FALSE(cuts.Hears());
  cuts.Hear(block, 0, kForm);
  EXPECT_TRUE(cuts.Hears());
  cuts.Forget();
  EXPECT_FALSE(cuts.Hears());
}

TEST_F(CutChooserTest, WithoutSoundTheStampIsTheCut) {
  EXPECT_EQ(cuts.Choose(4711, 44).Frame, 4711);
  EXPECT_EQ(lags.Of(44).Changes(), 0) << "and nothing is learned";
}

TEST_F(CutChooserTest, AChoiceTeachesTheStationOnly) {
  for (int i = 0; i < 200; ++i) cuts.Hear(block, 800 * i, kForm);
  EXPECT_GT(cuts.Choose(40000, 44).Heard, 40000);
  EXPECT_EQ(lags.Of(44).Changes(), 1);
  EXPECT_EQ(lags.Of(45).Changes(), 0);
}

TEST_F(CutChooserTest, SoundThatDoesNotFollowBeginsAnew) {
  for (int i = 0; i < 200; ++i) cuts.Hear(block, 800 * i, kForm);
  cuts.Hear(block, 1000000, kForm);
  EXPECT_EQ(cuts.Choose(40000, 44).Heard, 40000) << "what came before is forgotten";
}

}  // namespace
}  // namespace kestrune::recorder
