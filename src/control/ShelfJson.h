#pragma once

#include <optional>
#include <vector>

#include "control/ReportJson.h"
#include "shelf/ShelvedSong.h"

namespace kestrune::control {

/// The songs of the shelf as they are numbered there; they come newest first.
[[nodiscard]] std::vector<ShelvedReport> ShelfOf(const std::vector<shelf::ShelvedSong>& songs);

/// An array. Moments are texts, "2026-11-21 18:00:00" in local time.
[[nodiscard]] Json ToJson(const std::vector<ShelvedReport>& songs);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<std::vector<ShelvedReport>> ShelfFromJson(const Json& json);

}  // namespace kestrune::control
