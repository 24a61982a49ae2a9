#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "schedule/log/LogList.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {
namespace {

using schedule::LogList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string NumberedLines(int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) text += "line " + std::to_string(i) + "\n";
  return text;
}

class LogListTest : public ::testing::Test {
 protected:
  LogListTest() { list_.SetLogPath("/data/Kestrune.log"); }

  MemoryFiles files_;
  LogList list_{files_};
};

TEST_F(LogListTest, SixThousandLinesLoadAsTheLast4999AndThenFillUpTo5000) {
  files_.Put("/data/Kestrune.log", NumberedLines(1, 6000));
  list_.DoLog("Load");
  ASSERT_EQ(list_.Lines().size(), 4999U);
  EXPECT_EQ(list_.Lines().front(), "line 1002");
  EXPECT_EQ(list_.Lines().back(), "line 6000");

  list_.DoLog("line 6001");
  EXPECT_EQ(list_.Lines().size(), 5000U);
  EXPECT_EQ(list_.Lines().front(), "line 1002");

  list_.DoLog("line 6002");
  EXPECT_EQ(list_.Lines().size(), 5000U);
  EXPECT_EQ(list_.Lines().front(), "line 1003");
  EXPECT_EQ(list_.Lines().back(), "line 6002");
}

TEST_F(LogListTest, AFileOf5000LinesLoadsAs4999) {
  files_.Put("/data/Kestrune.log", NumberedLines(1, 5000));
  list_.DoLog("Load");
  EXPECT_EQ(list_.Lines().size(), 4999U);
  EXPECT_EQ(list_.Lines().front(), "line 2");
}

TEST_F(LogListTest, AFileOf4999LinesLoadsWhole) {
  files_.Put("/data/Kestrune.log", NumberedLines(1, 4999));
  list_.DoLog("Load");
  EXPECT_EQ(list_.Lines().size(), 4999U);
  EXPECT_EQ(list_.Lines().front(), "line 1");
}

TEST_F(LogListTest, LoadTakesEitherLineEndAndALastLineWithoutOne) {
  files_.Put("/data/Kestrune.log", "one\r\ntwo\n\nfour");
  list_.DoLog("Load");
  EXPECT_THAT(list_.Lines(), ElementsAre("one", "two", "", "four"));
}

TEST_F(LogListTest, LoadOfAMissingFileAddsNothing) {
  list_.DoLog("Load");
  EXPECT_THAT(list_.Lines(), IsEmpty());
  EXPECT_EQ(list_.SelectedLine(), -1);
}

TEST_F(LogListTest, LoadOfAnUnreadableFileAddsNothing) {
  files_.Put("/data/Kestrune.log", "one\n");
  files_.FailNext(FileOperation::Read);
  list_.DoLog("Load");
  EXPECT_THAT(list_.Lines(), IsEmpty());
}

TEST_F(LogListTest, ClearEmptiesListAndFile) {
  files_.Put("/data/Kestrune.log", "one\n");
  list_.DoLog("Load");
  list_.DoLog("Clear");
  EXPECT_THAT(list_.Lines(), IsEmpty());
  EXPECT_EQ(list_.SelectedLine(), -1);
  EXPECT_EQ(files_.Text("/data/Kestrune.log"), "");
}

TEST_F(LogListTest, ClearEmptiesTheListEvenIfTheFileCannotBeWritten) {
  files_.Put("/data/Kestrune.log", "one\n");
  list_.DoLog("Load");
  files_.FailAlways(FileOperation::Replace);
  list_.DoLog("Clear");
  EXPECT_THAT(list_.Lines(), IsEmpty());
  EXPECT_EQ(files_.Text("/data/Kestrune.log"), "one\n");
}

TEST_F(LogListTest, TheCommandsAreCaseSensitive) {
  list_.DoLog("load");
  list_.DoLog("CLEAR");
  EXPECT_THAT(list_.Lines(), ElementsAre("load", "CLEAR"));
}

TEST_F(LogListTest, TheLastLineIsAlwaysSelected) {
  files_.Put("/data/Kestrune.log", "one\ntwo\n");
  list_.DoLog("Load");
  EXPECT_EQ(list_.SelectedLine(), 1);
  list_.DoLog("three");
  EXPECT_EQ(list_.SelectedLine(), 2);
}

TEST_F(LogListTest, AddingALineDoesNotTouchTheFile) {
  list_.DoLog("one");
  EXPECT_THAT(files_.Calls, IsEmpty());
}

TEST_F(LogListTest, TheWindowHearsOfEachChange) {
  std::vector<LogList::Change> changes;
  list_.SetChangeHandler([&](LogList::Change change) { changes.push_back(change); });
  list_.DoLog("Load");
  list_.DoLog("one");
  list_.DoLog("Clear");
  EXPECT_THAT(changes, ElementsAre(LogList::Change::Reset, LogList::Change::Added, LogList::Change::Reset));
}

}  // namespace
}  // namespace kestrune::test
