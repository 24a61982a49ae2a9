#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "cut/Blocks.h"
#include "cut/Cut.h"
#include "cut/EvidenceModel.h"
#include "cut/LagModel.h"

namespace kestrune::cut {

/// Hears the sound as it comes, and chooses cuts in what it heard last. It measures each block of 20 ms once, when it
/// comes, so that a choice costs little at its moment. It keeps no samples, only what was measured, of the last kKeptMs;
/// starts no thread and reads no clock.
class Listener {
 public:
  /// For how long what was measured is kept, in milliseconds.
  static constexpr int kKeptMs = 21000;

  /// `rate`: 8000 to 192000 frames a second; `channels`: 1 or 2; `first`: the number of the first frame that Hear gets.
  Listener(int rate, int channels, std::int64_t first);

  /// Takes the sound that follows what was heard before: any whole number of frames. The same sound gives the same
  /// choices however it is divided. A second of sound takes about a millisecond.
  void Hear(std::span<const std::int16_t> interleaved);

  /// The frame after the last one heard.
  [[nodiscard]] std::int64_t End() const { return end_; }

  /// What was measured around a stamp.
  struct Stretch {
    std::span<const Block> Blocks;  ///< at most kWantedBeforeMs before to kWantedAfterMs after the stamp
    std::ptrdiff_t FirstLag = 0;  ///< the block of the lowest lag, counted from the first; it may lie outside
    std::int64_t FirstLagFrame = 0;  ///< and the frame that it begins with
    std::int64_t Heard = 0;          ///< the last frame that was measured; the stamp if there is no block
  };
  /// Valid until sound is heard again.
  [[nodiscard]] Stretch Around(std::int64_t stamp) const;

  /// Chooses the cut for a change of text that was noticed at frame `stamp`, and renews `station` with what was
  /// heard. What was heard up to kWantedAfterMs after the stamp counts, as far as it is kept; less sound makes the
  /// choice weaker, not wrong, and without any the station's lag alone decides. Takes some milliseconds.
  [[nodiscard]] Cut Choose(std::int64_t stamp, LagModel& station,
                           const EvidenceWeights& weights = FittedWeights()) const;

 private:
  void MeasureSteps(std::span<const std::int16_t> interleaved);
  [[nodiscard]] std::int64_t BeforeOnset(std::int64_t frame, std::int64_t heard) const;

  int rate_;
  int channels_;
  std::int64_t first_;
  std::int64_t end_;
  BlockMeter meter_;
  std::vector<Block> blocks_;  ///< the last ones, at least those of kKeptMs
  std::int64_t dropped_ = 0;   ///< how many came before them
  /// The level of each 2.5 ms, in decibels, likewise.
  std::vector<float> steps_;
  std::int64_t droppedSteps_ = 0;
  double stepPower_ = 0;
  std::int64_t stepFrames_ = 0;
};

}  // namespace kestrune::cut
