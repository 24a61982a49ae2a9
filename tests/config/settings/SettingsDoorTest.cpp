#include <string>
#include <vector>

#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/formats/FormatTable.h"
#include "config/settings/SettingKeys.h"
#include "config/settings/SettingsDoor.h"
#include "support/SettingsRig.h"

namespace kestrune::test {
namespace {

using config::SettingOutcome;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SettingsDoorTest : public ::testing::Test {
 protected:
  void Refused(std::string_view key, std::string_view value, std::string_view refusal) {
    const config::Settings before = rig_.Settings;
    const SettingOutcome outcome = door_.Set(key, value);
    EXPECT_FALSE(outcome.Done());
    EXPECT_EQ(outcome.Refusal, refusal);
    EXPECT_EQ(rig_.Settings, before);
    EXPECT_THAT(rig_.Store.Calls, IsEmpty());
    EXPECT_THAT(rig_.Effects, IsEmpty());
  }
  void Done(std::string_view key, std::string_view value, const std::string& saved) {
    rig_.Store.Calls.clear();
    const SettingOutcome outcome = door_.Set(key, value);
    EXPECT_EQ(outcome.Refusal, "");
    EXPECT_TRUE(outcome.Saved);
    EXPECT_THAT(rig_.Saves(), ElementsAre(saved));
  }

  SettingsRig rig_;
  config::SettingsDoor& door_ = rig_.Door;
  config::Settings& settings_ = rig_.Settings;
};

/// A value of the key that differs from the present one and passes its check.
std::string OtherValue(const config::SettingKey& key, const config::Settings& settings) {
  if (key.Key == "FileDir") return "/srv/songs/";
  if (key.Key == "ShelfFolder") return "/srv/shelf/";
  if (key.Key == "FileFormat") return "VOX";
  if (key.Key == "Favourites") return "44 112";
  if (key.Key == "MaxSongLength") return "900";
  if (key.Key == "OPUS_Bitrate") return "64";
  switch (key.Type) {
    case config::SettingType::Bool:
      return key.Text(settings) == "True" ? "False" : "True";
    case config::SettingType::CutPlacement:
      return key.Text(settings) == "Text" ? "Listen" : "Text";
    case config::SettingType::Text:
      return "%a";
    default:
      return key.Text(settings) == "1" ? "0" : "1";
  }
}

config::Settings With(const config::SettingKey& key, std::string_view value, config::Settings settings) {
  EXPECT_TRUE(key.Read(settings, value)) << key.Key;
  return settings;
}

TEST(SettingsDoor, EveryKeyIsChangedByACommandOrRefusedAsOneThatFollowsFromSomethingElse) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    SettingsRig rig;
    rig.Settings.FileDir = "/music/";
    const config::Settings before = rig.Settings;
    const std::string value = OtherValue(key, before);
    const SettingOutcome outcome = rig.Door.Set(key.Key, value);
    EXPECT_EQ(outcome.Done(), key.FollowsFrom.empty()) << key.Key;
    EXPECT_EQ(rig.Settings, outcome.Done() ? With(key, value, before) : before) << key.Key;
    const bool stored = outcome.Done() && key.Stored == config::SettingStored::AtOnce;
    EXPECT_EQ(rig.Stored(key.Key), stored ? value : "(absent)") << key.Key;
  }
}

TEST(SettingsDoor, EveryKeyIsChangedByTheProgramAndNoOther) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    SettingsRig rig;
    rig.Settings.FileDir = "/music/";
    const std::string value = OtherValue(key, rig.Settings);
    const config::Settings expected = With(key, value, rig.Settings);
    // Whatever else differs in the wished record is left alone.
    config::Settings wished = expected;
    for (const config::SettingKey& other : config::SettingKeys()) {
      if (&other != &key) wished = With(other, OtherValue(other, wished), wished);
    }
    EXPECT_TRUE(rig.Door.Change(wished, {key.Key}).Done()) << key.Key;
    EXPECT_EQ(rig.Settings, expected) << key.Key;
    const bool atOnce = key.Stored == config::SettingStored::AtOnce;
    EXPECT_EQ(rig.Stored(key.Key), atOnce ? value : "(absent)") << key.Key;
    EXPECT_TRUE(rig.Door.SaveAtExit());
    EXPECT_EQ(rig.Stored(key.Key), value) << key.Key;
  }
}

TEST(SettingsDoor, EveryKeyCanBeChangedForThisRunAlone) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    SettingsRig rig;
    rig.Settings.FileDir = "/music/";
    const std::string value = OtherValue(key, rig.Settings);
    const config::Settings wished = With(key, value, rig.Settings);
    EXPECT_TRUE(rig.Door.Change(wished, {key.Key}, config::SettingLife::ThisRun).Done());
    EXPECT_EQ(rig.Settings, wished) << key.Key;
    EXPECT_THAT(rig.Saves(), IsEmpty()) << key.Key;
  }
}

TEST(SettingsDoor, EveryKeyHasItsEffectAndNoOther) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    SettingsRig rig;
    rig.Settings.FileDir = "/music/";
    const std::string value = OtherValue(key, rig.Settings);
    const config::Settings wished = With(key, value, rig.Settings);
    EXPECT_TRUE(rig.Door.Change(wished, {key.Key}).Done());
    if (key.Key == "FileFormat") {
      EXPECT_THAT(rig.Effects, ElementsAre("stop MP3", "prepare"));
    } else if (key.Key.find('_') != std::string_view::npos) {
      EXPECT_THAT(rig.Effects, ElementsAre("prepare")) << key.Key;
    } else if (key.Key == "InputDevice") {
      EXPECT_THAT(rig.Effects, ElementsAre("device"));
    } else {
      EXPECT_THAT(rig.Effects, IsEmpty()) << key.Key;
    }
    rig.Effects.clear();
    EXPECT_TRUE(rig.Door.Change(wished, {key.Key}).Done());
    EXPECT_THAT(rig.Effects, IsEmpty()) << key.Key << " as it was";
  }
}

TEST_F(SettingsDoorTest, AtExitTheRestIsStoredInTheOrderOfTheTable) {
  settings_.Channel = 7;
  settings_.SievanceGrab = 1;
  settings_.PortNum = 12;
  EXPECT_TRUE(door_.SaveAtExit());
  EXPECT_THAT(rig_.Saves(), ElementsAre("Channel=7", "SievanceGrab=1", "SievanceKill=0", "PortNum=12"));
}

TEST_F(SettingsDoorTest, AFormatRecordIsChangedAsAWhole) {
  config::Settings wished = settings_;
  wished.FormatWAV = {.Frequency = 8000, .Channels = 1, .Bits = 8};
  wished.FormatVOX.Frequency = 8000;
  EXPECT_TRUE(door_.ChangeFormat(wished, "WAV").Saved);
  EXPECT_THAT(rig_.Saves(), ElementsAre("WAV_Bits=8", "WAV_Channels=1", "WAV_Frequency=8000"));
  EXPECT_EQ(settings_.FormatWAV, wished.FormatWAV);
  EXPECT_EQ(settings_.FormatVOX, config::FormatVOX());
  EXPECT_THAT(rig_.Effects, IsEmpty());
}

TEST_F(SettingsDoorTest, OneRefusedSettingLeavesAllAsTheyWere) {
  const config::Settings before = settings_;
  config::Settings wished = settings_;
  wished.MinSongLength = 20;
  wished.FileDir = "songs";
  const SettingOutcome outcome = door_.Change(wished, {"MinSongLength", "FileDir"});
  EXPECT_EQ(outcome.Key, "FileDir");
  EXPECT_EQ(settings_, before);
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

TEST_F(SettingsDoorTest, GetGivesTheLiveValueWithoutRegardToCase) {
  settings_.MinSongLength = 47;
  EXPECT_EQ(door_.Get("MinSongLength"), "47");
  EXPECT_EQ(door_.Get("minsonglength"), "47");
  EXPECT_EQ(door_.Get("mp3_"), "False");
  EXPECT_EQ(door_.Get("FilenameFormat"), "%g\\%c - %t\\%a - %s");
  EXPECT_EQ(door_.Get("PortNum"), "0");
}

TEST_F(SettingsDoorTest, GetAnswersForEveryKey) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    EXPECT_TRUE(door_.Get(key.Key).has_value()) << key.Key;
  }
}

TEST_F(SettingsDoorTest, GetOfAnUnknownKeyGivesNothing) {
  EXPECT_FALSE(door_.Get("NoSuchKey").has_value());
  EXPECT_FALSE(door_.Get("").has_value());
}

TEST_F(SettingsDoorTest, ANumberIsTakenOverAndStored) {
  Done("maxsonglength", "900", "MaxSongLength=900");
  EXPECT_EQ(settings_.MaxSongLength, 900);
}

TEST_F(SettingsDoorTest, ABooleanIsTakenFromAWordOrANumber) {
  Done("SaveDuplicates", "false", "SaveDuplicates=False");
  EXPECT_FALSE(settings_.SaveDuplicates);
  Done("SaveDuplicates", "1", "SaveDuplicates=True");
  EXPECT_TRUE(settings_.SaveDuplicates);
}

TEST_F(SettingsDoorTest, TheSettingsOfTheMainWindowAreStoredAtOnce) {
  Done("Integrel", "False", "Integrel=False");
  Done("Cleftune", "False", "Cleftune=False");
  Done("RadioOnAtExit", "True", "RadioOnAtExit=True");
  Done("CheckUpdatesAtStartup", "False", "CheckUpdatesAtStartup=False");
  EXPECT_FALSE(settings_.Integrel);
  EXPECT_FALSE(settings_.Cleftune);
  EXPECT_TRUE(settings_.RadioOnAtExit);
  EXPECT_FALSE(settings_.CheckUpdatesAtStartup);
}

TEST_F(SettingsDoorTest, TheListSwitchesAreStoredAtExitOnly) {
  EXPECT_TRUE(door_.Set("SievanceGrab", "1").Done());
  EXPECT_TRUE(door_.Set("SievanceKill", "1").Done());
  EXPECT_EQ(settings_.SievanceGrab, 1);
  EXPECT_EQ(settings_.SievanceKill, 1);
  EXPECT_THAT(rig_.Store.Calls, IsEmpty());
}

TEST_F(SettingsDoorTest, AListSwitchIsZeroOrOne) {
  Refused("SievanceGrab", "2", "SievanceGrab: \"2\" is neither 0 nor 1");
  Refused("SievanceKill", "-1", "SievanceKill: \"-1\" is neither 0 nor 1");
}

TEST_F(SettingsDoorTest, AnUnknownKeyIsRefused) {
  Refused("NoSuchKey", "1", "There is no setting \"NoSuchKey\"");
  Refused("Bad\nKey", "1", "There is no setting \"Bad Key\"");
}

TEST_F(SettingsDoorTest, WhatFollowsFromSomethingElseIsRefused) {
  Refused("channel", "7",
          "Channel cannot be set to \"7\": it is the tuned channel, which the command tune changes");
  for (const char* key : {"Channel", "PortNum", "InputDeviceId", "LegalAgreement", "ChannelListing",
                          "RecordLog", "KestruneNow", "RecordingReport"}) {
    EXPECT_THAT(door_.Set(key, "1").Refusal, HasSubstr(std::string(key) + " cannot be set to \"1\": "));
  }
  EXPECT_EQ(settings_, config::Settings());
}

TEST_F(SettingsDoorTest, AValueThatIsNoNumberIsRefused) {
  Refused("AGCAttackTime", "soon", "AGCAttackTime: \"soon\" is no number from -32768 to 32767");
  Refused("AGCAttackTime", "", "AGCAttackTime: \"\" is no number from -32768 to 32767");
  Refused("AGCAttackTime", "1\n2", "AGCAttackTime: \"1 2\" is no number from -32768 to 32767");
}

TEST_F(SettingsDoorTest, AValueOutsideTheWidthIsRefused) {
  Refused("InputDevice", "32768", "InputDevice: \"32768\" is no number from -32768 to 32767");
  Refused("WAV_Frequency", "2147483648",
          "WAV_Frequency: \"2147483648\" is no number from -2147483648 to 2147483647");
}

TEST_F(SettingsDoorTest, AWordThatIsNoBooleanIsRefused) {
  Refused("Integrel", "maybe", "Integrel: \"maybe\" is neither True nor False");
}

TEST_F(SettingsDoorTest, ATextWithAControlCharacterIsRefused) {
  Refused("FilenameFormat", "%a\n%s", "FilenameFormat: \"%a %s\" holds a control character");
  Refused("FileDir", "/srv/\x01songs", "FileDir: \"/srv/ songs\" holds a control character");
}

TEST_F(SettingsDoorTest, TheMinimumMustBeLessThanTheMaximum) {
  settings_.MinSongLength = 45;
  settings_.MaxSongLength = 120;
  Refused("MinSongLength", "120",
          "MinSongLength: \"120\" is refused. Minimum song length must be less than maximum song length; now "
          "120 and 120, 0 for no maximum");
  Refused(
      "MaxSongLength", "45",
      "MaxSongLength: \"45\" is refused. Minimum song length must be less than maximum song length; now 45 "
      "and 45, 0 for no maximum");
  Done("MaxSongLength", "46", "MaxSongLength=46");
  Done("MaxSongLength", "0", "MaxSongLength=0");
  Done("MinSongLength", "500", "MinSongLength=500");
}

TEST_F(SettingsDoorTest, TheSongDelayLosesItsSign) {
  Done("SongDelay", "-650", "SongDelay=650");
  EXPECT_EQ(settings_.SongDelay, 650);
  Done("SongDelay", "-32767", "SongDelay=32767");
  Done("SongDelay", "0", "SongDelay=0");
}

TEST_F(SettingsDoorTest, ASongDelayWithoutAnAbsoluteValueIsRefused) {
  Refused("SongDelay", "-32768", "SongDelay: \"-32768\" is not from -32767 to 32767");
}

TEST_F(SettingsDoorTest, TheMinutesOfAnIdleCaptureAreNotNegative) {
  Refused("IdleCaptureMinutes", "-1", "IdleCaptureMinutes: \"-1\" is not from 0 to 32767");
  Done("IdleCaptureMinutes", "0", "IdleCaptureMinutes=0");
}

TEST_F(SettingsDoorTest, TheCutIsPlacedByTextOrByListening) {
  Refused("CutPlacement", "both", "CutPlacement: \"both\" is neither Text nor Listen");
  Refused("CutPlacement", "", "CutPlacement: \"\" is neither Text nor Listen");
  Refused("CutPlacement", "Listen\n", "CutPlacement: \"Listen \" is neither Text nor Listen");
  Done("CutPlacement", "Listen", "CutPlacement=Listen");
  EXPECT_EQ(settings_.CutPlacement, config::CutPlacement::Listen);
  EXPECT_EQ(door_.Get("cutplacement"), "Listen");
  Done("CutPlacement", "text", "CutPlacement=Text");
  EXPECT_EQ(settings_.CutPlacement, config::CutPlacement::Text);
}

TEST_F(SettingsDoorTest, TheShelfHasBoundsAndAFolderOfItsOwn) {
  Refused("ShelfSongs", "-1", "ShelfSongs: \"-1\" is not from 0 to 1000");
  Refused("ShelfSongs", "1001", "ShelfSongs: \"1001\" is not from 0 to 1000");
  Refused("ShelfMegabytes", "0", "ShelfMegabytes: \"0\" is not from 1 to 1000000");
  Refused("ShelfMegabytes", "1000001", "ShelfMegabytes: \"1000001\" is not from 1 to 1000000");
  Refused("ShelfFolder", "shelf", "ShelfFolder: \"shelf\" is not a folder that begins with / or ~/");
  settings_.FileDir = "/music/";
  Refused("ShelfFolder", "/music",
          "ShelfFolder: \"/music\" is the folder of recordings; the shelf needs one of its own");
  settings_.ShelfFolder = "/disk/shelf/";
  Refused("FileDir", "/disk/shelf",
          "FileDir: \"/disk/shelf\" is the folder of the shelf; recordings need one of their own");
  Done("ShelfSongs", "1000", "ShelfSongs=1000");
  Done("ShelfSongs", "0", "ShelfSongs=0");
  Done("ShelfMegabytes", "1000000", "ShelfMegabytes=1000000");
  Done("ShelfFolder", "/disk/shelf", "ShelfFolder=/disk/shelf/");
  Done("ShelfFolder", "", "ShelfFolder=");
}

TEST_F(SettingsDoorTest, FavouritesAreNumbersOfChannelsInTheirOrder) {
  Refused("Favourites", "44, 45", "Favourites: \"44, 45\" is not a list of numbers from 0 to 255");
  Refused("Favourites", "256", "Favourites: \"256\" is not a list of numbers from 0 to 255");
  Refused("Favourites", "-1", "Favourites: \"-1\" is not a list of numbers from 0 to 255");
  Done("Favourites", " 112  44 044", "Favourites=44 112");
  Done("Favourites", " ", "Favourites=");
}

TEST_F(SettingsDoorTest, TheOverlapIsFiveSecondsAtMost) {
  Refused("CutOverlap", "-1", "CutOverlap: \"-1\" is not from 0 to 5000");
  Refused("CutOverlap", "5001", "CutOverlap: \"5001\" is not from 0 to 5000");
  Done("CutOverlap", "5000", "CutOverlap=5000");
  Done("CutOverlap", "0", "CutOverlap=0");
}

TEST_F(SettingsDoorTest, TheFlacLevelIsEightAtMost) {
  Refused("FLAC_Level", "-1", "FLAC_Level: \"-1\" is not from 0 to 8");
  Refused("FLAC_Level", "9", "FLAC_Level: \"9\" is not from 0 to 8");
  Done("FLAC_Level", "8", "FLAC_Level=8");
  Done("FLAC_Level", "0", "FLAC_Level=0");
}

TEST_F(SettingsDoorTest, TheOpusBitRateIsFrom32To256) {
  Refused("OPUS_Bitrate", "31", "OPUS_Bitrate: \"31\" is not from 32 to 256");
  Refused("OPUS_Bitrate", "257", "OPUS_Bitrate: \"257\" is not from 32 to 256");
  Done("OPUS_Bitrate", "32", "OPUS_Bitrate=32");
  Done("OPUS_Bitrate", "256", "OPUS_Bitrate=256");
}

TEST_F(SettingsDoorTest, TheFolderGetsItsSeparator) {
  Done("FileDir", "/srv/songs", "FileDir=/srv/songs/");
  EXPECT_EQ(settings_.FileDir, "/srv/songs/");
  Done("FileDir", "/srv/songs/", "FileDir=/srv/songs/");
}

TEST_F(SettingsDoorTest, AnEmptyFolderIsRefused) {
  Refused("FileDir", "", "FileDir: \"\" is empty; a folder begins with / or ~/");
}

TEST_F(SettingsDoorTest, AFolderThatDoesNotBeginAtTheRootIsRefused) {
  Refused("FileDir", "songs", "FileDir: \"songs\" is not a folder that begins with / or ~/");
  Refused("FileDir", " ", "FileDir: \" \" is not a folder that begins with / or ~/");
  Refused("FileDir", "~guest/songs", "FileDir: \"~guest/songs\" is not a folder that begins with / or ~/");
  Refused("FileDir", "../songs", "FileDir: \"../songs\" is not a folder that begins with / or ~/");
}

TEST_F(SettingsDoorTest, ATildeAtTheBeginningIsTheHomeFolder) {
  Done("FileDir", "~", "FileDir=/home/user/");
  Done("FileDir", "~/Music", "FileDir=/home/user/Music/");
  Done("FileDir", "/srv/~/Music/", "FileDir=/srv/~/Music/");
  rig_.Environment.Variables.erase("userprofile");
  EXPECT_EQ(door_.Set("FileDir", "~/Music").Refusal,
            "FileDir: \"~/Music\" needs the home folder, which is not known");
}

TEST_F(SettingsDoorTest, AFolderThatCannotBeWrittenToIsRefusedToACommand) {
  rig_.Files.MakeFolders("/mnt/archive");
  rig_.Files.MakeUnwritable("/mnt/archive");
  Refused("FileDir", "/mnt/archive", "FileDir: \"/mnt/archive\" cannot be written to: Permission denied");
  Refused("FileDir", "/mnt/archive/new",
          "FileDir: \"/mnt/archive/new\" cannot be written to: Permission denied");
  Done("FileDir", "/mnt/other", "FileDir=/mnt/other/");
}

TEST_F(SettingsDoorTest, AFolderThatCannotBeWrittenToIsTakenFromAWindowWithAWarning) {
  rig_.Files.MakeFolders("/mnt/archive");
  rig_.Files.MakeUnwritable("/mnt/archive");
  config::Settings wished = settings_;
  wished.FileDir = "/mnt/archive/new";
  const SettingOutcome outcome = door_.Change(wished, {"FileDir"});
  EXPECT_TRUE(outcome.Done());
  EXPECT_EQ(outcome.Warning, "Nothing can be recorded to /mnt/archive/new/: Permission denied");
  EXPECT_THAT(rig_.Journal.Log, ElementsAre(outcome.Warning));
  EXPECT_EQ(rig_.Stored("FileDir"), "/mnt/archive/new/");
  EXPECT_EQ(door_.Change(wished, {"FileDir"}).Warning, outcome.Warning) << "each time that it is set";
  EXPECT_EQ(door_.Change(wished, {"SongDelay"}).Warning, "");
}

TEST_F(SettingsDoorTest, TheFilenameFormatIsCleaned) {
  Done("FilenameFormat", "/ %a: %s /*", "FilenameFormat=%a %s");
  EXPECT_EQ(settings_.FilenameFormat, "%a %s");
}

TEST_F(SettingsDoorTest, EachFormatIsTaken) {
  for (const char* code : {"OGG", "WAV", "RAW", "VOX", "G726", "FLAC", "OPUS", "MP3"}) {
    Done("FileFormat", code, std::string("FileFormat=") + code);
    EXPECT_EQ(settings_.FileFormat, code);
  }
  EXPECT_EQ(rig_.Stops(), 8);
}

TEST_F(SettingsDoorTest, AnUnknownFormatIsRefusedAndStopsNothing) {
  Refused("FileFormat", "mp3",
          fmt::format("FileFormat: \"mp3\" is not one of {}", fmt::join(config::FileFormats(), ", ")));
}

TEST_F(SettingsDoorTest, WhatTheStopChangesIsNotTakenBack) {
  config::SettingsDoor door({.Settings = settings_,
                             .Section = rig_.Section,
                             .Environment = rig_.Environment,
                             .Files = rig_.Files,
                             .Log = rig_.Journal},
                            {.StopRecording = [this] { settings_.MinSongLength = 30; }});
  EXPECT_TRUE(door.Set("FileFormat", "OGG").Done());
  EXPECT_EQ(settings_.MinSongLength, 30);
  EXPECT_EQ(settings_.FileFormat, "OGG");
}

TEST_F(SettingsDoorTest, WhatTheStopRecordsStillGoesToTheNewFolder) {
  std::string folderAtStop;
  config::SettingsDoor door({.Settings = settings_,
                             .Section = rig_.Section,
                             .Environment = rig_.Environment,
                             .Files = rig_.Files,
                             .Log = rig_.Journal},
                            {.StopRecording = [&] { folderAtStop = settings_.FileDir; }});
  config::Settings wished = settings_;
  wished.FileDir = "/srv/songs";
  wished.FileFormat = "OGG";
  EXPECT_TRUE(door.Change(wished, {"FileDir", "FileFormat"}).Done());
  EXPECT_EQ(folderAtStop, "/srv/songs/");
}

TEST_F(SettingsDoorTest, AStoreThatCannotBeWrittenIsReportedAndLoggedOnce) {
  rig_.Store.FailWrites = true;
  const SettingOutcome outcome = door_.Set("SongDelay", "700");
  EXPECT_TRUE(outcome.Done());
  EXPECT_FALSE(outcome.Saved);
  EXPECT_EQ(settings_.SongDelay, 700);
  EXPECT_THAT(rig_.Journal.Log, ElementsAre("The settings could not be saved"));

  rig_.Journal.Log.clear();
  rig_.Store.Calls.clear();
  EXPECT_FALSE(door_.ChangeFormat(settings_, "WAV").Saved);
  EXPECT_EQ(rig_.Saves().size(), 3U) << "the other keys are tried";
  EXPECT_FALSE(door_.SaveAtExit());
  EXPECT_EQ(rig_.Journal.Log.size(), 2U);
}

}  // namespace
}  // namespace kestrune::test
