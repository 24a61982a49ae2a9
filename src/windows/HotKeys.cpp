#include "windows/HotKeys.h"

#include <QKeyEvent>
#include <algorithm>
#include <string_view>

#include "presenters/WindowTable.h"

namespace kestrune::windows {
namespace {

/// Whether an entry of the main window's menu has this letter.
bool IsMenuKey(char letter) {
  constexpr std::string_view kCommands = "DGKQRSUY";
  return kCommands.find(letter) != std::string_view::npos ||
         std::ranges::find(presenters::WindowTable(), letter, &presenters::WindowRow::Key) !=
             presenters::WindowTable().end();
}

}  // namespace

int HotKeyOf(const QKeyEvent& event) {
  constexpr int kF1 = 112;
  // A key of the number block counts as held with one more modifier.
  if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier) return 0;
  const int key = event.key();
  if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return kF1 + key - Qt::Key_F1;
  return key >= Qt::Key_A && key <= Qt::Key_Z && IsMenuKey(static_cast<char>(key)) ? key : 0;
}

}  // namespace kestrune::windows
