#include "platform/local/ControlSocketPath.h"

#include <fmt/format.h>

namespace kestrune::platform {

std::string ControlSocketPath(std::string_view folder, std::string_view unit) {
  std::string name;
  for (const char byte : unit) {
    const bool plain =
        (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    if (plain) {
      name += byte;
    } else {
      name += fmt::format("%{:02X}", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    }
  }
  return fmt::format("{}/kestrune{}.sock", folder, name);
}

}  // namespace kestrune::platform
