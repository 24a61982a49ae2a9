#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/EventLoop.h"

namespace kestrune::platform {

/// The program's event loop: Qt's, on the main thread. A QCoreApplication must exist as long as this object.
///
/// The wall clock is local time by the time zone of the process and follows it where it is changed, daylight
/// saving included. Timers up to a second keep their time to the millisecond, longer ones to a twentieth of
/// their interval.
class QtEventLoop final : public base::EventLoop {
 public:
  QtEventLoop();
  ~QtEventLoop() override;
  QtEventLoop(const QtEventLoop&) = delete;
  QtEventLoop& operator=(const QtEventLoop&) = delete;

  [[nodiscard]] base::DateValue Now() const override;
  [[nodiscard]] std::chrono::milliseconds TimeOfDay() const override;
  [[nodiscard]] std::chrono::milliseconds SteadyNow() const override;
  void Sleep(std::chrono::milliseconds duration) override;
  void PumpEvents() override;
  [[nodiscard]] std::unique_ptr<base::Timer> MakeTimer(std::chrono::milliseconds interval,
                                                       std::function<void()> handler) override;

 private:
  class TimerHost;
  class HostedTimer;

  std::unique_ptr<TimerHost> host_;
};

}  // namespace kestrune::platform
