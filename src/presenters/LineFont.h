#pragma once

#include <functional>

namespace kestrune::presenters {

/// Width and height of a line of text, in twips.
struct LineSize {
  float Width = 0;
  float Height = 0;
};

inline constexpr float kSmallestFont = 8;  ///< points
inline constexpr float kLargestFont = 72;  ///< points

/// The font size in points, from 8 to 72, for a big line of text: the largest whose line is lower than
/// `height` and fits `windowWidth`, both in twips. It is found in steps of a point from the present size, which
/// stays as it is for a line that fills the width already. `measure` gives the line's size in a font of so many
/// points, and must grow with them.
[[nodiscard]] float FitFont(float points, float windowWidth, float height,
                            const std::function<LineSize(float points)>& measure);

}  // namespace kestrune::presenters
