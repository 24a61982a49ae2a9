#pragma once

#include <optional>
#include <vector>

#include "control/ReportJson.h"
#include "platform/HistoryRows.h"

namespace kestrune::control {

/// The cuts of songs; those without one are left out.
[[nodiscard]] std::vector<CutReport> CutsOf(const std::vector<platform::HistorySong>& songs);

// Objects with one member, `cuts` or `stations`. Moments are texts, "2026-11-21 18:00:00" in local time.

[[nodiscard]] Json ToJson(const std::vector<CutReport>& cuts);
[[nodiscard]] Json ToJson(const std::vector<StationLagReport>& stations);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<std::vector<CutReport>> CutsFromJson(const Json& json);
[[nodiscard]] std::optional<std::vector<StationLagReport>> StationLagsFromJson(const Json& json);

}  // namespace kestrune::control
