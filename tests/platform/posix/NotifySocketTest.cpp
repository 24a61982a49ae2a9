#include <array>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/posix/NotifySocket.h"
#include "platform/posix/TemporaryFolder.h"
#include "support/ScopedVariables.h"

namespace kestrune::platform {
namespace {

using test::ScopedVariables;
using test::TemporaryFolder;
using namespace std::chrono_literals;

/// The manager's end of the socket.
class Manager {
 public:
  explicit Manager(const std::string& name) : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    std::memcpy(static_cast<char*>(place.sun_path), name.data(), name.size());
    if (name[0] == '@') place.sun_path[0] = '\0';
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&place), length), 0);
  }
  ~Manager() { ::close(socket_); }
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  [[nodiscard]] std::string Heard() const {
    std::array<char, 4096> text{};
    const ssize_t length = ::recv(socket_, text.data(), text.size(), 0);
    return length < 0 ? std::string() : std::string(text.data(), static_cast<std::size_t>(length));
  }

 private:
  int socket_;
};

TEST(NotifySocket, AnAbsentManagerHearsNothing) {
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", ""}, {"WATCHDOG_USEC", "1000000"}, {"WATCHDOG_PID", ""}});
  NotifySocket socket;
  EXPECT_FALSE(socket.Listens());
  EXPECT_EQ(socket.Patience(), 0ms);
  EXPECT_FALSE(socket.Tell({.Ready = true}));
}

TEST(NotifySocket, EachThingIsALineOfOneDatagram) {
  const TemporaryFolder folder;
  const Manager manager(folder / "notify");
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", folder / "notify"}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
  NotifySocket socket;
  ASSERT_TRUE(socket.Listens());
  EXPECT_TRUE(
      socket.Tell({.Ready = true, .Stopping = true, .Alive = true, .MoreTime = 60s, .Status = "plays"}));
  EXPECT_EQ(manager.Heard(), "READY=1\nSTOPPING=1\nWATCHDOG=1\nEXTEND_TIMEOUT_USEC=60000000\nSTATUS=plays\n");
  EXPECT_TRUE(socket.Tell({}));
  EXPECT_EQ(manager.Heard(), "") << "no news is no datagram";
}

TEST(NotifySocket, ANameBehindAnAtIsAbstract) {
  const std::string name = "@kestrune-test-" + std::to_string(::getpid());
  const Manager manager(name);
  const ScopedVariables variables({{"NOTIFY_SOCKET", name}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
  NotifySocket socket;
  EXPECT_TRUE(socket.Tell({.Alive = true}));
  EXPECT_EQ(manager.Heard(), "WATCHDOG=1\n");
}

TEST(NotifySocket, AStatusIsOneLineWhateverStandsInIt) {
  const TemporaryFolder folder;
  const Manager manager(folder / "notify");
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", folder / "notify"}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
  NotifySocket socket;
  EXPECT_TRUE(socket.Tell({.Status = "Moon\nMAINPID=1\r\x7f"}));
  EXPECT_EQ(manager.Heard(), "STATUS=Moon MAINPID=1  \n");
}

TEST(NotifySocket, AManagerThatHasGoneTakesNothing) {
  const TemporaryFolder folder;
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", folder / "notify"}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
  NotifySocket socket;
  EXPECT_FALSE(socket.Tell({.Ready = true}));
}

TEST(NotifySocket, ThePatienceIsThatForThisProcess) {
  const auto patience = [](const std::string& microseconds, const std::string& process) {
    const ScopedVariables variables(
        {{"NOTIFY_SOCKET", "/nowhere"}, {"WATCHDOG_USEC", microseconds}, {"WATCHDOG_PID", process}});
    return NotifySocket().Patience();
  };
  EXPECT_EQ(patience("300000000", ""), 300s);
  EXPECT_EQ(patience("300000000", std::to_string(::getpid())), 300s);
  EXPECT_EQ(patience("300000000", "1"), 0ms);
  EXPECT_EQ(patience("", ""), 0ms);
  EXPECT_EQ(patience("-5", ""), 0ms);
  EXPECT_EQ(patience("12x", ""), 0ms);
}

TEST(NotifySocket, ProgramsStartedByThisOneDoNotSpeakForIt) {
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", "/nowhere"}, {"WATCHDOG_USEC", "1000000"}, {"WATCHDOG_PID", "1"}});
  const NotifySocket socket;
  EXPECT_EQ(std::getenv("NOTIFY_SOCKET"), nullptr);
  EXPECT_EQ(std::getenv("WATCHDOG_USEC"), nullptr);
  EXPECT_EQ(std::getenv("WATCHDOG_PID"), nullptr);
}

TEST(NotifySocket, AnAddressOfNoKnownKindIsNone) {
  for (const std::string address : {"relative", "@", "/", "vsock:2:1"}) {
    const ScopedVariables variables(
        {{"NOTIFY_SOCKET", address}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
    EXPECT_FALSE(NotifySocket().Listens()) << address;
  }
  const ScopedVariables variables(
      {{"NOTIFY_SOCKET", "/" + std::string(200, 'a')}, {"WATCHDOG_USEC", ""}, {"WATCHDOG_PID", ""}});
  EXPECT_FALSE(NotifySocket().Listens());
}

}  // namespace
}  // namespace kestrune::platform
