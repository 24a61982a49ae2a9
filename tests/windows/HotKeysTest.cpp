#include <QKeyEvent>
#include <string>

#include <gtest/gtest.h>

#include "windows/HotKeys.h"

namespace kestrune::test {
namespace {

int HotKey(int key, Qt::KeyboardModifiers held) {
  return windows::HotKeyOf(QKeyEvent(QEvent::KeyPress, key, held));
}

TEST(HotKeys, ControlWithF1ToF12) {
  for (int i = 0; i < 12; ++i) EXPECT_EQ(HotKey(Qt::Key_F1 + i, Qt::ControlModifier), 112 + i);
  EXPECT_EQ(HotKey(Qt::Key_F13, Qt::ControlModifier), 0);
}

TEST(HotKeys, ControlWithTheLettersOfTheMainWindowAndNoOther) {
  const std::string letters = "BDEGHKLQRSTUWY";
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const bool passed = letters.find(letter) != std::string::npos;
    EXPECT_EQ(HotKey(Qt::Key_A + (letter - 'A'), Qt::ControlModifier), passed ? letter : 0) << letter;
  }
}

TEST(HotKeys, OnlyWithControlAlone) {
  EXPECT_EQ(HotKey(Qt::Key_F1, Qt::NoModifier), 0);
  EXPECT_EQ(HotKey(Qt::Key_F1, Qt::ControlModifier | Qt::ShiftModifier), 0);
  EXPECT_EQ(HotKey(Qt::Key_F1, Qt::ControlModifier | Qt::AltModifier), 0);
  EXPECT_EQ(HotKey(Qt::Key_B, Qt::NoModifier), 0);
}

}  // namespace
}  // namespace kestrune::test
