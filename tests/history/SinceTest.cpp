#include <string>

#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "history/Since.h"

namespace kestrune::history {
namespace {

using base::DateValue;

// A Sunday.
const DateValue kNow = DateValue::FromCivil(2026, 11, 22, 7, 30, 10);

std::string Read(std::string_view text) {
  const SinceRead read = ReadSince(text, kNow);
  return read.Error.empty() ? base::FormatDate(read.Since, "yyyy-mm-dd hh:nn:ss") : read.Error;
}

struct Case {
  const char* Text;
  const char* Moment;
};

TEST(Since, ReadsAPersonsWords) {
  const Case kCases[] = {
      {"last night", "2026-11-21 18:00:00"},
      {" Last Night ", "2026-11-21 18:00:00"},
      {"yesterday 18:00", "2026-11-21 18:00:00"},
      {"yesterday 6:00 PM", "2026-11-21 18:00:00"},
      {"YESTERDAY", "2026-11-21 00:00:00"},
      {"today", "2026-11-22 00:00:00"},
      {"today 07:30:10", "2026-11-22 07:30:10"},
      {"18:00", "2026-11-21 18:00:00"},
      {"7:30", "2026-11-22 07:30:00"},
      {"7:31", "2026-11-21 07:31:00"},
      {"2026-11-21", "2026-11-21 00:00:00"},
      {"2026-11-21 18:00", "2026-11-21 18:00:00"},
      {"Nov 21, 2026 8:00 PM", "2026-11-21 20:00:00"},
      {"monday", "2026-11-16 00:00:00"},
      {"sat 20:00", "2026-11-21 20:00:00"},
      {"sunday", "2026-11-22 00:00:00"},
      {"sunday 07:30", "2026-11-22 07:30:00"},
      {"sunday 07:31", "2026-11-15 07:31:00"},
      {"90m", "2026-11-22 06:00:10"},
      {"3h", "2026-11-22 04:30:10"},
      {"3 hours", "2026-11-22 04:30:10"},
      {"1 hour ago", "2026-11-22 06:30:10"},
      {"2d", "2026-11-20 07:30:10"},
      {"1 week", "2026-11-15 07:30:10"},
  };
  for (const Case& one : kCases) {
    EXPECT_EQ(Read(one.Text), one.Moment) << one.Text;
    EXPECT_TRUE(IsSince(one.Text)) << one.Text;
  }
}

TEST(Since, SaysWhatItWouldUnderstand) {
  for (const char* text : {"",
                           " ",
                           "soon",
                           "3",
                           "h",
                           "0h",
                           "-3h",
                           "3x",
                           "3 h ours",
                           "100001h",
                           "99999999999h",
                           "25:00",
                           "yesterday x",
                           "yesterday 2026-11-21",
                           "someday 18:00",
                           "2026-13-01",
                           "2026-02-29",
                           "last",
                           "night",
                           "ago",
                           "3 ago",
                           "monday tuesday",
                           "\x1B[31m",
                           "yesterday\n18:00"}) {
    EXPECT_EQ(Read(text), "that is no moment; expected " + std::string(kSinceAllowed)) << text;
    EXPECT_FALSE(IsSince(text)) << text;
  }
}

TEST(Since, WhatIsStillToComeIsRefused) {
  EXPECT_EQ(Read("today 07:31"), "2026-11-22 07:31 is still to come");
  EXPECT_EQ(Read("2026-11-23"), "2026-11-23 00:00 is still to come");
  EXPECT_TRUE(IsSince("2026-11-23")) << "it is a moment, and will be a past one";
}

TEST(Since, TheLongestCountIsADateToo) {
  EXPECT_EQ(Read("100000w"), "0110-05-11 07:30:10");
}

}  // namespace
}  // namespace kestrune::history
