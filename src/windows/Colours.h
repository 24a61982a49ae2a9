#pragma once

#include <QColor>
#include <QPalette>
#include <cmath>

namespace kestrune::windows {

/// A colour between two, 0 to 1 of the way from the first one to the second.
[[nodiscard]] inline QColor Mixed(const QColor& a, const QColor& b, double partOfB) {
  const auto mix = [partOfB](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * partOfB)); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

/// A red that is legible on the palette's background, dark or light, and on that of a group on a page.
[[nodiscard]] inline QColor WarningColour(const QPalette& palette) {
  const bool dark = palette.color(QPalette::Window).lightness() < 128;
  return QColor::fromHsl(2, 200, dark ? 188 : 100);
}

}  // namespace kestrune::windows
