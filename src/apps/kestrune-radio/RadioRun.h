#pragma once

#include "apps/kestrune-radio/RadioOptions.h"

namespace kestrune::radio_program {

/// Runs the receiver until its duration is over or SIGTERM or SIGINT comes. The result is the exit status: 0
/// at such an end, 1 if it could not start (the reason is on standard error), 2 if an option does not fit the
/// line-up.
[[nodiscard]] int RunRadio(const RadioOptions& options);

}  // namespace kestrune::radio_program
