#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include "windows/Binding.h"

namespace kestrune::test {
namespace {

TEST(Binding, ShowingARecordLooksLikeNothingThatTheUserDid) {
  QCheckBox box;
  QComboBox list;
  list.addItems({"one", "two"});
  QLineEdit line;
  const QSignalSpy toggled(&box, &QCheckBox::toggled);
  const QSignalSpy chosen(&list, &QComboBox::currentIndexChanged);
  const QSignalSpy written(&line, &QLineEdit::textChanged);
  windows::ShowChecked(box, true);
  windows::ShowIndex(list, 1);
  windows::ShowText(line, "Föhn");
  EXPECT_TRUE(box.isChecked());
  EXPECT_EQ(list.currentIndex(), 1);
  EXPECT_EQ(line.text(), QStringLiteral("Föhn"));
  EXPECT_EQ(toggled.count() + chosen.count() + written.count(), 0);
}

TEST(Binding, AControlKeepsItsOwnStateInADisabledWindow) {
  QWidget window;
  QLabel label(&window);
  window.setEnabled(false);
  windows::ShowEnabled(label, true);
  window.setEnabled(true);
  EXPECT_TRUE(label.isEnabled());
  windows::ShowEnabled(label, false);
  EXPECT_FALSE(label.isEnabled());
}

TEST(Binding, HidesAndShowsWithinAWindowThatIsNotShownItself) {
  QWidget window;
  QLabel label(&window);
  windows::ShowVisible(label, false);
  EXPECT_TRUE(label.isHidden());
  windows::ShowVisible(label, true);
  EXPECT_FALSE(label.isHidden());
}

TEST(Binding, NamesAControlForTestsAndReaders) {
  QLabel label;
  windows::Name(label, "lblClock", "How long it runs", "Length of the recording");
  EXPECT_EQ(label.objectName(), QStringLiteral("lblClock"));
  EXPECT_EQ(label.toolTip(), QStringLiteral("How long it runs"));
  EXPECT_EQ(label.accessibleName(), QStringLiteral("Length of the recording"));
}

}  // namespace
}  // namespace kestrune::test
