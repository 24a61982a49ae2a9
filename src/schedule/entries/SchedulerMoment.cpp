#include "schedule/entries/SchedulerMoment.h"

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "schedule/entries/DayFind.h"

namespace kestrune::schedule {

using base::DateValue;

std::string DateCaption(DateValue date) {
  return base::FormatDate(date, "mmm d, yyyy");
}

std::string CodedCaption(DateValue date) {
  if (base::FormatDate(date, "m d, yyyy") == "1 15, 1967") return std::string(kEveryDay);
  return std::string(kEvery) + base::FormatDate(date, "dddd");
}

std::string StartCaption(DateValue start) {
  const bool coded = start >= CodedDay(1) && start < CodedDay(kEveryDayCode + 1);
  return coded ? CodedCaption(start) : DateCaption(start);
}

TimeOfDay TimeOfDay::Of(DateValue date) {
  const int hour = date.Hour();
  return {.Hour = (hour + 11) % 12 + 1, .Minute = date.Minute(), .PM = hour > 11};
}

DateValue SchedulerMoment::Date() const {
  return base::ParseDate(StoredText()).value_or(DateValue());
}

std::string SchedulerMoment::StoredDate() const {
  if (IsDaily()) return "Jan 15, 1967";
  if (Recurs()) return fmt::format("Jan {}, 1967", DayFind(std::string_view(Caption).substr(kEvery.size())));
  return Caption;
}

std::string SchedulerMoment::StoredText() const {
  return fmt::format("{} {}:{:02} {}", StoredDate(), Time.Hour, Time.Minute, Time.PM ? "PM" : "AM");
}

}  // namespace kestrune::schedule
