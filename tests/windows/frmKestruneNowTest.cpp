#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/NowScreen.h"
#include "radio/channels/ChannelsFixture.h"
#include "support/MemorySettingsStore.h"
#include "windows/frmKestruneNow.h"

namespace kestrune::test {
namespace {

class frmKestruneNowTest : public ChannelsFixture {
 protected:
  frmKestruneNowTest() {
    ThreeChannels();
    Tune(44);
    stored = {{"Preset1", "44 - Fred"}, {"Preset2", "45 - Lucy"}};
    presets.LoadPresets();
    presets.ShowPresets = [this] { ++setupShown; };
  }
  ~frmKestruneNowTest() override { delete window; }

  void Open() {
    window = new windows::frmKestruneNow(screen, presets, section);
    window->HotKey = [this](int key) { keys.push_back(key); };
    window->Closed = [this] { ++closed; };
    window->show();
    QCoreApplication::processEvents();
  }
  [[nodiscard]] QLabel* Line(const char* name) const {
    return window->findChild<QLabel*>(QLatin1String(name));
  }
  [[nodiscard]] QPushButton* Button(int index) const {
    return window->findChild<QPushButton*>(QStringLiteral("cmdPresetStation_%1").arg(index));
  }
  [[nodiscard]] static bool Green(const QPushButton* button) {
    return button->palette().color(QPalette::Button) == QColor(0, 255, 0);
  }
  void Second() {
    loop.Run(Milliseconds(1000));
    window->Refresh();
  }
  void Close() {
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  [[nodiscard]] std::string Setting(const char* key) const {
    return store.Stored("Lorimel", "Kestrune", key);
  }

  presenters::Presets presets{channels, sounds, Keys(), [this] { return recording; }};
  presenters::NowLines shown{.lblChannel = "44: Fred", .lblArtist = "Queen", .lblSong = "Radio Ga Ga"};
  presenters::NowScreen screen{channels, presets, loop, [this] { return shown; }};
  MemorySettingsStore store;
  config::SettingsSection section{store};
  QPointer<windows::frmKestruneNow> window;
  std::vector<int> keys;
  int closed = 0;
  int setupShown = 0;
};

TEST_F(frmKestruneNowTest, ShowsTheLinesOfTheMainWindowWithOneAmpersand) {
  shown = {.lblChannel = "44: R&&B", .lblArtist = "<b>Ike</b> && Tina", .lblSong = "One\nTwo"};
  Open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Kestrune Now"));
  EXPECT_EQ(Line("lblChannel")->text(), QStringLiteral("44: R&B"));
  EXPECT_EQ(Line("lblArtist")->text(), QStringLiteral("<b>Ike</b> & Tina"));
  EXPECT_EQ(Line("lblSong")->text(), QStringLiteral("One Two"));
  for (const char* name : {"lblChannel", "lblArtist", "lblSong"}) {
    EXPECT_EQ(Line(name)->textFormat(), Qt::PlainText);
    EXPECT_EQ(Line(name)->font().family(), QStringLiteral("Arial"));
  }
}

TEST_F(frmKestruneNowTest, TheTwelveButtonsStandInThreeColumnsOfFourFromTheBottomUp) {
  Open();
  for (const int height : {372, 700}) {
    window->resize(648, height);
    QCoreApplication::processEvents();
    for (int i = 0; i < 12; ++i) {
      ASSERT_NE(Button(i), nullptr);
      EXPECT_EQ(Button(i)->y(), height - (1440 + (3 - i % 4) * 1020) / 15) << i;
      EXPECT_EQ(Button(i)->x(), Button(i / 4 * 4)->x()) << i;
      EXPECT_EQ(Button(i)->toolTip(), QStringLiteral("Preset %1 (CTRL-F%1)").arg(i + 1));
      EXPECT_EQ(Button(i)->font().pointSize(), 12);
      EXPECT_TRUE(Button(i)->font().bold());
      EXPECT_EQ(Button(i)->font().family(), QStringLiteral("Arial"));
    }
    EXPECT_GT(Button(4)->x(), Button(0)->geometry().right());
    EXPECT_GT(Button(8)->x(), Button(4)->geometry().right());
    EXPECT_LT(Button(8)->geometry().right(), 648);
    EXPECT_LT(Button(3)->geometry().bottom(), height);
  }
}

TEST_F(frmKestruneNowTest, ButtonsShowWhatTheirChannelsPlay) {
  Plays(45, "R&B", "Ike & Tina", "<b>Song</b>");
  Open();
  EXPECT_EQ(Button(0)->text(), QStringLiteral("44 - Fred\nQueen\nRadio Ga Ga"));
  // "&&" shows one ampersand and makes no letter a key.
  EXPECT_EQ(Button(1)->text(), QStringLiteral("45 - R&&B\nIke && Tina\n<b>Song</b>"));
  EXPECT_TRUE(Button(1)->shortcut().isEmpty());
  EXPECT_EQ(Button(2)->text(), QString());
  EXPECT_EQ(Button(2)->accessibleName(), QStringLiteral("Preset 3, empty"));
}

TEST_F(frmKestruneNowTest, TheGreenMovesToTheNewPresetWithinASecond) {
  Open();
  EXPECT_TRUE(Green(Button(0)));
  EXPECT_FALSE(Green(Button(1)));
  Tune(45);
  Second();
  EXPECT_FALSE(Green(Button(0)));
  EXPECT_TRUE(Green(Button(1)));
  EXPECT_EQ(Button(0)->palette().color(QPalette::Button), Button(2)->palette().color(QPalette::Button));
}

TEST_F(frmKestruneNowTest, APresetWithNoChannelIsEmptyAndKeepsItsColourFromBefore) {
  Open();
  EXPECT_FALSE(Green(Button(2)));
  stored["Preset1"] = "";
  presets.LoadPresets();
  Second();
  EXPECT_EQ(Button(0)->text(), QString());
  EXPECT_TRUE(Green(Button(0)));
}

TEST_F(frmKestruneNowTest, APressIsAPressOfTheMainWindowsButton) {
  Open();
  QTest::mouseClick(Button(1), Qt::LeftButton);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  QTest::mouseClick(Button(2), Qt::LeftButton);
  EXPECT_EQ(setupShown, 1);
  recording = true;
  QTest::mouseClick(Button(0), Qt::LeftButton);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  EXPECT_EQ(sounds.Played.size(), 1U);
}

// The big lines.

TEST_F(frmKestruneNowTest, AVeryLongSongFallsTo8PointsAndNoFurther) {
  shown.lblSong = std::string(2000, 'W');
  Open();
  EXPECT_EQ(Line("lblSong")->font().pointSizeF(), 8);
  EXPECT_GT(Line("lblSong")->width(), window->width());
}

TEST_F(frmKestruneNowTest, AnEmptyArtistGrowsUntilTheHeightLimitOr72Points) {
  shown.lblArtist = "";
  Open();
  const QLabel* line = Line("lblArtist");
  EXPECT_LE(line->width(), 1);
  window->resize(648, 3000);
  QCoreApplication::processEvents();
  EXPECT_EQ(line->font().pointSizeF(), 72);
  window->resize(648, 400);
  QCoreApplication::processEvents();
  EXPECT_LT(line->font().pointSizeF(), 72);
  EXPECT_LE(line->height() * 15, Button(0)->y() * 15 / 3 - 40 + 15);
}

TEST_F(frmKestruneNowTest, TheLinesFillTheWidthOrTheirThirdAndNeverOverlap) {
  Open();
  for (const char* song : {"x", "Radio Ga Ga", "WWWWWWWWWWWWWWWW", "A title of more words than usual here"}) {
    for (const QSize size : {QSize(648, 372), QSize(900, 600), QSize(1600, 1000)}) {
      shown.lblSong = song;
      Second();
      window->resize(size);
      QCoreApplication::processEvents();
      EXPECT_EQ(Line("lblChannel")->y(), 0);
      EXPECT_EQ(Line("lblArtist")->y(), Line("lblChannel")->geometry().bottom() + 1);
      EXPECT_EQ(Line("lblSong")->y(), Line("lblArtist")->geometry().bottom() + 1);
      EXPECT_LE(Line("lblSong")->geometry().bottom(), Button(0)->y()) << song;
      if (Line("lblSong")->font().pointSizeF() > 8) {
        EXPECT_LE(Line("lblSong")->geometry().right(), window->width()) << song;
      }
    }
  }
}

TEST_F(frmKestruneNowTest, AChangeOfAButtonLaysNothingOut) {
  Open();
  const QFont before = Line("lblSong")->font();
  Line("lblSong")->move(1, 1);
  Plays(45, "Lucy", "Someone", "Else");
  Second();
  EXPECT_EQ(Line("lblSong")->pos(), QPoint(1, 1));
  shown.lblSong = "Another song";
  Second();
  EXPECT_NE(Line("lblSong")->pos(), QPoint(1, 1));
  EXPECT_EQ(Line("lblSong")->text(), QStringLiteral("Another song"));
}

TEST_F(frmKestruneNowTest, CannotBeMadeSmallerThanTold) {
  Open();
  window->resize(100, 100);
  EXPECT_EQ(window->size(), QSize(9720 / 15, 5580 / 15));
  Close();
  store.Put("Lorimel", "Kestrune", "BigFormWidth", "1000");
  store.Put("Lorimel", "Kestrune", "BigFormHeight", "1000");
  Open();
  EXPECT_EQ(window->size(), QSize(648, 372));
}

TEST_F(frmKestruneNowTest, ALargeWindowIsThePictureMagnifiedWithButtonsAsWideAsItself) {
  shown.lblArtist = "x";
  Open();
  for (const QSize size : {QSize(700, 600), QSize(810, 700), QSize(1000, 600)}) {
    window->resize(size);
    QCoreApplication::processEvents();
    EXPECT_EQ(Button(0)->font().pointSizeF(), 12) << size.width();
    EXPECT_EQ(Button(0)->height(), 64);
    EXPECT_EQ(Button(3)->y(), size.height() - 1440 / 15);
    EXPECT_NEAR(Button(8)->geometry().right(), size.width() - 7, 2)
        << "the last column ends at the window's edge";
  }
  // Twice as large as what is shown as designed, and a quarter.
  window->resize(2 * 648 + 162, 2 * 560 + 140);
  QCoreApplication::processEvents();
  EXPECT_EQ(Button(0)->font().pointSizeF(), 24);
  EXPECT_EQ(Button(0)->height(), 2 * 64);
  EXPECT_EQ(Button(3)->y(), window->height() - 2 * 1440 / 15);
  EXPECT_EQ(Button(3)->y() - Button(2)->y(), 2 * 1020 / 15);
  EXPECT_NEAR(Button(8)->geometry().right(), window->width() - 7, 3);
  EXPECT_GT(Line("lblArtist")->font().pointSizeF(), 100) << "larger than the largest letters as designed";
  window->resize(648, 560);
  QCoreApplication::processEvents();
  EXPECT_EQ(Button(0)->font().pointSizeF(), 12);
  EXPECT_LE(Line("lblArtist")->font().pointSizeF(), 72);
}

TEST_F(frmKestruneNowTest, UnderTheButtonsStandsWhatBecomesOfTheSong) {
  shown.Status = "Recording 00:02:14 - This song is kept from its beginning.";
  Open();
  EXPECT_EQ(Line("lblStatus")->text().toStdString(), shown.Status);
  for (const QSize size : {QSize(648, 372), QSize(1600, 1000)}) {
    window->resize(size);
    QCoreApplication::processEvents();
    EXPECT_GT(Line("lblStatus")->y(), Button(3)->geometry().bottom());
    EXPECT_EQ(Line("lblStatus")->geometry().bottom(), size.height() - 1);
    EXPECT_GE(Line("lblStatus")->height(), Line("lblStatus")->fontMetrics().height());
  }
  shown.Status = "Not recording.";
  Second();
  EXPECT_EQ(Line("lblStatus")->text().toStdString(), shown.Status);
}

TEST_F(frmKestruneNowTest, TheLockShowsWhileTheButtonsTuneToNothing) {
  Open();
  const auto* lock = window->findChild<QWidget*>(QStringLiteral("boxLock"));
  ASSERT_NE(lock, nullptr);
  EXPECT_FALSE(lock->isVisible());
  shown.Locked = true;
  Second();
  EXPECT_TRUE(lock->isVisible());
  for (const QSize size : {QSize(648, 372), QSize(1600, 1000)}) {
    window->resize(size);
    QCoreApplication::processEvents();
    EXPECT_GT(lock->x(), Line("lblStatus")->geometry().right());
    EXPECT_LT(lock->geometry().right(), size.width());
    EXPECT_GE(lock->width(), lock->sizeHint().width());
  }
  shown.Locked = false;
  Second();
  EXPECT_FALSE(lock->isVisible());
}

// Keys and closing.

TEST_F(frmKestruneNowTest, HotKeysGoToTheMainWindowAndNoOthers) {
  Open();
  std::vector<int> expected;
  for (int n = 0; n < 12; ++n) {
    QTest::keyClick(Button(n), static_cast<Qt::Key>(Qt::Key_F1 + n), Qt::ControlModifier);
    expected.push_back(112 + n);
  }
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    QTest::keyClick(Button(0), static_cast<Qt::Key>(letter), Qt::ControlModifier);
    if (std::string_view("BDEGHKLQRSTUWY").find(letter) != std::string_view::npos) {
      expected.push_back(letter);
    }
  }
  QTest::keyClick(Button(0), Qt::Key_F5);
  EXPECT_EQ(keys, expected);
}

TEST_F(frmKestruneNowTest, ClosingStopsTheTimerSavesThePlaceAndClearsTheCheckBox) {
  Open();
  window->move(200, 100);
  window->resize(700, 600);
  Close();
  EXPECT_TRUE(window.isNull());
  EXPECT_EQ(closed, 1);
  EXPECT_FALSE(screen.tmrUpdate().Enabled());
  EXPECT_EQ(Setting("BigFormTop"), "1500");
  EXPECT_EQ(Setting("BigFormLeft"), "3000");
  EXPECT_EQ(Setting("BigFormHeight"), "9000");
  EXPECT_EQ(Setting("BigFormWidth"), "10500");
  Open();
  EXPECT_EQ(window->pos(), QPoint(200, 100));
  EXPECT_EQ(window->size(), QSize(700, 600));
  QTest::keyClick(window, Qt::Key_Escape);
  EXPECT_EQ(closed, 2);
}

TEST_F(frmKestruneNowTest, AMinimisedWindowSavesNothing) {
  Open();
  window->showMinimized();
  Close();
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(Setting("BigFormTop"), "(absent)");
}

TEST_F(frmKestruneNowTest, ALongTextStaysWithinItsButton) {
  Plays(44, "WWWWWWWWWWWWWWWW", "MMMMMMMMMMMMMMMM", "WWWWWWWWWWWWWWWW");
  Open();
  QImage image = Button(0)->grab().toImage();
  // No part of a letter within the two pixels at either side.
  for (const int x : {2, image.width() - 3}) {
    const QColor background = image.pixelColor(x, 6);
    for (int y = 6; y < image.height() - 6; ++y) {
      const QColor color = image.pixelColor(x, y);
      EXPECT_LT(std::abs(color.green() - background.green()), 60) << x << " " << y;
    }
  }
}

}  // namespace
}  // namespace kestrune::test
