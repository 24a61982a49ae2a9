#pragma once

#include <string>
#include <string_view>

#include "control/ControlTarget.h"

namespace kestrune::control {

/// Answers one line of the control socket, its end taken off, with one line. Takes any bytes; what is no good
/// request is answered with exit 2 and a reason, and reaches the target in no way. A target that waits may
/// let events run, and a further line be dispatched inside.
[[nodiscard]] std::string Dispatch(ControlTarget& target, std::string_view line);

}  // namespace kestrune::control
