#include "platform/qt/PortMap.h"

#include <charconv>
#include <utility>

#include <fmt/format.h>

namespace kestrune::platform {

PortMap::PortMap() {
  for (int i = 0; i < 8; ++i) devices_.at(static_cast<std::size_t>(i)) = fmt::format("/dev/ttyUSB{}", i);
  for (int i = 0; i < 4; ++i) devices_.at(static_cast<std::size_t>(8 + i)) = fmt::format("/dev/ttyACM{}", i);
  for (int i = 0; i < 4; ++i) devices_.at(static_cast<std::size_t>(12 + i)) = fmt::format("/dev/ttyS{}", i);
}

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
