#include "schedule/entries/SchedulerCalculations.h"

#include <algorithm>

namespace kestrune::schedule {
namespace {

using base::DateValue;

constexpr std::int64_t kMinutesADay = 24 * 60;
constexpr std::int64_t kLongestMinutes = 2 * kMinutesADay - 1;

/// An end up to here is one of a daily row.
DateValue LastDailyEnd() {
  return CodedDay(20);
}

std::int64_t MinutesBetween(DateValue from, DateValue to) {
  return base::SecondsBetween(from, to) / 60;
}

/// The minutes, plus as many whole days as it takes to reach the least.
std::int64_t RolledOn(std::int64_t minutes, std::int64_t least) {
  if (minutes >= least) return minutes;
  return minutes + (least - minutes + kMinutesADay - 1) / kMinutesADay * kMinutesADay;
}

/// The day of one moment with the time of another.
DateValue OnDayOf(DateValue day, DateValue time) {
  return DateValue::FromCivil(day.Year(), day.Month(), day.Day(), time.Hour(), time.Minute());
}

}  // namespace

SchedulerMoment ShownEnd(DateValue end) {
  const TimeOfDay time = TimeOfDay::Of(end);
  if (end > LastDailyEnd()) return {.Caption = DateCaption(end), .Time = time};
  if (end >= CodedDay(kEveryDayCode)) return {.Caption = std::string(kEveryDay), .Time = time};
  if (end >= CodedDay(8)) end = end.AddDays(-7);
  return {.Caption = CodedCaption(end), .Time = time};
}

SchedulerMoment EndTimeOf(const SchedulerRow& row) {
  return ShownEnd(row.Start.Date().AddHours(row.DurationHours).AddMinutes(row.DurationMinutes));
}

int DurationOf(const SchedulerRow& row) {
  const DateValue start = row.Start.Date();
  DateValue end = row.End.Date();
  // One of the two recurs and the other does not: only the time of day can be meant.
  if (start < CodedDay(kEveryDayCode + 1) && end > LastDailyEnd()) end = OnDayOf(start, end);
  if (end < CodedDay(kEveryDayCode + 1) && start > LastDailyEnd()) end = OnDayOf(start, end);

  if (start < CodedDay(kEveryDayCode) && end < start) end = end.AddDays(7);
  std::int64_t minutes = MinutesBetween(start, end);
  if (start >= CodedDay(kEveryDayCode) && start <= CodedDay(kEveryDayCode + 1))
    minutes = RolledOn(minutes, 0);
  return static_cast<int>(RolledOn(std::min(minutes, kLongestMinutes), 1));
}

}  // namespace kestrune::schedule
