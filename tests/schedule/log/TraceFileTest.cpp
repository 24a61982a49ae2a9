#include <chrono>

#include <gtest/gtest.h>

#include "base/DateValue.h"
#include "schedule/log/TraceFile.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using std::chrono::milliseconds;

class TraceFileTest : public ::testing::Test {
 protected:
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Kestrune2006-02-09_0907.txt";

  MemoryFiles files_;
  FakeEnvironment environment_;
  SimulatedEventLoop loop_{base::DateValue::FromCivil(2006, 2, 9, 9, 7, 30)};
  schedule::TraceFile trace_{files_, environment_, loop_};
};

TEST_F(TraceFileTest, IsNamedForTheMinuteInTheDataFolder) {
  trace_.Open();
  EXPECT_TRUE(trace_.IsOpen());
  EXPECT_EQ(files_.Text(kPath), "");
}

TEST_F(TraceFileTest, TruncatesAFileOfTheSameMinute) {
  files_.Put(kPath, "old\n");
  trace_.Open();
  EXPECT_EQ(files_.Text(kPath), "");
}

TEST_F(TraceFileTest, LinesBearTheSecondsSinceMidnightAndNoDate) {
  trace_.Open();
  trace_.WriteLine("first");
  loop_.Sleep(milliseconds(250));
  trace_.WriteLine("second");
  EXPECT_EQ(files_.Text(kPath), "32850 first\n32850.25 second\n");
}

TEST_F(TraceFileTest, SecondsAreSinglePrecision) {
  loop_.StepWallClock(std::chrono::hours(14));
  loop_.Sleep(milliseconds(456));
  trace_.Open();
  trace_.WriteLine("late");
  EXPECT_EQ(files_.Text("/home/user/Application Data/Kestrune/Kestrune2006-02-09_2307.txt"),
            "83250.45 late\n");
}

TEST_F(TraceFileTest, ControlCharactersMakeNoSecondLine) {
  trace_.Open();
  trace_.WriteLine("a\r\n32850 b");
  EXPECT_EQ(files_.Text(kPath), "32850 a  32850 b\n");
}

TEST_F(TraceFileTest, OpeningAgainKeepsTheFile) {
  trace_.Open();
  trace_.WriteLine("first");
  trace_.Open();
  EXPECT_EQ(files_.Text(kPath), "32850 first\n");
}

TEST_F(TraceFileTest, WritesNothingUnlessOpen) {
  trace_.WriteLine("early");
  trace_.Open();
  trace_.Close();
  EXPECT_FALSE(trace_.IsOpen());
  trace_.WriteLine("late");
  EXPECT_EQ(files_.Text(kPath), "");
}

TEST_F(TraceFileTest, AFileThatCannotBeOpenedStaysClosed) {
  files_.FailNext(FileOperation::Open);
  trace_.Open();
  EXPECT_FALSE(trace_.IsOpen());
  trace_.WriteLine("lost");
  EXPECT_FALSE(files_.Exists(kPath));
}

}  // namespace
}  // namespace kestrune::test
