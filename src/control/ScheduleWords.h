#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "control/Reports.h"

namespace kestrune::control {

/// The words in which a schedule entry is told on the command line. Nothing if a text is none of them.

/// "Every Day", "Every Saturday" (both as a coded day of January 1967) or a date; case does not count.
[[nodiscard]] std::optional<base::DateValue> ReadOn(std::string_view text);
/// A time of day such as "8:00 PM" or "20:00", as minutes since midnight.
[[nodiscard]] std::optional<int> ReadAt(std::string_view text);
/// Hours, ":" and two digits of minutes, "0:01" to "47:59", as minutes.
[[nodiscard]] std::optional<int> ReadFor(std::string_view text);
/// An item of the scheduler's list of bit rates as that list has it; case does not count.
[[nodiscard]] std::optional<std::string> ReadBitRate(std::string_view text);

/// The entry's number and behind it the options with their values, all of them checked.
[[nodiscard]] ScheduleChange ReadScheduleChange(std::span<const std::string> words);

}  // namespace kestrune::control
