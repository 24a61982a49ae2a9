#pragma once

#include <QColor>

namespace kestrune::windows {

/// What text needs to be readable for most people, from the Web Content Accessibility Guidelines 2.1, level AA.
inline constexpr double kReadableContrast = 4.5;

/// The contrast of two opaque colours as those guidelines define it: from 1 to 21.
[[nodiscard]] double Contrast(const QColor& one, const QColor& other);

/// `colour` mixed with as much of `ground` as leaves it readable on that; `colour` itself if even that is not.
[[nodiscard]] QColor Dimmed(const QColor& colour, const QColor& ground);

/// `colour`, made darker or lighter until `text` is readable on it.
[[nodiscard]] QColor Bearing(const QColor& colour, const QColor& text);

}  // namespace kestrune::windows
