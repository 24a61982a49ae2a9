#include <gtest/gtest.h>

#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using namespace std::chrono_literals;

DateValue At(int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, 4, 3, hour, minute, second);
}

TEST(TimeUntil, WithoutAStepItIsTheDifference) {
  const SimulatedEventLoop loop(At(1, 0));
  EXPECT_EQ(base::TimeUntil(loop, At(2, 30, 5)), 90min + 5s);
  EXPECT_EQ(base::TimeUntil(loop, At(1, 0)), 0s);
  EXPECT_EQ(base::TimeUntil(loop, At(0, 59)), -1min);
}

TEST(TimeUntil, AStepForwardShortensIt) {
  SimulatedEventLoop loop(At(1, 0));
  loop.StepWallClockAt(At(2, 0), 1h);
  EXPECT_EQ(base::TimeUntil(loop, At(1, 59, 59)), 59min + 59s);
  EXPECT_EQ(base::TimeUntil(loop, At(3, 0)), 1h);
  EXPECT_EQ(base::TimeUntil(loop, At(3, 30)), 90min);
  for (const DateValue leftOut : {At(2, 0), At(2, 0, 1), At(2, 30), At(2, 59, 59)})
    EXPECT_EQ(base::TimeUntil(loop, leftOut), 1h) << "the step takes the clock past it";
  loop.Run(61min);
  EXPECT_EQ(loop.Now(), At(3, 1));
  EXPECT_EQ(base::TimeUntil(loop, At(3, 30)), 29min);
}

TEST(TimeUntil, AStepBackLengthensIt) {
  SimulatedEventLoop loop(At(1, 0));
  loop.StepWallClockAt(At(2, 0), -1h);
  EXPECT_EQ(base::TimeUntil(loop, At(1, 30)), 30min) << "the first time";
  EXPECT_EQ(base::TimeUntil(loop, At(2, 0)), 2h);
  EXPECT_EQ(base::TimeUntil(loop, At(2, 30)), 150min);
  EXPECT_EQ(base::TimeUntil(loop, At(9, 0)), 9h);
}

}  // namespace
}  // namespace kestrune::test
