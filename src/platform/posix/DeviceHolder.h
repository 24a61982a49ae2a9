#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrune::platform {

/// A process that has a device open.
struct DeviceHolder {
  int ProcessId = 0;  ///< 0: nobody, as far as this user may see
  std::string Name;
};

/// The name in a process's "comm". A process names itself as it likes, so whatever is no plain letter, digit or sign
/// becomes "?".
[[nodiscard]] std::string ProcessNameIn(std::string_view comm);

/// Looks through the open files of all processes that this user may see. `path` may be a link to the device.
[[nodiscard]] DeviceHolder FindDeviceHolder(const std::string& path);

/// The names of the running services that probe every serial line they find. They belong to the system: an ordinary
/// user sees that they run, but not what they hold.
[[nodiscard]] std::vector<std::string> RunningLineServices();

}  // namespace kestrune::platform
