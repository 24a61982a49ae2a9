#pragma once

#include <cstdint>
#include <optional>

namespace kestrune::recorder {

/// What blinks and what counts, as the last clock tick left it.
struct ClockState {
  bool StatusShown = false;     ///< the status text; blinks while recording
  bool EventMarkShown = false;  ///< the mark of a running scheduled event; blinks with the status
  /// Length of the capture in hand; nothing between the press of Record and the first clock tick that shows it.
  std::optional<std::int64_t> CaptureSeconds;
  /// Until the running event ends; nothing between its beginning and the next clock tick.
  std::optional<std::int64_t> SecondsLeft;
};

}  // namespace kestrune::recorder
