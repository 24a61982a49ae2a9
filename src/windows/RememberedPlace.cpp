#include "windows/RememberedPlace.h"

#include <QRect>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <string>

#include "base/Ignored.h"
#include "windows/Placement.h"

namespace kestrune::windows {
namespace {

constexpr float kTwipsPerPixel = 15;

std::string Key(std::string_view name, std::string_view side) {
  return std::string(name).append(side);
}

int Pixels(float twips, int least) {
  constexpr float kMost = 16384;  // a settings file may hold anything
  return std::max(least, static_cast<int>(std::lround(std::clamp(twips / kTwipsPerPixel, 0.0F, kMost))));
}

/// The place of the frame and the size within it that the window has, or would have if it were not maximised.
QRect NormalFrame(const QWidget& window) {
  if (InNormalState(window)) return {window.pos(), window.size()};
  return window.normalGeometry().translated(window.pos() - window.geometry().topLeft());
}

}  // namespace

void RestorePlace(QWidget& window, const config::SettingsSection& section, std::string_view name,
                  Remembered what) {
  if (what == Remembered::PlaceAndSize) {
    const float height =
        section.Single(Key(name, "Height"), static_cast<float>(window.height()) * kTwipsPerPixel);
    const float width =
        section.Single(Key(name, "Width"), static_cast<float>(window.width()) * kTwipsPerPixel);
    window.resize(Pixels(width, window.minimumWidth()), Pixels(height, window.minimumHeight()));
  }
  // A window that has never been closed is placed by the desktop.
  if (section.Text(Key(name, "Top"), {}).empty() && section.Text(Key(name, "Left"), {}).empty()) return;
  const Place here = PlaceOf(window);
  MoveTo(window, {.Top = section.Single(Key(name, "Top"), here.Top),
                  .Left = section.Single(Key(name, "Left"), here.Left)});
}

void SavePlace(const QWidget& window, const config::SettingsSection& section, std::string_view name,
               Remembered what) {
  if (window.isMinimized()) return;
  const QRect normal = NormalFrame(window);
  if (!normal.isValid()) return;
  const Place here = PlaceOf(normal.topLeft());
  base::Ignored(section.SaveSingle(Key(name, "Top"), here.Top));
  base::Ignored(section.SaveSingle(Key(name, "Left"), here.Left));
  if (what != Remembered::PlaceAndSize) return;
  base::Ignored(
      section.SaveSingle(Key(name, "Height"), static_cast<float>(normal.height()) * kTwipsPerPixel));
  base::Ignored(section.SaveSingle(Key(name, "Width"), static_cast<float>(normal.width()) * kTwipsPerPixel));
}

}  // namespace kestrune::windows
