#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "cut/Choice.h"

namespace kestrune::cut {
namespace {

constexpr std::size_t Index(int lagMs) {
  return static_cast<std::size_t>((lagMs - kLowestLag) / kBlockMs);
}

TEST(Choice, WithoutEvidenceTheExpectedLagIsChosen) {
  LagRow expected{};
  for (std::size_t i = 0; i < kLags; ++i) {
    const float far = static_cast<float>(LagAt(i) - 800) / 300;
    expected[i] = std::exp(-0.5F * far * far);
  }
  const float sum = std::accumulate(expected.begin(), expected.end(), 0.0F);
  for (float& value : expected) value /= sum;
  EXPECT_EQ(LagAt(LeastCost(Chances(expected, LagRow{})).Lag), 800);
  LagRow none;
  none.fill(-INFINITY);
  EXPECT_EQ(Chances(expected, none), expected);
}

TEST(Choice, ClearEvidenceWinsOverExpectation) {
  LagRow expected;
  expected.fill(1.0F / kLags);
  LagRow evidence{};
  evidence[Index(-1000)] = 20;
  const Chosen chosen = LeastCost(Chances(expected, evidence));
  EXPECT_EQ(LagAt(chosen.Lag), -1000);
  EXPECT_GT(chosen.Confidence, 0.99F);
}

TEST(Choice, ChancesSumToOneAndNothingIsAddedWhereNoSoundIs) {
  LagRow expected;
  expected.fill(1.0F / kLags);
  LagRow evidence{};
  evidence[0] = -INFINITY;
  evidence[1] = NAN;
  evidence[2] = 80;
  const LagRow chances = Chances(expected, evidence);
  EXPECT_NEAR(std::accumulate(chances.begin(), chances.end(), 0.0F), 1, 1e-4);
  EXPECT_EQ(chances[0], 0);
  EXPECT_EQ(chances[1], 0);
}

TEST(Choice, OfTwoFarBoundariesTheLikelierIsChosenNotTheirMiddle) {
  LagRow chances{};
  chances[Index(0)] = 0.55F;
  chances[Index(2000)] = 0.45F;
  EXPECT_EQ(LagAt(LeastCost(chances).Lag), 0);
  EXPECT_NEAR(LeastCost(chances).Confidence, 0.55F, 1e-4F);
}

TEST(Choice, BetweenTwoNearOnesThereIsAPlaceThatMissesNeither) {
  LagRow chances{};
  chances[Index(0)] = 0.5F;
  chances[Index(180)] = 0.5F;
  const Chosen chosen = LeastCost(chances);
  EXPECT_GE(LagAt(chosen.Lag), 80);
  EXPECT_LE(LagAt(chosen.Lag), 100);
  EXPECT_GT(chosen.Confidence, 0.99F);
}

TEST(Choice, TheEndsCanBeChosen) {
  for (const std::size_t end : {std::size_t{0}, kLags - 1}) {
    LagRow chances{};
    chances[end] = 1;
    EXPECT_EQ(LeastCost(chances).Lag, end);
  }
}

TEST(Choice, TheLikeliestPlacesAreSeparatePeaks) {
  LagRow chances{};
  chances[Index(1000)] = 0.3F;
  chances[Index(1020)] = 0.1F;
  chances[Index(1180)] = 0.05F;  // too near
  chances[Index(-500)] = 0.25F;
  chances[Index(-400)] = 0.24F;
  chances[Index(2000)] = 0.05F;
  chances[Index(3000)] = 0.005F;  // too unlikely
  const auto likeliest = Likeliest(chances);
  ASSERT_EQ(likeliest.size(), 3U);
  EXPECT_EQ(LagAt(likeliest[0].Lag), -500);
  EXPECT_NEAR(likeliest[0].Confidence, 0.49F, 1e-5F);
  EXPECT_EQ(LagAt(likeliest[1].Lag), 1000);
  EXPECT_NEAR(likeliest[1].Confidence, 0.4F, 1e-5F);
  EXPECT_EQ(LagAt(likeliest[2].Lag), 2000);
}

TEST(Choice, NoMoreThanFivePlacesAreToldAndTheEndsAreAmongThem) {
  LagRow chances{};
  for (std::size_t i = 0; i < kLags; i += 45) chances[i] = 1.0F / 11;
  EXPECT_EQ(Likeliest(chances).size(), kCandidates);
  LagRow ends{};
  ends.front() = ends.back() = 0.5F;
  EXPECT_EQ(Likeliest(ends).size(), 2U);
}

TEST(Choice, EachReasonHasAName) {
  EXPECT_EQ(NameOf(Reason::Gap), "gap");
  EXPECT_EQ(NameOf(Reason::Onset), "onset");
  EXPECT_EQ(NameOf(Reason::Novelty), "novelty");
  EXPECT_EQ(NameOf(Reason::Lag), "lag");
  EXPECT_EQ(NameOf(Reason::Text), "text");
}

}  // namespace
}  // namespace kestrune::cut
