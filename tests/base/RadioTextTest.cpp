#include <array>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "base/RadioText.h"

namespace kestrune::base {
namespace {

// The upper half of the set, typed from its chart: the row of each high digit, lowest byte first. The five
// bytes left open are the control characters of the same number.
const std::array<std::string, 8> kUpperHalf = {"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008dŽ\u008f",
                                               "\u0090‘’“”•–—˜™š›œ\u009džŸ",
                                               "\u00a0¡¢£¤¥¦§¨©ª«¬\u00ad®¯",
                                               "°±²³´µ¶·¸¹º»¼½¾¿",
                                               "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏ",
                                               "ÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß",
                                               "àáâãäåæçèéêëìíîï",
                                               "ðñòóôõö÷øùúûüýþÿ"};

std::string AllBytes(int from, int to) {
  std::string bytes;
  for (int byte = from; byte <= to; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(RadioTextToUtf8, TheLowerHalfIsItself) {
  EXPECT_EQ(RadioTextToUtf8(AllBytes(0, 127)), AllBytes(0, 127));
}

TEST(RadioTextToUtf8, EveryByteOfTheUpperHalfIsItsCharacter) {
  for (std::size_t row = 0; row < kUpperHalf.size(); ++row) {
    const int first = 0x80 + static_cast<int>(row) * 16;
    EXPECT_EQ(RadioTextToUtf8(AllBytes(first, first + 15)), kUpperHalf.at(row)) << first;
  }
}

TEST(RadioTextToUtf8, NoTwoBytesMeet) {
  std::set<std::string> seen;
  for (int byte = 0; byte < 256; ++byte) seen.insert(RadioTextToUtf8(AllBytes(byte, byte)));
  EXPECT_EQ(seen.size(), 256U);
}

TEST(RadioTextCase, PairsOfLettersFoldIntoEachOther) {
  struct Row {
    const char* Upper;
    const char* Lower;
  };
  for (const Row& row : {Row{"A", "a"}, Row{"Z", "z"}, Row{"\xC0", "\xE0"}, Row{"\xC9", "\xE9"},
                         Row{"\xD6", "\xF6"}, Row{"\xD8", "\xF8"}, Row{"\xDE", "\xFE"}, Row{"\x8A", "\x9A"},
                         Row{"\x8C", "\x9C"}, Row{"\x8E", "\x9E"}, Row{"\x9F", "\xFF"}}) {
    EXPECT_EQ(RadioTextLower(row.Upper), row.Lower);
    EXPECT_EQ(RadioTextUpper(row.Lower), row.Upper);
    EXPECT_EQ(RadioTextLower(row.Lower), row.Lower);
    EXPECT_EQ(RadioTextUpper(row.Upper), row.Upper);
  }
}

TEST(RadioTextCase, ExactlySixtyLettersHaveAPair) {
  int lowered = 0;
  int raised = 0;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one = AllBytes(byte, byte);
    if (RadioTextLower(one) != one) {
      ++lowered;
      EXPECT_EQ(RadioTextUpper(RadioTextLower(one)), one) << byte;
    }
    if (RadioTextUpper(one) != one) ++raised;
  }
  EXPECT_EQ(lowered, 26 + 30 + 4);
  EXPECT_EQ(raised, 26 + 30 + 4);
}

TEST(RadioTextCase, SignsAndLettersWithoutAPairStay) {
  for (const char* text : {"\xD7", "\xF7", "\xDF", "\x83", "\xB5", "\x80", "\x81", "0", "@", "[", "`", "{"}) {
    EXPECT_EQ(RadioTextLower(text), text);
    EXPECT_EQ(RadioTextUpper(text), text);
  }
}

TEST(TitleCaseText, CapitalisesWhatFollowsAnythingButAPlainLetter) {
  struct Row {
    const char* Text;
    const char* Title;
  };
  for (const Row& row : {Row{"ROCK", "Rock"}, Row{"rock", "Rock"}, Row{"AC/DC", "Ac/Dc"},
                         Row{"DON'T STOP", "Don'T Stop"}, Row{"99 luftballons", "99 Luftballons"},
                         Row{"u2live", "U2Live"}, Row{"  padded  text ", "Padded  Text"}, Row{"", ""},
                         Row{"   ", ""}, Row{"a", "A"}, Row{"(sittin' on)", "(Sittin' On)"},
                         // An accented letter is capitalised where a word begins, and separates words itself.
                         Row{"\xC9RIC", "\xC9Ric"}, Row{"beyonc\xE9 live", "Beyonc\xE9 Live"},
                         Row{"m\xF6tley", "M\xF6Tley"}, Row{"\xE9\xE9", "\xC9\xC9"}, Row{"12345", "12345"}}) {
    EXPECT_EQ(TitleCaseText(row.Text), row.Title) << row.Text;
  }
}

}  // namespace
}  // namespace kestrune::base
