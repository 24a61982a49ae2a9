#pragma once

#include <QIcon>

namespace kestrune::windows {

/// The program's icon: the built-in pictures, else the desktop's icon of that name, else one that is drawn
/// here; never empty, since a tray would show nothing.
[[nodiscard]] QIcon ProgramIcon();

/// The same with the mark of a recording over it.
[[nodiscard]] QIcon RecordingIcon();

}  // namespace kestrune::windows
