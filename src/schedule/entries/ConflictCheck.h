#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// Whether the second range starts or ends within the first one, whose start is included and whose end is not. A
/// second range that encloses the first one does neither, so the caller has to ask both ways round. Ranges that
/// touch are in conflict, since an end may equal the other's start.
[[nodiscard]] bool CheckConflict(base::DateValue start1, base::DateValue end1, base::DateValue start2,
                                 base::DateValue end2);

/// Whether `row` conflicts with `other`, weeks and days folded onto each other. To be asked both ways round, as
/// above. Not every overlap is found: a daily row may pass against a row on a weekday or a date.
[[nodiscard]] bool RowsConflict(const SchedulerRow& row, const SchedulerRow& other);

/// The message about the first enabled row that overlaps itself or another enabled one; nothing if the rows can be
/// saved.
[[nodiscard]] std::optional<std::string> WhatConflicts(const SchedulerRows& rows);

/// The message if this row (0 to 9), enabled or not, overlaps itself or an enabled one. Other pairs are not looked
/// at.
[[nodiscard]] std::optional<std::string> WhatConflictsWith(const SchedulerRows& rows, std::size_t index);

}  // namespace kestrune::schedule
