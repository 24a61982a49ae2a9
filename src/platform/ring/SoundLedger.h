#pragma once

#include <chrono>
#include <cstdint>

#include "platform/CaptureSound.h"

namespace kestrune::platform {

/// Keeps the books on the sound of the captures: what was handed over, what is missing, and in which capture. For
/// the main thread; times are those of a clock that goes on while the machine sleeps.
///
/// 1. A source reports a gap only when sound comes again. A capture that ends in the middle of a gap is charged
///    with its part at once: with the time since the last sound, if that is more than a second. When the source
///    reports the gap, only the rest is charged to the capture of that moment.
/// 2. A gap between two captures is charged to the later one, at its beginning.
class SoundLedger {
 public:
  using Moment = std::chrono::milliseconds;

  /// No sound for longer than this is a gap.
  static constexpr Moment kSilence{1000};
  /// A source that has not reported a gap within this time after sound came again will not report it.
  static constexpr Moment kReportLimit{2000};

  /// What has come from the source so far, in frames: it has been open since the last Open.
  struct Arrivals {
    std::int64_t Frames = 0;  ///< since Open
    std::int64_t Lost = 0;    ///< since the program started
  };

  /// A source has been opened, with so many frames a second.
  void Open(std::int32_t sampleRate, Moment now);
  void BeginCapture();
  /// Looks at what has come. To be called at least a few times a second, and before the calls below.
  void Look(const Arrivals& arrivals, Moment now);
  void HandOver(std::int64_t frames) { sound_.Frames += frames; }
  void EndCapture(Moment now);
  /// What came since the last capture will be in none.
  void Forget(Moment now);

  [[nodiscard]] const CaptureSound& Sound() const { return sound_; }
  /// Frames missing since the program started, given what the source has lost up to now.
  [[nodiscard]] std::int64_t Lost(std::int64_t lostBySource) const;

 private:
  void Charge(std::int64_t frames);

  std::int32_t sampleRate_ = 0;
  Arrivals seen_;
  Moment heardAt_{0};              // up to here all sound has come, or is charged
  Moment returnedAt_{0};           // when it came again after frames were charged ahead
  bool returned_ = false;          // it has
  std::int64_t chargedAhead_ = 0;  // frames charged before the source has reported them
  std::int64_t betweenCaptures_ = 0;
  std::int64_t charged_ = 0;
  bool capturing_ = false;
  CaptureSound sound_;
};

}  // namespace kestrune::platform
