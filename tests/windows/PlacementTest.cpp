#include <QGuiApplication>
#include <QLabel>
#include <QRect>
#include <QScreen>
#include <QWidget>
#include <limits>

#include <gtest/gtest.h>

#include "windows/Placement.h"

namespace kestrune::test {
namespace {

using windows::MoveTo;
using windows::Place;
using windows::PlaceOf;

TEST(Placement, FifteenTwipsAreAPixel) {
  QWidget window;
  MoveTo(window, {.Top = 1500, .Left = 3000});
  EXPECT_EQ(window.pos(), QPoint(200, 100));
  EXPECT_EQ(PlaceOf(window).Top, 1500);
  EXPECT_EQ(PlaceOf(window).Left, 3000);
}

TEST(Placement, AWindowHasItsSizeBeforeItsPlace) {
  QLabel window(QStringLiteral("Its text gives it a size."));
  MoveTo(window, {.Top = 1500, .Left = 3000});
  EXPECT_TRUE(window.testAttribute(Qt::WA_Resized)) << "else its frame is not counted in";
}

TEST(Placement, AWindowOfALostScreenStaysWithinReach) {
  QWidget window;
  const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
  for (const Place far :
       {Place{-90000, -90000}, Place{9e9F, 9e9F},
        Place{std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}}) {
    MoveTo(window, far);
    EXPECT_GE(window.y(), room.top());
    EXPECT_LT(window.y(), room.bottom());
    EXPECT_LT(window.x(), room.right());
    EXPECT_GT(window.x() + window.width(), room.left());
  }
}

}  // namespace
}  // namespace kestrune::test
