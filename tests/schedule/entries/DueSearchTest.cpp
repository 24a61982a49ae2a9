#include <cstdint>
#include <ctime>
#include <deque>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "schedule/entries/DueSearch.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

DateValue At(int year, int month, int day, int hour, int minute, int second = 0) {
  return DateValue::FromCivil(year, month, day, hour, minute, second);
}

/// An enabled entry that runs for so long, and the 59 seconds.
ScheduleEntry Lasting(DateValue start, int hours, int minutes) {
  return {.Enabled = true,
          .Channel = 44,
          .StartDate = start,
          .EndDate = start.AddSeconds(hours * 3600 + minutes * 60 + 59)};
}

/// What is due at a moment, of these entries and seven to nine disabled ones.
std::optional<DueEntry> DueAt(DateValue now, const std::vector<ScheduleEntry>& some) {
  ScheduleEntries entries;
  for (std::size_t i = 0; i < some.size(); ++i) entries.at(i) = some[i];
  return DueSearch(entries, [now] { return now; }).Find();
}

const std::optional<DueEntry> kNone;

std::optional<DueEntry> First(DateValue until) {
  return DueEntry{1, until};
}

TEST(DueSearch, AMidnightCrossingDailyEventIsDueAfterMidnightUntilItsRealEnd) {
  const ScheduleEntry night = Lasting(At(1967, 1, 15, 23, 0), 2, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 22, 59, 59), {night}), kNone);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 23, 0), {night}), First(At(2005, 3, 10, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 10, 0, 30), {night}), First(At(2005, 3, 10, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 10, 1, 0, 58), {night}), First(At(2005, 3, 10, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 10, 1, 0, 59), {night}), kNone) << "the day before excludes its end";
}

TEST(DueSearch, ASaturdayNightIsDueOnSundayThroughTheWeekBefore) {
  const ScheduleEntry night = Lasting(At(1967, 1, 7, 23, 0), 2, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 5, 22, 59, 59), {night}), kNone);
  EXPECT_EQ(DueAt(At(2005, 3, 5, 23, 0), {night}), First(At(2005, 3, 6, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 6, 0, 30), {night}), First(At(2005, 3, 6, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 6, 1, 0, 59), {night}), kNone);
  EXPECT_EQ(DueAt(At(2005, 3, 7, 0, 30), {night}), kNone);
}

TEST(DueSearch, DailyIncludesItsEndOnItsOwnDayAlone) {
  const ScheduleEntry evening = Lasting(At(1967, 1, 15, 20, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 0, 59), {evening}), First(At(2005, 3, 9, 21, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 1, 0), {evening}), kNone);
}

TEST(DueSearch, WeeklyAndSingleDatesExcludeTheirEnd) {
  const ScheduleEntry wednesdays = Lasting(At(1967, 1, 4, 20, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 0, 58), {wednesdays}), First(At(2005, 3, 9, 21, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 0, 59), {wednesdays}), kNone);
  const ScheduleEntry once = Lasting(At(2005, 3, 9, 20, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 19, 59, 59), {once}), kNone);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 20, 0), {once}), First(At(2005, 3, 9, 21, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 0, 58), {once}), First(At(2005, 3, 9, 21, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 21, 0, 59), {once}), kNone);
  EXPECT_EQ(DueAt(At(2005, 3, 16, 20, 0), {once}), kNone);
}

TEST(DueSearch, TheLastMinuteOfTheEveryDayCodeIsStillDaily) {
  const ScheduleEntry late = Lasting(At(1967, 1, 15, 23, 59), 1, 0);
  for (int day = 6; day <= 12; ++day) {
    EXPECT_EQ(DueAt(At(2005, 3, day, 23, 59, 30), {late}), First(At(2005, 3, day + 1, 0, 59, 59)));
  }
}

TEST(DueSearch, TheCodesEndWithTheFifteenthOfJanuary) {
  const ScheduleEntry once = Lasting(At(1967, 1, 16, 0, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 0, 30), {once}), kNone);
  EXPECT_EQ(DueAt(At(1967, 1, 16, 0, 30), {once}), First(At(1967, 1, 16, 1, 0, 59)));
  // The last second before Jan 15 is a Saturday.
  const ScheduleEntry weekly{
      .Enabled = true, .StartDate = At(1967, 1, 14, 23, 59, 59), .EndDate = At(1967, 1, 15, 1, 0)};
  EXPECT_TRUE(DueAt(At(2005, 3, 5, 23, 59, 59), {weekly}));
  EXPECT_FALSE(DueAt(At(2005, 3, 4, 23, 59, 59), {weekly}));
}

TEST(DueSearch, AStoredDateOfTheSecondWeekIsWeeklyThroughTheShift) {
  // January 10 was a Tuesday.
  const ScheduleEntry tuesdays = Lasting(At(1967, 1, 10, 20, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 8, 20, 30), {tuesdays}), First(At(2005, 3, 8, 21, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 20, 30), {tuesdays}), kNone);
  // January 14 was a Saturday, whose night is lost at midnight: one more week back would be needed.
  const ScheduleEntry saturdays = Lasting(At(1967, 1, 14, 23, 0), 2, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 5, 23, 30), {saturdays}), First(At(2005, 3, 6, 1, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 6, 0, 30), {saturdays}), kNone);
}

TEST(DueSearch, AStoredDateOfDecember1966IsWeeklyIfTheShiftReachesIt) {
  // December 28 was a Wednesday.
  const ScheduleEntry wednesdays = Lasting(At(1966, 12, 28, 20, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 20, 30), {wednesdays}), First(At(2005, 3, 9, 21, 0, 59)));
  const ScheduleEntry aWeekEarlier = Lasting(At(1966, 12, 21, 20, 0), 1, 0);
  for (int day = 6; day <= 12; ++day) EXPECT_EQ(DueAt(At(2005, 3, day, 20, 30), {aWeekEarlier}), kNone);
}

TEST(DueSearch, TheLowestEntryWins) {
  const ScheduleEntry day = Lasting(At(1967, 1, 15, 8, 0), 10, 0);
  const ScheduleEntry once = Lasting(At(2005, 3, 9, 9, 0), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 9, 30), {once, day}), (DueEntry{1, At(2005, 3, 9, 10, 0, 59)}));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 9, 30), {day, once}), (DueEntry{1, At(2005, 3, 9, 18, 0, 59)}));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 10, 30), {once, day}), (DueEntry{2, At(2005, 3, 9, 18, 0, 59)}));
}

TEST(DueSearch, TheTenthEntryIsFound) {
  ScheduleEntries entries;
  entries[9] = Lasting(At(2005, 3, 9, 9, 0), 1, 0);
  EXPECT_EQ(DueSearch(entries, [] { return At(2005, 3, 9, 9, 30); }).Find()->Due, 10);
}

TEST(DueSearch, ADisabledEntryIsNeverDue) {
  ScheduleEntry entry = Lasting(At(1967, 1, 15, 0, 0), 24, 0);
  entry.Enabled = false;
  EXPECT_EQ(DueAt(At(2005, 3, 9, 9, 30), {entry}), kNone);
}

TEST(DueSearch, AnEntryThatEndsBeforeItBeginsIsNeverDue) {
  for (const DateValue start : {At(1967, 1, 15, 8, 0), At(1967, 1, 4, 8, 0), At(2005, 3, 9, 8, 0)}) {
    for (int hour = 0; hour < 24; ++hour)
      EXPECT_EQ(DueAt(At(2005, 3, 9, hour, 0), {Lasting(start, -2, 0)}), kNone);
  }
}

TEST(DueSearch, ADailyStartCountsToTheMinute) {
  ScheduleEntry entry = Lasting(At(1967, 1, 15, 8, 0, 40), 1, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 8, 0, 0), {entry}), First(At(2005, 3, 9, 9, 0, 59)));
}

TEST(DueSearch, AnEveryDayEventLongerThanADayEndsWithTheOneThatBeganFirst) {
  const ScheduleEntry entry = Lasting(At(1967, 1, 15, 8, 0), 30, 0);
  EXPECT_EQ(DueAt(At(2005, 3, 9, 10, 0), {entry}), First(At(2005, 3, 9, 14, 0, 59)));
  EXPECT_EQ(DueAt(At(2005, 3, 9, 14, 0, 59), {entry}), First(At(2005, 3, 10, 14, 0, 59)));
}

/// A clock that shows each of its moments once, and the last one for ever.
class MovingClock {
 public:
  explicit MovingClock(std::deque<DateValue> moments) : moments_(std::move(moments)) {}
  DateValue operator()() {
    const DateValue now = moments_.front();
    if (moments_.size() > 1) moments_.pop_front();
    return now;
  }

 private:
  std::deque<DateValue> moments_;
};

std::optional<DueEntry> DueOn(std::deque<DateValue> moments, const ScheduleEntry& entry) {
  ScheduleEntries entries;
  entries[0] = entry;
  return DueSearch(entries, MovingClock(std::move(moments))).Find();
}

TEST(DueSearch, EachComparisonReadsTheClockAnew) {
  const ScheduleEntry once = Lasting(At(2005, 3, 9, 20, 0), 1, 0);
  EXPECT_EQ(DueOn({At(2005, 3, 9, 21, 0, 58), At(2005, 3, 9, 21, 0, 59)}, once), kNone)
      << "it ended between its two comparisons";
  const ScheduleEntry wednesdays = Lasting(At(1967, 1, 4, 20, 0), 1, 0);
  EXPECT_EQ(
      DueOn({At(2005, 3, 9, 20, 29, 59), At(2005, 3, 9, 20, 29, 59), At(2005, 3, 9, 20, 30, 0)}, wednesdays),
      First(At(2005, 3, 9, 21, 1, 0)))
      << "the time left at the fold counts from the moment after it";
}

TEST(DueSearch, AMidnightBetweenDayAndTimeFoldsOntoTheBeginningOfTheOldDay) {
  const ScheduleEntry saturdays = Lasting(At(1967, 1, 7, 0, 0), 1, 0);
  EXPECT_TRUE(DueOn({At(2005, 3, 5, 23, 59, 59), At(2005, 3, 6, 0, 0, 0)}, saturdays));
}

/// The same question, asked of real moments and nothing else: seconds of civil time and the weekdays of the C
/// library. No code week, no shifts: every time the entry has begun is laid out on the calendar.
class Calendar {
 public:
  struct Occurrence {
    std::time_t Begin;
    std::time_t End;
  };

  static constexpr std::time_t kDay = 86400;

  static std::time_t Moment(int year, int month, int day) {
    std::tm civil{};
    civil.tm_year = year - 1900;
    civil.tm_mon = month - 1;
    civil.tm_mday = day;
    return timegm(&civil);
  }
  static DateValue Value(std::time_t moment) {
    std::tm civil{};
    gmtime_r(&moment, &civil);
    return DateValue::FromCivil(civil.tm_year + 1900, civil.tm_mon + 1, civil.tm_mday, civil.tm_hour,
                                civil.tm_min, civil.tm_sec);
  }

  /// On the days of `weekday` (0 is Sunday), or on every day (-1), around the fortnight.
  static std::vector<Occurrence> Occurrences(int weekday, int minuteOfDay, int minutes,
                                             std::time_t firstDay) {
    std::vector<Occurrence> found;
    for (int day = -4; day <= 16; ++day) {
      const std::time_t midnight = firstDay + day * kDay;
      std::tm civil{};
      gmtime_r(&midnight, &civil);
      if (weekday >= 0 && civil.tm_wday != weekday) continue;
      const std::time_t begin = midnight + minuteOfDay * 60;
      found.push_back({begin, begin + minutes * 60 + 59});
    }
    return found;
  }
};

/// Compares at every hour of a fortnight, at an odd minute of it, and at the edges of everything.
class Fortnight : public ::testing::Test {
 protected:
  // A Saturday; the fortnight crosses a month's end and a leap day.
  std::time_t firstDay = Calendar::Moment(2004, 2, 21);
  std::int64_t compared = 0;

  void Compare(const ScheduleEntry& entry, const std::vector<Calendar::Occurrence>& occurrences, bool daily) {
    std::vector<std::time_t> moments;
    for (int hour = 0; hour < 14 * 24; ++hour) {
      moments.push_back(firstDay + hour * 3600);
      moments.push_back(firstDay + hour * 3600 + 37 * 60 + 11);
    }
    for (const auto& occurrence : occurrences) {
      for (const std::time_t edge : {occurrence.Begin, occurrence.End}) {
        for (const int off : {-1, 0, 1}) moments.push_back(edge + off);
      }
    }
    ScheduleEntries entries;
    entries[0] = entry;
    DateValue now;
    const DueSearch search(entries, [&now] { return now; });
    for (const std::time_t moment : moments) {
      if (moment < firstDay || moment >= firstDay + 14 * Calendar::kDay) continue;
      now = Calendar::Value(moment);
      ASSERT_EQ(search.Find(), Expected(moment, occurrences, daily))
          << std::asctime(std::gmtime(&moment)) << " start " << entry.StartDate.Seconds() << " length "
          << base::SecondsBetween(entry.StartDate, entry.EndDate);
      ++compared;
    }
  }

 private:
  static std::optional<DueEntry> Expected(std::time_t moment,
                                          const std::vector<Calendar::Occurrence>& occurrences, bool daily) {
    // The first exception: an every-day event that ends on the day on which it began includes its end.
    // The second: of two that overlap, the one that began first decides the end.
    // The third: an every-day event that began before yesterday is not seen any more.
    const std::time_t yesterday = moment - moment % Calendar::kDay - Calendar::kDay;
    for (const auto& occurrence : occurrences) {
      if (daily && occurrence.Begin < yesterday) continue;
      const bool sameDay = occurrence.Begin / Calendar::kDay == occurrence.End / Calendar::kDay;
      const bool atItsEnd = daily && sameDay && moment == occurrence.End;
      if (moment >= occurrence.Begin && (moment < occurrence.End || atItsEnd)) {
        return DueEntry{1, Calendar::Value(occurrence.End)};
      }
    }
    return std::nullopt;
  }
};

constexpr int kDurations[] = {1, 60, 23 * 60 + 59, 47 * 60 + 59};

TEST_F(Fortnight, EveryWeeklyEntryFoldsOntoItsRealMoments) {
  for (int weekday = 0; weekday < 7; ++weekday) {
    for (int hour = 0; hour < 24; ++hour) {
      for (const int minutes : kDurations) {
        const int minute = (hour * 7) % 60;
        ASSERT_NO_FATAL_FAILURE(Compare(Lasting(At(1967, 1, 1 + weekday, hour, minute), 0, minutes),
                                        Calendar::Occurrences(weekday, hour * 60 + minute, minutes, firstDay),
                                        false));
      }
    }
  }
  EXPECT_GT(compared, 7 * 24 * 4 * 672);
}

TEST_F(Fortnight, EveryDailyEntryFoldsOntoItsRealMoments) {
  for (int hour = 0; hour < 24; ++hour) {
    for (const int minutes : {1, 60, 23 * 60 + 58, 23 * 60 + 59, 24 * 60, 30 * 60 + 15}) {
      const int minute = (hour * 7) % 60;
      ASSERT_NO_FATAL_FAILURE(Compare(Lasting(At(1967, 1, 15, hour, minute), 0, minutes),
                                      Calendar::Occurrences(-1, hour * 60 + minute, minutes, firstDay),
                                      true));
    }
  }
  EXPECT_GT(compared, 24 * 6 * 672);
}

}  // namespace
}  // namespace kestrune::schedule
