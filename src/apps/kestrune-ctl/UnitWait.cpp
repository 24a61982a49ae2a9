#include "apps/kestrune-ctl/UnitWait.h"

#include <algorithm>
#include <optional>
#include <thread>

#include "control/Protocol.h"
#include "platform/local/LocalClient.h"

namespace kestrune::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPause{200};
/// A unit answers a question at once, but for a song's delay.
constexpr milliseconds kPatience{10'000};

/// True unless the unit says that it is still starting.
bool IsUp(const std::string& answer) {
  const std::optional<control::Reply> reply = control::ReplyFromLine(answer);
  if (!reply || !reply->Result.is_object()) return true;
  const auto loading = reply->Result.find("loading");
  return loading == reply->Result.end() || *loading != true;
}

}  // namespace

bool WaitForUnit(const std::string& socketPath, std::chrono::seconds atMost) {
  const Clock::time_point deadline = Clock::now() + atMost;
  const std::string question = control::ToLine(control::Request{"status", {}});
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    const platform::AskResult asked =
        platform::Ask(socketPath, question, std::clamp(left, milliseconds(1000), kPatience));
    const bool absent = asked.Outcome == platform::AskOutcome::NobodyListens;
    const bool starting = asked.Outcome == platform::AskOutcome::NoAnswer ||
                          (asked.Outcome == platform::AskOutcome::Answered && !IsUp(asked.Answer));
    if (!absent && !starting) return true;
    if (Clock::now() + kPause > deadline) return absent;
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace kestrune::ctl
