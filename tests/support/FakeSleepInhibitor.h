#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/SleepInhibitor.h"

namespace kestrune::test {

class FakeSleepInhibitor final : public platform::SleepInhibitor {
 public:
  void Hold(std::string_view why) override {
    if (!Held) Reasons.emplace_back(why);
    Held = true;
  }
  void Release() override { Held = false; }

  bool Held = false;
  std::vector<std::string> Reasons;  ///< one a hold that changed something
};

}  // namespace kestrune::test
