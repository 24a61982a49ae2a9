#include <optional>
#include <string>
#include <utility>

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
  std::optional<presenters::LogWindow> window_{std::in_place, list_, files_, environment_, shell_, dialogs_};
};

TEST_F(LogWindowTest, ClearAsksFirst) {
  files_.Put(kLog, "one\n");
  list_.DoLog("Load");
  dialogs_.Answer = platform::MessageAnswer::No;
  window_->cmdClear();
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
  window_->cmdClear();
  EXPECT_THAT(list_.Lines(), IsEmpty());
  EXPECT_EQ(files_.Text(kLog), "");
}

TEST_F(LogWindowTest, ACopyIsOpenedAndTheLogGrowsOn) {
  files_.Put(kLog, "one\ntwo\n");
  window_->OpenCopy();
  EXPECT_THAT(shell_.Opened, ElementsAre("/tmp/private1/KestruneLog.txt"));
  EXPECT_TRUE(files_.Append(kLog, "three\n"));
  EXPECT_EQ(files_.Text("/tmp/private1/KestruneLog.txt"), "one\ntwo\n");
}

TEST_F(LogWindowTest, ACopyReplacesTheEarlierOne) {
  files_.Put(kLog, "old and longer\n");
  window_->OpenCopy();
  files_.Put(kLog, "new\n");
  window_->OpenCopy();
  EXPECT_EQ(files_.Text("/tmp/private1/KestruneLog.txt"), "new\n");
  EXPECT_FALSE(files_.Exists("/tmp/private2")) << "one folder does for the life of the window";
}

TEST_F(LogWindowTest, NothingIsWrittenInTheCommonTemporaryFolder) {
  files_.Put(kLog, "one\n");
  files_.Put("/tmp/KestruneLog.txt", "another user's");
  window_->OpenCopy();
  EXPECT_EQ(files_.Text("/tmp/KestruneLog.txt"), "another user's");
}

TEST_F(LogWindowTest, TheCopyGoesWithTheWindow) {
  files_.Put(kLog, "one\n");
  window_->OpenCopy();
  window_.reset();
  EXPECT_FALSE(files_.Exists("/tmp/private1"));
}

TEST_F(LogWindowTest, ACopyThatSomebodyHasClearedAwayIsMadeAnew) {
  files_.Put(kLog, "one\n");
  window_->OpenCopy();
  EXPECT_TRUE(files_.Remove("/tmp/private1/KestruneLog.txt"));
  EXPECT_TRUE(files_.RemoveFolder("/tmp/private1"));
  window_->OpenCopy();
  EXPECT_EQ(shell_.Opened.back(), "/tmp/private2/KestruneLog.txt");
}

TEST_F(LogWindowTest, WithoutALogFileNothingIsOpened) {
  window_->OpenCopy();
  EXPECT_THAT(shell_.Opened, IsEmpty());
}

TEST_F(LogWindowTest, WithoutAPrivateFolderNothingIsOpened) {
  files_.Put(kLog, "one\n");
  files_.FailNext(FileOperation::CreatePrivateFolder);
  window_->OpenCopy();
  EXPECT_THAT(shell_.Opened, IsEmpty());
}

TEST_F(LogWindowTest, AnOldCopyIsNotShownForALogThatCannotBeCopied) {
  files_.Put(kLog, "old\n");
  window_->OpenCopy();
  files_.Put(kLog, "new\n");
  files_.FailNext(FileOperation::Copy);
  window_->OpenCopy();
  EXPECT_EQ(shell_.Opened.size(), 1U);
}

TEST_F(LogWindowTest, AMissingViewerIsNoNews) {
  files_.Put(kLog, "one\n");
  shell_.Works = false;
  window_->OpenCopy();
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
