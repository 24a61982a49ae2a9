#pragma once

#include <chrono>
#include <cstdint>

namespace kestrune::platform {

/// Works out how many frames went missing, from the time between those that came. For the thread of a source.
///
/// 1. Time counts on while the machine sleeps, so the sound of that time is missing too.
/// 2. A device is given a moment to start. If it takes longer, all of the time from the start on is missing.
/// 3. An interruption that the source knows of is accounted for with the first frames after it. So is a silence of
///    more than a second that nobody reported, but with the frames of half a second after it: they may be late and
///    not lost.
class GapCounter {
 public:
  /// Time since the machine was started, its sleep included.
  using Moment = std::chrono::microseconds;

  static constexpr Moment kStartLimit{250'000};
  static constexpr Moment kSilence{1'000'000};
  static constexpr Moment kLateness{500'000};
  /// Less than this is only the beat in which a device delivers.
  static constexpr Moment kBeat{100'000};

  [[nodiscard]] static Moment Now();

  /// Sound is wanted from this moment on.
  void Start(std::int32_t sampleRate, Moment now);
  /// The device is gone, or has dropped what it held: between the last frames and the next ones is a gap.
  void Interrupt();
  /// Frames came. Returns how many are missing before them.
  [[nodiscard]] std::int64_t Arrived(std::int64_t frames, Moment now);

 private:
  enum class State : std::uint8_t { Starting, Running, Interrupted, Late };

  [[nodiscard]] std::int64_t FramesIn(Moment time) const { return time.count() * sampleRate_ / 1'000'000; }
  [[nodiscard]] std::int64_t Account(Moment now, Moment limit);

  std::int32_t sampleRate_ = 0;
  State state_ = State::Starting;
  Moment from_{0};         // accounted for up to here
  std::int64_t came_ = 0;  // frames since then
  Moment lastArrival_{0};
  Moment cameAt_{0};  // first frames after a silence that nobody reported
};

}  // namespace kestrune::platform
