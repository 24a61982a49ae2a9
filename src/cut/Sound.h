#pragma once

#include <cstdint>
#include <span>

namespace kestrune::cut {

/// A stretch of captured sound. The samples belong to the caller.
struct Sound {
  std::span<const std::int16_t> Samples;  ///< interleaved
  std::int64_t First = 0;                 ///< the number of the first frame, counted as stamps are
  int Channels = 2;                       ///< 1 or 2
  int Rate = 44100;                       ///< frames a second, 8000 or more

  [[nodiscard]] std::int64_t Frames() const { return static_cast<std::int64_t>(Samples.size()) / Channels; }
  /// The number of the frame after the last.
  [[nodiscard]] std::int64_t End() const { return First + Frames(); }
};

}  // namespace kestrune::cut
