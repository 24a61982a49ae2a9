#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingKeys.h"
#include "support/FakeEnvironment.h"
#include "support/MemorySettingsStore.h"

namespace kestrune::test {
namespace {

using config::CutPlacement;
using config::Settings;
using config::SettingType;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// What is expected of one setting: its default as stored text, another value as it may be stored,
/// and whether the record's own field shows either.
struct Expected {
  const char* Key;
  SettingType Type;
  const char* Default;
  const char* Other;
  bool (*ShowsDefault)(const Settings& s);
  bool (*ShowsOther)(const Settings& s);
};

#define SHOWS(condition) [](const Settings& s) { return condition; }
constexpr auto kInt16 = SettingType::Int16;
constexpr auto kInt32 = SettingType::Int32;
constexpr auto kBool = SettingType::Bool;
constexpr auto kText = SettingType::Text;
constexpr auto kPlacement = SettingType::CutPlacement;

// In the order in which the start reads them.
const Expected kExpected[] = {
    {"Channel", kInt16, "44", "7", SHOWS(s.Channel == 44), SHOWS(s.Channel == 7)},
    {"SievanceGrab", kInt16, "0", "1", SHOWS(s.SievanceGrab == 0), SHOWS(s.SievanceGrab == 1)},
    {"SievanceKill", kInt16, "0", "1", SHOWS(s.SievanceKill == 0), SHOWS(s.SievanceKill == 1)},
    {"MinSongLength", kInt16, "45", "47", SHOWS(s.MinSongLength == 45), SHOWS(s.MinSongLength == 47)},
    {"MaxSongLength", kInt16, "0", "900", SHOWS(s.MaxSongLength == 0), SHOWS(s.MaxSongLength == 900)},
    {"SongDelay", kInt16, "600", "650", SHOWS(s.SongDelay == 600), SHOWS(s.SongDelay == 650)},
    {"FileDir", kText, "/home/user/Music/Kestrune/", "/srv/songs/",
     SHOWS(s.FileDir == "/home/user/Music/Kestrune/"), SHOWS(s.FileDir == "/srv/songs/")},
    {"FileFormat", kText, "MP3", "WAV", SHOWS(s.FileFormat == "MP3"), SHOWS(s.FileFormat == "WAV")},
    {"RadioOnAtExit", kBool, "False", "True", SHOWS(!s.RadioOnAtExit), SHOWS(s.RadioOnAtExit)},
    {"FilenameFormat", kText, "%g\\%c - %t\\%a - %s", "%a", SHOWS(s.FilenameFormat == "%g\\%c - %t\\%a - %s"),
     SHOWS(s.FilenameFormat == "%a")},
    {"SaveDuplicates", kBool, "True", "False", SHOWS(s.SaveDuplicates), SHOWS(!s.SaveDuplicates)},
    {"TaskBarMinimized", kBool, "True", "False", SHOWS(s.TaskBarMinimized), SHOWS(!s.TaskBarMinimized)},
    {"Integrel", kBool, "True", "False", SHOWS(s.Integrel), SHOWS(!s.Integrel)},
    {"InputDevice", kInt16, "0", "3", SHOWS(s.InputDevice == 0), SHOWS(s.InputDevice == 3)},
    {"InputDeviceId", kText, "", "usb", SHOWS(s.InputDeviceId.empty()), SHOWS(s.InputDeviceId == "usb")},
    {"AGCEnabled", kBool, "False", "True", SHOWS(!s.AGCEnabled), SHOWS(s.AGCEnabled)},
    {"AGCLowLevel", kInt16, "-10", "-60", SHOWS(s.AGCLowLevel == -10), SHOWS(s.AGCLowLevel == -60)},
    {"AGCHighLevel", kInt16, "-40", "-5", SHOWS(s.AGCHighLevel == -40), SHOWS(s.AGCHighLevel == -5)},
    {"AGCAttackTime", kInt16, "4", "120", SHOWS(s.AGCAttackTime == 4), SHOWS(s.AGCAttackTime == 120)},
    {"PortNum", kInt16, "0", "12", SHOWS(s.PortNum == 0), SHOWS(s.PortNum == 12)},
    {"Cleftune", kBool, "True", "False", SHOWS(s.Cleftune), SHOWS(!s.Cleftune)},
    {"CheckUpdatesAtStartup", kBool, "True", "False", SHOWS(s.CheckUpdatesAtStartup),
     SHOWS(!s.CheckUpdatesAtStartup)},
    {"Watch", kBool, "True", "False", SHOWS(s.Watch), SHOWS(!s.Watch)},
    {"IdleCaptureMinutes", kInt16, "60", "0", SHOWS(s.IdleCaptureMinutes == 60),
     SHOWS(s.IdleCaptureMinutes == 0)},
    {"CutPlacement", kPlacement, "Text", "Listen", SHOWS(s.CutPlacement == CutPlacement::Text),
     SHOWS(s.CutPlacement == CutPlacement::Listen)},
    {"CutOverlap", kInt16, "0", "1500", SHOWS(s.CutOverlap == 0), SHOWS(s.CutOverlap == 1500)},
    {"Hints", kBool, "False", "True", SHOWS(!s.Hints), SHOWS(s.Hints)},
    {"FollowHints", kBool, "False", "True", SHOWS(!s.FollowHints), SHOWS(s.FollowHints)},
    {"NotifySongs", kBool, "False", "True", SHOWS(!s.NotifySongs), SHOWS(s.NotifySongs)},
    {"NotifyEvents", kBool, "True", "False", SHOWS(s.NotifyEvents), SHOWS(!s.NotifyEvents)},
    {"NotifyProblems", kBool, "True", "False", SHOWS(s.NotifyProblems), SHOWS(!s.NotifyProblems)},
    {"NotifyHints", kBool, "True", "False", SHOWS(s.NotifyHints), SHOWS(!s.NotifyHints)},
    {"ShelfFolder", kText, "", "/shelf/", SHOWS(s.ShelfFolder.empty()), SHOWS(s.ShelfFolder == "/shelf/")},
    {"ShelfSongs", kInt16, "20", "0", SHOWS(s.ShelfSongs == 20), SHOWS(s.ShelfSongs == 0)},
    {"ShelfMegabytes", kInt32, "500", "1", SHOWS(s.ShelfMegabytes == 500), SHOWS(s.ShelfMegabytes == 1)},
    {"Favourites", kText, "", "44 112", SHOWS(s.Favourites.empty()), SHOWS(s.Favourites == "44 112")},
    {"FavouritesFirst", kBool, "False", "True", SHOWS(!s.FavouritesFirst), SHOWS(s.FavouritesFirst)},

    {"726_Bits", kInt16, "4", "5", SHOWS(s.Format726.Bits == 4), SHOWS(s.Format726.Bits == 5)},
    {"726_Frequency", kInt32, "44100", "48000", SHOWS(s.Format726.Frequency == 44100),
     SHOWS(s.Format726.Frequency == 48000)},

    {"MP3_ATHControl", kInt16, "0", "3", SHOWS(s.FormatMP3.ATHControl == 0),
     SHOWS(s.FormatMP3.ATHControl == 3)},
    {"MP3_Bitrate", kInt16, "160", "320", SHOWS(s.FormatMP3.Bitrate == 160),
     SHOWS(s.FormatMP3.Bitrate == 320)},
    {"MP3_", kBool, "False", "True", SHOWS(!s.FormatMP3.BitReservoir), SHOWS(s.FormatMP3.BitReservoir)},
    {"MP3_Channels", kInt16, "2", "1", SHOWS(s.FormatMP3.Channels == 2), SHOWS(s.FormatMP3.Channels == 1)},
    {"MP3_ComplyISO", kBool, "False", "True", SHOWS(!s.FormatMP3.ComplyISO), SHOWS(s.FormatMP3.ComplyISO)},
    {"MP3_DeEmphasis", kInt16, "0", "2", SHOWS(s.FormatMP3.DeEmphasis == 0),
     SHOWS(s.FormatMP3.DeEmphasis == 2)},
    {"MP3_DifferentBlockTypes", kBool, "False", "True", SHOWS(!s.FormatMP3.DifferentBlockTypes),
     SHOWS(s.FormatMP3.DifferentBlockTypes)},
    {"MP3_Frequency", kInt32, "44100", "32000", SHOWS(s.FormatMP3.Frequency == 44100),
     SHOWS(s.FormatMP3.Frequency == 32000)},
    {"MP3_HighPassFilter", kBool, "False", "True", SHOWS(!s.FormatMP3.HighPassFilter),
     SHOWS(s.FormatMP3.HighPassFilter)},
    {"MP3_HighPassFilterFreq", kInt16, "30", "80", SHOWS(s.FormatMP3.HighPassFilterFreq == 30),
     SHOWS(s.FormatMP3.HighPassFilterFreq == 80)},
    {"MP3_HighPassFilterWidth", kInt16, "5", "8", SHOWS(s.FormatMP3.HighPassFilterWidth == 5),
     SHOWS(s.FormatMP3.HighPassFilterWidth == 8)},
    {"MP3_IncludeCRC", kBool, "False", "True", SHOWS(!s.FormatMP3.IncludeCRC), SHOWS(s.FormatMP3.IncludeCRC)},
    {"MP3_LowPassFilter", kBool, "False", "True", SHOWS(!s.FormatMP3.LowPassFilter),
     SHOWS(s.FormatMP3.LowPassFilter)},
    {"MP3_LowPassFilterFreq", kInt16, "16000", "15000", SHOWS(s.FormatMP3.LowPassFilterFreq == 16000),
     SHOWS(s.FormatMP3.LowPassFilterFreq == 15000)},
    {"MP3_LowPassFilterWidth", kInt16, "500", "250", SHOWS(s.FormatMP3.LowPassFilterWidth == 500),
     SHOWS(s.FormatMP3.LowPassFilterWidth == 250)},
    {"MP3_Quality", kInt16, "4", "9", SHOWS(s.FormatMP3.Quality == 4), SHOWS(s.FormatMP3.Quality == 9)},
    {"MP3_ShortBlocks", kBool, "False", "True", SHOWS(!s.FormatMP3.ShortBlocks),
     SHOWS(s.FormatMP3.ShortBlocks)},
    {"MP3_TypeStereo", kInt16, "2", "4", SHOWS(s.FormatMP3.TypeStereo == 2),
     SHOWS(s.FormatMP3.TypeStereo == 4)},
    {"MP3_VBRCodingMethod", kInt16, "-1", "4", SHOWS(s.FormatMP3.VBRCodingMethod == -1),
     SHOWS(s.FormatMP3.VBRCodingMethod == 4)},
    {"MP3_VBREnforceMinBitRate", kBool, "False", "True", SHOWS(!s.FormatMP3.VBREnforceMinBitRate),
     SHOWS(s.FormatMP3.VBREnforceMinBitRate)},
    {"MP3_VBRHeader", kBool, "True", "False", SHOWS(s.FormatMP3.VBRHeader), SHOWS(!s.FormatMP3.VBRHeader)},
    {"MP3_VBRMaxBitrate", kInt16, "160", "256", SHOWS(s.FormatMP3.VBRMaxBitrate == 160),
     SHOWS(s.FormatMP3.VBRMaxBitrate == 256)},
    {"MP3_VBRQuality", kInt16, "4", "1", SHOWS(s.FormatMP3.VBRQuality == 4),
     SHOWS(s.FormatMP3.VBRQuality == 1)},
    {"MP3_VBRTargetBitrate", kInt16, "128", "96", SHOWS(s.FormatMP3.VBRTargetBitrate == 128),
     SHOWS(s.FormatMP3.VBRTargetBitrate == 96)},

    {"OGG_Bitrate", kInt16, "160", "256", SHOWS(s.FormatOGG.Bitrate == 160),
     SHOWS(s.FormatOGG.Bitrate == 256)},
    {"OGG_MaxBitrate", kInt16, "192", "320", SHOWS(s.FormatOGG.MaxBitrate == 192),
     SHOWS(s.FormatOGG.MaxBitrate == 320)},
    {"OGG_MinBitrate", kInt16, "128", "112", SHOWS(s.FormatOGG.MinBitrate == 128),
     SHOWS(s.FormatOGG.MinBitrate == 112)},
    {"OGG_Quality", kInt16, "4", "8", SHOWS(s.FormatOGG.Quality == 4), SHOWS(s.FormatOGG.Quality == 8)},
    {"OGG_QualityEnabled", kBool, "False", "True", SHOWS(!s.FormatOGG.QualityEnabled),
     SHOWS(s.FormatOGG.QualityEnabled)},
    {"OGG_VbrEnabled", kBool, "False", "True", SHOWS(!s.FormatOGG.VbrEnabled), SHOWS(s.FormatOGG.VbrEnabled)},

    {"RAW_Channels", kInt16, "2", "1", SHOWS(s.FormatRAW.Channels == 2), SHOWS(s.FormatRAW.Channels == 1)},
    {"RAW_Compression", kInt16, "0", "3", SHOWS(s.FormatRAW.Compression == 0),
     SHOWS(s.FormatRAW.Compression == 3)},
    {"RAW_Frequency", kInt32, "44100", "6000", SHOWS(s.FormatRAW.Frequency == 44100),
     SHOWS(s.FormatRAW.Frequency == 6000)},

    {"VOX_Frequency", kInt32, "44100", "8000", SHOWS(s.FormatVOX.Frequency == 44100),
     SHOWS(s.FormatVOX.Frequency == 8000)},

    {"WAV_Bits", kInt16, "16", "8", SHOWS(s.FormatWAV.Bits == 16), SHOWS(s.FormatWAV.Bits == 8)},
    {"WAV_Channels", kInt16, "2", "1", SHOWS(s.FormatWAV.Channels == 2), SHOWS(s.FormatWAV.Channels == 1)},
    {"WAV_Frequency", kInt32, "44100", "48000", SHOWS(s.FormatWAV.Frequency == 44100),
     SHOWS(s.FormatWAV.Frequency == 48000)},

    {"FLAC_Level", kInt16, "5", "8", SHOWS(s.FormatFLAC.Level == 5), SHOWS(s.FormatFLAC.Level == 8)},

    {"OPUS_Bitrate", kInt16, "128", "64", SHOWS(s.FormatOPUS.Bitrate == 128),
     SHOWS(s.FormatOPUS.Bitrate == 64)},
    {"OPUS_Voice", kBool, "False", "True", SHOWS(!s.FormatOPUS.Voice), SHOWS(s.FormatOPUS.Voice)},

    {"LegalAgreement", kBool, "False", "True", SHOWS(!s.LegalAgreement), SHOWS(s.LegalAgreement)},
    {"ChannelListing", kInt16, "1", "0", SHOWS(s.ChannelListing == 1), SHOWS(s.ChannelListing == 0)},
    {"RecordLog", kInt16, "0", "1", SHOWS(s.RecordLog == 0), SHOWS(s.RecordLog == 1)},
    {"KestruneNow", kInt16, "0", "1", SHOWS(s.KestruneNow == 0), SHOWS(s.KestruneNow == 1)},
    {"RecordingReport", kInt16, "0", "1", SHOWS(s.RecordingReport == 0), SHOWS(s.RecordingReport == 1)},
};
#undef SHOWS

class SettingKeysTest : public ::testing::Test {
 protected:
  [[nodiscard]] Settings Load() {
    Settings settings;
    config::LoadSettings(section_, environment_, settings);
    return settings;
  }
  void Put(std::string_view key, std::string_view value) { store_.Put("Lorimel", "Kestrune", key, value); }

  MemorySettingsStore store_;
  FakeEnvironment environment_;
  config::SettingsSection section_{store_};
};

TEST_F(SettingKeysTest, AnEmptyStoreGivesEveryDefault) {
  const Settings settings = Load();
  for (const Expected& row : kExpected) {
    EXPECT_TRUE(row.ShowsDefault(settings)) << row.Key;
    EXPECT_FALSE(row.ShowsOther(settings)) << row.Key;
  }
}

TEST_F(SettingKeysTest, EveryKeyIsReadIntoItsOwnFieldAndNoOther) {
  for (const Expected& row : kExpected) {
    MemorySettingsStore store;
    store.Put("Lorimel", "Kestrune", row.Key, row.Other);
    Settings settings;
    config::LoadSettings(config::SettingsSection(store), environment_, settings);
    for (const Expected& other : kExpected) {
      const bool changed = &other == &row;
      EXPECT_EQ(other.ShowsDefault(settings), !changed) << other.Key << " when " << row.Key << " is stored";
      EXPECT_EQ(other.ShowsOther(settings), changed) << other.Key << " when " << row.Key << " is stored";
    }
  }
}

TEST_F(SettingKeysTest, EveryKeyIsSavedUnderItsNameAsItWasRead) {
  for (const Expected& row : kExpected) {
    Put(row.Key, row.Other);
    const Settings settings = Load();
    Put(row.Key, "to be replaced");
    EXPECT_TRUE(config::SaveSetting(section_, settings, row.Key));
    EXPECT_EQ(store_.Calls.back(), std::string("save Lorimel/Kestrune/") + row.Key + "=" + row.Other);
  }
}

TEST_F(SettingKeysTest, EveryDefaultIsSavedAsItsText) {
  const Settings settings = Load();
  for (const Expected& row : kExpected) {
    EXPECT_TRUE(config::SaveSetting(section_, settings, row.Key));
    EXPECT_EQ(store_.Stored("Lorimel", "Kestrune", row.Key), row.Default) << row.Key;
  }
}

TEST_F(SettingKeysTest, EveryKeyHasItsType) {
  for (const Expected& row : kExpected) {
    const config::SettingKey* key = config::FindSettingKey(row.Key);
    ASSERT_NE(key, nullptr) << row.Key;
    EXPECT_EQ(key->Type, row.Type) << row.Key;
  }
}

TEST_F(SettingKeysTest, EveryUnreadableValueFallsBackToTheDefault) {
  for (const Expected& row : kExpected) {
    if (row.Type != kText) Put(row.Key, "no value");
  }
  const Settings settings = Load();
  for (const Expected& row : kExpected) EXPECT_TRUE(row.ShowsDefault(settings)) << row.Key;
}

TEST_F(SettingKeysTest, EveryValueOutsideItsWidthFallsBackToTheDefault) {
  for (const Expected& row : kExpected) {
    if (row.Type == kInt16) Put(row.Key, "32768");
    if (row.Type == kInt32) Put(row.Key, "2147483648");
  }
  const Settings settings = Load();
  for (const Expected& row : kExpected) EXPECT_TRUE(row.ShowsDefault(settings)) << row.Key;
}

TEST_F(SettingKeysTest, AnUnreadableValueFallsBackToTheDefaultAndNotToWhatTheRecordHeld) {
  Put("MinSongLength", "long");
  Settings settings;
  settings.MinSongLength = 99;
  config::LoadSettings(section_, environment_, settings);
  EXPECT_EQ(settings.MinSongLength, 45);
}

TEST_F(SettingKeysTest, AStoredOverlapOutOfItsRangeBecomesTheDefault) {
  for (const char* stored : {"-1", "5001", "32767"}) {
    Put("CutOverlap", stored);
    EXPECT_EQ(Load().CutOverlap, 0) << stored;
  }
  Put("CutOverlap", "5000");
  EXPECT_EQ(Load().CutOverlap, 5000);
}

TEST_F(SettingKeysTest, AStoredFlacLevelOutOfItsRangeBecomesTheDefault) {
  for (const char* stored : {"-1", "9"}) {
    Put("FLAC_Level", stored);
    EXPECT_EQ(Load().FormatFLAC.Level, 5) << stored;
  }
  Put("FLAC_Level", "0");
  EXPECT_EQ(Load().FormatFLAC.Level, 0);
}

TEST_F(SettingKeysTest, AStoredShelfOutOfItsRangeBecomesTheDefault) {
  Put("ShelfSongs", "-1");
  Put("ShelfMegabytes", "0");
  Put("ShelfFolder", "shelf");
  EXPECT_EQ(Load().ShelfSongs, 20);
  EXPECT_EQ(Load().ShelfMegabytes, 500);
  EXPECT_EQ(Load().ShelfFolder, "");
  Put("ShelfSongs", "1001");
  Put("ShelfMegabytes", "1000001");
  Put("FileDir", "/music");
  Put("ShelfFolder", "/music/");
  EXPECT_EQ(Load().ShelfSongs, 20);
  EXPECT_EQ(Load().ShelfMegabytes, 500);
  EXPECT_EQ(Load().ShelfFolder, "");
  Put("ShelfSongs", "1000");
  Put("ShelfMegabytes", "1000000");
  Put("ShelfFolder", "/disk/shelf");
  EXPECT_EQ(Load().ShelfSongs, 1000);
  EXPECT_EQ(Load().ShelfMegabytes, 1000000);
  EXPECT_EQ(Load().ShelfFolder, "/disk/shelf/");
}

TEST_F(SettingKeysTest, StoredFavouritesThatAreNoNumbersAreNone) {
  Put("Favourites", "rubbish");
  EXPECT_EQ(Load().Favourites, "");
  Put("Favourites", "112 44");
  EXPECT_EQ(Load().Favourites, "44 112");
}

TEST_F(SettingKeysTest, AStoredOpusBitRateOutOfItsRangeBecomesTheDefault) {
  for (const char* stored : {"0", "31", "257"}) {
    Put("OPUS_Bitrate", stored);
    EXPECT_EQ(Load().FormatOPUS.Bitrate, 128) << stored;
  }
  Put("OPUS_Bitrate", "32");
  EXPECT_EQ(Load().FormatOPUS.Bitrate, 32);
}

TEST_F(SettingKeysTest, TheStartReadsInTheOrderOfTheTable) {
  const Settings settings = Load();
  std::vector<std::string> expected;
  for (const Expected& row : kExpected) expected.push_back(std::string("get Lorimel/Kestrune/") + row.Key);
  EXPECT_THAT(store_.Calls, ElementsAreArray(expected));
}

TEST_F(SettingKeysTest, EachUnitReadsItsOwnSection) {
  store_.Put("Lorimel", "Kestrune", "Channel", "10");
  store_.Put("Lorimel", "Kestrune2", "Channel", "20");
  section_.SetMultiUnit("2");
  EXPECT_EQ(Load().Channel, 20);
}

TEST_F(SettingKeysTest, TheKeyOfTheBitReservoirIsTheBarePrefix) {
  Settings settings;
  settings.FormatMP3.BitReservoir = true;
  EXPECT_TRUE(config::SaveSetting(section_, settings, "MP3_"));
  EXPECT_EQ(store_.Stored("Lorimel", "Kestrune", "MP3_"), "True");
  EXPECT_TRUE(Load().FormatMP3.BitReservoir);
}

TEST_F(SettingKeysTest, ABooleanStoredAsANumberIsSavedAsAWord) {
  Put("MP3_VBRHeader", "1");
  const Settings settings = Load();
  EXPECT_TRUE(settings.FormatMP3.VBRHeader);
  EXPECT_TRUE(config::SaveSetting(section_, settings, "MP3_VBRHeader"));
  EXPECT_EQ(store_.Stored("Lorimel", "Kestrune", "MP3_VBRHeader"), "True");
}

TEST_F(SettingKeysTest, TheStoredDefaultOfTheFolderStandsForTheOneInTheMusicFolder) {
  Put("FileDir", "C:\\");
  EXPECT_EQ(Load().FileDir, "/home/user/Music/Kestrune/");
}

TEST_F(SettingKeysTest, AFolderWithoutASeparatorAtItsEndGetsOne) {
  Put("FileDir", "/srv/songs");
  EXPECT_EQ(Load().FileDir, "/srv/songs/");
}

TEST_F(SettingKeysTest, AnEmptyStoredFolderStandsForTheOneInTheMusicFolder) {
  Put("FileDir", "");
  EXPECT_EQ(Load().FileDir, "/home/user/Music/Kestrune/");
}

TEST_F(SettingKeysTest, AStoredTildeStandsForTheHomeFolder) {
  Put("FileDir", "~/songs/");
  EXPECT_EQ(Load().FileDir, "/home/user/songs/");
}

TEST_F(SettingKeysTest, AKeyIsFoundWithoutRegardToCase) {
  ASSERT_NE(config::FindSettingKey("minsonglength"), nullptr);
  EXPECT_EQ(config::FindSettingKey("MINSONGLENGTH")->Key, "MinSongLength");
  EXPECT_EQ(config::FindSettingKey("MinSongLengt"), nullptr);
  EXPECT_EQ(config::FindSettingKey(""), nullptr);
}

std::vector<std::string> KeysOf(std::string_view format) {
  std::vector<std::string> keys;
  for (const config::SettingKey& key : config::FormatKeys(format)) keys.emplace_back(key.Key);
  return keys;
}

TEST_F(SettingKeysTest, AnOptionWindowSavesItsKeysInOrder) {
  EXPECT_THAT(KeysOf("G726"), ElementsAre("726_Bits", "726_Frequency"));
  EXPECT_THAT(KeysOf("OGG"), ElementsAre("OGG_Bitrate", "OGG_MaxBitrate", "OGG_MinBitrate", "OGG_Quality",
                                         "OGG_QualityEnabled", "OGG_VbrEnabled"));
  EXPECT_THAT(KeysOf("RAW"), ElementsAre("RAW_Channels", "RAW_Compression", "RAW_Frequency"));
  EXPECT_THAT(KeysOf("VOX"), ElementsAre("VOX_Frequency"));
  EXPECT_THAT(KeysOf("WAV"), ElementsAre("WAV_Bits", "WAV_Channels", "WAV_Frequency"));
  EXPECT_THAT(KeysOf("FLAC"), ElementsAre("FLAC_Level"));
  EXPECT_THAT(KeysOf("OPUS"), ElementsAre("OPUS_Bitrate", "OPUS_Voice"));
  EXPECT_THAT(
      KeysOf("MP3"),
      ElementsAre("MP3_ATHControl", "MP3_Bitrate", "MP3_", "MP3_Channels", "MP3_ComplyISO", "MP3_DeEmphasis",
                  "MP3_DifferentBlockTypes", "MP3_Frequency", "MP3_HighPassFilter", "MP3_HighPassFilterFreq",
                  "MP3_HighPassFilterWidth", "MP3_IncludeCRC", "MP3_LowPassFilter", "MP3_LowPassFilterFreq",
                  "MP3_LowPassFilterWidth", "MP3_Quality", "MP3_ShortBlocks", "MP3_TypeStereo",
                  "MP3_VBRCodingMethod", "MP3_VBREnforceMinBitRate", "MP3_VBRHeader", "MP3_VBRMaxBitrate",
                  "MP3_VBRQuality", "MP3_VBRTargetBitrate"));
  EXPECT_THAT(KeysOf("mp3"), ElementsAre());
  EXPECT_THAT(KeysOf(""), ElementsAre());
}

TEST_F(SettingKeysTest, ASaveThatFailsSaysSo) {
  EXPECT_FALSE(config::SaveSetting(section_, Settings(), "NoSuchKey"));
  EXPECT_THAT(store_.Calls, ElementsAre());
  store_.FailWrites = true;
  EXPECT_FALSE(config::SaveSetting(section_, Settings(), "WAV_Bits"));
}

}  // namespace
}  // namespace kestrune::test
