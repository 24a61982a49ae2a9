#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/SerialEnumerator.h"

namespace kestrune::test {

/// Answers as the test wants, and counts how often the mice were disabled.
class FakeSerialEnumerator final : public platform::SerialEnumerator {
 public:
  std::optional<std::string> Answer = "No matching devices found.";
  std::function<void()> WhenDisabled = [] {};
  int Disabled = 0;

  [[nodiscard]] std::optional<std::string> MouseStatus() override { return Answer; }
  void DisableMouse() override {
    ++Disabled;
    WhenDisabled();
  }
};

}  // namespace kestrune::test
