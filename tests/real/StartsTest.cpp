#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Process.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A user's mistake, in typing or in plugging, is reported in one line and ends with a status of its own.
class Starts : public testing::Test {
 protected:
  Outcome RunKestrune(std::vector<std::string> words) const {
    words.insert(words.begin(), {"--headless", "--profile", folder_ / "profile"});
    return RunToEnd({"kestrune", words, {}}, kPatience);
  }
  Outcome RunCtl(std::vector<std::string> words) const {
    words.insert(words.begin(), {"--profile", folder_ / "profile"});
    return RunToEnd({"kestrune-ctl", words, {}}, kPatience);
  }
  /// No port of the machine is opened by a test.
  static std::vector<std::string> WithoutPorts(std::vector<std::string> words) {
    for (int port = 1; port <= 16; ++port) {
      words.emplace_back("--port-device");
      words.push_back(std::to_string(port) + "=/nonexistent/port");
    }
    return words;
  }

  TemporaryFolder folder_;
};

TEST_F(Starts, AnUnknownOptionIsNamedWithTheUsage) {
  const Outcome outcome = RunKestrune({"--headles"});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("--headles"), HasSubstr("usage: kestrune")));
}

TEST_F(Starts, AnOptionWithoutItsValueIsNamed) {
  const Outcome outcome = RunKestrune({"--audio"});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, HasSubstr("--audio"));
}

TEST_F(Starts, ASoundOfNoKnownKindIsNamed) {
  const Outcome outcome = RunKestrune({"--audio", "gramophone"});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("gramophone"), HasSubstr("pulse, alsa or pipe:PATH")));
}

TEST_F(Starts, APortBeyondTheLastIsNamed) {
  const Outcome outcome = RunKestrune({"--port-device", "17=/dev/null"});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, HasSubstr("17=/dev/null"));
}

TEST_F(Starts, AMissingUnitIsNamedWithTheUsage) {
  const Outcome outcome = RunKestrune({"/multi", "/port", "1"});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("/multi takes a unit"), HasSubstr("usage: kestrune")));
}

TEST_F(Starts, HelpAndVersionAreNoFailure) {
  const Outcome help = RunKestrune({"--help"});
  EXPECT_EQ(help.Exit, 0);
  EXPECT_THAT(help.Output, AllOf(HasSubstr("usage: kestrune"), HasSubstr("/multi"), HasSubstr("--audio")));
  const Outcome version = RunKestrune({"--version"});
  EXPECT_EQ(version.Exit, 0);
  EXPECT_THAT(version.Output, HasSubstr("3.0.29"));
}

TEST_F(Starts, WithoutAProfileTheUsersOwnFoldersAreTaken) {
  const std::string home = folder_ / "home";
  std::filesystem::create_directories(home);
  const Outcome outcome = RunToEnd(
      {"kestrune",
       WithoutPorts({"--headless", "--accept-agreement", "--audio", "pipe:" + QuietFile(folder_.Path())}),
       {{"HOME", home}, {"userprofile", ""}, {"XDG_CONFIG_HOME", ""}, {"XDG_RUNTIME_DIR", folder_.Path()}}},
      kPatience);
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_TRUE(std::filesystem::exists(home + "/Application Data/Kestrune/Kestrune.log"));
  EXPECT_TRUE(std::filesystem::exists(home + "/.config/kestrune/lorimel.ini"));
}

TEST_F(Starts, WithoutARadioTheUserIsToldAndTheProgramEnds) {
  const Outcome outcome =
      RunKestrune(WithoutPorts({"--accept-agreement", "--audio", "pipe:" + QuietFile(folder_.Path())}));
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("Error connecting to radio"),
                                    HasSubstr("An error has occurred attempting to connect to your satellite "
                                              "radio.")));
}

TEST_F(Starts, WithoutAnInputTheUserIsToldAndTheProgramEnds) {
  const Outcome outcome =
      RunKestrune(WithoutPorts({"--accept-agreement", "--audio", "pipe:/nonexistent/sound"}));
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("Kestrune: Input Device Error"),
                                    HasSubstr("There are no available audio input devices on this PC.")));
}

TEST_F(Starts, AnAgreementThatNobodyAcceptedEndsTheProgram) {
  Receiver radio(folder_ / "radio", {ShortLineUp({"One"}, 60)});
  const Outcome outcome =
      RunKestrune({"--port-device", "1=" + radio.Link(), "--audio", "pipe:" + QuietFile(folder_.Path())});
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_THAT(outcome.Errors, HasSubstr("greement"));
  EXPECT_TRUE(radio.Events("command").empty()) << "the radio was sought before the agreement";
}

TEST_F(Starts, WindowsThatAreNotInstalledAreNamedWithWhatStartsWithout) {
  std::filesystem::copy(std::string(KESTRUNE_PROGRAMS) + "/kestrune", folder_ / "kestrune");
  const Outcome outcome = RunToEnd({folder_ / "kestrune", {"--profile", folder_ / "profile"}, {}}, kPatience);
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_THAT(outcome.Errors, AllOf(HasSubstr("has no windows"), HasSubstr("--headless")));
}

TEST_F(Starts, TheProgramWithWindowsDoesNotRunWithout) {
  const Outcome outcome =
      RunToEnd({"kestrune-desktop", {"--headless", "--profile", folder_ / "profile"}, {}});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, HasSubstr("kestrune --headless"));
}

TEST_F(Starts, TheDemonstrationBringsAReceiverOfItsOwn) {
  Process kestrune(
      {"kestrune", {"--headless", "--accept-agreement", "--demo", "--profile", folder_ / "profile"}, {}});
  EXPECT_TRUE(WaitUntil(
      kPatience, [&] { return RunCtl({"log"}).Output.find("Radio found on port 1") != std::string::npos; }));
  kestrune.Signal(SIGTERM);
  EXPECT_EQ(kestrune.Wait(kPatience), 0);
}

TEST_F(Starts, KestruneCtlWithoutAUnitSaysSo) {
  const Outcome outcome = RunCtl({"status"});
  EXPECT_EQ(outcome.Exit, 3);
  EXPECT_EQ(outcome.Errors, "kestrune-ctl: no unit is running\n");
}

TEST_F(Starts, KestruneCtlNamesAWrongUse) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                {"dance"},
                                                {"tune"},
                                                {"tune", "256"},
                                                {"tune", "8", "9"},
                                                {"mute", "maybe"},
                                                {"--bogus", "status"}}) {
    const Outcome outcome = RunCtl(words);
    EXPECT_EQ(outcome.Exit, 2);
    EXPECT_THAT(outcome.Errors, HasSubstr(words.empty() ? "no command" : words.front())) << outcome.Errors;
  }
}

TEST_F(Starts, KestruneRadioNamesAWrongOption) {
  const Outcome outcome = RunToEnd({"kestrune-radio", {"--bogus"}, {}});
  EXPECT_EQ(outcome.Exit, 2);
  EXPECT_THAT(outcome.Errors, HasSubstr("--bogus"));
}

}  // namespace
}  // namespace kestrune::test
