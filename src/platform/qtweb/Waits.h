#pragma once

#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <set>

namespace kestrune::platform {

/// The waits under way on the program's loop, so that all of them can be ended from outside.
class Waits {
 public:
  /// Runs the wait until it is told to quit, the time has run out or all waits are ended.
  void Run(QEventLoop& wait, std::chrono::milliseconds limit) {
    if (stopped_) return;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &wait, &QEventLoop::quit);
    timer.start(limit);
    running_.insert(&wait);
    wait.exec();
    running_.erase(&wait);
  }
  /// For good.
  void End() {
    stopped_ = true;
    for (QEventLoop* wait : running_) wait->quit();
  }
  [[nodiscard]] bool Ended() const { return stopped_; }

 private:
  std::set<QEventLoop*> running_;
  bool stopped_ = false;
};

}  // namespace kestrune::platform
