#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "base/RunState.h"
#include "config/settings/SettingsSection.h"
#include "presenters/GrabKill.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingJournal.h"
#include "support/Repetitions.h"
#include "support/ScriptedDialogs.h"
#include "windows/frmRestrictList.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class frmRestrictListTest : public ::testing::Test {
 protected:
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Restriction.txt";

  ~frmRestrictListTest() override { delete window_; }

  void Open(std::string_view text = "0Anna\n0Moon\n0Sun\n1Rain\n") {
    files_.Put(kPath, text);
    Show();
  }
  void Show() {
    window_ = new windows::frmRestrictList(editor_, run_, section_);
    window_->CloseEnded = [this](bool refused) { closes_.push_back(refused); };
    window_->FocusMainWindow = [this] { ++focused_; };
    window_->show();
    window_->activateWindow();
    QTest::qWait(0);
  }
  static void LetItGo() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

  template <typename T>
  T& Find(const char* name) {
    return *window_->findChild<T*>(QLatin1String(name));
  }
  template <typename T>
  T& Find(const char* name, int index) {
    return *window_->findChild<T*>(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index));
  }
  QListWidget& lstRestrict(int index) { return Find<QListWidget>("lstRestrict", index); }
  QLineEdit& txtRestrict(int index) { return Find<QLineEdit>("txtRestrict", index); }
  void Press(const char* name, int index) {
    QTest::mouseClick(&Find<QPushButton>(name, index), Qt::LeftButton);
  }
  void Press(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
  void ClickRow(int index, int row) {
    QListWidget& list = lstRestrict(index);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
  }
  std::vector<std::string> Items(int index) {
    std::vector<std::string> items;
    for (int row = 0; row < lstRestrict(index).count(); ++row)
      items.push_back(lstRestrict(index).item(row)->text().toStdString());
    return items;
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  base::RunState run_;
  RecordingJournal journal_;
  schedule::Restrictions lists_{files_, environment_, journal_};
  presenters::RestrictListEditor editor_{lists_, files_, environment_, dialogs_, journal_};
  QPointer<windows::frmRestrictList> window_;
  std::vector<bool> closes_;
  int focused_ = 0;
};

TEST_F(frmRestrictListTest, ItsControlsHaveTheirTextsAndTips) {
  Open();
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Kestrune Grab/Kill Lists"));
  const struct {
    const char* Name;
    const char* Caption;
  } kLabels[] = {{"lblRecord", "Only record songs that contain:"},
                 {"lblArtist", "In the Artist Name:"},
                 {"lblSong", "In the Song Name:"},
                 {"lblNeverRecord", "Never record songs that contain:"},
                 {"lblArtistNever", "In the Artist Name:"},
                 {"lblSongNever", "In the Song Name:"}};
  for (const auto& row : kLabels) EXPECT_EQ(Find<QLabel>(row.Name).text(), QLatin1String(row.Caption));

  // Lists 2 and 3 have each other's tip.
  const char* const kListTips[] = {
      "Click to select Artist name to edit or delete", "Click to select Song name to edit or delete",
      "Click to select Song name to edit or delete", "Click to select Artist name to edit or delete"};
  for (int index = 0; index < 4; ++index) {
    const QString kind = index % 2 == 0 ? QStringLiteral("artist") : QStringLiteral("song");
    EXPECT_EQ(lstRestrict(index).toolTip(), QLatin1String(kListTips[index])) << index;
    EXPECT_EQ(txtRestrict(index).toolTip(),
              index % 2 == 0 ? QStringLiteral("Edit Artist Name") : QStringLiteral("Edit Song Name"));
    EXPECT_EQ(Find<QPushButton>("cmdAdd", index).toolTip(),
              QStringLiteral("Click to add this %1 entry").arg(kind));
    EXPECT_EQ(Find<QPushButton>("cmdDelete", index).text(), QStringLiteral("Delete"));
    EXPECT_EQ(Find<QPushButton>("cmdDelete", index).toolTip(),
              QStringLiteral("Click to delete this %1 entry").arg(kind));
    EXPECT_EQ(Find<QPushButton>("cmdClear", index).text(), QStringLiteral("Clear"));
    EXPECT_EQ(Find<QPushButton>("cmdClear", index).toolTip(),
              QStringLiteral("Click to clear the entire list"));
  }
  EXPECT_EQ(Find<QPushButton>("cmdSave").toolTip(), QStringLiteral("Click to save changes and exit"));
  EXPECT_EQ(Find<QPushButton>("cmdCancel").toolTip(), QStringLiteral("Click to cancel changes and exit"));
}

TEST_F(frmRestrictListTest, ShowsTheFourListsSorted) {
  Open("0sun\n0Moon\n1Rain\n2Föhn & Co\n3<b>x</b>\n");
  EXPECT_THAT(Items(0), ElementsAre("Moon", "sun"));
  EXPECT_THAT(Items(1), ElementsAre("Rain"));
  EXPECT_THAT(Items(2), ElementsAre("Föhn & Co"));
  EXPECT_THAT(Items(3), ElementsAre("<b>x</b>"));
}

TEST_F(frmRestrictListTest, AClickGoesOnToTheTextWithTheCaretAtItsEnd) {
  Open();
  ClickRow(0, 1);
  EXPECT_EQ(txtRestrict(0).text(), QStringLiteral("Moon"));
  EXPECT_EQ(window_->focusWidget(), &txtRestrict(0));
  EXPECT_EQ(txtRestrict(0).cursorPosition(), 4);
  EXPECT_FALSE(txtRestrict(0).hasSelectedText());
  EXPECT_TRUE(lstRestrict(0).item(1)->isSelected());
}

TEST_F(frmRestrictListTest, TheKeysWalkTheListAndEnterGoesOn) {
  Open();
  lstRestrict(0).setFocus();
  QTest::keyClick(&lstRestrict(0), Qt::Key_Down);
  QTest::keyClick(&lstRestrict(0), Qt::Key_Down);
  EXPECT_EQ(window_->focusWidget(), &lstRestrict(0));
  EXPECT_EQ(txtRestrict(0).text(), lstRestrict(0).currentItem()->text());
  EXPECT_NE(editor_.Column(0).Selected, -1);
  QTest::keyClick(&lstRestrict(0), Qt::Key_Return);
  EXPECT_EQ(window_->focusWidget(), &txtRestrict(0));
}

TEST_F(frmRestrictListTest, EnterInTheTextAdds) {
  Open();
  txtRestrict(1).setFocus();
  QTest::keyClicks(&txtRestrict(1), QStringLiteral("Snow"));
  QTest::keyClick(&txtRestrict(1), Qt::Key_Return);
  EXPECT_THAT(Items(1), ElementsAre("Rain", "Snow"));
  EXPECT_EQ(txtRestrict(1).text(), QString());
  EXPECT_EQ(window_->focusWidget(), &txtRestrict(1));
}

TEST_F(frmRestrictListTest, AddReplacesWhatIsSelected) {
  Open();
  ClickRow(0, 0);
  txtRestrict(0).clear();
  QTest::keyClicks(&txtRestrict(0), QStringLiteral("Zoe"));
  Press("cmdAdd", 0);
  EXPECT_THAT(Items(0), ElementsAre("Moon", "Sun", "Zoe"));
  EXPECT_THAT(lstRestrict(0).selectedItems(), IsEmpty());
  EXPECT_EQ(window_->focusWidget(), &txtRestrict(0));
}

TEST_F(frmRestrictListTest, DeleteTakesTheSelectedItem) {
  Open();
  ClickRow(0, 1);
  Press("cmdDelete", 0);
  EXPECT_THAT(Items(0), ElementsAre("Anna", "Sun"));
  EXPECT_EQ(txtRestrict(0).text(), QString());
  EXPECT_EQ(window_->focusWidget(), &txtRestrict(0));
}

TEST_F(frmRestrictListTest, ClearedAndCancelledTheFileIsAsItWasWithoutAQuestion) {
  Open();
  dialogs_.Answer = platform::MessageAnswer::Yes;
  Press("cmdClear", 0);
  EXPECT_THAT(Items(0), IsEmpty());
  Press("cmdCancel");
  EXPECT_EQ(dialogs_.Shown.size(), 1U);
  EXPECT_EQ(files_.Text(kPath), "0Anna\n0Moon\n0Sun\n1Rain\n");
  EXPECT_THAT(closes_, ElementsAre(false));
  EXPECT_EQ(focused_, 1);
  LetItGo();
  EXPECT_TRUE(window_.isNull());
}

TEST_F(frmRestrictListTest, SaveWritesAndCloses) {
  Open();
  ClickRow(0, 0);
  Press("cmdDelete", 0);
  Press("cmdSave");
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n1Rain\n");
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
  EXPECT_THAT(closes_, ElementsAre(false));
  EXPECT_EQ(focused_, 1);
  EXPECT_FALSE(editor_.IsLoaded());
}

TEST_F(frmRestrictListTest, ASaveThatFailsKeepsTheWindow) {
  Open();
  files_.FailAlways(FileOperation::Replace);
  Press("cmdSave");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(editor_.IsLoaded());
}

TEST_F(frmRestrictListTest, ARefusedCloseIsReported) {
  Open();
  Press("cmdDelete", 0);
  dialogs_.Answer = platform::MessageAnswer::Cancel;
  EXPECT_FALSE(window_->close());
  EXPECT_THAT(closes_, ElementsAre(true));
  EXPECT_TRUE(editor_.IsLoaded());
  dialogs_.Answer = platform::MessageAnswer::No;
  EXPECT_TRUE(window_->close());
  EXPECT_THAT(closes_, ElementsAre(true, false));
}

TEST_F(frmRestrictListTest, AtShutdownItClosesWithoutAsking) {
  Open();
  Press("cmdDelete", 0);
  run_.ShuttingDown = true;
  EXPECT_TRUE(window_->close());
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
  EXPECT_THAT(closes_, IsEmpty());
}

TEST_F(frmRestrictListTest, EscapeIsCancel) {
  Open();
  QTest::keyClick(&txtRestrict(0), Qt::Key_Escape);
  EXPECT_THAT(closes_, ElementsAre(false));
}

TEST_F(frmRestrictListTest, ItsPlaceIsRemembered) {
  store_.Put("Lorimel", "Kestrune", "RestrictListTop", "750");
  store_.Put("Lorimel", "Kestrune", "RestrictListLeft", "1500");
  Open();
  EXPECT_EQ(window_->pos(), QPoint(100, 50));
  window_->move(40, 20);
  store_.Calls.clear();
  window_->close();
  EXPECT_THAT(store_.Calls, ElementsAre("save Lorimel/Kestrune/RestrictListTop=300",
                                        "save Lorimel/Kestrune/RestrictListLeft=600"));
}

TEST_F(frmRestrictListTest, TheQuickAdditionGoesIntoTheOpenEditorAndLeavesItsEdits) {
  Open();
  txtRestrict(0).setFocus();
  QTest::keyClicks(&txtRestrict(0), QStringLiteral("Half writ"));
  presenters::GrabKill addition(lists_);
  addition.SetWindow([&] { addition.cmdResult(1); });
  addition.DblClick(presenters::GrabKill::Field::Artist, "Salt && Sun");
  window_->Refresh();
  EXPECT_THAT(Items(0), ElementsAre("Anna", "Moon", "Salt & Sun", "Sun"));
  EXPECT_EQ(txtRestrict(0).text(), QStringLiteral("Half writ"));
  EXPECT_EQ(files_.Text(kPath), "0Anna\n0Moon\n0Sun\n1Rain\n0Salt & Sun\n");
}

TEST_F(frmRestrictListTest, ARefreshLeavesALongListWhereTheUserHasScrolledIt) {
  std::string text;
  for (int i = 100; i < 600; ++i) text += "0item " + std::to_string(i) + "\n";
  Open(text);
  lstRestrict(0).scrollToItem(lstRestrict(0).item(250), QAbstractItemView::PositionAtTop);
  const QRect before = lstRestrict(0).visualItemRect(lstRestrict(0).item(250));
  const auto* item = lstRestrict(0).item(250);
  window_->Refresh();
  EXPECT_EQ(lstRestrict(0).visualItemRect(lstRestrict(0).item(250)), before);
  EXPECT_EQ(lstRestrict(0).item(250), item);
}

TEST_F(frmRestrictListTest, OneThatIsOpenedWhileTheLastIsStillGoingKeepsItsLists) {
  Open();
  const QPointer<windows::frmRestrictList> last = window_;
  last->close();
  Show();
  LetItGo();
  ASSERT_TRUE(last.isNull());
  EXPECT_THAT(editor_.Column(0).lstRestrict, ElementsAre("Anna", "Moon", "Sun"));
}

/// Bytes in use on the heap. What the allocator keeps for later does not count as growth.
std::size_t HeapInUse() {
  return mallinfo2().uordblks;
}

TEST_F(frmRestrictListTest, OpenedAndClosedManyTimesItLeavesNothingBehind) {
  files_.Put(kPath, "0Anna\n0Moon\n1Rain\n2Hail\n3Snow\n");
  const auto round = [this] {
    Show();
    window_->close();
    LetItGo();
    ASSERT_TRUE(window_.isNull());
  };
  for (int i = 0; i < 50; ++i) round();
  store_.Calls.clear();
  files_.Calls.clear();
  closes_ = {};
  const auto widgets = QApplication::allWidgets().size();
  const std::size_t before = HeapInUse();
  const int rounds = Repetitions(100, 1000);
  for (int i = 0; i < rounds; ++i) {
    round();
    store_.Calls = {};
    files_.Calls = {};
  }
  closes_ = {};
  EXPECT_EQ(QApplication::allWidgets().size(), widgets);
  // Qt's caches fill up to some 90 kB in the first thousand; one lost object a round would be more.
  EXPECT_LT(HeapInUse(), before + 128 * 1024);
}

}  // namespace
}  // namespace kestrune::test
