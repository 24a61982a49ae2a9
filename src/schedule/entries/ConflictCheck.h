#pragma once

#include <optional>
#include <string>

#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// Whether the second range starts or ends within the first one, its start counted in and its end not. One
/// that encloses the first does neither: whoever asks has to ask both ways round. As an end can equal the
/// other's start, ranges that touch are in conflict.
[[nodiscard]] bool CheckConflict(base::DateValue start1, base::DateValue end1, base::DateValue start2,
                                 base::DateValue end2);

/// Whether `row` finds `other` in its way, weeks and days folded onto each other. To be asked both ways
/// round, as above.
[[nodiscard]] bool RowsConflict(const SchedulerRow& row, const SchedulerRow& other);

/// The text for the user about the first enabled row that overlaps itself or another enabled one; nothing if
/// the rows can be saved.
[[nodiscard]] std::optional<std::string> WhatConflicts(const SchedulerRows& rows);

}  // namespace kestrune::schedule
