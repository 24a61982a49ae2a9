#include "platform/posix/NotifySocket.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/posix/NotifyText.h"

namespace kestrune::platform {
namespace {

std::string Taken(const char* name) {
  const char* text = std::getenv(name);
  std::string value = text == nullptr ? std::string() : std::string(text);
  ::unsetenv(name);
  return value;
}

std::optional<std::int64_t> Number(const std::string& text) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && !text.empty() ? std::optional(number) : std::nullopt;
}

}  // namespace

NotifySocket::NotifySocket() : address_(Taken("NOTIFY_SOCKET")) {
  const std::optional<std::int64_t> microseconds = Number(Taken("WATCHDOG_USEC"));
  const std::optional<std::int64_t> watched = Number(Taken("WATCHDOG_PID"));
  if (address_.size() < 2 || (address_[0] != '/' && address_[0] != '@') ||
      address_.size() > sizeof(sockaddr_un::sun_path)) {
    return;
  }
  socket_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket_ < 0) return;
  if (microseconds.value_or(0) > 0 && watched.value_or(::getpid()) == ::getpid()) {
    patience_ = std::chrono::milliseconds(*microseconds / 1000);
  }
}

NotifySocket::~NotifySocket() {
  if (socket_ >= 0) ::close(socket_);
}

bool NotifySocket::Tell(const News& news) {
  if (!Listens()) return false;
  const std::string text = NotifyText(news);
  if (text.empty()) return true;
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  std::memcpy(static_cast<char*>(place.sun_path), address_.data(), address_.size());
  if (address_[0] == '@') place.sun_path[0] = '\0';
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());
  const ssize_t sent = ::sendto(socket_, text.data(), text.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&place), length);
  return sent == static_cast<ssize_t>(text.size());
}

}  // namespace kestrune::platform
