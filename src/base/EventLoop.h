#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/DateValue.h"

namespace kestrune::base {

/// A timer of an EventLoop. It fires each time its interval has passed for as long as it is enabled.
///
/// 1. Enabling a disabled timer starts a full interval; enabling an enabled one changes nothing.
/// 2. Setting the interval of an enabled timer starts a full interval anew.
/// 3. A timer does not fire within its own handler unless the handler disabled and enabled it again or set its
///    interval. Moments that pass meanwhile are not made up for.
/// 4. Destroying it cancels it, also from within its own handler.
class Timer {
 public:
  virtual ~Timer() = default;

  virtual void SetInterval(std::chrono::milliseconds interval) = 0;
  [[nodiscard]] virtual std::chrono::milliseconds Interval() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
  [[nodiscard]] virtual bool Enabled() const = 0;
};

/// The port through which all time passes: the clocks, all waiting and all timers. One thread uses it.
///
/// 1. Handlers run only inside PumpEvents (or the program's own outer loop), never inside Sleep.
/// 2. PumpEvents serves what is due at the time of the call and returns; it may be called from within a handler,
///    and then serves other handlers inside it.
/// 3. SteadyNow never goes back; Now follows the wall clock wherever it is set.
/// 4. Pumping is true in every handler that a PumpEvents serves, at any depth, and false in one that the outer
///    loop serves. A handler that must not run inside another's wait asks it.
class EventLoop {
 public:
  virtual ~EventLoop() = default;

  /// Local civil time, to the whole second.
  [[nodiscard]] virtual DateValue Now() const = 0;
  /// What the wall clock will show once so much time has passed, as far as it is known now: steps to and from
  /// summer time are.
  [[nodiscard]] virtual DateValue WallAfter(std::chrono::seconds time) const {
    return Now().AddSeconds(time.count());
  }
  /// Time since local midnight, for trace lines.
  [[nodiscard]] virtual std::chrono::milliseconds TimeOfDay() const = 0;
  /// Time since some fixed moment; intervals are measured with it. It may stand still while the machine sleeps.
  [[nodiscard]] virtual std::chrono::milliseconds SteadyNow() const = 0;
  /// Time since some fixed moment, the machine's sleep included.
  [[nodiscard]] virtual std::chrono::milliseconds BootNow() const = 0;
  /// What the wall clock would show in universal time, since some fixed moment: it follows each setting of the clock,
  /// and neither summer time nor a change of the time zone.
  [[nodiscard]] virtual std::chrono::milliseconds UniversalNow() const = 0;

  /// Blocks; serves nothing.
  virtual void Sleep(std::chrono::milliseconds duration) = 0;
  virtual void PumpEvents() = 0;
  [[nodiscard]] virtual bool Pumping() const = 0;

  /// A disabled timer. The loop must outlive it.
  [[nodiscard]] virtual std::unique_ptr<Timer> MakeTimer(std::chrono::milliseconds interval,
                                                         std::function<void()> handler) = 0;
};

/// The time that passes until the wall clock shows `wall`, or a later moment if a step leaves `wall` out. Negative if
/// `wall` has passed.
[[nodiscard]] std::chrono::seconds TimeUntil(const EventLoop& loop, DateValue wall);

}  // namespace kestrune::base
