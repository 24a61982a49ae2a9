#pragma once

#include <QPoint>

class QWidget;

/// Where windows are on the screen, in the unit of the settings: 15 twips to a logical pixel.
namespace kestrune::windows {

struct Place {
  float Top = 0;   ///< twips
  float Left = 0;  ///< twips
};

/// Moves a window there, or as far into the nearest screen as its title bar needs to stay within reach.
void MoveTo(QWidget& window, Place place);
[[nodiscard]] Place PlaceOf(const QWidget& window);
[[nodiscard]] Place PlaceOf(QPoint corner);
/// Makes the window ask for the place that it has: a window manager that placed a window by itself would
/// otherwise choose another place each time the window is shown again. Does nothing before the first show.
void KeepPlace(const QWidget& window);
/// Neither minimised nor maximised: the state whose place is worth remembering.
[[nodiscard]] bool InNormalState(const QWidget& window);

}  // namespace kestrune::windows
