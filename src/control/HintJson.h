#pragma once

#include <optional>
#include <vector>

#include "control/ReportJson.h"

namespace kestrune::control {

/// A line for each hint, the newest first, as people read it.
[[nodiscard]] std::string HintsText(const std::vector<HintReport>& hints);

// An array of objects. Moments are texts, "2026-11-21 18:00:00" in local time.

[[nodiscard]] Json ToJson(const std::vector<HintReport>& hints);
[[nodiscard]] Json ToJson(const HintReport& hint);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<std::vector<HintReport>> HintsFromJson(const Json& json);

}  // namespace kestrune::control
