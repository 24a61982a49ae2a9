#include "support/SimulatedEventLoop.h"

#include <algorithm>
#include <utility>

namespace kestrune::test {

/// While enabled it stands in the loop's table under its next moment; while its handler runs it stands there
/// only if the handler has asked for it anew, which is what keeps it from firing within itself.
class SimulatedEventLoop::SimulatedTimer final : public base::Timer {
 public:
  SimulatedTimer(SimulatedEventLoop& loop, Duration interval, std::function<void()> handler)
      : loop_(loop),
        interval_(interval),
        handler_(std::make_shared<std::function<void()>>(std::move(handler))) {}
  ~SimulatedTimer() override { Cancel(); }
  SimulatedTimer(const SimulatedTimer&) = delete;
  SimulatedTimer& operator=(const SimulatedTimer&) = delete;

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
    moment_ = {loop_.now_ + std::max(interval_, Duration(1)), ++loop_.order_};
    loop_.timers_.emplace(moment_, this);
    scheduled_ = true;
  }
  void Cancel() {
    if (scheduled_) loop_.timers_.erase(moment_);
    scheduled_ = false;
  }

  SimulatedEventLoop& loop_;
  Duration interval_;
  std::shared_ptr<std::function<void()>> handler_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  Moment moment_;
  bool enabled_ = false;
  bool scheduled_ = false;
};

SimulatedEventLoop::SimulatedEventLoop(base::DateValue start)
    : wallOffset_(std::chrono::seconds(start.Seconds())) {}

SimulatedEventLoop::~SimulatedEventLoop() = default;

base::DateValue SimulatedEventLoop::Now() const {
  return base::DateValue::FromSeconds(std::chrono::floor<std::chrono::seconds>(now_ + wallOffset_).count());
}

SimulatedEventLoop::Duration SimulatedEventLoop::TimeOfDay() const {
  return (now_ + wallOffset_) % std::chrono::hours(24);
}

std::unique_ptr<base::Timer> SimulatedEventLoop::MakeTimer(Duration interval, std::function<void()> handler) {
  return std::make_unique<SimulatedTimer>(*this, interval, std::move(handler));
}

void SimulatedEventLoop::AtHardware(Duration delay, std::function<void()> happening) {
  hardware_.emplace(Moment{now_ + delay, ++order_}, std::move(happening));
}

void SimulatedEventLoop::Post(std::function<void()> handler) {
  posted_.push_back(std::move(handler));
}

void SimulatedEventLoop::AdvanceTo(Duration time) {
  while (!hardware_.empty() && hardware_.begin()->first.first <= time) {
    now_ = std::max(now_, hardware_.begin()->first.first);
    const auto happening = std::move(hardware_.begin()->second);
    hardware_.erase(hardware_.begin());
    happening();
  }
  now_ = std::max(now_, time);
}

void SimulatedEventLoop::Sleep(Duration duration) {
  AdvanceTo(now_ + duration);
}

bool SimulatedEventLoop::RunOneDueHandler() {
  if (!posted_.empty()) {
    const auto handler = std::move(posted_.front());
    posted_.pop_front();
    ++handlersRun_;
    handler();
    return true;
  }
  if (!timers_.empty() && timers_.begin()->first.first <= now_) {
    SimulatedTimer* timer = timers_.begin()->second;
    timers_.erase(timers_.begin());
    ++handlersRun_;
    timer->Fire();
    return true;
  }
  return false;
}

void SimulatedEventLoop::PumpEvents() {
  // Handlers may sleep, and then more comes due; what is due only by then is left to the next pump, or a tick
  // that takes longer than its interval would never let its caller go on.
  const Duration until = now_;
  std::size_t posted = posted_.size();
  for (;;) {
    if (posted > 0 && !posted_.empty()) {
      --posted;
      RunOneDueHandler();
      continue;
    }
    if (timers_.empty() || timers_.begin()->first.first > until) return;
    SimulatedTimer* timer = timers_.begin()->second;
    timers_.erase(timers_.begin());
    ++handlersRun_;
    timer->Fire();
  }
}

SimulatedEventLoop::Duration SimulatedEventLoop::NextMoment() const {
  if (!posted_.empty()) return now_;
  Duration next = Duration::max();
  if (!timers_.empty()) next = std::min(next, timers_.begin()->first.first);
  if (!hardware_.empty()) next = std::min(next, hardware_.begin()->first.first);
  return std::max(next, now_);
}

void SimulatedEventLoop::Run(Duration duration) {
  const bool reached = RunUntil([] { return false; }, duration);
  static_cast<void>(reached);
}

bool SimulatedEventLoop::RunUntil(const std::function<bool()>& condition, Duration limit) {
  const Duration end = now_ + limit;
  for (;;) {
    while (RunOneDueHandler()) {
      if (condition()) return true;
    }
    if (condition()) return true;
    const Duration next = NextMoment();
    if (next > end) {
      AdvanceTo(end);
      return condition();
    }
    AdvanceTo(next);
  }
}

}  // namespace kestrune::test
