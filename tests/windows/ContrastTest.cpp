#include <utility>

#include <gtest/gtest.h>

#include "windows/Colours.h"
#include "windows/Contrast.h"

namespace kestrune::test {
namespace {

using windows::Bearing;
using windows::Contrast;
using windows::Dimmed;
using windows::kDimmedContrast;
using windows::kReadableContrast;

TEST(Contrast, IsThatOfTheGuidelines) {
  EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21, 0.01);
  EXPECT_NEAR(Contrast(Qt::white, Qt::white), 1, 0.001);
  // The example of the guidelines' own explanations: the lightest grey that is readable on white.
  EXPECT_NEAR(Contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
  EXPECT_DOUBLE_EQ(Contrast(Qt::red, Qt::blue), Contrast(Qt::blue, Qt::red));
}

TEST(Contrast, DimmedTextStaysReadableAndIsFainter) {
  for (const QColor& ground : {QColor(0xf0, 0xf0, 0xf0), QColor(0x32, 0x32, 0x32), QColor(Qt::black)}) {
    const QColor text = ground.lightness() < 128 ? Qt::white : Qt::black;
    const QColor dimmed = Dimmed(text, ground);
    EXPECT_GE(Contrast(dimmed, ground), kDimmedContrast);
    EXPECT_LT(Contrast(dimmed, ground), kDimmedContrast + 1);
  }
  EXPECT_EQ(Dimmed(QColor(0xaa, 0xaa, 0xaa), Qt::white), QColor(0xaa, 0xaa, 0xaa)) << "faint already";
}

TEST(Contrast, AColourBearsItsText) {
  EXPECT_GE(Contrast(Bearing(QColor(0x30, 0x8c, 0xc6), Qt::white), Qt::white), kReadableContrast);
  EXPECT_GE(Contrast(Bearing(QColor(0x30, 0x8c, 0xc6), Qt::black), Qt::black), kReadableContrast);
  EXPECT_EQ(Bearing(Qt::darkBlue, Qt::white), QColor(Qt::darkBlue)) << "it does already";
}

TEST(Contrast, APaletteIsMadeReadableAndNothingElseIsTouched) {
  QPalette desktop(QColor(239, 239, 239));
  desktop.setColor(QPalette::Highlight, QColor(48, 140, 198));
  desktop.setColor(QPalette::HighlightedText, Qt::white);
  desktop.setColor(QPalette::PlaceholderText, QColor(190, 190, 190));
  const QPalette readable = windows::Readable(desktop);
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    EXPECT_GE(Contrast(readable.color(group, QPalette::Highlight),
                       readable.color(group, QPalette::HighlightedText)),
              kReadableContrast);
    EXPECT_GE(
        Contrast(readable.color(group, QPalette::PlaceholderText), readable.color(group, QPalette::Base)),
        kReadableContrast);
    for (const auto role : {QPalette::Window, QPalette::WindowText, QPalette::Button, QPalette::Base,
                            QPalette::HighlightedText})
      EXPECT_EQ(readable.color(group, role), desktop.color(group, role));
  }
}

TEST(Contrast, AWarningIsReadableOnAWindowAndOnAGroupOfAPage) {
  // As the style makes them of the two palettes.
  for (const auto& [window, group] : {std::pair(QColor(45, 45, 48), QColor(57, 57, 60)),
                                      std::pair(QColor(239, 239, 239), QColor(248, 248, 248))}) {
    const QColor warning = windows::WarningColour(QPalette(window));
    EXPECT_GE(Contrast(warning, window), kReadableContrast);
    EXPECT_GE(Contrast(warning, group), kReadableContrast);
  }
}

}  // namespace
}  // namespace kestrune::test
