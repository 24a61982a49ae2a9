#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::platform {

/// Which device a port number means: 1 to 8 are USB adapters, 9 to 12 modems on USB, 13 to 16 serial
/// lines on the board. Each can be given another device.
class PortMap {
 public:
  static constexpr int kPorts = 16;

  PortMap();

  /// Empty for a number outside 1 to 16.
  [[nodiscard]] std::string Device(std::int16_t number) const;
  /// A number outside 1 to 16 is ignored.
  void SetDevice(std::int16_t number, std::string path);

  /// Applies "N=PATH", as on the command line. Empty on success, else what is wrong with it.
  [[nodiscard]] std::string SetFromText(std::string_view text);

 private:
  std::array<std::string, kPorts> devices_;
};

}  // namespace kestrune::platform
