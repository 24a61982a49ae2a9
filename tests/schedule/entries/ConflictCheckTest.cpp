#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "presenters/SchedulerFixture.h"
#include "schedule/entries/ConflictCheck.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using schedule::CheckConflict;
using schedule::SchedulerRow;
using schedule::SchedulerRows;
using schedule::WhatConflicts;
using schedule::WhatConflictsWith;

std::string Conflict(const std::vector<std::pair<int, SchedulerRow>>& enabled) {
  SchedulerRows rows;
  for (SchedulerRow& row : rows) row.Start.Caption = row.End.Caption = "Jan 1, 2005";
  for (const auto& [number, row] : enabled) rows.at(static_cast<std::size_t>(number - 1)) = row;
  return WhatConflicts(rows).value_or("none");
}

std::string Between(int a, int b) {
  return fmt::format("Item {} conflicts with item {}. Please correct before saving.", a, b);
}

TEST(CheckConflict, ARangeThatEnclosesIsSeenFromItsOwnSideAlone) {
  const auto at = [](int hour) { return DateValue::FromCivil(2026, 11, 21, hour); };
  EXPECT_TRUE(CheckConflict(at(8), at(12), at(9), at(10)));
  EXPECT_FALSE(CheckConflict(at(9), at(10), at(8), at(12)));
  EXPECT_TRUE(CheckConflict(at(8), at(9), at(8), at(12)));
  EXPECT_FALSE(CheckConflict(at(8), at(9), at(9), at(10)));
  EXPECT_TRUE(CheckConflict(at(9), at(10), at(8), at(9)));
  EXPECT_FALSE(CheckConflict(at(8), at(9), at(6), at(7)));
}

TEST(Save, ADailyRowMayRunUpTo23HoursAnd59Minutes) {
  EXPECT_EQ(Conflict({{3, RowOf("Every Day", 20, 0, 23, 59)}}), "none");
  for (const auto& [hours, minutes] : {std::pair{24, 0}, {24, 1}, {47, 59}}) {
    EXPECT_EQ(Conflict({{3, RowOf("Every Day", 20, 0, hours, minutes)}}),
              "Item 3 runs daily, but is set to run longer than one day, thereby overlapping itself. Please "
              "correct before saving.");
  }
  EXPECT_EQ(Conflict({{3, RowOf("Every Sunday", 20, 0, 47, 59)}}), "none");
}

TEST(Save, RowsThatTouchConflictAndAMinuteBetweenIsEnough) {
  EXPECT_EQ(Conflict({{1, RowOf("Nov 21, 2026", 8, 0, 1, 0)}, {2, RowOf("Nov 21, 2026", 9, 0, 1, 0)}}),
            Between(1, 2));
  EXPECT_EQ(Conflict({{1, RowOf("Nov 21, 2026", 8, 0, 1, 0)}, {2, RowOf("Nov 21, 2026", 9, 1, 1, 0)}}),
            "none");
}

TEST(Save, ARowThatEnclosesAnotherIsNamedInTheOrderOfTheNumbers) {
  EXPECT_EQ(Conflict({{4, RowOf("Nov 21, 2026", 8, 0, 4, 0)}, {2, RowOf("Nov 21, 2026", 9, 0, 1, 0)}}),
            Between(2, 4));
}

TEST(Save, ASaturdayNightRunsIntoSundayMorning) {
  EXPECT_EQ(Conflict({{1, RowOf("Every Saturday", 23, 0, 3, 0)}, {2, RowOf("Every Sunday", 1, 0, 1, 0)}}),
            Between(1, 2));
  EXPECT_EQ(Conflict({{2, RowOf("Every Saturday", 23, 0, 3, 0)}, {1, RowOf("Every Sunday", 1, 0, 1, 0)}}),
            Between(1, 2));
  EXPECT_EQ(Conflict({{1, RowOf("Every Saturday", 23, 0, 3, 0)}, {2, RowOf("Every Sunday", 2, 1, 1, 0)}}),
            "none");
}

TEST(Save, ADisabledRowNeverConflicts) {
  SchedulerRow off = RowOf("Every Day", 8, 0, 47, 0);
  off.Enabled = false;
  EXPECT_EQ(Conflict({{1, off}, {2, RowOf("Nov 21, 2026", 9, 0, 1, 0)}}), "none");
}

TEST(Save, ATickedRowWithoutLengthTakesPart) {
  EXPECT_EQ(Conflict({{1, RowOf("Nov 21, 2026", 8, 0, 1, 0)}, {2, RowOf("Nov 21, 2026", 8, 30, 0, 0)}}),
            Between(1, 2));
  EXPECT_EQ(Conflict({{1, RowOf("Nov 21, 2026", 8, 0, 1, 0)}, {2, RowOf("Nov 21, 2026", 9, 30, 0, 0)}}),
            "none");
}

TEST(Save, EveryKindOfRowAgainstEveryOther) {
  const struct {
    SchedulerRow A;
    SchedulerRow B;
    bool Conflicts;
  } kCases[] = {
      // November 21, 2026 is a Saturday.
      {RowOf("Nov 21, 2026", 8, 0, 2, 0), RowOf("Every Saturday", 9, 0, 2, 0), true},
      {RowOf("Nov 21, 2026", 8, 0, 2, 0), RowOf("Every Friday", 9, 0, 2, 0), false},
      {RowOf("Nov 22, 2026", 8, 0, 2, 0), RowOf("Every Day", 9, 0, 2, 0), true},
      {RowOf("Nov 21, 2026", 23, 0, 2, 0), RowOf("Every Day", 0, 30, 0, 20), true},
      {RowOf("Nov 21, 2026", 8, 0, 2, 0), RowOf("Every Day", 10, 1, 2, 0), false},
      {RowOf("Nov 21, 2026", 8, 0, 2, 0), RowOf("Nov 28, 2026", 8, 0, 2, 0), false},
      {RowOf("Every Day", 23, 0, 2, 0), RowOf("Every Day", 0, 30, 0, 20), true},
      {RowOf("Every Day", 0, 0, 1, 0), RowOf("Every Day", 1, 0, 1, 0), true},
      {RowOf("Every Day", 0, 0, 1, 0), RowOf("Every Day", 1, 1, 1, 0), false},
      {RowOf("Every Day", 0, 0, 1, 0), RowOf("Every Monday", 0, 30, 1, 0), true},
      {RowOf("Every Day", 20, 0, 1, 0), RowOf("Every Sunday", 20, 30, 1, 0), true},
      // A daily row is compared on Sunday: what is further off in the week is not found. This stays.
      {RowOf("Every Day", 20, 0, 1, 0), RowOf("Every Wednesday", 20, 30, 1, 0), false},
      {RowOf("Nov 21, 2026", 8, 0, 2, 0), RowOf("Every Day", 9, 0, 2, 0), false},
      {RowOf("Every Monday", 23, 0, 2, 0), RowOf("Every Tuesday", 0, 30, 1, 0), true},
      {RowOf("Every Monday", 23, 0, 2, 0), RowOf("Every Wednesday", 0, 30, 1, 0), false},
  };
  for (const auto& one : kCases) {
    for (const bool swapped : {false, true}) {
      EXPECT_EQ(Conflict({{1, swapped ? one.B : one.A}, {2, swapped ? one.A : one.B}}),
                one.Conflicts ? Between(1, 2) : "none")
          << Shown(one.A.Start) << " and " << Shown(one.B.Start);
    }
  }
}

TEST(Save, TheDailyTestOfARowComesBeforeItsPairsAndRowsGoInOrder) {
  EXPECT_EQ(Conflict({{2, RowOf("Every Day", 9, 15, 24, 0)}, {1, RowOf("Every Day", 9, 0, 1, 0)}}),
            Between(1, 2));
  EXPECT_EQ(Conflict({{1, RowOf("Every Day", 8, 0, 24, 0)}, {2, RowOf("Every Day", 9, 0, 1, 0)}}),
            "Item 1 runs daily, but is set to run longer than one day, thereby overlapping itself. Please "
            "correct before saving.");
  EXPECT_EQ(Conflict({{9, RowOf("Nov 21, 2026", 8, 0, 1, 0)},
                      {10, RowOf("Nov 21, 2026", 8, 0, 1, 0)},
                      {3, RowOf("Nov 22, 2026", 8, 0, 1, 0)},
                      {5, RowOf("Nov 22, 2026", 8, 0, 1, 0)}}),
            Between(3, 5));
}

/// The same rules once more, in whole minutes since January 1, 1967 and without the scheduler's own parts:
/// every pair is tested both ways round, so an ordered list of the shifts is enough.
struct PlainRow {
  int Kind = 0;  ///< 0 a single date, 1 weekly, 2 daily
  long Day = 0;  ///< days since January 1, 1967
  int Time = 0;
  int Length = 0;
};

constexpr long kDay = 1440;

bool PlainOverlap(PlainRow a, PlainRow b) {
  const auto start = [](const PlainRow& row) { return (row.Kind == 2 ? 14 : row.Day) * kDay + row.Time; };
  long first = start(a);
  long second = start(b);
  const auto fold = [](long onto, long what) {
    const long time = what % kDay;
    if (onto == 14 * kDay && what != 14 * kDay) return 14 * kDay + time;
    if (onto < 15 * kDay && what > 14 * kDay) return what / kDay % 7 * kDay + time;
    return what;
  };
  second = fold(first, second);
  first = fold(second, first);
  std::vector<long> shifts{0};  // of the second against the first
  const auto both = [&shifts](long by) {
    shifts.push_back(by);
    shifts.push_back(-by);
  };
  if (a.Kind == 2 || b.Kind == 2) both(kDay);
  if (first < 14 * kDay || first + a.Length < 14 * kDay) both(7 * kDay);
  return std::any_of(shifts.begin(), shifts.end(), [&](long shift) {
    const auto within = [&](long moment) { return moment >= first && moment < first + a.Length; };
    return within(second + shift) || within(second + shift + b.Length);
  });
}

std::string PlainAnswer(const std::vector<PlainRow>& rows, const std::vector<bool>& enabled) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!enabled[i]) continue;
    if (rows[i].Kind == 2 && rows[i].Length >= kDay) return fmt::format("Item {} runs daily", i + 1);
    for (std::size_t j = 0; j < rows.size(); ++j) {
      if (i != j && enabled[j] && PlainOverlap(rows[i], rows[j])) {
        return fmt::format("Item {} conflicts with item {}.", std::min(i, j) + 1, std::max(i, j) + 1);
      }
    }
  }
  return "none";
}

TEST(Save, AnswersAsTheRulesInWholeMinutesDo) {
  std::mt19937 dice(PrintedSeed());
  const auto roll = [&dice](int sides) { return static_cast<int>(dice() % static_cast<unsigned>(sides)); };
  const char* const weekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                  "Thursday", "Friday", "Saturday"};
  constexpr long kNovember20 = 21873;  // days from January 1, 1967 to November 20, 2026
  int refused = 0;
  int accepted = 0;
  for (int step = 0; step < 4'000; ++step) {
    std::vector<PlainRow> plain;
    std::vector<bool> enabled;
    SchedulerRows rows;
    const int longest = step % 2 == 0 ? 47 : 3;
    for (SchedulerRow& row : rows) {
      PlainRow one{.Kind = roll(3),
                   .Day = 0,
                   .Time = roll(48) * 30,
                   .Length = roll(longest) * 60 + roll(3) * 29 + roll(2)};
      one.Day = one.Kind == 1 ? roll(7) : kNovember20 + roll(12);
      const std::string caption = one.Kind == 2   ? "Every Day"
                                  : one.Kind == 1 ? fmt::format("Every {}", weekdays[one.Day])
                                  : one.Day < kNovember20 + 11
                                      ? fmt::format("Nov {}, 2026", 20 + one.Day - kNovember20)
                                      : "Dec 1, 2026";
      row = RowOf(caption, one.Time / 60, one.Time % 60, one.Length / 60, one.Length % 60);
      row.Enabled = roll(3) == 0;
      plain.push_back(one);
      enabled.push_back(row.Enabled);
    }
    const std::string expected = PlainAnswer(plain, enabled);
    const std::string answer = WhatConflicts(rows).value_or("none");
    ASSERT_EQ(answer.substr(0, expected.size()), expected) << "step " << step;
    (expected == "none" ? accepted : refused)++;
  }
  EXPECT_GT(refused, 400);
  EXPECT_GT(accepted, 400);
}

TEST(WhatConflictsWith, LooksAtThePairsOfOneRowAlone) {
  SchedulerRows rows;
  rows[1] = RowOf("Mar 9, 2005", 9, 0, 1, 0);
  rows[3] = RowOf("Mar 9, 2005", 8, 0, 4, 0);
  rows[6] = RowOf("Mar 9, 2005", 13, 0, 1, 0);
  EXPECT_EQ(WhatConflictsWith(rows, 6), std::nullopt);
  const std::string conflict = "Item 2 conflicts with item 4. Please correct before saving.";
  EXPECT_EQ(WhatConflictsWith(rows, 1), conflict) << "what encloses it is found the other way round";
  EXPECT_EQ(WhatConflictsWith(rows, 3), conflict);
  rows[3].Enabled = false;
  EXPECT_EQ(WhatConflictsWith(rows, 1), std::nullopt);
  EXPECT_EQ(WhatConflictsWith(rows, 3), conflict) << "whether the row itself is enabled does not count";
  rows[3] = RowOf("Every Day", 8, 0, 24, 0);
  EXPECT_EQ(WhatConflictsWith(rows, 3),
            "Item 4 runs daily, but is set to run longer than one day, thereby overlapping itself. Please "
            "correct before saving.");
}

TEST(WhatConflicts, EveryDayAgainstOneWeekdayIsNotAlwaysFound) {
  SchedulerRows rows;
  rows[0] = RowOf("Every Day", 20, 0, 1, 0);
  rows[1] = RowOf("Every Wednesday", 20, 0, 1, 0);
  EXPECT_EQ(WhatConflicts(rows), std::nullopt);
}

}  // namespace
}  // namespace kestrune::test
