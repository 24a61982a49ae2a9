#pragma once

#include <cstdint>
#include <string_view>

#include "platform/Processes.h"

namespace kestrune::radio {

/// How a wait of ExecWait can end.
inline constexpr std::int16_t kWaitEnded = 0;
inline constexpr std::int16_t kWaitGivenUp = 128;  ///< this program ends; the other one runs on
inline constexpr std::int16_t kWaitTimedOut = 258;
inline constexpr std::int16_t kWaitFailed = -1;

/// Runs a command and, unless `noWait`, waits until it has ended or `timeoutMs` milliseconds have passed (0:
/// without limit). `waitResult` is written only if there was a wait. A command that has not ended by
/// then is asked to end with the system's "kill", which is not waited for. Returns the process identifier, 0 if nothing
/// was started.
std::int32_t ExecWait(platform::Processes& processes, std::string_view commandLine, bool hidden,
                      std::int32_t timeoutMs, std::int16_t& waitResult, bool noWait);

}  // namespace kestrune::radio
