#include <vector>

#include <gtest/gtest.h>

#include "recorder/SoundMeter.h"

namespace kestrune::test {
namespace {

using recorder::SoundMeter;
using Samples = std::vector<std::int16_t>;

TEST(SoundMeter, ABlockIsLoudFromMinus60DecibelsOn) {
  SoundMeter meter;
  meter.Take(Samples(100, 0));
  meter.Take(Samples(100, 32));
  meter.Take(Samples(100, -32));
  meter.Take({});
  EXPECT_EQ(meter.LoudBlocks(), 0U);
  meter.Take(Samples(100, 33));
  meter.Take(Samples(100, -33));
  EXPECT_EQ(meter.LoudBlocks(), 2U);
}

TEST(SoundMeter, TheWholeBlocksPowerCountsNotItsPeak) {
  SoundMeter meter;
  Samples click(1000, 0);
  click[500] = 1000;  // a power of 1000 on average
  meter.Take(click);
  EXPECT_EQ(meter.LoudBlocks(), 0U);
  click[501] = 1000;
  meter.Take(click);
  EXPECT_EQ(meter.LoudBlocks(), 1U);
}

TEST(SoundMeter, MoreThanOnePercentAtFullScaleIsTooLoud) {
  SoundMeter meter;
  meter.Begin();
  Samples block(1000, 100);
  for (int i = 0; i < 5; ++i) block[static_cast<std::size_t>(i)] = 32767;
  for (int i = 5; i < 10; ++i) block[static_cast<std::size_t>(i)] = -32768;
  meter.Take(block);
  EXPECT_FALSE(meter.Overloaded()) << "exactly one percent";
  EXPECT_EQ(meter.FullScalePercent(), 1);
  meter.Take(Samples(1, 32767));
  EXPECT_TRUE(meter.Overloaded());
  meter.Begin();
  EXPECT_FALSE(meter.Overloaded()) << "another capture";
  EXPECT_EQ(meter.FullScalePercent(), 0);
}

}  // namespace
}  // namespace kestrune::test
