#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemorySettingsStore.h"
#include "support/RecordingShell.h"
#include "support/UnitRig.h"
#include "windows/frmShelf.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class frmShelfTest : public ::testing::Test {
 protected:
  frmShelfTest() {
    rig.Set("ShelfSongs", "20");
    rig.Set("FilenameFormat", "%a - %s");
    rig.StartIdle();
    Next("Salt & Sun", "Winter Apples");
    Next("Lanterns", "<b>North</b>");
    Next("Dune", "Low Road");
    rules = std::make_unique<presenters::Shelf>(*rig.Unit, shell, rig.Loop);
    window = std::make_unique<windows::frmShelf>(*rules, section);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->show();
  }
  void Next(const std::string& artist, const std::string& song) {
    rig.NextSong(artist, song);
    rig.Run(62s);
  }
  void Run() {
    rig.Run(1s);
    window->Refresh();
  }
  template <typename Control>
  [[nodiscard]] Control& Find(const char* name) {
    return *window->findChild<Control*>(QLatin1String(name));
  }
  [[nodiscard]] QTreeWidget& Songs() { return Find<QTreeWidget>("lstSongs"); }
  [[nodiscard]] std::string Cell(int row, int column) {
    return Songs().topLevelItem(row)->text(column).toStdString();
  }

  [[nodiscard]] int LeastWidth() {
    window->layout()->activate();
    return window->layout()->minimumSize().width();
  }

  UnitRig rig;
  RecordingShell shell;
  MemorySettingsStore settings;
  config::SettingsSection section{settings};
  std::unique_ptr<presenters::Shelf> rules;
  std::unique_ptr<windows::frmShelf> window;
};

TEST_F(frmShelfTest, ThePresentSongIsOnTopThenTheNewest) {
  ASSERT_EQ(Songs().topLevelItemCount(), 4);
  EXPECT_EQ(Cell(0, 0), "now");
  EXPECT_EQ(Cell(0, 3), "Low Road");
  EXPECT_EQ(Cell(0, 4), "1:03");
  EXPECT_EQ(Cell(1, 1), "Harbour");
  EXPECT_EQ(Cell(1, 2), "Lanterns");
  EXPECT_EQ(Cell(1, 3), "<b>North</b>");
  EXPECT_EQ(Cell(2, 2), "Salt & Sun");
  EXPECT_EQ(Cell(1, 5), "not wanted");
  Run();
  EXPECT_EQ(Cell(0, 4), "1:04");
}

TEST_F(frmShelfTest, TheSongThatPlaysIsChosenAtFirstAndStaysSoWhileItGrows) {
  ASSERT_NE(Songs().currentItem(), nullptr);
  Run();
  EXPECT_EQ(Songs().indexOfTopLevelItem(Songs().currentItem()), 0);
  EXPECT_TRUE(Find<QPushButton>("cmdKeep").isEnabled());
  Find<QPushButton>("cmdKeep").click();
  Run();
  EXPECT_EQ(Cell(0, 5), "will be kept");
  EXPECT_FALSE(Find<QPushButton>("cmdKeep").isEnabled()) << "once is enough";
}

TEST_F(frmShelfTest, EnterPlaysTheChosenSongInTheDesktopsPlayer) {
  EXPECT_FALSE(Find<QPushButton>("cmdPlay").isEnabled());
  Songs().setCurrentItem(Songs().topLevelItem(2));
  EXPECT_TRUE(Find<QPushButton>("cmdPlay").isEnabled());
  QTest::keyClick(&Songs(), Qt::Key_Return);
  EXPECT_THAT(shell.Opened, ElementsAre("/music/Kestrune/Shelf/Salt & Sun - Winter Apples.wav"));
  Find<QPushButton>("cmdShowInFolder").click();
  EXPECT_EQ(shell.Opened.back(), "/music/Kestrune/Shelf/");
  Songs().setCurrentItem(Songs().topLevelItem(0));
  EXPECT_FALSE(Find<QPushButton>("cmdPlay").isEnabled());
  EXPECT_FALSE(Find<QPushButton>("cmdShowInFolder").isEnabled());
  EXPECT_TRUE(Find<QPushButton>("cmdKeep").isEnabled());
}

TEST_F(frmShelfTest, KeepTakesTheSongOutOfTheList) {
  Songs().setCurrentItem(Songs().topLevelItem(2));
  Find<QPushButton>("cmdKeep").click();
  Run();
  EXPECT_EQ(Songs().topLevelItemCount(), 3);
  EXPECT_TRUE(rig.Files.Exists("/music/Salt & Sun - Winter Apples.wav"));
  EXPECT_EQ(Songs().currentItem(), nullptr) << "no other song takes its place";
}

TEST_F(frmShelfTest, TheChosenSongStaysChosenWhenAnotherComes) {
  Songs().setCurrentItem(Songs().topLevelItem(2));
  Next("New", "Song");
  Run();
  ASSERT_NE(Songs().currentItem(), nullptr);
  EXPECT_EQ(Songs().currentItem()->text(3).toStdString(), "Winter Apples");
  EXPECT_EQ(Songs().indexOfTopLevelItem(Songs().currentItem()), 3);
}

TEST_F(frmShelfTest, WhatIsTypedIsSearched) {
  QTest::keyClicks(&Find<QLineEdit>("txtSearch"), QStringLiteral("apples salt"));
  EXPECT_EQ(Songs().topLevelItemCount(), 2);
  EXPECT_EQ(Cell(1, 3), "Winter Apples");
}

TEST_F(frmShelfTest, EnterGoesFromTheSearchToWhatItFoundAndThenPlaysIt) {
  auto& search = Find<QLineEdit>("txtSearch");
  QTest::keyClicks(&search, QStringLiteral("apples"));
  QTest::keyClick(&search, Qt::Key_Return);
  EXPECT_THAT(shell.Opened, IsEmpty());
  ASSERT_NE(Songs().currentItem(), nullptr);
  EXPECT_EQ(Songs().currentItem()->text(3).toStdString(), "Winter Apples");
  QTest::keyClick(&Songs(), Qt::Key_Return);
  EXPECT_THAT(shell.Opened, ElementsAre("/music/Kestrune/Shelf/Salt & Sun - Winter Apples.wav"));
  search.setText(QStringLiteral("nothing has this"));
  QTest::keyClick(&search, Qt::Key_Down);
  EXPECT_EQ(Songs().currentItem(), nullptr);
}

TEST_F(frmShelfTest, ALongMessageLeavesTheWindowAsItIs) {
  Next(std::string(16, 'W'), std::string(16, 'W'));
  Next("New", "Song");
  Run();
  const int width = LeastWidth();
  Songs().setCurrentItem(Songs().topLevelItem(1));
  Find<QPushButton>("cmdKeep").click();
  Run();
  EXPECT_THAT(Find<QLabel>("lblMessage").text().toStdString(), ::testing::EndsWith("ww was kept."));
  EXPECT_EQ(LeastWidth(), width);
}

TEST_F(frmShelfTest, ARowIsDraggedOutAsAFile) {
  EXPECT_TRUE(Songs().dragEnabled());
  EXPECT_FALSE(Songs().topLevelItem(0)->flags().testFlag(Qt::ItemIsDragEnabled));
  ASSERT_TRUE(Songs().topLevelItem(1)->flags().testFlag(Qt::ItemIsDragEnabled));
  const std::unique_ptr<QMimeData> data(Songs().model()->mimeData({Songs().model()->index(2, 0)}));
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->urls(), QList<QUrl>{QUrl::fromLocalFile(
                              QStringLiteral("/music/Kestrune/Shelf/Salt & Sun - Winter Apples.wav"))});
}

TEST_F(frmShelfTest, EscapeClosesItAndItsPlaceIsRemembered) {
  window->resize(777, 333);
  QTest::keyClick(&Songs(), Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
  const std::uint32_t changes = rules->Changes();
  rig.Run(5s);
  EXPECT_EQ(rules->Changes(), changes) << "and it looks no more";
  windows::frmShelf again(*rules, section);
  again.setAttribute(Qt::WA_DeleteOnClose, false);
  EXPECT_EQ(again.size(), QSize(777, 333));
}

}  // namespace
}  // namespace kestrune::test
