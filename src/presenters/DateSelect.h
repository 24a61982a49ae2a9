#pragma once

#include "base/DateValue.h"
#include "base/EventLoop.h"

namespace kestrune::presenters {

/// The rules of the date picker, which returns a date of the calendar, or a coded day of January 1967 for what recurs.
/// A new one is made each time the picker opens; the first choice closes it.
class DateSelect {
 public:
  /// Starts from the date in `selDate` and writes the answer to it. A date that has passed, which every coded one
  /// has, opens the calendar at today. The loop and the date must outlive the picker.
  DateSelect(const base::EventLoop& loop, base::DateValue& selDate);

  /// The day that the calendar shows and has selected, at midnight.
  [[nodiscard]] base::DateValue Calendar() const { return calendar_; }
  [[nodiscard]] base::DateValue Today() const;
  /// The user has moved the calendar's selection, without choosing yet.
  void MoveCalendar(base::DateValue date);
  /// By one calendar month; a day that the month does not have becomes its last.
  void cmdMonthDown() { MoveMonth(-1); }
  void cmdMonthUp() { MoveMonth(1); }

  // The choices.
  /// A day clicked in the calendar. One that has passed becomes the present moment, and so does today.
  void ChooseDate(base::DateValue date);
  /// Index 0 is Sunday, 6 is Saturday.
  void cmdDay(int index);
  void cmdEveryDay();

 private:
  void MoveMonth(int months);

  const base::EventLoop& loop_;
  base::DateValue& selDate_;
  base::DateValue calendar_;
};

}  // namespace kestrune::presenters
