#include "windows/Placement.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>

namespace kestrune::windows {
namespace {

constexpr float kTwipsPerPixel = 15;
/// This much of a window's upper edge stays on the screen, so that the user can grab it.
constexpr int kReach = 60;

int Pixels(float twips) {
  constexpr float kFarOut = 1e6F;  // a settings file may hold anything
  return static_cast<int>(
      std::lround(std::clamp(std::isnan(twips) ? 0 : twips / kTwipsPerPixel, -kFarOut, kFarOut)));
}

}  // namespace

void MoveTo(QWidget& window, Place place) {
  // A window that gets its size only when it is shown is placed without its frame, and would move up by the
  // height of its title bar at each start.
  if (!window.testAttribute(Qt::WA_Resized)) window.adjustSize();
  QPoint wanted(Pixels(place.Left), Pixels(place.Top));
  const QScreen* screen = QGuiApplication::screenAt(wanted);
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  if (screen != nullptr) {
    const QRect room = screen->availableGeometry();
    wanted.setX(
        std::clamp(wanted.x(), room.left() - std::max(0, window.width() - kReach), room.right() - kReach));
    wanted.setY(std::clamp(wanted.y(), room.top(), room.bottom() - kReach));
  }
  window.move(wanted);
}

Place PlaceOf(const QWidget& window) {
  return PlaceOf(window.pos());
}

Place PlaceOf(QPoint corner) {
  return {.Top = static_cast<float>(corner.y()) * kTwipsPerPixel,
          .Left = static_cast<float>(corner.x()) * kTwipsPerPixel};
}

void KeepPlace(const QWidget& window) {
  if (QWindow* handle = window.windowHandle()) handle->setPosition(handle->position());
}

bool InNormalState(const QWidget& window) {
  return !window.isMinimized() && !window.isMaximized() && !window.isFullScreen();
}

}  // namespace kestrune::windows
