#include <gtest/gtest.h>

#include "control/ConsoleText.h"

namespace kestrune::control {
namespace {

TEST(ConsoleText, WhatATerminalWouldObeyIsMadeVisible) {
  EXPECT_EQ(Printable("plain \xC3\xA9"), "plain \xC3\xA9");
  EXPECT_EQ(Printable("\x1B[31m"), "\xEF\xBF\xBD[31m");
  EXPECT_EQ(Printable("a\nb\tc"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c");
  EXPECT_EQ(Printable("\xC2\x9B"
                      "2J"),
            "\xEF\xBF\xBD"
            "2J");  // C1
  EXPECT_EQ(Printable("\xE2\x80\xAE"
                      "abc"),
            "\xEF\xBF\xBD"
            "abc");  // writes backwards
  EXPECT_EQ(Printable("\xFFok\xC3"), "\xEF\xBF\xBDok\xEF\xBF\xBD");
}

TEST(ConsoleText, WidthCountsPlacesNotBytes) {
  EXPECT_EQ(DisplayWidth(""), 0U);
  EXPECT_EQ(DisplayWidth("abc"), 3U);
  EXPECT_EQ(DisplayWidth("Beyonc\xC3\xA9"), 7U);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U);                 // combining accent
  EXPECT_EQ(DisplayWidth("\xE6\x97\xA5\xE6\x9C\xAC"), 4U);  // two wide characters
  EXPECT_EQ(DisplayWidth("\xF0\x9F\x8E\xB5"), 2U);          // a note
}

TEST(ConsoleText, ColumnsAlignBehindAccents) {
  EXPECT_EQ(Columns({{"Artist", "Song"}, {"Beyonc\xC3\xA9", "Halo"}, {"U2", "One"}}),
            "Artist   Song\n"
            "Beyonc\xC3\xA9  Halo\n"
            "U2       One\n");
}

TEST(ConsoleText, RowsEndWithoutBlanks) {
  EXPECT_EQ(Columns({{"a", "bb", "c"}, {"aaa", "", ""}, {"", "b", ""}, {}}),
            "a    bb  c\n"
            "aaa\n"
            "     b\n"
            "\n");
}

TEST(ConsoleText, ColumnsMakeStrangersTextPrintable) {
  EXPECT_EQ(Columns({{"\x1B"
                      "x",
                      "y"}}),
            "\xEF\xBF\xBDx  y\n");
}

TEST(ConsoleText, QuotationsAreCutBetweenCharacters) {
  EXPECT_EQ(Quoted("tune"), "\"tune\"");
  EXPECT_EQ(Quoted("a\nb"),
            "\"a\xEF\xBF\xBD"
            "b\"");
  EXPECT_EQ(Quoted(std::string(39, 'a') + "\xC3\xA9"), '"' + std::string(39, 'a') + '"');
  EXPECT_EQ(Quoted(std::string(100, 'a')), '"' + std::string(40, 'a') + '"');
}

}  // namespace
}  // namespace kestrune::control
