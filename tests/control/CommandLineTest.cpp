#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/CommandLine.h"
#include "recorder/SlashOptions.h"

namespace kestrune::control {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Pair;

CommandLine Parse(const std::vector<std::string>& arguments) {
  return ParseCommandLine(arguments);
}

TEST(CommandLine, NothingGivenChoosesNothing) {
  const CommandLine line = Parse({});
  EXPECT_EQ(line.Error, "");
  EXPECT_EQ(line.RemainingText, "");
  EXPECT_FALSE(line.Chosen.Headless || line.Chosen.AcceptAgreement || line.Chosen.Demo);
  EXPECT_FALSE(line.Chosen.Help || line.Chosen.Version);
  EXPECT_EQ(line.Chosen.Profile, "");
  EXPECT_TRUE(line.Chosen.PortDevices.empty());
  EXPECT_EQ(line.Chosen.Audio, AudioInput::Automatic);
}

TEST(CommandLine, EachSwitchSetsItsOwnChoice) {
  EXPECT_TRUE(Parse({"--headless"}).Chosen.Headless);
  EXPECT_TRUE(Parse({"--accept-agreement"}).Chosen.AcceptAgreement);
  EXPECT_TRUE(Parse({"--demo"}).Chosen.Demo);
  EXPECT_TRUE(Parse({"--help"}).Chosen.Help);
  EXPECT_TRUE(Parse({"--version"}).Chosen.Version);
  EXPECT_FALSE(Parse({"--headless"}).Chosen.Demo);
}

TEST(CommandLine, ValuesStandInTheNextWordOrBehindAnEqualsSign) {
  EXPECT_EQ(Parse({"--profile", "/home/x/p"}).Chosen.Profile, "/home/x/p");
  EXPECT_EQ(Parse({"--profile=/home/x/p"}).Chosen.Profile, "/home/x/p");
  EXPECT_EQ(Parse({"--profile=a=b"}).Chosen.Profile, "a=b");
}

TEST(CommandLine, AUnitThatWouldBeTheNextOptionsSlashIsRefused) {
  EXPECT_THAT(Parse({"/multi", "/port", "1"}).Error, HasSubstr("/multi takes a unit"));
  EXPECT_THAT(Parse({"/MULTI /debug"}).Error, HasSubstr("/multi takes a unit"));
  EXPECT_THAT(Parse({"/multi", "/"}).Error, HasSubstr("/multi takes a unit"));
  for (const char* const unit : {"1", "x", "\\", "."})
    EXPECT_EQ(Parse({"/multi", unit, "/port", "1"}).Error, "");
  EXPECT_EQ(Parse({"/port", "1", "/multi"}).Error, "") << "the option alone is a single unit";
}

TEST(CommandLine, PortDevicesAreGatheredByNumber) {
  const CommandLine line = Parse({"--port-device", "3=/dev/pts/4", "--port-device=16=/dev/x=y",
                                  "--port-device", "1=/dev/ttyUSB9", "--port-device", "3=/dev/pts/5"});
  EXPECT_EQ(line.Error, "");
  EXPECT_THAT(line.Chosen.PortDevices,
              ElementsAre(Pair(1, "/dev/ttyUSB9"), Pair(3, "/dev/pts/5"), Pair(16, "/dev/x=y")));
}

TEST(CommandLine, AudioNamesItsInput) {
  EXPECT_EQ(Parse({"--audio", "pulse"}).Chosen.Audio, AudioInput::Pulse);
  EXPECT_EQ(Parse({"--audio", "alsa"}).Chosen.Audio, AudioInput::Alsa);
  const CommandLine line = Parse({"--audio", "pipe:/tmp/a:b"});
  EXPECT_EQ(line.Chosen.Audio, AudioInput::Pipe);
  EXPECT_EQ(line.Chosen.AudioPipe, "/tmp/a:b");
}

TEST(CommandLine, TheLastOfTwoCounts) {
  const CommandLine line =
      Parse({"--profile", "a", "--audio", "pipe:/x", "--profile", "b", "--audio", "alsa"});
  EXPECT_EQ(line.Chosen.Profile, "b");
  EXPECT_EQ(line.Chosen.Audio, AudioInput::Alsa);
  EXPECT_EQ(line.Chosen.AudioPipe, "");
}

TEST(CommandLine, WhatTheLongOptionsLeaveIsJoinedByBlanks) {
  EXPECT_EQ(Parse({"/multi", "2", "--headless", "/PORT", "3", "/debug"}).RemainingText,
            "/multi 2 /PORT 3 /debug");
  EXPECT_EQ(Parse({"/multi 2", "", "x"}).RemainingText, "/multi 2  x");
  EXPECT_EQ(Parse({"-x", "/port", "-1"}).RemainingText, "-x /port -1");
}

TEST(CommandLine, APathThatContainsASlashOptionIsNone) {
  const CommandLine line =
      Parse({"--profile", "/home/x/port/multi", "--port-device", "1=/debug", "--audio", "pipe:/port 7"});
  EXPECT_EQ(line.Error, "");
  EXPECT_EQ(line.RemainingText, "");
  EXPECT_EQ(line.Chosen.Profile, "/home/x/port/multi");
}

TEST(CommandLine, ABareDoubleDashEndsTheOptions) {
  const CommandLine line = Parse({"--demo", "--", "--headless", "/debug"});
  EXPECT_EQ(line.Error, "");
  EXPECT_TRUE(line.Chosen.Demo);
  EXPECT_FALSE(line.Chosen.Headless);
  EXPECT_EQ(line.RemainingText, "--headless /debug");
}

struct WrongCase {
  std::vector<std::string> Arguments;
  const char* Error;
};

TEST(CommandLine, EachWrongOptionIsNamed) {
  constexpr const char* kPort = "--port-device takes N=PATH with N from 1 to 16, not ";
  const WrongCase kCases[] = {
      {{"--nope"}, R"(unknown option "--nope")"},
      {{"--nope=1"}, R"(unknown option "--nope")"},
      {{"--Headless"}, R"(unknown option "--Headless")"},
      {{"--head"}, R"(unknown option "--head")"},
      {{"--=x"}, R"(unknown option "--")"},
      {{"--headless=yes"}, "--headless takes no value"},
      {{"--profile"}, "--profile needs a value: --profile DIR"},
      {{"--profile", ""}, "--profile takes a folder, not an empty text"},
      {{"--profile="}, "--profile takes a folder, not an empty text"},
      {{"--audio"}, "--audio needs a value: --audio pulse|alsa|pipe:PATH"},
      {{"--audio", "jack"}, R"(--audio takes pulse, alsa or pipe:PATH, not "jack")"},
      {{"--audio", "pipe:"}, R"(--audio takes pulse, alsa or pipe:PATH, not "pipe:")"},
      {{"--audio", ""}, R"(--audio takes pulse, alsa or pipe:PATH, not "")"},
      {{"--audio", "Pulse"}, R"(--audio takes pulse, alsa or pipe:PATH, not "Pulse")"},
      {{"--port-device", "0=/x"}, R"("0=/x")"},
      {{"--port-device", "17=/x"}, R"("17=/x")"},
      {{"--port-device", "-1=/x"}, R"("-1=/x")"},
      {{"--port-device", "x=/x"}, R"("x=/x")"},
      {{"--port-device", "3x=/x"}, R"("3x=/x")"},
      {{"--port-device", "=/x"}, R"("=/x")"},
      {{"--port-device", "3="}, R"("3=")"},
      {{"--port-device", "3"}, R"("3")"},
      {{"--port-device", ""}, R"("")"},
      {{"--port-device", "99999999999=/x"}, R"("99999999999=/x")"},
      {{"--help", "--nope"}, R"(unknown option "--nope")"},
      {{"--audio", "jack", "--nope"}, R"(unknown option "--nope")"},
  };
  for (const WrongCase& one : kCases) {
    const std::string error = Parse(one.Arguments).Error;
    const bool port = one.Arguments.size() == 2 && one.Arguments.front() == "--port-device";
    EXPECT_EQ(error, port ? std::string(kPort) + one.Error : one.Error);
  }
}

TEST(CommandLine, TheUsageTellsEveryOption) {
  const std::string usage = CommandLineUsage();
  for (const char* option :
       {"/multi U", "/debug", "/port N", "--headless", "--accept-agreement", "--profile DIR",
        "--port-device N=PATH", "--audio pulse|alsa|pipe:PATH", "--demo", "--help", "--version"}) {
    EXPECT_THAT(usage, HasSubstr(option));
  }
}

TEST(CommandLine, TheWordsOfTheSameStartNameUnitProfileRadioAndSound) {
  const CommandLine line = Parse({"--profile", "mine", "/multi", "2", "--demo", "--accept-agreement",
                                  "--port-device", "3=/dev/radio", "--audio", "pipe:sound", "/port", "3"});
  EXPECT_THAT(WordsOfTheSameStart(line, "/home/user"),
              ElementsAre("--profile", "/home/user/mine", "--port-device", "3=/dev/radio", "--audio",
                          "pipe:/home/user/sound", "/multi", "2", "/port", "3"));
  EXPECT_THAT(WordsOfTheSameStart(Parse({}), "/home/user"), ElementsAre());
  EXPECT_THAT(WordsOfTheSameStart(Parse({"--audio", "alsa", "--profile", "/p"}), "/home/user"),
              ElementsAre("--profile", "/p", "--audio", "alsa"));
}

TEST(CommandLine, TheWordsOfTheSameStartReadAsTheSameUnit) {
  const CommandLine line =
      Parse({"--profile", "/a b", "/multi", "2", "--port-device", "16=/x=y", "--audio", "pulse"});
  const CommandLine again = Parse(WordsOfTheSameStart(line, "/"));
  EXPECT_EQ(again.Error, "");
  EXPECT_EQ(again.RemainingText, line.RemainingText);
  EXPECT_EQ(again.Chosen.Profile, "/a b");
  EXPECT_EQ(again.Chosen.PortDevices, line.Chosen.PortDevices);
  EXPECT_EQ(again.Chosen.Audio, AudioInput::Pulse);
}

TEST(CommandLine, BlanksBetweenDigitsStayAtTheSameStart) {
  const CommandLine line = Parse({"", "/port=2", "", "4", "--headless"});
  EXPECT_EQ(recorder::ForcedPortOf(line.RemainingText).Value, 2);
  const std::vector<std::string> words = WordsOfTheSameStart(line, "/");
  EXPECT_THAT(words, ElementsAre("/port=2", "", "4")) << "with one blank it would be port 24";
  EXPECT_EQ(Parse(words).RemainingText, line.RemainingText);
}

TEST(CommandLine, WhatFollowsTheEndOfTheOptionsFollowsItAtTheSameStart) {
  const CommandLine line = Parse({"--audio", "pulse", "--", "--headless", "/multi", "2"});
  EXPECT_THAT(WordsOfTheSameStart(line, "/"),
              ElementsAre("--audio", "pulse", "--", "--headless", "/multi", "2"));
  EXPECT_EQ(Parse(WordsOfTheSameStart(line, "/")).Error, "");
}

}  // namespace
}  // namespace kestrune::control
