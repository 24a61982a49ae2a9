#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingChanges.h"
#include "config/settings/SettingKeys.h"
#include "support/MemorySettingsStore.h"

namespace kestrune::test {
namespace {

using config::SettingOutcome;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SettingChangesTest : public ::testing::Test {
 protected:
  void Refused(std::string_view key, std::string_view value, std::string_view refusal) {
    const config::Settings before = settings_;
    const SettingOutcome outcome = changes_.Set(key, value);
    EXPECT_FALSE(outcome.Done());
    EXPECT_EQ(outcome.Refusal, refusal);
    EXPECT_FALSE(outcome.FormatChanged);
    EXPECT_EQ(settings_, before);
    EXPECT_THAT(store_.Calls, IsEmpty());
  }
  void Done(std::string_view key, std::string_view value, const std::string& saved) {
    store_.Calls.clear();
    const SettingOutcome outcome = changes_.Set(key, value);
    EXPECT_EQ(outcome.Refusal, "");
    EXPECT_TRUE(outcome.Saved);
    EXPECT_THAT(store_.Calls, ElementsAre("save Lorimel/Kestrune/" + saved));
  }

  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  config::Settings settings_;
  std::vector<std::string> formatsAtStop_;
  config::SettingChanges changes_{settings_, section_,
                                  [this] { formatsAtStop_.push_back(settings_.FileFormat); }};
};

TEST_F(SettingChangesTest, GetGivesTheLiveValueWithoutRegardToCase) {
  settings_.MinSongLength = 47;
  EXPECT_EQ(changes_.Get("MinSongLength"), "47");
  EXPECT_EQ(changes_.Get("minsonglength"), "47");
  EXPECT_EQ(changes_.Get("mp3_"), "False");
  EXPECT_EQ(changes_.Get("FilenameFormat"), "%g\\%c - %t\\%a - %s");
  EXPECT_EQ(changes_.Get("PortNum"), "0");
}

TEST_F(SettingChangesTest, GetAnswersForEveryKey) {
  for (const config::SettingKey& key : config::SettingKeys()) {
    EXPECT_TRUE(changes_.Get(key.Key).has_value()) << key.Key;
  }
}

TEST_F(SettingChangesTest, GetOfAnUnknownKeyGivesNothing) {
  EXPECT_FALSE(changes_.Get("NoSuchKey").has_value());
  EXPECT_FALSE(changes_.Get("").has_value());
}

TEST_F(SettingChangesTest, ANumberIsTakenOverAndStored) {
  Done("maxsonglength", "900", "MaxSongLength=900");
  EXPECT_EQ(settings_.MaxSongLength, 900);
}

TEST_F(SettingChangesTest, ABooleanIsTakenFromAWordOrANumber) {
  Done("SaveDuplicates", "false", "SaveDuplicates=False");
  EXPECT_FALSE(settings_.SaveDuplicates);
  Done("SaveDuplicates", "1", "SaveDuplicates=True");
  EXPECT_TRUE(settings_.SaveDuplicates);
}

TEST_F(SettingChangesTest, TheSettingsOfTheMainWindowAreStoredAtOnce) {
  Done("Integrel", "False", "Integrel=False");
  Done("Cleftune", "False", "Cleftune=False");
  Done("RadioOnAtExit", "True", "RadioOnAtExit=True");
  Done("CheckUpdatesAtStartup", "False", "CheckUpdatesAtStartup=False");
  EXPECT_FALSE(settings_.Integrel);
  EXPECT_FALSE(settings_.Cleftune);
  EXPECT_TRUE(settings_.RadioOnAtExit);
  EXPECT_FALSE(settings_.CheckUpdatesAtStartup);
}

TEST_F(SettingChangesTest, TheListSwitchesAreStoredAtExitOnly) {
  EXPECT_TRUE(changes_.Set("SievanceGrab", "1").Done());
  EXPECT_TRUE(changes_.Set("SievanceKill", "1").Done());
  EXPECT_EQ(settings_.SievanceGrab, 1);
  EXPECT_EQ(settings_.SievanceKill, 1);
  EXPECT_THAT(store_.Calls, IsEmpty());
}

TEST_F(SettingChangesTest, AListSwitchIsZeroOrOne) {
  Refused("SievanceGrab", "2", "SievanceGrab: \"2\" is neither 0 nor 1");
  Refused("SievanceKill", "-1", "SievanceKill: \"-1\" is neither 0 nor 1");
}

TEST_F(SettingChangesTest, AnUnknownKeyIsRefused) {
  Refused("NoSuchKey", "1", "There is no setting \"NoSuchKey\"");
  Refused("Bad\nKey", "1", "There is no setting \"Bad Key\"");
}

TEST_F(SettingChangesTest, WhatFollowsFromSomethingElseIsRefused) {
  Refused("channel", "7",
          "Channel cannot be set to \"7\": it is the tuned channel, which the command tune changes");
  for (const char* key :
       {"Channel", "PortNum", "LegalAgreement", "ChannelListing", "RecordLog", "KestruneNow"}) {
    EXPECT_THAT(changes_.Set(key, "1").Refusal, HasSubstr(std::string(key) + " cannot be set to \"1\": "));
  }
  EXPECT_EQ(settings_, config::Settings());
}

TEST_F(SettingChangesTest, AValueThatIsNoNumberIsRefused) {
  Refused("AGCAttackTime", "soon", "AGCAttackTime: \"soon\" is no number from -32768 to 32767");
  Refused("AGCAttackTime", "", "AGCAttackTime: \"\" is no number from -32768 to 32767");
  Refused("AGCAttackTime", "1\n2", "AGCAttackTime: \"1 2\" is no number from -32768 to 32767");
}

TEST_F(SettingChangesTest, AValueOutsideTheWidthIsRefused) {
  Refused("InputDevice", "32768", "InputDevice: \"32768\" is no number from -32768 to 32767");
  Refused("WAV_Frequency", "2147483648",
          "WAV_Frequency: \"2147483648\" is no number from -2147483648 to 2147483647");
}

TEST_F(SettingChangesTest, AWordThatIsNoBooleanIsRefused) {
  Refused("Integrel", "maybe", "Integrel: \"maybe\" is neither True nor False");
}

TEST_F(SettingChangesTest, ATextWithAControlCharacterIsRefused) {
  Refused("FilenameFormat", "%a\n%s", "FilenameFormat: \"%a %s\" holds a control character");
  Refused("FileDir", "/srv/\x01songs", "FileDir: \"/srv/ songs\" holds a control character");
}

TEST_F(SettingChangesTest, TheMinimumMustBeLessThanTheMaximum) {
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

TEST_F(SettingChangesTest, TheSongDelayLosesItsSign) {
  Done("SongDelay", "-650", "SongDelay=650");
  EXPECT_EQ(settings_.SongDelay, 650);
  Done("SongDelay", "-32767", "SongDelay=32767");
  Done("SongDelay", "0", "SongDelay=0");
}

TEST_F(SettingChangesTest, ASongDelayWithoutAnAbsoluteValueIsRefused) {
  Refused("SongDelay", "-32768", "SongDelay: \"-32768\" is not from -32767 to 32767");
}

TEST_F(SettingChangesTest, TheFolderGetsItsSeparator) {
  Done("FileDir", "/srv/songs", "FileDir=/srv/songs/");
  EXPECT_EQ(settings_.FileDir, "/srv/songs/");
  Done("FileDir", "/srv/songs/", "FileDir=/srv/songs/");
}

TEST_F(SettingChangesTest, AFolderThatDoesNotBeginAtTheRootIsRefused) {
  Refused("FileDir", "songs", "FileDir: \"songs\" is no folder that begins with /");
  Refused("FileDir", "", "FileDir: \"\" is no folder that begins with /");
}

TEST_F(SettingChangesTest, TheFilenameFormatIsCleaned) {
  Done("FilenameFormat", "/ %a: %s /*", "FilenameFormat=%a %s");
  EXPECT_EQ(settings_.FilenameFormat, "%a %s");
}

TEST_F(SettingChangesTest, EachOfTheSixFormatsIsTaken) {
  for (const char* code : {"OGG", "WAV", "RAW", "VOX", "G726", "MP3"}) {
    Done("FileFormat", code, std::string("FileFormat=") + code);
    EXPECT_EQ(settings_.FileFormat, code);
  }
  EXPECT_THAT(formatsAtStop_, ElementsAre("MP3", "OGG", "WAV", "RAW", "VOX", "G726"));
}

TEST_F(SettingChangesTest, AnUnknownFormatIsRefusedAndStopsNothing) {
  Refused("FileFormat", "mp3", "FileFormat: \"mp3\" is not one of MP3, WAV, VOX, RAW, G726, OGG");
  EXPECT_THAT(formatsAtStop_, IsEmpty());
}

TEST_F(SettingChangesTest, AnotherFormatStopsTheRecordingBeforeItIsStored) {
  const SettingOutcome outcome = changes_.Set("FileFormat", "WAV");
  EXPECT_TRUE(outcome.FormatChanged);
  EXPECT_THAT(formatsAtStop_, ElementsAre("MP3"));
  EXPECT_EQ(settings_.FileFormat, "WAV");
}

TEST_F(SettingChangesTest, TheSameFormatStopsNothing) {
  const SettingOutcome outcome = changes_.Set("FileFormat", "MP3");
  EXPECT_TRUE(outcome.Done());
  EXPECT_FALSE(outcome.FormatChanged);
  EXPECT_THAT(formatsAtStop_, IsEmpty());
}

TEST_F(SettingChangesTest, WhatTheStopChangesIsNotTakenBack) {
  config::SettingChanges changes(settings_, section_, [this] { settings_.MinSongLength = 30; });
  EXPECT_TRUE(changes.Set("FileFormat", "OGG").Done());
  EXPECT_EQ(settings_.MinSongLength, 30);
  EXPECT_EQ(settings_.FileFormat, "OGG");
}

TEST_F(SettingChangesTest, AFieldOfAFormatRecordAsksForAFreshPreparation) {
  EXPECT_TRUE(changes_.Set("MP3_Bitrate", "320").FormatChanged);
  EXPECT_TRUE(changes_.Set("726_Bits", "2").FormatChanged);
  EXPECT_FALSE(changes_.Set("SongDelay", "700").FormatChanged);
  EXPECT_EQ(settings_.FormatMP3.Bitrate, 320);
  EXPECT_THAT(formatsAtStop_, IsEmpty());
}

TEST_F(SettingChangesTest, AStoreThatCannotBeWrittenIsTold) {
  store_.FailWrites = true;
  const SettingOutcome outcome = changes_.Set("SongDelay", "700");
  EXPECT_TRUE(outcome.Done());
  EXPECT_FALSE(outcome.Saved);
  EXPECT_EQ(settings_.SongDelay, 700);
}

}  // namespace
}  // namespace kestrune::test
