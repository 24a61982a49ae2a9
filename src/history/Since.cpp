#include "history/Since.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Text.h"

namespace kestrune::history {
namespace {

using base::DateValue;

constexpr std::int64_t kSecondsADay = 24LL * 60 * 60;
constexpr int kEvening = 18;
constexpr int kLargestCount = 100'000;

constexpr std::array<std::string_view, 7> kWeekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                    "thursday", "friday", "saturday"};

struct Unit {
  std::string_view Name;
  std::int64_t Seconds;
};
constexpr std::array kUnits{
    Unit{"m", 60},
    Unit{"min", 60},
    Unit{"minute", 60},
    Unit{"minutes", 60},
    Unit{"h", 3600},
    Unit{"hour", 3600},
    Unit{"hours", 3600},
    Unit{"d", kSecondsADay},
    Unit{"day", kSecondsADay},
    Unit{"days", kSecondsADay},
    Unit{"w", 7 * kSecondsADay},
    Unit{"week", 7 * kSecondsADay},
    Unit{"weeks", 7 * kSecondsADay},
};

DateValue Midnight(DateValue moment) {
  return DateValue::FromCivil(moment.Year(), moment.Month(), moment.Day());
}

/// Seconds since midnight.
std::optional<std::int64_t> ReadClock(std::string_view text) {
  if (text.find('-') != std::string_view::npos || text.find(',') != std::string_view::npos)
    return std::nullopt;
  const std::optional<DateValue> time = base::ParseDate(text);
  if (!time || time->Seconds() < 0 || time->Seconds() >= kSecondsADay) return std::nullopt;
  return time->Seconds();
}

/// The last time that the clock showed it.
std::optional<DateValue> ReadTimeAlone(std::string_view text, DateValue now) {
  const auto clock = ReadClock(text);
  if (!clock) return std::nullopt;
  const DateValue today = Midnight(now).AddSeconds(*clock);
  return today <= now ? today : today.AddDays(-1);
}

/// How many days ago that day was; nothing if it is none.
std::optional<int> ReadDay(std::string_view word, DateValue now) {
  if (word == "today") return 0;
  if (word == "yesterday") return 1;
  for (std::size_t i = 0; i < kWeekdays.size(); ++i) {
    const std::string_view name = kWeekdays.at(i);
    if (word != name && word != name.substr(0, 3)) continue;
    return (now.Weekday() - static_cast<int>(i + 1) + 7) % 7;
  }
  return std::nullopt;
}

std::optional<DateValue> ReadNamedDay(std::string_view text, DateValue now) {
  const std::size_t blank = text.find(' ');
  const std::string_view word = text.substr(0, blank);
  const auto ago = ReadDay(word, now);
  if (!ago) return std::nullopt;
  std::int64_t clock = 0;
  if (blank != std::string_view::npos) {
    const auto read = ReadClock(text.substr(blank));
    if (!read) return std::nullopt;
    clock = *read;
  }
  const DateValue moment = Midnight(now).AddDays(-*ago).AddSeconds(clock);
  // A weekday is one that has been: the same hour of today, if it is still to come, was a week ago.
  const bool weekday = word != "today" && word != "yesterday";
  return weekday && moment > now ? moment.AddDays(-7) : moment;
}

std::optional<DateValue> ReadAgo(std::string_view text, DateValue now) {
  int count = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || count < 1 || count > kLargestCount) return std::nullopt;
  std::string_view unit = base::Trim({stop, static_cast<std::size_t>(end - stop)});
  if (unit.ends_with(" ago")) unit = base::Trim(unit.substr(0, unit.size() - 4));
  const auto* found =
      std::find_if(kUnits.begin(), kUnits.end(), [unit](const Unit& one) { return one.Name == unit; });
  if (found == kUnits.end()) return std::nullopt;
  return now.AddSeconds(-count * found->Seconds);
}

std::optional<DateValue> ReadMoment(std::string_view text, DateValue now) {
  if (text == "last night") return LastNight(now);
  if (const auto moment = ReadNamedDay(text, now)) return moment;
  if (const auto moment = ReadAgo(text, now)) return moment;
  if (const auto moment = ReadTimeAlone(text, now)) return moment;
  return base::ParseDate(text);
}

}  // namespace

DateValue LastNight(DateValue now) {
  return Midnight(now).AddDays(-1).AddHours(kEvening);
}

SinceRead ReadSince(std::string_view text, DateValue now) {
  const std::string words = base::ToLower(base::Trim(text));
  const std::optional<DateValue> moment = ReadMoment(words, now);
  if (!moment) return {.Since = {}, .Error = fmt::format("that is no moment; expected {}", kSinceAllowed)};
  if (*moment > now) {
    return {.Since = {},
            .Error = fmt::format("{} is still to come", base::FormatDate(*moment, "yyyy-mm-dd hh:nn"))};
  }
  return {.Since = *moment, .Error = {}};
}

bool IsSince(std::string_view text) {
  // At the end of all days everything lies in the past.
  return ReadSince(text, DateValue::FromCivil(9999, 12, 31, 23, 59, 59)).Error.empty();
}

}  // namespace kestrune::history
