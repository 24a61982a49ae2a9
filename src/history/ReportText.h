#pragma once

#include <cstdint>
#include <string>

#include "history/Report.h"
#include "platform/HistoryRows.h"

namespace kestrune::history {

/// The report as plain text for a terminal or a mail: problems first, then the events with their songs, then what else
/// was recorded, then what to do. Lines end with "\n". Control characters in a stranger's text have become blanks.
[[nodiscard]] std::string ReportText(const Report& report);

/// 75 seconds are "1:15", 3675 are "1:01:15".
[[nodiscard]] std::string LengthText(std::int64_t seconds);

/// How long it lasted, as LengthText has it; empty while it lasts, and for a step of the clock, which takes no time.
[[nodiscard]] std::string IncidentLength(const platform::HistoryIncident& incident);

}  // namespace kestrune::history
