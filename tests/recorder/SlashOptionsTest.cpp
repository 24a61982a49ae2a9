#include <gtest/gtest.h>

#include "recorder/SlashOptions.h"

namespace kestrune::recorder {
namespace {

TEST(SlashOptions, TheUnitIsTheFirstCharacterBehindMulti) {
  EXPECT_EQ(MultiUnitOf("/multi 2"), "2");
  EXPECT_EQ(MultiUnitOf("/multi=2"), "2");
  EXPECT_EQ(MultiUnitOf("/multi    7   "), "7");
  EXPECT_EQ(MultiUnitOf("/debug /multi 3 /port 4"), "3");
}

TEST(SlashOptions, MultiInCapitalsWorksTheSame) {
  EXPECT_EQ(MultiUnitOf("/MULTI 2"), "2");
  EXPECT_EQ(MultiUnitOf("/mUlTi 2"), "2");
}

TEST(SlashOptions, MultiTwelveIsUnitOne) {
  EXPECT_EQ(MultiUnitOf("/multi 12"), "1");
}

TEST(SlashOptions, MultiZeroIsUnitZero) {
  EXPECT_EQ(MultiUnitOf("/multi 0"), "0");
}

TEST(SlashOptions, MultiWithALetterKeepsTheLetter) {
  EXPECT_EQ(MultiUnitOf("/multi x"), "x");
  EXPECT_EQ(MultiUnitOf("/multi X"), "X");
}

TEST(SlashOptions, MultiAloneIsASingleUnit) {
  EXPECT_EQ(MultiUnitOf("/multi"), "");
  EXPECT_EQ(MultiUnitOf("/multi "), "");
  EXPECT_EQ(MultiUnitOf("/multi      "), "");
}

TEST(SlashOptions, WithoutMultiThereIsNoUnit) {
  EXPECT_EQ(MultiUnitOf(""), "");
  EXPECT_EQ(MultiUnitOf("multi 2"), "");
  EXPECT_EQ(MultiUnitOf("/mult 2"), "");
}

TEST(SlashOptions, TheCharacterRightBehindMultiIsSteppedOver) {
  EXPECT_EQ(MultiUnitOf("/multi2"), "");
  EXPECT_EQ(MultiUnitOf("/multi23"), "3");
}

TEST(SlashOptions, MultiTakesTheNextOptionForItsUnit) {
  EXPECT_EQ(MultiUnitOf("/multi /port 3"), "/");
}

TEST(SlashOptions, TheFirstMultiCounts) {
  EXPECT_EQ(MultiUnitOf("/multi 1 /multi 2"), "1");
}

TEST(SlashOptions, AUnitOfSeveralBytesStaysWhole) {
  EXPECT_EQ(MultiUnitOf("/multi \xC3\xA9t"), "\xC3\xA9");
}

TEST(SlashOptions, DebugStandsAnywhereInAnyCase) {
  EXPECT_TRUE(DebugModeOf("/debug"));
  EXPECT_TRUE(DebugModeOf("/multi 2 /DeBuG /port 3"));
  EXPECT_TRUE(DebugModeOf("x/debugging"));
  EXPECT_FALSE(DebugModeOf(""));
  EXPECT_FALSE(DebugModeOf("debug"));
  EXPECT_FALSE(DebugModeOf("/debu"));
}

struct PortCase {
  const char* Text;
  bool Present;
  int Value;
};

TEST(SlashOptions, ForcedPortTable) {
  constexpr PortCase kCases[] = {
      {"", false, 0},
      {"port 3", false, 0},
      {"/port 3", true, 3},
      {"/PORT 3", true, 3},
      {"/port=3", true, 3},
      {"/port   16   ", true, 16},
      {"/port 1", true, 1},
      {"/port 255", true, 255},
      {"/port 3 /debug", true, 3},
      {"/port 3 /port 4", true, 3},
      {"/multi 2 /port 12", true, 12},
      // Refused, yet present.
      {"/port 300", true, 0},
      {"/port 256", true, 0},
      {"/port 0", true, 0},
      {"/port -1", true, 0},
      {"/port", true, 0},
      {"/port ", true, 0},
      {"/port x", true, 0},
      {"/port /debug", true, 0},
      // The character right after the option is skipped.
      {"/port3", true, 0},
      {"/port34", true, 4},
      // Three characters, as the text's leading number.
      {"/port 1000", true, 100},
      {"/port 2550", true, 255},
      {"/port 12x", true, 12},
      {"/port 1 2", true, 12},
      {"/port 1e2", true, 100},
      // A count takes the nearest whole number, halves to the even one.
      {"/port 2.5", true, 2},
      {"/port 3.5", true, 4},
      {"/port .5", true, 0},
      {"/port .6", true, 1},
  };
  for (const PortCase& one : kCases) {
    const ForcedPort forced = ForcedPortOf(one.Text);
    EXPECT_EQ(forced.Present, one.Present) << one.Text;
    EXPECT_EQ(forced.Value, one.Value) << one.Text;
  }
}

}  // namespace
}  // namespace kestrune::recorder
