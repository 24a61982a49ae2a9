#include <gtest/gtest.h>

#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::string_view kDefaultFormat = "%g\\%c - %t\\%a - %s";

SongNameValues Moon() {
  return {.Artist = "The Moonlighters",
          .Song = "Slow Tide",
          .Channel = 44,
          .Station = "Harbour",
          .Genre = "Rock",
          .SessionStart = base::DateValue::FromCivil(2005, 3, 7, 9, 5, 0),
          .Recorded = 7};
}

std::string Name(std::string_view format, const SongNameValues& values) {
  return BuildSongName(format, "/music/", "mp3", values).FileName;
}

TEST(SongName, DefaultFormatIsAFolderPerGenreAndChannel) {
  const SongName name = BuildSongName(kDefaultFormat, "/music/", "mp3", Moon());
  EXPECT_EQ(name.Folder, "/music/Rock/44 - Harbour/");
  EXPECT_EQ(name.FileName, "/music/Rock/44 - Harbour/The Moonlighters - Slow Tide");
}

TEST(SongName, EveryPlaceholderIsReplacedWithoutRegardToCase) {
  EXPECT_EQ(Name("%A_%S_%C_%T_%G_%D_%N", Moon()),
            "/music/The Moonlighters_Slow Tide_44_Harbour_Rock_20050307_0905_007");
}

TEST(SongName, CounterOfAFirstSongIsThreeZeros) {
  SongNameValues values = Moon();
  values.Recorded = 0;
  EXPECT_EQ(Name("%n", values), "/music/000");
}

TEST(SongName, ChannelHasNoPadding) {
  SongNameValues values = Moon();
  values.Channel = 9;
  EXPECT_EQ(Name("%c", values), "/music/9");
}

TEST(SongName, PlaceholderInsideAnArtistIsExpandedFurther) {
  SongNameValues values = Moon();
  values.Artist = "100%s";
  EXPECT_EQ(Name("%a", values), "/music/100Slow Tide");
}

TEST(SongName, PlaceholderOfAnEarlierKindInsideASongStays) {
  SongNameValues values = Moon();
  values.Song = "%a";
  EXPECT_EQ(Name("%s", values), "/music/-a");
}

TEST(SongName, BackslashInsideAnArtistIsNoSeparator) {
  SongNameValues values = Moon();
  values.Artist = "Left\\Right";
  const SongName name = BuildSongName("%g\\%a", "/music/", "mp3", values);
  EXPECT_EQ(name.Folder, "/music/Rock/");
  EXPECT_EQ(name.FileName, "/music/Rock/Left-Right");
}

TEST(SongName, EachForbiddenCharacterBecomesAHyphen) {
  for (const char forbidden : std::string_view("|<>^+=?/\":;*$%@")) {
    SongNameValues values = Moon();
    values.Artist = std::string("A") + forbidden + "B";
    EXPECT_EQ(Name("%a", values), "/music/A-B") << forbidden;
  }
}

TEST(SongName, ForbiddenCharacterInTheFolderOfRecordingsIsKept) {
  EXPECT_EQ(BuildSongName("%a", "/mnt/a:b+c/", "mp3", Moon()).Folder, "/mnt/a:b+c/");
}

TEST(SongName, EmptyArtistAndTitleGiveABareHyphen) {
  SongNameValues values = Moon();
  values.Artist = values.Song = "";
  EXPECT_EQ(Name(kDefaultFormat, values), "/music/Rock/44 - Harbour/ - ");
}

TEST(SongName, EmptyGenreLeavesNoEmptyFolder) {
  SongNameValues values = Moon();
  values.Genre = "";
  EXPECT_EQ(BuildSongName(kDefaultFormat, "/music/", "mp3", values).Folder, "/music/44 - Harbour/");
}

TEST(SongName, AnEmptyNameBecomesTwoBlanksAroundAHyphen) {
  SongNameValues values = Moon();
  values.Artist = values.Song = values.Genre = "";
  for (const std::string_view format : {"", "%a", "%a%s", "%g\\%a", "Rock\\"}) {
    EXPECT_TRUE(BuildSongName(format, "/music/", "mp3", values).FileName.ends_with("/ - ")) << format;
  }
}

TEST(SongName, DoubledSeparatorsAreReducedToOne) {
  EXPECT_EQ(BuildSongName("%g\\\\\\%a", "/music//rock/", "mp3", Moon()).Folder, "/music/rock/Rock/");
}

TEST(SongName, FormatWithoutSeparatorUsesTheFolderItself) {
  EXPECT_EQ(BuildSongName("%a", "/music/", "mp3", Moon()),
            (SongName{.Folder = "/music/", .FileName = "/music/The Moonlighters"}));
}

TEST(SongName, BlanksAroundAFolderGoSoThatItIsTheOneCreated) {
  EXPECT_EQ(BuildSongName(" %g \\%a", "/music/", "mp3", Moon()).Folder, "/music/Rock/");
}

TEST(SongName, AStrangersTextStaysBelowTheFolder) {
  for (const char* hostile : {"..", ".", "../../etc", "..\\..\\etc", "/etc/passwd", "..\t..\tetc"}) {
    SongNameValues values = Moon();
    values.Genre = values.Station = values.Artist = values.Song = hostile;
    for (const std::string_view format : {"%g\\%a", "%g\\%t\\%a\\%s", "%a"}) {
      const SongName name = BuildSongName(format, "/music/", "mp3", values);
      EXPECT_TRUE(name.FileName.starts_with("/music/")) << name.FileName;
      EXPECT_EQ(name.FileName.find("/."), std::string::npos) << name.FileName;
      EXPECT_EQ(name.FileName.find("/etc"), std::string::npos) << name.FileName;
    }
  }
}

TEST(SongName, LeadingPointsDoNotHideASong) {
  SongNameValues values = Moon();
  values.Artist = ".hidden";
  values.Genre = "..Rock.";
  EXPECT_EQ(Name("%g\\%a", values), "/music/--Rock./-hidden");
}

TEST(SongName, ControlCharactersBecomeHyphens) {
  SongNameValues values = Moon();
  values.Artist = std::string("A\tB\nC\x7F") + '\0' + "D\xC2\x85" + "E\xC2\xA9";
  EXPECT_EQ(Name("%a", values), "/music/A-B-C--D-E\xC2\xA9");
}

TEST(SongName, LongNameIsCutAtACharacterWithRoomForSuffixCounterAndExtension) {
  SongNameValues values = Moon();
  values.Artist.clear();
  for (int i = 0; i < 300; ++i) values.Artist += "\xC3\xA9";
  const SongName name = BuildSongName("%a\\%a", "/music/", "g726", values);
  const std::string folder = name.Folder.substr(7, name.Folder.size() - 8);
  const std::string file = name.FileName.substr(name.Folder.size());
  EXPECT_EQ(folder.size(), 254U);
  EXPECT_LE(file.size() + std::string(" (Incomplete)12345678.g726").size(), 255U);
  EXPECT_GT(file.size(), 220U);
  EXPECT_EQ(file.size() % 2, 0U) << "cut inside a character";
}

TEST(FormatSeconds, MinutesHaveNoPaddingAndSecondsTwoDigits) {
  EXPECT_EQ(FormatSeconds(0), "0:00");
  EXPECT_EQ(FormatSeconds(9), "0:09");
  EXPECT_EQ(FormatSeconds(45), "0:45");
  EXPECT_EQ(FormatSeconds(60), "1:00");
  EXPECT_EQ(FormatSeconds(3725), "62:05");
}

}  // namespace
}  // namespace kestrune::recorder
