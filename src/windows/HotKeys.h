#pragma once

class QKeyEvent;

namespace kestrune::windows {

/// The keys of the main window that other windows pass on to it: with Control alone held, F1 to F12 and the
/// letters B D E G H K L Q R S T U W Y. Returns 112 to 123 for F1 to F12, the capital for a letter, 0 for any
/// other key.
[[nodiscard]] int HotKeyOf(const QKeyEvent& event);

}  // namespace kestrune::windows
