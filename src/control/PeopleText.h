#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "control/ReportJson.h"

namespace kestrune::control {

/// A command's result as people read it: lines, each with its end; empty if the command has no result.
/// The command is named as the table of commands names it.
/// Nothing if the result does not have the shape that this command's results have.
[[nodiscard]] std::optional<std::string> PeopleText(std::string_view command, const Json& result);

}  // namespace kestrune::control
