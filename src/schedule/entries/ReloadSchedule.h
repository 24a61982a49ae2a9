#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "schedule/entries/ScheduleEntry.h"

namespace kestrune::schedule {

/// Returns the stored text of a key of the unit's settings, or the default if the key is absent.
using StoredText = std::function<std::string(std::string_view key, std::string_view defaultText)>;

/// Reads all ten stored entries into the table. The keys end in the entry's number, `ScheduleEnabled1` to
/// `ScheduleEnabled10`. An entry is taken as it is stored; a text that is not a value of its field leaves the
/// field as it was, and a duration that cannot be read leaves `EndDate`. An entry that was never saved begins at
/// `now`.
void ReloadSchedule(const StoredText& stored, base::DateValue now, ScheduleEntries& entries);

}  // namespace kestrune::schedule
