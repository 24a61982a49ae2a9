#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/EventLoop.h"
#include "support/TimerTable.h"

namespace kestrune::test {

/// An event loop on the machine's own clocks, for tests against real servers and devices. Its wall clock
/// shows universal time.
class RealEventLoop final : public base::EventLoop {
 public:
  using Duration = std::chrono::milliseconds;

  [[nodiscard]] base::DateValue Now() const override;
  [[nodiscard]] Duration TimeOfDay() const override;
  [[nodiscard]] Duration SteadyNow() const override;
  [[nodiscard]] Duration BootNow() const override { return SteadyNow(); }
  [[nodiscard]] Duration UniversalNow() const override;
  void Sleep(Duration duration) override;
  void PumpEvents() override;
  [[nodiscard]] bool Pumping() const override { return pumps_ > 0; }
  [[nodiscard]] std::unique_ptr<base::Timer> MakeTimer(Duration interval,
                                                       std::function<void()> handler) override;

  /// Serves what comes due for so long.
  void Run(Duration duration);
  /// The same until the condition holds; false if the limit passed first.
  [[nodiscard]] bool RunUntil(const std::function<bool()>& condition, Duration limit);

 private:
  void ServeDue();

  int pumps_ = 0;  // on the stack
  TimerTable timers_{[this] { return SteadyNow(); }};
};

}  // namespace kestrune::test
