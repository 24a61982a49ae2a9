#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

constexpr double kSongSeconds = 5;

/// The line to the radio fails while the program runs, and is brought back.
class Link : public testing::Test {
 protected:
  static Receiver::Setup RadioSetup(std::vector<std::string> arguments = {}) {
    return {.Stations = ShortLineUp({"One", "Two", "Three"}, kSongSeconds),
            .Arguments = std::move(arguments)};
  }
  Unit::Setup UnitSetup(const Receiver& radio) const {
    return {"pipe:" + QuietFile(folder_.Path()), radio.Link(), ShortSongs()};
  }
  static void StartRecording(Unit& unit) {
    unit.Start();
    ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
    ASSERT_TRUE(unit.Record(1));
  }
  static bool WaitForLoss(const Unit& unit, const std::string& cause) {
    return unit.WaitForStatus(
        [&cause](const Json& status) { return status.value("radioLost", "") == cause; });
  }
  static bool WaitForReturn(const Unit& unit) {
    return unit.WaitForStatus([](const Json& status) { return status.value("radioLost", "-").empty(); });
  }
  static bool WaitForMoreSongs(const Unit& unit) {
    const int before = unit.RecordedCount();
    return unit.WaitForStatus(
        [before](const Json& status) { return status.value("recordedCount", 0) >= before + 2; });
  }

  TemporaryFolder folder_;
};

TEST_F(Link, ARadioThatIsGoneForAWhileIsFoundAgainAndRecordedFromThenOn) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit unit(folder_ / "profile", UnitSetup(radio));
  StartRecording(unit);

  radio.Kill();
  ASSERT_TRUE(WaitForLoss(unit, "the device is gone"));
  const Json lost = unit.Status();
  EXPECT_EQ(lost.value("port", -1), 0);
  EXPECT_EQ(lost.value("satellite1", -1), 0);
  const Outcome refused = unit.Ctl({"mute", "on"});
  EXPECT_EQ(refused.Exit, 1);
  EXPECT_THAT(refused.Errors, HasSubstr("the radio is lost: the device is gone"));

  radio.Start();
  ASSERT_TRUE(WaitForReturn(unit));
  EXPECT_TRUE(WaitForMoreSongs(unit));
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.LogText(), HasSubstr("Radio lost on port 1: the device is gone"));
  EXPECT_THAT(unit.LogText(), HasSubstr("Radio found again on port 1 after 0:"));
  EXPECT_THAT(unit.Recordings(), Contains(HasSubstr("(Incomplete)")));
}

TEST_F(Link, TheSameRadioIsFoundUnderANewDeviceName) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  setup.Arguments = {"--port-device", "2=" + (folder_ / "moved") + "/line"};
  Unit unit(folder_ / "profile", setup);
  StartRecording(unit);

  radio.Kill();
  // The next pseudo-terminal may get the number of this one, and the old name would lead to it.
  std::filesystem::remove(radio.Link());
  ASSERT_TRUE(WaitForLoss(unit, "the device is gone"));
  const Receiver moved(folder_ / "moved", RadioSetup());
  EXPECT_TRUE(unit.WaitForStatus([](const Json& status) { return status.value("port", 0) == 2; }));
  EXPECT_TRUE(WaitForMoreSongs(unit));
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.LogText(), HasSubstr("Radio found again on port 2 after 0:"));
}

TEST_F(Link, AnotherRadioUnderTheOldNameIsNotAccepted) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit unit(folder_ / "profile", UnitSetup(radio));
  StartRecording(unit);

  radio.Kill();
  ASSERT_TRUE(WaitForLoss(unit, "the device is gone"));
  Receiver stranger(folder_ / "radio", RadioSetup({"--identifier", "WXYZ9876", "--tuned", "3"}));
  ASSERT_TRUE(WaitForLoss(unit, "another radio answers on port 1"));
  EXPECT_TRUE(stranger.Events("tuned").empty());
  stranger.Kill();

  radio.Start();
  EXPECT_TRUE(WaitForReturn(unit));
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Link, ARadioThatLosesItsPowerIsSwitchedOnAndTunedAgain) {
  Receiver radio(folder_ / "radio",
                 {.Stations = TenStations(kSongSeconds), .Arguments = {"--misbehave", "blackout@45"}});
  Unit::Setup setup = UnitSetup(radio);
  setup.Settings["Channel"] = "22";
  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();

  ASSERT_TRUE(unit.WaitForStatus([](const Json& status) { return !status.value("radioLost", "").empty(); }));
  ASSERT_TRUE(WaitForReturn(unit));
  EXPECT_EQ(unit.Status().value("channelNumber", 0), 22);
  const std::vector<Json> power = radio.Events("power");
  const std::vector<Json> tuned = radio.Events("tuned");
  ASSERT_FALSE(power.empty());
  ASSERT_FALSE(tuned.empty());
  EXPECT_TRUE(power.back().value("on", false));
  EXPECT_EQ(tuned.back().value("channel", 0), 22);
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Link, AStrayHeaderCostsSecondsAndIsNotWorthAWord) {
  Receiver radio(folder_ / "radio", RadioSetup({"--misbehave", "stray@30"}));
  Unit unit(folder_ / "profile", UnitSetup(radio));
  StartRecording(unit);
  ASSERT_TRUE(WaitUntil(kPatience, [&radio] { return !radio.Events("misbehaviour").empty(); }));
  EXPECT_TRUE(WaitForMoreSongs(unit));
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.LogText(), Not(HasSubstr("Radio lost")));
}

TEST_F(Link, WithoutTheWatchALostRadioStaysLost) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  setup.Settings["Watch"] = "False";
  Unit unit(folder_ / "profile", setup);
  StartRecording(unit);
  radio.Kill();
  const double length = unit.Status().value("captureLengthMs", 0);
  radio.Start();
  EXPECT_TRUE(unit.WaitForStatus([length](const Json& status) {
    return status.value("captureLengthMs", 0) > length + 3000 * kSongSeconds;
  })) << "the capture runs on";
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.LogText(), Not(HasSubstr("Radio lost")));
}

/// A device that is no line, which counts how often somebody tries to open it. Root alone may make one.
class DeadDevice {
 public:
  explicit DeadDevice(std::string path) : path_(std::move(path)) {
    constexpr unsigned kMisc = 10;
    constexpr unsigned kFuse = 229;  // on every machine, and opening it changes nothing
    std::filesystem::remove(path_);
    const bool made = ::mknod(path_.c_str(), S_IFCHR | 0600, makedev(kMisc, kFuse)) == 0 &&
                      std::ifstream(path_).is_open() &&
                      ::inotify_add_watch(events_, path_.c_str(), kEvents) >= 0;
    if (!made) trouble_ = std::strerror(errno);
  }
  ~DeadDevice() {
    ::close(events_);
    std::filesystem::remove(path_);
  }
  DeadDevice(const DeadDevice&) = delete;
  DeadDevice& operator=(const DeadDevice&) = delete;

  /// Why there is none; empty if there is.
  [[nodiscard]] const std::string& Trouble() const { return trouble_; }
  /// Since the last call.
  [[nodiscard]] int Openings() const {
    std::array<char, 65536> buffer{};
    int openings = 0;
    for (ssize_t got = 0; (got = ::read(events_, buffer.data(), buffer.size())) > 0;) {
      for (std::size_t at = 0; at < static_cast<std::size_t>(got); at += sizeof(inotify_event)) {
        inotify_event event{};
        std::memcpy(&event, buffer.data() + at, sizeof event);
        if ((event.mask & IN_OPEN) != 0) ++openings;
      }
    }
    return openings;
  }

 private:
  /// Equal events in a row would be reported as one, so the closings are wanted too.
  static constexpr std::uint32_t kEvents = IN_OPEN | IN_CLOSE;

  std::string path_;
  std::string trouble_;
  int events_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

/// An outage that takes as long as it says, so it is left to long runs.
class LongOutage : public Link {
 protected:
  void SetUp() override {
    if (std::getenv("KESTRUNE_SOAK") == nullptr) GTEST_SKIP() << "takes twelve minutes; set KESTRUNE_SOAK=1";
  }
};

TEST_F(LongOutage, OfTenMinutesIsTriedEachHalfMinuteAndTheEventGoesOn) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  const std::time_t begin = std::time(nullptr) + 15;
  std::array<char, 64> date{};
  ASSERT_GT(std::strftime(date.data(), date.size(), "%b %d, %Y %I:%M:%S %p", std::localtime(&begin)), 0U);
  setup.Settings.insert({{"ScheduleEnabled3", "1"},
                         {"ScheduleStartDate3", date.data()},
                         {"ScheduleChannel3", "1"},
                         {"ScheduleDuration3", "1:00"},
                         {"ScheduleMatchGrab3", "0"},
                         {"ScheduleMatchKill3", "0"}});
  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitForStatus([](const Json& status) {
    return status.value("activeSchedule", 0) == 3 && status.value("recordedCount", 0) >= 1;
  })) << unit.LogText();

  radio.Kill();
  {
    const DeadDevice device(radio.Link());
    if (!device.Trouble().empty()) GTEST_SKIP() << "no device can be made here: " << device.Trouble();
    ASSERT_TRUE(WaitUntil(kPatience, [&unit] { return !unit.Status().value("radioLost", "").empty(); }));
    std::this_thread::sleep_for(1min);
    const int fast = device.Openings();
    EXPECT_GE(fast, 15) << "each two seconds";
    EXPECT_LE(fast, 40);
    std::this_thread::sleep_for(5min);
    EXPECT_GE(device.Openings(), 60);
    std::this_thread::sleep_for(4min);
    const int slow = device.Openings();
    EXPECT_GE(slow, 6) << "each thirty seconds";
    EXPECT_LE(slow, 10);
    EXPECT_EQ(unit.Status().value("activeSchedule", 0), 3);
  }
  radio.Start();
  EXPECT_TRUE(
      unit.WaitForStatus([](const Json& status) { return status.value("radioLost", "-").empty(); }, 40s));
  EXPECT_TRUE(WaitForMoreSongs(unit));
  EXPECT_EQ(unit.Status().value("activeSchedule", 0), 3);
  EXPECT_THAT(unit.LogText(), HasSubstr("Radio found again on port 1 after 10:"));
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.Recordings(), Contains(HasSubstr("(Incomplete)")));
}

}  // namespace
}  // namespace kestrune::test
