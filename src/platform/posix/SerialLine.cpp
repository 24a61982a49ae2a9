#include "platform/posix/SerialLine.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "base/Text.h"
#include "platform/posix/SerialDeviceCheck.h"

namespace kestrune::platform {
namespace {

using namespace std::chrono_literals;

constexpr auto kSendingLooks = 10;
constexpr auto kSendingLook = 5ms;
constexpr std::size_t kMostRead = 65536;

struct Speed {
  int Baud;
  speed_t Code;
};
constexpr std::array<Speed, 9> kSpeeds{{{1200, B1200},
                                        {2400, B2400},
                                        {4800, B4800},
                                        {9600, B9600},
                                        {19200, B19200},
                                        {38400, B38400},
                                        {57600, B57600},
                                        {115200, B115200},
                                        {230400, B230400}}};

std::optional<speed_t> SpeedOf(std::string_view text) {
  int baud = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), baud);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  for (const Speed& speed : kSpeeds) {
    if (speed.Baud == baud) return speed.Code;
  }
  return std::nullopt;
}

/// Bytes as they are, without echo, signals, handshake and regard to the modem lines; false for settings that are
/// not of the form "9600,n,8,1".
bool TakeSettings(std::string_view text, termios& line) {
  const std::vector<std::string> parts = base::Split(text, ',');
  if (parts.size() != 4) return false;
  const std::optional<speed_t> speed = SpeedOf(parts[0]);
  const std::string parity = base::ToLower(parts[1]);
  if (!speed || (parity != "n" && parity != "e" && parity != "o")) return false;
  if ((parts[2] != "7" && parts[2] != "8") || (parts[3] != "1" && parts[3] != "2")) return false;
  ::cfmakeraw(&line);
  line.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
  line.c_cflag |= CLOCAL | CREAD;
  line.c_cflag |= parts[2] == "7" ? CS7 : CS8;
  if (parity != "n") line.c_cflag |= PARENB;
  if (parity == "o") line.c_cflag |= PARODD;
  if (parts[3] == "2") line.c_cflag |= CSTOPB;
  line.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY);
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
  return ::cfsetispeed(&line, *speed) == 0 && ::cfsetospeed(&line, *speed) == 0;
}

OpenedLine Failed(std::string cause) {
  return {.Outcome = base::Result::Failed(std::move(cause))};
}

OpenedLine CannotBeOpened(const std::string& device, int error) {
  return Failed(fmt::format("{} cannot be opened: {}{}", device, std::generic_category().message(error),
                            WhoMayHoldSerialDevice()));
}

}  // namespace

OpenedLine OpenSerialLine(const std::string& device, std::string_view settings) {
  base::Result possible = CheckSerialDevice(device);
  if (!possible.Ok()) return {.Outcome = std::move(possible)};
  termios wished{};
  if (!TakeSettings(settings, wished)) {
    return Failed(fmt::format("the line settings \"{}\" cannot be used", settings));
  }
  // Without O_NONBLOCK it would wait for a carrier.
  FileDescriptor line(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!line.IsOpen() || ::ioctl(line.Number(), TIOCEXCL) != 0) return CannotBeOpened(device, errno);
  termios current{};
  if (::tcgetattr(line.Number(), &current) != 0) return CannotBeOpened(device, errno);
  base::Ignored(TakeSettings(settings, current));
  if (::tcsetattr(line.Number(), TCSANOW, &current) != 0) return CannotBeOpened(device, errno);
  // A pseudo-terminal outlives the program that had it open, and keeps what was not read. A header left over from
  // there would make the next frame's header its length, and no reply would be seen any more.
  base::Ignored(::tcflush(line.Number(), TCIFLUSH));
  return {.Line = std::move(line)};
}

void CloseSerialLine(FileDescriptor& line) {
  if (!line.IsOpen()) return;
  const auto unsent = [&line] {
    int bytes = 0;
    return ::ioctl(line.Number(), TIOCOUTQ, &bytes) == 0 && bytes > 0;
  };
  if (!HungUp(line)) {
    for (int look = 0; look < kSendingLooks && unsent(); ++look) std::this_thread::sleep_for(kSendingLook);
  }
  if (unsent()) base::Ignored(::tcflush(line.Number(), TCOFLUSH));
  base::Ignored(::ioctl(line.Number(), TIOCNXCL));
  base::Ignored(line.Close());
}

bool HungUp(const FileDescriptor& line) {
  pollfd state{line.Number(), 0, 0};
  return ::poll(&state, 1, 0) == 1 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

LineInput ReadSerialLine(const FileDescriptor& line) {
  LineInput input;
  std::array<char, 4096> bytes{};
  while (input.Bytes.size() < kMostRead) {
    const ssize_t count = ::read(line.Number(), bytes.data(), bytes.size());
    if (count > 0) {
      input.Bytes.append(bytes.data(), static_cast<std::size_t>(count));
      if (static_cast<std::size_t>(count) < bytes.size()) break;  // that was all
      continue;
    }
    // A line that was reported to have bytes may have none left: somebody else has read them.
    if (count < 0 && errno == EINTR) continue;
    input.Dead = count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
    break;
  }
  return input;
}

void SetModemLines(const FileDescriptor& line, int lines, bool on) {
  base::Ignored(::ioctl(line.Number(), on ? TIOCMBIS : TIOCMBIC, &lines));
}

}  // namespace kestrune::platform
