#pragma once

#include <cstdint>

#include "cut/Choice.h"
#include "cut/EvidenceModel.h"
#include "cut/LagModel.h"
#include "cut/Sound.h"

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
};

/// What speaks for each lag in the sound around a stamp, as a logarithm up to a common constant; minus
/// infinity where there is no sound. Only `sound` from kWantedBeforeMs before to kWantedAfterMs after the
/// stamp is looked at; less sound makes the evidence weaker, not wrong.
[[nodiscard]] LagRow Hear(const Sound& sound, std::int64_t stamp,
                          const EvidenceWeights& weights = FittedWeights());

/// Chooses the cut for a change of text that was noticed at frame `stamp`, and renews `station` with what was
/// heard. Looks at the same sound as Hear. Takes some ten milliseconds.
[[nodiscard]] Cut FindCut(const Sound& sound, std::int64_t stamp, LagModel& station,
                          const EvidenceWeights& weights = FittedWeights());

}  // namespace kestrune::cut
