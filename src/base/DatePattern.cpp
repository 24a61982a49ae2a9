#include "base/DatePattern.h"

#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "base/Text.h"

namespace kestrune::base {

namespace {

constexpr std::array<std::string_view, 12> kMonthNames = {"January",   "February", "March",    "April",
                                                          "May",       "June",     "July",     "August",
                                                          "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                           "Thursday", "Friday", "Saturday"};
constexpr std::size_t kShortNameLength = 3;
constexpr std::string_view kHalfOfDay = "AM/PM";

constexpr char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// How many of the characters at the beginning are the same letter, case aside.
std::size_t RunLength(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && Lower(text[length]) == Lower(text.front())) ++length;
  return length;
}

std::string Number(int value, std::size_t width) {
  return fmt::format("{:0{}}", value, width);
}

/// The text of a field that the pattern names with `length` equal letters, and how many of them it took; none
/// if the letter names no field.
struct Field {
  std::string Text;
  std::size_t Length = 0;
};

Field DateField(DateValue date, char letter, std::size_t length, bool halfDays) {
  const auto number = [length](int value) {
    const std::size_t width = length >= 2 ? 2 : 1;
    return Field{Number(value, width), width};
  };
  switch (letter) {
    case 'd': {
      const std::string_view name = kWeekdayNames.at(static_cast<std::size_t>(date.Weekday() - 1));
      if (length >= 4) return {std::string(name), 4};
      if (length == 3) return {std::string(name.substr(0, kShortNameLength)), 3};
      return number(date.Day());
    }
    case 'm': {
      const std::string_view name = kMonthNames.at(static_cast<std::size_t>(date.Month() - 1));
      if (length >= 4) return {std::string(name), 4};
      if (length == 3) return {std::string(name.substr(0, kShortNameLength)), 3};
      return number(date.Month());
    }
    case 'y':
      if (length >= 4) return {Number(date.Year(), 4), 4};
      if (length >= 2) return {Number(date.Year() % 100, 2), 2};
      return {};
    case 'h':
      return number(halfDays ? (date.Hour() + 11) % 12 + 1 : date.Hour());
    case 'n':
      return number(date.Minute());
    case 's':
      return number(date.Second());
    default:
      return {};
  }
}

/// Takes a date's text apart from the left. What does not fit is left in place.
class DateReader {
 public:
  explicit DateReader(std::string_view text) : rest_(Trim(text)) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  bool Literal(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool Blanks() {
    if (!Literal(' ')) return false;
    while (Literal(' ')) {
    }
    return true;
  }

  /// A number of as many digits as there stand, which must be within the bounds.
  std::optional<int> Digits(std::size_t fewest, std::size_t most) {
    std::size_t length = 0;
    int value = 0;
    while (length < rest_.size() && length <= most && rest_[length] >= '0' && rest_[length] <= '9') {
      value = value * 10 + (rest_[length] - '0');
      ++length;
    }
    if (length < fewest || length > most) return std::nullopt;
    rest_.remove_prefix(length);
    return value;
  }

  /// The number of the month whose name, whole or short, stands here as a word.
  std::optional<int> MonthName() {
    std::size_t length = 0;
    while (length < rest_.size() && Lower(rest_[length]) >= 'a' && Lower(rest_[length]) <= 'z') ++length;
    const std::string_view word = rest_.substr(0, length);
    for (std::size_t month = 0; month < kMonthNames.size(); ++month) {
      if (EqualsNoCase(word, kMonthNames.at(month)) ||
          EqualsNoCase(word, kMonthNames.at(month).substr(0, kShortNameLength))) {
        rest_.remove_prefix(length);
        return static_cast<int>(month) + 1;
      }
    }
    return std::nullopt;
  }

  /// 'a' or 'p' if AM or PM stands here.
  std::optional<char> Half() {
    if (rest_.size() < 2 || Lower(rest_[1]) != 'm') return std::nullopt;
    const char half = Lower(rest_.front());
    if (half != 'a' && half != 'p') return std::nullopt;
    rest_.remove_prefix(2);
    return half;
  }

 private:
  std::string_view rest_;
};

std::optional<DateValue> Checked(int year, int month, int day) {
  if (year < 100 || month < 1 || month > 12 || day < 1) return std::nullopt;
  const DateValue date = DateValue::FromCivil(year, month, day);
  if (date.Month() != month) return std::nullopt;
  return date;
}

std::optional<DateValue> ReadNamedDate(DateReader& reader) {
  const auto month = reader.MonthName();
  if (!month || !reader.Blanks()) return std::nullopt;
  const auto day = reader.Digits(1, 2);
  if (!day || !reader.Literal(',') || !reader.Blanks()) return std::nullopt;
  const auto year = reader.Digits(4, 4);
  if (!year) return std::nullopt;
  return Checked(*year, *month, *day);
}

std::optional<DateValue> ReadNumericDate(DateReader& reader) {
  const auto year = reader.Digits(4, 4);
  if (!year || !reader.Literal('-')) return std::nullopt;
  const auto month = reader.Digits(2, 2);
  if (!month || !reader.Literal('-')) return std::nullopt;
  const auto day = reader.Digits(2, 2);
  if (!day) return std::nullopt;
  return Checked(*year, *month, *day);
}

/// Seconds since midnight.
std::optional<int> ReadTime(DateReader& reader) {
  auto hour = reader.Digits(1, 2);
  if (!hour || !reader.Literal(':')) return std::nullopt;
  const auto minute = reader.Digits(2, 2);
  if (!minute || *minute > 59) return std::nullopt;
  int second = 0;
  if (reader.Literal(':')) {
    const auto digits = reader.Digits(2, 2);
    if (!digits || *digits > 59) return std::nullopt;
    second = *digits;
  }
  reader.Blanks();
  if (const auto half = reader.Half()) {
    if (*hour < 1 || *hour > 12) return std::nullopt;
    hour = *hour % 12 + (*half == 'p' ? 12 : 0);
  }
  if (*hour > 23) return std::nullopt;
  return *hour * 3600 + *minute * 60 + second;
}

}  // namespace

std::string FormatDate(DateValue date, std::string_view pattern) {
  const bool halfDays = ContainsNoCase(pattern, kHalfOfDay);
  std::string text;
  while (!pattern.empty()) {
    const std::string_view half = pattern.substr(0, kHalfOfDay.size());
    if (EqualsNoCase(half, kHalfOfDay)) {
      const bool small = half.front() == 'a';
      text += date.Hour() < 12 ? (small ? "am" : "AM") : (small ? "pm" : "PM");
      pattern.remove_prefix(kHalfOfDay.size());
      continue;
    }
    const Field field = DateField(date, Lower(pattern.front()), RunLength(pattern), halfDays);
    if (field.Length == 0) {
      text += pattern.front();
      pattern.remove_prefix(1);
      continue;
    }
    text += field.Text;
    pattern.remove_prefix(field.Length);
  }
  return text;
}

std::optional<DateValue> ParseDate(std::string_view text) {
  for (const auto readDate : {ReadNamedDate, ReadNumericDate}) {
    DateReader reader(text);
    const auto date = readDate(reader);
    if (!date) continue;
    if (reader.AtEnd()) return date;
    if (!reader.Blanks()) return std::nullopt;
    const auto time = ReadTime(reader);
    if (!time || !reader.AtEnd()) return std::nullopt;
    return date->AddSeconds(*time);
  }
  DateReader reader(text);
  const auto time = ReadTime(reader);
  if (!time || !reader.AtEnd()) return std::nullopt;
  return DateValue::FromSeconds(*time);
}

}  // namespace kestrune::base
