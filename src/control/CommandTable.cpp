#include "control/CommandTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "control/ConsoleText.h"

namespace kestrune::control {
namespace {

using Arguments = std::span<const std::string>;

constexpr std::size_t kLongestKey = 64;
constexpr std::size_t kUsualLogLines = 20;
constexpr int kMostLogLines = 5000;
constexpr int kLastChannel = 255;

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
bool IsSwitch(std::string_view text) {
  return text == "on" || text == "off";
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
constexpr std::array kLog{Argument{"N", "a number of lines from 1 to 5000", IsLineCount, true}};
constexpr Argument kKey{"KEY", "the name of a setting: letters, digits and underscores", IsKey};
constexpr std::array kGet{kKey};
constexpr std::array kSet{kKey, Argument{"VALUE", "a text", IsAnything}};

Reply Done(Json result = nullptr) {
  return {ExitCode::Done, {}, std::move(result)};
}

Reply From(CommandResult result) {
  if (result.Done) return Done();
  return {ExitCode::Refused, std::move(result.Reason), nullptr};
}

Reply RunStatus(ControlTarget& target, Arguments /*none*/) {
  return Done(ToJson(target.Status()));
}
Reply RunChannels(ControlTarget& target, Arguments /*none*/) {
  return Done(ToJson(target.Channels()));
}
Reply RunRecord(ControlTarget& target, Arguments /*none*/) {
  return From(target.Record());
}
Reply RunStop(ControlTarget& target, Arguments /*none*/) {
  return From(target.Stop());
}
Reply RunQuit(ControlTarget& target, Arguments /*none*/) {
  return From(target.Quit());
}
Reply RunTune(ControlTarget& target, Arguments arguments) {
  return From(target.Tune(WholeNumber(arguments[0]).value_or(0)));
}
Reply RunMute(ControlTarget& target, Arguments arguments) {
  return From(target.Mute(arguments[0] == "on"));
}
Reply RunLog(ControlTarget& target, Arguments arguments) {
  const std::size_t lines =
      arguments.empty() ? kUsualLogLines : static_cast<std::size_t>(WholeNumber(arguments[0]).value_or(0));
  return Done(Json(target.LogLines(lines)));
}
Reply RunGet(ControlTarget& target, Arguments arguments) {
  SettingResult setting = target.Get(arguments[0]);
  if (!setting.Done) return {ExitCode::Refused, std::move(setting.Reason), nullptr};
  return Done(Json(std::move(setting.Value)));
}
Reply RunSet(ControlTarget& target, Arguments arguments) {
  return From(target.Set(arguments[0], arguments[1]));
}
Reply RunUpdate(ControlTarget& target, Arguments /*none*/) {
  UpdateResult update = target.Update();
  if (!update.Done) return {ExitCode::Refused, std::move(update.Reason), nullptr};
  return Done(ToJson(update.Report));
}

constexpr std::array kCommands{
    Command{"status", {}, "show what the unit does", RunStatus},
    Command{"channels", {}, "list the channels and what they play", RunChannels},
    Command{"record", {}, "press Record", RunRecord},
    Command{"stop", {}, "press Stop", RunStop},
    Command{"tune", kChannel, "tune to a channel", RunTune},
    Command{"mute", kMute, "mute the radio or let it sound", RunMute},
    Command{"log", kLog, "show the newest lines of the log, 20 if no number is given", RunLog},
    Command{"get", kGet, "show a setting", RunGet},
    Command{"set", kSet, "change a setting", RunSet},
    Command{"update", {}, "ask whether there is a newer version", RunUpdate},
    Command{"quit", {}, "end the program", RunQuit},
};

std::string CommandNames() {
  std::string names;
  for (const Command& command : kCommands) {
    if (!names.empty()) names += ", ";
    names += command.Name;
  }
  return names;
}

}  // namespace

std::span<const Command> CommandTable() {
  return kCommands;
}

const Command* FindCommand(std::string_view name) {
  const auto* found = std::find_if(kCommands.begin(), kCommands.end(),
                                   [name](const Command& command) { return command.Name == name; });
  return found == kCommands.end() ? nullptr : found;
}

std::string Usage(const Command& command) {
  std::string usage(command.Name);
  for (const Argument& argument : command.Arguments) {
    usage += fmt::format(fmt::runtime(argument.Optional ? " [{}]" : " {}"), argument.Name);
  }
  return usage;
}

std::string CommandsHelp() {
  std::string help;
  for (const Command& command : kCommands) help += fmt::format("  {:<15} {}\n", Usage(command), command.Help);
  return help;
}

std::optional<std::string> WhatIsWrong(const Request& request) {
  const Command* command = FindCommand(request.Command);
  if (command == nullptr) {
    return fmt::format("unknown command {}; allowed: {}", Quoted(request.Command), CommandNames());
  }
  const std::span<const Argument> allowed = command->Arguments;
  const auto needed = static_cast<std::size_t>(std::count_if(
      allowed.begin(), allowed.end(), [](const Argument& argument) { return !argument.Optional; }));
  if (request.Arguments.size() < needed) {
    const Argument& missing = allowed[request.Arguments.size()];
    return fmt::format("{}: {} is missing, expected {}; usage: {}", command->Name, missing.Name,
                       missing.Allowed, Usage(*command));
  }
  if (request.Arguments.size() > allowed.size()) {
    return fmt::format("{}: too many arguments, {} is not expected; usage: {}", command->Name,
                       Quoted(request.Arguments[allowed.size()]), Usage(*command));
  }
  for (std::size_t i = 0; i < request.Arguments.size(); ++i) {
    if (allowed[i].Fits(request.Arguments[i])) continue;
    return fmt::format("{}: {} is wrong, expected {}; usage: {}", command->Name, Quoted(request.Arguments[i]),
                       allowed[i].Allowed, Usage(*command));
  }
  return std::nullopt;
}

}  // namespace kestrune::control
