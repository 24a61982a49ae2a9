#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/EventLoop.h"

namespace kestrune::platform {

/// The program's event loop: Qt's, on the main thread. A QCoreApplication must exist as long as this object.
///
/// The wall clock is local time in the time zone of the process, and follows its changes, daylight saving
/// included. Timers up to a second keep their time to the millisecond, longer ones to a twentieth of
/// their interval.
class QtEventLoop final : public base::EventLoop {
 public:
  /// What Sleep does about windows. Even with `KeepPainted` it serves no timer of this loop, no device and no user:
  /// what the user does meanwhile waits, but what is on screen stays whole.
  enum class WhileAsleep { Nothing, KeepPainted };

  explicit QtEventLoop(WhileAsleep whileAsleep = WhileAsleep::Nothing);
  ~QtEventLoop() override;
  QtEventLoop(const QtEventLoop&) = delete;
  QtEventLoop& operator=(const QtEventLoop&) = delete;

  [[nodiscard]] base::DateValue Now() const override;
  [[nodiscard]] base::DateValue WallAfter(std::chrono::seconds time) const override;
  [[nodiscard]] std::chrono::milliseconds TimeOfDay() const override;
  [[nodiscard]] std::chrono::milliseconds SteadyNow() const override;
  [[nodiscard]] std::chrono::milliseconds BootNow() const override;
  [[nodiscard]] std::chrono::milliseconds UniversalNow() const override;
  void Sleep(std::chrono::milliseconds duration) override;
  void PumpEvents() override;
  [[nodiscard]] bool Pumping() const override { return pumps_ > 0; }
  /// From now on no pump lets the user of windows in: keys, the mouse and closes wait for the outer loop, so that
  /// what they start, such as a message box, never stands inside a step that waits. Until then they come in, so
  /// that a start can be closed.
  void KeepUserOutOfPumps() { userWaits_ = true; }
  /// True during a Sleep: an adapter that gets an event of its own then keeps it until a timer of the loop fires.
  [[nodiscard]] static bool Asleep();
  [[nodiscard]] std::unique_ptr<base::Timer> MakeTimer(std::chrono::milliseconds interval,
                                                       std::function<void()> handler) override;

 private:
  class TimerHost;
  class SleepGuard;
  class HostedTimer;

  WhileAsleep whileAsleep_;
  bool userWaits_ = false;
  bool slept_ = false;  // with windows, since the last pump
  int pumps_ = 0;       // on the stack
  std::unique_ptr<TimerHost> host_;
};

}  // namespace kestrune::platform
