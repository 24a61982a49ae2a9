#include "base/DateValue.h"

#include <algorithm>
#include <cmath>

namespace kestrune::base {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

struct Civil {
  std::int64_t Year;
  int Month;
  int Day;
};

constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
  return value / by - (value % by < 0 ? 1 : 0);
}

// Years are counted from March, so that the leap day is the last of its year, and in eras of 400 years, after
// which the Gregorian calendar repeats itself. Days count from March 1 of year 0 here.
constexpr std::int64_t kDaysPerEra = 146097;

constexpr std::int64_t DaysFromMarchZero(std::int64_t year, std::int64_t month, std::int64_t day) {
  const std::int64_t marchYear = month <= 2 ? year - 1 : year;
  const std::int64_t era = FloorDivide(marchYear, 400);
  const std::int64_t yearOfEra = marchYear - era * 400;
  const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5;
  return era * kDaysPerEra + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear + day - 1;
}

constexpr std::int64_t kDayZero = DaysFromMarchZero(1899, 12, 30);

constexpr std::int64_t DayNumber(std::int64_t year, std::int64_t month, std::int64_t day) {
  return DaysFromMarchZero(year, month, day) - kDayZero;
}

constexpr Civil CivilFromDay(std::int64_t dayNumber) {
  const std::int64_t days = dayNumber + kDayZero;
  const std::int64_t era = FloorDivide(days, kDaysPerEra);
  const std::int64_t dayOfEra = days - era * kDaysPerEra;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
  const auto day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  const auto month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

constexpr std::int64_t kEarliest = DayNumber(100, 1, 1) * kSecondsPerDay;
constexpr std::int64_t kLatest = DayNumber(10000, 1, 1) * kSecondsPerDay - 1;

std::int64_t DayOf(std::int64_t seconds) {
  return FloorDivide(seconds, kSecondsPerDay);
}

int SecondOfDay(std::int64_t seconds) {
  return static_cast<int>(seconds - DayOf(seconds) * kSecondsPerDay);
}

// Sums stay within the calendar: what would leave it stops at its first or last second.
DateValue Moved(DateValue from, std::int64_t count, std::int64_t secondsEach) {
  constexpr std::int64_t kWholeCalendar = kLatest - kEarliest;
  const std::int64_t limit = kWholeCalendar / secondsEach + 1;
  const std::int64_t start = std::clamp(from.Seconds(), kEarliest, kLatest);
  const std::int64_t moved = start + std::clamp(count, -limit, limit) * secondsEach;
  return DateValue::FromSeconds(std::clamp(moved, kEarliest, kLatest));
}

}  // namespace

DateValue DateValue::FromCivil(int year, int month, int day, int hour, int minute, int second) {
  const std::int64_t months = std::int64_t{year} * 12 + month - 1;
  const std::int64_t firstOfMonth =
      DayNumber(FloorDivide(months, 12), months - FloorDivide(months, 12) * 12 + 1, 1);
  return FromSeconds((firstOfMonth + day - 1) * kSecondsPerDay + std::int64_t{hour} * 3600 +
                     std::int64_t{minute} * 60 + second);
}

DateValue DateValue::FromDays(double days) {
  if (std::isnan(days)) return {};
  const double seconds = std::round(days * static_cast<double>(kSecondsPerDay));
  return FromSeconds(static_cast<std::int64_t>(
      std::clamp(seconds, static_cast<double>(kEarliest), static_cast<double>(kLatest))));
}

double DateValue::Days() const {
  return static_cast<double>(seconds_) / static_cast<double>(kSecondsPerDay);
}

int DateValue::Year() const {
  return static_cast<int>(CivilFromDay(DayOf(seconds_)).Year);
}

int DateValue::Month() const {
  return CivilFromDay(DayOf(seconds_)).Month;
}

int DateValue::Day() const {
  return CivilFromDay(DayOf(seconds_)).Day;
}

int DateValue::Hour() const {
  return SecondOfDay(seconds_) / 3600;
}

int DateValue::Minute() const {
  return SecondOfDay(seconds_) / 60 % 60;
}

int DateValue::Second() const {
  return SecondOfDay(seconds_) % 60;
}

int DateValue::Weekday() const {
  // Day 0 was a Saturday.
  const std::int64_t day = DayOf(seconds_) + 6;
  return static_cast<int>(day - FloorDivide(day, 7) * 7) + 1;
}

DateValue DateValue::AddSeconds(std::int64_t seconds) const {
  return Moved(*this, seconds, 1);
}

DateValue DateValue::AddMinutes(std::int64_t minutes) const {
  return Moved(*this, minutes, 60);
}

DateValue DateValue::AddHours(std::int64_t hours) const {
  return Moved(*this, hours, 3600);
}

DateValue DateValue::AddDays(std::int64_t days) const {
  return Moved(*this, days, kSecondsPerDay);
}

}  // namespace kestrune::base
