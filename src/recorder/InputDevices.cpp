#include "recorder/InputDevices.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/Text.h"

namespace kestrune::recorder {
namespace {

constexpr const char* kMapper = "Sound Mapper";

}  // namespace

std::string InputDevices::IdOf(std::int16_t index) const {
  const auto found = std::find_if(Usable.begin(), Usable.end(),
                                  [index](const InputDevice& device) { return device.Index == index; });
  return found == Usable.end() ? std::string() : found->Id;
}

InputDevices EnumerateInputDevices(platform::AudioRecorder& recorder, const WantedDevice& wanted) {
  const std::int16_t count = recorder.DeviceCount();
  InputDevices found;
  found.Available = count;
  found.Index = wanted.Index;
  found.Explanation = "\n\nThe following sound cards are capable, but unavailable:\n";
  for (std::int16_t index = 0; index <= count; ++index) {
    recorder.SetDeviceIndex(index);
    if (!recorder.DeviceUsable()) {
      --found.Available;
      continue;
    }
    const std::string name = recorder.DeviceName();
    const bool mapper = base::ContainsNoCase(name, kMapper);
    // The mapper has the id of another device at the moment, but stands for none.
    const InputDevice device{.Name = name, .Index = index, .Id = mapper ? kMapper : recorder.DeviceId()};
    found.Usable.push_back(device);
    if (!mapper) {
      found.Listed.push_back(device);
      found.Explanation += "\n" + name;
      found.DeviceList += fmt::format("{}#{}%", name, index);
    }
    if (!wanted.Id.empty() && device.Id == wanted.Id) found.Index = index;
  }
  for (const InputDevice& device : found.Usable) {
    if (device.Index == found.Index) found.Configured = device.Name;
  }
  if (found.Explanation.ends_with('\n')) found.Explanation.pop_back();
  found.Explanation += "\n\nConfigured to use: " + found.Configured;
  return found;
}

}  // namespace kestrune::recorder
