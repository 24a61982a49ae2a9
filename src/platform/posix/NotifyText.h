#pragma once

#include <string>

#include "platform/ServiceManager.h"

namespace kestrune::platform {

/// News in systemd's protocol: a line for each thing that is told, none for what is not. The status may be any text.
[[nodiscard]] std::string NotifyText(const ServiceManager::News& news);

}  // namespace kestrune::platform
