#include <array>
#include <cstdint>
#include <iostream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/DatePattern.h"

namespace kestrune::base {
namespace {

const DateValue kEvening = DateValue::FromCivil(2005, 3, 7, 20, 5, 9);  // a Monday

TEST(FormatDate, EachFieldHasItsLengths) {
  struct Row {
    const char* Pattern;
    const char* Text;
  };
  for (const Row& row :
       {Row{"d", "7"},      Row{"dd", "07"},     Row{"ddd", "Mon"},      Row{"dddd", "Monday"},
        Row{"m", "3"},      Row{"mm", "03"},     Row{"mmm", "Mar"},      Row{"mmmm", "March"},
        Row{"yy", "05"},    Row{"yyyy", "2005"}, Row{"h", "20"},         Row{"hh", "20"},
        Row{"n", "5"},      Row{"nn", "05"},     Row{"s", "9"},          Row{"ss", "09"},
        Row{"AM/PM", "PM"}, Row{"am/pm", "pm"},  Row{"h AM/PM", "8 PM"}, Row{"hh am/pm", "08 pm"}}) {
    EXPECT_EQ(FormatDate(kEvening, row.Pattern), row.Text) << row.Pattern;
  }
}

TEST(FormatDate, ThePatternsOfTheProduct) {
  struct Row {
    const char* Pattern;
    const char* Text;
  };
  for (const Row& row :
       {Row{"mmm d, yyyy hh:nn:ss ", "Mar 7, 2005 20:05:09 "}, Row{"yyyymmdd_hhnn", "20050307_2005"},
        Row{"yyyy-mm-dd_hhnn", "2005-03-07_2005"}, Row{"Hh:Nn:Ss", "20:05:09"}, Row{"dddd", "Monday"},
        Row{"mmm d, yyyy", "Mar 7, 2005"}, Row{"mmmm d, yyyy", "March 7, 2005"}, Row{"h:nn AM/PM", "8:05 PM"},
        Row{"hh:nn", "20:05"}, Row{"hh:nn:ss", "20:05:09"}, Row{"mmm d, h:nn:ss am/pm", "Mar 7, 8:05:09 pm"},
        Row{"mmm d, h:nn am/pm", "Mar 7, 8:05 pm"}, Row{"m, yyyy", "3, 2005"},
        Row{"m d, yyyy", "3 7, 2005"}}) {
    EXPECT_EQ(FormatDate(kEvening, row.Pattern), row.Text) << row.Pattern;
  }
}

TEST(FormatDate, LettersCountWithoutRegardToCase) {
  EXPECT_EQ(FormatDate(kEvening, "MMM D, YYYY HH:NN:SS"), "Mar 7, 2005 20:05:09");
  EXPECT_EQ(FormatDate(kEvening, "yYyY"), "2005");
}

TEST(FormatDate, NIsTheMinuteAndMTheMonthAlsoBehindAnHour) {
  EXPECT_EQ(FormatDate(kEvening, "h:mm"), "20:03");
  EXPECT_EQ(FormatDate(kEvening, "hh:nn"), "20:05");
}

TEST(FormatDate, WhatNamesNoFieldStandsAsItIs) {
  EXPECT_EQ(FormatDate(kEvening, ""), "");
  EXPECT_EQ(FormatDate(kEvening, "_-/., :%"), "_-/., :%");
  EXPECT_EQ(FormatDate(kEvening, "at"), "at");
  EXPECT_EQ(FormatDate(kEvening, "y"), "y");
  EXPECT_EQ(FormatDate(kEvening, "\xC3\xA9"), "\xC3\xA9");
}

TEST(FormatDate, ARunLongerThanAnyFieldStartsAnew) {
  EXPECT_EQ(FormatDate(kEvening, "ddddd"), "Monday7");
  EXPECT_EQ(FormatDate(kEvening, "hhh"), "2020");
  EXPECT_EQ(FormatDate(kEvening, "yyyyy"), "2005y");
  EXPECT_EQ(FormatDate(kEvening, "nnn"), "055");
}

TEST(FormatDate, HoursOfAHalfDayRunFromTwelveToEleven) {
  const std::array<const char*, 24> expected = {
      "12 AM", "1 AM", "2 AM", "3 AM", "4 AM", "5 AM", "6 AM", "7 AM", "8 AM", "9 AM", "10 AM", "11 AM",
      "12 PM", "1 PM", "2 PM", "3 PM", "4 PM", "5 PM", "6 PM", "7 PM", "8 PM", "9 PM", "10 PM", "11 PM"};
  for (int hour = 0; hour < 24; ++hour) {
    EXPECT_EQ(FormatDate(DateValue::FromCivil(2005, 1, 1, hour), "h AM/PM"),
              expected.at(static_cast<std::size_t>(hour)));
  }
}

TEST(FormatDate, AllMonthNames) {
  const std::array<const char*, 12> names = {"January",   "February", "March",    "April",
                                             "May",       "June",     "July",     "August",
                                             "September", "October",  "November", "December"};
  for (int month = 1; month <= 12; ++month) {
    const std::string name = names.at(static_cast<std::size_t>(month - 1));
    EXPECT_EQ(FormatDate(DateValue::FromCivil(2005, month, 1), "mmmm"), name);
    EXPECT_EQ(FormatDate(DateValue::FromCivil(2005, month, 1), "mmm"), name.substr(0, 3));
  }
}

TEST(FormatDate, AllWeekdayNamesFromTheCodesOfTheWeek) {
  const std::array<const char*, 7> names = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                            "Thursday", "Friday", "Saturday"};
  for (int day = 1; day <= 7; ++day) {
    const std::string name = names.at(static_cast<std::size_t>(day - 1));
    EXPECT_EQ(FormatDate(DateValue::FromCivil(1967, 1, day), "dddd"), name);
    EXPECT_EQ(FormatDate(DateValue::FromCivil(1967, 1, day), "ddd"), name.substr(0, 3));
  }
}

TEST(FormatDate, ALengthOfTimeReadsAsATimeOnDayZero) {
  EXPECT_EQ(FormatDate(DateValue::FromSeconds(3723), "Hh:Nn:Ss"), "01:02:03");
}

TEST(ParseDate, TheFormsItKnows) {
  const DateValue day = DateValue::FromCivil(1967, 1, 3);
  struct Row {
    const char* Text;
    int SecondsOfDay;
  };
  for (const Row& row :
       {Row{"Jan 3, 1967", 0}, Row{"January 3, 1967", 0}, Row{"1967-01-03", 0},
        Row{"Jan 3, 1967 8:00 PM", 72000}, Row{"Jan 3, 1967 12:00 AM", 0}, Row{"Jan 3, 1967 12:00 PM", 43200},
        Row{"Jan 3, 1967 12:59:59 am", 3599}, Row{"Jan 3, 1967 11:59 PM", 86340},
        Row{"Jan 3, 1967 20:05", 72300}, Row{"Jan 3, 1967 0:00", 0}, Row{"Jan 3, 1967 23:59:59", 86399},
        Row{"1967-01-03 08:05:09", 29109}, Row{"1967-01-03 8:05 pm", 72300}, Row{"jAN 3, 1967", 0},
        Row{"  Jan 3, 1967  ", 0}, Row{"Jan  03,  1967  8:00  PM", 72000},
        Row{"Jan 3, 1967 8:00PM", 72000}}) {
    EXPECT_EQ(ParseDate(row.Text), day.AddSeconds(row.SecondsOfDay)) << row.Text;
  }
}

TEST(ParseDate, ATimeAloneStandsForDayZero) {
  EXPECT_EQ(ParseDate("8:00 PM"), DateValue::FromSeconds(72000));
  EXPECT_EQ(ParseDate("0:30"), DateValue::FromSeconds(1800));
  EXPECT_EQ(ParseDate("23:59:59"), DateValue::FromSeconds(86399));
}

TEST(ParseDate, DaysThatTheCalendarLacksAreRefused) {
  EXPECT_EQ(ParseDate("Feb 30, 2005"), std::nullopt);
  EXPECT_EQ(ParseDate("Feb 29, 2005"), std::nullopt);
  EXPECT_EQ(ParseDate("Feb 29, 1900"), std::nullopt);
  EXPECT_EQ(ParseDate("Feb 29, 2000"), DateValue::FromCivil(2000, 2, 29));
  EXPECT_EQ(ParseDate("Apr 31, 2005"), std::nullopt);
  EXPECT_EQ(ParseDate("Jan 0, 2005"), std::nullopt);
  EXPECT_EQ(ParseDate("Jan 32, 2005"), std::nullopt);
  EXPECT_EQ(ParseDate("2005-13-01"), std::nullopt);
  EXPECT_EQ(ParseDate("2005-00-01"), std::nullopt);
  EXPECT_EQ(ParseDate("Jan 1, 0099"), std::nullopt);
  EXPECT_EQ(ParseDate("Jan 1, 0100"), DateValue::FromCivil(100, 1, 1));
  EXPECT_EQ(ParseDate("Dec 31, 9999 23:59:59"), DateValue::FromCivil(9999, 12, 31, 23, 59, 59));
}

TEST(ParseDate, TimesThatTheClockLacksAreRefused) {
  for (const char* text : {"Jan 3, 1967 24:00", "Jan 3, 1967 23:60", "Jan 3, 1967 23:59:60",
                           "Jan 3, 1967 0:00 AM", "Jan 3, 1967 13:00 PM", "24:00", "99:99"}) {
    EXPECT_EQ(ParseDate(text), std::nullopt) << text;
  }
}

TEST(ParseDate, WhatIsNoDateOrGoesOnBehindItIsRefused) {
  for (const char* text : {"",
                           " ",
                           "abc",
                           "Every Day",
                           "Today",
                           "38353",
                           "Jan 3 1967",
                           "Jan 3, 67",
                           "Jan 3, 19670",
                           "Jan3, 1967",
                           "Jan 3,1967",
                           "Janu 3, 1967",
                           "J 3, 1967",
                           "Mai 3, 1967",
                           "3 Jan 1967",
                           "1/3/1967",
                           "1967-1-3",
                           "1967-01-03x",
                           "Jan 3, 1967 x",
                           "Jan 3, 1967 8",
                           "Jan 3, 1967 8:",
                           "Jan 3, 1967 8:0 PM",
                           "Jan 3, 1967 8:000",
                           "Jan 3, 1967 8:00 XM",
                           "Jan 3, 1967 8:00 P",
                           "Jan 3, 1967 8:00 PM x",
                           "Jan 3, 1967 8:00 PMx",
                           "Jan 3, 1967 8:00:",
                           "Jan 3, 1967 8:00:0",
                           "Jan 3, 19678:00",
                           "-8:00",
                           "8:00 -",
                           "Jan 123, 1967",
                           "Jan -3, 1967",
                           "Jan 3, 1967\n",
                           "8:00\t",
                           "1967-01-0308:00"}) {
    EXPECT_EQ(ParseDate(text), std::nullopt) << "'" << text << "'";
  }
  EXPECT_EQ(ParseDate(std::string_view("Jan 3, 1967\0", 12)), std::nullopt);
}

TEST(ParseDate, GivesBackWhatWasFormatted) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937_64 random(seed);
  const std::int64_t first = DateValue::FromCivil(100, 1, 1).Seconds();
  const std::int64_t last = DateValue::FromCivil(9999, 12, 31, 23, 59, 59).Seconds();
  std::uniform_int_distribution<std::int64_t> moments(first, last);
  for (int round = 0; round < 20000; ++round) {
    const DateValue date = DateValue::FromSeconds(moments(random));
    for (const char* pattern : {"mmm d, yyyy hh:nn:ss ", "mmmm d, yyyy h:nn:ss AM/PM", "yyyy-mm-dd hh:nn:ss",
                                "mmm d, yyyy h:nn:ss am/pm"}) {
      ASSERT_EQ(ParseDate(FormatDate(date, pattern)), date) << FormatDate(date, pattern);
    }
    const DateValue midnight = DateValue::FromCivil(date.Year(), date.Month(), date.Day());
    for (const char* pattern : {"mmm d, yyyy", "mmmm d, yyyy", "yyyy-mm-dd"}) {
      ASSERT_EQ(ParseDate(FormatDate(date, pattern)), midnight) << FormatDate(date, pattern);
    }
    ASSERT_EQ(ParseDate(FormatDate(date, "h:nn AM/PM")),
              DateValue::FromCivil(1899, 12, 30, date.Hour(), date.Minute()));
  }
}

}  // namespace
}  // namespace kestrune::base
