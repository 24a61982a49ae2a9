#include <string>

#include <gtest/gtest.h>

#include "platform/codec/TagText.h"

namespace kestrune::test {
namespace {

using platform::CleanTagText;
using platform::kMaxTagText;
using platform::ToLatin1;

TEST(TagText, PlainAndUtf8TextStays) {
  EXPECT_EQ(CleanTagText(""), "");
  EXPECT_EQ(CleanTagText("Björk - Jóga"), "Björk - Jóga");
  EXPECT_EQ(CleanTagText("\xE2\x82\xAC \xF0\x9F\x8E\xB5"), "\xE2\x82\xAC \xF0\x9F\x8E\xB5");
}

TEST(TagText, ControlCharactersBecomeBlanks) {
  EXPECT_EQ(CleanTagText(std::string("a\0b\nc\x1B\x7F", 7)), "a b c  ");
  EXPECT_EQ(CleanTagText("a\xC2\x81"
                         "b"),
            "a b");
}

TEST(TagText, BytesThatAreNoUtf8BecomeQuestionMarks) {
  EXPECT_EQ(CleanTagText("a\xFF"
                         "b"),
            "a?b");
  EXPECT_EQ(CleanTagText("caf\xE9"), "caf?");
  EXPECT_EQ(CleanTagText("\xC3"), "?");
  EXPECT_EQ(CleanTagText("\xC0\x80"), "??");
  EXPECT_EQ(CleanTagText("\xE0\x80\x80"), "???");
  EXPECT_EQ(CleanTagText("\xED\xA0\x80"), "???");
  EXPECT_EQ(CleanTagText("\xF4\x90\x80\x80"), "????");
  EXPECT_EQ(CleanTagText("\xF0\x9F\x8E"), "???");
}

TEST(TagText, ALongTextIsCutBeforeTheCharacterThatDoesNotFit) {
  EXPECT_EQ(CleanTagText(std::string(100000, 'x')), std::string(kMaxTagText, 'x'));
  std::string umlauts = "x";
  for (int i = 0; i < 1000; ++i) umlauts += "ü";
  EXPECT_EQ(CleanTagText(umlauts).size(), kMaxTagText - 1);
}

TEST(TagText, Latin1HasAQuestionMarkForWhatItLacks) {
  EXPECT_EQ(ToLatin1("Bj\xC3\xB6rk \xE2\x82\xAC\xF0\x9F\x8E\xB5"), "Bj\xF6rk ??");
}

}  // namespace
}  // namespace kestrune::test
