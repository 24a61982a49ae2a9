#include <array>
#include <cstdlib>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/DeviceHolder.h"

namespace kestrune::test {
namespace {

/// A pseudo-terminal whose slave nobody has open, at first.
class Terminal {
 public:
  explicit Terminal(const char* maker = "/dev/ptmx") : master_(::open(maker, O_RDWR | O_NOCTTY)) {
    ::grantpt(master_);
    ::unlockpt(master_);
    std::array<char, 64> name{};
    if (::ptsname_r(master_, name.data(), name.size()) == 0) name_ = name.data();
  }
  ~Terminal() { ::close(master_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] const std::string& Name() const { return name_; }

 private:
  int master_;
  std::string name_;
};

/// A process that opens something and waits until it is ended. It reports whether it could.
class Opener {
 public:
  template <typename Open>
  explicit Opener(Open open) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) return;
    id_ = ::fork();
    if (id_ == 0) {
      const char done = open() ? 'y' : 'n';
      static_cast<void>(::write(pipe[1], &done, 1));
      for (;;) ::pause();
    }
    char done = 'n';
    Opened = ::read(pipe[0], &done, 1) == 1 && done == 'y';
    ::close(pipe[0]);
    ::close(pipe[1]);
  }
  ~Opener() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  Opener(const Opener&) = delete;
  Opener& operator=(const Opener&) = delete;

  [[nodiscard]] int Id() const { return id_; }
  bool Opened = false;

 private:
  pid_t id_ = -1;
};

TEST(DeviceHolder, NamesTheProcessThatHasTheDeviceOpen) {
  const Terminal line;
  EXPECT_EQ(platform::FindDeviceHolder(line.Name()).ProcessId, 0);
  const Opener opener([&] { return ::open(line.Name().c_str(), O_RDWR | O_NOCTTY) >= 0; });
  ASSERT_TRUE(opener.Opened);
  EXPECT_EQ(platform::FindDeviceHolder(line.Name()).ProcessId, opener.Id());
}

TEST(DeviceHolder, AProcessThatNamesItselfOddlyControlsNoTerminal) {
  const Terminal line;
  const Opener opener([&] {
    return ::prctl(PR_SET_NAME, "a\x1B[1m\nb\xC2\x9B") == 0 &&
           ::open(line.Name().c_str(), O_RDWR | O_NOCTTY) >= 0;
  });
  ASSERT_TRUE(opener.Opened);
  EXPECT_EQ(platform::FindDeviceHolder(line.Name()).Name, "a?[1m?b??");
}

/// In terminals of a container: opens the one with this name.
bool OpenNamesakeInContainer(const std::string& name) {
  if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::mount("devpts", "/dev/pts", "devpts", 0, "newinstance,ptmxmode=0666") != 0)
    return false;
  constexpr int kMost = 200;
  for (int i = 0; i < kMost; ++i) {
    const auto* const terminal = new Terminal("/dev/pts/ptmx");  // stays open until the process ends
    if (terminal->Name() == name) return ::open(name.c_str(), O_RDWR | O_NOCTTY) >= 0;
  }
  return false;
}

TEST(DeviceHolder, ATerminalOfTheSameNameInAContainerIsAnother) {
  const Terminal line;
  const Opener container([&] { return OpenNamesakeInContainer(line.Name()); });
  if (!container.Opened) GTEST_SKIP() << "only root may make a container";
  EXPECT_EQ(platform::FindDeviceHolder(line.Name()).ProcessId, 0);
}

}  // namespace
}  // namespace kestrune::test
