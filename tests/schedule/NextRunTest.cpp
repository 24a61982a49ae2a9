#include <gtest/gtest.h>

#include "schedule/NextRun.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

// A Saturday.
const DateValue kNow = DateValue::FromCivil(2026, 11, 21, 20, 0);

TEST(NextRun, EveryKindOfEntryBeforeAndAfterItsTime) {
  const struct {
    DateValue Start;
    std::optional<DateValue> Next;
  } kCases[] = {
      {DateValue::FromCivil(1967, 1, 7, 20, 1), DateValue::FromCivil(2026, 11, 21, 20, 1)},
      {DateValue::FromCivil(1967, 1, 7, 20, 0), DateValue::FromCivil(2026, 11, 28, 20, 0)},
      {DateValue::FromCivil(1967, 1, 1, 8, 0), DateValue::FromCivil(2026, 11, 22, 8, 0)},
      {DateValue::FromCivil(1967, 1, 6, 23, 0), DateValue::FromCivil(2026, 11, 27, 23, 0)},
      {DateValue::FromCivil(1967, 1, 15, 20, 1), DateValue::FromCivil(2026, 11, 21, 20, 1)},
      {DateValue::FromCivil(1967, 1, 15, 20, 0), DateValue::FromCivil(2026, 11, 22, 20, 0)},
      {DateValue::FromCivil(2026, 12, 24, 20, 0), DateValue::FromCivil(2026, 12, 24, 20, 0)},
      {DateValue::FromCivil(2026, 11, 21, 20, 0), std::nullopt},
  };
  for (const auto& one : kCases) {
    ScheduleEntry entry;
    entry.StartDate = one.Start;
    EXPECT_EQ(NextRun(entry, kNow), one.Next);
  }
}

}  // namespace
}  // namespace kestrune::schedule
