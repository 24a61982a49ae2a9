#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/HistoryRows.h"

namespace kestrune::platform {

/// Candidates as one text of a row, "600:431 640:210": lag and chance in thousandths, the first kMostCandidates of them.
[[nodiscard]] std::string CandidateText(const std::vector<CutCandidate>& candidates);

/// What of a text can be read, up to the first that cannot.
[[nodiscard]] std::vector<CutCandidate> ReadCandidates(std::string_view text);

/// A chance in whole thousandths, 0 to 1000.
[[nodiscard]] int Thousandths(double chance);

}  // namespace kestrune::platform
