#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/RadioText.h"
#include "base/Text.h"

namespace kestrune::base {
namespace {

using Pieces = std::vector<std::string>;

TEST(Trim, TakesBlanksAloneAndOnlyAtTheEnds) {
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(Trim(""), "");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(Trim("\t a\n"), "\t a\n");
  EXPECT_EQ(Trim("\xC2\xA0x"), "\xC2\xA0x");
}

TEST(ToLower, FoldsTheLettersOfTheRadiosSet) {
  EXPECT_EQ(ToLower("ABC xyz 123"), "abc xyz 123");
  EXPECT_EQ(ToLower("ÀÉÖØÞ"), "àéöøþ");
  EXPECT_EQ(ToLower("ŠŒŽŸ"), "šœžÿ");
  EXPECT_EQ(ToLower("×÷ßµƒ€"), "×÷ßµƒ€");
}

TEST(ToLower, AgreesWithTheRadiosOwnFoldingForEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string radio(1, static_cast<char>(byte));
    EXPECT_EQ(ToLower(RadioTextToUtf8(radio)), RadioTextToUtf8(RadioTextLower(radio))) << byte;
  }
}

TEST(ToLower, LeavesOtherAlphabetsAndStrayBytes) {
  EXPECT_EQ(ToLower("ĀŁ Ω Я 日本"), "ĀŁ Ω Я 日本");
  EXPECT_EQ(ToLower("\xC3"), "\xC3");
  EXPECT_EQ(ToLower("\xC3"
                    "A"),
            "\xC3"
            "a");
  EXPECT_EQ(ToLower("\x89\xFF\x80"), "\x89\xFF\x80");
  EXPECT_EQ(ToLower(std::string_view("A\0B", 3)), std::string_view("a\0b", 3));
}

TEST(EqualsNoCase, ComparesWholeTexts) {
  EXPECT_TRUE(EqualsNoCase("", ""));
  EXPECT_TRUE(EqualsNoCase("ScheduleMP3BitRate", "Schedulemp3bitrate"));
  EXPECT_TRUE(EqualsNoCase("MÖTLEY ŸŠ", "mötley ÿš"));
  EXPECT_FALSE(EqualsNoCase("a", "ab"));
  EXPECT_FALSE(EqualsNoCase("é", "e"));
  EXPECT_FALSE(EqualsNoCase("ss", "ß"));
}

TEST(FindNoCase, GivesTheBytePositionInTheTextItself) {
  EXPECT_EQ(FindNoCase("Hello World", "WORLD"), 6U);
  EXPECT_EQ(FindNoCase("ŸŸ abc", "ABC"), 5U);
  EXPECT_EQ(FindNoCase("BEYONCÉ", "é"), 6U);
  EXPECT_EQ(FindNoCase("aaa", "A"), 0U);
  EXPECT_EQ(FindNoCase("abc", "abcd"), std::string_view::npos);
}

TEST(FindNoCase, AnEmptyNeedleIsFoundInATextThatIsNotEmpty) {
  EXPECT_EQ(FindNoCase("x", ""), 0U);
  EXPECT_EQ(FindNoCase("", ""), std::string_view::npos);
  EXPECT_EQ(FindNoCase("", "x"), std::string_view::npos);
  EXPECT_TRUE(ContainsNoCase("x", ""));
  EXPECT_FALSE(ContainsNoCase("", ""));
}

TEST(ReplaceAll, GoesOnBehindWhatItPutIn) {
  EXPECT_EQ(ReplaceAll("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
  EXPECT_EQ(ReplaceAll("", "a", "x"), "");
  EXPECT_EQ(ReplaceAll("a.b.c", ".", ""), "abc");
  EXPECT_EQ(ReplaceAll("A", "a", "x"), "A");
}

TEST(ReplaceAllNoCase, KeepsTheCaseOfTheRest) {
  EXPECT_EQ(ReplaceAllNoCase("%G\\%g Rock", "%g", "X"), "X\\X Rock");
  EXPECT_EQ(ReplaceAllNoCase("ÉcouteÉ", "é", "E"), "EcouteE");
  EXPECT_EQ(ReplaceAllNoCase("ABC", "", "x"), "ABC");
  EXPECT_EQ(ReplaceAllNoCase("aAa", "A", "Aa"), "AaAaAa");
}

TEST(DoubleAmpersands, DoublesEachOne) {
  EXPECT_EQ(DoubleAmpersands("Simon & Garfunkel"), "Simon && Garfunkel");
  EXPECT_EQ(DoubleAmpersands("&&"), "&&&&");
  EXPECT_EQ(DoubleAmpersands(""), "");
}

TEST(Split, GivesThePiecesBetween) {
  EXPECT_EQ(Split("", ','), Pieces({""}));
  EXPECT_EQ(Split("a", ','), Pieces({"a"}));
  EXPECT_EQ(Split("a,b", ','), Pieces({"a", "b"}));
  EXPECT_EQ(Split(",a,,", ','), Pieces({"", "a", "", ""}));
}

TEST(Lines, TakesBothKindsOfLineEnd) {
  EXPECT_EQ(Lines(""), Pieces());
  EXPECT_EQ(Lines("\n"), Pieces({""}));
  EXPECT_EQ(Lines("a\nb\r\nc"), Pieces({"a", "b", "c"}));
  EXPECT_EQ(Lines("a\n"), Pieces({"a"}));
  EXPECT_EQ(Lines("a\n\n"), Pieces({"a", ""}));
  EXPECT_EQ(Lines("\r\n\r\n"), Pieces({"", ""}));
  EXPECT_EQ(Lines("a\rb\r"), Pieces({"a\rb\r"}));
  EXPECT_EQ(Lines("a\r\r\n"), Pieces({"a\r"}));
}

TEST(TruncateUtf8, NeverSplitsACharacter) {
  EXPECT_EQ(TruncateUtf8("abc", 5), "abc");
  EXPECT_EQ(TruncateUtf8("abc", 3), "abc");
  EXPECT_EQ(TruncateUtf8("abc", 2), "ab");
  EXPECT_EQ(TruncateUtf8("abc", 0), "");
  EXPECT_EQ(TruncateUtf8("aé", 2), "a");
  EXPECT_EQ(TruncateUtf8("aé", 3), "aé");
  EXPECT_EQ(TruncateUtf8("éé", 2), "é");
  EXPECT_EQ(TruncateUtf8("€", 2), "");
  EXPECT_EQ(TruncateUtf8("a\xF0\x9F\x8E\xB5", 4), "a");
  EXPECT_EQ(TruncateUtf8("a\xF0\x9F\x8E\xB5", 5), "a\xF0\x9F\x8E\xB5");
}

TEST(TruncateUtf8, BytesThatAreNoUtf8AreCutAnywhere) {
  EXPECT_EQ(TruncateUtf8("\x80\x80\x80\x80\x80\x80", 4), "\x80\x80\x80\x80");
  EXPECT_EQ(TruncateUtf8("a\x80\x80", 2), "a\x80");
  EXPECT_EQ(TruncateUtf8("\xE9\xE9\xE9", 2), "\xE9\xE9");
}

TEST(TruncateUtf8, EveryCutOfALongTextIsWhole) {
  const std::string text = "aé€\xF0\x9F\x8E\xB5 Ÿ";
  for (std::size_t most = 0; most <= text.size(); ++most) {
    const std::string_view cut = TruncateUtf8(text, most);
    EXPECT_LE(cut.size(), most);
    EXPECT_GT(cut.size() + 4, most);
    const bool whole =
        cut.size() == text.size() || (static_cast<unsigned char>(text[cut.size()]) & 0xC0U) != 0x80U;
    EXPECT_TRUE(whole) << most;
  }
}

}  // namespace
}  // namespace kestrune::base
