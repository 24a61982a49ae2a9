#pragma once

#include <string>
#include <string_view>

#include "base/DateValue.h"

namespace kestrune::history {

/// A moment in the past, in a person's words; or why the words name none.
struct SinceRead {
  base::DateValue Since;  ///< only if there is no error
  std::string Error;      ///< one line, empty if all is well
};

/// What Since understands, for messages: completes "expected ...".
inline constexpr std::string_view kSinceAllowed =
    R"(a moment such as "yesterday 18:00", "2026-11-21 18:00", "monday", "last night" or "3h")";

/// Case and blanks around it do not matter. Understood are
/// - a date as base::ParseDate reads it, with or without a time;
/// - "today", "yesterday" and the days of the week, with or without a time: midnight, of that day if it is today;
/// - a time alone: the last time that the clock showed it;
/// - "last night": 18:00 of the day before;
/// - a number of minutes, hours, days or weeks: "90m", "3h", "2 days", "1 week ago".
/// A moment after `now` is an error.
[[nodiscard]] SinceRead ReadSince(std::string_view text, base::DateValue now);

/// Whether the words name a moment at all, whenever that is.
[[nodiscard]] bool IsSince(std::string_view text);

/// 18:00 of the day before.
[[nodiscard]] base::DateValue LastNight(base::DateValue now);

}  // namespace kestrune::history
