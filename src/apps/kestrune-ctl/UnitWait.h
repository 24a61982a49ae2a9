#pragma once

#include <chrono>
#include <string>

namespace kestrune::ctl {

/// Waits until a unit listens on the socket and its start is over, for at most the given time. Blocks. False if a
/// unit is still starting when the time is over; whatever else is wrong with it, the command itself will find out.
[[nodiscard]] bool WaitForUnit(const std::string& socketPath, std::chrono::seconds atMost);

}  // namespace kestrune::ctl
