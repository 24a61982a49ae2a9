#include <iostream>
#include <map>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/posix/IniText.h"

namespace kestrune::platform {
namespace {

TEST(IniText, ReadsSectionsAndKeys) {
  const IniText ini("[Kestrune]\nChannel=44\n Song Delay = 600 \n[Kestrune2]\nChannel=5\n");
  EXPECT_EQ(ini.Get("Kestrune", "Channel"), "44");
  EXPECT_EQ(ini.Get("Kestrune", "Song Delay"), "600");
  EXPECT_EQ(ini.Get("Kestrune2", "Channel"), "5");
  EXPECT_EQ(ini.Get("Kestrune", "None"), std::nullopt);
  EXPECT_EQ(ini.Get("None", "Channel"), std::nullopt);
}

TEST(IniText, SectionsAndKeysCompareWithoutRegardToCase) {
  IniText ini("[KESTRUNE]\nScheduleMP3BitRate1=128 Stereo\n");
  EXPECT_EQ(ini.Get("kestrune", "Schedulemp3bitrate1"), "128 Stereo");
  ini.Set("Kestrune", "SCHEDULEMP3BITRATE1", "8 Mono");
  EXPECT_EQ(ini.Get("kestrune", "Schedulemp3bitrate1"), "8 Mono");
  EXPECT_TRUE(ini.Delete("kestrunE", "schedulemp3bitratE1"));
  EXPECT_EQ(ini.Text(), "[KESTRUNE]\n");
}

TEST(IniText, WritesWhatAReaderOfTheFileExpects) {
  IniText ini;
  ini.Set("Kestrune", "Channel", "44");
  ini.Set("Kestrune", "MP3_", "True");
  ini.Set("Kestrune2", "FilenameFormat", "%g\\%c - %t\\%a - %s");
  ini.Set("Kestrune", "FileDir", "");
  EXPECT_EQ(ini.Text(),
            "[Kestrune]\nChannel=44\nMP3_=True\nFileDir=\n\n[Kestrune2]\n"
            "FilenameFormat=%g\\\\%c - %t\\\\%a - %s\n");
}

TEST(IniText, LinesItDoesNotUnderstandStayUnchanged) {
  IniText ini(
      "; a comment\n\nrubbish\n[Kestrune\n[Kestrune]\r\n# Channel=1\nChannel=2\r\n\x01\xFF\n\n[Other]\nx");
  EXPECT_EQ(ini.Get("Kestrune", "Channel"), "2");
  ini.Set("Kestrune", "New", "1");
  ini.Set("Other", "y", "2");
  EXPECT_EQ(ini.Text(),
            "; a comment\n\nrubbish\n[Kestrune\n[Kestrune]\r\n# "
            "Channel=1\nChannel=2\r\n\x01\xFF\nNew=1\n\n[Other]\nx\ny=2\n");
}

TEST(IniText, ACommentIsNoKey) {
  const IniText ini("[a]\n;x=1\n # x=2\n");
  EXPECT_EQ(ini.Get("a", "x"), std::nullopt);
  EXPECT_EQ(ini.Get("a", ";x"), std::nullopt);
}

TEST(IniText, IfAKeyAppearsTwiceTheLastCounts) {
  IniText ini("[a]\nx=1\nX=2\n[b]\nx=9\n[A]\nx=3\n");
  EXPECT_EQ(ini.Get("a", "x"), "3");
  ini.Set("a", "x", "4");
  EXPECT_EQ(ini.Text(), "[a]\nx=1\nX=2\n[b]\nx=9\n[A]\nx=4\n");
  EXPECT_TRUE(ini.Delete("a", "x"));
  EXPECT_EQ(ini.Text(), "[a]\n[b]\nx=9\n[A]\n");
  EXPECT_FALSE(ini.Delete("a", "x"));
}

TEST(IniText, PathsTypedByHandAreReadAsMeant) {
  const IniText ini("[a]\nx=C:\\Music\\\ny=a\\qb\nz=C:\\\\Music\n");
  EXPECT_EQ(ini.Get("a", "x"), "C:\\Music\\");
  EXPECT_EQ(ini.Get("a", "y"), "a\\qb");
  EXPECT_EQ(ini.Get("a", "z"), "C:\\Music");
}

TEST(IniText, ValuesOfAnyBytesComeBack) {
  for (const std::string& value : {std::string(),
                                   std::string(" "),
                                   std::string("  a  "),
                                   std::string("\ta\t"),
                                   std::string("a\nb\r\nc"),
                                   std::string("\\n"),
                                   std::string("\\"),
                                   std::string("; no comment"),
                                   std::string("# none"),
                                   std::string("a;b#c"),
                                   std::string("[x]"),
                                   std::string("a=b"),
                                   std::string("="),
                                   std::string("\0", 1),
                                   std::string("a\0b", 3),
                                   std::string("é€"),
                                   std::string("\xE9\xFF"),
                                   std::string("\"quoted\""),
                                   std::string("\r"),
                                   std::string("\\s \\"),
                                   std::string("\v\f")}) {
    IniText ini("[other]\nx=1\n");
    ini.Set("Kestrune", "Key", value);
    ini.Set("Kestrune", "After", "2");
    const IniText again(ini.Text());
    EXPECT_EQ(again.Get("Kestrune", "Key"), value) << ini.Text();
    EXPECT_EQ(again.Get("Kestrune", "After"), "2") << ini.Text();
    EXPECT_EQ(again.Get("other", "x"), "1") << ini.Text();
  }
}

TEST(IniText, SectionsAndKeysOfAnyBytesComeBack) {
  for (const std::string& name :
       {std::string(), std::string(" "), std::string(" a "), std::string("]"), std::string("["),
        std::string("[a]"), std::string("="), std::string("a=b"), std::string(";"), std::string("#x"),
        std::string("\\"), std::string("\n"), std::string("\0", 1), std::string("é"), std::string("\xC3"),
        std::string("\\=")}) {
    IniText ini("[other]\nx=1\n");
    ini.Set(name, "key", "1");
    ini.Set("section", name, "2");
    const IniText again(ini.Text());
    EXPECT_EQ(again.Get(name, "key"), "1") << ini.Text();
    EXPECT_EQ(again.Get("section", name), "2") << ini.Text();
    EXPECT_EQ(again.Get("other", "x"), "1") << ini.Text();
  }
}

TEST(IniText, KeysAboveAllSectionsBelongToTheOneWithoutAName) {
  IniText ini("x=1\n[a]\nx=2\n");
  EXPECT_EQ(ini.Get("", "x"), "1");
  ini.Set("", "y", "3");
  EXPECT_EQ(ini.Text(), "x=1\ny=3\n[a]\nx=2\n");
}

TEST(IniText, ATextReadIsTheTextWritten) {
  for (const char* text : {"", "\n", "x", "[a]\nx=1", "\r\n\r\n[a]\r\n", "[]\n=\n"}) {
    EXPECT_EQ(IniText(text).Text(), text);
  }
}

TEST(IniText, AHistoryOfChangesReadsBackLikeATable) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const auto word = [&random] {
    const std::string letters("ab=[]\\;# \n\r\0é\t", 15);
    std::string text;
    for (auto length = random() % 4; length > 0; --length) text += letters[random() % letters.size()];
    return text;
  };
  std::map<std::pair<std::string, std::string>, std::string> table;
  IniText ini;
  for (int step = 0; step < 3000; ++step) {
    const std::string section = word();
    const std::string key = word();
    if (random() % 4 == 0) {
      ASSERT_EQ(ini.Delete(section, key), table.erase({section, key}) > 0) << step;
    } else {
      const std::string value = word();
      ini.Set(section, key, value);
      table[{section, key}] = value;
    }
    if (step % 100 == 0) ini = IniText(ini.Text());
  }
  const IniText again(ini.Text());
  for (const auto& [name, value] : table) ASSERT_EQ(again.Get(name.first, name.second), value);
}

}  // namespace
}  // namespace kestrune::platform
