#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "receiver/LineUp.h"

namespace kestrune::receiver {

enum class SignalKind {
  Tunes,   ///< each song its own melody
  Tones,   ///< each song its own pure frequency, which a measurement can recognise
  Counter  ///< each frame its own number, so that a missing one shows
};

/// A song's place in the sound of the receiver. Frames count from the receiver's start.
struct SongPlace {
  const Song* What = nullptr;
  int Ordinal = 0;  ///< of the song in the whole line-up, from 0
  std::int64_t StartFrame = 0;
  std::int64_t EndFrame = 0;
};

/// What a song sounds like.
class SongSignal {
 public:
  virtual ~SongSignal() = default;

  /// Stereo frames from `firstFrame` on, all of them within the song.
  virtual void Render(const SongPlace& place, std::int64_t firstFrame,
                      std::span<std::int16_t> interleaved) = 0;
};

[[nodiscard]] std::unique_ptr<SongSignal> MakeSongSignal(SignalKind kind, int sampleRate);

/// The frequency, in Hz, of the song in SignalKind::Tones: 200 to 8180 in steps of 20, a different one for each of
/// 400 songs, and never near that of the previous song.
[[nodiscard]] double ToneFrequency(int ordinal);

/// The frame that stands for a number in SignalKind::Counter: the lower 16 bits on the left, the upper ones on the
/// right.
[[nodiscard]] constexpr std::int16_t CounterLeft(std::int64_t frame) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(frame & 0xFFFF));
}
[[nodiscard]] constexpr std::int16_t CounterRight(std::int64_t frame) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>((frame >> 16) & 0xFFFF));
}

}  // namespace kestrune::receiver
