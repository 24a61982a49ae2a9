#pragma once

#include <optional>

#include "control/CommandLine.h"

namespace kestrune::apps {

/// Answers what needs no unit, on standard output or standard error: a wrong command line, a request for the help or the
/// version. Returns the program's exit status then.
[[nodiscard]] std::optional<int> AnsweredAtOnce(const control::CommandLine& line);

}  // namespace kestrune::apps
