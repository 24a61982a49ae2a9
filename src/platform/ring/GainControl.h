#pragma once

#include <cstdint>
#include <span>

#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// Automatic gain control over a stream of samples. It works in place and adds no delay, and what it does to a
/// sample depends on the sound before it alone, not on where the stream is cut into blocks.
///
/// 1. Off (the state it starts in), it touches nothing.
/// 2. On, it measures the level of what comes in: root mean square over all channels, smoothed over 50 ms, in dB
///    below a full-scale square wave. A level below the range is raised to its lower end, one above the range is
///    lowered to its upper end, one within the range passes bit for bit.
/// 3. The range is what lies between the two levels, whichever of them is the smaller.
/// 4. The gain moves at 20 dB in an attack time, up and down, evenly from sample to sample. Only where a sample
///    would pass full scale does it give way at once, so nothing ever clips.
/// 5. It raises by 40 dB at most, and what is softer than -70 dB is a pause: the gain rests, so that a pause does
///    not swell to noise.
class GainControl {
 public:
  /// Forgets the level and the gain.
  void SetFormat(const PcmFormat& format);
  /// Switching it on starts from unity gain.
  void SetEnabled(bool enabled);
  /// Milliseconds; less than 1 counts as 1.
  void SetAttackTime(std::int16_t milliseconds);
  /// Decibels, limited to -92 to 0.
  void SetHighLevel(std::int16_t decibels);
  void SetLowLevel(std::int16_t decibels);

  /// Takes whole frames.
  void Process(std::span<std::int16_t> interleaved);

  /// The present gain in dB.
  [[nodiscard]] double Gain() const { return gainDecibels_; }

 private:
  void Reset();
  void Steer();

  PcmFormat format_;
  bool enabled_ = false;
  double attackMilliseconds_ = 100;
  double oneLevel_ = -40;
  double otherLevel_ = -10;

  double meanSquare_ = 0;
  double gainDecibels_ = 0;
  double gain_ = 1;
  double gainStep_ = 0;
  int framesToSteering_ = 0;
};

}  // namespace kestrune::platform
