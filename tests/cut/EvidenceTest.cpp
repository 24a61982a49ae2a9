#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "cut/Evidence.h"
#include "cut/EvidenceModel.h"

namespace kestrune::cut {
namespace {

/// Blocks whose bands have the shape of a song: even and odd bands differ.
std::vector<Block> Song(std::size_t count, float even, float odd) {
  std::vector<Block> blocks(count);
  for (std::size_t i = 0; i < count; ++i) {
    Block& block = blocks[i];
    block.Level = block.Middle = -20;
    block.Side = -30;
    for (std::size_t band = 0; band < kBands; ++band) {
      block.MiddleBands[band] = (band % 2 == 0 ? even : odd) + static_cast<float>((i * 7 + band * 3) % 5);
      block.SideBands[band] = block.MiddleBands[band] - 10;
    }
  }
  return blocks;
}

std::vector<Block> Joined(std::vector<Block> first, const std::vector<Block>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TEST(Evidence, BlocksOutsideTheSoundHaveNoNumbers) {
  const auto blocks = Song(50, -30, -50);
  const auto features = MeasureEvidence(blocks, -10, 100);
  ASSERT_EQ(features.size(), 100U);
  EXPECT_EQ(features[0], Features{});
  EXPECT_EQ(features[10], Features{});
  EXPECT_NE(features[11], Features{});
  EXPECT_EQ(features[99], Features{});
  EXPECT_EQ(MeasureEvidence({}, 0, 3), std::vector<Features>(3));
  EXPECT_EQ(MeasureEvidence(Song(2, -30, -50), 0, 2).size(), 2U);
  EXPECT_EQ(MeasureEvidence(Song(5, -30, -50), 0, 5).size(), 5U);
}

TEST(Evidence, EveryNumberIsFiniteAndOfOrdinarySize) {
  auto blocks = Joined(Song(500, -30, -50), Song(450, -50, -30));
  for (std::size_t i = 300; i < 320; ++i) blocks[i] = Block();
  for (const Features& features : MeasureEvidence(blocks, 0, blocks.size())) {
    for (const float value : features) {
      ASSERT_TRUE(std::isfinite(value));
      ASSERT_LT(std::abs(value), 40);
    }
  }
}

/// The places of the greatest value of each number.
std::vector<std::ptrdiff_t> Peaks(const std::vector<Features>& all) {
  std::vector<std::ptrdiff_t> peaks;
  for (std::size_t f = 0; f < kFeatures; ++f) {
    const auto peak =
        std::max_element(all.begin(), all.end(), [f](const auto& a, const auto& b) { return a[f] < b[f]; });
    peaks.push_back(peak - all.begin());
  }
  return peaks;
}

TEST(Evidence, WhatTellsAnotherSoundPeaksWhereItBegins) {
  const auto blocks = Joined(Song(500, -30, -50), Song(450, -50, -30));
  const auto peaks = Peaks(MeasureEvidence(blocks, 250, 450));
  // Divisions and likeness at every scale, strangeness, flux.
  EXPECT_GT(std::count_if(peaks.begin(), peaks.end(), [](auto peak) { return std::abs(peak - 250) <= 1; }),
            20);
}

TEST(Evidence, TheLoudnessOfTheWholeDoesNotMatter) {
  auto blocks = Joined(Song(500, -30, -50), Song(450, -45, -35));
  const auto loud = MeasureEvidence(blocks, 250, 450);
  for (Block& block : blocks) {
    for (float* level : {&block.Level, &block.Middle, &block.Side}) *level -= 8;
    for (auto* bands : {&block.MiddleBands, &block.SideBands}) {
      for (float& level : *bands) level -= 8;
    }
  }
  const auto quiet = MeasureEvidence(blocks, 250, 450);
  for (std::size_t i = 0; i < loud.size(); ++i) {
    for (std::size_t f = 0; f < kFeatures; ++f) ASSERT_NEAR(loud[i][f], quiet[i][f], 1e-3) << "number " << f;
  }
}

TEST(EvidenceModel, TheScoreIsTheLinearPathAndTheLayer) {
  EvidenceWeights weights;
  Features features{};
  features[3] = 2;
  EXPECT_EQ(Score(weights, features), 0);
  weights.Linear[3] = 1.5F;
  EXPECT_FLOAT_EQ(Score(weights, features), 3);
  weights.Layer[1][3] = 0.25F;
  weights.Bias[1] = 0.5F;
  weights.Out[1] = 2;
  EXPECT_FLOAT_EQ(Score(weights, features), 3 + 2 * std::tanh(1.0F));
}

}  // namespace
}  // namespace kestrune::cut
