#include "schedule/entries/DueSearch.h"

#include "base/DatePattern.h"
#include "schedule/entries/CodedDay.h"
#include "schedule/entries/DayFind.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

DateValue AtTime(DateValue day, int hour, int minute, int second) {
  return DateValue::FromCivil(day.Year(), day.Month(), day.Day(), hour, minute, second);
}

}  // namespace

std::optional<DueEntry> DueSearch::Find() const {
  std::int16_t number = 0;
  for (const ScheduleEntry& entry : entries_) {
    ++number;
    if (!entry.Enabled) continue;
    if (const auto end = EndIfDue(entry)) return DueEntry{number, *end};
  }
  return std::nullopt;
}

std::optional<DateValue> DueSearch::EndIfDue(const ScheduleEntry& entry) const {
  if (entry.StartDate < CodedDay(kEveryDayCode)) return WeeklyEnd(entry.StartDate, entry.EndDate);
  if (entry.StartDate < CodedDay(kEveryDayCode + 1)) return DailyEnd(entry.StartDate, entry.EndDate);
  return SingleEnd(entry.StartDate, entry.EndDate);
}

std::optional<DateValue> DueSearch::SingleEnd(DateValue start, DateValue end) const {
  if (now_() >= start && now_() < end) return end;
  return std::nullopt;
}

std::optional<DateValue> DueSearch::WeeklyEnd(DateValue start, DateValue end) const {
  // The code week folds back to Sunday at each Saturday's end, while an entry's end runs on; the last shift
  // is the one that carries a Saturday night over midnight. If more than one test holds, the last one decides.
  const DateValue present = NowInCodeWeek();
  std::optional<DateValue> until;
  for (const int shift : {0, 7, -7}) {
    const DateValue shiftedEnd = end.AddDays(shift);
    if (present < start.AddDays(shift) || present >= shiftedEnd) continue;
    until = now_().AddSeconds(base::SecondsBetween(present, shiftedEnd));
  }
  return until;
}

std::optional<DateValue> DueSearch::DailyEnd(DateValue start, DateValue end) const {
  const std::int64_t length = base::SecondsBetween(start, end);
  const DateValue todaysStart = AtTime(now_(), start.Hour(), start.Minute(), 0);
  const DateValue todaysEnd = todaysStart.AddSeconds(length);

  std::optional<DateValue> until;
  // Today's bound alone includes its end.
  if (now_() >= todaysStart && now_() <= todaysEnd) until = todaysEnd;
  for (const int shift : {1, -1}) {
    const DateValue shiftedEnd = todaysEnd.AddDays(shift);
    if (now_() >= todaysStart.AddDays(shift) && now_() < shiftedEnd) until = shiftedEnd;
  }
  return until;
}

DateValue DueSearch::NowInCodeWeek() const {
  const DateValue day = CodedDay(DayFind(base::FormatDate(now_(), "dddd")));
  const DateValue time = now_();
  return AtTime(day, time.Hour(), time.Minute(), time.Second());
}

}  // namespace kestrune::schedule
