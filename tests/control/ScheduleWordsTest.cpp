#include <gtest/gtest.h>

#include "control/ScheduleWords.h"
#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::control {
namespace {

using base::DateValue;

TEST(ScheduleWords, EveryWayToGiveADay) {
  const struct {
    const char* Text;
    std::optional<DateValue> Day;
  } kCases[] = {
      {"Every Sunday", schedule::CodedDay(1)},
      {"every saturday", schedule::CodedDay(7)},
      {" Every Day ", schedule::CodedDay(15)},
      {"2026-12-24", DateValue::FromCivil(2026, 12, 24)},
      {"Dec 24, 2026", DateValue::FromCivil(2026, 12, 24)},
      {"december 24, 2026", DateValue::FromCivil(2026, 12, 24)},
      {"2026-02-29", std::nullopt},
      {"2026-12-24 20:00", std::nullopt},
      {"20:00", std::nullopt},
      {"Saturday", std::nullopt},
      {"Every", std::nullopt},
      {"Every Blueday", std::nullopt},
      {"1967-01-07", std::nullopt},
      {"1967-01-16", DateValue::FromCivil(1967, 1, 16)},
      {"", std::nullopt},
  };
  for (const auto& one : kCases) EXPECT_EQ(ReadOn(one.Text), one.Day) << one.Text;
}

TEST(ScheduleWords, EveryWayToGiveATime) {
  const struct {
    const char* Text;
    std::optional<int> Minutes;
  } kCases[] = {{"8:00 PM", 20 * 60},
                {"8:05pm", 20 * 60 + 5},
                {"20:00", 20 * 60},
                {"0:00", 0},
                {"12:00 AM", 0},
                {"12:30 PM", 12 * 60 + 30},
                {"23:59", 23 * 60 + 59},
                {"24:00", std::nullopt},
                {"13:00 PM", std::nullopt},
                {"8:60", std::nullopt},
                {"8", std::nullopt},
                {"8:00:30", std::nullopt},
                {"8:00:00", 8 * 60},
                {"1899-12-30 8:00", std::nullopt},
                {"Dec 30, 1899 8:00", std::nullopt},
                {"-8:00", std::nullopt},
                {"", std::nullopt}};
  for (const auto& one : kCases) EXPECT_EQ(ReadAt(one.Text), one.Minutes) << one.Text;
}

TEST(ScheduleWords, ALengthIsOneMinuteTo47HoursAnd59) {
  const struct {
    const char* Text;
    std::optional<int> Minutes;
  } kCases[] = {{"0:01", 1},
                {"2:00", 120},
                {"47:59", 2879},
                {"02:30", 150},
                {"48:00", std::nullopt},
                {"0:00", std::nullopt},
                {"1:60", std::nullopt},
                {"1:5", std::nullopt},
                {"90", std::nullopt},
                {":30", std::nullopt},
                {"-1:00", std::nullopt},
                {"1:-1", std::nullopt},
                {"001:00", std::nullopt},
                {"", std::nullopt}};
  for (const auto& one : kCases) EXPECT_EQ(ReadFor(one.Text), one.Minutes) << one.Text;
}

TEST(ScheduleWords, ABitRateIsOneOfTheList) {
  EXPECT_EQ(ReadBitRate("128 stereo"), "128 Stereo");
  EXPECT_EQ(ReadBitRate("8 Mono"), "8 Mono");
  for (const char* text : {"128", "320 Stereo", "Stereo", " ", ""})
    EXPECT_EQ(ReadBitRate(text), std::nullopt) << text;
}

TEST(ScheduleWords, AChangeHoldsWhatIsGivenAndNothingElse) {
  const std::vector<std::string> all{"10",     "--on",       "Every Day", "--at",   "8:00 PM",
                                     "--for",  "2:00",       "--channel", "44",     "--integrel",
                                     "on",     "--cleftune", "off",       "--grab", "on",
                                     "--kill", "off",        "--bitrate", "64 mono"};
  const ScheduleChange change = ReadScheduleChange(all);
  EXPECT_EQ(change.Number, 10);
  EXPECT_EQ(change.On, schedule::CodedDay(15));
  EXPECT_EQ(change.At, 20 * 60);
  EXPECT_EQ(change.For, 120);
  EXPECT_EQ(change.Channel, 44);
  EXPECT_EQ(change.Integrel, true);
  EXPECT_EQ(change.Cleftune, false);
  EXPECT_EQ(change.Grab, true);
  EXPECT_EQ(change.Kill, false);
  EXPECT_EQ(change.BitRate, "64 Mono");
  const ScheduleChange one = ReadScheduleChange(std::vector<std::string>{"1", "--kill", "on"});
  EXPECT_FALSE(one.On || one.At || one.For || one.Channel || one.Integrel || one.Cleftune || one.Grab ||
               one.BitRate);
  EXPECT_EQ(one.Kill, true);
}

}  // namespace
}  // namespace kestrune::control
