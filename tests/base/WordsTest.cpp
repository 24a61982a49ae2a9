#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/Words.h"

namespace kestrune::test {
namespace {

using Words = std::vector<std::string>;

TEST(Words, BlanksSeparateThem) {
  EXPECT_EQ(base::SplitWords("kill 4711"), (Words{"kill", "4711"}));
  EXPECT_EQ(base::SplitWords("  a   b  "), (Words{"a", "b"}));
  EXPECT_EQ(base::SplitWords(""), Words{});
  EXPECT_EQ(base::SplitWords("   "), Words{});
}

TEST(Words, QuotesHoldBlanksAndEmptyWords) {
  EXPECT_EQ(base::SplitWords(R"("/tmp/my file" -x)"), (Words{"/tmp/my file", "-x"}));
  EXPECT_EQ(base::SplitWords(R"("" a"b c"d)"), (Words{"", "ab cd"}));
  EXPECT_EQ(base::SplitWords(R"("no end of it)"), Words{"no end of it"});
}

TEST(Words, ABackslashCountsOnlyInQuotesAndBeforeWhatItGuards) {
  EXPECT_EQ(base::SplitWords(R"(a\b "c\d" "\"" "\\")"), (Words{R"(a\b)", R"(c\d)", "\"", "\\"}));
}

TEST(Words, NoSignOfAShellMeansAnything) {
  EXPECT_EQ(base::SplitWords("a;b $(c) `d` &"), (Words{"a;b", "$(c)", "`d`", "&"}));
}

TEST(Words, AQuotedWordComesBackAsItWas) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const std::string letters = "ab \"\\/'$\n\xC3\xA9";
  for (int round = 0; round < 2000; ++round) {
    std::string word;
    for (auto length = random() % 9; length > 0; --length) word += letters[random() % letters.size()];
    EXPECT_EQ(base::SplitWords("x " + base::QuoteWord(word) + " y"), (Words{"x", word, "y"}));
  }
}

}  // namespace
}  // namespace kestrune::test
