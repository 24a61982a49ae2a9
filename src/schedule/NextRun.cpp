#include "schedule/NextRun.h"

#include "schedule/SchedulerMoment.h"

namespace kestrune::schedule {

using base::DateValue;

std::optional<DateValue> NextRun(const ScheduleEntry& entry, DateValue now) {
  constexpr int kDaysAWeek = 7;
  const DateValue start = entry.StartDate;
  if (start >= CodedDay(16)) return start > now ? std::optional(start) : std::nullopt;
  const bool daily = start >= CodedDay(15);
  DateValue next =
      DateValue::FromCivil(now.Year(), now.Month(), now.Day(), start.Hour(), start.Minute(), start.Second());
  if (!daily) next = next.AddDays((start.Weekday() - now.Weekday() + kDaysAWeek) % kDaysAWeek);
  return next > now ? next : next.AddDays(daily ? 1 : kDaysAWeek);
}

}  // namespace kestrune::schedule
