#include "schedule/entries/NextRun.h"

#include "schedule/entries/CodedDay.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

/// The coded week begins on Sunday, Jan 1. A date in the week before or after it stands for the same weekday; one
/// farther off is never due.
std::optional<DateValue> NextOfWeek(DateValue start, DateValue now) {
  const std::int64_t days = start < CodedDay(1) ? 7 : start < CodedDay(8) ? 0 : -7;
  const DateValue moment = start.AddDays(days);
  if (moment < CodedDay(1) || moment >= CodedDay(8)) return std::nullopt;
  const DateValue sunday =
      DateValue::FromCivil(now.Year(), now.Month(), now.Day()).AddDays(1 - now.Weekday());
  const DateValue inThisWeek = sunday.AddSeconds(base::SecondsBetween(CodedDay(1), moment));
  return inThisWeek >= now ? inThisWeek : inThisWeek.AddDays(7);
}

/// The seconds of a daily entry's start do not count.
DateValue NextOfDay(DateValue start, DateValue now) {
  const DateValue today =
      DateValue::FromCivil(now.Year(), now.Month(), now.Day(), start.Hour(), start.Minute());
  return today >= now ? today : today.AddDays(1);
}

}  // namespace

std::optional<DateValue> NextStart(const ScheduleEntry& entry, DateValue now) {
  if (!entry.Enabled || entry.EndDate <= entry.StartDate) return std::nullopt;
  if (entry.StartDate < CodedDay(kEveryDayCode)) return NextOfWeek(entry.StartDate, now);
  if (entry.StartDate < CodedDay(kEveryDayCode + 1)) return NextOfDay(entry.StartDate, now);
  if (entry.StartDate < now) return std::nullopt;
  return entry.StartDate;
}

std::optional<NextRun> FindNextRun(const ScheduleEntries& entries, DateValue now) {
  std::optional<NextRun> next;
  std::int16_t number = 0;
  for (const ScheduleEntry& entry : entries) {
    ++number;
    const std::optional<DateValue> start = NextStart(entry, now);
    if (start && (!next || *start < next->Start)) next = NextRun{.Number = number, .Start = *start};
  }
  return next;
}

bool RunsWithin(const ScheduleEntries& entries, DateValue now, std::chrono::seconds time) {
  const std::optional<NextRun> next = FindNextRun(entries, now);
  return next && base::SecondsBetween(now, next->Start) <= time.count();
}

}  // namespace kestrune::schedule
