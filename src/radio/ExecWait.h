#pragma once

#include <cstdint>
#include <string_view>

#include "platform/Processes.h"

namespace kestrune::radio {

/// What ExecWait's wait can come to.
inline constexpr std::int16_t kWaitEnded = 0;
inline constexpr std::int16_t kWaitGivenUp = 128;  ///< this program ends; the other one runs on
inline constexpr std::int16_t kWaitTimedOut = 258;
inline constexpr std::int16_t kWaitFailed = -1;

/// Runs a command and, unless `NoWait`, waits until it has ended or `TimeoutMs` milliseconds have passed (0:
/// without limit). `WaitResult` is written only if there was a wait. A command that was not seen to end is
/// told to, by the system's "kill", which is not waited for. The process identifier, 0 if nothing started.
std::int32_t ExecWait(platform::Processes& processes, std::string_view CommandLine, bool Hidden,
                      std::int32_t TimeoutMs, std::int16_t& WaitResult, bool NoWait);

}  // namespace kestrune::radio
