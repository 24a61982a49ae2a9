#include "windows/Contrast.h"

#include <algorithm>
#include <cmath>

#include "windows/Colours.h"

namespace kestrune::windows {
namespace {

constexpr int kSteps = 50;
// Of a selected row, whose letters are thin too.
constexpr double kSelectedContrast = 5.5;

double Linear(double part) {
  return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
  return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) + 0.0722 * Linear(colour.blueF());
}

}  // namespace

double Contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor Dimmed(const QColor& colour, const QColor& ground) {
  for (int step = kSteps; step > 0; --step) {
    const QColor mixed = Mixed(colour, ground, static_cast<double>(step) / kSteps);
    if (Contrast(mixed, ground) >= kDimmedContrast) return mixed;
  }
  return colour;
}

QColor Bearing(const QColor& colour, const QColor& text) {
  const QColor end = Luminance(text) > 0.18 ? QColor(Qt::black) : QColor(Qt::white);
  QColor mixed = colour;
  for (int step = 1; step <= kSteps && Contrast(mixed, text) < kSelectedContrast; ++step)
    mixed = Mixed(colour, end, static_cast<double>(step) / kSteps);
  return mixed;
}

QPalette Readable(QPalette palette) {
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    palette.setColor(
        group, QPalette::Highlight,
        Bearing(palette.color(group, QPalette::Highlight), palette.color(group, QPalette::HighlightedText)));
    palette.setColor(group, QPalette::PlaceholderText,
                     Dimmed(palette.color(group, QPalette::Text), palette.color(group, QPalette::Base)));
  }
  return palette;
}

}  // namespace kestrune::windows
