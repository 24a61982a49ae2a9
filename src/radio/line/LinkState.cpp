#include "radio/line/LinkState.h"

#include <fmt/format.h>

namespace kestrune::radio {

std::string RadioLostLine(const LinkStatus& status) {
  return fmt::format("Radio lost on port {}: {}", status.Port, status.Cause);
}

std::string RadioFoundLine(const LinkStatus& status, std::chrono::milliseconds away) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(away).count();
  const auto minutes = seconds / 60;
  const std::string length = minutes < 60
                                 ? fmt::format("{}:{:02}", minutes, seconds % 60)
                                 : fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, seconds % 60);
  return fmt::format("Radio found again on port {} after {}", status.Port, length);
}

}  // namespace kestrune::radio
