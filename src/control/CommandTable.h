#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "control/ControlTarget.h"
#include "control/Protocol.h"

namespace kestrune::control {

/// One argument of a command.
struct Argument {
  std::string_view Name;     ///< as the usage shows it: "N", "on|off"
  std::string_view Allowed;  ///< completes "expected ..."
  bool (*Fits)(std::string_view text) = nullptr;
  bool Optional = false;  ///< only behind all that must be given
};

/// One command: what it takes, what it says of itself, and what it does. A new command is a new row.
struct Command {
  std::string_view Name;
  std::span<const Argument> Arguments;
  std::string_view Help;
  Reply (*Run)(ControlTarget& target, std::span<const std::string> arguments) = nullptr;
};

/// All commands, in the order of the usage text.
[[nodiscard]] std::span<const Command> CommandTable();

/// Null if there is none of that name; case counts.
[[nodiscard]] const Command* FindCommand(std::string_view name);

/// The command and its arguments as they are typed: "log [N]".
[[nodiscard]] std::string Usage(const Command& command);
/// One aligned line a command, for a usage text.
[[nodiscard]] std::string CommandsHelp();

/// One line that names what is wrong with a request and what is allowed; nothing if it can be run.
[[nodiscard]] std::optional<std::string> WhatIsWrong(const Request& request);

}  // namespace kestrune::control
