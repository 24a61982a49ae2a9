#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/AudioRecorder.h"

namespace kestrune::recorder {

/// A usable sound input.
struct InputDevice {
  std::string Name;        ///< for people, UTF-8
  std::int16_t Index = 0;  ///< among all devices of this run
  std::string Id;          ///< the same from run to run

  bool operator==(const InputDevice&) const = default;
};

/// The sound input that the settings ask for.
struct WantedDevice {
  std::int16_t Index = 0;
  std::string Id;  ///< empty if only the index is known
};

/// What the start found out about the sound inputs.
struct InputDevices {
  std::int16_t Available = 0;
  std::vector<InputDevice> Usable;  ///< the mapper among them
  std::vector<InputDevice> Listed;  ///< the same without the mapper: those that the user chooses from
  /// The listed ones as a text, an entry a device: its name, "#", its index, "%". Nothing reads it: a name may
  /// contain these characters itself.
  std::string DeviceList;
  std::int16_t Index = 0;   ///< of the device to record from
  std::string Configured;   ///< its name, empty if it is not usable
  std::string Explanation;  ///< for the user, if nothing is available

  /// What is to be stored beside an index; empty for one that is not usable.
  [[nodiscard]] std::string IdOf(std::int16_t index) const;
};

/// Asks for every device from 0 to the count inclusive; the one past the end counts as unusable. The device to
/// record from is the usable one with the wanted id, or else the one with the wanted index.
[[nodiscard]] InputDevices EnumerateInputDevices(platform::AudioRecorder& recorder,
                                                 const WantedDevice& wanted);

}  // namespace kestrune::recorder
