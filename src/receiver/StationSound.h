#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "receiver/LineUp.h"
#include "receiver/SongSignal.h"

namespace kestrune::receiver {

/// The sound of any station at any frame, frame 0 at the receiver's start, stereo. A song's first frame is
/// the first one whose moment is not before the song's start.
class StationSound {
 public:
  StationSound(const LineUp& lineUp, SignalKind kind, int sampleRate);

  /// Frames of a channel, starting with `firstFrame` (0 or later); silence if there is no such channel or it has no
  /// songs. Only the counter sounds on every channel that exists.
  void Render(int channel, std::int64_t firstFrame, std::span<std::int16_t> interleaved);

  [[nodiscard]] int SampleRate() const { return sampleRate_; }
  /// How many frames begin before the moment.
  [[nodiscard]] std::int64_t FramesUntil(std::chrono::milliseconds time) const;
  /// The song of a channel at a frame; its What is null if there is none.
  [[nodiscard]] SongPlace PlaceAt(int channel, std::int64_t frame) const;
  [[nodiscard]] SignalKind Kind() const { return kind_; }

 private:
  const LineUp& lineUp_;
  SignalKind kind_;
  int sampleRate_;
  std::unique_ptr<SongSignal> signal_;
};

}  // namespace kestrune::receiver
