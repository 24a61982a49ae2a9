#include "support/SimulatedEventLoop.h"

#include <algorithm>
#include <utility>

namespace kestrune::test {

SimulatedEventLoop::SimulatedEventLoop(base::DateValue start)
    : wallOffset_(std::chrono::seconds(start.Seconds())) {}

SimulatedEventLoop::~SimulatedEventLoop() = default;

base::DateValue SimulatedEventLoop::Now() const {
  return base::DateValue::FromSeconds(std::chrono::floor<std::chrono::seconds>(now_ + wallOffset_).count());
}

base::DateValue SimulatedEventLoop::WallAfter(std::chrono::seconds time) const {
  Duration shown = now_ + wallOffset_ + time;
  for (const auto& [moment, by] : stepsToCome_)
    if (moment <= now_ + time) shown += by;
  return base::DateValue::FromSeconds(std::chrono::floor<std::chrono::seconds>(shown).count());
}

void SimulatedEventLoop::StepWallClockAt(base::DateValue wall, std::chrono::seconds by) {
  const Duration delay = std::chrono::seconds(wall.Seconds()) - (now_ + wallOffset_);
  const auto step = stepsToCome_.emplace(now_ + delay, by);
  AtHardware(delay, [this, step] {
    wallOffset_ += step->second;
    stepsToCome_.erase(step);
  });
}

SimulatedEventLoop::Duration SimulatedEventLoop::TimeOfDay() const {
  return (now_ + wallOffset_) % std::chrono::hours(24);
}

std::unique_ptr<base::Timer> SimulatedEventLoop::MakeTimer(Duration interval, std::function<void()> handler) {
  return timers_.MakeTimer(interval, std::move(handler));
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
  return FireOneTimer(now_);
}

bool SimulatedEventLoop::FireOneTimer(Duration until) {
  if (timers_.NextMoment() > until) return false;
  ++handlersRun_;
  return timers_.FireOne(until);
}

void SimulatedEventLoop::PumpEvents() {
  // Handlers may sleep, and then more comes due; what is due only by then is left to the next pump, or a tick
  // that takes longer than its interval would never let its caller go on.
  const Duration until = now_;
  ++pumps_;
  for (std::size_t posted = posted_.size(); posted > 0 && !posted_.empty(); --posted) RunOneDueHandler();
  while (FireOneTimer(until)) {
  }
  --pumps_;
}

SimulatedEventLoop::Duration SimulatedEventLoop::NextMoment() const {
  if (!posted_.empty()) return now_;
  Duration next = timers_.NextMoment();
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
