#include "platform/qtlocal/LocalControlSocket.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <utility>

#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/local/LocalSocket.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kLongestLine = 64UL * 1024;
constexpr std::size_t kMostUnfetched = 1024UL * 1024;
constexpr std::size_t kMostClients = 64;
constexpr std::chrono::milliseconds kPauseWithoutFiles{100};

}  // namespace

struct LocalControlSocket::Client {
  std::uint64_t Id = 0;
  FileDescriptor Socket;
  QSocketNotifier* Readable = nullptr;
  QSocketNotifier* Writable = nullptr;
  std::string Received;  ///< not yet answered
  std::string Unfetched;
  std::uint64_t Lines = 0;  ///< handed out to be answered
  bool Awaiting = false;    ///< the reply to the last of them
  bool Busy = false;        ///< its lines are being handed out further up the stack
  bool Ended = false;       ///< nothing more is read; it goes once it has fetched all
  bool Broken = false;

  [[nodiscard]] bool MayBeAnswered() const {
    return !Broken && !Awaiting && Unfetched.size() <= kMostUnfetched;
  }

  /// Sends what the system takes now.
  void Flush() {
    while (!Broken && !Unfetched.empty()) {
      const ssize_t sent = ::send(Socket.Number(), Unfetched.data(), Unfetched.size(), MSG_NOSIGNAL);
      if (sent >= 0) {
        Unfetched.erase(0, static_cast<std::size_t>(sent));
      } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
        return;
      } else if (errno != EINTR) {
        Broken = true;
      }
    }
  }
};

LocalControlSocket::LocalControlSocket(std::string path, Answer answer)
    : path_(std::move(path)), answer_(std::move(answer)) {
  state_ = Open();
}

LocalControlSocket::~LocalControlSocket() {
  if (listener_.IsOpen()) ::unlink(path_.c_str());
}

LocalControlSocket::State LocalControlSocket::Open() {
  // EAGAIN: somebody listens, and too many wait to be let in.
  if (ConnectLocal(path_).IsOpen() || errno == EAGAIN) {
    reason_ = fmt::format("another process listens on {}", path_);
    return State::AnotherListens;
  }
  ::unlink(path_.c_str());
  listener_ = ListenLocal(path_);
  if (!listener_.IsOpen()) {
    reason_ = fmt::format("{} cannot be listened on: {}", path_, std::strerror(errno));
    return State::Failed;
  }
  listening_ = new QSocketNotifier(listener_.Number(), QSocketNotifier::Read, &owner_);
  QObject::connect(listening_, &QSocketNotifier::activated, &owner_, [this] { Accept(); });
  resume_.setSingleShot(true);
  QObject::connect(&resume_, &QTimer::timeout, listening_, [this] { listening_->setEnabled(true); });
  return State::Listening;
}

void LocalControlSocket::Accept() {
  FileDescriptor socket = AcceptLocal(listener_);
  if (!socket.IsOpen()) {
    if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
      // The one who waits keeps the notifier firing; it may wait until there are files again.
      listening_->setEnabled(false);
      resume_.start(kPauseWithoutFiles);
    }
    return;
  }
  if (!PeerIsSameUser(socket) || clients_.size() >= kMostClients) return;

  const int number = socket.Number();
  const std::uint64_t id = ++lastClient_;
  auto& client = *(clients_[id] = std::make_unique<Client>());
  client.Id = id;
  client.Socket = std::move(socket);
  client.Readable = new QSocketNotifier(number, QSocketNotifier::Read, &owner_);
  client.Writable = new QSocketNotifier(number, QSocketNotifier::Write, &owner_);
  client.Writable->setEnabled(false);
  QObject::connect(client.Readable, &QSocketNotifier::activated, &owner_, [this, &client] { Read(client); });
  QObject::connect(client.Writable, &QSocketNotifier::activated, &owner_, [this, &client] {
    client.Flush();
    Work(client);
  });
}

void LocalControlSocket::Read(Client& client) {
  std::array<char, 16384> block;
  const ssize_t got = ::recv(client.Socket.Number(), block.data(), block.size(), 0);
  if (got > 0) {
    client.Received.append(block.data(), static_cast<std::size_t>(got));
  } else if (got == 0) {
    client.Ended = true;
  } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
    client.Broken = true;
  }
  Work(client);
}

void LocalControlSocket::Work(Client& client) {
  if (client.Busy) {
    client.Writable->setEnabled(!client.Broken && !client.Unfetched.empty());
    return;
  }
  client.Busy = true;
  client.Readable->setEnabled(false);
  AnswerLines(client);
  client.Busy = false;
  Settle(client);
}

void LocalControlSocket::AnswerLines(Client& client) {
  while (client.MayBeAnswered()) {
    const std::size_t end = client.Received.find('\n');
    std::string line;
    if (end != std::string::npos) {
      line = client.Received.substr(0, end);
      client.Received.erase(0, end + 1);
    } else if (client.Received.size() > kLongestLine) {
      line = std::exchange(client.Received, {});
      client.Ended = true;
    } else {
      return;
    }
    client.Awaiting = true;
    const std::uint64_t number = ++client.Lines;
    answer_(line, [this, alive = std::weak_ptr(alive_), id = client.Id, number](const std::string& reply) {
      if (!alive.expired()) TakeReply(id, number, reply);
    });
  }
}

void LocalControlSocket::TakeReply(std::uint64_t id, std::uint64_t line, const std::string& reply) {
  const auto place = clients_.find(id);
  if (place == clients_.end()) return;
  Client& client = *place->second;
  if (!client.Awaiting || client.Lines != line) return;
  client.Awaiting = false;
  client.Unfetched += reply;
  client.Unfetched += '\n';
  client.Flush();
  Work(client);
}

void LocalControlSocket::Settle(Client& client) {
  const bool finished = client.Ended && !client.Awaiting && client.Unfetched.empty();
  if (client.Broken || finished) {
    Drop(client);
    return;
  }
  client.Readable->setEnabled(!client.Ended && client.MayBeAnswered());
  client.Writable->setEnabled(!client.Unfetched.empty());
}

void LocalControlSocket::Drop(Client& client) {
  // A notifier may be what is calling, so it goes later; its socket goes now.
  for (QSocketNotifier* notifier : {client.Readable, client.Writable}) {
    notifier->setEnabled(false);
    notifier->disconnect();
    notifier->deleteLater();
  }
  clients_.erase(client.Id);
}

}  // namespace kestrune::platform
