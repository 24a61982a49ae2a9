#pragma once

#include <optional>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/Reports.h"

namespace kestrune::control {

/// Members keep the order in which they are listed.
using Json = nlohmann::ordered_json;

[[nodiscard]] Json ToJson(const StatusReport& report);
[[nodiscard]] Json ToJson(const std::vector<ChannelReport>& channels);
[[nodiscard]] Json ToJson(const UpdateReport& report);
[[nodiscard]] Json ToJson(const std::vector<ScheduleReport>& entries);
[[nodiscard]] Json ToJson(const ListsReport& lists);

/// Nothing if a member is missing or of another type; unknown members are ignored.
[[nodiscard]] std::optional<StatusReport> StatusFromJson(const Json& json);
[[nodiscard]] std::optional<std::vector<ChannelReport>> ChannelsFromJson(const Json& json);
[[nodiscard]] std::optional<UpdateReport> UpdateFromJson(const Json& json);
[[nodiscard]] std::optional<std::vector<ScheduleReport>> ScheduleFromJson(const Json& json);
[[nodiscard]] std::optional<ListsReport> ListsFromJson(const Json& json);

}  // namespace kestrune::control
