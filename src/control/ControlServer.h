#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "control/ControlTarget.h"

namespace kestrune::control {

/// Answers one line of the control socket, given without its end, with one line. `answer` is called exactly once:
/// within the call for a question, later for a wish. Takes any bytes; what is no valid request is answered at once
/// with exit 2 and a reason, and does not reach the target.
void Dispatch(ControlTarget& target, std::string_view line, const std::function<void(std::string)>& answer);

}  // namespace kestrune::control
