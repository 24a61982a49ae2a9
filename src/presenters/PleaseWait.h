#pragma once

#include <chrono>
#include <string>

#include "recorder/State.h"

namespace kestrune::presenters {

/// What the window shows that stands in front while the radio is looked for.
struct PleaseWait {
  static constexpr int kWhole = 1000;

  std::string lblPort = {};  ///< the number of the port; empty until the first is tried
  std::string lblStep = {};  ///< one short sentence about what is being done
  /// The part of the search that is over, 0 to kWhole. It grows with each step and within it, and never shrinks by
  /// time alone.
  int pbrSearch = 0;
  bool cmdCancelEnabled = true;
};

/// The window in this state. `now` is the moment on the steady clock.
[[nodiscard]] PleaseWait ShowSearch(const recorder::State& state, std::chrono::milliseconds now);

}  // namespace kestrune::presenters
