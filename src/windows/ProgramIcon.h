#pragma once

#include <QIcon>

namespace kestrune::windows {

/// The program's icon: the built-in pictures, else the desktop's icon of that name, else one drawn on the
/// spot; never empty, as a tray shows nothing then.
[[nodiscard]] QIcon ProgramIcon();

}  // namespace kestrune::windows
