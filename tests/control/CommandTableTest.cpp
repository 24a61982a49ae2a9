#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "control/CommandTable.h"

namespace kestrune::control {
namespace {

TEST(CommandTable, HoldsTheseCommandsInThisOrder) {
  std::vector<std::string> usages;
  for (const Command& command : CommandTable()) usages.push_back(Usage(command));
  EXPECT_EQ(usages, (std::vector<std::string>{"status", "channels", "record", "stop", "tune N", "mute on|off",
                                              "log [N]", "get KEY", "set KEY VALUE", "update", "quit"}));
}

TEST(CommandTable, EveryRowIsComplete) {
  for (const Command& command : CommandTable()) {
    EXPECT_FALSE(command.Help.empty()) << command.Name;
    EXPECT_NE(command.Run, nullptr) << command.Name;
    EXPECT_EQ(FindCommand(command.Name), &command);
    bool optionalSeen = false;
    for (const Argument& argument : command.Arguments) {
      EXPECT_FALSE(argument.Name.empty()) << command.Name;
      EXPECT_FALSE(argument.Allowed.empty()) << command.Name;
      EXPECT_NE(argument.Fits, nullptr) << command.Name;
      EXPECT_TRUE(argument.Optional || !optionalSeen) << command.Name;
      optionalSeen = argument.Optional;
    }
  }
}

TEST(CommandTable, NamesCountCase) {
  EXPECT_EQ(FindCommand("Status"), nullptr);
  EXPECT_EQ(FindCommand(""), nullptr);
}

TEST(CommandTable, HelpHasOneAlignedLineACommand) {
  const std::string help = CommandsHelp();
  EXPECT_NE(help.find("  tune N          tune to a channel\n"), std::string::npos) << help;
  EXPECT_NE(help.find("  quit            end the program\n"), std::string::npos) << help;
}

struct Case {
  Request Asked;
  const char* Wrong;  ///< null: nothing is wrong
};

TEST(CommandTable, EachArgumentAtItsEdges) {
  const std::string longKey(64, 'k');
  const Case kCases[] = {
      {{"status", {}}, nullptr},
      {{"status", {"x"}}, R"(status: too many arguments, "x" is not expected; usage: status)"},
      {{"channels", {}}, nullptr},
      {{"record", {}}, nullptr},
      {{"stop", {}}, nullptr},
      {{"update", {}}, nullptr},
      {{"update", {"now"}}, R"(update: too many arguments, "now" is not expected; usage: update)"},
      {{"quit", {}}, nullptr},
      {{"quit", {""}}, R"(quit: too many arguments, "" is not expected; usage: quit)"},
      {{"tune", {"1"}}, nullptr},
      {{"tune", {"255"}}, nullptr},
      {{"tune", {"044"}}, nullptr},
      {{"tune", {}}, "tune: N is missing, expected a channel number from 1 to 255; usage: tune N"},
      {{"tune", {"0"}}, R"(tune: "0" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"256"}}, R"(tune: "256" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"-1"}}, R"(tune: "-1" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"+1"}}, R"(tune: "+1" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {""}}, R"(tune: "" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {" 4"}}, R"(tune: " 4" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"4x"}}, R"(tune: "4x" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"4.0"}}, R"(tune: "4.0" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"99999999999"}},
       R"(tune: "99999999999" is wrong, expected a channel number from 1 to 255; usage: tune N)"},
      {{"tune", {"4", "5"}}, R"(tune: too many arguments, "5" is not expected; usage: tune N)"},
      {{"mute", {"on"}}, nullptr},
      {{"mute", {"off"}}, nullptr},
      {{"mute", {}}, "mute: on|off is missing, expected on or off; usage: mute on|off"},
      {{"mute", {"On"}}, R"(mute: "On" is wrong, expected on or off; usage: mute on|off)"},
      {{"mute", {"1"}}, R"(mute: "1" is wrong, expected on or off; usage: mute on|off)"},
      {{"log", {}}, nullptr},
      {{"log", {"1"}}, nullptr},
      {{"log", {"5000"}}, nullptr},
      {{"log", {"0"}}, R"(log: "0" is wrong, expected a number of lines from 1 to 5000; usage: log [N])"},
      {{"log", {"5001"}},
       R"(log: "5001" is wrong, expected a number of lines from 1 to 5000; usage: log [N])"},
      {{"log", {"1", "2"}}, R"(log: too many arguments, "2" is not expected; usage: log [N])"},
      {{"get", {"MP3_"}}, nullptr},
      {{"get", {"726_Bits"}}, nullptr},
      {{"get", {longKey}}, nullptr},
      {{"get", {}},
       "get: KEY is missing, expected the name of a setting: letters, digits and underscores; usage: get "
       "KEY"},
      {{"get", {""}},
       R"(get: "" is wrong, expected the name of a setting: letters, digits and underscores; usage: get KEY)"},
      {{"get", {"a b"}},
       R"(get: "a b" is wrong, expected the name of a setting: letters, digits and underscores; usage: get KEY)"},
      {{"get", {"a/b"}},
       R"(get: "a/b" is wrong, expected the name of a setting: letters, digits and underscores; usage: get KEY)"},
      {{"set", {"K", ""}}, nullptr},
      {{"set", {"FilenameFormat", "%a\\%s [x] = \"y\""}}, nullptr},
      {{"set", {"K"}}, "set: VALUE is missing, expected a text; usage: set KEY VALUE"},
      {{"set", {"K", "a", "b"}}, R"(set: too many arguments, "b" is not expected; usage: set KEY VALUE)"},
      {{"set", {"]", "x"}},
       R"(set: "]" is wrong, expected the name of a setting: letters, digits and underscores; usage: set KEY VALUE)"},
      {{"start", {}},
       R"(unknown command "start"; allowed: status, channels, record, stop, tune, mute, log, get, set, update, quit)"},
      {{"", {}},
       R"(unknown command ""; allowed: status, channels, record, stop, tune, mute, log, get, set, update, quit)"},
  };
  for (const Case& one : kCases) {
    const auto wrong = WhatIsWrong(one.Asked);
    EXPECT_EQ(wrong.value_or("nothing"), one.Wrong == nullptr ? "nothing" : one.Wrong);
  }
}

TEST(CommandTable, AKeyIsAtMost64Characters) {
  EXPECT_FALSE(WhatIsWrong({"get", {std::string(64, 'k')}}));
  EXPECT_TRUE(WhatIsWrong({"get", {std::string(65, 'k')}}));
}

TEST(CommandTable, ALongNameIsQuotedInPart) {
  const auto wrong = WhatIsWrong({std::string(60000, 'x'), {}});
  ASSERT_TRUE(wrong);
  EXPECT_LT(wrong->size(), 200U);
}

}  // namespace
}  // namespace kestrune::control
