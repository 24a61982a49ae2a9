#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Shell.h"

namespace kestrune::test {

/// Opens nothing and keeps what it was asked to open.
class RecordingShell final : public platform::Shell {
 public:
  [[nodiscard]] bool Open(std::string_view target) override {
    Opened.emplace_back(target);
    return Works;
  }

  std::vector<std::string> Opened;
  bool Works = true;
};

}  // namespace kestrune::test
