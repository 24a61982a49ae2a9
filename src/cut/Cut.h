#pragma once

#include <cstdint>
#include <vector>

#include "cut/Choice.h"

namespace kestrune::cut {

/// How much sound before and after a stamp a choice wants to see, in milliseconds.
inline constexpr int kWantedBeforeMs = 9000;
inline constexpr int kWantedAfterMs = 10000;

/// Where one song gives way to the next, and why.
struct Cut {
  std::int64_t Frame = 0;  ///< the first frame of the new song
  cut::Reason Reason = Reason::Text;
  float Confidence = 0;    ///< the chance that the true start is within 0.1 s, 0 to 1
  std::int64_t LagMs = 0;  ///< Frame minus stamp, in milliseconds
  std::int64_t Heard = 0;  ///< the last frame that was looked at; the stamp if there was none
  /// The places that were likeliest, the likeliest first; at most kCandidates.
  std::vector<Candidate> Candidates;

  bool operator==(const Cut&) const = default;
};

}  // namespace kestrune::cut
