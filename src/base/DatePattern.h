#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/DateValue.h"

namespace kestrune::base {

/// Prints a date by the product's patterns, letters without regard to case: "d" "dd" day, "ddd" "dddd"
/// weekday name, "m" "mm" month, "mmm" "mmmm" month name, "yy" "yyyy" year, "h" "hh" hour, "n" "nn" minute,
/// "s" "ss" second, "AM/PM" half of the day (hours then run from 12 to 11), in small letters if the pattern
/// has it so. Everything else is printed unchanged. Names are English: dates in the settings must read the
/// same on every machine.
[[nodiscard]] std::string FormatDate(DateValue date, std::string_view pattern);

/// Reads "mmm d, yyyy", "mmmm d, yyyy" and "yyyy-mm-dd", each alone or followed by a blank and "h:nn",
/// "h:nn:ss", with or without AM or PM; a time alone means day 0. Case and blanks around the text do not
/// matter. Nothing if the text is no date, or one that the calendar does not have.
[[nodiscard]] std::optional<DateValue> ParseDate(std::string_view text);

}  // namespace kestrune::base
