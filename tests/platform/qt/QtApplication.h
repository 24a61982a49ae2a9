#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <chrono>
#include <functional>

#include "platform/qt/QtEventLoop.h"

namespace kestrune::test {

/// The one application object of this test program; it stays until the program ends.
inline QCoreApplication& Application() {
  static int count = 1;
  static char name[] = "platform_qt_test";
  static char* arguments[] = {name, nullptr};
  static QCoreApplication application(count, arguments);
  return application;
}

/// The program's loop, and its outer loop for a test's sake.
struct QtLoop {
  QCoreApplication& Qt = Application();
  platform::QtEventLoop Loop;

  void Run(std::chrono::milliseconds duration) {
    static_cast<void>(RunUntil([] { return false; }, duration));
  }
  [[nodiscard]] bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = Loop.SteadyNow() + limit;
    while (!condition()) {
      if (Loop.SteadyNow() >= end) return false;
      QCoreApplication::processEvents(QEventLoop::AllEvents);
      Loop.Sleep(std::chrono::milliseconds(1));
    }
    return true;
  }
};

}  // namespace kestrune::test
