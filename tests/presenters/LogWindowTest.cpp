#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/LogWindow.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingShell.h"
#include "support/ScriptedDialogs.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LogWindowTest : public ::testing::Test {
 protected:
  static constexpr const char* kLog = "/data/Kestrune.log";

  LogWindowTest() {
    list_.SetLogPath(kLog);
    files_.MakeFolders("/tmp");
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  RecordingShell shell_;
  ScriptedDialogs dialogs_;
  schedule::LogList list_{files_};
  presenters::LogWindow window_{list_, files_, environment_, shell_, dialogs_};
};

TEST_F(LogWindowTest, ClearAsksFirst) {
  files_.Put(kLog, "one\n");
  list_.DoLog("Load");
  dialogs_.Answer = platform::MessageAnswer::No;
  window_.cmdClear();
  ASSERT_EQ(dialogs_.Shown.size(), 1U);
  EXPECT_EQ(dialogs_.Shown[0].Title, "Clear Log");
  EXPECT_EQ(dialogs_.Shown[0].Text, "Are you sure you want to clear your log?");
  EXPECT_EQ(dialogs_.Shown[0].Icon, platform::MessageIcon::Question);
  EXPECT_EQ(dialogs_.Shown[0].Buttons, platform::MessageButtons::YesNo);
  EXPECT_THAT(list_.Lines(), ElementsAre("one"));
  EXPECT_EQ(files_.Text(kLog), "one\n");
}

TEST_F(LogWindowTest, ClearEmptiesListAndFileAndLogsNothingAboutIt) {
  files_.Put(kLog, "one\n");
  list_.DoLog("Load");
  dialogs_.Answer = platform::MessageAnswer::Yes;
  window_.cmdClear();
  EXPECT_THAT(list_.Lines(), IsEmpty());
  EXPECT_EQ(files_.Text(kLog), "");
}

TEST_F(LogWindowTest, ACopyIsOpenedAndTheLogGrowsOn) {
  files_.Put(kLog, "one\ntwo\n");
  window_.OpenCopy();
  EXPECT_THAT(shell_.Opened, ElementsAre("/tmp/KestruneLog.txt"));
  EXPECT_TRUE(files_.Append(kLog, "three\n"));
  EXPECT_EQ(files_.Text("/tmp/KestruneLog.txt"), "one\ntwo\n");
}

TEST_F(LogWindowTest, ACopyReplacesTheEarlierOne) {
  files_.Put(kLog, "new\n");
  files_.Put("/tmp/KestruneLog.txt", "old and longer\n");
  window_.OpenCopy();
  EXPECT_EQ(files_.Text("/tmp/KestruneLog.txt"), "new\n");
}

TEST_F(LogWindowTest, WithoutALogFileNothingIsOpened) {
  files_.Put("/tmp/KestruneLog.txt", "old\n");
  window_.OpenCopy();
  EXPECT_THAT(shell_.Opened, IsEmpty());
  EXPECT_EQ(files_.Text("/tmp/KestruneLog.txt"), "old\n");
}

TEST_F(LogWindowTest, AnOldCopyIsNotShownForALogThatCannotBeCopied) {
  files_.Put(kLog, "new\n");
  files_.Put("/tmp/KestruneLog.txt", "old\n");
  files_.FailNext(FileOperation::Copy);
  window_.OpenCopy();
  EXPECT_THAT(shell_.Opened, IsEmpty());
}

TEST_F(LogWindowTest, AMissingViewerIsNoNews) {
  files_.Put(kLog, "one\n");
  shell_.Works = false;
  window_.OpenCopy();
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
