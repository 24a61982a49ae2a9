#include "platform/qt/QtEventLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <ctime>
#include <thread>
#include <unordered_map>
#include <utility>

#include <time.h>

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;

/// How long a window may wait to be painted during a Sleep.
constexpr milliseconds kPaintPause{20};

bool asleep = false;  // one thread has windows

/// The civil fields of a moment, by the time zone as it is now.
std::tm LocalTime(std::time_t moment) {
  // localtime_r alone would keep to the zone that was set when the process started.
  ::tzset();
  std::tm fields{};
  ::localtime_r(&moment, &fields);
  return fields;
}

}  // namespace

/// The one object that Qt's timer events go to. It outlives each timer, so that a timer may be destroyed
/// while its own event is served.
class QtEventLoop::TimerHost final : public QObject {
 public:
  explicit TimerHost(const QtEventLoop& loop) : loop_(loop) {}
  [[nodiscard]] int Start(HostedTimer& timer, milliseconds interval);
  void Stop(int id) {
    killTimer(id);
    timers_.erase(id);
  }
  /// Has the outer loop go through all of its sources once the pumps are over. A pump that is the next to run puts it off,
  /// so that many pumps cost one wake-up, which is a round trip through the system.
  void WakeOuterLoop() {
    if (wake_ == 0) wake_ = startTimer(0);
  }

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  const QtEventLoop& loop_;
  std::unordered_map<int, HostedTimer*> timers_;
  int wake_ = 0;  ///< of the Qt timer that is due at once; 0 is none
};

/// One Qt timer is one interval. While the handler runs there is none unless the handler has asked for it
/// anew, which is what keeps the timer from firing within itself.
class QtEventLoop::HostedTimer final : public base::Timer {
 public:
  HostedTimer(TimerHost& host, milliseconds interval, std::function<void()> handler)
      : host_(host),
        interval_(interval),
        handler_(std::make_shared<std::function<void()>>(std::move(handler))) {}
  ~HostedTimer() override { Cancel(); }
  HostedTimer(const HostedTimer&) = delete;
  HostedTimer& operator=(const HostedTimer&) = delete;

  void SetInterval(milliseconds interval) override {
    interval_ = interval;
    if (enabled_) Start();
  }
  [[nodiscard]] milliseconds Interval() const override { return interval_; }
  void SetEnabled(bool enabled) override {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    if (enabled) {
      Start();
    } else {
      Cancel();
    }
  }
  [[nodiscard]] bool Enabled() const override { return enabled_; }

  void Fire() {
    if (asleep) {
      // Due, and served as soon as events are again.
      Cancel();
      id_ = host_.Start(*this, milliseconds(1));
      return;
    }
    Cancel();
    const std::weak_ptr<bool> alive = alive_;
    const auto handler = handler_;
    (*handler)();
    if (!alive.expired() && enabled_ && id_ == 0) Start();
  }

 private:
  void Start() {
    Cancel();
    id_ = host_.Start(*this, std::max(interval_, milliseconds(1)));
  }
  void Cancel() {
    if (id_ != 0) host_.Stop(std::exchange(id_, 0));
  }

  TimerHost& host_;
  milliseconds interval_;
  std::shared_ptr<std::function<void()>> handler_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  bool enabled_ = false;
  int id_ = 0;  ///< of the Qt timer; 0 is none
};

int QtEventLoop::TimerHost::Start(HostedTimer& timer, milliseconds interval) {
  // A coarse timer may also fire too early, which the short ones must not: seconds are counted by them.
  const auto type = interval <= std::chrono::seconds(1) ? Qt::PreciseTimer : Qt::CoarseTimer;
  const int id = startTimer(interval, type);
  timers_.emplace(id, &timer);
  return id;
}

void QtEventLoop::TimerHost::timerEvent(QTimerEvent* event) {
  if (event->timerId() == wake_) {
    killTimer(std::exchange(wake_, 0));
    if (!loop_.Pumping()) QAbstractEventDispatcher::instance()->wakeUp();
    return;
  }
  const auto place = timers_.find(event->timerId());
  if (place != timers_.end()) place->second->Fire();
}

/// While it lives, no notification of a device is delivered. The bytes stay where they are, and Qt notifies
/// again.
class QtEventLoop::SleepGuard final : public QObject {
 public:
  SleepGuard() {
    asleep = true;
    QCoreApplication::instance()->installEventFilter(this);
  }
  ~SleepGuard() override { asleep = false; }
  SleepGuard(const SleepGuard&) = delete;
  SleepGuard& operator=(const SleepGuard&) = delete;

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override { return event->type() == QEvent::SockAct; }
};

QtEventLoop::QtEventLoop(WhileAsleep whileAsleep)
    : whileAsleep_(whileAsleep), host_(std::make_unique<TimerHost>(*this)) {}

QtEventLoop::~QtEventLoop() = default;

base::DateValue QtEventLoop::Now() const {
  return WallAfter(std::chrono::seconds(0));
}

base::DateValue QtEventLoop::WallAfter(std::chrono::seconds time) const {
  // Not time(), whose clock begins a second some milliseconds late: TimeOfDay would then be a second ahead.
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const std::tm then = LocalTime(now + time.count());
  return base::DateValue::FromCivil(then.tm_year + 1900, then.tm_mon + 1, then.tm_mday, then.tm_hour,
                                    then.tm_min, then.tm_sec);
}

milliseconds QtEventLoop::TimeOfDay() const {
  const auto sinceEpoch =
      std::chrono::floor<milliseconds>(std::chrono::system_clock::now().time_since_epoch());
  const auto whole = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
  const std::tm now = LocalTime(whole.count());
  return std::chrono::hours(now.tm_hour) + std::chrono::minutes(now.tm_min) +
         std::chrono::seconds(now.tm_sec) + (sinceEpoch - whole);
}

milliseconds QtEventLoop::SteadyNow() const {
  return std::chrono::floor<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

milliseconds QtEventLoop::BootNow() const {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return std::chrono::floor<milliseconds>(std::chrono::seconds(now.tv_sec) +
                                          std::chrono::nanoseconds(now.tv_nsec));
}

milliseconds QtEventLoop::UniversalNow() const {
  return std::chrono::floor<milliseconds>(std::chrono::system_clock::now().time_since_epoch());
}

void QtEventLoop::Sleep(milliseconds duration) {
  if (whileAsleep_ == WhileAsleep::Nothing || asleep) return std::this_thread::sleep_for(duration);
  const SleepGuard guard;
  slept_ = true;
  const auto end = std::chrono::steady_clock::now() + duration;
  for (auto left = duration; left.count() > 0;
       left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now())) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
    const auto rest = end - std::chrono::steady_clock::now();
    if (rest.count() > 0) std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(rest, kPaintPause));
  }
}

bool QtEventLoop::Asleep() {
  return asleep;
}

void QtEventLoop::PumpEvents() {
  ++pumps_;
  // What the user did while the program slept is in a queue of Qt's that some platforms read again only once something
  // new comes.
  if (std::exchange(slept_, false) && !userWaits_) QAbstractEventDispatcher::instance()->wakeUp();
  QCoreApplication::processEvents(userWaits_ ? QEventLoop::ExcludeUserInputEvents : QEventLoop::AllEvents);
  // What the devices posted in this round belongs to it: their bytes were there when the round began.
  QCoreApplication::sendPostedEvents();
  --pumps_;
  // The same for what the user of windows did meanwhile, which is for the outer loop. Pumps are many.
  if (userWaits_ && pumps_ == 0 && whileAsleep_ == WhileAsleep::KeepPainted) host_->WakeOuterLoop();
}

std::unique_ptr<base::Timer> QtEventLoop::MakeTimer(milliseconds interval, std::function<void()> handler) {
  return std::make_unique<HostedTimer>(*host_, interval, std::move(handler));
}

}  // namespace kestrune::platform
