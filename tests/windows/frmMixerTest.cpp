#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingsSection.h"
#include "presenters/MixerWindow.h"
#include "support/FakeMixer.h"
#include "support/MemorySettingsStore.h"
#include "windows/frmMixer.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;

class frmMixerTest : public ::testing::Test {
 protected:
  frmMixerTest() {
    mixer_.Lines = {{.Name = "Line In"}, {.Name = "Microphone", .Volume = 20000, .Balance = 30}};
    mixer_.Lines[1].Selected = true;
  }
  ~frmMixerTest() override { delete window_; }

  void Open() {
    window_ = new windows::frmMixer(rules_, section_);
    window_->show();
    QTest::qWait(0);
  }
  template <typename T>
  T& Find(const char* name, int index) {
    return *window_->findChild<T*>(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index));
  }
  QSlider& slVolume(int index) { return Find<QSlider>("slVolume", index); }
  QSlider& slBalance(int index) { return Find<QSlider>("slBalance", index); }
  QCheckBox& chSelect(int index) { return Find<QCheckBox>("chSelect", index); }

  FakeMixer mixer_;
  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  presenters::MixerWindow rules_{mixer_, [] { return std::string("card"); }};
  QPointer<windows::frmMixer> window_;
};

TEST_F(frmMixerTest, ItsControlsHaveTheirTextsAndTips) {
  mixer_.Lines.assign(8, {.Name = "Line"});
  Open();
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Kestrune Record Mixer"));
  EXPECT_EQ(mixer_.Device, "card");
  for (const char* name : {"Frame14", "Image1", "Image2"})
    EXPECT_NE(window_->findChild<QWidget*>(QLatin1String(name)), nullptr) << name;
  for (int index = 0; index < 8; ++index) {
    EXPECT_EQ(Find<QLabel>("Label", index).text(), QStringLiteral("Line"));
    EXPECT_EQ(Find<QLabel>("Label3", index).text(), QStringLiteral("Volume:"));
    EXPECT_EQ(Find<QLabel>("Label2", index).text(), QStringLiteral("Balance:"));
    EXPECT_EQ(slVolume(index).orientation(), Qt::Vertical);
    EXPECT_EQ(slVolume(index).minimum(), 0);
    EXPECT_EQ(slVolume(index).maximum(), 65535);
    EXPECT_EQ(slVolume(index).singleStep(), 5);
    EXPECT_TRUE(slVolume(index).invertedAppearance()) << "the least value, which is loud, is the top";
    EXPECT_EQ(slBalance(index).orientation(), Qt::Horizontal);
    EXPECT_EQ(slBalance(index).minimum(), 0);
    EXPECT_EQ(slBalance(index).maximum(), 100);
    EXPECT_EQ(chSelect(index).text(), index == 0 ? QStringLiteral("Select All") : QStringLiteral("Select"));
    EXPECT_EQ(Find<QPushButton>("cmdAdvanced", index).text(), QStringLiteral("Advanced"));
    EXPECT_FALSE(Find<QPushButton>("cmdAdvanced", index).isVisible());
    EXPECT_FALSE(slVolume(index).accessibleName().isEmpty());
    EXPECT_FALSE(slBalance(index).accessibleName().isEmpty());
  }
}

TEST_F(frmMixerTest, ShowsTheLinesAndNoMore) {
  Open();
  EXPECT_EQ(slVolume(0).value(), 0);
  EXPECT_EQ(slVolume(1).value(), 45535);
  EXPECT_EQ(slBalance(1).value(), 30);
  EXPECT_FALSE(chSelect(0).isChecked());
  EXPECT_TRUE(chSelect(1).isChecked());
  EXPECT_FALSE(slVolume(2).isVisible());
  EXPECT_FALSE(Find<QLabel>("Label2", 2).isVisible());
  const int narrow = window_->width();
  mixer_.Lines.resize(8, {.Name = "Line"});
  mixer_.Changed = true;
  window_->Refresh();
  QTest::qWait(0);
  EXPECT_GT(window_->width(), 3 * narrow);
}

TEST_F(frmMixerTest, ALineWithoutBalanceHidesTheSliderButKeepsItsLabel) {
  mixer_.Lines[0].HasBalance = false;
  Open();
  EXPECT_FALSE(slBalance(0).isVisible());
  EXPECT_TRUE(Find<QLabel>("Label2", 0).isVisible());
  EXPECT_EQ(chSelect(0).y(), chSelect(1).y());
}

TEST_F(frmMixerTest, TheUpKeyIsLouder) {
  Open();
  QTest::keyClick(&slVolume(1), Qt::Key_Up);
  EXPECT_EQ(mixer_.Lines[1].Volume, 20005);
  QTest::keyClick(&slVolume(1), Qt::Key_PageUp);
  EXPECT_EQ(mixer_.Lines[1].Volume, 22053);
  QTest::keyClick(&slVolume(1), Qt::Key_Down);
  EXPECT_EQ(mixer_.Lines[1].Volume, 22048);
}

TEST_F(frmMixerTest, TheWheelUpIsLouder) {
  Open();
  QWheelEvent up(QPointF(5, 5), slVolume(1).mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), Qt::NoButton,
                 Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&slVolume(1), &up);
  EXPECT_EQ(mixer_.Lines[1].Volume, 22048);
}

TEST_F(frmMixerTest, KeysAndWheelMoveACardOfFewSteps) {
  mixer_.VolumeStep = 6000;
  mixer_.Lines[1].Volume = 18000;
  Open();
  QTest::keyClick(&slVolume(1), Qt::Key_Up);
  EXPECT_EQ(mixer_.Lines[1].Volume, 24000);
  EXPECT_EQ(slVolume(1).value(), 65535 - 24000);
  QTest::keyClick(&slVolume(1), Qt::Key_Down);
  EXPECT_EQ(mixer_.Lines[1].Volume, 18000);
  QWheelEvent up(QPointF(5, 5), slVolume(1).mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), Qt::NoButton,
                 Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&slVolume(1), &up);
  EXPECT_EQ(mixer_.Lines[1].Volume, 24000);
  QTest::keyClick(&slBalance(0), Qt::Key_Right);
  EXPECT_EQ(mixer_.Lines[0].Balance, 60);
}

TEST_F(frmMixerTest, ARoundedVolumeMakesTheSliderJump) {
  mixer_.VolumeStep = 1000;
  Open();
  slVolume(0).setValue(65535 - 12345);
  EXPECT_EQ(mixer_.Lines[0].Volume, 12000);
  EXPECT_EQ(slVolume(0).value(), 65535 - 12000);
}

TEST_F(frmMixerTest, ABalanceIsSetAndReadBack) {
  Open();
  slBalance(0).setValue(77);
  EXPECT_EQ(mixer_.Lines[0].Balance, 70);
  EXPECT_EQ(slBalance(0).value(), 70);
}

TEST_F(frmMixerTest, AfterAClickTheBoxesShowTheCardsRealState) {
  mixer_.OneSelected = true;
  Open();
  QTest::mouseClick(&chSelect(0), Qt::LeftButton, {}, QPoint(5, chSelect(0).height() / 2));
  EXPECT_TRUE(chSelect(0).isChecked());
  EXPECT_FALSE(chSelect(1).isChecked());
  QTest::mouseClick(&chSelect(0), Qt::LeftButton, {}, QPoint(5, chSelect(0).height() / 2));
  EXPECT_TRUE(chSelect(0).isChecked());
}

TEST_F(frmMixerTest, WhatIsChangedElsewhereIsShown) {
  Open();
  mixer_.Lines[1].Volume = 65535;
  mixer_.Lines[1].HasVolume = false;
  mixer_.Changed = true;
  window_->Refresh();
  EXPECT_EQ(slVolume(1).value(), 0);
  EXPECT_FALSE(slVolume(1).isVisible());
}

TEST_F(frmMixerTest, ADeviceWithoutLinesSaysSo) {
  mixer_.Lines.clear();
  Open();
  EXPECT_FALSE(slVolume(0).isVisible());
  bool said = false;
  for (const QLabel* label : window_->findChildren<QLabel*>())
    said = said || (label->isVisible() && label->text().contains(QStringLiteral("no controls")));
  EXPECT_TRUE(said);
}

TEST_F(frmMixerTest, ALongNameIsElidedAndFullInTheTip) {
  const std::string name =
      "Monitor of the <b>Very Long</b> & Widely Known Sound Card in the Back of the Machine";
  mixer_.Lines[0].Name = name;
  Open();
  const QLabel& label = Find<QLabel>("Label", 0);
  EXPECT_TRUE(label.text().endsWith(QChar(0x2026)));
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  EXPECT_TRUE(label.toolTip().contains(QStringLiteral("&lt;b&gt;Very Long&lt;/b&gt; &amp; Widely")));
}

TEST_F(frmMixerTest, ItsPlaceIsRememberedAndTheDeviceLeftAlone) {
  store_.Put("Lorimel", "Kestrune", "MixerTop", "750");
  store_.Put("Lorimel", "Kestrune", "MixerLeft", "1500");
  Open();
  EXPECT_EQ(window_->pos(), QPoint(100, 50));
  store_.Calls.clear();
  QTest::keyClick(window_.data(), Qt::Key_Escape);
  EXPECT_THAT(store_.Calls,
              ElementsAre("save Lorimel/Kestrune/MixerTop=750", "save Lorimel/Kestrune/MixerLeft=1500"));
  EXPECT_EQ(mixer_.Device, "(closed)");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(window_.isNull());
}

}  // namespace
}  // namespace kestrune::test
