#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "receiver/LineUp.h"

namespace kestrune::receiver {

enum class SignalKind {
  Tunes,    ///< each song its own melody
  Tones,    ///< each song its own pure frequency, which a measurement can recognise
  Counter,  ///< each frame its own number, so that a missing one shows
  Music     ///< each song its own band, joined to the next one as the line-up says
};

/// A song's place in the sound of the receiver. Frames count from the receiver's start.
struct SongPlace {
  const Song* What = nullptr;
  int Ordinal = 0;  ///< of the song in the whole line-up, from 0
  std::int64_t StartFrame = 0;
  std::int64_t EndFrame = 0;
  const Song* Before = nullptr;  ///< the song before it, which may be the same one
  std::int64_t BeforeFrame = 0;  ///< the first one of that
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

/// The lowest bits of the samples in SignalKind::Music. Each 32 frames bear their number, counted in such groups, in the
/// bits on the left, the lowest bit first; on the right the first frame of a group has a one, the others have zeros.
inline constexpr std::int64_t kMarkedGroup = 32;
[[nodiscard]] constexpr bool MarkLeft(std::int64_t frame) {
  return ((frame / kMarkedGroup) >> (frame % kMarkedGroup) & 1) != 0;
}
[[nodiscard]] constexpr bool MarkRight(std::int64_t frame) {
  return frame % kMarkedGroup == 0;
}

}  // namespace kestrune::receiver
