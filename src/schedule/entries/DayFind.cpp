#include "schedule/entries/DayFind.h"

#include "base/DatePattern.h"
#include "base/DateValue.h"
#include "base/Text.h"

namespace kestrune::schedule {

std::int16_t DayFind(std::string_view dayName) {
  const std::string_view name = base::Trim(dayName);
  // January 1, 1967 was a Sunday.
  for (std::int16_t day = 1; day <= 7; ++day)
    if (base::FormatDate(base::DateValue::FromCivil(1967, 1, day), "dddd") == name) return day;
  return 1;
}

}  // namespace kestrune::schedule
