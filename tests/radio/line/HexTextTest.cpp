#include <gtest/gtest.h>

#include "radio/line/HexText.h"

namespace kestrune::test {
namespace {

using radio::pcrBinaryToHex;
using radio::pcrHexToBinary;

TEST(HexText, TwoDigitsAreAByte) {
  EXPECT_EQ(pcrHexToBinary("5A A5 00 FF"), std::string("\x5A\xA5\x00\xFF", 4));
}

TEST(HexText, BlanksAreSkippedWhereverTheyStand) {
  EXPECT_EQ(pcrHexToBinary("  5 AA 5"), std::string("\x5A\xA5"));
}

TEST(HexText, LowerCaseDigitsCountToo) {
  EXPECT_EQ(pcrHexToBinary("5a a5 eD"), std::string("\x5A\xA5\xED"));
}

TEST(HexText, ACharacterThatIsNoHexDigitCountsAsZero) {
  EXPECT_EQ(pcrHexToBinary("G5 5G ZZ -1"), std::string("\x05\x50\x00\x01", 4));
}

TEST(HexText, AFinalSingleDigitIsAHighHalf) {
  EXPECT_EQ(pcrHexToBinary("01 7"), std::string("\x01\x70"));
  EXPECT_EQ(pcrHexToBinary("F"), std::string("\xF0"));
}

TEST(HexText, AnEmptyTextIsNoBytes) {
  EXPECT_EQ(pcrHexToBinary(""), "");
  EXPECT_EQ(pcrHexToBinary("   "), "");
  EXPECT_EQ(pcrBinaryToHex(""), "");
}

TEST(HexText, BytesBecomeUpperCaseDigitsWithoutBlanks) {
  EXPECT_EQ(pcrBinaryToHex(std::string("\x5A\xA5\x00\x0F\xED", 5)), "5AA5000FED");
}

TEST(HexText, EveryByteSurvivesTheRoundTrip) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(pcrHexToBinary(pcrBinaryToHex(all)), all);
}

}  // namespace
}  // namespace kestrune::test
