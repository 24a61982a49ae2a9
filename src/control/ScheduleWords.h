#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "control/Reports.h"

namespace kestrune::control {

// The words for a schedule entry on the command line. Each function returns nothing if the text is not one of them.

/// "Every Day", "Every Saturday" (both as a coded day of January 1967) or a date; case does not count.
[[nodiscard]] std::optional<base::DateValue> ReadOn(std::string_view text);
/// A time of day such as "8:00 PM" or "20:00", as minutes since midnight.
[[nodiscard]] std::optional<int> ReadAt(std::string_view text);
/// Hours, ":" and two digits of minutes, "0:01" to "47:59", as minutes.
[[nodiscard]] std::optional<int> ReadFor(std::string_view text);
/// An item of the scheduler's list of bit rates as that list has it; case does not count.
[[nodiscard]] std::optional<std::string> ReadBitRate(std::string_view text);

/// Reads the entry's number and the options with their values, which have been checked.
[[nodiscard]] ScheduleChange ReadScheduleChange(std::span<const std::string> words);

}  // namespace kestrune::control
