#include "platform/local/LocalSocket.h"

#include <cerrno>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrune::platform {
namespace {

constexpr int kWaiting = 64;

/// A socket's address. A path that does not fit is reached through its folder, which is held open meanwhile.
class Address {
 public:
  explicit Address(std::string_view path) {
    if (Take(path)) return;
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return;
    const std::string folder(path.substr(0, slash + 1));
    folder_ = FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder_.IsOpen()) Take(fmt::format("/proc/self/fd/{}/{}", folder_.Number(), path.substr(slash + 1)));
  }

  /// Sets errno if not.
  [[nodiscard]] bool Fits() const {
    if (!fits_ && folder_.IsOpen()) errno = ENAMETOOLONG;
    return fits_;
  }
  [[nodiscard]] const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address_); }
  [[nodiscard]] static socklen_t Size() { return sizeof(sockaddr_un); }

 private:
  bool Take(std::string_view path) {
    if (path.size() >= sizeof address_.sun_path) {
      errno = ENAMETOOLONG;
      return false;
    }
    address_ = {};
    address_.sun_family = AF_UNIX;
    path.copy(address_.sun_path, path.size());
    fits_ = true;
    return true;
  }

  FileDescriptor folder_;
  sockaddr_un address_{};
  bool fits_ = false;
};

FileDescriptor NewSocket() {
  return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

}  // namespace

FileDescriptor ListenLocal(const std::string& path) {
  const Address address(path);
  if (!address.Fits()) return {};
  FileDescriptor listener = NewSocket();
  if (!listener.IsOpen()) return {};
  // The mode of the socket itself becomes the mode of the file that bind makes.
  if (::fchmod(listener.Number(), S_IRUSR | S_IWUSR) != 0) return {};
  if (::bind(listener.Number(), address.Get(), Address::Size()) != 0) return {};
  if (::listen(listener.Number(), kWaiting) != 0) return {};
  return listener;
}

FileDescriptor ConnectLocal(const std::string& path) {
  const Address address(path);
  if (!address.Fits()) return {};
  FileDescriptor socket = NewSocket();
  if (!socket.IsOpen()) return {};
  if (::connect(socket.Number(), address.Get(), Address::Size()) != 0) return {};
  return socket;
}

FileDescriptor AcceptLocal(const FileDescriptor& listener) {
  return FileDescriptor(::accept4(listener.Number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

bool PeerIsSameUser(const FileDescriptor& socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return ::getsockopt(socket.Number(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

}  // namespace kestrune::platform
