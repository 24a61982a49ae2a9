#pragma once

#include <chrono>
#include <compare>
#include <cstdint>

namespace kestrune::base {

/// A moment of local civil time, to the whole second. The product counts days from December 30, 1899,
/// 0:00:00; so does this type, with the seconds as a whole number so that comparison is exact. It knows no
/// time zone and no daylight saving: an hour added is an hour on the clock face. Range: years 100 to 9999.
class DateValue {
 public:
  /// Day 0: December 30, 1899, 0:00:00.
  constexpr DateValue() = default;

  /// Month 1 to 12, day 1 to 31, hour 0 to 23. Values beyond a month's end run on into the next one.
  [[nodiscard]] static DateValue FromCivil(int year, int month, int day, int hour = 0, int minute = 0,
                                           int second = 0);
  /// Rounds to the nearest second. What lies outside the range becomes its first or last second.
  [[nodiscard]] static DateValue FromDays(double days);
  [[nodiscard]] static constexpr DateValue FromSeconds(std::int64_t seconds) {
    DateValue value;
    value.seconds_ = seconds;
    return value;
  }

  /// Whole and fractional days since day 0.
  [[nodiscard]] double Days() const;
  /// Seconds since day 0.
  [[nodiscard]] constexpr std::int64_t Seconds() const { return seconds_; }

  [[nodiscard]] int Year() const;
  [[nodiscard]] int Month() const;    ///< 1 to 12
  [[nodiscard]] int Day() const;      ///< 1 to 31
  [[nodiscard]] int Hour() const;     ///< 0 to 23
  [[nodiscard]] int Minute() const;   ///< 0 to 59
  [[nodiscard]] int Second() const;   ///< 0 to 59
  [[nodiscard]] int Weekday() const;  ///< 1 is Sunday, 7 is Saturday

  /// A sum that would leave the range stops at its first or last second.
  [[nodiscard]] DateValue AddSeconds(std::int64_t seconds) const;
  [[nodiscard]] DateValue AddMinutes(std::int64_t minutes) const;
  [[nodiscard]] DateValue AddHours(std::int64_t hours) const;
  [[nodiscard]] DateValue AddDays(std::int64_t days) const;

  auto operator<=>(const DateValue&) const = default;  // NOLINT(modernize-use-nullptr)

 private:
  std::int64_t seconds_ = 0;
};

/// Seconds from `from` to `to`, negative if `to` is earlier.
[[nodiscard]] constexpr std::int64_t SecondsBetween(DateValue from, DateValue to) {
  return to.Seconds() - from.Seconds();
}

}  // namespace kestrune::base
