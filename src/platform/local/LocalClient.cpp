#include "platform/local/LocalClient.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <thread>

#include <poll.h>
#include <sys/socket.h>

#include "platform/local/LocalSocket.h"

namespace kestrune::platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestAnswer = 16UL * 1024 * 1024;
constexpr std::chrono::milliseconds kCrowdPause{20};

/// False if the time ran out first.
bool WaitFor(const FileDescriptor& socket, short events, Clock::time_point deadline) {
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd state{socket.Number(), events, 0};
    const int ready = ::poll(&state, 1, static_cast<int>(std::min<std::int64_t>(left.count(), 60'000)));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
  }
}

FileDescriptor Connect(const std::string& path, Clock::time_point deadline) {
  while (true) {
    FileDescriptor socket = ConnectLocal(path);
    if (socket.IsOpen() || errno != EAGAIN || Clock::now() >= deadline) return socket;
    std::this_thread::sleep_for(kCrowdPause);
    errno = EAGAIN;
  }
}

bool Send(const FileDescriptor& socket, std::string_view text, Clock::time_point deadline) {
  while (!text.empty()) {
    const ssize_t sent = ::send(socket.Number(), text.data(), text.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      text.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (!WaitFor(socket, POLLOUT, deadline)) return false;
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

/// A line without its end; false if it does not come whole.
bool Receive(const FileDescriptor& socket, std::string& line, Clock::time_point deadline) {
  std::array<char, 16384> block;
  while (line.size() < kLongestAnswer) {
    const ssize_t got = ::recv(socket.Number(), block.data(), block.size(), 0);
    if (got > 0) {
      const std::string_view text(block.data(), static_cast<std::size_t>(got));
      const std::size_t end = text.find('\n');
      line += text.substr(0, end);
      if (end != std::string_view::npos) return true;
    } else if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      if (!WaitFor(socket, POLLIN, deadline)) return false;
    } else if (got == 0 || errno != EINTR) {
      return false;
    }
  }
  return false;
}

}  // namespace

AskResult Ask(const std::string& path, std::string_view line, std::chrono::milliseconds timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  const FileDescriptor socket = Connect(path, deadline);
  if (!socket.IsOpen()) {
    // A socket that may not be opened is somebody else's.
    if (errno == EACCES || errno == EPERM) return {AskOutcome::Foreign, {}};
    return {errno == EAGAIN ? AskOutcome::NoAnswer : AskOutcome::NobodyListens, {}};
  }
  if (!PeerIsSameUser(socket)) return {AskOutcome::Foreign, {}};

  AskResult result;
  const bool answered =
      Send(socket, std::string(line) + '\n', deadline) && Receive(socket, result.Answer, deadline);
  result.Outcome = answered ? AskOutcome::Answered : AskOutcome::NoAnswer;
  return result;
}

}  // namespace kestrune::platform
