#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "history/Report.h"
#include "platform/HistoryRows.h"

namespace kestrune::history {

/// What to do about what a report tells: a sentence each, each once. Empty if there is nothing to do.
[[nodiscard]] std::vector<std::string> AdviceFor(const Report& report);

/// "radio", "sound", "disk", "sleep", "clock", "program".
[[nodiscard]] std::string_view KindText(platform::IncidentKind kind);

/// Such as "kept", "too short" or "not on the Grab lists".
[[nodiscard]] std::string_view FateText(platform::SongFate fate);

}  // namespace kestrune::history
