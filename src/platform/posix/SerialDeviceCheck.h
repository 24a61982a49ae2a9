#pragma once

#include <string>

namespace kestrune::platform {

/// What stands in the way of opening a serial device, as a text for the user with what to do about it; empty
/// if nothing is known to. Opens nothing, so that no modem line moves.
[[nodiscard]] std::string WhySerialDeviceCannotOpen(const std::string& path);

/// A sentence with a blank before it that names the services of the system that may hold a serial line unseen; empty
/// if none of them runs.
[[nodiscard]] std::string WhoMayHoldSerialDevice();

}  // namespace kestrune::platform
