#pragma once

#include <cstdint>
#include <span>

namespace kestrune::recorder {

/// Measures the sound of a capture, block by block.
class SoundMeter {
 public:
  /// A block is quiet if its power is less than that of a constant 0.001 of full scale: -60 dBFS. Radios and cables
  /// hum and hiss 10 to 20 dB below that; faint music is above it.
  static constexpr double kQuietPower = 32.768 * 32.768;

  /// A new capture begins.
  void Begin() {
    samples_ = 0;
    fullScale_ = 0;
  }
  void Take(std::span<const std::int16_t> block);

  /// How many blocks that are not quiet came, since the program started.
  [[nodiscard]] std::uint64_t LoudBlocks() const { return loudBlocks_; }
  /// Whether more than one percent of the capture's samples are at full scale: that is heard.
  [[nodiscard]] bool Overloaded() const { return fullScale_ * 100 > samples_; }
  /// How many percent are, rounded down.
  [[nodiscard]] int FullScalePercent() const;

 private:
  std::uint64_t loudBlocks_ = 0;
  std::int64_t samples_ = 0;
  std::int64_t fullScale_ = 0;
};

}  // namespace kestrune::recorder
