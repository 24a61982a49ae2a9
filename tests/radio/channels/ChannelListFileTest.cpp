#include <gtest/gtest.h>

#include "radio/channels/ChannelListFile.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {
namespace {

using radio::ChannelListFile;

TEST(ChannelListFile, ItsNameCarriesTheUnit) {
  MemoryFiles files;
  ChannelListFile file(files);
  file.SetPlace("/home/u/Application Data/Kestrune", "");
  EXPECT_EQ(file.Path(), "/home/u/Application Data/Kestrune/ChannelList.txt");
  file.SetPlace("/data", "2");
  EXPECT_EQ(file.Path(), "/data/ChannelList2.txt");
}

TEST(ChannelListFile, ALineIsFiveFieldsBetweenTabs) {
  EXPECT_EQ(
      ChannelListFile::Format({{.Number = 9, .Station = "Nine", .Genre = "Pop", .Artist = "A", .Song = "S"},
                               {.Number = 45, .Station = "", .Genre = ""}}),
      "9\tNine\t\t\tPop\n45\t\t\t\t\n");
}

TEST(ChannelListFile, ControlCharactersInATextCannotBreakTheLines) {
  EXPECT_EQ(ChannelListFile::Format({{.Number = 9, .Station = "a\tb\nc\r\x01\x7F", .Genre = "\t"}}),
            "9\ta b c   \t\t\t \n");
}

TEST(ChannelListFile, AListSurvivesTheRoundTrip) {
  MemoryFiles files;
  files.MakeFolders("/data");
  ChannelListFile file(files);
  file.SetPlace("/data", "");
  EXPECT_FALSE(file.Exists());
  ASSERT_TRUE(file.Write({{.Number = 9, .Station = "Caf\xC3\xA9 & more", .Genre = "Pop"},
                          {.Number = 255, .Station = "Last", .Genre = "Talk"}}));
  EXPECT_TRUE(file.Exists());
  const auto entries = file.Read();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].Number, 9);
  EXPECT_EQ(entries[0].Station, "Caf\xC3\xA9 & more");
  EXPECT_EQ(entries[0].Genre, "Pop");
  EXPECT_EQ(entries[1].Number, 255);
  EXPECT_FALSE(entries[1].Seen);
  EXPECT_TRUE(file.Remove());
  EXPECT_FALSE(file.Exists());
}

TEST(ChannelListFile, BothKindsOfLineEndAreRead) {
  const auto entries = ChannelListFile::Parse("9\tNine\t\t\tPop\r\n10\tTen\t\t\tRock\n11\tEleven\t\t\tJazz");
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[0].Genre, "Pop");
  EXPECT_EQ(entries[2].Genre, "Jazz");
}

TEST(ChannelListFile, TheGenreOfChannelOneIsLeftOut) {
  const auto entries = ChannelListFile::Parse("1\tOne\t\t\tPreview\n");
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].Station, "One");
  EXPECT_EQ(entries[0].Genre, "");
}

TEST(ChannelListFile, SavedArtistsAndSongsAreNotRead) {
  const auto entries = ChannelListFile::Parse("9\tNine\tArtist\tSong\tPop\tmore\n");
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].Artist, "");
  EXPECT_EQ(entries[0].Song, "");
  EXPECT_EQ(entries[0].Genre, "Pop");
}

TEST(ChannelListFile, ABadNumberReadsAsZero) {
  const struct {
    const char* Line;
    int Number;
  } rows[] = {{"", 0},         {"abc\tX", 0},     {"\tX", 0},        {"12abc\tX", 12}, {" 1 2\tX", 12},
              {"-5\tX", 0},    {"1000\tX", 1000}, {"1001\tX", 0},    {"70000\tX", 0},  {"1e400\tX", 0},
              {"12.5\tX", 12}, {"13.5\tX", 14},   {"\xFF\xFE\tX", 0}};
  for (const auto& row : rows) {
    const auto entries = ChannelListFile::Parse(std::string(row.Line) + "\n");
    ASSERT_EQ(entries.size(), 1U) << row.Line;
    EXPECT_EQ(entries[0].Number, row.Number) << row.Line;
  }
}

TEST(ChannelListFile, MissingFieldsReadAsEmpty) {
  const auto entries = ChannelListFile::Parse("9\n10\tTen\n11\tEleven\t\n");
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[0].Number, 9);
  EXPECT_EQ(entries[0].Station, "");
  EXPECT_EQ(entries[1].Station, "Ten");
  EXPECT_EQ(entries[2].Genre, "");
}

TEST(ChannelListFile, AFileThatCannotBeReadOrWrittenIsNoList) {
  MemoryFiles files;
  files.Put("/data/ChannelList.txt", "9\tNine\t\t\tPop\n");
  ChannelListFile file(files);
  file.SetPlace("/data", "");
  files.FailAlways(FileOperation::Read);
  files.FailAlways(FileOperation::Replace);
  EXPECT_TRUE(file.Read().empty());
  EXPECT_FALSE(file.Write({}));
}

}  // namespace
}  // namespace kestrune::test
