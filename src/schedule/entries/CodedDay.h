#pragma once

#include "base/DateValue.h"

namespace kestrune::schedule {

/// A schedule date in January 1967 is a code: days 1 to 7, a Sunday to a Saturday, stand for every such weekday,
/// and day 15 stands for every day. Returns that day at midnight.
[[nodiscard]] base::DateValue CodedDay(int dayOfJanuary);

inline constexpr int kEveryDayCode = 15;

}  // namespace kestrune::schedule
