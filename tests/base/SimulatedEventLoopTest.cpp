#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using Duration = SimulatedEventLoop::Duration;

constexpr Duration Ms(int count) {
  return Duration(count);
}

/// A loop with one timer of 100 ms that notes when it fires.
class SimulatedTimerTest : public testing::Test {
 protected:
  std::vector<int> fired;
  SimulatedEventLoop loop;
  std::unique_ptr<base::Timer> timer =
      loop.MakeTimer(Ms(100), [this] { fired.push_back(static_cast<int>(loop.SteadyNow().count())); });
};

using Times = std::vector<int>;

TEST_F(SimulatedTimerTest, IsDisabledAtFirst) {
  EXPECT_FALSE(timer->Enabled());
  EXPECT_EQ(timer->Interval(), Ms(100));
  loop.Run(Ms(1000));
  EXPECT_EQ(fired, Times());
}

TEST_F(SimulatedTimerTest, FiresEachTimeItsIntervalHasPassed) {
  timer->SetEnabled(true);
  loop.Run(Ms(99));
  EXPECT_EQ(fired, Times());
  loop.Run(Ms(251));
  EXPECT_EQ(fired, Times({100, 200, 300}));
  EXPECT_TRUE(timer->Enabled());
}

TEST_F(SimulatedTimerTest, EnablingADisabledOneStartsAFullInterval) {
  timer->SetEnabled(true);
  loop.Run(Ms(90));
  timer->SetEnabled(false);
  EXPECT_FALSE(timer->Enabled());
  loop.Run(Ms(60));
  timer->SetEnabled(true);
  loop.Run(Ms(100));
  EXPECT_EQ(fired, Times({250}));
}

TEST_F(SimulatedTimerTest, EnablingAnEnabledOneChangesNothing) {
  timer->SetEnabled(true);
  loop.Run(Ms(90));
  timer->SetEnabled(true);
  loop.Run(Ms(20));
  EXPECT_EQ(fired, Times({100}));
}

TEST_F(SimulatedTimerTest, SettingTheIntervalOfAnEnabledOneStartsAnew) {
  timer->SetEnabled(true);
  loop.Run(Ms(90));
  timer->SetInterval(Ms(100));
  loop.Run(Ms(99));
  EXPECT_EQ(fired, Times());
  loop.Run(Ms(1));
  EXPECT_EQ(fired, Times({190}));
  timer->SetInterval(Ms(40));
  loop.Run(Ms(80));
  EXPECT_EQ(fired, Times({190, 230, 270}));
}

TEST_F(SimulatedTimerTest, SettingTheIntervalOfADisabledOneDoesNotEnableIt) {
  timer->SetInterval(Ms(10));
  EXPECT_EQ(timer->Interval(), Ms(10));
  loop.Run(Ms(100));
  EXPECT_EQ(fired, Times());
}

TEST_F(SimulatedTimerTest, DisablingCancelsAlsoWhatIsDueAlready) {
  timer->SetEnabled(true);
  loop.Sleep(Ms(500));
  timer->SetEnabled(false);
  loop.PumpEvents();
  EXPECT_EQ(fired, Times());
}

TEST_F(SimulatedTimerTest, DestroyingCancels) {
  timer->SetEnabled(true);
  loop.Sleep(Ms(500));
  timer.reset();
  loop.Run(Ms(500));
  EXPECT_EQ(fired, Times());
}

TEST_F(SimulatedTimerTest, MomentsThatPassInASleepAreNotMadeUpFor) {
  timer->SetEnabled(true);
  loop.Sleep(Ms(350));
  loop.PumpEvents();
  loop.PumpEvents();
  EXPECT_EQ(fired, Times({350}));
  loop.Run(Ms(100));
  EXPECT_EQ(fired, Times({350, 450}));
}

TEST(SimulatedTimer, MayBeDestroyedWithinItsOwnHandler) {
  SimulatedEventLoop loop;
  int fired = 0;
  std::unique_ptr<base::Timer> timer;
  auto owned = std::make_shared<std::string>("captured");
  timer = loop.MakeTimer(Ms(10), [&timer, &fired, owned] {
    timer.reset();
    // What the handler holds lives until it returns.
    fired += *owned == "captured" ? 1 : 100;
  });
  timer->SetEnabled(true);
  loop.Run(Ms(100));
  EXPECT_EQ(fired, 1);
}

TEST(SimulatedTimer, DoesNotFireWithinItsOwnHandler) {
  SimulatedEventLoop loop;
  int depth = 0;
  int deepest = 0;
  int fired = 0;
  const auto timer = loop.MakeTimer(Ms(10), [&] {
    deepest = std::max(deepest, ++depth);
    ++fired;
    for (int i = 0; i < 5; ++i) {
      loop.Sleep(Ms(20));
      loop.PumpEvents();
    }
    --depth;
  });
  timer->SetEnabled(true);
  loop.Run(Ms(115));
  EXPECT_EQ(deepest, 1);
  EXPECT_EQ(fired, 1);
  // The next interval begins where the handler ended, at 110.
  loop.Run(Ms(5));
  EXPECT_EQ(fired, 2);
}

TEST(SimulatedTimer, EnabledAnewInItsHandlerItFiresWithinIt) {
  SimulatedEventLoop loop;
  int depth = 0;
  int deepest = 0;
  std::unique_ptr<base::Timer> timer;
  timer = loop.MakeTimer(Ms(10), [&] {
    deepest = std::max(deepest, ++depth);
    if (depth < 3) {
      timer->SetEnabled(false);
      timer->SetEnabled(true);
      loop.Sleep(Ms(10));
      loop.PumpEvents();
    }
    --depth;
  });
  timer->SetEnabled(true);
  loop.Run(Ms(10));
  EXPECT_EQ(deepest, 3);
}

TEST(SimulatedTimer, ItsIntervalSetInItsHandlerItFiresWithinIt) {
  SimulatedEventLoop loop;
  int depth = 0;
  int deepest = 0;
  std::unique_ptr<base::Timer> timer;
  timer = loop.MakeTimer(Ms(10), [&] {
    deepest = std::max(deepest, ++depth);
    if (depth < 2) {
      timer->SetInterval(Ms(5));
      loop.Sleep(Ms(4));
      loop.PumpEvents();
      EXPECT_EQ(deepest, 1);
      loop.Sleep(Ms(1));
      loop.PumpEvents();
    }
    --depth;
  });
  timer->SetEnabled(true);
  loop.Run(Ms(10));
  EXPECT_EQ(deepest, 2);
}

TEST(SimulatedTimer, DisabledInItsHandlerItIsOneShot) {
  SimulatedEventLoop loop;
  int fired = 0;
  std::unique_ptr<base::Timer> timer;
  timer = loop.MakeTimer(Ms(10), [&] {
    timer->SetEnabled(false);
    ++fired;
  });
  timer->SetEnabled(true);
  loop.Run(Ms(100));
  EXPECT_EQ(fired, 1);
  timer->SetEnabled(true);
  loop.Run(Ms(100));
  EXPECT_EQ(fired, 2);
}

TEST(SimulatedTimer, AHandlerMayDestroyAnotherTimerThatIsDue) {
  SimulatedEventLoop loop;
  bool otherFired = false;
  std::unique_ptr<base::Timer> other = loop.MakeTimer(Ms(10), [&] { otherFired = true; });
  const auto timer = loop.MakeTimer(Ms(10), [&] { other.reset(); });
  timer->SetEnabled(true);
  other->SetEnabled(true);
  loop.Sleep(Ms(10));
  loop.PumpEvents();
  EXPECT_FALSE(otherFired);
}

TEST(SimulatedTimer, AnIntervalOfNothingStillLetsTimePass) {
  SimulatedEventLoop loop;
  int fired = 0;
  const auto timer = loop.MakeTimer(Ms(0), [&] { ++fired; });
  timer->SetEnabled(true);
  loop.Run(Ms(50));
  EXPECT_EQ(fired, 50);
}

TEST(SimulatedTimer, EqualMomentsAreServedInTheOrderOfAsking) {
  SimulatedEventLoop loop;
  std::string order;
  const auto a = loop.MakeTimer(Ms(20), [&] { order += 'a'; });
  const auto b = loop.MakeTimer(Ms(10), [&] { order += 'b'; });
  const auto c = loop.MakeTimer(Ms(10), [&] { order += 'c'; });
  a->SetEnabled(true);
  c->SetEnabled(true);
  b->SetEnabled(true);
  loop.Run(Ms(20));
  EXPECT_EQ(order, "cbacb");
}

TEST(SimulatedEventLoop, SleepMovesTimeAndServesNothing) {
  SimulatedEventLoop loop;
  int handled = 0;
  const auto timer = loop.MakeTimer(Ms(10), [&] { ++handled; });
  timer->SetEnabled(true);
  loop.Post([&] { ++handled; });
  loop.Sleep(Ms(100));
  EXPECT_EQ(loop.SteadyNow(), Ms(100));
  EXPECT_EQ(handled, 0);
  loop.PumpEvents();
  EXPECT_EQ(handled, 2);
  EXPECT_EQ(loop.HandlersRun(), 2U);
  EXPECT_EQ(loop.SteadyNow(), Ms(100));
}

TEST(SimulatedEventLoop, HardwareHappensAtItsMomentAlsoWhileTheProgramSleeps) {
  SimulatedEventLoop loop;
  std::vector<Duration> happened;
  std::vector<Duration> handled;
  loop.AtHardware(Ms(30), [&] {
    happened.push_back(loop.SteadyNow());
    loop.Post([&] { handled.push_back(loop.SteadyNow()); });
    loop.AtHardware(Ms(15), [&] { happened.push_back(loop.SteadyNow()); });
  });
  loop.AtHardware(Ms(20), [&] { happened.push_back(loop.SteadyNow()); });
  loop.AtHardware(Ms(200), [&] { happened.push_back(loop.SteadyNow()); });
  loop.Sleep(Ms(100));
  EXPECT_EQ(happened, std::vector<Duration>({Ms(20), Ms(30), Ms(45)}));
  EXPECT_TRUE(handled.empty());
  loop.PumpEvents();
  EXPECT_EQ(handled, std::vector<Duration>({Ms(100)}));
  loop.Run(Ms(100));
  EXPECT_EQ(happened.back(), Ms(200));
}

TEST(SimulatedEventLoop, AHandlerFindsWhatHardwareDidBeforeItsMoment) {
  SimulatedEventLoop loop;
  std::string order;
  const auto timer = loop.MakeTimer(Ms(20), [&] { order += 't'; });
  timer->SetEnabled(true);
  loop.AtHardware(Ms(20), [&] { order += 'h'; });
  loop.Run(Ms(20));
  EXPECT_EQ(order, "ht");
}

TEST(SimulatedEventLoop, PumpServesWhatIsDueAtTheCallAndReturns) {
  SimulatedEventLoop loop;
  std::string order;
  loop.Post([&] {
    order += 'a';
    loop.Post([&] { order += 'b'; });
  });
  loop.PumpEvents();
  EXPECT_EQ(order, "a");
  loop.PumpEvents();
  EXPECT_EQ(order, "ab");
}

TEST(SimulatedEventLoop, APumpReturnsAlthoughAHandlerTakesLongerThanItsInterval) {
  SimulatedEventLoop loop;
  int fired = 0;
  const auto timer = loop.MakeTimer(Ms(10), [&] {
    ++fired;
    loop.Sleep(Ms(50));
  });
  timer->SetEnabled(true);
  loop.Sleep(Ms(10));
  loop.PumpEvents();
  EXPECT_EQ(fired, 1);
}

TEST(SimulatedEventLoop, ANestedPumpServesOtherHandlers) {
  SimulatedEventLoop loop;
  std::string order;
  const auto inner = loop.MakeTimer(Ms(30), [&] { order += 'i'; });
  const auto outer = loop.MakeTimer(Ms(10), [&] {
    order += '(';
    loop.Sleep(Ms(25));
    loop.PumpEvents();
    order += ')';
  });
  inner->SetEnabled(true);
  outer->SetEnabled(true);
  loop.Run(Ms(10));
  EXPECT_EQ(order, "(i)");
}

TEST(SimulatedEventLoop, ANestedPumpTakesPostsThatTheOuterOneHadInView) {
  SimulatedEventLoop loop;
  std::string order;
  loop.Post([&] {
    order += '(';
    loop.PumpEvents();
    order += ')';
  });
  loop.Post([&] { order += '1'; });
  loop.Post([&] { order += '2'; });
  loop.PumpEvents();
  EXPECT_EQ(order, "(12)");
}

TEST(SimulatedEventLoop, StartsWhereToldAndTheWallFollows) {
  SimulatedEventLoop loop(DateValue::FromCivil(2005, 1, 1, 23, 59, 59));
  EXPECT_EQ(loop.SteadyNow(), Ms(0));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 23, 59, 59));
  EXPECT_EQ(loop.TimeOfDay(), Ms(86399000));
  loop.Sleep(Ms(999));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 23, 59, 59));
  loop.Sleep(Ms(1));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 2));
  EXPECT_EQ(loop.TimeOfDay(), Ms(0));
}

TEST(SimulatedEventLoop, StartsOnNewYear2005AtNoonUnlessTold) {
  const SimulatedEventLoop loop;
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 12));
}

TEST(SimulatedEventLoop, AStepOfTheWallMovesNeitherSteadyTimeNorTimers) {
  SimulatedEventLoop loop(DateValue::FromCivil(2005, 1, 1, 12));
  std::vector<Duration> fired;
  const auto timer = loop.MakeTimer(Ms(100), [&] { fired.push_back(loop.SteadyNow()); });
  timer->SetEnabled(true);
  loop.Run(Ms(50));
  loop.StepWallClock(std::chrono::hours(-1));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 11));
  EXPECT_EQ(loop.SteadyNow(), Ms(50));
  loop.StepWallClock(std::chrono::hours(25));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 2, 12));
  loop.Run(Ms(50));
  EXPECT_EQ(fired, std::vector<Duration>({Ms(100)}));
}

TEST(SimulatedEventLoop, RunUntilStopsAtTheMomentOfTheCondition) {
  SimulatedEventLoop loop;
  int fired = 0;
  const auto timer = loop.MakeTimer(Ms(10), [&] { ++fired; });
  timer->SetEnabled(true);
  EXPECT_TRUE(loop.RunUntil([&] { return fired == 3; }, Ms(1000)));
  EXPECT_EQ(loop.SteadyNow(), Ms(30));
  EXPECT_FALSE(loop.RunUntil([&] { return fired == 100; }, Ms(70)));
  EXPECT_EQ(loop.SteadyNow(), Ms(100));
  EXPECT_EQ(fired, 10);
}

TEST(SimulatedEventLoop, RunUntilSeesWhatHardwareChangedAtTheLimit) {
  SimulatedEventLoop loop;
  bool ready = false;
  loop.AtHardware(Ms(100), [&] { ready = true; });
  EXPECT_TRUE(loop.RunUntil([&] { return ready; }, Ms(100)));
}

TEST(SimulatedEventLoop, RunWithNothingToDoStillMovesTime) {
  SimulatedEventLoop loop;
  loop.Run(Ms(86400000));
  EXPECT_EQ(loop.SteadyNow(), Ms(86400000));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 2, 12));
}

TEST(SimulatedEventLoop, ASleepOfTheMachineStopsTheSteadyClockAlone) {
  SimulatedEventLoop loop;
  loop.Run(Ms(1000));
  loop.SleepMachine(Ms(3600000));
  EXPECT_EQ(loop.SteadyNow(), Ms(1000));
  EXPECT_EQ(loop.BootNow(), Ms(3601000));
  EXPECT_EQ(loop.UniversalNow(), Ms(3601000));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 13, 0, 1));
}

TEST(SimulatedEventLoop, UniversalTimeFollowsASetClockAndNotSummerTime) {
  SimulatedEventLoop loop;
  loop.StepWallClockAt(DateValue::FromCivil(2005, 1, 1, 12, 0, 1), std::chrono::hours(1));
  loop.Run(Ms(2000));
  EXPECT_EQ(loop.Now(), DateValue::FromCivil(2005, 1, 1, 13, 0, 2));
  EXPECT_EQ(loop.UniversalNow(), Ms(2000));
  loop.StepWallClock(Ms(-60000));
  EXPECT_EQ(loop.UniversalNow(), Ms(-58000));
  EXPECT_EQ(loop.BootNow(), Ms(2000));
}

TEST(SimulatedEventLoop, TwoRunsWithTheSameCallsAreTheSame) {
  const auto run = [] {
    SimulatedEventLoop loop;
    std::string trace;
    const auto fast = loop.MakeTimer(Ms(7), [&] { trace += 'f'; });
    const auto slow = loop.MakeTimer(Ms(31), [&] {
      trace += '[';
      loop.Sleep(Ms(12));
      loop.PumpEvents();
      trace += ']';
    });
    fast->SetEnabled(true);
    slow->SetEnabled(true);
    loop.AtHardware(Ms(50), [&] { loop.Post([&] { trace += 'p'; }); });
    loop.Run(Ms(500));
    return trace;
  };
  const std::string first = run();
  EXPECT_NE(first.find("[f"), std::string::npos);
  EXPECT_EQ(run(), first);
}

}  // namespace
}  // namespace kestrune::test
