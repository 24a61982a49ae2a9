#include <gtest/gtest.h>

#include "config/update/VersionFile.h"

namespace kestrune::test {
namespace {

using config::IsNewer;
using config::ReadVersionFile;

struct File {
  std::string Text;
  std::string Version;
  std::string Address;
};

TEST(VersionFile, LinesEndInCrLfOrBoth) {
  const File kFiles[] = {
      {"003.000.030", "003.000.030", ""},
      {"003.000.030\nhttp://h/a", "003.000.030", "http://h/a"},
      {"003.000.030\rhttp://h/a", "003.000.030", "http://h/a"},
      {"003.000.030\r\nhttp://h/a", "003.000.030", "http://h/a"},
      {"003.000.030\nhttp://h/a\n", "003.000.030", "http://h/a"},
      {"003.000.030\r\nhttp://h/a\r\n\r\n", "003.000.030", "http://h/a"},
      {"003.000.030\n", "003.000.030", ""},
      {"  003.000.030  \n  http://h/a  ", "003.000.030", "  http://h/a  "},
      {"003.000.030\nhttp://h/a\nthird", "003.000.030", "http://h/a\rthird"},
      {"", "", ""},
      {"\r\n\r\n", "", ""},
      {"   ", "", ""},
      {"\nhttp://h/a", "", "http://h/a"},
  };
  for (const File& file : kFiles) {
    const config::VersionFile read = ReadVersionFile(file.Text);
    EXPECT_EQ(read.Version, file.Version) << testing::PrintToString(file.Text);
    EXPECT_EQ(read.DownloadAddress, file.Address) << testing::PrintToString(file.Text);
  }
}

TEST(VersionFile, PairsOfLineEndsBecomeOneInASinglePass) {
  // Three in a row leave two, and what follows the first begins with the other.
  EXPECT_EQ(ReadVersionFile("v\r\r\ra").DownloadAddress, "\ra");
  EXPECT_EQ(ReadVersionFile("v\n\n\n\na").DownloadAddress, "\ra");
  EXPECT_EQ(ReadVersionFile("v\r\ra").DownloadAddress, "a");
}

TEST(VersionFile, AVersionIsThreeGroupsOfThreeDigits) {
  EXPECT_EQ(config::VersionText(3, 0, 29), "003.000.029");
  EXPECT_EQ(config::VersionText(12, 345, 6), "012.345.006");
  EXPECT_EQ(config::VersionText(1234, 0, 0), "1234.000.000");
  EXPECT_EQ(config::RunningVersionText(), "003.000.029");
}

TEST(VersionFile, WhateverSortsBehindIsNewer) {
  const std::string running = "003.000.029";
  EXPECT_FALSE(IsNewer("003.000.029", running));
  EXPECT_FALSE(IsNewer("003.000.028", running));
  EXPECT_FALSE(IsNewer("002.999.999", running));
  EXPECT_TRUE(IsNewer("003.000.030", running));
  EXPECT_TRUE(IsNewer("003.000.100", running));
  EXPECT_FALSE(IsNewer("003.000.02", running)) << "a beginning of it sorts before it";
  EXPECT_TRUE(IsNewer("003.000.0290", running));
  EXPECT_TRUE(IsNewer("3.0.28", running)) << "texts, not numbers";
  EXPECT_TRUE(IsNewer("<html>", running)) << "a server's page counts as newer";
  EXPECT_TRUE(IsNewer("Not found", running));
  EXPECT_TRUE(IsNewer("\xC3\xA4", running)) << "bytes above 127 sort behind letters";
  EXPECT_FALSE(IsNewer("!", running));
}

}  // namespace
}  // namespace kestrune::test
