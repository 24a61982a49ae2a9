#pragma once

#include <optional>
#include <vector>

#include "control/ReportJson.h"
#include "history/Report.h"
#include "platform/HistoryRows.h"
#include "platform/HistoryStore.h"

namespace kestrune::control {

// Moments are texts, "2026-11-21 18:00:00" in local time; one that there is not is empty.

[[nodiscard]] Json ToJson(const history::Report& report);
[[nodiscard]] Json ToJson(const std::vector<platform::HistoryPlay>& plays);
/// An object with one member, `artists` or `songs`.
[[nodiscard]] Json ToJson(const std::vector<platform::PlayCount>& counts, platform::PlayedAs as);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<history::Report> NightFromJson(const Json& json);
[[nodiscard]] std::optional<std::vector<platform::HistoryPlay>> PlaysFromJson(const Json& json);
struct MostPlayed {
  platform::PlayedAs As = platform::PlayedAs::Artist;
  std::vector<platform::PlayCount> Counts;
};
[[nodiscard]] std::optional<MostPlayed> MostPlayedFromJson(const Json& json);

}  // namespace kestrune::control
