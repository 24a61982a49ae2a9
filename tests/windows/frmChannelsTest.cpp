#include <QAbstractItemModel>
#include <QAction>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ChannelChooser.h"
#include "presenters/ChannelMenuRig.h"
#include "radio/channels/ChannelsFixture.h"
#include "support/MemorySettingsStore.h"
#include "windows/ChannelGridModel.h"
#include "windows/Controls.h"
#include "windows/frmChannels.h"

namespace kestrune::test {
namespace {

using radio::ChannelGrid;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class frmChannelsTest : public ChannelsFixture {
 protected:
  frmChannelsTest() {
    chooser.OfferForList = [this](std::string_view word, std::string_view text) {
      offered.push_back(std::string(word) + ": " + std::string(text));
    };
    chooser.ClearChannelListing = [this] { ++cleared; };
    tmrUpdate->SetEnabled(true);
    channels.SetUpGrid();
    channels.Grid().Enabled = true;
    ThreeChannels();
    Tune(44);
  }

  void Open() {
    window = std::make_unique<windows::frmChannels>(chooser, rig.Listing, rig.Menu, section);
    window->HotKey = [this](int key) { keys.push_back(key); };
    window->show();
    QCoreApplication::processEvents();
    view = window->findChild<QTableView*>(QStringLiteral("grdChannels"));
    ASSERT_NE(view, nullptr);
  }
  void Many() {
    for (int channel = 50; channel <= 255; ++channel) {
      Plays(static_cast<std::uint8_t>(channel), "Station", "Artist", "Song");
    }
  }
  [[nodiscard]] QPoint Place(int row, int column) const {
    return view->visualRect(view->model()->index(row - 1, column)).center();
  }
  void Click(int row, int column = 1) {
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, Place(row, column));
  }
  void DoubleClick(int row, int column) {
    // As a hand does it: two presses, the second of which is reported as a double click.
    Click(row, column);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, Place(row, column));
  }
  [[nodiscard]] QPoint PlaceOfTitle(int column) const {
    const QHeaderView* header = view->horizontalHeader();
    return {header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2};
  }
  void RightClick(int row) {
    const QPoint place = Place(row, 1);
    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, place);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, view->viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(view->viewport(), &event);
  }
  [[nodiscard]] QAction& Action(const char* name) { return Find<QAction>(*window, name); }
  [[nodiscard]] QLineEdit& Search() { return Find<QLineEdit>(*window, "txtSearch"); }
  void ClickTitle(int column) {
    QTest::mouseClick(view->horizontalHeader()->viewport(), Qt::LeftButton, {}, PlaceOfTitle(column));
  }
  [[nodiscard]] std::vector<int> Shown() const {
    std::vector<int> numbers;
    for (int row = 0; row < view->model()->rowCount(); ++row) {
      numbers.push_back(view->model()->index(row, 0).data().toInt());
    }
    return numbers;
  }
  // The numbers of the rows that are drawn as selected.
  [[nodiscard]] std::vector<int> Selected() const {
    std::vector<int> numbers;
    for (const QModelIndex& row : view->selectionModel()->selectedRows()) {
      numbers.push_back(row.data().toInt());
    }
    return numbers;
  }
  void Wait(int milliseconds) { loop.Run(Milliseconds(milliseconds)); }
  void Setting(const char* key, const char* value) { store.Put("Lorimel", "Kestrune", key, value); }
  [[nodiscard]] std::string Setting(const char* key) const {
    return store.Stored("Lorimel", "Kestrune", key);
  }

  std::unique_ptr<base::Timer> tmrUpdate = loop.MakeTimer(Milliseconds(3600000), [] {});
  presenters::ChannelChooser chooser{channels, run, sounds, loop, *tmrUpdate, [this] { return recording; }};
  ChannelMenuRig rig{channels, sounds, Keys(), chooser, [this] { return recording; }};
  MemorySettingsStore store;
  config::SettingsSection section{store};
  std::unique_ptr<windows::frmChannels> window;
  QTableView* view = nullptr;
  Strings offered;
  int cleared = 0;
  std::vector<int> keys;
};

TEST_F(frmChannelsTest, ShowsTheToldTitlesAndWidths) {
  Open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Kestrune Channels"));
  struct Column {
    const char* Title;
    int Twips;
  };
  const Column columns[] = {
      {"> ", 435}, {"Station Name", 2000}, {"Artist", 2000}, {"Song", 2000}, {"Station Genre", 2000}};
  ASSERT_EQ(view->model()->columnCount(), 5);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(view->model()->headerData(i, Qt::Horizontal).toString(), QLatin1String(columns[i].Title));
    if (i > 0 && i < 4) {
      EXPECT_EQ(view->columnWidth(i), columns[i].Twips / 15);
    }
  }
  // The number is never cut off, and the last column takes what is left beside the scroll bar.
  EXPECT_GE(view->columnWidth(0), 435 / 15);
  EXPECT_EQ(view->horizontalHeader()->length(), view->viewport()->width());
  EXPECT_FALSE(view->horizontalScrollBar()->isVisible());
}

// Size.

TEST_F(frmChannelsTest, OnlyTheHeightCanBeChangedAndNotBelow2000Twips) {
  Open();
  window->resize(900, 50);
  EXPECT_EQ(window->width(), 8565 / 15);
  EXPECT_EQ(window->height(), 134);
  window->resize(100, 700);
  EXPECT_EQ(window->width(), 571);
  EXPECT_EQ(window->height(), 700);
  // Above the grid is the line that searches it.
  EXPECT_EQ(view->height(), 700 - 33);
}

TEST_F(frmChannelsTest, MaximisingIsRefused) {
  Open();
  window->showMaximized();
  QCoreApplication::processEvents();
  EXPECT_FALSE(window->isMaximized());
  EXPECT_EQ(window->width(), 571);
}

TEST_F(frmChannelsTest, StandsWhereItWasClosed) {
  Setting("ChannelTop", "1500");
  Setting("ChannelLeft", "3000");
  Setting("ChannelHeight", "4500");
  Open();
  EXPECT_EQ(window->pos(), QPoint(200, 100));
  EXPECT_EQ(window->height(), 300);
}

TEST_F(frmChannelsTest, AStoredHeightOfNoSenseIsMadeOne) {
  for (const char* text : {"-5", "0", "1e30", "tall"}) {
    Setting("ChannelHeight", text);
    Open();
    EXPECT_GE(window->height(), 134) << text;
    EXPECT_LE(window->height(), 16384) << text;
  }
}

// Choosing.

TEST_F(frmChannelsTest, AClickOnARowTunesItsChannelAfter300Milliseconds) {
  Open();
  Click(2);
  EXPECT_THAT(Selected(), ElementsAre(45));
  EXPECT_TRUE(Wrote({}));
  Wait(300);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 2D 00 00 01 01 19"}));
}

TEST_F(frmChannelsTest, AClickOnTheSelectedRowChoosesItToo) {
  Open();
  Click(1);
  EXPECT_EQ(chooser.PendingChannel(), 44);
  EXPECT_TRUE(chooser.tmrChannelChange().Enabled());
}

TEST_F(frmChannelsTest, AnArrowKeyHeldDownSendsOneFrameAfterTheLastMove) {
  Open();
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Down, Qt::Key_Up}) {
    QTest::keyClick(view, key);
    Wait(100);
  }
  EXPECT_EQ(chooser.PendingChannel(), 45);
  EXPECT_THAT(Selected(), ElementsAre(45));
  EXPECT_TRUE(Wrote({}));
  Wait(5000);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 2D 00 00 01 01 19"}));
}

TEST_F(frmChannelsTest, AKeyThatMovesNothingChoosesNothing) {
  Open();
  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left, Qt::Key_Right, Qt::Key_Shift, Qt::Key_Return}) {
    QTest::keyClick(view, key);
  }
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(frmChannelsTest, AChangeMadeByTheProgramIsNotTakenForTheUsers) {
  Open();
  Tune(46);
  window->Refresh();
  EXPECT_THAT(Selected(), ElementsAre(46));
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  Tune(45);
  // Not shown yet: the key moves from the row that is tuned now.
  QTest::keyClick(view, Qt::Key_Up);
  EXPECT_THAT(Selected(), ElementsAre(44));
}

TEST_F(frmChannelsTest, AClickDuringRecordingIsOneSoundAndTheSelectionJumpsBack) {
  Open();
  recording = true;
  Click(3);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_THAT(Selected(), ElementsAre(44));
  EXPECT_EQ(view->currentIndex().row(), 0);
  Click(1);
  EXPECT_EQ(sounds.Played.size(), 2U);
  Wait(1000);
  EXPECT_TRUE(Wrote({}));
}

TEST_F(frmChannelsTest, TheLockStandsAboveTheRowsWhileTheyTuneToNothing) {
  Open();
  const auto& lock = Find<QWidget>(*window, "boxLock");
  EXPECT_FALSE(lock.isVisible());
  recording = true;
  window->Refresh();
  QCoreApplication::processEvents();
  EXPECT_TRUE(lock.isVisible());
  EXPECT_LE(lock.geometry().bottom(), view->geometry().top());
  EXPECT_FALSE(lock.toolTip().isEmpty());
  recording = false;
  window->Refresh();
  EXPECT_FALSE(lock.isVisible());
}

TEST_F(frmChannelsTest, AnArrowKeyDuringRecordingIsASoundAndTheSelectionJumpsBack) {
  Open();
  recording = true;
  QTest::keyClick(view, Qt::Key_Down);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_THAT(Selected(), ElementsAre(44));
  EXPECT_EQ(view->currentIndex().row(), 0);
}

TEST_F(frmChannelsTest, TheSelectionCoversExactlyOneRow) {
  Open();
  QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(Selected().size(), 1U);
  QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Selected().size(), 1U);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier, Place(3, 1));
  EXPECT_EQ(Selected().size(), 1U);
  // The empty room below the rows.
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, QPoint(50, view->viewport()->height() - 5));
  window->Refresh();
  EXPECT_EQ(Selected().size(), 1U);
}

// Sorting.

TEST_F(frmChannelsTest, AClickOnTheTitleOfTheColumnAlreadySortedTurnsTheOrderRound) {
  Open();
  ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(Shown(), ElementsAre(45, 44, 46));
  ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(Shown(), ElementsAre(46, 44, 45));
}

TEST_F(frmChannelsTest, AfterASortByArtistTheSelectionStaysOnTheTunedChannel) {
  Open();
  ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(Selected(), ElementsAre(44));
  EXPECT_EQ(view->currentIndex().row(), 1);
}

TEST_F(frmChannelsTest, AfterASortTheTunedChannelIsInView) {
  Many();
  Open();
  ClickTitle(ChannelGrid::Number);
  ClickTitle(ChannelGrid::Number);
  QCoreApplication::processEvents();
  EXPECT_EQ(Shown().front(), 255);
  EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
}

TEST_F(frmChannelsTest, EveryTitleSortsByClickAndByKey) {
  Open();
  for (int column = 0; column < 5; ++column) {
    ClickTitle(column == 4 ? 0 : column + 1);
    ClickTitle(column);
    const std::vector<int> byClick = Shown();
    ClickTitle(column == 4 ? 0 : column + 1);
    QTest::keyClick(view, static_cast<Qt::Key>(Qt::Key_1 + column), Qt::ControlModifier);
    EXPECT_EQ(Shown(), byClick) << column;
  }
}

// Double click.

TEST_F(frmChannelsTest, ADoubleClickOffersArtistAndSongAndChangesNoChannel) {
  Open();
  DoubleClick(2, ChannelGrid::Artist);
  DoubleClick(2, ChannelGrid::Song);
  EXPECT_THAT(offered, ElementsAre("Artist: Abba", "Song: Waterloo"));
  DoubleClick(3, ChannelGrid::Station);
  EXPECT_EQ(offered.size(), 2U);
  EXPECT_THAT(Selected(), ElementsAre(44));
  Wait(1000);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_TRUE(Wrote({}));
}

// Live.

TEST_F(frmChannelsTest, ADoubleClickOnATitleTakesBackTheChoiceOfAChannel) {
  Open();
  Click(2);
  QTest::mouseDClick(view->horizontalHeader()->viewport(), Qt::LeftButton, {},
                     PlaceOfTitle(ChannelGrid::Artist));
  Wait(1000);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_THAT(offered, IsEmpty());
}

TEST_F(frmChannelsTest, AReplyTouchesOneRowOf255AndLeavesSelectionAndScrollingAlone) {
  Many();
  Open();
  view->scrollToBottom();
  const int scrolled = view->verticalScrollBar()->value();
  ASSERT_GT(scrolled, 0);
  const QSignalSpy changed(view->model(), &QAbstractItemModel::dataChanged);
  const QSignalSpy selected(view->selectionModel(), &QItemSelectionModel::selectionChanged);
  const QSignalSpy current(view->selectionModel(), &QItemSelectionModel::currentChanged);
  for (int channel = 50; channel <= 255; ++channel) {
    Plays(static_cast<std::uint8_t>(channel), "Station", "Next", "Title");
    window->Refresh();
    ASSERT_EQ(changed.count(), channel - 49);
  }
  window->Refresh();
  EXPECT_EQ(changed.count(), 206);
  EXPECT_EQ(selected.count() + current.count(), 0);
  EXPECT_EQ(view->verticalScrollBar()->value(), scrolled);
}

TEST_F(frmChannelsTest, AChannelThatComesAboveOrBelowKeepsTheSelection) {
  Open();
  QTest::keyClick(view, Qt::Key_Down);
  Plays(47, "New");
  channels.Grid().Sort(ChannelGrid::Number, ChannelGrid::Order::Descending);
  window->Refresh();
  EXPECT_THAT(Shown(), ElementsAre(47, 46, 45, 44));
  EXPECT_THAT(Selected(), ElementsAre(45));
}

TEST_F(frmChannelsTest, TheSelectedChannelGoingAwayChoosesNoOther) {
  Open();
  Click(2);
  Wait(1000);
  port.TakeWrites();
  channels.Grid().RemoveRow(2);
  window->Refresh();
  EXPECT_THAT(Selected(), IsEmpty());
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  EXPECT_TRUE(Wrote({}));
}

TEST_F(frmChannelsTest, AnEmptiedGridIsTolerated) {
  Open();
  channels.Grid().Clear();
  window->Refresh();
  EXPECT_THAT(Shown(), IsEmpty());
  QTest::keyClick(view, Qt::Key_Down);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(frmChannelsTest, TakesNoInputUntilTheFirstChannelHasCome) {
  channels.Grid().Enabled = false;
  Open();
  EXPECT_FALSE(window->isEnabled());
  channels.Grid().Enabled = true;
  window->Refresh();
  EXPECT_TRUE(window->isEnabled());
}

TEST_F(frmChannelsTest, WhatCameWhileItWasHiddenIsThereAtOnce) {
  Open();
  window->hide();
  Many();
  Tune(250);
  window->show();
  EXPECT_EQ(Shown().size(), 209U);
  EXPECT_THAT(Selected(), ElementsAre(250));
  EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
}

// Keys of the main window.

TEST_F(frmChannelsTest, HotKeysGoToTheMainWindowAndNoOthers) {
  Open();
  std::vector<int> expected;
  for (int n = 0; n < 12; ++n) {
    QTest::keyClick(view, static_cast<Qt::Key>(Qt::Key_F1 + n), Qt::ControlModifier);
    expected.push_back(112 + n);
  }
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    QTest::keyClick(view, static_cast<Qt::Key>(letter), Qt::ControlModifier);
    if (std::string_view("BDEGHKLQRSTUWY").find(letter) != std::string_view::npos) {
      expected.push_back(letter);
    }
  }
  QTest::keyClick(view, Qt::Key_F5);
  QTest::keyClick(view, Qt::Key_R);
  EXPECT_EQ(keys, expected);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

// Searching.

TEST_F(frmChannelsTest, ControlFLeadsToTheSearchLineAndEscapeBackToTheWholeList) {
  Open();
  EXPECT_TRUE(view->hasFocus());
  QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(Search().hasFocus());
  QTest::keyClicks(&Search(), "abba");
  EXPECT_THAT(Shown(), ElementsAre(45));
  EXPECT_EQ(Find<QLabel>(*window, "lblFound").text(), QStringLiteral("1 of 3"));
  QTest::keyClick(&Search(), Qt::Key_Escape);
  EXPECT_TRUE(view->hasFocus());
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 46));
  EXPECT_TRUE(Find<QLabel>(*window, "lblFound").isHidden());
  EXPECT_EQ(cleared, 0);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled()) << "searching tunes nothing";
}

TEST_F(frmChannelsTest, EscapeInTheListEndsTheSearchBeforeItClosesTheWindow) {
  Open();
  Search().setText(QStringLiteral("abba"));
  view->setFocus();
  QTest::keyClick(view, Qt::Key_Escape);
  EXPECT_EQ(cleared, 0);
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 46));
  QTest::keyClick(view, Qt::Key_Escape);
  EXPECT_EQ(cleared, 1);
}

TEST_F(frmChannelsTest, WhatIsTypedInTheListGoesToTheSearchLine) {
  Open();
  QTest::keyClick(view, 'w');
  EXPECT_TRUE(Search().hasFocus());
  QTest::keyClicks(&Search(), "ater");
  EXPECT_EQ(Search().text(), QStringLiteral("water"));
  EXPECT_THAT(Shown(), ElementsAre(45));
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(frmChannelsTest, AnArrowKeyGoesFromTheLineToTheRowsFound) {
  Open();
  QTest::keyClick(&Search(), Qt::Key_Down);
  EXPECT_TRUE(view->hasFocus());
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled()) << "nothing was searched";
  Search().setText(QStringLiteral("o"));
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 46));
  Search().setText(QStringLiteral("oo"));
  EXPECT_THAT(Shown(), ElementsAre(45));
  Search().setText(QStringLiteral("ou"));
  QTest::keyClick(&Search(), Qt::Key_Down);
  EXPECT_TRUE(view->hasFocus());
  EXPECT_THAT(Selected(), ElementsAre(46));
  Wait(300);
  EXPECT_EQ(channels.ChannelNumber(), 46);
}

TEST_F(frmChannelsTest, ReturnInTheLineTunesTheFirstRowFound) {
  Open();
  Search().setText(QStringLiteral("abba"));
  QTest::keyClick(&Search(), Qt::Key_Return);
  EXPECT_THAT(Selected(), ElementsAre(45));
  EXPECT_EQ(chooser.PendingChannel(), 45);
  Wait(300);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  recording = true;
  Search().setText(QStringLiteral("yes"));
  QTest::keyClick(&Search(), Qt::Key_Return);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  Search().setText(QStringLiteral("nothing"));
  QTest::keyClick(&Search(), Qt::Key_Return);
  EXPECT_EQ(sounds.Played.size(), 1U);
}

TEST_F(frmChannelsTest, AClickAmongTheRowsFoundChoosesTheChannelOfThatRow) {
  Open();
  Search().setText(QStringLiteral("yes"));
  Click(1);
  EXPECT_EQ(chooser.PendingChannel(), 46);
  DoubleClick(1, ChannelGrid::Song);
  EXPECT_THAT(offered, ElementsAre("Song: Roundabout"));
}

TEST_F(frmChannelsTest, HotKeysGoFromTheSearchLineToTheMainWindowToo) {
  Open();
  for (const Qt::Key key : {Qt::Key_K, Qt::Key_U, Qt::Key_E, Qt::Key_Y, Qt::Key_H, Qt::Key_F5})
    QTest::keyClick(&Search(), key, Qt::ControlModifier);
  EXPECT_THAT(keys, ElementsAre('K', 'U', 'E', 'Y', 'H', 116));
  QTest::keyClick(&Search(), Qt::Key_3, Qt::ControlModifier);
  EXPECT_THAT(Shown(), ElementsAre(45, 44, 46));
}

TEST_F(frmChannelsTest, TabGoesFromTheListOverTheSearchLineToTheFavourites) {
  Open();
  QTest::keyClick(view, Qt::Key_Tab);
  EXPECT_TRUE(Search().hasFocus());
  QTest::keyClick(&Search(), Qt::Key_Tab);
  EXPECT_TRUE(Find<QCheckBox>(*window, "chkFavouritesFirst").hasFocus());
}

// Marks.

TEST_F(frmChannelsTest, TheTunedRowIsBoldWhereverTheSelectionIs) {
  Open();
  QTest::keyClick(view, Qt::Key_Down);
  const auto bold = [this](int row) {
    return view->model()->index(row - 1, 1).data(Qt::FontRole).value<QFont>().bold();
  };
  EXPECT_TRUE(bold(1));
  EXPECT_FALSE(bold(2));
  EXPECT_EQ(view->model()->index(0, 0).data(Qt::AccessibleDescriptionRole).toString(),
            QStringLiteral("tuned"));
  Wait(300);
  window->Refresh();
  EXPECT_FALSE(bold(1));
  EXPECT_TRUE(bold(2));
}

TEST_F(frmChannelsTest, TheArrowIsOnTheColumnThatWasSortedByLast) {
  Open();
  const QHeaderView& titles = *view->horizontalHeader();
  EXPECT_EQ(titles.sortIndicatorSection(), -1);
  ClickTitle(ChannelGrid::Artist);
  EXPECT_EQ(titles.sortIndicatorSection(), ChannelGrid::Artist);
  EXPECT_EQ(titles.sortIndicatorOrder(), Qt::AscendingOrder);
  ClickTitle(ChannelGrid::Artist);
  EXPECT_EQ(titles.sortIndicatorOrder(), Qt::DescendingOrder);
  recording = true;
  ClickTitle(ChannelGrid::Song);
  EXPECT_EQ(titles.sortIndicatorSection(), ChannelGrid::Artist) << "nothing was sorted";
  EXPECT_EQ(titles.sortIndicatorOrder(), Qt::DescendingOrder);
  // The told mark is the text of the first title all the same.
  EXPECT_EQ(view->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("> "));
  channels.Grid().Clear();
  channels.Grid().FormSetup();
  window->Refresh();
  EXPECT_EQ(titles.sortIndicatorSection(), -1);
}

TEST_F(frmChannelsTest, RowsThatComeAboveDoNotPushTheTunedRowOutOfView) {
  Many();
  Open();
  ClickTitle(ChannelGrid::Number);
  ASSERT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
  for (int channel = 2; channel <= 40; ++channel) Plays(static_cast<std::uint8_t>(channel), "Low");
  channels.Grid().Sort(ChannelGrid::Number, ChannelGrid::Order::Ascending);
  window->Refresh();
  EXPECT_GT(view->currentIndex().row(), 30);
  EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
}

TEST_F(frmChannelsTest, ControlJShowsTheTunedRowAgain) {
  Many();
  Open();
  view->scrollToBottom();
  QTest::keyClick(view, Qt::Key_J, Qt::ControlModifier);
  EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
  Search().setText(QStringLiteral("abba"));
  QTest::keyClick(&Search(), Qt::Key_J, Qt::ControlModifier);
  EXPECT_THAT(Selected(), ElementsAre(44));
}

TEST_F(frmChannelsTest, FavouritesComeFirstIfTheBoxIsTicked) {
  rig.Favourites.Toggle(46);
  Open();
  auto& box = Find<QCheckBox>(*window, "chkFavouritesFirst");
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 46));
  box.click();
  EXPECT_THAT(Shown(), ElementsAre(46, 44, 45));
  EXPECT_TRUE(rig.Favourites.First());
  EXPECT_THAT(Selected(), ElementsAre(44));
  // The arrow keys follow what is seen.
  QTest::keyClick(view, Qt::Key_Up);
  EXPECT_EQ(chooser.PendingChannel(), 46);
  box.click();
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 46));
}

// The menu of a row.

TEST_F(frmChannelsTest, TheRightButtonOpensTheMenuOfItsRowAndChoosesNothing) {
  Open();
  RightClick(2);
  EXPECT_EQ(Action("mnuTune").text(), QStringLiteral("&Tune to 45 - Lucy"));
  EXPECT_THAT(Selected(), ElementsAre(44));
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  Action("mnuTune").trigger();
  EXPECT_EQ(chooser.PendingChannel(), 45);
}

TEST_F(frmChannelsTest, TheMenuKeyOpensTheMenuOfTheSelectedRow) {
  Open();
  QTest::keyClick(view, Qt::Key_Down);
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QCoreApplication::sendEvent(view->viewport(), &event);
  EXPECT_EQ(Action("mnuTune").text(), QStringLiteral("&Tune to 45 - Lucy"));
}

TEST_F(frmChannelsTest, WhatTheMenuOffersIsDone) {
  std::int16_t shown = 0;
  rig.Menu.ShowHistory = [&](std::int16_t channel) { shown = channel; };
  Plays(47, "Rhythm & Blues", "Salt & Sand", "");
  Open();
  RightClick(4);
  EXPECT_EQ(Action("mnuTune").text(), QStringLiteral("&Tune to 47 - Rhythm && Blues"));
  Action("mnuFavourite").trigger();
  Action("mnuPreset_4").trigger();
  Action("mnuKillArtist").trigger();
  Action("mnuHistory").trigger();
  EXPECT_TRUE(rig.Favourites.Has(47));
  EXPECT_EQ(stored["Preset5"], "47 - Rhythm & Blues");
  EXPECT_EQ(rig.Listed(), "2Salt & Sand\n");
  EXPECT_EQ(shown, 47);
  EXPECT_EQ(window->findChild<QAction*>(QStringLiteral("mnuGrabSong")), nullptr) << "there is no song";
  EXPECT_TRUE(view->model()->index(3, 1).data(windows::ChannelGridModel::kFavouriteRole).toBool());
}

TEST_F(frmChannelsTest, TheMenuBelongsToItsChannelEvenIfRowsMoveMeanwhile) {
  Open();
  RightClick(1);
  channels.Grid().Sort(ChannelGrid::Number, ChannelGrid::Order::Descending);
  window->Refresh();
  Action("mnuFavourite").trigger();
  EXPECT_TRUE(rig.Favourites.Has(44));
}

TEST_F(frmChannelsTest, WhileRecordingTheMenuTunesNothing) {
  Open();
  recording = true;
  RightClick(2);
  EXPECT_FALSE(Action("mnuTune").isEnabled());
  EXPECT_TRUE(Action("mnuFavourite").isEnabled());
}

// Closing.

TEST_F(frmChannelsTest, TheCloseBoxNeverDestroysItItClearsTheCheckBox) {
  chooser.ClearChannelListing = [this] {
    ++cleared;
    window->hide();
  };
  Open();
  EXPECT_FALSE(window->close());
  EXPECT_EQ(cleared, 1);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(Setting("ChannelHeight"), "(absent)");
  window->show();
  QTest::keyClick(view, Qt::Key_Escape);
  EXPECT_EQ(cleared, 2);
}

TEST_F(frmChannelsTest, TheEndOfTheProgramClosesItAndSavesItsPlace) {
  Open();
  window->move(200, 100);
  window->resize(571, 300);
  chooser.Quit();
  EXPECT_TRUE(window->close());
  EXPECT_EQ(cleared, 0);
  EXPECT_EQ(Setting("ChannelTop"), "1500");
  EXPECT_EQ(Setting("ChannelLeft"), "3000");
  EXPECT_EQ(Setting("ChannelHeight"), "4500");
  EXPECT_EQ(Setting("ChannelWidth"), "(absent)");
}

TEST_F(frmChannelsTest, AMinimisedWindowSavesNothing) {
  Open();
  window->showMinimized();
  run.ShuttingDown = true;
  EXPECT_TRUE(window->close());
  EXPECT_EQ(Setting("ChannelTop"), "(absent)");
  EXPECT_EQ(Setting("ChannelHeight"), "(absent)");
}

}  // namespace
}  // namespace kestrune::test
