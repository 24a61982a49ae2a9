#include "recorder/InputDevices.h"

#include <fmt/format.h>

#include "base/Text.h"

namespace kestrune::recorder {

InputDevices EnumerateInputDevices(platform::AudioRecorder& recorder, std::int16_t configured) {
  const std::int16_t count = recorder.DeviceCount();
  InputDevices found{.Available = count, .DeviceList = "", .Configured = "", .Explanation = ""};
  found.Explanation = "\n\nThe following sound cards are capable, but unavailable:\n";
  for (std::int16_t index = 0; index <= count; ++index) {
    recorder.SetDeviceIndex(index);
    if (!recorder.DeviceUsable()) {
      --found.Available;
      continue;
    }
    const std::string name = recorder.DeviceName();
    if (!base::ContainsNoCase(name, "Sound Mapper")) {
      found.Explanation += "\n" + name;
      found.DeviceList += fmt::format("{}#{}%", name, index);
    }
    if (index == configured) found.Configured = name;
  }
  if (found.Explanation.ends_with('\n')) found.Explanation.pop_back();
  found.Explanation += "\n\nConfigured to use: " + found.Configured;
  return found;
}

}  // namespace kestrune::recorder
