#pragma once

#include <string>

#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

/// Stream sockets of the file system, non-blocking and closed on exec. A path may be longer than the 107
/// bytes that a socket address holds; its last part may not. On failure the result is not open and errno
/// says why.

/// Binds and listens; fails if anything stands at the path. The socket has mode 0600.
[[nodiscard]] FileDescriptor ListenLocal(const std::string& path);

/// Connects. EAGAIN in errno means that too many others are waiting to be let in.
[[nodiscard]] FileDescriptor ConnectLocal(const std::string& path);

/// Takes the next one who waits to be let in.
[[nodiscard]] FileDescriptor AcceptLocal(const FileDescriptor& listener);

/// Whether the process at the other end runs as the same user as this one.
[[nodiscard]] bool PeerIsSameUser(const FileDescriptor& socket);

}  // namespace kestrune::platform
