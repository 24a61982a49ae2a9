#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::schedule {

/// How long an entry lasts, as it is stored: whole hours and minutes, neither limited to a range.
struct Duration {
  int Hours = 0;
  int Minutes = 0;

  [[nodiscard]] std::int64_t InMinutes() const { return std::int64_t{Hours} * 60 + Minutes; }
  bool operator==(const Duration&) const = default;
};

/// The last minute of an entry counts whole: its end lies so many seconds after its start and duration.
inline constexpr std::int64_t kRestOfTheLastMinute = 59;

/// Hours, ":" and minutes, each rounded to a 16-bit number; nothing if the text is not of that form.
[[nodiscard]] std::optional<Duration> ParseDuration(std::string_view text);

/// Such as "1:00"; the minutes must not be negative.
[[nodiscard]] std::string DurationText(const Duration& duration);

}  // namespace kestrune::schedule
