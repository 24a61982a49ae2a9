#include <cstdlib>
#include <iostream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "flow/DayOfRadio.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// Another seed for each run, printed, or the one of the variable KESTRUNE_SEED.
std::uint32_t Seed() {
  const char* asked = std::getenv("KESTRUNE_SEED");
  const std::uint32_t seed =
      asked != nullptr ? static_cast<std::uint32_t>(std::atol(asked)) : std::random_device{}();
  std::cout << "seed " << seed << std::endl;
  return seed;
}

/// A few hours, or those of the variable KESTRUNE_DAY_HOURS.
std::chrono::hours Length(std::chrono::hours few) {
  const char* asked = std::getenv("KESTRUNE_DAY_HOURS");
  return asked != nullptr ? std::chrono::hours(std::atol(asked)) : few;
}

constexpr FaultyLine::Faults kBadLine{
    .LostCommand = 0.01, .NoiseBefore = 0.01, .LostReply = 0.01, .CorruptByte = 0.01, .SplitFrame = 0.05};

TEST(DayOfRadio, AnHonestRadioLosesNothing) {
  const std::chrono::hours length = Length(4h);
  DayOfRadio day({.Seed = Seed(), .Length = length, .BadMoments = false});
  day.Run();
  EXPECT_THAT(day.Complaints(), IsEmpty());
  EXPECT_EQ(day.Ledger().Breaks, 0)
      << "every file begins with the sample after the last one of the file before";
  EXPECT_EQ(day.FramesLost(), 0);
  EXPECT_GT(day.Ledger().Captures, 3);
  // In a few hours some seeds press Record too rarely to keep a song.
  if (length >= 24h) {
    EXPECT_GT(day.SongsKept(), 0);
  }
  EXPECT_GT(day.Ledger().Samples, length / 1ms * 95 / 100);
  EXPECT_THAT(day.Misnamed(), IsEmpty()) << "the radio played what the name says";
}

TEST(DayOfRadio, ABadLineAndABadRadioBreakNothing) {
  DayOfRadio day({.Seed = Seed(), .Length = Length(4h), .Faults = kBadLine});
  day.Run();
  EXPECT_THAT(day.Complaints(), IsEmpty());
  EXPECT_EQ(day.Ledger().Breaks, 0);
  EXPECT_GT(day.Ledger().Captures, 3);
}

TEST(DayOfRadio, ACableThatIsPulledLosesNoSoundAndTheRadioIsFoundAgain) {
  DayOfRadio day({.Seed = Seed(), .Length = Length(2h), .BadMoments = false, .Unplugs = true});
  day.Run();
  EXPECT_THAT(day.Complaints(), IsEmpty());
  EXPECT_EQ(day.Ledger().Breaks, 0);
  EXPECT_EQ(day.FramesLost(), 0);
  EXPECT_THAT(day.Misnamed(), IsEmpty());
  EXPECT_TRUE(day.LineOpenAtTheEnd());
  EXPECT_THAT(day.LogTexts(), Contains("Radio lost on port 1: the device is gone").Times(1));
  EXPECT_THAT(day.LogTexts(), Contains(StartsWith("Radio found again on port 1 after ")).Times(1));
}

TEST(DayOfRadio, EventsAndClocksThatAreSetBreakNothing) {
  DayOfRadio day({.Seed = Seed(), .Length = Length(4h), .Faults = kBadLine, .Schedule = true});
  day.Run();
  EXPECT_THAT(day.Complaints(), IsEmpty());
  EXPECT_EQ(day.Ledger().Breaks, 0);
  if (Length(4h) >= 24h) {
    EXPECT_GT(day.EventsBegun(), 0);
  }
}

TEST(DayOfRadio, CutsByListeningLoseAndDoubleNothing) {
  const std::chrono::hours length = Length(1h);
  DayOfRadio day({.Seed = Seed(),
                  .Length = length,
                  .Faults = kBadLine,
                  .Record = false,
                  .Schedule = true,
                  .Listens = true});
  day.Run();
  std::cout << day.Ledger().Captures << " captures of " << day.Ledger().Samples
            << " samples, memory grown by " << day.BytesGrown() << " bytes without the log" << std::endl;
  EXPECT_THAT(day.Complaints(), IsEmpty());
  EXPECT_EQ(day.Ledger().Breaks, 0);
  EXPECT_EQ(day.FramesLost(), 0);
  EXPECT_GT(day.Ledger().Captures, 3);
  EXPECT_GT(day.Ledger().Samples, 8 * (length / 1ms) * 95 / 100);
  // By text at the one moment and by listening at the other: what is heard and held back is two megabytes.
  EXPECT_LT(day.BytesGrown(), 3'000'000);
}

TEST(DayOfRadio, TheSameSeedGivesTheSameDay) {
  const std::uint32_t seed = Seed();
  std::vector<std::string> logs[2];
  std::uint64_t handlers[2];
  for (int run = 0; run < 2; ++run) {
    DayOfRadio day({.Seed = seed, .Length = 1h, .Faults = kBadLine});
    day.Run();
    logs[run] = day.LogTexts();
    handlers[run] = day.HandlersRun();
  }
  EXPECT_EQ(logs[0], logs[1]);
  EXPECT_EQ(handlers[0], handlers[1]);
}

}  // namespace
}  // namespace kestrune::test
