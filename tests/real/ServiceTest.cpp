// The real program under a service manager's eyes: a socket of the test's own takes what it says.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class Manager {
 public:
  explicit Manager(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    std::memcpy(static_cast<char*>(place.sun_path), path.data(), path.size());
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&place), sizeof(place)), 0);
  }
  ~Manager() { ::close(socket_); }
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  /// Every datagram so far, the oldest first.
  const std::vector<std::string>& Heard() {
    std::array<char, 4096> text{};
    while (true) {
      const ssize_t length = ::recv(socket_, text.data(), text.size(), 0);
      if (length < 0) return heard_;
      heard_.emplace_back(text.data(), static_cast<std::size_t>(length));
    }
  }
  /// Forgets what it has heard.
  void Forget() {
    Heard();
    heard_.clear();
  }

 private:
  int socket_;
  std::vector<std::string> heard_;
};

TEST(Service, AUnitTellsItsManagerItsStartItsLifeAndItsEnd) {
  const TemporaryFolder folder;
  Manager manager(folder / "notify");
  const Receiver radio(folder / "radio", {ShortLineUp({"One", "Two"}, 60)});
  Unit unit(folder / "profile",
            {.Audio = "pipe:" + QuietFile(folder.Path()),
             .Port = radio.Link(),
             .Environment = {{"NOTIFY_SOCKET", folder / "notify"}, {"WATCHDOG_USEC", "600000"}}});
  unit.Start();
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return !manager.Heard().empty(); }));
  EXPECT_THAT(manager.Heard().front(), HasSubstr("EXTEND_TIMEOUT_USEC="));
  EXPECT_THAT(manager.Heard().front(), Not(HasSubstr("READY=1")));
  ASSERT_TRUE(WaitUntil(kPatience, [&] {
    return std::any_of(manager.Heard().begin(), manager.Heard().end(),
                       [](const std::string& said) { return said.starts_with("READY=1\n"); });
  }));
  const Unit::Json status = unit.Status();
  EXPECT_FALSE(status.value("channelsLoading", true))
      << "it said that it was ready before its channels were loaded";

  EXPECT_EQ(unit.Ctl({"record"}).Exit, 0);
  EXPECT_TRUE(WaitUntil(kPatience, [&] {
    return std::any_of(manager.Heard().begin(), manager.Heard().end(), [](const std::string& said) {
      return said.find("STATUS=Recording; channel ") != std::string::npos;
    });
  }));

  // A program that hangs falls silent, and is heard again when it goes on.
  manager.Forget();
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return manager.Heard().size() >= 5; }));
  EXPECT_THAT(manager.Heard(), testing::Each(HasSubstr("WATCHDOG=1\n")));
  unit.Program().Signal(SIGSTOP);
  ASSERT_TRUE(WaitUntil(kPatience, [&] {
    manager.Forget();
    std::this_thread::sleep_for(1s);
    return manager.Heard().empty();
  }));
  unit.Program().Signal(SIGCONT);
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return !manager.Heard().empty(); }));

  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(manager.Heard(), Contains(HasSubstr("STOPPING=1\n")));
}

}  // namespace
}  // namespace kestrune::test
