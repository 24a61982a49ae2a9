#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace kestrune::test {

/// The far end of a serial line; the near one is the device at Path.
class PseudoTerminal {
 public:
  PseudoTerminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0) {
      throw std::runtime_error("no pseudo-terminal");
    }
    path_ = ::ptsname(master_);
    termios line{};
    ::tcgetattr(master_, &line);
    ::cfmakeraw(&line);
    ::tcsetattr(master_, TCSANOW, &line);
  }
  ~PseudoTerminal() { Close(); }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }

  void Send(std::string_view bytes) {
    if (::write(master_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("the pseudo-terminal takes no bytes");
    }
  }
  [[nodiscard]] std::string Receive() {
    char bytes[4096];
    const ssize_t size = ::read(master_, bytes, sizeof bytes);
    return size > 0 ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
  }
  void Close() {
    if (master_ >= 0) ::close(master_);
    master_ = -1;
  }

 private:
  int master_;
  std::string path_;
};

}  // namespace kestrune::test
