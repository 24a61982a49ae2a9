#pragma once

#include <cstdint>
#include <numeric>
#include <vector>

namespace kestrune::platform {

/// Sound that a capture lacks.
struct SoundGap {
  std::int64_t At = 0;      ///< frames of the capture before it, exact to about a block
  std::int64_t Frames = 0;  ///< how many are missing there

  bool operator==(const SoundGap&) const = default;
};

/// What a capture got of the sound that it was to record.
struct CaptureSound {
  std::int64_t Frames = 0;     ///< handed over
  std::vector<SoundGap> Gaps;  ///< in the order of the capture

  [[nodiscard]] std::int64_t Lost() const {
    return std::accumulate(Gaps.begin(), Gaps.end(), std::int64_t{0},
                           [](std::int64_t sum, const SoundGap& gap) { return sum + gap.Frames; });
  }

  bool operator==(const CaptureSound&) const = default;
};

}  // namespace kestrune::platform
