#include "presenters/LineFont.h"

#include <algorithm>

namespace kestrune::presenters {

namespace {

// Twips that a line leaves free beside it, and within which it counts as filling the width.
constexpr float kFree = 100;
constexpr float kNearlyFull = 400;
// Half of what is free stands at the left.
constexpr float kEdge = 50;

float Smaller(float points) {
  return std::max(kSmallestFont, points - 1);
}

float Bigger(float points) {
  return std::min(kLargestFont, points + 1);
}

}  // namespace

float FitFont(float points, float windowWidth, float height,
              const std::function<LineSize(float points)>& measure) {
  LineSize line = measure(points);
  const auto take = [&](float size) {
    points = size;
    line = measure(size);
  };
  if (line.Width > windowWidth - kNearlyFull) {
    while (line.Width > windowWidth - kFree && points > kSmallestFont) take(Smaller(points));
  } else if (line.Width < windowWidth - kNearlyFull) {
    while (line.Width < windowWidth - kFree && line.Height < height && points < kLargestFont) {
      take(Bigger(points));
    }
    // The last step may have led over the window's edge.
    if (line.Width > windowWidth - kEdge) take(Smaller(points));
  }
  while (line.Height > height && points > kSmallestFont) take(Smaller(points));
  return points;
}

}  // namespace kestrune::presenters
