#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "cut/LagModel.h"
#include "receiver/Dice.h"

namespace kestrune::cut {
namespace {

/// Evidence of a boundary that is clear to about a block.
LagRow Clear(int lagMs, float strength = 8) {
  LagRow row{};
  for (std::size_t i = 0; i < kLags; ++i) {
    const float far = static_cast<float>(LagAt(i) - lagMs) / 20;
    row[i] = strength * std::exp(-0.5F * far * far);
  }
  return row;
}

float Sum(const LagRow& row) {
  return std::accumulate(row.begin(), row.end(), 0.0F);
}

int Peak(const LagRow& row) {
  return LagAt(static_cast<std::size_t>(std::max_element(row.begin(), row.end()) - row.begin()));
}

TEST(LagModel, AFreshOneExpectsWhatItWasTold) {
  const LagModel model(600);
  EXPECT_NEAR(model.MedianMs(), 600, 60);
  EXPECT_EQ(model.Changes(), 0);
  const LagRow expected = model.Expected();
  EXPECT_NEAR(Sum(expected), 1, 1e-3);
  EXPECT_EQ(Peak(expected), 600);
}

TEST(LagModel, EveryLagStaysPossible) {
  LagModel model(600);
  for (int i = 0; i < 50; ++i) model.Renew(Clear(600, 20));
  const LagRow expected = model.Expected();
  EXPECT_GT(expected.front(), 1e-5F);
  EXPECT_GT(expected.back(), 1e-5F);
}

TEST(LagModel, ClearBoundariesMoveItToTheStationsLag) {
  LagModel model(600);
  for (int i = 0; i < 6; ++i) model.Renew(Clear(-700));
  EXPECT_NEAR(model.MedianMs(), -700, 60);
  EXPECT_LT(model.JitterMs(), 200);
  EXPECT_EQ(model.Changes(), 6);
}

TEST(LagModel, SilentEvidenceHardlyMovesIt) {
  LagModel model(600);
  for (int i = 0; i < 10; ++i) model.Renew(Clear(1500));
  const int before = model.MedianMs();
  model.Renew(LagRow{});
  EXPECT_NEAR(model.MedianMs(), before, 20);
}

TEST(LagModel, AVagueBoundaryMovesItLessThanAClearOne) {
  LagModel clear(600);
  LagModel vague(600);
  clear.Renew(Clear(2000, 8));
  vague.Renew(Clear(2000, 3));
  EXPECT_GT(clear.MedianMs(), vague.MedianMs());
}

TEST(LagModel, OneOutlierDoesNotMoveIt) {
  LagModel model(600);
  for (int i = 0; i < 15; ++i) model.Renew(Clear(1000, 60));
  model.Renew(Clear(-2500, 60));
  EXPECT_NEAR(model.MedianMs(), 1000, 60);
}

TEST(LagModel, ItFollowsADrift) {
  LagModel model(600);
  int lag = 0;
  for (int i = 0; i < 60; ++i, lag += 10) model.Renew(Clear(lag, 12));
  EXPECT_NEAR(model.MedianMs(), lag, 100);
}

TEST(LagModel, ItFollowsAStationThatChangesItsHabit) {
  LagModel model(600);
  for (int i = 0; i < 30; ++i) model.Renew(Clear(2000, 12));
  for (int i = 0; i < 8; ++i) model.Renew(Clear(-500, 12));
  EXPECT_NEAR(model.MedianMs(), -500, 100);
}

TEST(LagModel, ItLearnsTheSizeOfTheJitter) {
  const std::uint64_t seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  receiver::Dice dice(seed);
  LagModel calm(600);
  LagModel restless(600);
  for (int i = 0; i < 40; ++i) {
    const double chance = dice.Fraction() + dice.Fraction() + dice.Fraction() - 1.5;
    calm.Renew(Clear(500 + static_cast<int>(chance * 160), 12));
    restless.Renew(Clear(500 + static_cast<int>(chance * 1200), 12));
  }
  EXPECT_LT(calm.JitterMs(), 150);
  EXPECT_GT(restless.JitterMs(), 400);
}

TEST(LagModel, EvidenceThatIsNowhereFiniteIsNone) {
  LagModel model(600);
  LagRow none;
  none.fill(-INFINITY);
  model.Renew(none);
  EXPECT_NEAR(model.MedianMs(), 600, 60);
  none.fill(NAN);
  model.Renew(none);
  EXPECT_NEAR(Sum(model.Expected()), 1, 1e-3);
}

TEST(LagModel, BoundariesAtTheEndsAreLearned) {
  for (const int lag : {kLowestLag, kHighestLag}) {
    LagModel model(600);
    for (int i = 0; i < 12; ++i) model.Renew(Clear(lag, 12));
    EXPECT_NEAR(model.MedianMs(), lag, 100);
  }
}

TEST(LagModel, HalfIsForgottenInAMonthAndAllInTime) {
  LagModel model(600);
  for (int i = 0; i < 15; ++i) model.Renew(Clear(2400, 12));
  const auto share = [](const LagModel& of) {
    float sum = 0;
    const LagRow expected = of.Expected();
    for (std::size_t i = 0; i < kLags; ++i) sum += std::abs(LagAt(i) - 2400) <= 200 ? expected[i] : 0;
    return sum;
  };
  const float known = share(model);
  const float fresh = share(LagModel(600));
  LagModel month = model;
  month.Forget(30);
  EXPECT_NEAR(share(month) - fresh, (known - fresh) / 2, 0.03);
  LagModel years = model;
  years.Forget(3000);
  EXPECT_NEAR(years.MedianMs(), 600, 60);
  model.Forget(-5);
  EXPECT_NEAR(share(model), known, 1e-4);
}

TEST(LagModel, ItsTextGivesItBack) {
  LagModel model(300);
  for (int i = 0; i < 7; ++i) model.Renew(Clear(1240));
  LagModel read;
  ASSERT_TRUE(LagModel::FromText(model.Text(), read));
  EXPECT_EQ(read.Changes(), 7);
  EXPECT_NEAR(read.MedianMs(), model.MedianMs(), 20);
  EXPECT_NEAR(read.JitterMs(), model.JitterMs(), 20);
  const LagRow one = model.Expected();
  const LagRow other = read.Expected();
  for (std::size_t i = 0; i < kLags; ++i) ASSERT_NEAR(one[i], other[i], 0.002) << LagAt(i);
  EXPECT_LT(model.Text().size(), 8000U);
}

TEST(LagModel, ATextOfAnotherKindGivesNothing) {
  LagModel model(600);
  for (const char* text :
       {"", "1", "1 5", "1 5 600", "2 5 600 10:1:5", "1 -5 600 10:1:5", "1 5 99999 10:1:5", "1 5 600 451:1:5",
        "1 5 600 10:6:5", "1 5 600 10:1:0", "1 5 600 10:1", "1 5 600 10:1:x", "1 5 600 10:1:nan",
        "1 5 600 -1:1:5", "1 5 600 10:1:1001", "1 5 600 10:1:5 junk"}) {
    EXPECT_FALSE(LagModel::FromText(text, model)) << text;
  }
  EXPECT_EQ(model.Changes(), 0);
  EXPECT_TRUE(LagModel::FromText("1 5 600 10:1:5", model));
  EXPECT_EQ(model.Changes(), 5);
  EXPECT_EQ(model.MedianMs(), LagAt(10));
}

}  // namespace
}  // namespace kestrune::cut
