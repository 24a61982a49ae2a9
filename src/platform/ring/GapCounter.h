#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace kestrune::platform {

/// Says how many frames went missing over an interruption, from the time that it took. For the thread of a
/// source.
class GapCounter {
 public:
  using Moment = std::chrono::steady_clock::time_point;

  /// The source runs from this moment on.
  void Start(std::int32_t sampleRate, Moment now) {
    sampleRate_ = sampleRate;
    lastArrival_ = now;
    interrupted_ = false;
  }
  /// The device is gone, or has dropped what it held: between the last frames and the next ones is a gap.
  void Interrupt() { interrupted_ = true; }
  [[nodiscard]] bool Interrupted() const { return interrupted_; }
  /// Frames came. Returns how many are missing before them.
  [[nodiscard]] std::int64_t Arrived(std::int64_t frames, Moment now) {
    const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(now - lastArrival_).count();
    lastArrival_ = now;
    if (!interrupted_) return 0;
    interrupted_ = false;
    return std::max<std::int64_t>(passed * sampleRate_ / 1'000'000 - frames, 0);
  }

 private:
  std::int32_t sampleRate_ = 0;
  Moment lastArrival_;
  bool interrupted_ = false;
};

}  // namespace kestrune::platform
