#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHelpEvent>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <chrono>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "presenters/SchedulerFixture.h"
#include "support/Repetitions.h"
#include "windows/WeekBar.h"
#include "windows/frmDateSelect.h"
#include "windows/frmSchedule.h"

namespace kestrune::test {
namespace {

// The clock stands at Saturday, January 1, 2005, 12:00; there are the channels 44 and 8.
class frmScheduleTest : public ::testing::Test {
 protected:
  ~frmScheduleTest() override { delete window_; }

  void Open() {
    window_ = new windows::frmSchedule(world_.Share(), world_.Loop, run_, section_);
    window_->CloseEnded = [this](bool refused) { closes_.push_back(refused); };
    window_->FocusMainWindow = [this] { ++focused_; };
    window_->show();
    QApplication::processEvents();
  }
  static void LetItGo() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

  template <typename Widget>
  Widget& Find(const char* name, int index) {
    return *window_->findChild<Widget*>(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index));
  }
  QComboBox& List(const char* name, int index = 0) { return Find<QComboBox>(name, index); }
  QCheckBox& Box(const char* name, int index = 0) { return Find<QCheckBox>(name, index); }
  QPushButton& Button(const char* name, int index = 0) { return Find<QPushButton>(name, index); }
  std::string Date(const char* name, int index = 0) { return Button(name, index).text().toStdString(); }

  /// Focuses the list and types the item's text, as a user does.
  void Choose(const char* name, int index, const char* text) {
    QComboBox& list = List(name, index);
    const int row = list.findText(QLatin1String(text));
    ASSERT_GE(row, 0) << name << ' ' << text;
    list.setCurrentIndex(row);
    emit list.activated(row);
  }
  void Press(const char* name) {
    QTest::mouseClick(window_->findChild<QPushButton*>(QLatin1String(name)), Qt::LeftButton);
  }
  /// Presses a date button and, in the picker that opens, another one.
  void Pick(const char* dateButton, int index, const char* choice) {
    QTimer::singleShot(0, window_, [this, choice] {
      auto* picker = window_->findChild<windows::frmDateSelect*>();
      ASSERT_NE(picker, nullptr);
      QTest::mouseClick(picker->findChild<QPushButton*>(QLatin1String(choice)), Qt::LeftButton);
    });
    QTest::mouseClick(&Button(dateButton, index), Qt::LeftButton);
  }

  SchedulerWorld world_;
  base::RunState run_;
  config::SettingsSection section_{world_.Store};
  QPointer<windows::frmSchedule> window_;
  std::vector<bool> closes_;
  int focused_ = 0;
};

TEST_F(frmScheduleTest, ANarrowScreenScrollsSidewaysAndHidesNoRow) {
  Open();
  const auto& scroll = *window_->findChild<QScrollArea*>();
  ASSERT_LT(window_->screen()->availableSize().width(), scroll.widget()->width());
  EXPECT_TRUE(scroll.horizontalScrollBar()->isVisible());
  EXPECT_FALSE(scroll.verticalScrollBar()->isVisible());
}

TEST_F(frmScheduleTest, EveryControlOfEveryRowIsThereWithItsCaptionAndItsTip) {
  Open();
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Kestrune Scheduler"));
  const struct {
    const char* Name;
    const char* Caption;  ///< null: whatever the row shows
    const char* Tip;
  } kControls[] = {
      {"lblItem", nullptr, ""},
      {"chkEnabled", "", "Enable this schedule entry"},
      {"cboChannel", nullptr, "Select the channel to record from"},
      {"cmdStartDate", "Jan 1, 2005", "Click to change the date the recording will begin"},
      {"cboStartHour", nullptr, "Select the hour of the start time"},
      {"cboStartMinute", nullptr, "Select the minutes of the start time"},
      {"cboStartAMPM", nullptr, "Select AM or PM for the start time"},
      {"cboDurationHour", nullptr, "Select the number of hours to record"},
      {"cboDurationMinute", nullptr, "Select the number of minutes to record"},
      {"cmdEndDate", "Jan 1, 2005", "Click to change the date the recording will end"},
      {"cboEndHour", nullptr, "Select the hour of the end time"},
      {"cboEndMinute", nullptr, "Select the minutes of the end time"},
      {"cboEndAMPM", nullptr, "Select AM or PM for the end time"},
      {"chkIntegrel", "Integrel", ""},
      {"chkCleftune", "Cleftune", "Split tracks into individual files (default on!)"},
      {"chkGrab", "Grab List", "Check to require all songs in this event to appear in the grab list"},
      {"chkKill", "Kill List",
       "Check to disallow recording in this event any songs that appear in the kill list"},
      {"cboMP3BitRate", nullptr, ""},
      {"cmdClear", "Clear", "Clear this schedule entry"},
  };
  for (int index = 0; index < 10; ++index) {
    for (const auto& control : kControls) {
      auto* widget =
          window_->findChild<QWidget*>(QStringLiteral("%1_%2").arg(QLatin1String(control.Name)).arg(index));
      ASSERT_NE(widget, nullptr) << control.Name << ' ' << index;
      EXPECT_EQ(widget->toolTip().toStdString(), control.Tip) << control.Name;
      if (control.Caption == nullptr) continue;
      EXPECT_EQ(qobject_cast<QAbstractButton*>(widget)->text().toStdString(), control.Caption)
          << control.Name;
    }
    EXPECT_EQ(Find<QLabel>("lblItem", index).text(), QString::number(index + 1));
  }
}

TEST_F(frmScheduleTest, EveryListHasItsItems) {
  Open();
  const struct {
    const char* Name;
    int Count;
    const char* First;
    const char* Second;
    const char* Last;
  } kLists[] = {{"cboChannel", 2, " 44 - Fred", "  8 - Neon 80s", "  8 - Neon 80s"},
                {"cboStartHour", 12, "1", "2", "12"},
                {"cboStartMinute", 60, "00", "01", "59"},
                {"cboStartAMPM", 2, "AM", "PM", "PM"},
                {"cboDurationHour", 48, "0", "1", "47"},
                {"cboDurationMinute", 60, "00", "01", "59"},
                {"cboEndHour", 12, "1", "2", "12"},
                {"cboEndMinute", 60, "00", "01", "59"},
                {"cboEndAMPM", 2, "AM", "PM", "PM"},
                {"cboMP3BitRate", 28, "8 Mono", "8 Stereo", "192 Stereo"}};
  for (const auto& one : kLists) {
    for (int index = 0; index < 10; ++index) {
      const QComboBox& list = List(one.Name, index);
      ASSERT_EQ(list.count(), one.Count) << one.Name;
      EXPECT_EQ(list.itemText(0).toStdString(), one.First) << one.Name;
      EXPECT_EQ(list.itemText(1).toStdString(), one.Second) << one.Name;
      EXPECT_EQ(list.itemText(one.Count - 1).toStdString(), one.Last) << one.Name;
    }
  }
}

TEST_F(frmScheduleTest, ShowsWhatIsStored) {
  world_.Put("ScheduleEnabled10", "1");
  world_.Put("ScheduleChannel10", "8");
  world_.Put("ScheduleStartDate10", "Jan 7, 1967 11:05 PM");
  world_.Put("ScheduleDuration10", "2:10");
  world_.Put("ScheduleIntegrel10", "0");
  world_.Put("ScheduleMatchKill10", "1");
  world_.Put("ScheduleMP3BitRate10", "64 Mono");
  Open();
  EXPECT_TRUE(Box("chkEnabled", 9).isChecked());
  EXPECT_EQ(List("cboChannel", 9).currentText(), QStringLiteral("  8 - Neon 80s"));
  EXPECT_EQ(Date("cmdStartDate", 9), "Every Saturday");
  const struct {
    const char* Name;
    const char* Text;
  } kTexts[] = {{"cboStartHour", "11"},   {"cboStartMinute", "05"},    {"cboStartAMPM", "PM"},
                {"cboDurationHour", "2"}, {"cboDurationMinute", "10"}, {"cboEndHour", "1"},
                {"cboEndMinute", "15"},   {"cboEndAMPM", "AM"},        {"cboMP3BitRate", "64 Mono"}};
  for (const auto& one : kTexts)
    EXPECT_EQ(List(one.Name, 9).currentText().toStdString(), one.Text) << one.Name;
  EXPECT_EQ(Date("cmdEndDate", 9), "Every Sunday");
  EXPECT_FALSE(Box("chkIntegrel", 9).isChecked());
  EXPECT_TRUE(Box("chkCleftune", 9).isChecked());
  EXPECT_FALSE(Box("chkGrab", 9).isChecked());
  EXPECT_TRUE(Box("chkKill", 9).isChecked());
}

TEST_F(frmScheduleTest, ABitRateThatTheListDoesNotHaveIsShownAndKept) {
  world_.Put("ScheduleMP3BitRate1", "320 Stereo");
  Open();
  EXPECT_EQ(List("cboMP3BitRate").currentIndex(), -1);
  EXPECT_EQ(List("cboMP3BitRate").placeholderText(), QStringLiteral("320 Stereo"));
  Press("cmdSave");
  EXPECT_EQ(world_.Stored("ScheduleMP3BitRate1"), "320 Stereo");
}

TEST_F(frmScheduleTest, EveryListMovesWhatItShould) {
  const struct {
    const char* Name;
    const char* Text;
    const char* End;  ///< of a row from 12:00 PM to 1:00 PM
    int Minutes;
    bool Ticks = true;
  } kChoices[] = {{"cboStartHour", "11", "Jan 2, 2005 12:00 AM", 60},
                  {"cboStartMinute", "30", "Jan 1, 2005 1:30 PM", 60},
                  {"cboStartAMPM", "AM", "Jan 1, 2005 1:00 AM", 60},
                  {"cboDurationHour", "47", "Jan 3, 2005 11:00 AM", 47 * 60},
                  {"cboDurationMinute", "01", "Jan 1, 2005 1:01 PM", 61},
                  {"cboEndHour", "3", "Jan 1, 2005 3:00 PM", 180},
                  {"cboEndMinute", "59", "Jan 1, 2005 1:59 PM", 119},
                  {"cboEndAMPM", "AM", "Jan 2, 2005 1:00 AM", 13 * 60},
                  {"cboChannel", "  8 - Neon 80s", "Jan 1, 2005 1:00 PM", 60},
                  {"cboMP3BitRate", "8 Mono", "Jan 1, 2005 1:00 PM", 60, false}};
  for (const auto& choice : kChoices) {
    Open();
    if (std::string_view(choice.Name) == "cboStartHour") Choose("cboStartAMPM", 4, "PM");
    Choose(choice.Name, 4, choice.Text);
    EXPECT_EQ(List(choice.Name, 4).currentText().toStdString(), choice.Text);
    EXPECT_EQ(
        fmt::format("{} {}:{} {}", Date("cmdEndDate", 4), List("cboEndHour", 4).currentText().toStdString(),
                    List("cboEndMinute", 4).currentText().toStdString(),
                    List("cboEndAMPM", 4).currentText().toStdString()),
        choice.End)
        << choice.Name;
    EXPECT_EQ(List("cboDurationHour", 4).currentIndex() * 60 + List("cboDurationMinute", 4).currentIndex(),
              choice.Minutes)
        << choice.Name;
    EXPECT_EQ(Box("chkEnabled", 4).isChecked(), choice.Ticks) << choice.Name;
    EXPECT_TRUE(window_->Rules().SchedDirty()) << choice.Name;
    delete window_;
  }
}

TEST_F(frmScheduleTest, EveryBoxTicksItsRow) {
  for (const char* name : {"chkIntegrel", "chkCleftune", "chkGrab", "chkKill"}) {
    Open();
    const bool before = Box(name, 6).isChecked();
    Box(name, 6).click();
    EXPECT_EQ(Box(name, 6).isChecked(), !before) << name;
    EXPECT_TRUE(Box("chkEnabled", 6).isChecked()) << name;
    EXPECT_FALSE(Box("chkEnabled", 5).isChecked()) << name;
    delete window_;
  }
  Open();
  Box("chkEnabled", 6).click();
  EXPECT_TRUE(Box("chkEnabled", 6).isChecked());
  Box("chkEnabled", 6).click();
  EXPECT_FALSE(Box("chkEnabled", 6).isChecked());
}

TEST_F(frmScheduleTest, TheDateButtonsOpenThePicker) {
  Open();
  Pick("cmdStartDate", 2, "cmdDay_6");
  EXPECT_EQ(Date("cmdStartDate", 2), "Every Saturday");
  EXPECT_EQ(Date("cmdEndDate", 2), "Every Saturday");
  EXPECT_TRUE(Box("chkEnabled", 2).isChecked());
  Pick("cmdEndDate", 2, "cmdDay_0");
  EXPECT_EQ(Date("cmdEndDate", 2), "Every Sunday");
  EXPECT_EQ(List("cboDurationHour", 2).currentText(), QStringLiteral("25"));
  Pick("cmdStartDate", 2, "cmdEveryDay");
  EXPECT_EQ(Date("cmdStartDate", 2), "Every Day");
  EXPECT_EQ(Date("cmdEndDate", 2), "Every Day");
  EXPECT_EQ(window_->findChild<windows::frmDateSelect*>(), nullptr);
}

TEST_F(frmScheduleTest, AWindowThatGoesWhileThePickerIsOpenIsNotMissed) {
  Open();
  QTimer::singleShot(0, [this] { delete window_; });
  QTest::mouseClick(&Button("cmdStartDate"), Qt::LeftButton);
  EXPECT_TRUE(window_.isNull());
}

TEST_F(frmScheduleTest, ClearEmptiesItsRow) {
  world_.Put("ScheduleEnabled4", "1");
  world_.Put("ScheduleStartDate4", "Jan 15, 1967 8:00 PM");
  Open();
  QTest::mouseClick(&Button("cmdClear", 3), Qt::LeftButton);
  EXPECT_FALSE(Box("chkEnabled", 3).isChecked());
  EXPECT_EQ(Date("cmdStartDate", 3), "Jan 1, 2005");
  EXPECT_EQ(Date("cmdEndDate", 3), "Every Day");
}

TEST_F(frmScheduleTest, ASaveWritesClosesAndGivesTheMainWindowTheFocus) {
  Open();
  Choose("cboDurationHour", 0, "2");
  Press("cmdSave");
  EXPECT_EQ(world_.Stored("ScheduleDuration1"), "2:00");
  EXPECT_EQ(world_.Reloads, 1);
  EXPECT_EQ(focused_, 1);
  EXPECT_EQ(closes_, std::vector<bool>{false});
  EXPECT_TRUE(world_.Dialogs.Shown.empty());
  LetItGo();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(frmScheduleTest, AConflictKeepsTheWindowOpen) {
  Open();
  Box("chkEnabled", 1).click();
  Box("chkEnabled", 3).click();
  Press("cmdSave");
  ASSERT_EQ(world_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(world_.Dialogs.Shown[0].Title, "Schedule Conflict");
  EXPECT_EQ(world_.Dialogs.Shown[0].Text, "Item 2 conflicts with item 4. Please correct before saving.");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(closes_.empty());
  EXPECT_EQ(world_.Stored("ScheduleEnabled2"), "(absent)");
}

TEST_F(frmScheduleTest, ACancelAsksAboutChanges) {
  Open();
  Box("chkEnabled", 1).click();
  world_.Dialogs.Answer = platform::MessageAnswer::Cancel;
  Press("cmdCancel");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(closes_, std::vector<bool>{true});
  world_.Dialogs.Answer = platform::MessageAnswer::No;
  QTest::keyClick(window_, Qt::Key_Escape);
  EXPECT_EQ(closes_, (std::vector<bool>{true, false}));
  EXPECT_EQ(world_.Dialogs.Shown.size(), 2U);
  EXPECT_EQ(world_.Stored("ScheduleEnabled2"), "(absent)");
  LetItGo();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(frmScheduleTest, TheEndOfTheProgramAsksNothing) {
  Open();
  Box("chkEnabled", 1).click();
  run_.ShuttingDown = true;
  window_->close();
  EXPECT_TRUE(world_.Dialogs.Shown.empty());
  EXPECT_TRUE(closes_.empty());
  LetItGo();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(frmScheduleTest, RemembersItsPlace) {
  Open();
  window_->move(20, 30);
  window_->close();
  EXPECT_EQ(world_.Stored("ScheduleLeft"), "300");
  EXPECT_EQ(world_.Stored("ScheduleTop"), "450");
}

TEST_F(frmScheduleTest, TheWheelTurnsNoListThatTheUserHasNotGoneInto) {
  Open();
  QComboBox& list = List("cboStartHour", 7);
  ASSERT_FALSE(list.hasFocus());
  QWheelEvent wheel(list.rect().center(), list.mapToGlobal(list.rect().center()), {}, {0, -120}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&list, &wheel);
  EXPECT_EQ(list.currentText(), QStringLiteral("12"));
  EXPECT_FALSE(window_->Rules().SchedDirty());
}

TEST_F(frmScheduleTest, TheKeysAloneFillARow) {
  Open();
  window_->activateWindow();
  Box("chkEnabled", 0).setFocus();
  QTest::keyClick(&Box("chkEnabled", 0), Qt::Key_Space);
  QTest::keyClick(window_->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(window_->focusWidget(), &List("cboChannel", 0));
  QTest::keyClick(window_->focusWidget(), Qt::Key_Down);
  EXPECT_EQ(window_->Rules().Row(0).Channel, 1);
  const char* const kOrder[] = {"cmdStartDate",    "cboStartHour",      "cboStartMinute", "cboStartAMPM",
                                "cboDurationHour", "cboDurationMinute", "cmdEndDate",     "cboEndHour",
                                "cboEndMinute",    "cboEndAMPM",        "chkIntegrel",    "chkCleftune",
                                "chkGrab",         "chkKill",           "cboMP3BitRate",  "cmdClear"};
  for (const char* name : kOrder) {
    QTest::keyClick(window_->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window_->focusWidget()->objectName().toStdString(), fmt::format("{}_0", name));
    if (std::string_view(name) == "cboStartMinute")
      QTest::keyClicks(window_->focusWidget(), QStringLiteral("45"));
  }
  EXPECT_EQ(window_->Rules().Row(0).Start.Time.Minute, 45);
  QTest::keyClick(window_->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(window_->focusWidget()->objectName(), QStringLiteral("chkEnabled_1"));
}

TEST_F(frmScheduleTest, NothingMovesWhenTheTextsOfARowGrow) {
  Open();
  const QRect before = Button("cmdEndDate", 0).geometry();
  Pick("cmdStartDate", 0, "cmdDay_3");
  QApplication::processEvents();
  EXPECT_EQ(Date("cmdEndDate", 0), "Every Wednesday");
  EXPECT_EQ(Button("cmdEndDate", 0).geometry(), before);
}

TEST_F(frmScheduleTest, WindowsThatComeAndGoLeaveNothingBehind) {
  const auto openAndClose = [this](int times) {
    for (int i = 0; i < times; ++i) {
      Open();
      window_->close();
      LetItGo();
      ASSERT_TRUE(window_.isNull());
      world_.Store.Calls.clear();
      world_.Store.Calls.shrink_to_fit();
      closes_.clear();
    }
  };
  openAndClose(50);
  const auto widgets = QApplication::allWidgets().size();
  const auto before = mallinfo2().uordblks;
  openAndClose(Repetitions(100, 950));
  EXPECT_EQ(QApplication::allWidgets().size(), widgets);
  constexpr std::size_t kSlack = 512UL * 1024;
  EXPECT_LT(mallinfo2().uordblks, before + kSlack);
}

// What comes of the rows.

TEST_F(frmScheduleTest, TheEnablingBoxesHaveAHeading) {
  Open();
  const auto labels = window_->findChildren<QLabel*>();
  const auto* heading =
      *std::find_if(labels.begin(), labels.end(), [](const QLabel* label) { return label->text() == "On"; });
  EXPECT_EQ(heading->geometry().left(), Box("chkEnabled").geometry().left());
  EXPECT_LT(heading->geometry().bottom(), Box("chkEnabled").geometry().top());
}

TEST_F(frmScheduleTest, AnEnabledRowSaysItsNextRunAndWhatIsWrongWithItAtOnce) {
  Open();
  EXPECT_EQ(Find<QLabel>("lblNext", 0).text(), QString());
  Choose("cboStartHour", 0, "8");
  Choose("cboMP3BitRate", 0, "128 Stereo");
  EXPECT_EQ(Find<QLabel>("lblNext", 0).text(), QStringLiteral("Next: today, 8:00 PM to 9:00 PM"));
  EXPECT_EQ(Find<QLabel>("lblWarning", 0).text(), QString());
  Choose("cboStartHour", 3, "8");
  Choose("cboMP3BitRate", 3, "128 Stereo");
  EXPECT_EQ(Find<QLabel>("lblWarning", 3).text(),
            QStringLiteral("Entry 1 records instead, today from 8:00 PM on."));
  EXPECT_EQ(
      Box("chkEnabled", 3).accessibleDescription(),
      QStringLiteral("Next: today, 8:00 PM to 9:00 PM. Entry 1 records instead, today from 8:00 PM on."));
  Box("chkEnabled", 3).click();
  EXPECT_EQ(Find<QLabel>("lblNext", 3).text(), QString());
  EXPECT_EQ(Find<QLabel>("lblWarning", 3).text(), QString());
}

TEST_F(frmScheduleTest, TheNextRunFollowsTheClock) {
  Open();
  Choose("cboStartHour", 0, "8");
  world_.Loop.Run(std::chrono::hours(8));
  window_->Refresh();
  EXPECT_EQ(Find<QLabel>("lblNext", 0).text(), QStringLiteral("Now, until 9:00 PM"));
}

TEST_F(frmScheduleTest, ARowThatIsNotEnabledIsFaintAndStillWorks) {
  Open();
  const auto faint = [this](int index) { return Find<QWidget>("veil", index).isVisible(); };
  QComboBox& channel = List("cboChannel");
  EXPECT_TRUE(faint(0));
  EXPECT_TRUE(Find<QWidget>("veil", 0).geometry().contains(channel.geometry()));
  EXPECT_TRUE(Find<QWidget>("veil", 0).geometry().contains(Button("cmdClear").geometry()));
  // A click goes through.
  EXPECT_EQ(channel.parentWidget()->childAt(channel.geometry().center()), &channel);
  const int top = List("cboChannel", 1).geometry().top();
  Box("chkCleftune").click();
  EXPECT_FALSE(faint(0));
  EXPECT_TRUE(faint(1));
  QApplication::processEvents();
  EXPECT_EQ(List("cboChannel", 1).geometry().top(), top) << "no row moves";
}

TEST_F(frmScheduleTest, TheBarOfTheWeekShowsTheRowsAndTellsThem) {
  Open();
  auto& bar = *window_->findChild<windows::WeekBar*>(QStringLiteral("weekBar"));
  EXPECT_EQ(bar.accessibleName(), QStringLiteral("The coming week"));
  EXPECT_EQ(bar.accessibleDescription(), QStringLiteral("Nothing is planned in the coming week"));
  Choose("cboStartHour", 0, "6");
  EXPECT_EQ(bar.accessibleDescription(),
            QStringLiteral("Sat, Jan 1, 6:00 PM to 7:00 PM: entry 1, 44 - Fred\n"));
  const presenters::WeekPlan week = presenters::MakePlan({.Rows = window_->Rules().Rows(),
                                                          .Channels = world_.Channels,
                                                          .Listed = 2,
                                                          .Now = world_.Loop.Now()})
                                        .Week;
  ASSERT_EQ(week.Runs.size(), 1U);
  // A quarter of a day before the end of the first of seven days.
  const QRectF place = bar.PlaceOf(week.Runs[0]);
  EXPECT_NEAR(place.left(), bar.width() * 0.75 / 7, 2);
  EXPECT_TRUE(QRectF(bar.rect()).contains(place));
  const QImage picture = bar.grab().toImage();
  EXPECT_EQ(picture.pixelColor(place.center().toPoint()), bar.palette().color(QPalette::Highlight));

  QHelpEvent over(QEvent::ToolTip, place.center().toPoint(), QPoint(300, 300));
  QCoreApplication::sendEvent(&bar, &over);
  EXPECT_EQ(QToolTip::text(), QStringLiteral("Entry 1: 44 - Fred\nSat, Jan 1, 6:00 PM to 7:00 PM"));
}

}  // namespace
}  // namespace kestrune::test
