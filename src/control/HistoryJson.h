#pragma once

#include <optional>
#include <vector>

#include "control/ReportJson.h"
#include "history/Report.h"
#include "platform/HistoryRows.h"

namespace kestrune::control {

// Moments are texts, "2026-11-21 18:00:00" in local time; one that there is not is empty.

[[nodiscard]] Json ToJson(const history::Report& report);
[[nodiscard]] Json ToJson(const std::vector<platform::HistoryPlay>& plays);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<history::Report> NightFromJson(const Json& json);
[[nodiscard]] std::optional<std::vector<platform::HistoryPlay>> PlaysFromJson(const Json& json);

}  // namespace kestrune::control
