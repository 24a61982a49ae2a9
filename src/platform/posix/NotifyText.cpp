#include "platform/posix/NotifyText.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

namespace kestrune::platform {
namespace {

/// The protocol's fields end with the line, so that a status in several lines would be other fields.
std::string OneLine(std::string text) {
  const auto control = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
  std::replace_if(text.begin(), text.end(), control, ' ');
  return text;
}

}  // namespace

std::string NotifyText(const ServiceManager::News& news) {
  std::string text;
  if (news.Ready) text += "READY=1\n";
  if (news.Stopping) text += "STOPPING=1\n";
  if (news.Alive) text += "WATCHDOG=1\n";
  if (news.MoreTime.count() > 0) {
    text += fmt::format("EXTEND_TIMEOUT_USEC={}\n", std::chrono::microseconds(news.MoreTime).count());
  }
  if (!news.Status.empty()) text += fmt::format("STATUS={}\n", OneLine(news.Status));
  return text;
}

}  // namespace kestrune::platform
