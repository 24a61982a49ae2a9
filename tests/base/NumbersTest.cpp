#include <cmath>
#include <iostream>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/Numbers.h"

namespace kestrune::base {
namespace {

TEST(LeadingNumber, TakesTheNumberAtTheStart) {
  struct Row {
    const char* Text;
    double Number;
  };
  for (const Row& row : {Row{"", 0},
                         Row{" ", 0},
                         Row{"abc", 0},
                         Row{"12abc", 12},
                         Row{"1 2", 12},
                         Row{" 1\t2\r\n3", 123},
                         Row{"20 - The Hits", 20},
                         Row{"0:30", 0},
                         Row{"12:30", 12},
                         Row{"-5", -5},
                         Row{"- 5", -5},
                         Row{"+5", 5},
                         Row{"--5", 0},
                         Row{"+-5", 0},
                         Row{"5-3", 5},
                         Row{"-.5", -0.5},
                         Row{".5.5", 0.5},
                         Row{"5.", 5},
                         Row{".", 0},
                         Row{"-.", 0},
                         Row{"-", 0},
                         Row{"1.5e", 1.5},
                         Row{"1e3", 1000},
                         Row{"1E3x", 1000},
                         Row{"1e+3", 1000},
                         Row{"1e-3", 0.001},
                         Row{"1e+", 1},
                         Row{"1e-x", 1},
                         Row{"1e+-3", 1},
                         Row{"e3", 0},
                         Row{"128 Stereo", 128},
                         Row{"1,000", 1},
                         Row{"007", 7},
                         Row{"&H1F", 31},
                         Row{"&h1fg", 31},
                         Row{"& H 1 F", 31},
                         Row{"&HG", 0},
                         Row{"&H", 0},
                         Row{"&", 0},
                         Row{"&O17", 15},
                         Row{"&o178", 15},
                         Row{"&X1", 0},
                         Row{"-&H1", 0},
                         Row{"inf", 0},
                         Row{"nan", 0},
                         Row{"0x1F", 0},
                         Row{"\xC2\xA0"
                             "5",
                             0}}) {
    EXPECT_DOUBLE_EQ(LeadingNumber(row.Text), row.Number) << "'" << row.Text << "'";
  }
  EXPECT_EQ(LeadingNumber(std::string_view("1\0"
                                           "2",
                                           3)),
            1);
}

TEST(LeadingNumber, WhatADoubleCannotHoldIsInfiniteOrNothing) {
  EXPECT_EQ(LeadingNumber("1e400"), HUGE_VAL);
  EXPECT_EQ(LeadingNumber("-1e400"), -HUGE_VAL);
  EXPECT_EQ(LeadingNumber("1e99999999999999999999"), HUGE_VAL);
  EXPECT_EQ(LeadingNumber(std::string(400, '9')), HUGE_VAL);
  EXPECT_EQ(LeadingNumber("1e-400"), 0.0);
  EXPECT_EQ(LeadingNumber("1e-99999999999999999999"), 0.0);
  EXPECT_EQ(LeadingNumber("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(LeadingNumber("0." + std::string(400, '0') + "1e10"), 0.0);
}

TEST(RoundHalfEven, HalvesGoToTheEvenNeighbourOnBothSides) {
  struct Row {
    double Value;
    double Rounded;
  };
  for (const Row& row :
       {Row{0.5, 0}, Row{1.5, 2}, Row{2.5, 2}, Row{3.5, 4}, Row{-0.5, 0}, Row{-1.5, -2}, Row{-2.5, -2},
        Row{-3.5, -4}, Row{2.4999, 2}, Row{2.5001, 3}, Row{-2.5001, -3}, Row{0.49999999999999994, 0},
        Row{11.5, 12}, Row{10.5, 10}, Row{7, 7}, Row{1e300, 1e300}}) {
    EXPECT_EQ(RoundHalfEven(row.Value), row.Rounded) << row.Value;
  }
}

TEST(ToInt16, TakesWholeTextsWithinItsWidth) {
  EXPECT_EQ(ToInt16("44"), 44);
  EXPECT_EQ(ToInt16("  -40  "), -40);
  EXPECT_EQ(ToInt16("+7"), 7);
  EXPECT_EQ(ToInt16("2.5"), 2);
  EXPECT_EQ(ToInt16("3.5"), 4);
  EXPECT_EQ(ToInt16("1e2"), 100);
  EXPECT_EQ(ToInt16("&H10"), 16);
  EXPECT_EQ(ToInt16("32767"), 32767);
  EXPECT_EQ(ToInt16("32767.4"), 32767);
  EXPECT_EQ(ToInt16("-32768"), -32768);
  EXPECT_EQ(ToInt16("-32768.5"), -32768);
}

TEST(ToInt16, FailsOutsideItsWidth) {
  EXPECT_EQ(ToInt16("32767.5"), std::nullopt);
  EXPECT_EQ(ToInt16("32768"), std::nullopt);
  EXPECT_EQ(ToInt16("-32768.6"), std::nullopt);
  EXPECT_EQ(ToInt16("-32769"), std::nullopt);
  EXPECT_EQ(ToInt16("1e400"), std::nullopt);
  EXPECT_EQ(ToInt16(32767.5), std::nullopt);
  EXPECT_EQ(ToInt16(-32768.5), -32768);
  EXPECT_EQ(ToInt16(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

TEST(ToInt16, FailsOnWhatIsNoNumber) {
  for (const char* text :
       {"", " ", "abc", "12abc", "1 2", "1e", "-", ".", "1,000", "True", "\t5", "0x10", "&H", "5&"}) {
    EXPECT_EQ(ToInt16(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(ToInt32, KeepsToItsWidth) {
  EXPECT_EQ(ToInt32("44100"), 44100);
  EXPECT_EQ(ToInt32("2147483647"), 2147483647);
  EXPECT_EQ(ToInt32("2147483647.5"), std::nullopt);
  EXPECT_EQ(ToInt32("2147483648"), std::nullopt);
  EXPECT_EQ(ToInt32("-2147483648.5"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ToInt32("-2147483649"), std::nullopt);
  EXPECT_EQ(ToInt32("44100 Hz"), std::nullopt);
  EXPECT_EQ(ToInt32(0.5), 0);
  EXPECT_EQ(ToInt32(1.5), 2);
}

TEST(ToSingle, TakesNumbersOfSinglePrecision) {
  EXPECT_EQ(ToSingle("1234.5"), 1234.5F);
  EXPECT_EQ(ToSingle("-1"), -1.0F);
  EXPECT_EQ(ToSingle(" 0.1 "), 0.1F);
  EXPECT_EQ(ToSingle("3.4e38"), 3.4e38F);
  EXPECT_EQ(ToSingle("3.5e38"), std::nullopt);
  EXPECT_EQ(ToSingle("-1e39"), std::nullopt);
  EXPECT_EQ(ToSingle("1e-60"), 0.0F);
  EXPECT_EQ(ToSingle(""), std::nullopt);
  EXPECT_EQ(ToSingle("1x"), std::nullopt);
}

TEST(ToBool, TakesTheWordsAndAnyNumber) {
  EXPECT_EQ(ToBool("True"), true);
  EXPECT_EQ(ToBool("tRUE"), true);
  EXPECT_EQ(ToBool(" False "), false);
  EXPECT_EQ(ToBool("-1"), true);
  EXPECT_EQ(ToBool("1"), true);
  EXPECT_EQ(ToBool("0.4"), true);
  EXPECT_EQ(ToBool("0"), false);
  EXPECT_EQ(ToBool("-0.0"), false);
  for (const char* text : {"", "yes", "Tru", "True1", "1 2", "#TRUE#"}) {
    EXPECT_EQ(ToBool(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(BoolText, IsOneOfTwoWords) {
  EXPECT_EQ(BoolText(true), "True");
  EXPECT_EQ(BoolText(false), "False");
}

TEST(SingleText, HasAtMostSevenDigitsAndNoEndZeros) {
  struct Row {
    float Value;
    const char* Text;
  };
  for (const Row& row : {Row{0.0F, "0"}, Row{-0.0F, "0"}, Row{1.0F, "1"}, Row{-1.5F, "-1.5"},
                         Row{0.1F, "0.1"}, Row{100.0F, "100"}, Row{1.0F / 3.0F, "0.3333333"},
                         Row{2.0F / 3.0F, "0.6666667"}, Row{86399.99F, "86399.99"},
                         Row{43200.25F, "43200.25"}, Row{1234567.0F, "1234567"}, Row{123456.7F, "123456.7"},
                         Row{0.0001F, "0.0001"}, Row{0.00001F, "1E-05"}, Row{12345678.0F, "1.234568E+07"},
                         Row{15360.0F, "15360"}, Row{std::numeric_limits<float>::infinity(), "0"},
                         Row{std::numeric_limits<float>::quiet_NaN(), "0"}}) {
    EXPECT_EQ(SingleText(row.Value), row.Text) << row.Value;
  }
}

TEST(SingleText, ReadsBackToSevenDigits) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> values(-100000.0F, 100000.0F);
  for (int round = 0; round < 10000; ++round) {
    const float value = values(random);
    const std::string text = SingleText(value);
    const auto read = ToSingle(text);
    ASSERT_TRUE(read.has_value()) << text;
    ASSERT_NEAR(*read, value, std::abs(value) * 1e-6F) << text;
    ASSERT_EQ(SingleText(*read), text);
  }
}

TEST(SixtiesText, TheRestHasTwoDigits) {
  EXPECT_EQ(SixtiesText(0), "0:00");
  EXPECT_EQ(SixtiesText(59), "0:59");
  EXPECT_EQ(SixtiesText(60), "1:00");
  EXPECT_EQ(SixtiesText(3725), "62:05");
}

}  // namespace
}  // namespace kestrune::base
