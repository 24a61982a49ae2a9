// A night in which everything goes wrong once, and what the report says about it.
#include <array>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/SmallDisk.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr double kSongSeconds = 8;

std::string DateOf(std::time_t moment) {
  std::array<char, 64> text{};
  std::tm civil{};
  return {text.data(),
          std::strftime(text.data(), text.size(), "%b %d, %Y %I:%M:%S %p", ::localtime_r(&moment, &civil))};
}

bool WaitForLine(const Unit& unit, const std::string& text) {
  return WaitUntil(kPatience, [&] { return unit.LogText().find(text) != std::string::npos; });
}

/// What the report tells so far, each by its kind.
std::map<std::string, Json> Incidents(const Unit& unit) {
  std::map<std::string, Json> incidents;
  for (const Json& incident : unit.Ask({"report", "--since", "2h"}).value("incidents", Json::array()))
    incidents.emplace(incident.value("kind", "?"), incident);
  return incidents;
}

/// Takes all the room that is left on the disk of a folder, for as long as it lives.
class Ballast {
 public:
  explicit Ballast(const std::string& folder) : path_(folder + "/ballast") {
    std::ofstream file(path_, std::ios::binary);
    const std::string block(65536, 'x');
    while (file.write(block.data(), static_cast<std::streamsize>(block.size())).flush()) {
    }
  }
  ~Ballast() { std::filesystem::remove(path_); }
  Ballast(const Ballast&) = delete;
  Ballast& operator=(const Ballast&) = delete;

 private:
  std::string path_;
};

TEST(Night, WhatWentWrongDuringAnEventStandsInTheReport) {
  if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
  const TemporaryFolder folder;
  const std::string recordings = folder / "profile/Music/Kestrune";
  const SmallDisk disk(recordings, "40m");
  if (!disk.Trouble().empty()) GTEST_SKIP() << "no small disk can be mounted here: " << disk.Trouble();
  PrivatePulse pulse;
  ASSERT_TRUE(pulse.Start());
  const std::string tone = folder / "tone.raw";
  ASSERT_EQ(RunToEnd({"sox",
                      {"-n", "-r", "44100", "-c", "2", "-b", "16", "-e", "signed", "-t", "raw", tone, "synth",
                       "900", "sine", "480", "gain", "-6"},
                      {}})
                .Exit,
            0);
  const ChildProcess player = pulse.Play(tone);
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two", "Three"}, kSongSeconds)});
  Unit::Setup setup{"pulse", radio.Link(), ShortSongs()};
  const auto variables = pulse.Environment();
  setup.Environment = {variables.begin(), variables.end()};
  const std::map<std::string, std::string> entry{
      {"ScheduleEnabled3", "1"},   {"ScheduleStartDate3", DateOf(std::time(nullptr) + 15)},
      {"ScheduleChannel3", "1"},   {"ScheduleDuration3", "1:00"},
      {"ScheduleMatchGrab3", "0"}, {"ScheduleMatchKill3", "0"}};
  setup.Settings.insert(entry.begin(), entry.end());
  Unit unit(folder / "profile", setup);
  unit.Start();
  const auto recorded = [&unit](int songs) {
    return unit.WaitForStatus([songs](const Json& status) {
      return status.value("activeSchedule", 0) == 3 && status.value("recordedCount", 0) >= songs;
    });
  };
  ASSERT_TRUE(recorded(1)) << unit.Program().Errors() << unit.LogText();

  radio.Kill();
  ASSERT_TRUE(WaitForLine(unit, "Radio lost on port 1: the device is gone"));
  radio.Start();
  ASSERT_TRUE(WaitForLine(unit, "Radio found again on port 1 after 0:"));

  {
    const Ballast ballast(recordings);
    ASSERT_TRUE(WaitForLine(unit, "Cannot write ")) << unit.LogText();
  }
  ASSERT_TRUE(WaitForLine(unit, "Writing goes on after ")) << unit.LogText();

  // The power fails in the middle of a silence.
  ASSERT_TRUE(pulse.Control({"set-source-mute", PrivatePulse::kMonitor, "1"}));
  ASSERT_TRUE(WaitForLine(unit, "No sound from the radio for 20 seconds")) << unit.LogText();
  ASSERT_TRUE(WaitUntil(kPatience, [&unit] { return Incidents(unit).contains("sound"); }));
  EXPECT_EQ(Incidents(unit)["sound"].value("ended", "?"), "") << "still";
  unit.Program().Signal(SIGKILL);
  ASSERT_TRUE(unit.Program().Wait(kPatience));
  ASSERT_TRUE(pulse.Control({"set-source-mute", PrivatePulse::kMonitor, "0"}));
  unit.Start();
  ASSERT_TRUE(recorded(2)) << unit.Program().Errors() << unit.LogText();

  const std::map<std::string, Json> incidents = Incidents(unit);
  ASSERT_THAT(incidents, UnorderedElementsAre(Key("radio"), Key("sound"), Key("disk"), Key("program")));
  for (const auto& [kind, incident] : incidents) {
    EXPECT_NE(incident.value("ended", ""), "") << kind;
    EXPECT_LT(incident.value("seconds", 999), 90) << kind;
  }
  EXPECT_GE(incidents.at("sound").value("seconds", 0), 15) << "from the beginning of the silence";
  EXPECT_EQ(incidents.at("radio").value("cause", ""), "the device is gone");
  EXPECT_EQ(incidents.at("disk").value("cause", ""), "No space left on device");

  const std::string text = unit.Ctl({"report", "--since", "2h"}).Output;
  EXPECT_THAT(
      text, AllOf(HasSubstr("1 event, "), HasSubstr(", 4 incidents.\n"),
                  HasSubstr("  radio: the device is gone\n"), HasSubstr("  disk: No space left on device\n"),
                  HasSubstr("  program: the program ended without being closed\n")));
  EXPECT_THAT(text, AllOf(HasSubstr("Event 3, channel 1 - Preview, "), HasSubstr("\n  is still running\n"),
                          HasSubstr("[kept, incomplete]"), Not(HasSubstr("nothing is missing"))));
  EXPECT_THAT(unit.Ctl({"history"}).Output, ContainsRegex("Preview +The Preview +(One|Two|Three)"));
  EXPECT_EQ(unit.Quit(), 0);
}

}  // namespace
}  // namespace kestrune::test
