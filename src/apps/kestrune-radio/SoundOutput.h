#pragma once

#include <cstdint>
#include <span>

namespace kestrune::radio_program {

/// Where the receiver's sound goes: stereo, 16 bits, at the rate it is made at. Nothing here blocks.
class SoundOutput {
 public:
  virtual ~SoundOutput() = default;

  /// Takes the sound of the time since the last call; call it every few milliseconds, also with nothing.
  virtual void Play(std::span<const std::int16_t> interleaved) = 0;
  /// Whether anybody listens; what comes before that is not kept.
  [[nodiscard]] virtual bool Heard() const = 0;
  /// Frames that a listener could not take in time.
  [[nodiscard]] virtual std::int64_t LostFrames() const = 0;
  /// How often a listener heard silence because the sound came too late.
  [[nodiscard]] virtual int Gaps() const { return 0; }
};

}  // namespace kestrune::radio_program
