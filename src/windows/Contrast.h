#pragma once

#include <QColor>
#include <QPalette>

namespace kestrune::windows {

/// What text needs to be readable for most people, from the Web Content Accessibility Guidelines 2.1, level AA.
inline constexpr double kReadableContrast = 4.5;

/// The contrast of two opaque colours as those guidelines define it: from 1 to 21.
[[nodiscard]] double Contrast(const QColor& one, const QColor& other);

/// What the colour of thin letters needs for that, since their edges are mixed with the ground, and the ground of a button
/// is drawn with a gradient.
inline constexpr double kDimmedContrast = 6.5;

/// `colour` mixed with as much of `ground` as leaves it kDimmedContrast; `colour` itself if it has less.
[[nodiscard]] QColor Dimmed(const QColor& colour, const QColor& ground);

/// `colour`, made darker or lighter until thin letters of `text` are readable on it.
[[nodiscard]] QColor Bearing(const QColor& colour, const QColor& text);

/// A desktop's palette, with the colours of selected rows and of hints within fields as readable as the others.
[[nodiscard]] QPalette Readable(QPalette palette);

}  // namespace kestrune::windows
