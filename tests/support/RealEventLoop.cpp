#include "support/RealEventLoop.h"

#include <algorithm>
#include <thread>

namespace kestrune::test {

base::DateValue RealEventLoop::Now() const {
  constexpr std::int64_t kDaysFromDateZeroToEpoch = 25569;
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return base::DateValue::FromSeconds(kDaysFromDateZeroToEpoch * 86400 +
                                      std::chrono::floor<std::chrono::seconds>(sinceEpoch).count());
}

RealEventLoop::Duration RealEventLoop::TimeOfDay() const {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::floor<Duration>(sinceEpoch) % std::chrono::hours(24);
}

RealEventLoop::Duration RealEventLoop::SteadyNow() const {
  return std::chrono::floor<Duration>(std::chrono::steady_clock::now().time_since_epoch());
}

RealEventLoop::Duration RealEventLoop::UniversalNow() const {
  return std::chrono::floor<Duration>(std::chrono::system_clock::now().time_since_epoch());
}

void RealEventLoop::Sleep(Duration duration) {
  std::this_thread::sleep_for(duration);
}

void RealEventLoop::PumpEvents() {
  ++pumps_;
  ServeDue();
  --pumps_;
}

void RealEventLoop::ServeDue() {
  const Duration until = SteadyNow();
  while (timers_.FireOne(until)) {
  }
}

std::unique_ptr<base::Timer> RealEventLoop::MakeTimer(Duration interval, std::function<void()> handler) {
  return timers_.MakeTimer(interval, std::move(handler));
}

void RealEventLoop::Run(Duration duration) {
  static_cast<void>(RunUntil([] { return false; }, duration));
}

bool RealEventLoop::RunUntil(const std::function<bool()>& condition, Duration limit) {
  const Duration end = SteadyNow() + limit;
  for (;;) {
    ServeDue();
    if (condition()) return true;
    const Duration now = SteadyNow();
    if (now >= end) return false;
    const Duration wait = std::min(end - now, Duration(10));
    std::this_thread::sleep_for(std::clamp(timers_.NextMoment() - now, Duration(0), wait));
  }
}

}  // namespace kestrune::test
