#pragma once

#include <string_view>

#include "platform/Shell.h"

namespace kestrune::platform {

/// Opens things as the running desktop does, or through the program xdg-open where Qt knows no desktop. Needs
/// a QGuiApplication.
class DesktopShell final : public Shell {
 public:
  [[nodiscard]] bool Open(std::string_view target) override;
};

}  // namespace kestrune::platform
