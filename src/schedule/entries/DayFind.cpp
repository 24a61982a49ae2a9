#include "schedule/entries/DayFind.h"

#include "base/DatePattern.h"
#include "base/Text.h"
#include "schedule/entries/CodedDay.h"

namespace kestrune::schedule {

std::int16_t DayFind(std::string_view dayName) {
  const std::string_view name = base::Trim(dayName);
  for (std::int16_t day = 1; day <= 7; ++day)
    if (base::FormatDate(CodedDay(day), "dddd") == name) return day;
  return 1;
}

}  // namespace kestrune::schedule
