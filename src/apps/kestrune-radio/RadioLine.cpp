#include "apps/kestrune-radio/RadioLine.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace kestrune::radio_program {

RadioLine::~RadioLine() {
  if (!link_.empty()) ::unlink(link_.c_str());
}

std::string RadioLine::Open(const std::string& link) {
  master_ = platform::FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!master_.IsOpen() || ::grantpt(Handle()) != 0 || ::unlockpt(Handle()) != 0) {
    return fmt::format("no pseudo-terminal can be opened: {}", std::strerror(errno));
  }
  std::array<char, 128> name{};
  if (::ptsname_r(Handle(), name.data(), name.size()) != 0) return "the pseudo-terminal has no name";
  path_ = name.data();
  termios line{};
  if (::tcgetattr(Handle(), &line) == 0) {
    ::cfmakeraw(&line);
    ::tcsetattr(Handle(), TCSANOW, &line);
  }
  // Only an end that was open once reads as closed.
  platform::FileDescriptor(::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)).Close();

  if (link.empty()) return {};
  struct stat status {};
  if (::lstat(link.c_str(), &status) == 0 && (!S_ISLNK(status.st_mode) || ::unlink(link.c_str()) != 0)) {
    return fmt::format("{} is there already and no symbolic link", link);
  }
  if (::symlink(path_.c_str(), link.c_str()) != 0) {
    return fmt::format("no link can be made at {}: {}", link, std::strerror(errno));
  }
  link_ = link;
  return {};
}

bool RadioLine::Connected() const {
  pollfd state{Handle(), 0, 0};
  return ::poll(&state, 1, 0) == 0;
}

std::string RadioLine::Read() {
  std::string all;
  std::array<char, 4096> bytes{};
  for (;;) {
    const ssize_t size = ::read(Handle(), bytes.data(), bytes.size());
    if (size <= 0) return all;
    all.append(bytes.data(), static_cast<std::size_t>(size));
  }
}

void RadioLine::Write(std::string_view bytes) {
  const ssize_t size = ::write(Handle(), bytes.data(), bytes.size());
  static_cast<void>(size);
}

}  // namespace kestrune::radio_program
