// The windows of the start: agreement, please wait, splash, messages.
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RecordingShell.h"
#include "support/ScriptedDialogs.h"
#include "support/SimulatedEventLoop.h"
#include "windows/QtDialogs.h"
#include "windows/frmLegal.h"
#include "windows/frmPleaseWait.h"
#include "windows/frmSplash.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string AgreementIn(const QTemporaryDir& folder) {
  QFile file(folder.filePath(QStringLiteral("Agreement.html")));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<html><body><h1>Be fair</h1></body></html>");
  return file.fileName().toStdString();
}

template <typename Control>
Control& Find(QWidget& window, const char* name) {
  auto* control = window.findChild<Control*>(QLatin1String(name));
  if (control == nullptr) throw std::runtime_error(name);
  return *control;
}

TEST(frmLegal, ShowsTheAgreementAndAgreesOnlyWithACheckedBox) {
  const QTemporaryDir folder;
  ScriptedDialogs dialogs;
  windows::frmLegal window(AgreementIn(folder), dialogs);
  window.show();
  EXPECT_EQ(Find<QTextBrowser>(window, "brwAgreement").toPlainText(), QStringLiteral("Be fair"));
  Find<QPushButton>(window, "cmdAgree").click();
  ASSERT_THAT(dialogs.Shown, SizeIs(1));
  EXPECT_EQ(dialogs.Shown[0].Title, "Checkbox Not Checked");
  EXPECT_EQ(dialogs.Shown[0].Text, "You must check the \"I Agree\" checkbox before proceeding.");
  EXPECT_TRUE(window.isVisible());
  Find<QCheckBox>(window, "chkAgree").click();
  Find<QPushButton>(window, "cmdAgree").click();
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(window.result(), QDialog::Accepted);
}

TEST(frmLegal, CancelAndEscapeRefuse) {
  const QTemporaryDir folder;
  ScriptedDialogs dialogs;
  windows::frmLegal window(AgreementIn(folder), dialogs);
  window.show();
  Find<QPushButton>(window, "cmdCancel").click();
  EXPECT_EQ(window.result(), QDialog::Rejected);
  EXPECT_FALSE(window.isVisible());
  window.show();
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
}

TEST(frmLegal, EnterInTheTextDoesNotAgree) {
  const QTemporaryDir folder;
  ScriptedDialogs dialogs;
  windows::frmLegal window(AgreementIn(folder), dialogs);
  window.show();
  Find<QCheckBox>(window, "chkAgree").click();
  QTest::keyClick(&Find<QTextBrowser>(window, "brwAgreement"), Qt::Key_Return);
  EXPECT_TRUE(window.isVisible());
}

TEST(frmLegal, AMissingAgreementSaysSo) {
  ScriptedDialogs dialogs;
  windows::frmLegal window("/nonexistent/Agreement.html", dialogs);
  EXPECT_TRUE(
      Find<QTextBrowser>(window, "brwAgreement").toPlainText().contains(QStringLiteral("Agreement.html")));
}

class frmPleaseWaitTest : public ::testing::Test {
 protected:
  frmPleaseWaitTest() {
    window.CancelAsked = [this] { ++cancels; };
    window.show();
  }

  int cancels = 0;
  windows::frmPleaseWait window;
};

TEST_F(frmPleaseWaitTest, ShowsPortStepAndProgress) {
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Kestrune: Initializing"));
  EXPECT_FALSE(Find<QLabel>(window, "lblPleaseWait").text().isEmpty());
  EXPECT_EQ(Find<QLabel>(window, "lblcPort").text(), QStringLiteral("Port:"));
  EXPECT_EQ(Find<QLabel>(window, "lblPort").text(), QString());
  window.Refresh({.lblPort = "9", .lblStep = "Trying /dev/ttyACM0: attempt 1 of 2", .pbrSearch = 250});
  EXPECT_EQ(Find<QLabel>(window, "lblPort").text(), QStringLiteral("9"));
  EXPECT_EQ(Find<QLabel>(window, "lblStep").text(), QStringLiteral("Trying /dev/ttyACM0: attempt 1 of 2"));
  EXPECT_EQ(Find<QProgressBar>(window, "pbrSearch").value(), 250);
  EXPECT_EQ(Find<QProgressBar>(window, "pbrSearch").maximum(), 1000);
}

TEST_F(frmPleaseWaitTest, ButtonEscapeAndCloseButtonCancelAndItStays) {
  Find<QPushButton>(window, "cmdCancel").click();
  EXPECT_EQ(cancels, 1);
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_EQ(cancels, 2);
  window.close();
  EXPECT_EQ(cancels, 3);
  EXPECT_TRUE(window.isVisible());
  EXPECT_TRUE(window.windowFlags() & Qt::WindowCloseButtonHint);
}

TEST_F(frmPleaseWaitTest, OnceTheProgramClosesTheButtonIsSpent) {
  window.Refresh({.cmdCancelEnabled = false});
  EXPECT_FALSE(Find<QPushButton>(window, "cmdCancel").isEnabled());
}

TEST_F(frmPleaseWaitTest, AReaderHearsWhatItShows) {
  window.Refresh({.lblPort = "9", .lblStep = "Trying /dev/ttyACM0: attempt 1 of 2", .pbrSearch = 250});
  const auto heard = [this](const char* name) {
    const QAccessibleInterface* const spoken =
        QAccessible::queryAccessibleInterface(&Find<QWidget>(window, name));
    return spoken->text(QAccessible::Name).toStdString();
  };
  EXPECT_EQ(heard("lblPort"), "Port: 9");
  EXPECT_EQ(heard("lblStep"), "Trying /dev/ttyACM0: attempt 1 of 2");
  EXPECT_EQ(heard("pbrSearch"), "Search for the radio");
  EXPECT_EQ(heard("cmdCancel"), "Cancel");
  QAccessibleInterface* const bar =
      QAccessible::queryAccessibleInterface(&Find<QWidget>(window, "pbrSearch"));
  EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
  ASSERT_NE(bar->valueInterface(), nullptr);
  EXPECT_EQ(bar->valueInterface()->currentValue().toInt(), 250);
}

class frmSplashTest : public ::testing::Test {
 protected:
  SimulatedEventLoop loop;
  RecordingShell shell;
  ScriptedDialogs dialogs;
  windows::frmSplash window{
      loop, shell, dialogs, {.WebSite = "https://radio.example", .Mail = "help@radio.example"}};
};

TEST_F(frmSplashTest, ClosesAfterThreeSeconds) {
  window.show();
  loop.Run(2900ms);
  EXPECT_TRUE(window.isVisible());
  loop.Run(200ms);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(frmSplashTest, ItsLinksOpenTheMakersPlaces) {
  emit Find<QLabel>(window, "lblURL").linkActivated({});
  emit Find<QLabel>(window, "lblMail").linkActivated({});
  EXPECT_THAT(shell.Opened, ElementsAre("https://radio.example", "mailto:help@radio.example"));
  EXPECT_THAT(dialogs.Shown, IsEmpty());
}

TEST_F(frmSplashTest, ALinkThatCannotBeOpenedIsNamed) {
  shell.Works = false;
  emit Find<QLabel>(window, "lblURL").linkActivated({});
  emit Find<QLabel>(window, "lblMail").linkActivated({});
  ASSERT_THAT(dialogs.Shown, SizeIs(2));
  EXPECT_EQ(dialogs.Shown[0].Title, "WWW Error");
  EXPECT_THAT(dialogs.Shown[0].Text, ::testing::HasSubstr("https://radio.example"));
  EXPECT_EQ(dialogs.Shown[1].Title, "Mail Error");
  EXPECT_THAT(dialogs.Shown[1].Text, ::testing::HasSubstr("help@radio.example"));
}

TEST(frmSplash, APlaceThatNobodyGaveIsNotShown) {
  SimulatedEventLoop loop;
  RecordingShell shell;
  ScriptedDialogs dialogs;
  windows::frmSplash window(loop, shell, dialogs, {});
  EXPECT_TRUE(Find<QLabel>(window, "lblURL").isHidden());
  EXPECT_TRUE(Find<QLabel>(window, "lblMail").isHidden());
}

/// Answers the message that opens next, and returns what it was.
struct OpenedBox {
  std::string Title;
  std::string Text;
  QMessageBox::Icon Icon = QMessageBox::NoIcon;
  int Buttons = 0;
};
std::optional<OpenedBox> AnswerNext(const std::function<void(QMessageBox&)>& answer,
                                    const std::function<void()>& ask) {
  std::optional<OpenedBox> seen;
  QTimer::singleShot(0, qApp, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    seen = OpenedBox{box->windowTitle().toStdString(), box->text().toStdString(), box->icon(),
                     static_cast<int>(box->buttons().size())};
    answer(*box);
  });
  ask();
  return seen;
}

TEST(QtDialogs, EachMessageHasItsTitleIconAndButtons) {
  windows::QtDialogs dialogs("", false);
  struct Row {
    MessageIcon Icon;
    MessageButtons Buttons;
    QMessageBox::StandardButton Press;
    MessageAnswer Answer;
    QMessageBox::Icon Shown;
    int Count;
  };
  constexpr Row kRows[] = {
      {MessageIcon::Information, MessageButtons::Ok, QMessageBox::Ok, MessageAnswer::Ok,
       QMessageBox::Information, 1},
      {MessageIcon::Critical, MessageButtons::Ok, QMessageBox::Ok, MessageAnswer::Ok, QMessageBox::Critical,
       1},
      {MessageIcon::Warning, MessageButtons::YesNo, QMessageBox::Yes, MessageAnswer::Yes,
       QMessageBox::Warning, 2},
      {MessageIcon::Warning, MessageButtons::YesNo, QMessageBox::No, MessageAnswer::No, QMessageBox::Warning,
       2},
      {MessageIcon::Question, MessageButtons::YesNoCancel, QMessageBox::Cancel, MessageAnswer::Cancel,
       QMessageBox::Question, 3},
  };
  for (const Row& row : kRows) {
    MessageAnswer answer{};
    const auto seen = AnswerNext(
        [&](QMessageBox& box) { box.button(row.Press)->click(); },
        [&] {
          answer = dialogs.Show(
              {.Title = "Title", .Text = "<b>Text</b> & more", .Icon = row.Icon, .Buttons = row.Buttons});
        });
    ASSERT_TRUE(seen.has_value());
    EXPECT_EQ(seen->Title, "Title");
    EXPECT_EQ(seen->Text, "<b>Text</b> & more");
    EXPECT_EQ(seen->Icon, row.Shown);
    EXPECT_EQ(seen->Buttons, row.Count);
    EXPECT_EQ(answer, row.Answer);
  }
}

TEST(QtDialogs, EscapeIsTheAnswerThatChangesLeast) {
  windows::QtDialogs dialogs("", false);
  constexpr std::pair<MessageButtons, MessageAnswer> kRows[] = {
      {MessageButtons::Ok, MessageAnswer::Ok},
      {MessageButtons::YesNo, MessageAnswer::No},
      {MessageButtons::YesNoCancel, MessageAnswer::Cancel}};
  for (const auto& row : kRows) {
    const MessageButtons buttons = row.first;
    MessageAnswer answer{};
    ASSERT_TRUE(AnswerNext([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); },
                           [&] { answer = dialogs.Show({.Title = "T", .Text = "?", .Buttons = buttons}); }));
    EXPECT_EQ(answer, row.second);
  }
}

TEST(QtDialogs, SentencesKeepTheirLines) {
  windows::QtDialogs dialogs("", false);
  int lines = 0;
  ASSERT_TRUE(AnswerNext(
      [&](QMessageBox& box) {
        const auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        ASSERT_NE(label, nullptr);
        lines = label->heightForWidth(label->width()) / label->fontMetrics().lineSpacing();
        QTest::keyClick(&box, Qt::Key_Escape);
      },
      [&] {
        static_cast<void>(dialogs.Show(
            {.Title = "T",
             .Text =
                 "Kestrune is intended for use as a timeshifting utility for personal use only.\n"
                 "Distributing or otherwise making available MP3 files created by Kestrune is a crime."}));
      }));
  EXPECT_EQ(lines, 2);
}

TEST(QtDialogs, AnOpenMessageIsAnsweredWhenTheProgramClosesAndNoneFollows) {
  windows::QtDialogs dialogs("", false);
  MessageAnswer answer{};
  ASSERT_TRUE(AnswerNext(
      [&](QMessageBox&) { dialogs.GiveUp(); },
      [&] { answer = dialogs.Show({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNo}); }));
  EXPECT_EQ(answer, MessageAnswer::No);
  EXPECT_EQ(dialogs.Show({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNoCancel}),
            MessageAnswer::Cancel);
  EXPECT_FALSE(dialogs.AskForAgreement());
}

TEST(QtDialogs, AnOpenBoxHoldsUpNobodyAndTellsItsAnswerOnce) {
  windows::QtDialogs dialogs("", false);
  std::vector<MessageAnswer> answers;
  dialogs.Open({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNo},
               [&](MessageAnswer answer) { answers.push_back(answer); });
  EXPECT_TRUE(answers.empty());
  auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->windowTitle().toStdString(), "T");
  box->button(QMessageBox::Yes)->click();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(answers, std::vector{MessageAnswer::Yes});
}

TEST(QtDialogs, AnOpenBoxIsAnsweredWhenTheProgramClosesAndNoneFollows) {
  windows::QtDialogs dialogs("", false);
  std::vector<MessageAnswer> answers;
  const auto note = [&](MessageAnswer answer) { answers.push_back(answer); };
  dialogs.Open({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNo}, note);
  dialogs.GiveUp();
  EXPECT_EQ(answers, std::vector{MessageAnswer::No});
  dialogs.Open({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNoCancel}, note);
  EXPECT_EQ(answers, (std::vector{MessageAnswer::No, MessageAnswer::Cancel}));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(answers.size(), 2U);
}

TEST(QtDialogs, AnOpenBoxThatGoesWithItsWindowIsAnsweredToo) {
  windows::QtDialogs dialogs("", false);
  std::vector<MessageAnswer> answers;
  {
    QDialog window;
    window.setModal(true);
    window.show();
    dialogs.Open({.Title = "T", .Text = "?", .Buttons = MessageButtons::YesNo},
                 [&](MessageAnswer answer) { answers.push_back(answer); });
  }
  EXPECT_EQ(answers, std::vector{MessageAnswer::No});
}

TEST(QtDialogs, AMessageStandsUnderTheOrdinaryPointer) {
  windows::QtDialogs dialogs("", false);
  QApplication::setOverrideCursor(Qt::BusyCursor);
  Qt::CursorShape within = Qt::BusyCursor;
  ASSERT_TRUE(AnswerNext(
      [&](QMessageBox& box) {
        within = QApplication::overrideCursor()->shape();
        box.reject();
      },
      [&] { static_cast<void>(dialogs.Show({.Title = "T", .Text = "!"})); }));
  EXPECT_EQ(within, Qt::ArrowCursor);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
  QApplication::restoreOverrideCursor();
}

TEST(QtDialogs, AnAgreementAcceptedOnTheCommandLineIsNotAskedFor) {
  windows::QtDialogs dialogs("/nonexistent", true);
  EXPECT_TRUE(dialogs.AskForAgreement());
}

}  // namespace
}  // namespace kestrune::test
