// What the contract of base::EventLoop says, clause by clause, of both loops: the real one, in short real
// intervals, and the simulated one. Upper limits leave room for a busy machine; lower ones are exact.
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "QtApplication.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using base::Timer;
using std::chrono::milliseconds;

constexpr milliseconds kLong{10'000};

struct SimulatedLoop {
  SimulatedEventLoop Loop;

  void Run(milliseconds duration) { Loop.Run(duration); }
  [[nodiscard]] bool RunUntil(const std::function<bool()>& condition, milliseconds limit) {
    return Loop.RunUntil(condition, limit);
  }
};

template <typename LoopUnderTest>
class EventLoopContract : public ::testing::Test {
 protected:
  [[nodiscard]] base::EventLoop& Loop() { return Under.Loop; }
  [[nodiscard]] milliseconds Now() { return Under.Loop.SteadyNow(); }
  /// Runs until the timers of the test have fired so often in all.
  [[nodiscard]] bool Fired(int times) {
    return Under.RunUntil([this, times] { return Count >= times; }, kLong);
  }
  /// Pumps, as a waiting operation does, for a time.
  void PumpFor(milliseconds duration) {
    const milliseconds end = Now() + duration;
    while (Now() < end) {
      Loop().PumpEvents();
      Loop().Sleep(milliseconds(5));
    }
    Loop().PumpEvents();
  }

  LoopUnderTest Under;
  int Count = 0;
};

struct LoopNames {
  template <typename LoopUnderTest>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<LoopUnderTest, QtLoop> ? "Qt" : "Simulated";
  }
};
using Loops = ::testing::Types<QtLoop, SimulatedLoop>;
TYPED_TEST_SUITE(EventLoopContract, Loops, LoopNames);

TYPED_TEST(EventLoopContract, ANewTimerIsDisabled) {
  const auto timer = this->Loop().MakeTimer(milliseconds(1), [this] { ++this->Count; });
  EXPECT_FALSE(timer->Enabled());
  EXPECT_EQ(timer->Interval(), milliseconds(1));
  this->Under.Run(milliseconds(30));
  EXPECT_EQ(this->Count, 0);
}

TYPED_TEST(EventLoopContract, EnablingStartsAFullInterval) {
  const auto timer = this->Loop().MakeTimer(milliseconds(60), [this] { ++this->Count; });
  this->Under.Run(milliseconds(40));
  const milliseconds start = this->Now();
  timer->SetEnabled(true);
  EXPECT_TRUE(timer->Enabled());
  ASSERT_TRUE(this->Fired(1));
  EXPECT_GE(this->Now() - start, milliseconds(60));
}

TYPED_TEST(EventLoopContract, FiresAgainForAsLongAsItIsEnabled) {
  const auto timer = this->Loop().MakeTimer(milliseconds(10), [this] { ++this->Count; });
  const milliseconds start = this->Now();
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(5));
  EXPECT_GE(this->Now() - start, milliseconds(50));
  timer->SetEnabled(false);
  const int before = this->Count;
  this->Under.Run(milliseconds(50));
  EXPECT_EQ(this->Count, before);
}

TYPED_TEST(EventLoopContract, EnablingAnEnabledTimerChangesNothing) {
  const auto timer = this->Loop().MakeTimer(milliseconds(300), [this] { ++this->Count; });
  const milliseconds start = this->Now();
  timer->SetEnabled(true);
  this->Under.Run(milliseconds(200));
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(1));
  EXPECT_LT(this->Now() - start, milliseconds(490));
}

TYPED_TEST(EventLoopContract, DisablingAndEnablingStartsAFullIntervalAnew) {
  const auto timer = this->Loop().MakeTimer(milliseconds(60), [this] { ++this->Count; });
  timer->SetEnabled(true);
  this->Under.Run(milliseconds(30));
  timer->SetEnabled(false);
  const milliseconds start = this->Now();
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(1));
  EXPECT_GE(this->Now() - start, milliseconds(60));
}

TYPED_TEST(EventLoopContract, SettingTheIntervalOfAnEnabledTimerStartsAFullIntervalAnew) {
  const auto timer = this->Loop().MakeTimer(milliseconds(60), [this] { ++this->Count; });
  timer->SetEnabled(true);
  this->Under.Run(milliseconds(30));
  const milliseconds start = this->Now();
  timer->SetInterval(milliseconds(60));
  ASSERT_TRUE(this->Fired(1));
  EXPECT_GE(this->Now() - start, milliseconds(60));
}

TYPED_TEST(EventLoopContract, SettingTheIntervalOfADisabledTimerStartsNothing) {
  const auto timer = this->Loop().MakeTimer(milliseconds(60), [this] { ++this->Count; });
  timer->SetInterval(milliseconds(5));
  EXPECT_EQ(timer->Interval(), milliseconds(5));
  EXPECT_FALSE(timer->Enabled());
  this->Under.Run(milliseconds(30));
  EXPECT_EQ(this->Count, 0);
}

TYPED_TEST(EventLoopContract, ATimerDoesNotFireWithinItsOwnHandler) {
  int depth = 0;
  int deepest = 0;
  const auto timer = this->Loop().MakeTimer(milliseconds(10), [&] {
    deepest = std::max(deepest, ++depth);
    this->PumpFor(milliseconds(60));
    --depth;
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(2));
  EXPECT_EQ(deepest, 1);
}

TYPED_TEST(EventLoopContract, ATimerFiresWithinItsHandlerIfThatDisabledAndEnabledIt) {
  int depth = 0;
  int deepest = 0;
  std::unique_ptr<Timer> timer;
  timer = this->Loop().MakeTimer(milliseconds(10), [&] {
    deepest = std::max(deepest, ++depth);
    if (depth == 1) {
      timer->SetEnabled(false);
      timer->SetEnabled(true);
      this->PumpFor(milliseconds(60));
    }
    --depth;
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(2));
  EXPECT_EQ(deepest, 2);
}

TYPED_TEST(EventLoopContract, ATimerFiresWithinItsHandlerIfThatSetItsInterval) {
  int depth = 0;
  int deepest = 0;
  std::unique_ptr<Timer> timer;
  timer = this->Loop().MakeTimer(milliseconds(10), [&] {
    deepest = std::max(deepest, ++depth);
    if (depth == 1) {
      timer->SetInterval(milliseconds(15));
      this->PumpFor(milliseconds(60));
    }
    --depth;
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(2));
  EXPECT_EQ(deepest, 2);
}

TYPED_TEST(EventLoopContract, MomentsThatPassDuringAHandlerAreNotMadeUpFor) {
  std::vector<milliseconds> starts;
  std::vector<milliseconds> ends;
  const auto timer = this->Loop().MakeTimer(milliseconds(20), [&] {
    starts.push_back(this->Now());
    this->Loop().Sleep(milliseconds(100));
    ends.push_back(this->Now());
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(3));
  for (std::size_t i = 1; i < 3; ++i) EXPECT_GE(starts[i] - ends[i - 1], milliseconds(20));
}

TYPED_TEST(EventLoopContract, ATimerDisabledInItsHandlerStaysQuiet) {
  std::unique_ptr<Timer> timer;
  timer = this->Loop().MakeTimer(milliseconds(5), [&] {
    ++this->Count;
    timer->SetEnabled(false);
  });
  timer->SetEnabled(true);
  this->Under.Run(milliseconds(60));
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, ADestroyedTimerDoesNotFire) {
  auto timer = this->Loop().MakeTimer(milliseconds(10), [this] { ++this->Count; });
  timer->SetEnabled(true);
  this->Loop().Sleep(milliseconds(30));
  timer.reset();
  this->Under.Run(milliseconds(30));
  EXPECT_EQ(this->Count, 0);
}

TYPED_TEST(EventLoopContract, ATimerMayBeDestroyedInItsOwnHandler) {
  std::unique_ptr<Timer> timer;
  const auto captured = std::make_shared<int>(7);
  int seen = 0;
  timer = this->Loop().MakeTimer(milliseconds(5), [this, &timer, &seen, captured] {
    timer.reset();
    // The handler itself is still there.
    seen = *captured;
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(1));
  EXPECT_EQ(seen, 7);
  this->Under.Run(milliseconds(30));
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, ATimerMayBeDestroyedInAHandlerThatRunsWithinItsOwn) {
  std::unique_ptr<Timer> outer;
  const auto inner = this->Loop().MakeTimer(milliseconds(5), [&] { outer.reset(); });
  outer = this->Loop().MakeTimer(milliseconds(5), [&] {
    inner->SetEnabled(true);
    this->PumpFor(milliseconds(40));
    ++this->Count;
  });
  outer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(1));
  EXPECT_EQ(outer, nullptr);
  this->Under.Run(milliseconds(30));
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, ATimerThatIsDueMayBeDestroyedByAnother) {
  std::unique_ptr<Timer> first;
  std::unique_ptr<Timer> second;
  first = this->Loop().MakeTimer(milliseconds(10), [&] {
    ++this->Count;
    second.reset();
  });
  second = this->Loop().MakeTimer(milliseconds(11), [&] { this->Count += 100; });
  first->SetEnabled(true);
  second->SetEnabled(true);
  this->Loop().Sleep(milliseconds(50));
  this->Loop().PumpEvents();
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, ASleepServesNothing) {
  const auto timer = this->Loop().MakeTimer(milliseconds(5), [this] { ++this->Count; });
  timer->SetEnabled(true);
  const milliseconds start = this->Now();
  this->Loop().Sleep(milliseconds(40));
  EXPECT_GE(this->Now() - start, milliseconds(40));
  EXPECT_EQ(this->Count, 0);
  this->Loop().PumpEvents();
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, APumpReturnsEvenIfItsHandlersTakeLongerThanTheirInterval) {
  const auto timer = this->Loop().MakeTimer(milliseconds(1), [this] {
    ++this->Count;
    this->Loop().Sleep(milliseconds(5));
  });
  timer->SetEnabled(true);
  this->Loop().Sleep(milliseconds(5));
  this->Loop().PumpEvents();
  EXPECT_EQ(this->Count, 1);
}

TYPED_TEST(EventLoopContract, APumpWithNothingDueReturnsAtOnce) {
  const auto timer = this->Loop().MakeTimer(milliseconds(500), [this] { ++this->Count; });
  timer->SetEnabled(true);
  const milliseconds start = this->Now();
  this->Loop().PumpEvents();
  EXPECT_LT(this->Now() - start, milliseconds(400));
  EXPECT_EQ(this->Count, 0);
}

TYPED_TEST(EventLoopContract, APumpWithinAHandlerServesOtherHandlers) {
  std::string order;
  const auto other = this->Loop().MakeTimer(milliseconds(5), [&] { order += "other "; });
  std::unique_ptr<Timer> timer;
  timer = this->Loop().MakeTimer(milliseconds(10), [&] {
    timer->SetEnabled(false);
    order += "begin ";
    other->SetEnabled(true);
    while (order == "begin ") {
      this->Loop().PumpEvents();
      this->Loop().Sleep(milliseconds(1));
    }
    other->SetEnabled(false);
    order += "end";
    ++this->Count;
  });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Fired(1));
  EXPECT_EQ(order, "begin other end");
}

TYPED_TEST(EventLoopContract, TheSteadyClockNeverGoesBack) {
  milliseconds last = this->Now();
  for (int i = 0; i < 1000; ++i) {
    const milliseconds now = this->Now();
    EXPECT_GE(now, last);
    last = now;
  }
}

TYPED_TEST(EventLoopContract, BootTimeAndUniversalTimeGoOnLikeTheSteadyClock) {
  base::EventLoop& loop = this->Under.Loop;
  const auto steady = loop.SteadyNow();
  const auto boot = loop.BootNow();
  const auto universal = loop.UniversalNow();
  loop.Sleep(milliseconds(50));
  const auto passed = loop.SteadyNow() - steady;
  EXPECT_LE(std::chrono::abs(loop.BootNow() - boot - passed), milliseconds(1000));
  EXPECT_GE(loop.BootNow() - boot, milliseconds(49));
  EXPECT_LE(std::chrono::abs(loop.UniversalNow() - universal - passed), milliseconds(1000));
  EXPECT_GE(loop.UniversalNow() - universal, milliseconds(49));
}

TYPED_TEST(EventLoopContract, TheTimeOfDayAgreesWithTheWallClock) {
  const auto before = this->Loop().Now();
  const milliseconds timeOfDay = this->Loop().TimeOfDay();
  const auto after = this->Loop().Now();
  if (before.Day() != after.Day()) GTEST_SKIP() << "midnight passed just now";
  const auto secondsOf = [](base::DateValue moment) {
    return std::chrono::seconds(moment.Hour() * 3600 + moment.Minute() * 60 + moment.Second());
  };
  EXPECT_GE(timeOfDay, secondsOf(before));
  EXPECT_LT(timeOfDay, secondsOf(after) + std::chrono::seconds(1));
}

TYPED_TEST(EventLoopContract, AHandlerCanTellWhetherAPumpServesIt) {
  std::vector<bool> pumping;
  const auto timer =
      this->Loop().MakeTimer(milliseconds(10), [&] { pumping.push_back(this->Loop().Pumping()); });
  timer->SetEnabled(true);
  ASSERT_TRUE(this->Under.RunUntil([&] { return !pumping.empty(); }, kLong));
  EXPECT_FALSE(pumping.back());
  const std::size_t before = pumping.size();
  const milliseconds end = this->Now() + kLong;
  while (pumping.size() == before && this->Now() < end) this->PumpFor(milliseconds(10));
  ASSERT_GT(pumping.size(), before);
  EXPECT_TRUE(pumping.back());
  EXPECT_FALSE(this->Loop().Pumping());
}

}  // namespace
}  // namespace kestrune::test
