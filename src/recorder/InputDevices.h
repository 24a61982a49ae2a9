#pragma once

#include <cstdint>
#include <string>

#include "platform/AudioRecorder.h"

namespace kestrune::recorder {

/// What the start found out about the sound inputs.
struct InputDevices {
  std::int16_t Available = 0;
  std::string DeviceList;   ///< an entry a device: its name, "#", its index, "%"
  std::string Configured;   ///< name of the device that the settings ask for, empty if it is not usable
  std::string Explanation;  ///< for the user, if nothing is available
};

/// Asks for every device from 0 to the count inclusive; the one past the end counts as unusable.
[[nodiscard]] InputDevices EnumerateInputDevices(platform::AudioRecorder& recorder, std::int16_t configured);

}  // namespace kestrune::recorder
