#include "support/RealEventLoop.h"

#include <algorithm>
#include <thread>

namespace kestrune::test {

/// Stands in the loop's table while it waits for its moment, as the simulated loop's timer does.
class RealEventLoop::RealTimer final : public base::Timer {
 public:
  RealTimer(RealEventLoop& loop, Duration interval, std::function<void()> handler)
      : loop_(loop),
        interval_(interval),
        handler_(std::make_shared<std::function<void()>>(std::move(handler))) {}
  ~RealTimer() override { Cancel(); }
  RealTimer(const RealTimer&) = delete;
  RealTimer& operator=(const RealTimer&) = delete;

  void SetInterval(Duration interval) override {
    interval_ = interval;
    if (enabled_) Schedule();
  }
  [[nodiscard]] Duration Interval() const override { return interval_; }
  void SetEnabled(bool enabled) override {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    if (enabled) {
      Schedule();
    } else {
      Cancel();
    }
  }
  [[nodiscard]] bool Enabled() const override { return enabled_; }

  void Fire() {
    scheduled_ = false;
    const std::weak_ptr<bool> alive = alive_;
    const auto handler = handler_;
    (*handler)();
    if (!alive.expired() && enabled_ && !scheduled_) Schedule();
  }

 private:
  void Schedule() {
    Cancel();
    moment_ = {loop_.SteadyNow() + std::max(interval_, Duration(1)), ++loop_.order_};
    loop_.timers_.emplace(moment_, this);
    scheduled_ = true;
  }
  void Cancel() {
    if (scheduled_) loop_.timers_.erase(moment_);
    scheduled_ = false;
  }

  RealEventLoop& loop_;
  Duration interval_;
  std::shared_ptr<std::function<void()>> handler_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  Moment moment_;
  bool enabled_ = false;
  bool scheduled_ = false;
};

RealEventLoop::~RealEventLoop() = default;

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

void RealEventLoop::Sleep(Duration duration) {
  std::this_thread::sleep_for(duration);
}

void RealEventLoop::PumpEvents() {
  const Duration until = SteadyNow();
  while (!timers_.empty() && timers_.begin()->first.first <= until) {
    RealTimer* timer = timers_.begin()->second;
    timers_.erase(timers_.begin());
    timer->Fire();
  }
}

std::unique_ptr<base::Timer> RealEventLoop::MakeTimer(Duration interval, std::function<void()> handler) {
  return std::make_unique<RealTimer>(*this, interval, std::move(handler));
}

void RealEventLoop::Run(Duration duration) {
  static_cast<void>(RunUntil([] { return false; }, duration));
}

bool RealEventLoop::RunUntil(const std::function<bool()>& condition, Duration limit) {
  const Duration end = SteadyNow() + limit;
  for (;;) {
    PumpEvents();
    if (condition()) return true;
    const Duration now = SteadyNow();
    if (now >= end) return false;
    Duration wait = std::min(end - now, Duration(10));
    if (!timers_.empty()) wait = std::clamp(timers_.begin()->first.first - now, Duration(0), wait);
    std::this_thread::sleep_for(wait);
  }
}

}  // namespace kestrune::test
