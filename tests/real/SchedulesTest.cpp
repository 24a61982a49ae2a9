#include <csignal>
#include <ctime>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string Local(std::time_t moment, const char* pattern) {
  std::tm civil{};
  localtime_r(&moment, &civil);
  std::ostringstream text;
  text << std::put_time(&civil, pattern);
  return text.str();
}

/// A moment as the log gives the end of an event: "Nov 2, 8:05:09 pm".
std::string AsUntil(std::time_t moment) {
  std::tm civil{};
  localtime_r(&moment, &civil);
  const int hour = civil.tm_hour % 12 == 0 ? 12 : civil.tm_hour % 12;
  return Local(moment, "%b ") + std::to_string(civil.tm_mday) + ", " + std::to_string(hour) +
         Local(moment, ":%M:%S ") + (civil.tm_hour < 12 ? "am" : "pm");
}

int Count(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// A receiver of ten stations and a unit on channel 25, in which entry 3 begins a while after the start. The unit
/// records WAV files from a sound server of its own.
class Schedules : public testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_TRUE(pulse_.Start());
  }

  /// Starts both. Besides these settings the entry has its beginning, and consults no list.
  void StartWithEntry(std::time_t begin, std::map<std::string, std::string> settings) {
    const auto variables = pulse_.Environment();
    const std::map<std::string, std::string> environment(variables.begin(), variables.end());
    radio_.emplace(
        folder_ / "radio",
        Receiver::Setup{
            TenStations(6), std::string("pulse:") + PrivatePulse::kSink, "tones", {}, environment});
    settings.insert({{"Channel", "25"},
                     {"FileFormat", "WAV"},
                     {"ScheduleEnabled3", "1"},
                     {"ScheduleStartDate3", Local(begin, "%b %d, %Y %I:%M:%S %p")},
                     {"ScheduleMatchGrab3", "0"},
                     {"ScheduleMatchKill3", "0"}});
    unit_.emplace(folder_ / "profile",
                  Unit::Setup{"pulse", radio_->Link(), std::move(settings), {}, environment});
    unit_->Start();
  }
  [[nodiscard]] bool WaitForEvent(int number) {
    return unit_->WaitForStatus([number](const Json& status) { return status["activeSchedule"] == number; });
  }

  TemporaryFolder folder_;
  PrivatePulse pulse_;
  std::optional<Receiver> radio_;
  std::optional<Unit> unit_;
};

TEST_F(Schedules, AnEventRecordsIsKilledGoesOnAndEnds) {
  // The shortest entry that there is: no length, and the 59 seconds. It falls due once the channels are there.
  const std::time_t begin = std::time(nullptr) + 15;
  const std::time_t end = begin + 59;
  StartWithEntry(begin, {{"MinSongLength", "2"},
                         {"SaveDuplicates", "True"},
                         {"ScheduleChannel3", "8"},
                         {"ScheduleDuration3", "0:00"}});
  Unit& unit = *unit_;
  ASSERT_TRUE(WaitForEvent(3)) << unit.Program().Errors();
  EXPECT_GE(std::time(nullptr), begin);
  const std::string beginning = "Scheduled event 3 beginning on channel 8 until " + AsUntil(end);
  EXPECT_THAT(unit.LogText(), HasSubstr(beginning));
  EXPECT_THAT(unit.LogText(), HasSubstr("Scheduled event is utilizing Integrel"));
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return !radio_->Events("tuned").empty(); }));
  EXPECT_EQ(unit.Ctl({"stop"}).Exit, 1) << "only the schedule ends an event";
  ASSERT_TRUE(unit.WaitForStatus([](const Json& status) { return status["recordedCount"] >= 1; }));
  EXPECT_THAT(unit.Recordings(), Not(IsEmpty()));

  // The power fails.
  unit.Program().Signal(SIGKILL);
  ASSERT_TRUE(unit.Program().Wait(kPatience));
  ASSERT_LT(std::time(nullptr), end - 15) << "this machine is too slow for an event of a minute";
  const std::size_t before = unit.Recordings().size();
  unit.Start();
  ASSERT_TRUE(WaitForEvent(3)) << unit.Program().Errors() << unit.LogText()
                               << nlohmann::json(radio_->Events()).dump();
  EXPECT_EQ(Count(unit.LogText(), beginning), 2) << "with the full line and the same end";
  EXPECT_TRUE(unit.WaitForStatus([](const Json& status) { return status["recordedCount"] >= 1; }));

  ASSERT_TRUE(WaitForEvent(0));
  EXPECT_GE(std::time(nullptr), end);
  EXPECT_LE(std::time(nullptr), end + 15);
  EXPECT_EQ(Count(unit.LogText(), "Scheduled event 3 completed - "), 1);
  EXPECT_EQ(unit.Status()["recordRequested"], false);
  EXPECT_EQ(unit.Status()["channelNumber"], 8) << "the channel is not given back";
  EXPECT_GT(unit.Recordings().size(), before);
  EXPECT_THAT(unit.Recordings(), Each(EndsWith(".wav")));
  EXPECT_EQ(unit.Quit(), 0);
}

/// The lengths of the log's songs, in seconds.
std::vector<int> SongLengths(const std::string& log) {
  std::vector<int> lengths;
  constexpr std::string_view kHead = "Song length: ";
  for (std::size_t at = log.find(kHead); at != std::string::npos; at = log.find(kHead, at + 1)) {
    const std::size_t minutes = at + kHead.size();
    const std::size_t colon = log.find(':', minutes);
    lengths.push_back(std::stoi(log.substr(minutes)) * 60 + std::stoi(log.substr(colon + 1)));
  }
  return lengths;
}

TEST_F(Schedules, AnEventOfOneFileHasItsOwnBeginningOutlivesAChangeOfFormatAndEndsWhenDisabled) {
  const std::time_t begin = std::time(nullptr) + 30;
  StartWithEntry(begin, {{"MinSongLength", "0"},
                         {"Cleftune", "False"},
                         {"ScheduleChannel3", "25"},
                         {"ScheduleDuration3", "1:00"},
                         {"ScheduleIntegrel3", "0"},
                         {"ScheduleCleftune3", "0"}});
  Unit& unit = *unit_;
  ASSERT_TRUE(WaitForEvent(3)) << unit.Program().Errors();
  const Outcome refused = unit.Ctl({"stop"});
  EXPECT_EQ(refused.Exit, 1);
  EXPECT_THAT(refused.Errors, HasSubstr("3")) << "it names the entry";
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return std::time(nullptr) >= begin + 10; }));

  EXPECT_EQ(unit.Ctl({"set", "FileFormat", "OGG"}).Exit, 0);
  const std::time_t changed = std::time(nullptr);
  ASSERT_TRUE(WaitUntil(kPatience, [&] {
    return unit.LogText().find("Scheduled event 3 recording again") != std::string::npos;
  }));
  EXPECT_EQ(unit.Status()["activeSchedule"], 3);
  ASSERT_EQ(SongLengths(unit.LogText()).size(), 1U);
  EXPECT_LE(SongLengths(unit.LogText()).front(), changed - begin + 1)
      << "nothing from before the event is in its file";

  EXPECT_EQ(unit.Ctl({"schedule", "disable", "3"}).Exit, 0);
  ASSERT_TRUE(WaitForEvent(0));
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return SongLengths(unit.LogText()).size() == 2; }));
  EXPECT_THAT(unit.Recordings(),
              testing::UnorderedElementsAre(EndsWith("(Incomplete).wav"), EndsWith("(Incomplete).ogg")));
  EXPECT_EQ(unit.Quit(), 0);
}

}  // namespace
}  // namespace kestrune::test
