#include "schedule/entries/ConflictCheck.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "schedule/entries/DayFind.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

DateValue OnCodedDay(int dayOfJanuary, DateValue time) {
  return CodedDay(dayOfJanuary).AddHours(time.Hour()).AddMinutes(time.Minute());
}

/// A row's start as it is compared with another's: against something that recurs it is folded onto the same days.
/// Only a daily row at midnight is folded onto January 15; at any other time a daily row is folded onto a Sunday, and
/// the shifts by a day and by seven days find some of its overlaps from there, not all.
DateValue FoldedTo(DateValue anchor, DateValue date) {
  if (anchor == CodedDay(kEveryDayCode) && date != CodedDay(kEveryDayCode))
    return OnCodedDay(kEveryDayCode, date);
  if (anchor < CodedDay(kEveryDayCode + 1) && date > CodedDay(kEveryDayCode))
    return OnCodedDay(DayFind(base::FormatDate(date, "dddd")), date);
  return date;
}

bool RunsIntoItself(const SchedulerRow& row) {
  if (!row.Start.IsDaily()) return false;
  return fmt::format("{:02}{:02}", row.DurationHours, row.DurationMinutes) > "2359";
}

struct Range {
  DateValue Start;
  DateValue End;

  [[nodiscard]] Range Shifted(int days) const { return {Start.AddDays(days), End.AddDays(days)}; }
  [[nodiscard]] bool Meets(const Range& other) const {
    return CheckConflict(Start, End, other.Start, other.End);
  }
};

Range From(DateValue start, const SchedulerRow& row) {
  return {start, start.AddHours(row.DurationHours).AddMinutes(row.DurationMinutes)};
}

std::string OverlapsItself(std::size_t index) {
  return fmt::format(
      "Item {} runs daily, but is set to run longer than one day, thereby overlapping itself. Please correct "
      "before saving.",
      index + 1);
}

std::string AreInConflict(std::size_t one, std::size_t other) {
  return fmt::format("Item {} conflicts with item {}. Please correct before saving.",
                     std::min(one, other) + 1, std::max(one, other) + 1);
}

}  // namespace

bool CheckConflict(DateValue start1, DateValue end1, DateValue start2, DateValue end2) {
  return (start2 >= start1 && start2 < end1) || (end2 >= start1 && end2 < end1);
}

bool RowsConflict(const SchedulerRow& row, const SchedulerRow& other) {
  DateValue start1 = row.Start.Date();
  const DateValue start2 = FoldedTo(start1, other.Start.Date());
  start1 = FoldedTo(start2, start1);
  const Range one = From(start1, row);
  const Range two = From(start2, other);

  const auto oneShifted = [&](int days) {
    return one.Shifted(days).Meets(two) || one.Shifted(-days).Meets(two);
  };
  const auto twoShifted = [&](int days) {
    return one.Meets(two.Shifted(days)) || one.Meets(two.Shifted(-days));
  };
  if (one.Meets(two)) return true;
  if (row.Start.IsDaily() && oneShifted(1)) return true;
  if (other.Start.IsDaily() && twoShifted(1)) return true;
  if (one.Start < CodedDay(kEveryDayCode) && oneShifted(7)) return true;
  // The end of the first one decides about the second one's weeks.
  return one.End < CodedDay(kEveryDayCode) && twoShifted(7);
}

std::optional<std::string> WhatConflicts(const SchedulerRows& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!rows.at(i).Enabled) continue;
    if (RunsIntoItself(rows.at(i))) return OverlapsItself(i);
    for (std::size_t j = 0; j < rows.size(); ++j) {
      if (j == i || !rows.at(j).Enabled) continue;
      if (RowsConflict(rows.at(i), rows.at(j))) return AreInConflict(i, j);
    }
  }
  return std::nullopt;
}

std::optional<std::string> WhatConflictsWith(const SchedulerRows& rows, std::size_t index) {
  const SchedulerRow& row = rows.at(index);
  if (RunsIntoItself(row)) return OverlapsItself(index);
  for (std::size_t other = 0; other < rows.size(); ++other) {
    if (other == index || !rows.at(other).Enabled) continue;
    if (RowsConflict(row, rows.at(other)) || RowsConflict(rows.at(other), row))
      return AreInConflict(index, other);
  }
  return std::nullopt;
}

}  // namespace kestrune::schedule
