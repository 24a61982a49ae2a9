#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "cut/Blocks.h"

namespace kestrune::cut {
namespace {

/// A second of a tone, as loud left and right as said.
std::vector<std::int16_t> Tone(double hertz, double left, double right, int rate = 44100) {
  std::vector<std::int16_t> samples;
  for (int i = 0; i < rate; ++i) {
    const double wave = 10000 * std::sin(2 * std::numbers::pi * hertz * i / rate);
    samples.push_back(static_cast<std::int16_t>(wave * left));
    samples.push_back(static_cast<std::int16_t>(wave * right));
  }
  return samples;
}

/// The blocks of some sound with silence after it.
std::vector<Block> BlocksOf(std::vector<std::int16_t> samples, int channels = 2, int rate = 44100) {
  BlockMeter meter(rate, channels);
  samples.resize(samples.size() + static_cast<std::size_t>(meter.Ahead() * channels), 0);
  std::vector<Block> blocks;
  meter.Hear(samples, blocks);
  return blocks;
}

std::size_t Loudest(const std::array<float, kBands>& bands) {
  return static_cast<std::size_t>(std::max_element(bands.begin(), bands.end()) - bands.begin());
}

TEST(Blocks, ThereAreFiftyASecondAndAPartBlockIsLeftOut) {
  auto samples = Tone(1000, 1, 1);
  EXPECT_EQ(BlocksOf(samples).size(), 50U);
  samples.pop_back();
  samples.pop_back();
  EXPECT_EQ(BlocksOf(samples).size(), 49U);
  EXPECT_TRUE(BlocksOf({}).empty());
}

TEST(Blocks, SilenceIsAtTheFloor) {
  const std::vector<std::int16_t> silence(88200, 0);
  for (const Block& block : BlocksOf(silence)) {
    ASSERT_EQ(block.Level, kSilence);
    ASSERT_EQ(block.Side, kSilence);
    ASSERT_EQ(block.MiddleBands[5], kSilence);
  }
}

TEST(Blocks, WhatIsEqualInBothChannelsIsInTheMiddle) {
  const auto samples = Tone(1000, 1, 1);
  const Block block = BlocksOf(samples)[25];
  // A sine of 10000 of 32768.
  EXPECT_NEAR(block.Middle, 20 * std::log10(10000 / 32768.0 / std::sqrt(2.0)), 0.3);
  EXPECT_EQ(block.Side, kSilence);
  EXPECT_NEAR(block.Level, block.Middle, 0.01);
}

TEST(Blocks, WhatIsOppositeIsAtTheSide) {
  const auto samples = Tone(1000, 1, -1);
  const Block block = BlocksOf(samples)[25];
  EXPECT_LT(block.Middle, -80);
  EXPECT_GT(block.Side, -15);
  EXPECT_GT(block.SideBands[Loudest(block.SideBands)], -20);
  EXPECT_LT(block.MiddleBands[Loudest(block.MiddleBands)], -70);
}

TEST(Blocks, OneChannelIsAllMiddle) {
  std::vector<std::int16_t> one;
  const auto two = Tone(1000, 1, 1);
  for (std::size_t i = 0; i < two.size(); i += 2) one.push_back(two[i]);
  const Block mono = BlocksOf(one, 1)[25];
  const Block stereo = BlocksOf(two)[25];
  EXPECT_NEAR(mono.Middle, stereo.Middle, 0.01);
  EXPECT_EQ(mono.Side, kSilence);
}

TEST(Blocks, HigherTonesAreInHigherBands) {
  std::size_t last = 0;
  for (const double hertz : {150.0, 400.0, 1000.0, 3000.0, 9000.0}) {
    const auto samples = Tone(hertz, 1, 1);
    const std::size_t band = Loudest(BlocksOf(samples)[25].MiddleBands);
    EXPECT_TRUE(hertz < 200 || band > last) << hertz;
    last = band;
  }
}

TEST(Blocks, HumIsTakenAway) {
  const auto hum = Tone(30, 1, 1);
  const auto tone = Tone(300, 1, 1);
  EXPECT_LT(BlocksOf(hum)[40].Level, BlocksOf(tone)[40].Level - 18);
}

TEST(Blocks, OtherRatesGiveTheSameLevels) {
  const Block usual = BlocksOf(Tone(1000, 1, 0.5))[25];
  for (const int rate : {8000, 22050, 48000}) {
    const auto samples = Tone(1000, 1, 0.5, rate);
    const auto blocks = BlocksOf(samples, 2, rate);
    ASSERT_EQ(blocks.size(), 50U) << rate;
    EXPECT_NEAR(blocks[25].Level, usual.Level, 0.5) << rate;
  }
}

}  // namespace
}  // namespace kestrune::cut
