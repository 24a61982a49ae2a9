#pragma once

#include <chrono>
#include <thread>

namespace kestrune::test {

using namespace std::chrono_literals;

/// Asks again and again until the answer is yes; false if the patience ends first. Real programs take real
/// time, and nobody knows how much: what is waited for ends the wait, not the clock.
template <typename Question>
[[nodiscard]] bool WaitUntil(std::chrono::milliseconds patience, Question question,
                             std::chrono::milliseconds pause = 50ms) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!question()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

}  // namespace kestrune::test
