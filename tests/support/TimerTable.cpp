#include "support/TimerTable.h"

#include <algorithm>

namespace kestrune::test {

/// While enabled it is in the table under its next moment; while its handler runs it is there
/// only if the handler has asked for it anew, which is what keeps it from firing within itself.
class TimerTable::TableTimer final : public base::Timer {
 public:
  TableTimer(TimerTable& table, Duration interval, std::function<void()> handler)
      : table_(table),
        interval_(interval),
        handler_(std::make_shared<std::function<void()>>(std::move(handler))) {}
  ~TableTimer() override { Cancel(); }
  TableTimer(const TableTimer&) = delete;
  TableTimer& operator=(const TableTimer&) = delete;

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
    moment_ = {table_.now_() + std::max(interval_, Duration(1)), ++table_.order_};
    table_.timers_.emplace(moment_, this);
    scheduled_ = true;
  }
  void Cancel() {
    if (scheduled_) table_.timers_.erase(moment_);
    scheduled_ = false;
  }

  TimerTable& table_;
  Duration interval_;
  std::shared_ptr<std::function<void()>> handler_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  Moment moment_;
  bool enabled_ = false;
  bool scheduled_ = false;
};

std::unique_ptr<base::Timer> TimerTable::MakeTimer(Duration interval, std::function<void()> handler) {
  return std::make_unique<TableTimer>(*this, interval, std::move(handler));
}

TimerTable::Duration TimerTable::NextMoment() const {
  return timers_.empty() ? Duration::max() : timers_.begin()->first.first;
}

bool TimerTable::FireOne(Duration until) {
  if (NextMoment() > until) return false;
  TableTimer* timer = timers_.begin()->second;
  timers_.erase(timers_.begin());
  timer->Fire();
  return true;
}

}  // namespace kestrune::test
