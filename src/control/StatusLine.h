#pragma once

#include <string>

#include "control/Reports.h"

namespace kestrune::control {

/// What a unit does, in one printable line: what is wrong first, then recording, channel, song and count. It says what the
/// status for people says, without what changes every second.
[[nodiscard]] std::string StatusLine(const StatusReport& report);

}  // namespace kestrune::control
