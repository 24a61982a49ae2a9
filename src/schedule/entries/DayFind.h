#pragma once

#include <cstdint>
#include <string_view>

namespace kestrune::schedule {

/// The number of a weekday's name, 1 for Sunday to 7 for Saturday; blanks around it do not count, case does.
/// An unknown name counts as Sunday.
[[nodiscard]] std::int16_t DayFind(std::string_view dayName);

}  // namespace kestrune::schedule
