#include "radio/ExecWait.h"

#include <fmt/format.h>

#include "base/Ignored.h"

namespace kestrune::radio {
namespace {

std::int16_t NumberOf(platform::WaitEnd end) {
  switch (end) {
    case platform::WaitEnd::Ended:
      return kWaitEnded;
    case platform::WaitEnd::GivenUp:
      return kWaitGivenUp;
    case platform::WaitEnd::TimedOut:
      return kWaitTimedOut;
    case platform::WaitEnd::Failed:
      break;
  }
  return kWaitFailed;
}

}  // namespace

std::int32_t ExecWait(platform::Processes& processes, std::string_view CommandLine, bool Hidden,
                      std::int32_t TimeoutMs, std::int16_t& WaitResult, bool NoWait) {
  const std::int32_t process = processes.Start(CommandLine, Hidden);
  if (NoWait) return process;
  if (process == 0) {
    // Nothing is there to be waited for. Nor to be killed: to "kill" the number 0 means this program itself.
    WaitResult = kWaitFailed;
    return process;
  }
  WaitResult = NumberOf(processes.Wait(process, static_cast<std::uint32_t>(TimeoutMs)));
  if (WaitResult != kWaitEnded && WaitResult != kWaitGivenUp) {
    base::Ignored(processes.Start(fmt::format("kill {}", process), true));
  }
  return process;
}

}  // namespace kestrune::radio
