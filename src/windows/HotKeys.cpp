#include "windows/HotKeys.h"

#include <QKeyEvent>
#include <string_view>

namespace kestrune::windows {

int HotKeyOf(const QKeyEvent& event) {
  constexpr int kF1 = 112;
  constexpr std::string_view kLetters = "BDGHKLQRSTUWY";
  // A key of the number block is told as one more modifier.
  if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier) return 0;
  const int key = event.key();
  if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return kF1 + key - Qt::Key_F1;
  const bool letter = key >= Qt::Key_A && key <= Qt::Key_Z;
  return letter && kLetters.find(static_cast<char>(key)) != std::string_view::npos ? key : 0;
}

}  // namespace kestrune::windows
