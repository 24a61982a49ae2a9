#pragma once

#include <optional>

#include "base/DateValue.h"
#include "schedule/ScheduleEntry.h"

namespace kestrune::schedule {

/// The first moment after `now` at which an entry begins, whether or not it is enabled; nothing if its date
/// has passed.
[[nodiscard]] std::optional<base::DateValue> NextRun(const ScheduleEntry& entry, base::DateValue now);

}  // namespace kestrune::schedule
