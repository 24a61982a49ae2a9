#include "radio/line/RadioSearch.h"

#include <algorithm>

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

bool RadioSearch::AnyDevice() const {
  return std::any_of(Failed.begin(), Failed.end(),
                     [](const PortTrial& trial) { return trial.Why != PortTrial::Reason::NoDevice; });
}

}  // namespace kestrune::radio
