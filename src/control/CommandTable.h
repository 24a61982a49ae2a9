#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "control/ControlTarget.h"
#include "control/Protocol.h"

namespace kestrune::control {

/// Takes a command's reply.
using Replied = std::function<void(const Reply&)>;

/// One argument of a command.
struct Argument {
  std::string_view Name;     ///< as the usage shows it: "N", "on|off"
  std::string_view Allowed;  ///< completes "expected ..."
  bool (*Fits)(std::string_view text) = nullptr;
  bool Optional = false;  ///< only after all required ones
};

/// One option of a command, followed by its value; every option may be left out. An option of the same name in another
/// command takes a value too, or none.
struct CommandOption {
  std::string_view Name;       ///< with its two dashes
  std::string_view ValueName;  ///< as the usage shows it; empty for a switch, which has no value
  std::string_view Allowed;    ///< completes "expected ..."
  bool (*Fits)(std::string_view text) = nullptr;
  std::string_view Help;
  std::string_view Excludes = {};  ///< the option that must not stand beside it
};

/// One command: what it takes, what it says of itself, and what it does. A new command is a new row.
struct Command {
  std::string_view Name;  ///< one word, or two: "schedule", "schedule set"
  std::span<const Argument> Arguments;
  std::string_view Help;
  /// The arguments are those of the table, without the second word of the name. `replied` is called once, at once
  /// for a question and when a wish has been answered.
  void (*Run)(ControlTarget& target, std::span<const std::string> arguments,
              const Replied& replied) = nullptr;
  /// They come after its arguments.
  std::span<const CommandOption> Options = {};
  bool NeedsOption = false;  ///< at least one
};

/// All commands, in the order of the usage text.
[[nodiscard]] std::span<const Command> CommandTable();

/// The command that a request asks for; null if there is none of that name. Case counts. The second word of
/// a name stands as the first argument of the request.
[[nodiscard]] const Command* FindCommand(const Request& request);

/// The command and its arguments as they are typed: "log [N]".
[[nodiscard]] std::string Usage(const Command& command);
/// One aligned line a command, for a usage text.
[[nodiscard]] std::string CommandsHelp();
/// The options of the commands that have any, in the same manner, each group under its command's name.
[[nodiscard]] std::string CommandOptionsHelp();

/// One line that names what is wrong with a request and what is allowed; nothing if it can be run.
[[nodiscard]] std::optional<std::string> WhatIsWrong(const Request& request);
/// Runs a request of which nothing is wrong; `replied` is called as Command::Run says.
void RunCommand(ControlTarget& target, const Request& request, const Replied& replied);

}  // namespace kestrune::control
