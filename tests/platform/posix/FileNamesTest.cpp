#include <string>

#include <gtest/gtest.h>

#include "platform/posix/FileNames.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::FileMode;
using test::PutFile;
using test::TemporaryFolder;

TEST(SystemPath, ANulFails) {
  EXPECT_EQ(SystemPath("/tmp/ä b"), "/tmp/ä b");
  EXPECT_EQ(SystemPath(std::string_view("/tmp\0/x", 7)), std::nullopt);
}

TEST(FileNameFor, KeepsPlainCharactersAndSpellsOutTheRest) {
  EXPECT_EQ(FileNameFor("Lorimel"), "lorimel");
  EXPECT_EQ(FileNameFor("A-b_9"), "a-b_9");
  EXPECT_EQ(FileNameFor("../x"), "%2e%2e%2fx");
  EXPECT_EQ(FileNameFor("%2e"), "%252e");
  EXPECT_EQ(FileNameFor("É"), "%c3%a9");
  EXPECT_EQ(FileNameFor(std::string_view("\0\n ", 3)), "%00%0a%20");
  EXPECT_EQ(FileNameFor(""), "");
}

TEST(FolderOf, IsWhatPrecedesTheLastSeparator) {
  EXPECT_EQ(FolderOf("/a/b"), "/a");
  EXPECT_EQ(FolderOf("/a"), "/");
  EXPECT_EQ(FolderOf("a"), ".");
  EXPECT_EQ(FolderOf("a/b"), "a");
}

TEST(MakeFolders, MakesTheParentsThatAreMissing) {
  const TemporaryFolder folder;
  EXPECT_TRUE(MakeFolders(folder / "a/b/c", 0700));
  EXPECT_EQ(FileMode(folder / "a"), 0700U);
  EXPECT_EQ(FileMode(folder / "a/b/c"), 0700U);
  EXPECT_TRUE(MakeFolders(folder / "a/b/c", 0700));
  PutFile(folder / "file", "x");
  EXPECT_FALSE(MakeFolders(folder / "file", 0700));
  EXPECT_FALSE(MakeFolders(folder / "file/below", 0700));
}

TEST(MatchesPattern, StarIsAnyRunAndQuestionMarkAnyOne) {
  struct Row {
    const char* Name;
    const char* Pattern;
    bool Matches;
  };
  for (const Row& row : {Row{"a.txt", "*", true},      Row{"a.txt", "*.*", true},
                         Row{"atxt", "*.*", false},    Row{"a.txt", "*.txt", true},
                         Row{"a.txt", "*.TXT", false}, Row{"a.txt", "?.txt", true},
                         Row{".txt", "?.txt", false},  Row{"", "", true},
                         Row{"", "*", true},           Row{"", "?", false},
                         Row{"a", "", false},          Row{"aab", "*ab", true},
                         Row{"abcabd", "*ab?", true},  Row{"abcab", "*ab?", false},
                         Row{"é", "?", true},          Row{"é", "??", false},
                         Row{"é", "*??", false},       Row{"aé€", "*??", true},
                         Row{"[a]", "[a]", true},      Row{"a", "[a]", false},
                         Row{"a**b", "a*b", true},     Row{"x\xFF", "x?", true}}) {
    EXPECT_EQ(MatchesPattern(row.Name, row.Pattern), row.Matches) << row.Name << " " << row.Pattern;
  }
}

TEST(MatchesPattern, ManyStarsTakeNoLongerThanOne) {
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "a*";
  EXPECT_FALSE(MatchesPattern(std::string(5000, 'a'), pattern + "b"));
}

}  // namespace
}  // namespace kestrune::platform
