#pragma once

#include "base/DateValue.h"

namespace kestrune::base {

/// Whether two moments are of one day of the calendar.
[[nodiscard]] inline bool SameDay(DateValue one, DateValue other) {
  return one.Year() == other.Year() && one.Month() == other.Month() && one.Day() == other.Day();
}

}  // namespace kestrune::base
