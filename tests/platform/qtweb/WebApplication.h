#pragma once

#include <QCoreApplication>
#include <chrono>

#include "platform/qt/QtEventLoop.h"

namespace kestrune::test {

/// The one application object of this test program; it stays until the program ends.
inline QCoreApplication& WebApplication() {
  static int count = 1;
  static char name[] = "web_test";
  static char* arguments[] = {name, nullptr};
  static QCoreApplication application(count, arguments);
  return application;
}

/// Measures how long something took.
class Stopwatch {
 public:
  [[nodiscard]] std::chrono::milliseconds Passed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin_);
  }

 private:
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace kestrune::test
