#include "platform/ExecWait.h"

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

std::int32_t ExecWait(platform::Processes& processes, std::string_view commandLine, bool hidden,
                      std::int32_t timeoutMs, std::int16_t& waitResult, bool noWait) {
  const std::int32_t process = processes.Start(commandLine, hidden);
  if (noWait) return process;
  if (process == 0) {
    // Nothing is there to be waited for. Nor to be killed: to "kill" the number 0 means this program itself.
    waitResult = kWaitFailed;
    return process;
  }
  waitResult = NumberOf(processes.Wait(process, static_cast<std::uint32_t>(timeoutMs)));
  if (waitResult != kWaitEnded && waitResult != kWaitGivenUp) {
    base::Ignored(processes.Start(fmt::format("kill {}", process), true));
  }
  return process;
}

}  // namespace kestrune::radio
