#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DateValue.h"
#include "schedule/log/Log.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class LogTest : public ::testing::Test {
 protected:
  static constexpr const char* kFolder = "/home/user/Application Data/Kestrune";
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Kestrune.log";
  static constexpr const char* kTrace = "/home/user/Application Data/Kestrune/Kestrune2006-02-09_0907.txt";

  MemoryFiles files_;
  FakeEnvironment environment_;
  SimulatedEventLoop loop_{base::DateValue::FromCivil(2006, 2, 9, 9, 7, 5)};
  schedule::Log log_{files_, environment_, loop_};
};

TEST_F(LogTest, ALineIsTheTimeStampAndTheText) {
  log_.DoLog("Radio found on port 3");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 Radio found on port 3\n");
  EXPECT_THAT(log_.List().Lines(), ElementsAre("Feb 9, 2006 09:07:05 Radio found on port 3"));
}

TEST_F(LogTest, LinesAreAppendedByteForByteEachWithItsOwnTime) {
  log_.DoLog("one");
  loop_.StepWallClock(std::chrono::hours(12) + std::chrono::minutes(50) + std::chrono::seconds(54));
  log_.DoLog("");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 one\nFeb 9, 2006 21:57:59 \n");
}

TEST_F(LogTest, TheFileIsAppendedToOnceALine) {
  files_.MakeFolders(kFolder);
  log_.DoLog("one");
  log_.DoLog("two");
  EXPECT_THAT(files_.Calls, ElementsAre(std::string("Append ") + kPath, std::string("Append ") + kPath));
}

TEST_F(LogTest, AnOlderLogIsKept) {
  files_.Put(kPath, "Jan 1, 2005 00:00:00 old\n");
  log_.DoLog("new");
  EXPECT_EQ(files_.Text(kPath), "Jan 1, 2005 00:00:00 old\nFeb 9, 2006 09:07:05 new\n");
}

TEST_F(LogTest, ClearLeavesAnEmptyFileAndAnEmptyListAndNoLineAboutIt) {
  log_.DoLog("one");
  log_.DoLog("Clear");
  EXPECT_EQ(files_.Text(kPath), "");
  EXPECT_THAT(log_.List().Lines(), IsEmpty());
}

TEST_F(LogTest, OnlyTheExactTextClears) {
  log_.DoLog("clear");
  log_.DoLog("Clear ");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 clear\nFeb 9, 2006 09:07:05 Clear \n");
}

TEST_F(LogTest, LoadIsATextLikeAnyOther) {
  files_.Put(kPath, "Jan 1, 2005 00:00:00 old\n");
  log_.DoLog("Load");
  EXPECT_THAT(log_.List().Lines(), ElementsAre("Feb 9, 2006 09:07:05 Load"));
}

TEST_F(LogTest, TheListLoadsTheLogOfItsUnit) {
  files_.Put(kPath, "Jan 1, 2005 00:00:00 single\n");
  files_.Put(std::string(kFolder) + "/Kestrune2.log", "Jan 1, 2005 00:00:00 second\n");
  log_.SetMultiUnit("2");
  log_.List().DoLog("Load");
  EXPECT_THAT(log_.List().Lines(), ElementsAre("Jan 1, 2005 00:00:00 second"));
}

TEST_F(LogTest, TwoUnitsWriteDifferentFiles) {
  log_.DoLog("single");
  log_.SetMultiUnit("2");
  log_.DoLog("second");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 single\n");
  EXPECT_EQ(files_.Text(std::string(kFolder) + "/Kestrune2.log"), "Feb 9, 2006 09:07:05 second\n");
}

TEST_F(LogTest, TheFolderIsMadeAnewIfItGoesAway) {
  log_.DoLog("one");
  ASSERT_TRUE(files_.Remove(kPath));
  ASSERT_TRUE(files_.RemoveFolder(kFolder));
  log_.DoLog("two");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 two\n");
}

TEST_F(LogTest, WithoutAProfileTheLogStandsBesideTheProgram) {
  environment_.Variables["userprofile"] = "";
  files_.MakeFolders("/opt/kestrune");
  schedule::Log log(files_, environment_, loop_);
  log.DoLog("here");
  EXPECT_EQ(files_.Text("/opt/kestrune/Kestrune.log"), "Feb 9, 2006 09:07:05 here\n");
}

TEST_F(LogTest, ALineThatCannotReachTheDiskStillReachesTheList) {
  files_.DiskFull = true;
  log_.DoLog("lost");
  EXPECT_FALSE(files_.Exists(kPath));
  EXPECT_THAT(log_.List().Lines(), ElementsAre("Feb 9, 2006 09:07:05 lost"));
}

TEST_F(LogTest, ALineAfterAFailureIsWrittenAgain) {
  files_.FailNext(FileOperation::Append);
  log_.DoLog("lost");
  log_.DoLog("kept");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 kept\n");
}

TEST_F(LogTest, AFolderThatCannotBeWrittenIsNoFailure) {
  files_.MakeFolders(kFolder);
  files_.MakeUnwritable(kFolder);
  log_.DoLog("one");
  log_.DoLog("Clear");
  log_.DoLog("two");
  EXPECT_THAT(log_.List().Lines(), ElementsAre("Feb 9, 2006 09:07:05 two"));
}

TEST_F(LogTest, TextOfAStrangerForgesNoSecondLine) {
  log_.DoLog(
      "Recorded: A\r\nFeb 9, 2006 09:07:05 B\tC\x7F"
      "D\x1B[31m\xC2\x85"
      "E");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 Recorded: A  Feb 9, 2006 09:07:05 B C D [31m E\n");
  EXPECT_EQ(log_.List().Lines().size(), 1U);
}

TEST_F(LogTest, ANulInATextIsABlank) {
  log_.DoLog(std::string("a\0b", 3));
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 a b\n");
}

TEST_F(LogTest, AccentsAreNoControlCharacters) {
  // Café, a letter of three bytes, and U+00A0, the first character after the control ones.
  log_.DoLog("Caf\xC3\xA9 \xE2\x82\xAC\xC2\xA0.");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 Caf\xC3\xA9 \xE2\x82\xAC\xC2\xA0.\n");
}

TEST_F(LogTest, DebugPrintWithoutDebugModeWritesNothingAnywhere) {
  log_.OpenTrace();
  log_.DebugPrint("Try 1");
  EXPECT_FALSE(log_.Tracing());
  EXPECT_THAT(files_.AllFiles(), IsEmpty());
  EXPECT_THAT(log_.List().Lines(), IsEmpty());
}

TEST_F(LogTest, DebugPrintInDebugModeStandsInTheLogAndInTheTrace) {
  log_.SetDebugMode(true);
  log_.OpenTrace();
  EXPECT_TRUE(log_.Tracing());
  log_.DebugPrint("Try 1");
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 Debug: Try 1\n");
  EXPECT_EQ(files_.Text(kTrace), "32825 Try 1\n");
}

TEST_F(LogTest, DebugPrintReachesTheLogEvenIfTheTraceCannotBeOpened) {
  files_.FailNext(FileOperation::Open);
  log_.SetDebugMode(true);
  log_.OpenTrace();
  log_.DebugPrint("Try 1");
  EXPECT_FALSE(log_.Tracing());
  EXPECT_EQ(files_.Text(kPath), "Feb 9, 2006 09:07:05 Debug: Try 1\n");
}

TEST_F(LogTest, ATraceLineStandsInTheTraceAlone) {
  log_.SetDebugMode(true);
  log_.OpenTrace();
  log_.Trace("#RequestChannelInfo");
  EXPECT_EQ(files_.Text(kTrace), "32825 #RequestChannelInfo\n");
  EXPECT_FALSE(files_.Exists(kPath));
  log_.CloseTrace();
  EXPECT_FALSE(log_.Tracing());
}

TEST_F(LogTest, ClearAsADebugTextClearsNothing) {
  log_.SetDebugMode(true);
  log_.DebugPrint("Clear");
  EXPECT_THAT(log_.List().Lines(), Not(IsEmpty()));
}

}  // namespace
}  // namespace kestrune::test
