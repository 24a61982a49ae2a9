#pragma once

#include <string>

#include "platform/Autostart.h"

namespace kestrune::test {

/// An entry that is a flag, and fails while a cause is set.
class FakeAutostart final : public platform::Autostart {
 public:
  [[nodiscard]] platform::AutostartState Read() const override { return State; }
  [[nodiscard]] base::Result Enable() override { return Change(true); }
  [[nodiscard]] base::Result Disable() override { return Change(false); }
  [[nodiscard]] std::string File() const override { return "/home/user/.config/autostart/kestrune.desktop"; }

  platform::AutostartState State;
  std::string FailWith;
  int Changes = 0;

 private:
  base::Result Change(bool starts) {
    ++Changes;
    if (!FailWith.empty()) return base::Result::Failed(FailWith);
    State = {.Starts = starts, .Foreign = false};
    return base::Result::Done();
  }
};

}  // namespace kestrune::test
