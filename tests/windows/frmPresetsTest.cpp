#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/PresetSetup.h"
#include "radio/channels/ChannelsFixture.h"
#include "support/MemorySettingsStore.h"
#include "windows/frmPresets.h"

namespace kestrune::test {
namespace {

class frmPresetsTest : public ChannelsFixture {
 protected:
  frmPresetsTest() {
    setup.MainWindowToFront = [this] { ++toFront; };
  }
  ~frmPresetsTest() override { delete window; }

  void Open() {
    window = new windows::frmPresets(setup, section);
    window->show();
    QCoreApplication::processEvents();
  }
  [[nodiscard]] QComboBox* List(int index) const {
    return window->findChild<QComboBox*>(QStringLiteral("cboPreset_%1").arg(index));
  }
  void Press(const char* name) {
    auto* button = window->findChild<QPushButton*>(QLatin1String(name));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    Settle();
  }
  static void Settle() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }
  [[nodiscard]] std::string Setting(const char* key) const {
    return store.Stored("Lorimel", "Kestrune", key);
  }

  presenters::Presets presets{channels, sounds, Keys(), [] { return false; }};
  presenters::PresetSetup setup{channels.Grid(), presets, dialogs};
  MemorySettingsStore store;
  config::SettingsSection section{store};
  QPointer<windows::frmPresets> window;
  int toFront = 0;
};

TEST_F(frmPresetsTest, ShowsItsTexts) {
  Open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Preset Button Setup"));
  struct Told {
    const char* Name;
    const char* Text;
  };
  EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("lblInstructions"))->text(),
            QStringLiteral("Select the channel to be associated with each preset button:"));
  for (const Told& told :
       {Told{"cmdSave", "Save changes and Exit"}, Told{"cmdCancel", "Exit without saving changes"}}) {
    EXPECT_EQ(window->findChild<QPushButton*>(QLatin1String(told.Name))->text(), QLatin1String(told.Text));
  }
}

TEST_F(frmPresetsTest, EachOfTheTwelveListsHoldsTheChannelsAndShowsItsOwn) {
  for (std::uint8_t channel = 3; channel <= 14; ++channel)
    Plays(channel, "R&B <b>" + std::to_string(channel));
  for (int i = 0; i < 12; ++i) stored["Preset" + std::to_string(i + 1)] = std::to_string(14 - i) + " - old";
  Open();
  for (int i = 0; i < 12; ++i) {
    const QComboBox* list = List(i);
    ASSERT_NE(list, nullptr) << i;
    EXPECT_EQ(list->toolTip(), QStringLiteral("Select the channel to associate with this preset button"));
    EXPECT_EQ(list->accessibleName(), QStringLiteral("Preset %1").arg(i + 1));
    ASSERT_EQ(list->count(), 13);
    EXPECT_EQ(list->itemText(0), QStringLiteral("No Preset"));
    EXPECT_EQ(list->itemData(0).toInt(), 0);
    for (int line = 1; line <= 12; ++line) {
      EXPECT_EQ(list->itemText(line), QStringLiteral("%1 - R&B <b>%1").arg(line + 2));
      EXPECT_EQ(list->itemData(line).toInt(), line + 2);
    }
    EXPECT_EQ(list->currentText(), QStringLiteral("%1 - R&B <b>%1").arg(14 - i));
  }
}

TEST_F(frmPresetsTest, BeforeAnyChannelIsKnownEveryListHoldsNoPresetAlone) {
  stored["Preset4"] = "44 - Fred";
  Open();
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(List(i)->count(), 1);
    EXPECT_EQ(List(i)->currentText(), QStringLiteral("No Preset"));
  }
}

TEST_F(frmPresetsTest, ChoosingInOneListAndSavingWritesItAndClosesTheWindow) {
  ThreeChannels();
  Open();
  QTest::keyClick(List(4), Qt::Key_Down);
  QTest::keyClick(List(4), Qt::Key_Down);
  EXPECT_EQ(List(4)->currentText(), QStringLiteral("45 - Lucy"));
  EXPECT_EQ(List(3)->currentText(), QStringLiteral("No Preset"));
  Press("cmdSave");
  EXPECT_EQ(stored["Preset5"], "45 - Lucy");
  EXPECT_EQ(stored["Preset4"], "");
  EXPECT_EQ(presets.Buttons()[4].Caption, "45 - Lucy");
  EXPECT_EQ(toFront, 1);
  EXPECT_TRUE(window.isNull());
}

TEST_F(frmPresetsTest, CancelAndEscapeLeaveWithoutSaving) {
  ThreeChannels();
  Open();
  QTest::keyClick(List(0), Qt::Key_Down);
  Press("cmdCancel");
  EXPECT_TRUE(window.isNull());
  EXPECT_EQ(toFront, 1);
  Open();
  QTest::keyClick(window, Qt::Key_Escape);
  Settle();
  EXPECT_TRUE(window.isNull());
  EXPECT_EQ(toFront, 2);
  EXPECT_TRUE(stored.empty());
}

TEST_F(frmPresetsTest, TheCloseBoxAsksNothingAndDoesNotLeadToTheMainWindow) {
  ThreeChannels();
  Open();
  QTest::keyClick(List(0), Qt::Key_Down);
  EXPECT_TRUE(window->close());
  EXPECT_TRUE(stored.empty());
  EXPECT_TRUE(dialogs.Shown.empty());
  EXPECT_EQ(toFront, 0);
}

TEST_F(frmPresetsTest, AnAnswerOfCancelKeepsAChangedWindowOpen) {
  Open();
  setup.Changed = true;
  dialogs.Answer = platform::MessageAnswer::Cancel;
  EXPECT_FALSE(window->close());
  EXPECT_TRUE(window->isVisible());
  dialogs.Answer = platform::MessageAnswer::No;
  EXPECT_TRUE(window->close());
}

TEST_F(frmPresetsTest, StandsWhereItWasClosed) {
  Open();
  window->move(200, 100);
  window->close();
  Settle();
  EXPECT_EQ(Setting("PresetTop"), "1500");
  EXPECT_EQ(Setting("PresetLeft"), "3000");
  Open();
  EXPECT_EQ(window->pos(), QPoint(200, 100));
}

TEST_F(frmPresetsTest, ItsWidthDoesNotDependOnTheNames) {
  Open();
  const int width = window->sizeHint().width();
  window->close();
  Settle();
  Plays(44, "WWWWWWWWWWWWWWWW");
  stored["Preset1"] = "44 - x";
  Open();
  EXPECT_EQ(window->sizeHint().width(), width);
}

}  // namespace
}  // namespace kestrune::test
