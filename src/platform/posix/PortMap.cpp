#include "platform/posix/PortMap.h"

#include <charconv>
#include <utility>

#include <fmt/format.h>

namespace kestrune::platform {

PortMap::PortMap()
    : devices_{"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyUSB2", "/dev/ttyUSB3", "/dev/ttyUSB4", "/dev/ttyUSB5",
               "/dev/ttyUSB6", "/dev/ttyUSB7", "/dev/ttyACM0", "/dev/ttyACM1", "/dev/ttyACM2", "/dev/ttyACM3",
               "/dev/ttyS0",   "/dev/ttyS1",   "/dev/ttyS2",   "/dev/ttyS3"} {}

std::string PortMap::Device(std::int16_t number) const {
  if (number < 1 || number > kPorts) return {};
  return devices_.at(static_cast<std::size_t>(number - 1));
}

void PortMap::SetDevice(std::int16_t number, std::string path) {
  if (number < 1 || number > kPorts) return;
  devices_.at(static_cast<std::size_t>(number - 1)) = std::move(path);
}

std::string PortMap::SetFromText(std::string_view text) {
  std::int16_t number = 0;
  const char* const textEnd = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), textEnd, number);
  if (error != std::errc{} || end == textEnd || *end != '=' || end + 1 == textEnd) {
    return fmt::format("\"{}\" is not of the form N=PATH", text);
  }
  if (number < 1 || number > kPorts) return fmt::format("port {} is not within 1 to {}", number, kPorts);
  SetDevice(number, std::string(end + 1, textEnd));
  return {};
}

}  // namespace kestrune::platform
