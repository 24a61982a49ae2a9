#include <algorithm>
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "cutlab/Fit.h"
#include "cutlab/Station.h"

namespace kestrune::cutlab {
namespace {

/// Examples in which one number tells the truth and another misleads.
std::vector<Example> Made(std::uint64_t seed, int count) {
  receiver::Dice dice(seed);
  std::vector<Example> examples;
  for (int n = 0; n < count; ++n) {
    Example example;
    example.Features.resize(cut::kLags);
    example.Expected.fill(1.0F / cut::kLags);
    const auto truth = static_cast<std::size_t>(dice.Between(0, static_cast<int>(cut::kLags) - 1));
    for (std::size_t k = 0; k < cut::kLags; ++k) {
      for (const std::size_t f : {0U, 1U, 2U}) example.Features[k][f] = static_cast<float>(dice.Fraction());
    }
    example.Features[truth][0] += 1.5F;
    example.RightFrom = example.RightTo = truth;
    examples.push_back(std::move(example));
  }
  return examples;
}

TEST(Fit, ItFindsTheNumberThatTellsTheTruthAndGeneralises) {
  const std::uint64_t seed = 3;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  FitOptions options;
  options.Epochs = 10;
  options.Rate = 0.03;
  const auto weights = Fit(Made(seed, 80), options);
  const auto unseen = Made(seed + 1, 20);
  EXPECT_GT(MeanLogChance(unseen, weights), MeanLogChance(unseen, cut::EvidenceWeights{}) + 3);
}

TEST(Fit, TheSameSeedGivesTheSameWeights) {
  FitOptions options;
  options.Epochs = 1;
  const auto examples = Made(9, 16);
  const auto one = Fit(examples, options);
  const auto two = Fit(examples, options);
  EXPECT_EQ(one.Linear, two.Linear);
  EXPECT_EQ(one.Layer, two.Layer);
  options.Seed = 2;
  EXPECT_NE(one.Layer, Fit(examples, options).Layer);
}

/// What this fit gave when it was written. Weights that differ mean that what FittedWeights.cpp says of its origin
/// no longer holds: fit those again, and put the new numbers here.
TEST(Fit, ASmallSetGivesTheWeightsThatItHasAlwaysGiven) {
  FitOptions options;
  options.Epochs = 3;
  options.Seed = 5;
  const auto weights = Fit(Made(11, 32), options);
  constexpr float kNear = 1e-4F;
  EXPECT_NEAR(weights.Linear[0], 0.01649F, kNear);
  EXPECT_NEAR(weights.Linear[1], 0.00247F, kNear);
  EXPECT_NEAR(weights.Linear[2], 0.00907F, kNear);
  EXPECT_NEAR(weights.Layer[0][0], 0.27390F, kNear);
  EXPECT_NEAR(weights.Layer[7][1], 0.06087F, kNear);
  EXPECT_NEAR(weights.Bias[3], 0.01645F, kNear);
  EXPECT_NEAR(weights.Out[3], 0.07611F, kNear);
}

TEST(Fit, FittedOnASmallSetOfMadeMusicItTellsJoinsAsTheShippedWeightsDo) {
  const std::uint64_t seed = 21;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  SyntheticPieces pieces(seed, 20);
  std::vector<Example> fitted;
  std::vector<Example> unseen;
  AddExamples(MakeStation(pieces, 10, seed), 2, seed, fitted);
  AddExamples(MakeStation(pieces, 5, seed + 1), 2, seed, unseen);
  FitOptions options;
  options.Epochs = 10;
  const auto weights = Fit(fitted, options);
  // From samples to weights, as when the shipped weights were fitted.
  EXPECT_NEAR(MeanLogChance(fitted, weights), -0.721, 0.01);
  EXPECT_NEAR(MeanLogChance(unseen, weights), -0.758, 0.01);
  const double nothing = MeanLogChance(unseen, cut::EvidenceWeights{});
  EXPECT_GT(MeanLogChance(fitted, weights), nothing + 1);
  EXPECT_GT(MeanLogChance(unseen, weights), nothing + 0.5);
  EXPECT_GT(MeanLogChance(unseen, cut::FittedWeights()), nothing + 1);
}

TEST(Station, TheSameSeedMakesTheSameStation) {
  SyntheticPieces pieces(4, 6);
  const Station one = MakeStation(pieces, 5, 8);
  const Station two = MakeStation(pieces, 5, 8);
  EXPECT_EQ(one.Samples, two.Samples);
  EXPECT_EQ(MakeStamps(one, {}, 1), MakeStamps(two, {}, 1));
  EXPECT_NE(MakeStamps(one, {}, 1), MakeStamps(one, {}, 2));
}

TEST(Station, EachKindOfJoinOccursAndTheTruthLiesInOrder) {
  SyntheticPieces pieces(4, 6);
  const Station station = MakeStation(pieces, 5, 8);
  ASSERT_EQ(station.Joins.size(), 5U);
  std::vector<JoinKind> kinds;
  std::int64_t last = 0;
  for (const Join& join : station.Joins) {
    kinds.push_back(join.Kind);
    EXPECT_LE(join.GapFrom, join.Start);
    EXPECT_GT(join.GapFrom, last + 20 * kRate);
    last = join.Start;
  }
  EXPECT_LT(last, static_cast<std::int64_t>(station.Samples.size() / 2));
  std::sort(kinds.begin(), kinds.end());
  EXPECT_EQ(std::unique(kinds.begin(), kinds.end()), kinds.end());
}

TEST(Station, SilenceBetweenSongsIsSilent) {
  SyntheticPieces pieces(4, 6);
  const Station station = MakeStation(pieces, 5, 8);
  for (const Join& join : station.Joins) {
    if (join.Kind != JoinKind::Silence) continue;
    ASSERT_GT(join.Start - join.GapFrom, kRate / 5);
    for (std::int64_t frame = join.GapFrom; frame < join.Start; ++frame) {
      ASSERT_LT(std::abs(station.Samples[static_cast<std::size_t>(2 * frame)]), 150);
    }
  }
}

}  // namespace
}  // namespace kestrune::cutlab
