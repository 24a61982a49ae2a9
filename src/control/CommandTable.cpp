#include "control/CommandTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/Text.h"
#include "control/ConsoleText.h"
#include "control/CutJson.h"
#include "control/HintJson.h"
#include "control/HistoryJson.h"
#include "control/ScheduleWords.h"
#include "control/ShelfJson.h"
#include "history/Since.h"

namespace kestrune::control {
namespace {

using Arguments = std::span<const std::string>;

constexpr std::size_t kLongestKey = 64;
constexpr std::size_t kLongestSearch = 200;
constexpr std::size_t kUsualLogLines = 20;
constexpr int kUsualPlays = 50;
constexpr std::size_t kUsualCuts = 20;
constexpr int kMostLogLines = 5000;
constexpr int kMostDays = 366;
constexpr int kLastChannel = 255;
constexpr std::string_view kArtists = "artists";
constexpr std::string_view kSongs = "songs";
constexpr int kMostOfShelf = 1000;
constexpr std::string_view kLast = "last";
constexpr std::string_view kCurrent = "current";
constexpr int kScheduleEntries = 10;

std::optional<int> WholeNumber(std::string_view text) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || text.front() == '-') return std::nullopt;
  return number;
}

bool IsWithin(std::string_view text, int least, int most) {
  const std::optional<int> number = WholeNumber(text);
  return number && *number >= least && *number <= most;
}

bool IsChannelNumber(std::string_view text) {
  return IsWithin(text, 1, kLastChannel);
}
bool IsLineCount(std::string_view text) {
  return IsWithin(text, 1, kMostLogLines);
}
bool IsDayCount(std::string_view text) {
  return IsWithin(text, 1, kMostDays);
}
bool IsPlayed(std::string_view text) {
  return text == kArtists || text == kSongs;
}
bool IsKeepable(std::string_view text) {
  return text == kLast || text == kCurrent || IsWithin(text, 1, kMostOfShelf);
}
bool IsSwitch(std::string_view text) {
  return text == "on" || text == "off";
}
bool IsEntryNumber(std::string_view text) {
  return IsWithin(text, 1, kScheduleEntries);
}
bool IsOn(std::string_view text) {
  return ReadOn(text).has_value();
}
bool IsAt(std::string_view text) {
  return ReadAt(text).has_value();
}
bool IsFor(std::string_view text) {
  return ReadFor(text).has_value();
}
bool IsBitRate(std::string_view text) {
  return ReadBitRate(text).has_value();
}
constexpr std::array<std::string_view, 4> kListNames{"grab-artist", "grab-song", "kill-artist", "kill-song"};

bool IsListName(std::string_view text) {
  return std::find(kListNames.begin(), kListNames.end(), text) != kListNames.end();
}
bool IsSomething(std::string_view text) {
  return !base::Trim(text).empty();
}
bool IsSearch(std::string_view text) {
  return IsSomething(text) && text.size() <= kLongestSearch;
}
bool IsAnything(std::string_view /*text*/) {
  return true;
}
bool IsKey(std::string_view text) {
  return !text.empty() && text.size() <= kLongestKey && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

constexpr std::array kChannel{Argument{"N", "a channel number from 1 to 255", IsChannelNumber}};
constexpr std::array kMute{Argument{"on|off", "on or off", IsSwitch}};
constexpr std::array kKeep{
    Argument{"N|last|current", "a number of the shelf from 1 to 1000, last or current", IsKeepable, true}};
constexpr std::array kLog{Argument{"N", "a number of lines from 1 to 5000", IsLineCount, true}};
constexpr Argument kKey{"KEY", "the name of a setting: letters, digits and underscores", IsKey};
constexpr std::array kGet{kKey};
constexpr std::array kSet{kKey, Argument{"VALUE", "a text", IsAnything}};
constexpr std::array kEntry{Argument{"N", "a schedule entry from 1 to 10", IsEntryNumber}};
constexpr std::array kListEntry{
    Argument{"LIST", "one of grab-artist, grab-song, kill-artist, kill-song", IsListName},
    Argument{"TEXT", "a text that is not blank", IsSomething}};

constexpr std::array kScheduleOptions{
    CommandOption{"--on", "DAY", R"("Every Day", "Every Saturday" or a date such as 2026-12-24)", IsOn,
                  "when it runs: \"Every Day\", \"Every Saturday\" or a date"},
    CommandOption{"--at", "TIME", R"(a time such as "8:00 PM" or 20:00)", IsAt, "the time of its start"},
    CommandOption{"--for", "H:MM", "a length from 0:01 to 47:59", IsFor, "how long it runs"},
    CommandOption{"--channel", "N", "a channel number from 1 to 255", IsChannelNumber, "what it records"},
    CommandOption{"--integrel", "on|off", "on or off", IsSwitch, "whole songs only"},
    CommandOption{"--cleftune", "on|off", "on or off", IsSwitch, "one file a song"},
    CommandOption{"--grab", "on|off", "on or off", IsSwitch, "nothing but what is on the Grab lists"},
    CommandOption{"--kill", "on|off", "on or off", IsSwitch, "nothing that is on the Kill lists"},
    CommandOption{"--bitrate", "RATE", R"(a bit rate such as "128 Stereo" or "64 Mono")", IsBitRate,
                  "of MP3 files, such as \"128 Stereo\""},
};

constexpr CommandOption kSince{"--since", "MOMENT", history::kSinceAllowed, history::IsSince,
                               "from then on: \"yesterday 18:00\", \"2026-11-21\", \"3h\""};
constexpr std::array kReportOptions{
    CommandOption{kSince.Name, kSince.ValueName, kSince.Allowed, kSince.Fits, kSince.Help, "--last-night"},
    CommandOption{"--last-night", "", "", nullptr, "since 18:00 of the day before, as without options",
                  "--since"}};
constexpr std::array kHistoryOptions{
    CommandOption{"--search", "TEXT", "words of at most 200 bytes, not blank", IsSearch,
                  "what has all these words in artist or title", "--top"},
    CommandOption{"--channel", "N", "a channel number from 1 to 255", IsChannelNumber, "on this channel"},
    CommandOption{kSince.Name, kSince.ValueName, kSince.Allowed, kSince.Fits, kSince.Help, "--days"},
    CommandOption{"--days", "N", "a number of days from 1 to 366", IsDayCount, "in the last so many days",
                  "--since"},
    CommandOption{"--limit", "N", "a number of songs from 1 to 5000", IsLineCount,
                  "at most so many, the newest; 50 if not given"},
    CommandOption{"--top", "artists|songs", "artists or songs", IsPlayed,
                  "instead, what was played most, and how often", "--search"}};

constexpr std::array kHintsOptions{
    CommandOption{"--follow", "", "", nullptr, "go on, and show each as it begins, until the unit ends"}};

constexpr std::array kCutsOptions{
    CommandOption{"--last", "N", "a number of cuts from 1 to 5000", IsLineCount,
                  "so many, the newest; 20 if not given", "--stations"},
    CommandOption{"--channel", "N", "a channel number from 1 to 255", IsChannelNumber, "on this channel"},
    CommandOption{"--stations", "", "", nullptr, "what was learned of each station's text", "--last"}};

Reply Done(Json result = nullptr) {
  return {ExitCode::Done, {}, std::move(result)};
}
Reply Refused(std::string reason) {
  return {ExitCode::Refused, std::move(reason), nullptr};
}

/// Replies when the wish has been answered.
Answered Reporting(const Replied& replied) {
  return [replied](const base::Result& result) { replied(result.Ok() ? Done() : Refused(result.Cause())); };
}

// Questions.

void RunStatus(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  replied(Done(ToJson(target.Status())));
}
void RunChannels(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  replied(Done(ToJson(target.Channels())));
}
void RunLog(ControlTarget& target, Arguments arguments, const Replied& replied) {
  const std::size_t lines =
      arguments.empty() ? kUsualLogLines : static_cast<std::size_t>(WholeNumber(arguments[0]).value_or(0));
  replied(Done(Json(target.LogLines(lines))));
}
void RunGet(ControlTarget& target, Arguments arguments, const Replied& replied) {
  SettingResult setting = target.Get(arguments[0]);
  replied(setting.Done ? Done(Json(std::move(setting.Value))) : Refused(std::move(setting.Reason)));
}
void RunSchedule(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  replied(Done(ToJson(target.Schedule())));
}
void RunLists(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  replied(Done(ToJson(target.Lists())));
}

/// Whoever follows asks again and again.
void RunHints(ControlTarget& target, Arguments /*follow*/, const Replied& replied) {
  HintsResult result = target.Hints();
  replied(result.Done ? Done(ToJson(result.Hints)) : Refused(std::move(result.Reason)));
}

void RunShelf(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  replied(Done(ToJson(target.Shelf())));
}

void RunReport(ControlTarget& target, Arguments arguments, const Replied& replied) {
  ReportQuestion question;
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
    if (arguments[i] == kSince.Name) question.Since = arguments[i + 1];
  target.Report(question, [replied](const base::Result& asked, const history::Report& report) {
    replied(asked.Ok() ? Done(ToJson(report)) : Refused(asked.Cause()));
  });
}
/// The value of an option that is followed by one, as all options of the command are; empty if it is not given.
std::string ValueOf(std::string_view option, Arguments arguments) {
  for (std::size_t i = 0; i + 1 < arguments.size(); i += 2)
    if (arguments[i] == option) return arguments[i + 1];
  return {};
}
int NumberOf(std::string_view option, Arguments arguments, int otherwise) {
  const std::string value = ValueOf(option, arguments);
  return value.empty() ? otherwise : WholeNumber(value).value_or(otherwise);
}

void RunMostPlayed(ControlTarget& target, Arguments arguments, const Replied& replied) {
  const auto as =
      ValueOf("--top", arguments) == kSongs ? platform::PlayedAs::Song : platform::PlayedAs::Artist;
  target.MostPlayed({.As = as,
                     .Channel = NumberOf("--channel", arguments, 0),
                     .Since = ValueOf(kSince.Name, arguments),
                     .Days = NumberOf("--days", arguments, 0),
                     .Limit = static_cast<std::size_t>(NumberOf("--limit", arguments, kUsualPlays))},
                    [replied, as](const base::Result& asked, const std::vector<platform::PlayCount>& counts) {
                      replied(asked.Ok() ? Done(ToJson(counts, as)) : Refused(asked.Cause()));
                    });
}

void RunHistory(ControlTarget& target, Arguments arguments, const Replied& replied) {
  if (!ValueOf("--top", arguments).empty()) return RunMostPlayed(target, arguments, replied);
  target.History({.Text = ValueOf("--search", arguments),
                  .Channel = NumberOf("--channel", arguments, 0),
                  .Since = ValueOf(kSince.Name, arguments),
                  .Days = NumberOf("--days", arguments, 0),
                  .Limit = static_cast<std::size_t>(NumberOf("--limit", arguments, kUsualPlays))},
                 [replied](const base::Result& asked, const std::vector<platform::HistoryPlay>& plays) {
                   replied(asked.Ok() ? Done(ToJson(plays)) : Refused(asked.Cause()));
                 });
}

void RunCuts(ControlTarget& target, Arguments arguments, const Replied& replied) {
  CutsQuestion question{.Channel = 0, .Limit = kUsualCuts};
  bool stations = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--stations") {
      stations = true;
      continue;
    }
    const int number = WholeNumber(arguments[i + 1]).value_or(0);
    if (arguments[i] == "--channel") question.Channel = number;
    if (arguments[i] == "--last") question.Limit = static_cast<std::size_t>(number);
    ++i;
  }
  if (stations) return replied(Done(ToJson(target.StationLags(question.Channel))));
  target.Cuts(question, [replied](const base::Result& asked, const std::vector<CutReport>& cuts) {
    replied(asked.Ok() ? Done(ToJson(cuts)) : Refused(asked.Cause()));
  });
}

// Wishes.

void RunRecord(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  target.Record(Reporting(replied));
}
void RunStop(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  target.Stop(Reporting(replied));
}
void RunQuit(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  target.Quit(Reporting(replied));
}
void RunKeep(ControlTarget& target, Arguments arguments, const Replied& replied) {
  if (!arguments.empty() && arguments[0] == kCurrent) return target.KeepCurrent(Reporting(replied));
  const int number = arguments.empty() || arguments[0] == kLast ? 1 : WholeNumber(arguments[0]).value_or(1);
  target.Keep(number, Reporting(replied));
}
void RunTune(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.Tune(WholeNumber(arguments[0]).value_or(0), Reporting(replied));
}
void RunMute(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.Mute(arguments[0] == "on", Reporting(replied));
}
void RunSet(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.Set(arguments[0], arguments[1], Reporting(replied));
}
void RunUpdate(ControlTarget& target, Arguments /*none*/, const Replied& replied) {
  target.Update([replied](const UpdateResult& update) {
    replied(update.Done ? Done(ToJson(update.Report)) : Refused(update.Reason));
  });
}
void RunScheduleSet(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.SetSchedule(ReadScheduleChange(arguments), Reporting(replied));
}
void RunScheduleEnable(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.EnableSchedule(WholeNumber(arguments[0]).value_or(0), true, Reporting(replied));
}
void RunScheduleDisable(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.EnableSchedule(WholeNumber(arguments[0]).value_or(0), false, Reporting(replied));
}
void RunScheduleClear(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.ClearSchedule(WholeNumber(arguments[0]).value_or(0), Reporting(replied));
}

schedule::RestrictList ListOf(std::string_view name) {
  const auto* found = std::find(kListNames.begin(), kListNames.end(), name);
  return static_cast<schedule::RestrictList>(found - kListNames.begin());
}
void RunListsAdd(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.AddToList(ListOf(arguments[0]), arguments[1], Reporting(replied));
}
void RunListsRemove(ControlTarget& target, Arguments arguments, const Replied& replied) {
  target.RemoveFromList(ListOf(arguments[0]), arguments[1], Reporting(replied));
}

constexpr std::array kCommands{
    Command{"status", {}, "show what the unit does", RunStatus},
    Command{"channels", {}, "list the channels and what they play", RunChannels},
    Command{"record", {}, "press Record", RunRecord},
    Command{"stop", {}, "press Stop", RunStop},
    Command{"keep", kKeep, "keep what just played: a song of the shelf, or the present one at its end",
            RunKeep},
    Command{"shelf", {}, "show what just played and was not kept, the newest first", RunShelf},
    Command{"tune", kChannel, "tune to a channel", RunTune},
    Command{"mute", kMute, "mute the radio or let it sound", RunMute},
    Command{"log", kLog, "show the newest lines of the log, 20 if no number is given", RunLog},
    Command{"get", kGet, "show a setting", RunGet},
    Command{"set", kSet, "change a setting", RunSet},
    Command{"schedule", {}, "list the ten entries of the schedule", RunSchedule},
    Command{"schedule set", kEntry, "change an entry and enable it", RunScheduleSet, kScheduleOptions, true},
    Command{"schedule enable", kEntry, "let an entry run", RunScheduleEnable},
    Command{"schedule disable", kEntry, "let an entry rest", RunScheduleDisable},
    Command{"schedule clear", kEntry, "empty an entry", RunScheduleClear},
    Command{"lists", {}, "show the Grab and Kill lists", RunLists},
    Command{"lists add", kListEntry, "add to a list: grab-artist, grab-song, kill-artist or kill-song",
            RunListsAdd},
    Command{"lists remove", kListEntry, "take an entry off a list", RunListsRemove},
    Command{"report",
            {},
            "tell what happened: events, songs, what went wrong and what to do",
            RunReport,
            kReportOptions},
    Command{
        "history", {}, "show what the channels have played, the newest first", RunHistory, kHistoryOptions},
    Command{"hints", {}, "show what of the Grab lists plays on other channels now", RunHints, kHintsOptions},
    Command{"cuts", {}, "show the last cuts found by listening, the newest first", RunCuts, kCutsOptions},
    Command{"update", {}, "ask whether there is a newer version", RunUpdate},
    Command{"quit", {}, "end the program", RunQuit},
};

std::string_view FirstWord(const Command& command) {
  return command.Name.substr(0, command.Name.find(' '));
}
/// Empty if the name is one word.
std::string_view SecondWord(const Command& command) {
  const std::string_view first = FirstWord(command);
  return first.size() == command.Name.size() ? std::string_view() : command.Name.substr(first.size() + 1);
}

std::string CommandNames() {
  std::vector<std::string_view> names;
  for (const Command& command : kCommands)
    if (names.empty() || names.back() != FirstWord(command)) names.push_back(FirstWord(command));
  return fmt::format("{}", fmt::join(names, ", "));
}

/// The words after the command's name.
Arguments ArgumentsOf(const Command& command, const Request& request) {
  const Arguments all = request.Arguments;
  return SecondWord(command).empty() ? all : all.subspan(1);
}

/// The second words that can follow the first one of a command.
std::string SecondWords(const Command& command) {
  std::vector<std::string_view> words;
  for (const Command& other : kCommands)
    if (FirstWord(other) == command.Name && !SecondWord(other).empty()) words.push_back(SecondWord(other));
  return fmt::format("{}", fmt::join(words, ", "));
}

const CommandOption* FindOption(const Command& command, std::string_view name) {
  const auto found = std::find_if(command.Options.begin(), command.Options.end(),
                                  [name](const CommandOption& option) { return option.Name == name; });
  return found == command.Options.end() ? nullptr : &*found;
}

std::optional<std::string> WhatIsWrongWithOptions(const Command& command, Arguments given) {
  const auto wrong = [&command](std::string_view what) {
    return fmt::format("{}: {}; usage: {}", command.Name, what, Usage(command));
  };
  if (given.empty() && command.NeedsOption) return wrong("no option is given");
  std::vector<const CommandOption*> before;
  for (std::size_t i = 0; i < given.size(); ++i) {
    const CommandOption* option = FindOption(command, given[i]);
    if (option == nullptr) return wrong(fmt::format("unknown option {}", Quoted(given[i])));
    for (const CommandOption* other : before) {
      if (other == option) return wrong(fmt::format("{} is given twice", option->Name));
      if (other->Name == option->Excludes)
        return wrong(fmt::format("{} and {} exclude each other", other->Name, option->Name));
    }
    before.push_back(option);
    if (option->ValueName.empty()) continue;
    if (++i == given.size()) return wrong(fmt::format("{} needs {}", option->Name, option->Allowed));
    if (!option->Fits(given[i])) {
      return fmt::format("{}: {} is wrong for {}, expected {}", command.Name, Quoted(given[i]), option->Name,
                         option->Allowed);
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const Command> CommandTable() {
  return kCommands;
}

const Command* FindCommand(const Request& request) {
  const Command* found = nullptr;
  for (const Command& command : kCommands) {
    if (FirstWord(command) != request.Command) continue;
    const std::string_view second = SecondWord(command);
    if (second.empty()) {
      found = &command;
    } else if (!request.Arguments.empty() && request.Arguments.front() == second) {
      return &command;
    }
  }
  return found;
}

std::string Usage(const Command& command) {
  std::string usage(command.Name);
  for (const Argument& argument : command.Arguments) {
    usage += fmt::format(fmt::runtime(argument.Optional ? " [{}]" : " {}"), argument.Name);
  }
  if (!command.Options.empty()) usage += command.NeedsOption ? " OPTION..." : " [OPTION...]";
  return usage;
}

std::string CommandsHelp() {
  std::size_t width = 0;
  for (const Command& command : kCommands) width = std::max(width, Usage(command).size());
  std::string help;
  for (const Command& command : kCommands)
    help += fmt::format("  {:<{}}  {}\n", Usage(command), width, command.Help);
  return help;
}

std::string CommandOptionsHelp() {
  constexpr int kWidth = 19;
  std::string help;
  for (const Command& command : kCommands) {
    if (command.Options.empty()) continue;
    help += fmt::format("options of {}:\n", command.Name);
    for (const CommandOption& option : command.Options)
      help += fmt::format("  {:<{}}  {}\n", base::Trim(fmt::format("{} {}", option.Name, option.ValueName)),
                          kWidth, option.Help);
  }
  return help;
}

std::optional<std::string> WhatIsWrong(const Request& request) {
  const Command* command = FindCommand(request);
  if (command == nullptr) {
    return fmt::format("unknown command {}; allowed: {}", Quoted(request.Command), CommandNames());
  }
  const std::span<const Argument> allowed = command->Arguments;
  const Arguments all = ArgumentsOf(*command, request);
  const Arguments given = command->Options.empty() ? all : all.first(std::min(all.size(), allowed.size()));
  const auto needed = static_cast<std::size_t>(std::count_if(
      allowed.begin(), allowed.end(), [](const Argument& argument) { return !argument.Optional; }));
  if (given.size() < needed) {
    const Argument& missing = allowed[given.size()];
    return fmt::format("{}: {} is missing, expected {}; usage: {}", command->Name, missing.Name,
                       missing.Allowed, Usage(*command));
  }
  if (given.size() > allowed.size()) {
    const std::string words = SecondWords(*command);
    if (!words.empty()) {
      return fmt::format("{}: {} is wrong, expected nothing or one of {}", command->Name, Quoted(given[0]),
                         words);
    }
    return fmt::format("{}: too many arguments, {} is not expected; usage: {}", command->Name,
                       Quoted(given[allowed.size()]), Usage(*command));
  }
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (allowed[i].Fits(given[i])) continue;
    return fmt::format("{}: {} is wrong, expected {}; usage: {}", command->Name, Quoted(given[i]),
                       allowed[i].Allowed, Usage(*command));
  }
  if (command->Options.empty()) return std::nullopt;
  return WhatIsWrongWithOptions(*command, all.subspan(given.size()));
}

void RunCommand(ControlTarget& target, const Request& request, const Replied& replied) {
  const Command* command = FindCommand(request);
  command->Run(target, ArgumentsOf(*command, request), replied);
}

}  // namespace kestrune::control
