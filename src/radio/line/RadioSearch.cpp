#include "radio/line/RadioSearch.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace kestrune::radio {

namespace {

const PortTrial* FirstOf(const std::vector<PortTrial>& trials, PortTrial::Reason why) {
  const auto found =
      std::find_if(trials.begin(), trials.end(), [why](const PortTrial& trial) { return trial.Why == why; });
  return found == trials.end() ? nullptr : &*found;
}

}  // namespace

base::Result RadioSearch::AsResult() const {
  if (Found()) return base::Result::Done();
  if (const PortTrial* const refused = FirstOf(Failed, PortTrial::Reason::NotOpened)) {
    return base::Result::Failed(refused->Cause);
  }
  if (const PortTrial* const silent = FirstOf(Failed, PortTrial::Reason::NoAnswer)) {
    return base::Result::Failed(fmt::format("port {} opens, but no radio answers there", silent->Port));
  }
  return base::Result::Failed("there is no serial device; is the radio plugged in?");
}

std::vector<std::string> RadioSearch::Reasons() const {
  std::vector<std::string> lines;
  for (const PortTrial& trial : Failed) {
    if (trial.Why == PortTrial::Reason::NoDevice) continue;
    std::string line = LineOf(trial);
    if (std::find(lines.begin(), lines.end(), line) == lines.end()) lines.push_back(std::move(line));
  }
  if (lines.empty() && !Found()) lines.push_back("No radio: " + AsResult().Cause());
  return lines;
}

std::string LineOf(const PortTrial& trial) {
  return fmt::format("No radio on port {}: {}", trial.Port, trial.Cause);
}

bool RadioSearch::AnyDevice() const {
  return std::any_of(Failed.begin(), Failed.end(),
                     [](const PortTrial& trial) { return trial.Why != PortTrial::Reason::NoDevice; });
}

}  // namespace kestrune::radio
