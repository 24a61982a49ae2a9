#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "support/TimerTable.h"

namespace kestrune::test {

/// Time that moves only when somebody waits: from event to event, each at its own moment, in the order of the
/// moments and, within one, in the order of asking. Two runs with the same calls are the same.
///
/// Two kinds of things happen. Hardware (AtHardware) happens at its moment whatever the program does, also
/// while it sleeps, and must not run handlers of the program: it moves bytes and posts. Handlers (timers,
/// Post) run only inside PumpEvents and Run.
class SimulatedEventLoop final : public base::EventLoop {
 public:
  using Duration = std::chrono::milliseconds;

  /// Starts at the given wall time.
  explicit SimulatedEventLoop(base::DateValue start = base::DateValue::FromSeconds(kDefaultStart));
  ~SimulatedEventLoop() override;

  [[nodiscard]] base::DateValue Now() const override;
  [[nodiscard]] base::DateValue WallAfter(std::chrono::seconds time) const override;
  [[nodiscard]] Duration TimeOfDay() const override;
  [[nodiscard]] Duration SteadyNow() const override { return now_; }
  [[nodiscard]] Duration BootNow() const override { return now_ + slept_; }
  [[nodiscard]] Duration UniversalNow() const override { return now_ + universalOffset_; }
  void Sleep(Duration duration) override;
  void PumpEvents() override;
  [[nodiscard]] bool Pumping() const override { return pumps_ > 0; }
  [[nodiscard]] std::unique_ptr<base::Timer> MakeTimer(Duration interval,
                                                       std::function<void()> handler) override;

  /// Sets the wall clock without touching the others.
  void StepWallClock(Duration by) {
    wallOffset_ += by;
    universalOffset_ += by;
  }

  /// The machine has slept for so long: nothing ran, and the steady clock stood still. What is outside has not moved
  /// on either.
  void SleepMachine(Duration time) {
    slept_ += time;
    StepWallClock(time);
  }

  /// The wall clock steps by itself when it shows `wall`, as to summer time: WallAfter knows that beforehand, and
  /// universal time goes on.
  void StepWallClockAt(base::DateValue wall, std::chrono::seconds by);

  /// Something outside the program happens after the delay, even while the program sleeps.
  void AtHardware(Duration delay, std::function<void()> happening);
  /// A handler of the program, due at once.
  void Post(std::function<void()> handler);

  /// The outer loop: serves all that comes due within the duration, each at its own moment.
  void Run(Duration duration);
  /// The same until the condition holds; false if the limit passed first.
  [[nodiscard]] bool RunUntil(const std::function<bool()>& condition, Duration limit);

  /// How many handlers have run so far.
  [[nodiscard]] std::uint64_t HandlersRun() const { return handlersRun_; }

 private:
  using Moment = std::pair<Duration, std::uint64_t>;

  // Saturday, January 1, 2005, 12:00:00.
  static constexpr std::int64_t kDefaultStart = 38353LL * 86400 + 43200;

  void AdvanceTo(Duration time);
  bool RunOneDueHandler();
  bool FireOneTimer(Duration until);
  [[nodiscard]] Duration NextMoment() const;

  Duration now_{0};
  Duration wallOffset_;
  Duration universalOffset_{0};
  Duration slept_{0};
  std::multimap<Duration, Duration> stepsToCome_;
  std::uint64_t order_ = 0;
  std::uint64_t handlersRun_ = 0;
  int pumps_ = 0;  // on the stack
  std::multimap<Moment, std::function<void()>> hardware_;
  std::deque<std::function<void()>> posted_;
  TimerTable timers_{[this] { return now_; }};
};

}  // namespace kestrune::test
