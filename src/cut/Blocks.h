#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace kestrune::cut {

inline constexpr std::size_t kBands = 24;

/// What 20 ms of sound contain, after all below 100 Hz is taken away. Levels are in decibels against full
/// scale, -90 at the lowest.
struct Block {
  float Level = -90;  ///< middle and side together
  float Middle = -90;
  float Side = -90;
  std::array<float, kBands> MiddleBands{};  ///< log bands from 100 Hz to 14 kHz
  std::array<float, kBands> SideBands{};

  bool operator==(const Block&) const = default;
};

inline constexpr float kSilence = -90;

/// Measures blocks of rate / 50 frames each, as their sound comes. Keeps a block's worth of sound, since a spectrum
/// reaches a little over the ends of its block.
class BlockMeter {
 public:
  /// `rate`: 8000 to 192000 frames a second; `channels`: 1 or 2.
  BlockMeter(int rate, int channels);
  BlockMeter(BlockMeter&&) noexcept;
  BlockMeter& operator=(BlockMeter&&) noexcept;
  ~BlockMeter();

  /// Appends the blocks that `interleaved` completes; it may be any whole number of frames. The same sound gives
  /// the same blocks however it is divided.
  void Hear(std::span<const std::int16_t> interleaved, std::vector<Block>& blocks);

  /// How many frames after a block's own its spectrum looks at; the block is complete with them.
  [[nodiscard]] int Ahead() const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace kestrune::cut
