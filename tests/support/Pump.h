#pragma once

#include <QCoreApplication>
#include <chrono>
#include <string>
#include <thread>

namespace kestrune::test {

/// The one application of the test program; made at the first call.
inline QCoreApplication& Application() {
  static int count = 1;
  static std::string name = "test";
  static char* names[] = {name.data(), nullptr};
  static QCoreApplication application(count, names);
  return application;
}

/// Serves events until the condition holds; false if it does not within the limit, which is a time that no healthy run
/// needs.
template <typename Condition>
[[nodiscard]] bool PumpUntil(Condition holds, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace kestrune::test
