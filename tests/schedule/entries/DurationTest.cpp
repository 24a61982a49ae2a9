#include <gtest/gtest.h>

#include "schedule/entries/Duration.h"

namespace kestrune::schedule {
namespace {

TEST(Duration, HoursAndMinutesAroundAColon) {
  EXPECT_EQ(ParseDuration("1:00"), (Duration{1, 0}));
  EXPECT_EQ(ParseDuration(" 12 : 30 "), (Duration{12, 30}));
  EXPECT_EQ(ParseDuration("0:5"), (Duration{0, 5}));
  EXPECT_EQ(ParseDuration("100:-1"), (Duration{100, -1})) << "no range counts here";
  for (const char* text : {"", "1", "1:", ":30", "one:30", "1:00:00", "32768:00"})
    EXPECT_EQ(ParseDuration(text), std::nullopt) << text;
}

TEST(Duration, TheMinutesHaveTwoDigits) {
  EXPECT_EQ(DurationText({.Hours = 0, .Minutes = 5}), "0:05");
  EXPECT_EQ(DurationText({.Hours = 47, .Minutes = 59}), "47:59");
}

}  // namespace
}  // namespace kestrune::schedule
