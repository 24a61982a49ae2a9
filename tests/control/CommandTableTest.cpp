#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/Text.h"
#include "control/CommandTable.h"

namespace kestrune::control {
namespace {

TEST(CommandTable, HoldsTheseCommandsInThisOrder) {
  std::vector<std::string> usages;
  for (const Command& command : CommandTable()) usages.push_back(Usage(command));
  EXPECT_EQ(usages, (std::vector<std::string>{"status",
                                              "channels",
                                              "record",
                                              "stop",
                                              "keep [N|last|current]",
                                              "shelf",
                                              "tune N",
                                              "mute on|off",
                                              "log [N]",
                                              "get KEY",
                                              "set KEY VALUE",
                                              "schedule",
                                              "schedule set N OPTION...",
                                              "schedule enable N",
                                              "schedule disable N",
                                              "schedule clear N",
                                              "lists",
                                              "lists add LIST TEXT",
                                              "lists remove LIST TEXT",
                                              "report [OPTION...]",
                                              "history [OPTION...]",
                                              "hints [OPTION...]",
                                              "cuts [OPTION...]",
                                              "update",
                                              "quit"}));
}

/// The request that names a command and gives it nothing else.
Request Named(const Command& command) {
  const std::vector<std::string> words = base::Split(command.Name, ' ');
  return {words.front(), {words.begin() + 1, words.end()}};
}

TEST(CommandTable, EveryRowIsComplete) {
  for (const Command& command : CommandTable()) {
    EXPECT_FALSE(command.Help.empty()) << command.Name;
    EXPECT_NE(command.Run, nullptr) << command.Name;
    EXPECT_EQ(FindCommand(Named(command)), &command);
    bool optionalSeen = false;
    for (const Argument& argument : command.Arguments) {
      EXPECT_FALSE(argument.Name.empty()) << command.Name;
      EXPECT_FALSE(argument.Allowed.empty()) << command.Name;
      EXPECT_NE(argument.Fits, nullptr) << command.Name;
      EXPECT_TRUE(argument.Optional || !optionalSeen) << command.Name;
      optionalSeen = argument.Optional;
    }
    for (const CommandOption& option : command.Options) {
      EXPECT_TRUE(option.Name.starts_with("--")) << command.Name;
      EXPECT_FALSE(option.Help.empty()) << option.Name;
      const bool isSwitch = option.ValueName.empty();
      EXPECT_EQ(option.Allowed.empty(), isSwitch) << option.Name;
      EXPECT_EQ(option.Fits == nullptr, isSwitch) << option.Name;
      for (const Command& other : CommandTable()) {
        for (const CommandOption& same : other.Options)
          EXPECT_TRUE(same.Name != option.Name || same.ValueName.empty() == isSwitch) << option.Name;
      }
    }
  }
}

TEST(CommandTable, NamesCountCase) {
  EXPECT_EQ(FindCommand({"Status", {}}), nullptr);
  EXPECT_EQ(FindCommand({"", {}}), nullptr);
  EXPECT_EQ(FindCommand({"schedule set", {}}), nullptr);
  EXPECT_EQ(FindCommand({"schedule", {"Set"}})->Name, "schedule");
}

TEST(CommandTable, HelpHasOneAlignedLineACommand) {
  const std::string help = CommandsHelp();
  EXPECT_NE(help.find("  tune N                    tune to a channel\n"), std::string::npos) << help;
  EXPECT_NE(help.find("  quit                      end the program\n"), std::string::npos) << help;
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
       R"(unknown command "start"; allowed: status, channels, record, stop, keep, shelf, tune, mute, log, get, set, schedule, lists, report, history, hints, cuts, update, quit)"},
      {{"", {}},
       R"(unknown command ""; allowed: status, channels, record, stop, keep, shelf, tune, mute, log, get, set, schedule, lists, report, history, hints, cuts, update, quit)"},
  };
  for (const Case& one : kCases) {
    const auto wrong = WhatIsWrong(one.Asked);
    EXPECT_EQ(wrong.value_or("nothing"), one.Wrong == nullptr ? "nothing" : one.Wrong);
  }
}

TEST(CommandTable, EachScheduleWordAtItsEdges) {
  const Case kCases[] = {
      {{"schedule", {}}, nullptr},
      {{"schedule", {"run"}},
       R"(schedule: "run" is wrong, expected nothing or one of set, enable, disable, clear)"},
      {{"schedule", {"enable", "1"}}, nullptr},
      {{"schedule", {"disable", "10"}}, nullptr},
      {{"schedule", {"clear", "0"}},
       R"(schedule clear: "0" is wrong, expected a schedule entry from 1 to 10; usage: schedule clear N)"},
      {{"schedule", {"enable", "11"}},
       R"(schedule enable: "11" is wrong, expected a schedule entry from 1 to 10; usage: schedule enable N)"},
      {{"schedule", {"enable"}},
       "schedule enable: N is missing, expected a schedule entry from 1 to 10; usage: schedule enable N"},
      {{"schedule", {"enable", "1", "2"}},
       R"(schedule enable: too many arguments, "2" is not expected; usage: schedule enable N)"},
      {{"schedule", {"set"}},
       "schedule set: N is missing, expected a schedule entry from 1 to 10; usage: schedule set N OPTION..."},
      {{"report", {}}, nullptr},
      {{"report", {"--last-night"}}, nullptr},
      {{"report", {"--since", "yesterday 18:00"}}, nullptr},
      {{"report", {"now"}}, R"(report: unknown option "now"; usage: report [OPTION...])"},
      {{"report", {"--search", "x"}}, R"(report: unknown option "--search"; usage: report [OPTION...])"},
      {{"report", {"--last-night", "--last-night"}},
       "report: --last-night is given twice; usage: report [OPTION...]"},
      {{"report", {"--last-night", "--since", "3h"}},
       "report: --last-night and --since exclude each other; usage: report [OPTION...]"},
      {{"report", {"--since", "3h", "--last-night"}},
       "report: --since and --last-night exclude each other; usage: report [OPTION...]"},
      {{"report", {"--since", "soon"}},
       R"(report: "soon" is wrong for --since, expected a moment such as "yesterday 18:00", "2026-11-21 18:00", "monday", "last night" or "3h")"},
      {{"report", {"--since"}},
       R"(report: --since needs a moment such as "yesterday 18:00", "2026-11-21 18:00", "monday", "last night" or "3h"; usage: report [OPTION...])"},
      {{"history", {}}, nullptr},
      {{"history", {"--search", "moon river", "--channel", "44", "--since", "2d", "--limit", "5000"}},
       nullptr},
      {{"history", {"--search", "--since"}}, nullptr},
      {{"history", {"--search", " "}},
       R"(history: " " is wrong for --search, expected words of at most 200 bytes, not blank)"},
      {{"history", {"--search", std::string(200, 'x')}}, nullptr},
      {{"history", {"--channel", "256"}},
       R"(history: "256" is wrong for --channel, expected a channel number from 1 to 255)"},
      {{"history", {"--limit", "0"}},
       R"(history: "0" is wrong for --limit, expected a number of songs from 1 to 5000)"},
      {{"history", {"--top", "artists"}}, nullptr},
      {{"history", {"--top", "songs", "--channel", "44", "--days", "366", "--limit", "10"}}, nullptr},
      {{"history", {"--top", "stations"}},
       R"(history: "stations" is wrong for --top, expected artists or songs)"},
      {{"history", {"--top", "songs", "--search", "moon"}},
       "history: --top and --search exclude each other; usage: history [OPTION...]"},
      {{"history", {"--search", "moon", "--top", "songs"}},
       "history: --search and --top exclude each other; usage: history [OPTION...]"},
      {{"history", {"--days", "367"}},
       R"(history: "367" is wrong for --days, expected a number of days from 1 to 366)"},
      {{"history", {"--days", "0"}},
       R"(history: "0" is wrong for --days, expected a number of days from 1 to 366)"},
      {{"history", {"--since", "3h", "--days", "7"}},
       "history: --since and --days exclude each other; usage: history [OPTION...]"},
      {{"history", {"--days", "7", "--since", "3h"}},
       "history: --days and --since exclude each other; usage: history [OPTION...]"},
      {{"hints", {}}, nullptr},
      {{"hints", {"--follow"}}, nullptr},
      {{"hints", {"--follow", "--follow"}}, "hints: --follow is given twice; usage: hints [OPTION...]"},
      {{"shelf", {}}, nullptr},
      {{"shelf", {"1"}}, R"(shelf: too many arguments, "1" is not expected; usage: shelf)"},
      {{"keep", {}}, nullptr},
      {{"keep", {"last"}}, nullptr},
      {{"keep", {"current"}}, nullptr},
      {{"keep", {"1000"}}, nullptr},
      {{"keep", {"0"}},
       R"(keep: "0" is wrong, expected a number of the shelf from 1 to 1000, last or current; usage: keep [N|last|current])"},
      {{"keep", {"first"}},
       R"(keep: "first" is wrong, expected a number of the shelf from 1 to 1000, last or current; usage: keep [N|last|current])"},
      {{"cuts", {}}, nullptr},
      {{"cuts", {"--last", "5000", "--channel", "255"}}, nullptr},
      {{"cuts", {"--channel", "44", "--stations"}}, nullptr},
      {{"cuts", {"--last", "0"}},
       R"(cuts: "0" is wrong for --last, expected a number of cuts from 1 to 5000)"},
      {{"cuts", {"--last"}}, "cuts: --last needs a number of cuts from 1 to 5000; usage: cuts [OPTION...]"},
      {{"cuts", {"--stations", "--last", "5"}},
       "cuts: --stations and --last exclude each other; usage: cuts [OPTION...]"},
      {{"history", {"moon"}}, R"(history: unknown option "moon"; usage: history [OPTION...])"},
      {{"schedule", {"set", "1"}}, "schedule set: no option is given; usage: schedule set N OPTION..."},
      {{"schedule", {"set", "--at", "20:00"}},
       R"(schedule set: "--at" is wrong, expected a schedule entry from 1 to 10; usage: schedule set N OPTION...)"},
      {{"schedule", {"set", "1", "now"}},
       R"(schedule set: unknown option "now"; usage: schedule set N OPTION...)"},
      {{"schedule", {"set", "1", "--until", "9:00"}},
       R"(schedule set: unknown option "--until"; usage: schedule set N OPTION...)"},
      {{"schedule", {"set", "1", "--at"}},
       R"(schedule set: --at needs a time such as "8:00 PM" or 20:00; usage: schedule set N OPTION...)"},
      {{"schedule", {"set", "1", "--at", "25:00"}},
       R"(schedule set: "25:00" is wrong for --at, expected a time such as "8:00 PM" or 20:00)"},
      {{"schedule", {"set", "1", "--at", "9:00", "--at", "9:00"}},
       "schedule set: --at is given twice; usage: schedule set N OPTION..."},
      {{"schedule", {"set", "1", "--for", "48:00"}},
       R"(schedule set: "48:00" is wrong for --for, expected a length from 0:01 to 47:59)"},
      {{"schedule", {"set", "1", "--on", "Someday"}},
       R"(schedule set: "Someday" is wrong for --on, expected "Every Day", "Every Saturday" or a date such as 2026-12-24)"},
      {{"schedule", {"set", "1", "--grab", "yes"}},
       R"(schedule set: "yes" is wrong for --grab, expected on or off)"},
      {{"schedule", {"set", "1", "--bitrate", "128"}},
       R"(schedule set: "128" is wrong for --bitrate, expected a bit rate such as "128 Stereo" or "64 Mono")"},
      {{"schedule", {"set",    "1",         "--on",   "Every Day",  "--at",      "8:00 PM",    "--for",
                     "2:00",   "--channel", "44",     "--integrel", "on",        "--cleftune", "off",
                     "--grab", "off",       "--kill", "on",         "--bitrate", "128 Stereo"}},
       nullptr},
  };
  for (const Case& one : kCases) {
    const auto wrong = WhatIsWrong(one.Asked);
    EXPECT_EQ(wrong.value_or("nothing"), one.Wrong == nullptr ? "nothing" : one.Wrong);
  }
}

TEST(CommandTable, EachWordOfTheListsAtItsEdges) {
  const Case kCases[] = {
      {{"lists", {}}, nullptr},
      {{"lists", {"clear"}}, R"(lists: "clear" is wrong, expected nothing or one of add, remove)"},
      {{"lists", {"add", "kill-song", "--"}}, nullptr},
      {{"lists", {"remove", "grab-artist", "{Blank}"}}, nullptr},
      {{"lists", {"add", "0", "Moon"}},
       R"(lists add: "0" is wrong, expected one of grab-artist, grab-song, kill-artist, kill-song; usage: lists add LIST TEXT)"},
      {{"lists", {"add", "grab-artist"}},
       "lists add: TEXT is missing, expected a text that is not blank; usage: lists add LIST TEXT"},
      {{"lists", {"remove", "grab-artist", " "}},
       R"(lists remove: " " is wrong, expected a text that is not blank; usage: lists remove LIST TEXT)"},
  };
  for (const Case& one : kCases) {
    const auto wrong = WhatIsWrong(one.Asked);
    EXPECT_EQ(wrong.value_or("nothing"), one.Wrong == nullptr ? "nothing" : one.Wrong);
  }
}

TEST(CommandTable, OptionsHaveAnAlignedLineEach) {
  const std::string help = CommandOptionsHelp();
  EXPECT_EQ(help.find("options of schedule set:\n  --on DAY             when it runs"), 0U) << help;
  EXPECT_NE(help.find("\n  --kill on|off        nothing that is on the Kill lists\n"), std::string::npos)
      << help;
}

TEST(CommandTable, AKeyIsAtMost64Characters) {
  EXPECT_FALSE(WhatIsWrong({"get", {std::string(64, 'k')}}));
  EXPECT_TRUE(WhatIsWrong({"get", {std::string(65, 'k')}}));
}

TEST(CommandTable, ALongNameIsQuotedInPart) {
  const auto wrong = WhatIsWrong({std::string(60000, 'x'), {}});
  ASSERT_TRUE(wrong);
  EXPECT_LT(wrong->size(), 250U);
}

TEST(CommandTable, ASearchThatIsTooLongIsRefused) {
  EXPECT_TRUE(WhatIsWrong({"history", {"--search", std::string(201, 'x')}}));
}

}  // namespace
}  // namespace kestrune::control
