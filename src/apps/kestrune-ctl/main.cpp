// Talks to a running unit: one command, its answer as columns for people or as JSON for machines.

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "apps/kestrune-ctl/UnitWait.h"
#include "base/Version.h"
#include "control/CommandTable.h"
#include "control/ConsoleText.h"
#include "control/HintFollow.h"
#include "control/LongOptions.h"
#include "control/PeopleText.h"
#include "control/Protocol.h"
#include "control/Utf8.h"
#include "platform/local/ControlSocketPath.h"
#include "platform/local/LocalClient.h"
#include "platform/posix/RuntimeFolder.h"

namespace kestrune {
namespace {

using control::ExitCode;

/// A wish is answered once the unit has carried it out, which it does between two steps: not within a cut, a tuning
/// or a song's delay.
constexpr std::chrono::seconds kPatience{45};

constexpr std::chrono::seconds kFollowPause{1};
constexpr const char* kUnknownShape = "the unit's answer has a shape that is not known here; try --json";

constexpr std::array kOptions{
    control::LongOption{"--unit", "U", "talk to unit U (one character); without it, to the single unit"},
    control::LongOption{"--profile", "DIR", "talk to the unit that runs with this profile"},
    control::LongOption{"--wait", "SECONDS",
                        "wait so long for a unit that is starting, or not there yet, then run the command"},
    control::LongOption{"--json", "", "write the result as one line of JSON"},
    control::LongOption{"--help", "", "show this text"},
    control::LongOption{"--version", "", "show the version"},
};

struct Invocation {
  std::string Unit;
  std::string Profile;
  std::chrono::seconds Wait{0};
  bool Json = false;
  bool Help = false;
  bool Version = false;
  control::Request Request;
  std::string Error;
};

std::string UsageText() {
  return "usage: kestrune-ctl [options] COMMAND\n\ncommands:\n" + control::CommandsHelp() + "\noptions:\n" +
         control::OptionsHelp(kOptions) + '\n' + control::CommandOptionsHelp() +
         "\nexit status: 0 done, 1 refused, 2 wrong use, 3 no such unit running\n";
}

void Write(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

/// A reason may quote what a unit or a user typed.
void Complain(std::string_view reason) {
  Write(stderr, "kestrune-ctl: " + control::Printable(reason) + '\n');
}

bool IsOneCharacter(std::string_view text) {
  const std::optional<control::CodePoint> first = control::FirstCodePoint(text);
  return first && first->Bytes == text.size();
}

std::optional<std::chrono::seconds> ReadWait(std::string_view text) {
  constexpr int kLongest = 86400;
  int seconds = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || stop != end || seconds < 1 || seconds > kLongest) return std::nullopt;
  return std::chrono::seconds(seconds);
}

/// What the unit itself would say against the request, said here first.
std::string WhatIsWrongWith(const control::Request& request) {
  for (const std::string& argument : request.Arguments) {
    if (!control::IsUtf8(argument)) return "an argument is not UTF-8";
  }
  const auto read = control::RequestFromLine(control::ToLine(request));
  if (const auto* error = std::get_if<control::ReadError>(&read)) return error->Reason;
  return control::WhatIsWrong(request).value_or("");
}

/// The program's own options, and those that the commands have.
std::vector<control::LongOption> AllOptions() {
  std::vector<control::LongOption> all(kOptions.begin(), kOptions.end());
  for (const control::Command& command : control::CommandTable())
    for (const control::CommandOption& option : command.Options)
      all.push_back({option.Name, option.ValueName, option.Help});
  return all;
}

bool IsSwitch(std::span<const control::LongOption> options, std::string_view name) {
  return std::any_of(options.begin(), options.end(), [name](const control::LongOption& option) {
    return option.Name == name && option.ValueName.empty();
  });
}

Invocation Parse(std::span<const std::string> words) {
  Invocation invocation;
  const std::vector<control::LongOption> allowed = AllOptions();
  const control::OptionsRead read = control::ReadLongOptions(allowed, words);
  invocation.Error = read.Error;
  std::vector<std::string> ofCommand;
  for (const control::GivenOption& given : read.Given) {
    const bool own =
        std::any_of(kOptions.begin(), kOptions.end(),
                    [&given](const control::LongOption& option) { return option.Name == given.Name; });
    if (!own) {
      ofCommand.emplace_back(given.Name);
      if (!IsSwitch(allowed, given.Name)) ofCommand.push_back(given.Value);
    }
    if (given.Name == "--json") invocation.Json = true;
    if (given.Name == "--help") invocation.Help = true;
    if (given.Name == "--version") invocation.Version = true;
    if (given.Name == "--unit") {
      invocation.Unit = given.Value;
      if (!IsOneCharacter(given.Value)) invocation.Error = "--unit takes one character";
    }
    if (given.Name == "--wait") {
      const std::optional<std::chrono::seconds> wait = ReadWait(given.Value);
      if (!wait) invocation.Error = "--wait takes a whole number of seconds from 1 to 86400";
      invocation.Wait = wait.value_or(invocation.Wait);
    }
    if (given.Name == "--profile") {
      invocation.Profile = given.Value;
      if (given.Value.empty()) invocation.Error = "--profile takes a folder, not an empty text";
    }
  }
  if (!invocation.Error.empty() || invocation.Help || invocation.Version) return invocation;
  if (read.Rest.empty()) {
    invocation.Error = "no command given";
    return invocation;
  }
  invocation.Request = {read.Rest.front(), {read.Rest.begin() + 1, read.Rest.end()}};
  std::vector<std::string>& arguments = invocation.Request.Arguments;
  arguments.insert(arguments.end(), ofCommand.begin(), ofCommand.end());
  invocation.Error = WhatIsWrongWith(invocation.Request);
  return invocation;
}

ExitCode Show(const Invocation& invocation, std::string_view line) {
  const std::optional<control::Reply> reply = control::ReplyFromLine(line);
  if (!reply) {
    Complain("the unit's answer makes no sense");
    return ExitCode::Refused;
  }
  if (reply->Exit != ExitCode::Done) {
    Complain(reply->Reason);
    return reply->Exit;
  }
  if (invocation.Json) {
    Write(stdout, reply->Result.dump() + '\n');
    return ExitCode::Done;
  }
  const std::optional<std::string> text =
      control::PeopleText(control::FindCommand(invocation.Request)->Name, reply->Result);
  if (!text) {
    Complain(kUnknownShape);
    return ExitCode::Refused;
  }
  Write(stdout, *text);
  return ExitCode::Done;
}

/// One answer of the unit, or what was complained about instead.
struct Asked {
  std::string Answer;
  ExitCode Exit = ExitCode::Done;
};

Asked AskOnce(const Invocation& invocation, const std::string& path) {
  const platform::AskResult asked = platform::Ask(path, control::ToLine(invocation.Request), kPatience);
  switch (asked.Outcome) {
    case platform::AskOutcome::Answered:
      return {asked.Answer, ExitCode::Done};
    case platform::AskOutcome::NobodyListens:
      Complain(invocation.Unit.empty() ? "no unit is running"
                                       : fmt::format("no unit {} is running", invocation.Unit));
      return {{}, ExitCode::NoSuchUnit};
    case platform::AskOutcome::Foreign:
      Complain(fmt::format("{} belongs to another user", path));
      return {{}, ExitCode::NoSuchUnit};
    case platform::AskOutcome::NoAnswer:
      break;
  }
  Complain("the unit does not answer");
  return {{}, ExitCode::Refused};
}

ExitCode Ask(const Invocation& invocation, const std::string& path) {
  const Asked asked = AskOnce(invocation, path);
  return asked.Exit == ExitCode::Done ? Show(invocation, asked.Answer) : asked.Exit;
}

/// Hints alone can be followed.
bool IsFollowed(const control::Request& request) {
  return request.Command == "hints" && !request.Arguments.empty();
}

/// Asks each second until the unit ends or refuses, or nobody reads any more.
ExitCode Follow(const Invocation& invocation, const std::string& path) {
  control::HintFollow follow(invocation.Json);
  while (true) {
    const Asked asked = AskOnce(invocation, path);
    if (asked.Exit != ExitCode::Done) return asked.Exit;
    const std::optional<control::Reply> reply = control::ReplyFromLine(asked.Answer);
    if (!reply || reply->Exit != ExitCode::Done) return Show(invocation, asked.Answer);
    const std::optional<std::string> text = follow.NewIn(reply->Result);
    if (!text) {
      Complain(kUnknownShape);
      return ExitCode::Refused;
    }
    Write(stdout, *text);
    if (std::fflush(stdout) != 0) return ExitCode::Done;
    std::this_thread::sleep_for(kFollowPause);
  }
}

ExitCode Run(std::span<const std::string> words) {
  const Invocation invocation = Parse(words);
  if (!invocation.Error.empty()) {
    Complain(invocation.Error);
    Write(stderr, "try kestrune-ctl --help\n");
    return ExitCode::WrongUse;
  }
  if (invocation.Help) {
    Write(stdout, UsageText());
    return ExitCode::Done;
  }
  if (invocation.Version) {
    Write(stdout, fmt::format("kestrune-ctl {}.{}.{}\n", base::kVersionMajor, base::kVersionMinor,
                              base::kVersionRevision));
    return ExitCode::Done;
  }

  const std::string path =
      platform::ControlSocketPath(platform::RuntimeFolderPath(invocation.Profile), invocation.Unit);
  if (invocation.Wait.count() > 0 && !ctl::WaitForUnit(path, invocation.Wait)) {
    Complain("the unit is still starting");
    return ExitCode::Refused;
  }
  return IsFollowed(invocation.Request) ? Follow(invocation, path) : Ask(invocation, path);
}

}  // namespace
}  // namespace kestrune

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  return static_cast<int>(kestrune::Run(words));
}
