#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "cut/Lags.h"

namespace kestrune::cut {

/// Why a cut is where it is.
enum class Reason {
  Gap,      ///< it was quiet
  Onset,    ///< the sound rose
  Novelty,  ///< the sound became another
  Lag,      ///< nothing was clear; the station's learned lag
  Text,     ///< there was no sound to judge; the text and the lag that was expected of any station
};
[[nodiscard]] std::string_view NameOf(Reason reason);

/// A lag to cut at, and how sure it is.
struct Chosen {
  std::size_t Lag = 0;   ///< index of the lag
  float Confidence = 0;  ///< the chance that the true start is within 0.1 s, 0 to 1
};

/// A place where the new song may begin.
struct Candidate {
  int LagMs = 0;     ///< after the stamp
  float Chance = 0;  ///< that the true start is within 0.1 s of it

  bool operator==(const Candidate&) const = default;
};
inline constexpr std::size_t kCandidates = 5;

/// Each lag's chance to be the start: what was expected of the station times what was heard (as a logarithm).
/// The sum is 1. Lags whose evidence is not finite have none; if that is all of them, what was expected
/// stays.
[[nodiscard]] LagRow Chances(const LagRow& expected, const LagRow& evidence);

/// The lag of least expected cost: half for missing the start by over 0.1 s, the rest growing with the error.
[[nodiscard]] Chosen LeastCost(const LagRow& chances);

/// The likeliest places, the likeliest first, at most kCandidates: peaks over 0.2 s from each other, with a chance of
/// one in a hundred at least.
[[nodiscard]] std::vector<Chosen> Likeliest(const LagRow& chances);

}  // namespace kestrune::cut
