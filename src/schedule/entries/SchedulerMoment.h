#pragma once

#include <string>
#include <string_view>

#include "base/DateValue.h"

namespace kestrune::schedule {

/// January 1967 is no month of its own: its days stand for what recurs. January 1 to 7 were a Sunday to a
/// Saturday and stand for each week's; January 15 stands for every day.
[[nodiscard]] base::DateValue CodedDay(int dayOfJanuary);

inline constexpr std::string_view kEveryDay = "Every Day";
inline constexpr std::string_view kEvery = "Every ";

/// "mmm d, yyyy".
[[nodiscard]] std::string DateCaption(base::DateValue date);
/// "Every Day" for January 15, "Every " and the weekday's name for any other day.
[[nodiscard]] std::string CodedCaption(base::DateValue date);

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
  /// The moment, in the encoding above if it recurs.
  [[nodiscard]] base::DateValue Date() const;
  /// The date as the settings keep it: "Jan 15, 1967", "Jan 1, 1967" to "Jan 7, 1967", or the caption.
  [[nodiscard]] std::string StoredDate() const;
  /// StoredDate, a blank, and the time as "8:00 PM".
  [[nodiscard]] std::string StoredText() const;

  bool operator==(const SchedulerMoment&) const = default;
};

}  // namespace kestrune::schedule
