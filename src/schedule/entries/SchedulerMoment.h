#pragma once

#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "schedule/entries/CodedDay.h"

namespace kestrune::schedule {

inline constexpr std::string_view kEveryDay = "Every Day";
inline constexpr std::string_view kEvery = "Every ";

/// The date as "Mar 9, 2005".
[[nodiscard]] std::string DateCaption(base::DateValue date);
/// "Every Day" for January 15, "Every " and the weekday's name for any other day.
[[nodiscard]] std::string CodedCaption(base::DateValue date);
/// How the start of a stored entry is shown: as what recurs from January 1 to before January 16, 1967, else as a
/// date.
[[nodiscard]] std::string StartCaption(base::DateValue start);

/// A time of day as the lists of a row show it.
struct TimeOfDay {
  int Hour = 12;   ///< 1 to 12
  int Minute = 0;  ///< 0 to 59
  bool PM = false;

  [[nodiscard]] static TimeOfDay Of(base::DateValue date);
  [[nodiscard]] int HourOfDay() const { return Hour % 12 + (PM ? 12 : 0); }

  bool operator==(const TimeOfDay&) const = default;
};

/// A date button of a row with the time lists beside it.
struct SchedulerMoment {
  std::string Caption;  ///< "Every Day", "Every Saturday" or "mmm d, yyyy"
  TimeOfDay Time;

  [[nodiscard]] bool IsDaily() const { return Caption == kEveryDay; }
  [[nodiscard]] bool Recurs() const { return Caption.starts_with(kEvery); }
  /// The moment; on its coded day if it recurs.
  [[nodiscard]] base::DateValue Date() const;
  /// The date as the settings keep it: "Jan 15, 1967", "Jan 1, 1967" to "Jan 7, 1967", or the caption.
  [[nodiscard]] std::string StoredDate() const;
  /// StoredDate, a blank, and the time as "8:00 PM".
  [[nodiscard]] std::string StoredText() const;

  bool operator==(const SchedulerMoment&) const = default;
};

}  // namespace kestrune::schedule
