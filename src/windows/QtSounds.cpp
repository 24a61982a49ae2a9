#include "windows/QtSounds.h"

#include <QApplication>

namespace kestrune::windows {

void QtSounds::Play(std::string_view /*name*/) {
  QApplication::beep();
}

}  // namespace kestrune::windows
