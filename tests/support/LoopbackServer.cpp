#include "support/LoopbackServer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrune::test {
namespace {

constexpr int kSlice = 20;  // milliseconds in which a stop is noticed

bool Readable(int file) {
  pollfd waiting{file, POLLIN, 0};
  return ::poll(&waiting, 1, kSlice) > 0;
}

}  // namespace

LoopbackServer::LoopbackServer(std::vector<Answer> answers)
    : answers_(std::move(answers)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (::bind(listener_, any, size) != 0 || ::listen(listener_, 8) != 0 ||
      ::getsockname(listener_, any, &size) != 0) {
    throw std::runtime_error("no loopback server");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

LoopbackServer::~LoopbackServer() {
  stopped_ = true;
  thread_.join();
  ::close(listener_);
}

std::string LoopbackServer::Address(const std::string& path) const {
  return fmt::format("http://127.0.0.1:{}{}", port_, path);
}

std::vector<std::string> LoopbackServer::Requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

void LoopbackServer::Serve() {
  std::size_t served = 0;
  while (!stopped_) {
    if (!Readable(listener_)) continue;
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    Talk(connection, answers_[std::min(served++, answers_.size() - 1)]);
    ::close(connection);
  }
}

void LoopbackServer::Talk(int connection, const Answer& answer) {
  std::string request;
  std::array<char, 4096> block{};
  while (!stopped_ && request.find("\r\n\r\n") == std::string::npos) {
    if (!Readable(connection)) continue;
    const ssize_t got = ::recv(connection, block.data(), block.size(), 0);
    if (got <= 0) break;
    request.append(block.data(), static_cast<std::size_t>(got));
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(request);
  }
  for (int round = 0; round < answer.Times; ++round) {
    for (const Piece& piece : answer.Pieces) {
      std::this_thread::sleep_for(piece.Before);
      const ssize_t sent = ::send(connection, piece.Bytes.data(), piece.Bytes.size(), MSG_NOSIGNAL);
      if (stopped_ || sent != static_cast<ssize_t>(piece.Bytes.size())) return;
    }
  }
  if (answer.End == Ending::Reset) {
    const linger now{1, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  }
  while (answer.End == Ending::KeptOpen && !stopped_) {
    if (Readable(connection) && ::recv(connection, block.data(), block.size(), 0) <= 0) break;
  }
}

}  // namespace kestrune::test
