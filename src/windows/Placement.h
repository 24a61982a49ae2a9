#pragma once

class QWidget;

/// Where windows stand, in the unit of the settings: 15 twips to a logical pixel.
namespace kestrune::windows {

struct Place {
  float Top = 0;   ///< twips
  float Left = 0;  ///< twips
};

/// Moves a window there; as far into the nearest screen as is needed for its title bar to be within reach.
void MoveTo(QWidget& window, Place place);
[[nodiscard]] Place PlaceOf(const QWidget& window);
/// A window manager that has found a place for a window finds another each time that it is shown anew, unless
/// the window asks for the one it has. Does nothing before the first show.
void KeepPlace(const QWidget& window);
/// Neither minimised nor maximised: the only state in which a place is worth remembering.
[[nodiscard]] bool InNormalState(const QWidget& window);

}  // namespace kestrune::windows
