#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

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

/// Each lag's chance to be the start: what was expected of the station times what was heard (as a logarithm).
/// The sum is 1. Lags whose evidence is not finite have none; if that is all of them, what was expected
/// stays.
[[nodiscard]] LagRow Chances(const LagRow& expected, const LagRow& evidence);

/// The lag of least expected cost: half for missing the start by over 0.1 s, the rest growing with the error.
[[nodiscard]] Chosen LeastCost(const LagRow& chances);

}  // namespace kestrune::cut
