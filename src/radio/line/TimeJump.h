#pragma once

#include <chrono>

#include "base/EventLoop.h"

namespace kestrune::radio {

/// Notices that the machine has slept or that the program was stopped: the clocks have moved further than a regular
/// beat explains. A wall clock that is set means nothing to the radio.
class TimeJump {
 public:
  /// The loop must outlive the object. The first beat begins now.
  explicit TimeJump(const base::EventLoop& loop);

  /// To be asked at every beat, at least every few seconds: whether there was a jump since it was asked last.
  [[nodiscard]] bool Seen();

 private:
  const base::EventLoop& loop_;
  std::chrono::milliseconds steady_;
  std::chrono::milliseconds boot_;
};

}  // namespace kestrune::radio
