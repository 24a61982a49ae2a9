#include "platform/local/ControlSocketPath.h"

#include <fmt/format.h>

#include "platform/posix/FileNames.h"

namespace kestrune::platform {

std::string ControlSocketPath(std::string_view folder, std::string_view unit) {
  return fmt::format("{}/kestrune{}.sock", folder, FileNameFor(unit));
}

}  // namespace kestrune::platform
