#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "PseudoTerminal.h"
#include "QtApplication.h"
#include "platform/qt/QtSerialPort.h"

namespace kestrune::test {
namespace {

using platform::PortMap;
using platform::QtSerialPort;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::StartsWith;

class QtSerialPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    PortMap ports;
    ports.SetDevice(1, Far.Path());
    ports.SetDevice(2, "/dev/no-such-line");
    ports.SetDevice(3, "/dev/null");
    ports.SetDevice(4, "/etc/passwd");
    Port = std::make_unique<QtSerialPort>(Under.Loop, ports);
    Port->SetCommPort(1);
    Port->SetReceiveHandler([this] {
      ++Notifications;
      Received += Port->Input();
    });
  }

  /// Serves events until so many bytes have been received.
  [[nodiscard]] bool ReceivedSize(std::size_t size) {
    return Under.RunUntil([this, size] { return Received.size() >= size; }, seconds(5));
  }

  QtLoop Under;
  PseudoTerminal Far;
  std::unique_ptr<QtSerialPort> Port;
  std::string Received;
  int Notifications = 0;
};

TEST_F(QtSerialPortTest, OpensAPseudoTerminalAlthoughItHasNoModemLines) {
  EXPECT_FALSE(Port->IsOpen());
  ASSERT_EQ(Port->Open().Cause(), "");
  EXPECT_TRUE(Port->IsOpen());
  Port->SetDataTerminalReady(true);
  Port->SetRequestToSend(true);
  Under.Run(milliseconds(20));
  EXPECT_TRUE(Port->IsOpen());
  Port->Close();
  EXPECT_FALSE(Port->IsOpen());
}

TEST_F(QtSerialPortTest, BytesGoBothWaysUnchangedZeroBytesIncluded) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send(all);
  ASSERT_TRUE(ReceivedSize(256));
  EXPECT_EQ(Received, all);
  EXPECT_TRUE(Port->Output(all));
  EXPECT_EQ(Far.Receive(), all);
}

TEST_F(QtSerialPortTest, AWriteIsOnItsWayBeforeEventsRun) {
  ASSERT_EQ(Port->Open().Cause(), "");
  EXPECT_TRUE(Port->Output("one"));
  EXPECT_EQ(Far.Receive(), "one");
  EXPECT_TRUE(Port->Output("two"));
  EXPECT_EQ(Far.Receive(), "two");
}

TEST_F(QtSerialPortTest, BytesThatComeSplitAreAllThere) {
  ASSERT_EQ(Port->Open().Cause(), "");
  for (const char* const piece : {"5", "A", "A5", "00", "06"}) {
    const std::size_t before = Received.size();
    Far.Send(piece);
    ASSERT_TRUE(ReceivedSize(before + 1));
  }
  EXPECT_EQ(Received, "5AA50006");
}

TEST_F(QtSerialPortTest, NotifiesFromTheThresholdOn) {
  Port->SetReceiveThreshold(5);
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abcd");
  Under.Run(milliseconds(60));
  EXPECT_EQ(Notifications, 0);
  Far.Send("e");
  ASSERT_TRUE(ReceivedSize(5));
  EXPECT_EQ(Notifications, 1);
  EXPECT_EQ(Received, "abcde");
}

TEST_F(QtSerialPortTest, BytesBelowTheThresholdCanBeReadAllTheSame) {
  Port->SetReceiveThreshold(5);
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abcd");
  Under.Run(milliseconds(60));
  EXPECT_EQ(Port->Input(), "abcd");
  EXPECT_EQ(Port->Input(), "");
  EXPECT_EQ(Notifications, 0);
}

TEST_F(QtSerialPortTest, ALowerThresholdOnAnOpenPortNotifiesOfWhatWaits) {
  Port->SetReceiveThreshold(5);
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abc");
  Under.Run(milliseconds(60));
  Port->SetReceiveThreshold(1);
  EXPECT_EQ(Notifications, 0) << "never from within a call";
  ASSERT_TRUE(ReceivedSize(3));
}

TEST_F(QtSerialPortTest, TheHandlerRunsOnlyFromTheLoop) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abcdef");
  Under.Loop.Sleep(milliseconds(30));
  EXPECT_EQ(Notifications, 0);
  EXPECT_TRUE(Port->Output("x"));
  EXPECT_EQ(Notifications, 0);
  Under.Loop.PumpEvents();
  EXPECT_EQ(Notifications, 1) << "one pump serves what is there";
}

TEST_F(QtSerialPortTest, WhatComesInPiecesWakesTheOuterLoopOnce) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abc");
  QCoreApplication::processEvents();
  EXPECT_EQ(Notifications, 0) << "more may come";
  Far.Send("def");
  ASSERT_TRUE(ReceivedSize(6));
  EXPECT_EQ(Received, "abcdef");
  EXPECT_EQ(Notifications, 1);
}

TEST_F(QtSerialPortTest, AHandlerThatIsHeldGetsAllThatComesMeanwhileAtOnce) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Port->HoldReceiveHandler(milliseconds(200));
  Far.Send("abc");
  Under.Run(milliseconds(60));
  EXPECT_EQ(Notifications, 0) << "three times what it takes without";
  Far.Send("def");
  ASSERT_TRUE(ReceivedSize(6));
  EXPECT_EQ(Notifications, 1);
}

TEST_F(QtSerialPortTest, AHandlerIsHeldOnce) {
  Port->SetReceiveThreshold(1);
  ASSERT_EQ(Port->Open().Cause(), "");
  Port->HoldReceiveHandler(milliseconds(1));
  Under.Run(milliseconds(40));
  Far.Send("abc");
  ASSERT_TRUE(ReceivedSize(3));
}

TEST_F(QtSerialPortTest, AHeldHandlerKeepsNoBytesFromWhoReads) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Port->HoldReceiveHandler(seconds(60));
  Far.Send("abc");
  Under.Run(milliseconds(60));
  EXPECT_EQ(Notifications, 0);
  EXPECT_EQ(Port->Input(), "abc");
}

TEST_F(QtSerialPortTest, AClosedOrDeadPortHoldsNothing) {
  Port->HoldReceiveHandler(milliseconds(1));
  ASSERT_EQ(Port->Open().Cause(), "");
  Port->HoldReceiveHandler(seconds(60));
  Port->Close();
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abc");
  ASSERT_TRUE(ReceivedSize(3));
}

TEST_F(QtSerialPortTest, BytesThatComeWhileTheHandlerPumpsAreNotifiedWithinIt) {
  int depth = 0;
  int deepest = 0;
  Port->SetReceiveHandler([&] {
    deepest = std::max(deepest, ++depth);
    Received += Port->Input();
    if (Received == "first") {
      Far.Send("second");
      static_cast<void>(Under.RunUntil([&] { return Received.size() > 5; }, seconds(5)));
    }
    --depth;
  });
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("first");
  ASSERT_TRUE(ReceivedSize(11));
  EXPECT_EQ(deepest, 2);
}

TEST_F(QtSerialPortTest, TheHandlerMayCloseThePort) {
  Port->SetReceiveHandler([&] {
    ++Notifications;
    Port->Close();
  });
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("abc");
  ASSERT_TRUE(Under.RunUntil([this] { return Notifications > 0; }, seconds(5)));
  Under.Run(milliseconds(20));
  EXPECT_FALSE(Port->IsOpen());
  EXPECT_EQ(Notifications, 1);
}

TEST_F(QtSerialPortTest, ALineWhoseOtherEndClosesReadsAsClosedAndDropsWrites) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Close();
  EXPECT_FALSE(Port->IsOpen());
  EXPECT_FALSE(Port->Output("x"));
  Under.Run(milliseconds(400));
  EXPECT_FALSE(Port->IsOpen());
  EXPECT_EQ(Port->Input(), "");
}

TEST_F(QtSerialPortTest, ALineThatTakesNoBytesForAWhileStaysOpenAndLosesNone) {
  ASSERT_EQ(Port->Open().Cause(), "");
  std::string sent;
  // The far end reads nothing, until the line and the port's own store are full.
  for (int count = 0; count < 100'000; ++count) {
    const std::string command = std::to_string(count) + ";";
    if (!Port->Output(command)) break;
    sent += command;
  }
  ASSERT_GT(sent.size(), 4096U);
  ASSERT_LT(sent.size(), 400'000U) << "what waits is bounded";
  EXPECT_TRUE(Port->IsOpen());
  Under.Run(milliseconds(400));
  EXPECT_TRUE(Port->IsOpen());
  std::string received;
  EXPECT_TRUE(Under.RunUntil(
      [&] {
        received += Far.Receive();
        return received.size() >= sent.size();
      },
      seconds(5)));
  EXPECT_EQ(received, sent);
  EXPECT_TRUE(Port->Output("after"));
  EXPECT_EQ(Far.Receive(), "after");
  Far.Send("hello");
  EXPECT_TRUE(ReceivedSize(5));
}

TEST_F(QtSerialPortTest, WhatALineDidNotTakeIsDroppedByAClose) {
  ASSERT_EQ(Port->Open().Cause(), "");
  while (Port->Output("old old ")) continue;
  Port->Close();
  while (!Far.Receive().empty()) continue;
  ASSERT_EQ(Port->Open().Cause(), "");
  EXPECT_TRUE(Port->Output("new"));
  Under.Run(milliseconds(100));
  EXPECT_EQ(Far.Receive(), "new");
}

TEST_F(QtSerialPortTest, ANumberWithoutADeviceDoesNotExist) {
  EXPECT_TRUE(Port->Exists());
  for (const std::int16_t number : {0, 2, 17}) {
    Port->SetCommPort(number);
    EXPECT_FALSE(Port->Exists()) << number;
  }
  Port->SetCommPort(3);
  EXPECT_TRUE(Port->Exists()) << "a device that is of no use is one";
}

TEST_F(QtSerialPortTest, ADeadLineIsLetGoSoThatItsDeviceIsFree) {
  ASSERT_EQ(Port->Open().Cause(), "");
  const int next = ::dup(0);
  ::close(next);
  Far.Close();
  Under.Run(milliseconds(400));
  const int freed = ::dup(0);
  ::close(freed);
  EXPECT_LT(freed, next);
}

TEST_F(QtSerialPortTest, ADeadLineDoesNotSpinForLong) {
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Close();
  Under.Run(milliseconds(400));
  const std::clock_t before = std::clock();
  QEventLoop loop;
  const auto timer = Under.Loop.MakeTimer(milliseconds(300), [&] { loop.quit(); });
  timer->SetEnabled(true);
  loop.exec();
  EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.1);
}

TEST_F(QtSerialPortTest, CanBeOpenedAgain) {
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(Port->Open().Cause(), "");
    Far.Send("hello");
    ASSERT_TRUE(ReceivedSize(5));
    Received.clear();
    Port->Close();
  }
}

TEST_F(QtSerialPortTest, WhatAnEarlierProgramLeftUnreadIsDropped) {
  const int earlier = ::open(Far.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(earlier, 0);
  Far.Send("\x5A\xA5");
  pollfd arrived{earlier, POLLIN, 0};
  ASSERT_EQ(::poll(&arrived, 1, 5000), 1);
  ::close(earlier);
  ASSERT_EQ(Port->Open().Cause(), "");
  Far.Send("hello");
  ASSERT_TRUE(ReceivedSize(5));
  EXPECT_EQ(Received, "hello");
}

TEST_F(QtSerialPortTest, OpeningAnOpenPortOpensItAgain) {
  ASSERT_EQ(Port->Open().Cause(), "");
  ASSERT_EQ(Port->Open().Cause(), "");
  EXPECT_TRUE(Port->IsOpen());
}

TEST_F(QtSerialPortTest, AClosedPortTakesNothing) {
  EXPECT_FALSE(Port->Output("x"));
  EXPECT_EQ(Port->Input(), "");
  Port->SetDataTerminalReady(true);
  Port->Close();
}

// Bytes that another program took away.

TEST_F(QtSerialPortTest, AReadThatFindsNothingLeavesTheLineOpen) {
  ASSERT_EQ(Port->Open().Cause(), "");
  // Another program reads what was announced to this one.
  const int thief = ::open(Far.Path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(thief, 0);
  int stolen = 0;
  for (int round = 0; round < 200; ++round) {
    Far.Send("stolen");
    pollfd arrived{thief, POLLIN, 0};
    ASSERT_EQ(::poll(&arrived, 1, 5000), 1);
    char bytes[64];
    const auto fromLoop = Under.Loop.MakeTimer(milliseconds(0), [&] {
      if (::read(thief, &bytes[0], sizeof bytes) > 0) ++stolen;
    });
    fromLoop->SetEnabled(true);
    if (round % 2 == 0 && ::read(thief, &bytes[0], sizeof bytes) > 0) ++stolen;
    Under.Run(milliseconds(2));
    EXPECT_EQ(Port->Input().size() % 6, 0U);
  }
  ::close(thief);
  EXPECT_GT(stolen, 0);
  EXPECT_TRUE(Port->IsOpen());
  Received.clear();
  Far.Send("hello");
  EXPECT_TRUE(ReceivedSize(5)) << "it is still listened to";
}

// Opening without a wait.

TEST_F(QtSerialPortTest, AnOpeningLaterReportsFromTheLoop) {
  std::vector<std::string> causes;
  Port->OpenLater([&](const base::Result& opened) {
    causes.push_back(opened.Cause());
    EXPECT_TRUE(Port->IsOpen());
  });
  EXPECT_FALSE(Port->IsOpen());
  Under.Loop.Sleep(milliseconds(300));
  EXPECT_TRUE(causes.empty()) << "never within a sleep";
  ASSERT_TRUE(Under.RunUntil([&] { return !causes.empty(); }, seconds(5)));
  EXPECT_EQ(causes, std::vector<std::string>{""});
  Far.Send("hello");
  ASSERT_TRUE(ReceivedSize(5));
  EXPECT_TRUE(Port->Output("x"));
  EXPECT_EQ(Far.Receive(), "x");
}

TEST_F(QtSerialPortTest, AnOpeningLaterThatFailsHasTheSameCause) {
  for (const std::int16_t number : {2, 4, 17}) {
    Port->SetCommPort(number);
    std::string cause = "none";
    Port->OpenLater([&](const base::Result& opened) { cause = opened.Cause(); });
    ASSERT_TRUE(Under.RunUntil([&] { return cause != "none"; }, seconds(5)));
    EXPECT_EQ(cause, Port->Open().Cause());
    EXPECT_FALSE(Port->IsOpen());
  }
}

TEST_F(QtSerialPortTest, AnOpeningThatWasGivenUpLeavesTheDeviceFree) {
  for (int round = 0; round < 20; ++round) {
    Port->OpenLater([](const base::Result&) { FAIL() << "given up"; });
    if (round % 2 == 0) Under.Loop.Sleep(milliseconds(10));
    Port->Close();
    Under.Run(milliseconds(20));
    EXPECT_FALSE(Port->IsOpen());
  }
  EXPECT_TRUE(Under.RunUntil([&] { return Port->Open().Ok(); }, seconds(5)));
}

TEST_F(QtSerialPortTest, APortMayGoAwayWhileItOpens) {
  for (int round = 0; round < 20; ++round) {
    PortMap ports;
    ports.SetDevice(1, Far.Path());
    QtSerialPort brief(Under.Loop, ports);
    brief.SetCommPort(1);
    brief.OpenLater([](const base::Result&) { FAIL() << "gone"; });
  }
  Under.Run(milliseconds(50));
  EXPECT_TRUE(Under.RunUntil([&] { return Port->Open().Ok(); }, seconds(5)));
}

TEST_F(QtSerialPortTest, AStuckLineIsClosedWithoutAWait) {
  ASSERT_EQ(Port->Open().Cause(), "");
  while (Port->Output("nobody reads this ")) continue;
  const auto start = Under.Loop.SteadyNow();
  Port->Close();
  EXPECT_LT(Under.Loop.SteadyNow() - start, milliseconds(250));
}

TEST_F(QtSerialPortTest, AMissingDeviceIsNamed) {
  Port->SetCommPort(2);
  EXPECT_EQ(Port->Open().Cause(), "there is no device /dev/no-such-line; is the radio plugged in?");
  EXPECT_FALSE(Port->IsOpen());
}

TEST_F(QtSerialPortTest, ASearchOverPortsWithoutDevicesCostsNothing) {
  Port->SetCommPort(2);
  const auto start = Under.Loop.SteadyNow();
  for (int i = 0; i < 1000; ++i) EXPECT_NE(Port->Open().Cause(), "");
  EXPECT_LT(Under.Loop.SteadyNow() - start, milliseconds(1000));
}

TEST_F(QtSerialPortTest, ANumberWithoutAPortIsNamed) {
  for (const std::int16_t number : {0, 17}) {
    Port->SetCommPort(number);
    EXPECT_EQ(Port->Open().Cause(), "there is no port " + std::to_string(number));
  }
}

TEST_F(QtSerialPortTest, WhatIsNoSerialDeviceIsRefused) {
  Port->SetCommPort(3);
  EXPECT_EQ(Port->Open().Cause(), "/dev/null is not a serial device");
  Port->SetCommPort(4);
  EXPECT_EQ(Port->Open().Cause(), "/etc/passwd is not a serial device");
}

TEST_F(QtSerialPortTest, ABusyDeviceNamesTheProcessThatHoldsIt) {
  const int held = ::open(Far.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(held, 0);
  EXPECT_EQ(Port->Open().Cause(), Far.Path() +
                                      " is in use by this program already (platform_qt_tes, process " +
                                      std::to_string(::getpid()) + ")");
  ::close(held);
  EXPECT_EQ(Port->Open().Cause(), "");
}

TEST_F(QtSerialPortTest, ASecondPortOnTheSameDeviceIsRefused) {
  ASSERT_EQ(Port->Open().Cause(), "");
  PortMap ports;
  ports.SetDevice(1, Far.Path());
  QtSerialPort second(Under.Loop, ports);
  second.SetCommPort(1);
  EXPECT_THAT(second.Open().Cause(), StartsWith(Far.Path() + " is in use by "));
}

TEST_F(QtSerialPortTest, BadSettingsAreRefused) {
  for (const char* const settings :
       {"", "9600", "fast,n,8,1", "0,n,8,1", "9600,x,8,1", "9600,n,9,1", "9600,n,8,3"}) {
    Port->SetSettings(settings);
    EXPECT_EQ(Port->Open().Cause(), "the line settings \"" + std::string(settings) + "\" cannot be used");
  }
  for (const char* const settings : {"9600,n,8,1", "19200,E,7,2"}) {
    Port->SetSettings(settings);
    EXPECT_EQ(Port->Open().Cause(), "") << settings;
  }
}

/// Acts as the user nobody while it lives, if the test runs as root.
class WithoutPower {
 public:
  WithoutPower() {
    const passwd* const nobody = ::getpwnam("nobody");
    if (::geteuid() == 0 && nobody != nullptr) acting_ = ::seteuid(nobody->pw_uid) == 0;
  }
  ~WithoutPower() {
    if (acting_ && ::seteuid(0) != 0) ::abort();
  }
  WithoutPower(const WithoutPower&) = delete;
  WithoutPower& operator=(const WithoutPower&) = delete;

 private:
  bool acting_ = false;
};

/// A process of this name that keeps a device open for itself while it lives.
class Service {
 public:
  Service(const char* name, const std::string& device) {
    int ready[2];
    if (::pipe(&ready[0]) != 0) return;
    process_ = ::fork();
    if (process_ == 0) {
      ::prctl(PR_SET_NAME, name);
      const int line = ::open(device.c_str(), O_RDWR | O_NOCTTY);
      ::ioctl(line, TIOCEXCL);
      static_cast<void>(!::write(ready[1], "x", 1));
      for (;;) ::pause();
    }
    char sign = 0;
    static_cast<void>(!::read(ready[0], &sign, 1));
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~Service() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  [[nodiscard]] pid_t Process() const { return process_; }

 private:
  pid_t process_ = -1;
};

TEST_F(QtSerialPortTest, AServiceThatHoldsTheDeviceIsNamed) {
  const Service modems("ModemManager", Far.Path());
  EXPECT_EQ(Port->Open().Cause(), Far.Path() + " is in use by ModemManager (process " +
                                      std::to_string(modems.Process()) + "); close that program first");
}

TEST_F(QtSerialPortTest, AServiceOfTheSystemThatMayHoldTheDeviceUnseenIsNamed) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can have what an ordinary user cannot see";
  ASSERT_EQ(::chmod(Far.Path().c_str(), 0666), 0);
  const Service braille("brltty", Far.Path());
  const WithoutPower nobody;
  const std::string reason = Port->Open().Cause();
  EXPECT_THAT(reason, StartsWith(Far.Path() + " cannot be opened: "));
  EXPECT_THAT(reason, testing::HasSubstr("brltty"));
  EXPECT_THAT(reason,
              testing::EndsWith(
                  " here and may hold it, and docs/headless.md explains how to keep such services away"));
}

TEST_F(QtSerialPortTest, AMissingPermissionNamesTheGroupToJoin) {
  const group* const dialout = ::getgrnam("dialout");
  if (::geteuid() != 0 || dialout == nullptr)
    GTEST_SKIP() << "only root can give a device to the group dialout";
  ASSERT_EQ(::chown(Far.Path().c_str(), 0, dialout->gr_gid), 0);
  ASSERT_EQ(::chmod(Far.Path().c_str(), 0660), 0);
  const WithoutPower nobody;
  EXPECT_EQ(Port->Open().Cause(),
            "there is no permission to use " + Far.Path() +
                "; it belongs to the group dialout: type \"sudo usermod -aG dialout nobody\" in a "
                "terminal, then log out and in again");
}

TEST_F(QtSerialPortTest, APermissionThatNoGroupHasIsSaidSo) {
  ASSERT_EQ(::chmod(Far.Path().c_str(), 0), 0);
  const WithoutPower nobody;
  EXPECT_EQ(Port->Open().Cause(),
            "there is no permission to use " + Far.Path() + ", and no group that has it");
}

}  // namespace
}  // namespace kestrune::test
