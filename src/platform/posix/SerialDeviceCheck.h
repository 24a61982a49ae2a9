#pragma once

#include <string>

#include "base/Result.h"

namespace kestrune::platform {

/// Whether a serial device can be opened, as far as that can be seen without opening it, so that no modem line
/// moves. The cause says what to do about it.
[[nodiscard]] base::Result CheckSerialDevice(const std::string& path);

/// Names the services of the system that may hold a serial line unseen, with "; " in front; empty if none of them
/// runs.
[[nodiscard]] std::string WhoMayHoldSerialDevice();

}  // namespace kestrune::platform
