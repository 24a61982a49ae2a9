#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace kestrune::test
