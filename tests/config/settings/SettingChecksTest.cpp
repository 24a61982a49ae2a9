#include <string>

#include <gtest/gtest.h>

#include "config/settings/SettingChecks.h"

namespace kestrune::test {
namespace {

using config::CleanFilenameFormat;
using config::SongLengthsAgree;

TEST(CleanFilenameFormat, TurnsSlashesAndTakesOuterBackslashesAndBlanks) {
  EXPECT_EQ(CleanFilenameFormat("/ %a: %s /*"), "%a %s");
}

TEST(CleanFilenameFormat, LeavesTheDefaultAlone) {
  EXPECT_EQ(CleanFilenameFormat("%g\\%c - %t\\%a - %s"), "%g\\%c - %t\\%a - %s");
}

TEST(CleanFilenameFormat, RemovesThirteenCharactersAnywhere) {
  for (const char c : {'|', '<', '>', '^', '+', '=', '?', '"', ':', ';', '*', '$', '@'}) {
    const std::string text = std::string(1, c) + "%a" + c + c + "%s" + c;
    EXPECT_EQ(CleanFilenameFormat(text), "%a%s") << c;
  }
}

TEST(CleanFilenameFormat, LeavesEveryOtherCharacter) {
  EXPECT_EQ(CleanFilenameFormat("!#%&'(),-.[]_`{}~ \xC3\xA9"), "!#%&'(),-.[]_`{}~ \xC3\xA9");
}

TEST(CleanFilenameFormat, TakesManyOuterSeparators) {
  EXPECT_EQ(CleanFilenameFormat("\\ /\\ %a\\%s / \\/"), "%a\\%s");
}

TEST(CleanFilenameFormat, ABackslashAfterAForbiddenCharacterAndABlankStays) {
  EXPECT_EQ(CleanFilenameFormat("* \\%a"), "\\%a");
}

TEST(CleanFilenameFormat, CanLeaveNothing) {
  EXPECT_EQ(CleanFilenameFormat(""), "");
  EXPECT_EQ(CleanFilenameFormat("  "), "");
  EXPECT_EQ(CleanFilenameFormat("/ \\ :"), "");
}

TEST(SongLengths, NoneWithUnlimitedPasses) {
  EXPECT_TRUE(SongLengthsAgree(0, 0));
  EXPECT_TRUE(SongLengthsAgree(120, 0));
}

TEST(SongLengths, AMinimumThatEqualsTheMaximumIsRefused) {
  EXPECT_FALSE(SongLengthsAgree(120, 120));
  EXPECT_FALSE(SongLengthsAgree(120, 90));
  EXPECT_TRUE(SongLengthsAgree(119, 120));
}

}  // namespace
}  // namespace kestrune::test
