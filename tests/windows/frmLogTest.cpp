#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <chrono>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingsSection.h"
#include "presenters/LogWindow.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingShell.h"
#include "support/ScriptedDialogs.h"
#include "windows/frmLog.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kLog = "/data/Kestrune.log";

std::string NumberedLines(int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) text += fmt::format("line {}\n", i);
  return text;
}

class frmLogTest : public ::testing::Test {
 protected:
  frmLogTest() {
    list_.SetLogPath(kLog);
    files_.MakeFolders("/tmp");
    files_.MakeFolders("/data");
    window_.HotKey = [this](int key) { hotKeys_.push_back(key); };
    window_.Hidden = [this] { ++hidden_; };
  }

  void Show() {
    window_.show();
    QTest::qWait(0);
  }
  void Add(int number) {
    list_.DoLog(fmt::format("line {}", number));
    QTest::qWait(0);
  }
  void Load(int lines) {
    files_.Put(kLog, NumberedLines(1, lines));
    list_.DoLog("Load");
    QTest::qWait(0);
  }

  QListView& lstLog() { return *window_.findChild<QListView*>(QStringLiteral("lstLog")); }
  QPushButton& cmdClear() { return *window_.findChild<QPushButton*>(QStringLiteral("cmdClear")); }
  QScrollBar& Bar() { return *lstLog().verticalScrollBar(); }
  bool AtEnd() { return Bar().value() == Bar().maximum(); }
  std::string TopLine() { return lstLog().indexAt(QPoint(3, 3)).data().toString().toStdString(); }
  std::string Selected() { return lstLog().currentIndex().data().toString().toStdString(); }
  int Rows() { return lstLog().model()->rowCount(); }

  MemoryFiles files_;
  FakeEnvironment environment_;
  RecordingShell shell_;
  ScriptedDialogs dialogs_;
  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  schedule::LogList list_{files_};
  presenters::LogWindow rules_{list_, files_, environment_, shell_, dialogs_};
  windows::frmLog window_{rules_, section_};
  std::vector<int> hotKeys_;
  int hidden_ = 0;
};

TEST_F(frmLogTest, ItsControlsHaveTheirTextsAndTips) {
  EXPECT_EQ(window_.windowTitle(), QStringLiteral("Kestrune Recording Log"));
  EXPECT_EQ(cmdClear().text(), QStringLiteral("Clear"));
  EXPECT_EQ(cmdClear().toolTip(), QStringLiteral("Clear recording log"));
  EXPECT_FALSE(lstLog().accessibleName().isEmpty());
}

TEST_F(frmLogTest, TheNewestLineIsInViewAndSelected) {
  Load(200);
  Show();
  EXPECT_TRUE(AtEnd());
  EXPECT_EQ(Selected(), "line 200");
  Add(201);
  EXPECT_TRUE(AtEnd());
  EXPECT_EQ(Selected(), "line 201");
  EXPECT_EQ(Rows(), 201);
}

TEST_F(frmLogTest, AUserWhoReadsAboveIsNotDisturbed) {
  Load(200);
  Show();
  Bar().setValue(50);
  lstLog().setCurrentIndex(lstLog().model()->index(52, 0));
  const std::string top = TopLine();
  for (int i = 201; i <= 230; ++i) Add(i);
  EXPECT_EQ(TopLine(), top);
  EXPECT_EQ(Selected(), "line 53");
  EXPECT_EQ(Rows(), 230);
}

TEST_F(frmLogTest, AUserWhoReadsAboveIsNotDisturbedByOldLinesThatGo) {
  Load(4999);
  list_.DoLog("line 5000");
  Show();
  Bar().setValue(2000);
  const std::string top = TopLine();
  for (int i = 5001; i <= 5040; ++i) Add(i);
  EXPECT_EQ(TopLine(), top);
  EXPECT_EQ(Rows(), 5000);
  Bar().setValue(10);
  for (int i = 5041; i <= 5060; ++i) Add(i);
  EXPECT_EQ(TopLine(), "line 61") << "what is gone cannot be read on";
}

TEST_F(frmLogTest, BackAtTheEndTheWindowFollowsAgain) {
  Load(200);
  Show();
  Bar().setValue(50);
  Add(201);
  Bar().setValue(Bar().maximum());
  Add(202);
  EXPECT_TRUE(AtEnd());
  EXPECT_EQ(Selected(), "line 202");
}

TEST_F(frmLogTest, ASmallerWindowStillFollows) {
  Load(200);
  Show();
  window_.resize(400, 200);
  QTest::qWait(0);
  EXPECT_TRUE(AtEnd());
  Add(201);
  EXPECT_TRUE(AtEnd());
}

TEST_F(frmLogTest, ALoadOf6000LinesIsShownAndTheListStaysAt5000) {
  Load(6000);
  Show();
  EXPECT_EQ(Rows(), 4999);
  Add(6001);
  EXPECT_EQ(Rows(), 5000);
  Add(6002);
  EXPECT_EQ(Rows(), 5000);
  EXPECT_EQ(lstLog().model()->index(0, 0).data().toString(), QStringLiteral("line 1003"));
  EXPECT_EQ(Selected(), "line 6002");
}

TEST_F(frmLogTest, ClosingOnlyHidesAndItComesBackWithAllItsLines) {
  Load(20);
  Show();
  EXPECT_FALSE(window_.close());
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(hidden_, 1);
  for (int i = 21; i <= 120; ++i) list_.DoLog(fmt::format("line {}", i));
  Show();
  EXPECT_EQ(Rows(), 120);
  EXPECT_TRUE(AtEnd());
  EXPECT_EQ(Selected(), "line 120");
}

TEST_F(frmLogTest, ShutdownReallyCloses) {
  Show();
  window_.QuitFlag = true;
  EXPECT_TRUE(window_.close());
  EXPECT_EQ(hidden_, 0);
}

TEST_F(frmLogTest, AClosePutsPlaceAndSizeIntoTheSettings) {
  Show();
  window_.move(100, 50);
  window_.resize(600, 300);
  store_.Calls.clear();
  window_.close();
  EXPECT_THAT(store_.Calls,
              ElementsAre("save Lorimel/Kestrune/LogTop=750", "save Lorimel/Kestrune/LogLeft=1500",
                          "save Lorimel/Kestrune/LogHeight=4500", "save Lorimel/Kestrune/LogWidth=9000"));
  const windows::frmLog next(rules_, section_);
  EXPECT_EQ(next.pos(), QPoint(100, 50));
  EXPECT_EQ(next.size(), QSize(600, 300));
}

TEST_F(frmLogTest, AWindowThatWasNeverShownLeavesTheSettingsAlone) {
  store_.Calls.clear();
  window_.QuitFlag = true;
  window_.close();
  EXPECT_THAT(store_.Calls, IsEmpty());
}

TEST_F(frmLogTest, AMinimisedWindowLeavesTheSettingsAlone) {
  window_.showMinimized();
  store_.Calls.clear();
  window_.close();
  EXPECT_THAT(store_.Calls, IsEmpty());
}

TEST_F(frmLogTest, AMaximisedWindowGoesBackToNormal) {
  Show();
  window_.setWindowState(Qt::WindowMaximized);
  QTest::qWait(0);
  EXPECT_FALSE(window_.isMaximized());
}

TEST_F(frmLogTest, ItIsNoSmallerThan2000By1000Twips) {
  window_.resize(1, 1);
  EXPECT_GE(window_.width() * 15, 2000);
  EXPECT_GE(window_.height() * 15, 1000);
}

TEST_F(frmLogTest, ClearIsAskedForAndDone) {
  Load(3);
  Show();
  dialogs_.Answer = platform::MessageAnswer::Yes;
  QTest::mouseClick(&cmdClear(), Qt::LeftButton);
  EXPECT_EQ(dialogs_.Shown.size(), 1U);
  EXPECT_EQ(Rows(), 0);
  EXPECT_EQ(files_.Text(kLog), "");
}

TEST_F(frmLogTest, ADoubleClickAnywhereInTheListOpensACopy) {
  Load(3);
  Show();
  const QPoint below(10, lstLog().viewport()->height() - 3);
  QTest::mouseDClick(lstLog().viewport(), Qt::LeftButton, {}, below);
  EXPECT_THAT(shell_.Opened, ElementsAre("/tmp/private1/KestruneLog.txt"));
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(frmLogTest, EnterInTheListOpensACopyToo) {
  Load(3);
  Show();
  QTest::keyClick(&lstLog(), Qt::Key_Return);
  EXPECT_EQ(shell_.Opened.size(), 1U);
}

TEST_F(frmLogTest, HotKeysGoToTheMainWindowWhateverHasTheFocus) {
  Load(3);
  Show();
  QTest::keyClick(&lstLog(), Qt::Key_F3, Qt::ControlModifier);
  QTest::keyClick(&lstLog(), Qt::Key_R, Qt::ControlModifier);
  QTest::keyClick(&cmdClear(), Qt::Key_Y, Qt::ControlModifier);
  QTest::keyClick(&lstLog(), Qt::Key_A, Qt::ControlModifier);
  EXPECT_THAT(hotKeys_, ElementsAre(114, 'R', 'Y'));
}

TEST_F(frmLogTest, EscapeHides) {
  Show();
  QTest::keyClick(&lstLog(), Qt::Key_Escape);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(hidden_, 1);
}

TEST_F(frmLogTest, ALineFromTheRadioIsNotMarkup) {
  list_.DoLog("<b>Moon & Sun</b>");
  EXPECT_EQ(lstLog().model()->index(0, 0).data().toString(), QStringLiteral("<b>Moon & Sun</b>"));
}

}  // namespace
}  // namespace kestrune::test
