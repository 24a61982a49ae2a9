#include "presenters/DateSelect.h"

#include <algorithm>

#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::presenters {
namespace {

using base::DateValue;

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

DateValue Midnight(DateValue date) {
  return DateValue::FromCivil(date.Year(), date.Month(), date.Day());
}

}  // namespace

DateSelect::DateSelect(const base::EventLoop& loop, DateValue& selDate)
    : loop_(loop), selDate_(selDate), calendar_(Midnight(std::max(selDate, loop.Now()))) {}

DateValue DateSelect::Today() const {
  return Midnight(loop_.Now());
}

void DateSelect::MoveCalendar(DateValue date) {
  calendar_ = Midnight(date);
}

void DateSelect::MoveMonth(int months) {
  const DateValue first = DateValue::FromCivil(calendar_.Year(), calendar_.Month() + months, 1);
  if (first.Year() < kFirstYear || first.Year() > kLastYear) return;
  const DateValue last = DateValue::FromCivil(first.Year(), first.Month() + 1, 1).AddDays(-1);
  calendar_ = first.AddDays(std::min(calendar_.Day(), last.Day()) - 1);
}

void DateSelect::ChooseDate(DateValue date) {
  calendar_ = Midnight(date);
  selDate_ = std::max(calendar_, loop_.Now());
}

void DateSelect::cmdDay(int index) {
  selDate_ = schedule::CodedDay(index + 1);
}

void DateSelect::cmdEveryDay() {
  selDate_ = schedule::CodedDay(schedule::kEveryDayCode);
}

}  // namespace kestrune::presenters
