#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "presenters/GrabKill.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedDialogs.h"
#include "windows/frmGrabKill.h"

namespace kestrune::test {
namespace {

class frmGrabKillTest : public ::testing::Test {
 protected:
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Restriction.txt";

  /// A double click on the artist, and what the user does in the window that it brings.
  template <typename Act>
  void Answer(std::string_view artist, Act act) {
    addition_.SetWindow([&] {
      windows::frmGrabKill window(addition_);
      QTimer::singleShot(0, &window, [&] { act(window); });
      window.exec();
    });
    addition_.DblClick(presenters::GrabKill::Field::Artist, artist);
  }
  static QPushButton* cmdResult(QWidget& window, int index) {
    return window.findChild<QPushButton*>(QStringLiteral("cmdResult_%1").arg(index));
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  RecordingJournal journal_;
  schedule::Restrictions lists_{files_, environment_, journal_};
  presenters::GrabKill addition_{lists_};
};

TEST_F(frmGrabKillTest, ItsControlsHaveTheirTextsAndTips) {
  const struct {
    const char* Caption;
    const char* Tip;
  } kRows[] = {{"Cancel", "Cancel without adding to either list"},
               {"Grab", "Add to the grab list, so it will always be recorded"},
               {"Kill", "Add to the kill list, so it will never be recorded"}};
  Answer("Moon", [&](QDialog& window) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Kestrune Grab/Kill List Addition"));
    EXPECT_TRUE(window.isModal());
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(cmdResult(window, i)->text(), QLatin1String(kRows[i].Caption));
      EXPECT_EQ(cmdResult(window, i)->toolTip(), QLatin1String(kRows[i].Tip));
    }
    window.reject();
  });
}

TEST_F(frmGrabKillTest, TheQuestionShowsOneAmpersandAndNoMarkup) {
  Answer("<b>Salt</b> && Sun", [](QDialog& window) {
    const auto* question = window.findChild<QLabel*>(QStringLiteral("lblQuestion"));
    EXPECT_TRUE(question->text().contains(QStringLiteral("the Artist \"<b>Salt</b> & Sun\" to")));
    EXPECT_EQ(question->textFormat(), Qt::PlainText);
    window.reject();
  });
}

TEST_F(frmGrabKillTest, EachButtonGivesItsIndexAndCloses) {
  Answer("A", [](QDialog& window) { QTest::mouseClick(cmdResult(window, 0), Qt::LeftButton); });
  EXPECT_EQ(addition_.GrabMode(), 0);
  EXPECT_FALSE(files_.Exists(kPath));
  Answer("B", [](QDialog& window) { QTest::mouseClick(cmdResult(window, 1), Qt::LeftButton); });
  Answer("C", [](QDialog& window) { QTest::mouseClick(cmdResult(window, 2), Qt::LeftButton); });
  EXPECT_EQ(files_.Text(kPath), "0B\n2C\n");
}

TEST_F(frmGrabKillTest, EscapeAndTheCloseBoxAddNothing) {
  Answer("A", [](QDialog& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  Answer("B", [](QDialog& window) { window.close(); });
  EXPECT_FALSE(files_.Exists(kPath));
}

TEST_F(frmGrabKillTest, EnterAtOnceAddsNothing) {
  Answer("A", [](QDialog& window) { QTest::keyClick(&window, Qt::Key_Return); });
  EXPECT_FALSE(files_.Exists(kPath));
}

}  // namespace
}  // namespace kestrune::test
