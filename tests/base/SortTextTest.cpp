#include <gtest/gtest.h>

#include "base/SortText.h"

namespace kestrune::base {
namespace {

TEST(SortText, PutsAccentedLettersBesideThePlainOnes) {
  EXPECT_EQ(SortText("Été"), "ete");
  EXPECT_EQ(SortText("ÀÁÂÃÄÅàáâãäå"), "aaaaaaaaaaaa");
  EXPECT_EQ(SortText("ÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ"), "ceeeeiiiidnoooooouuuuyth");
  EXPECT_EQ(SortText("çèéêëìíîïðñòóôõöøùúûüýþÿ"), "ceeeeiiiidnoooooouuuuythy");
  EXPECT_EQ(SortText("Æon Œuvre Straße Šárka Žal Ÿ"), "aeon oeuvre strasse sarka zal y");
}

TEST(SortText, KeepsWhatIsNoLetter) {
  EXPECT_EQ(SortText("AC/DC × ÷ 7"), "ac/dc × ÷ 7");
  EXPECT_EQ(SortText("Łódź"), "Łodź");
  EXPECT_EQ(SortText(""), "");
}

TEST(SortText, KeepsBytesThatAreNoUtf8) {
  EXPECT_EQ(SortText("a\xC3"), "a\xC3");
  EXPECT_EQ(SortText("\xE9t\xE9"), "\xE9t\xE9");
}

}  // namespace
}  // namespace kestrune::base
