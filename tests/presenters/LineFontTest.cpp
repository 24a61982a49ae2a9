#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/LineFont.h"

namespace kestrune::test {
namespace {

using presenters::FitFont;
using presenters::LineSize;

// A text that is so many twips wide and 25 twips high a point.
auto Text(float widthOfAPoint) {
  return [widthOfAPoint](float points) {
    return LineSize{.Width = widthOfAPoint * points, .Height = 25 * points};
  };
}

constexpr float kTall = 100000;

TEST(LineFont, AVeryLongSongFallsTo8PointsAndNoFurther) {
  EXPECT_EQ(FitFont(40, 9720, kTall, Text(5000)), 8);
  EXPECT_EQ(FitFont(8.25F, 9720, kTall, Text(5000)), 8);
  EXPECT_EQ(FitFont(8, 9720, kTall, Text(5000)), 8);
}

TEST(LineFont, AnEmptyLineGrowsUntilTheHeightLimit) {
  EXPECT_EQ(FitFont(8, 9720, 1000, Text(0)), 40);
  EXPECT_EQ(FitFont(8, 9720, 990, Text(0)), 39);
}

TEST(LineFont, AnEmptyLineGrowsTo72PointsAndNoFurther) {
  EXPECT_EQ(FitFont(8, 9720, kTall, Text(0)), 72);
  EXPECT_EQ(FitFont(8.25F, 9720, kTall, Text(0)), 72);
  EXPECT_EQ(FitFont(72, 9720, kTall, Text(0)), 72);
}

TEST(LineFont, ALineBetweenTheTwoLimitsKeepsItsFont) {
  // 9320 is the limit of a narrow line; it would grow if it were narrower.
  EXPECT_EQ(FitFont(20, 9720, kTall, Text(466)), 20);
  EXPECT_EQ(FitFont(20, 9720, kTall, Text(480)), 20);
  EXPECT_EQ(FitFont(20, 9720, kTall, Text(460)), 21);
  EXPECT_EQ(FitFont(20, 9720, kTall, Text(482)), 19);
}

TEST(LineFont, AWideLineShrinksUntilItLeavesTheEdgeFree) {
  EXPECT_EQ(FitFont(60, 9720, kTall, Text(240)), 40);  // 9600 of 9620
}

TEST(LineFont, ANarrowLineGrowsOverTheMarginButNotOverTheEdge) {
  EXPECT_EQ(FitFont(10, 9720, kTall, Text(179)), 54);  // 9666, between margin and edge
  EXPECT_EQ(FitFont(10, 9720, kTall, Text(380)), 25);  // 9500; one more would be 9880
}

TEST(LineFont, ALineHigherThanTheLimitShrinksWhateverItsWidth) {
  EXPECT_EQ(FitFont(60, 9720, 1000, Text(10)), 40);
  EXPECT_EQ(FitFont(60, 9720, 1000, Text(160)), 40);
  EXPECT_EQ(FitFont(60, 9720, 100, Text(10)), 8);
}

TEST(LineFont, TheResultStaysFrom8To72AndFitsWhereverAnythingFits) {
  for (float points = 8; points <= 72; points += 6.4F) {
    for (float width = 0; width <= 3000; width += 37) {
      for (const float height : {0.0F, 300.0F, 800.0F, kTall}) {
        const float fitted = FitFont(points, 9720, height, Text(width));
        ASSERT_GE(fitted, 8);
        ASSERT_LE(fitted, 72);
        if (fitted == 8) continue;
        ASSERT_LE(25 * fitted, height);
        ASSERT_LE(width * fitted, 9720);
        // Asked again, it stays.
        ASSERT_NEAR(FitFont(fitted, 9720, height, Text(width)), fitted, 1);
      }
    }
  }
}

}  // namespace
}  // namespace kestrune::test
