#include <QApplication>
#include <QCalendarWidget>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "support/MemorySettingsStore.h"
#include "support/SimulatedEventLoop.h"
#include "windows/frmDateSelect.h"

namespace kestrune::test {
namespace {

using base::DateValue;

// The clock stands at Saturday, January 1, 2005, 12:00.
struct Picker {
  explicit Picker(DateValue date = DateValue::FromCivil(2005, 1, 18)) : SelDate(date) {
    Window.show();
    QApplication::processEvents();
  }

  template <typename Widget>
  Widget& Find(const QString& name) {
    return *Window.findChild<Widget*>(name);
  }
  QCalendarWidget& Calendar() { return Find<QCalendarWidget>(QStringLiteral("cldDateSelect")); }
  /// The cell of a day of the month on show.
  void Click(int day, bool twice = false) {
    auto& table = *Calendar().findChild<QTableView*>();
    const QAbstractItemModel& days = *table.model();
    for (int row = 1; row < days.rowCount(); ++row) {
      for (int column = 0; column < days.columnCount(); ++column) {
        const QModelIndex cell = days.index(row, column);
        // The days of the month before are in the first row only.
        if (cell.data().toInt() != day || (row == 1 && day > 7)) continue;
        if (twice) QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, table.visualRect(cell).center());
        if (!twice) QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, table.visualRect(cell).center());
        return;
      }
    }
    FAIL() << "no day " << day;
  }

  SimulatedEventLoop Loop;
  MemorySettingsStore Store;
  config::SettingsSection Section{Store};
  DateValue SelDate;
  presenters::DateSelect Rules{Loop, SelDate};
  windows::frmDateSelect Window{Rules, Section};
};

TEST(frmDateSelect, HasItsTitleAndShowsTheDateThatItWasGiven) {
  Picker picker;
  EXPECT_EQ(picker.Window.windowTitle(), QStringLiteral("Kestrune Date Select"));
  EXPECT_EQ(picker.Calendar().selectedDate(), QDate(2005, 1, 18));
  EXPECT_EQ(picker.Find<QLabel>(QStringLiteral("lblMonth")).text(), QStringLiteral("January 2005"));
  EXPECT_EQ(picker.Find<QLabel>(QStringLiteral("Label1")).text(), QStringLiteral("Record every:"));
  EXPECT_EQ(picker.Find<QWidget>(QStringLiteral("frmCalendar")).findChild<QCalendarWidget*>(),
            &picker.Calendar());
}

TEST(frmDateSelect, EveryDayButtonHasItsCaptionItsTipAndItsCode) {
  const char* const kNames[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
  for (int index = 0; index < 7; ++index) {
    Picker picker;
    auto& button = picker.Find<QPushButton>(QStringLiteral("cmdDay_%1").arg(index));
    EXPECT_EQ(button.text().toStdString(), std::string(kNames[index]).substr(0, 3));
    EXPECT_EQ(button.toolTip().toStdString(),
              std::string("Click to cause this schedule to record every ") + kNames[index]);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(picker.SelDate, DateValue::FromCivil(1967, 1, index + 1));
    EXPECT_FALSE(picker.Window.isVisible());
  }
}

TEST(frmDateSelect, EveryDayIsOneButton) {
  Picker picker;
  auto& button = picker.Find<QPushButton>(QStringLiteral("cmdEveryDay"));
  EXPECT_EQ(button.text(), QStringLiteral("Record Every Day"));
  EXPECT_EQ(button.toolTip(), QStringLiteral("Click to cause this schedule to record daily"));
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(1967, 1, 15));
  EXPECT_FALSE(picker.Window.isVisible());
}

TEST(frmDateSelect, AClickOnADayChoosesItAndCloses) {
  Picker picker;
  picker.Click(24);
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 1, 24));
  EXPECT_FALSE(picker.Window.isVisible());
}

TEST(frmDateSelect, ADoubleClickOnTheSelectedDayDoesTheSame) {
  Picker picker(DateValue::FromCivil(1967, 1, 15));
  ASSERT_EQ(picker.Calendar().selectedDate(), QDate(2005, 1, 1));
  picker.Click(1, true);
  EXPECT_EQ(picker.SelDate, picker.Loop.Now());
  EXPECT_FALSE(picker.Window.isVisible());
}

TEST(frmDateSelect, ADayThatHasPassedGivesToday) {
  Picker picker;
  QTest::mouseClick(&picker.Find<QToolButton>(QStringLiteral("cmdMonthDown")), Qt::LeftButton);
  picker.Click(24);
  EXPECT_EQ(picker.SelDate, picker.Loop.Now());
}

TEST(frmDateSelect, TheMonthButtonsMoveAndChooseNothing) {
  Picker picker(DateValue::FromCivil(2005, 1, 31));
  auto& month = picker.Find<QLabel>(QStringLiteral("lblMonth"));
  QTest::mouseClick(&picker.Find<QToolButton>(QStringLiteral("cmdMonthUp")), Qt::LeftButton);
  EXPECT_EQ(picker.Calendar().selectedDate(), QDate(2005, 2, 28));
  EXPECT_EQ(month.text(), QStringLiteral("February 2005"));
  QTest::mouseClick(&picker.Find<QToolButton>(QStringLiteral("cmdMonthDown")), Qt::LeftButton);
  QTest::mouseClick(&picker.Find<QToolButton>(QStringLiteral("cmdMonthDown")), Qt::LeftButton);
  EXPECT_EQ(month.text(), QStringLiteral("December 2004"));
  EXPECT_TRUE(picker.Window.isVisible());
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 1, 31));
}

TEST(frmDateSelect, TheKeysAloneSuffice) {
  Picker picker;
  picker.Window.activateWindow();
  auto* table = picker.Calendar().findChild<QTableView*>();
  QTest::keyClick(table, Qt::Key_Down);
  QTest::keyClick(table, Qt::Key_Right);
  EXPECT_TRUE(picker.Window.isVisible());
  EXPECT_EQ(picker.Rules.Calendar(), DateValue::FromCivil(2005, 1, 26));
  QTest::keyClick(table, Qt::Key_PageDown);
  EXPECT_EQ(picker.Find<QLabel>(QStringLiteral("lblMonth")).text(), QStringLiteral("February 2005"));
  QTest::keyClick(table, Qt::Key_Return);
  EXPECT_FALSE(picker.Window.isVisible());
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 2, 26));
}

TEST(frmDateSelect, EscapeLeavesTheDateAsItCame) {
  Picker picker;
  QTest::keyClick(&picker.Window, Qt::Key_Escape);
  EXPECT_FALSE(picker.Window.isVisible());
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 1, 18));
}

TEST(frmDateSelect, RemembersItsPlaceHoweverItCloses) {
  for (const bool chosen : {false, true}) {
    Picker picker;
    picker.Window.move(30, 40);
    if (chosen) {
      QTest::mouseClick(&picker.Find<QPushButton>(QStringLiteral("cmdEveryDay")), Qt::LeftButton);
    } else {
      picker.Window.close();
    }
    EXPECT_EQ(picker.Store.Stored("Lorimel", "Kestrune", "DateSelectLeft"), "450");
    EXPECT_EQ(picker.Store.Stored("Lorimel", "Kestrune", "DateSelectTop"), "600");
  }
}

}  // namespace
}  // namespace kestrune::test
