#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/TransferSettings.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/MemorySettingsStore.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

// clang-format off
constexpr const char* kKeys[] = {
    "AdsVisible",
    "BigFormHeight",
    "BigFormLeft",
    "BigFormTop",
    "BigFormWidth",
    "BitRate",
    "Channel",
    "ChannelHeight",
    "ChannelLeft",
    "ChannelTop",
    "ConfigLeft",
    "ConfigTop",
    "DateSelectLeft",
    "DateSelectTop",
    "FileDir",
    "FileFormat",
    "FilenameFormat",
    "InputDevice",
    "LegalAgreement",
    "LogHeight",
    "LogLeft",
    "LogTop",
    "LogWidth",
    "MainLeft",
    "MainTop",
    "SievanceGrab",
    "SievanceKill",
    "MaxSongLength",
    "MinSongLength",
    "Integrel",
    "PortNum",
    "Preset1",
    "Preset10",
    "Preset11",
    "Preset12",
    "Preset2",
    "Preset3",
    "Preset4",
    "Preset5",
    "Preset6",
    "Preset7",
    "Preset8",
    "Preset9",
    "PresetLeft",
    "PresetTop",
    "RestrictListLeft",
    "RestrictListTop",
    "SaveDuplicates",
    "ScheduleChannel1",
    "ScheduleChannel10",
    "ScheduleChannel2",
    "ScheduleChannel3",
    "ScheduleChannel4",
    "ScheduleChannel5",
    "ScheduleChannel6",
    "ScheduleChannel7",
    "ScheduleChannel8",
    "ScheduleChannel9",
    "ScheduleDuration1",
    "ScheduleDuration10",
    "ScheduleDuration2",
    "ScheduleDuration3",
    "ScheduleDuration4",
    "ScheduleDuration5",
    "ScheduleDuration6",
    "ScheduleDuration7",
    "ScheduleDuration8",
    "ScheduleDuration9",
    "ScheduleEnabled1",
    "ScheduleEnabled10",
    "ScheduleEnabled2",
    "ScheduleEnabled3",
    "ScheduleEnabled4",
    "ScheduleEnabled5",
    "ScheduleEnabled6",
    "ScheduleEnabled7",
    "ScheduleEnabled8",
    "ScheduleEnabled9",
    "ScheduleLeft",
    "ScheduleMatchGrab1",
    "ScheduleMatchGrab10",
    "ScheduleMatchGrab2",
    "ScheduleMatchGrab3",
    "ScheduleMatchGrab4",
    "ScheduleMatchGrab5",
    "ScheduleMatchGrab6",
    "ScheduleMatchGrab7",
    "ScheduleMatchGrab8",
    "ScheduleMatchGrab9",
    "ScheduleMatchKill1",
    "ScheduleMatchKill10",
    "ScheduleMatchKill2",
    "ScheduleMatchKill3",
    "ScheduleMatchKill4",
    "ScheduleMatchKill5",
    "ScheduleMatchKill6",
    "ScheduleMatchKill7",
    "ScheduleMatchKill8",
    "ScheduleMatchKill9",
    "ScheduleIntegrel1",
    "ScheduleIntegrel10",
    "ScheduleIntegrel2",
    "ScheduleIntegrel3",
    "ScheduleIntegrel4",
    "ScheduleIntegrel5",
    "ScheduleIntegrel6",
    "ScheduleIntegrel7",
    "ScheduleIntegrel8",
    "ScheduleIntegrel9",
    "ScheduleRestrict1",
    "ScheduleRestrict10",
    "ScheduleRestrict2",
    "ScheduleRestrict3",
    "ScheduleRestrict4",
    "ScheduleRestrict5",
    "ScheduleRestrict6",
    "ScheduleRestrict7",
    "ScheduleRestrict8",
    "ScheduleRestrict9",
    "ScheduleStartDate1",
    "ScheduleStartDate10",
    "ScheduleStartDate2",
    "ScheduleStartDate3",
    "ScheduleStartDate4",
    "ScheduleStartDate5",
    "ScheduleStartDate6",
    "ScheduleStartDate7",
    "ScheduleStartDate8",
    "ScheduleStartDate9",
    "ScheduleTop",
    "SongDelay",
    "Stereo",
    "TaskBarMinimized",
    "UseRestrictions",
};
// clang-format on

class TransferSettingsTest : public ::testing::Test {
 protected:
  static constexpr const char* kOldFolder = "/home/user/Application Data/Varrowen Kestrune";
  static constexpr const char* kNewFolder = "/home/user/Application Data/Kestrune";

  void PutOld(std::string_view key, std::string_view value) {
    store_.Put("Varrowen", "Kestrune", key, value);
  }
  [[nodiscard]] std::string Old(std::string_view key) const {
    return store_.Stored("Varrowen", "Kestrune", key);
  }
  [[nodiscard]] std::string New(std::string_view key) const {
    return store_.Stored("Lorimel", "Kestrune", key);
  }
  void PutOldFile(const std::string& name, std::string_view text) {
    files_.Put(kOldFolder + ("/" + name), text);
  }
  [[nodiscard]] std::vector<std::string> CallsThatBegin(std::string_view with) const {
    std::vector<std::string> calls;
    std::copy_if(store_.Calls.begin(), store_.Calls.end(), std::back_inserter(calls),
                 [&](const std::string& call) { return call.starts_with(with); });
    return calls;
  }
  void Transfer(std::string_view multiUnit = {}) {
    config::TransferSettings(store_, files_, environment_, multiUnit);
  }

  MemorySettingsStore store_;
  MemoryFiles files_;
  FakeEnvironment environment_;
};

TEST_F(TransferSettingsTest, AFirstInstallationTransfersNothing) {
  Transfer();
  EXPECT_THAT(store_.Calls, ElementsAre("get Varrowen/Kestrune/MainTop"));
  EXPECT_EQ(store_.Count(), 0U);
  EXPECT_THAT(files_.Calls, IsEmpty());
}

TEST_F(TransferSettingsTest, AnOldStoreWithoutAWindowPositionIsLeftAlone) {
  PutOld("FileFormat", "WAV");
  PutOldFile("Kestrune.log", "old\n");
  Transfer();
  EXPECT_EQ(Old("FileFormat"), "WAV");
  EXPECT_EQ(New("FileFormat"), "(absent)");
  EXPECT_EQ(files_.Text(std::string(kOldFolder) + "/Kestrune.log"), "old\n");
}

TEST_F(TransferSettingsTest, AWindowPositionThatIsMinusOneAsANumberIsNone) {
  PutOld("MainTop", "-1.0");
  PutOld("FileFormat", "WAV");
  Transfer();
  EXPECT_EQ(Old("FileFormat"), "WAV");
}

TEST_F(TransferSettingsTest, EveryKeyIsCopiedAndThenEveryKeyIsDeletedInOrder) {
  ASSERT_EQ(std::size(kKeys), 134U);
  std::vector<std::string> saves;
  std::vector<std::string> deletes;
  for (const char* key : kKeys) {
    PutOld(key, std::string("value of ") + key);
    saves.push_back(std::string("save Lorimel/Kestrune/") + key + "=value of " + key);
    deletes.push_back(std::string("delete Varrowen/Kestrune/") + key);
  }
  Transfer();
  EXPECT_THAT(CallsThatBegin("save"), ElementsAreArray(saves));
  EXPECT_THAT(CallsThatBegin("delete"), ElementsAreArray(deletes));
  for (const char* key : kKeys) {
    EXPECT_EQ(New(key), std::string("value of ") + key);
    EXPECT_EQ(Old(key), "(absent)");
  }
  EXPECT_EQ(store_.Count(), 134U);

  const auto firstDelete = std::find(store_.Calls.begin(), store_.Calls.end(), deletes.front());
  const auto lastSave = std::find(store_.Calls.begin(), store_.Calls.end(), saves.back());
  EXPECT_LT(lastSave, firstDelete);
}

TEST_F(TransferSettingsTest, KeysThatCameWithThisReleaseAreNotTransferred) {
  PutOld("MainTop", "100");
  PutOld("ScheduleCleftune1", "1");
  PutOld("MP3_Bitrate", "320");
  Transfer();
  EXPECT_EQ(Old("ScheduleCleftune1"), "1");
  EXPECT_EQ(New("MP3_Bitrate"), "(absent)");
}

TEST_F(TransferSettingsTest, AnEmptyValueIsDeletedButNotCopied) {
  PutOld("MainTop", "100");
  PutOld("FileDir", "");
  PutOld("FileFormat", "WAV");
  Transfer();
  EXPECT_EQ(New("FileDir"), "(absent)");
  EXPECT_EQ(New("FileFormat"), "WAV");
  EXPECT_EQ(Old("FileDir"), "(absent)");
  EXPECT_EQ(Old("FileFormat"), "(absent)");
}

TEST_F(TransferSettingsTest, TheOldValueOverwritesTheNewOne) {
  PutOld("MainTop", "100");
  PutOld("Channel", "20");
  store_.Put("Lorimel", "Kestrune", "Channel", "44");
  Transfer();
  EXPECT_EQ(New("Channel"), "20");
}

TEST_F(TransferSettingsTest, ItHappensOnce) {
  PutOld("MainTop", "100");
  PutOld("Channel", "20");
  Transfer();
  store_.Put("Lorimel", "Kestrune", "Channel", "44");
  PutOld("Channel", "21");
  Transfer();
  EXPECT_EQ(New("Channel"), "44");
}

TEST_F(TransferSettingsTest, TheUnitStandsInTheSectionOfTheGuardAndInTheKeysOfTheCopies) {
  store_.Put("Varrowen", "Kestrune2", "MainTop", "100");
  PutOld("Channel2", "20");
  PutOld("Channel", "21");
  Transfer("2");
  EXPECT_EQ(New("Channel2"), "20");
  EXPECT_EQ(New("Channel"), "(absent)");
  EXPECT_EQ(Old("Channel"), "21");
}

TEST_F(TransferSettingsTest, AStoreThatCannotBeWrittenIsNoFailure) {
  PutOld("MainTop", "100");
  store_.FailWrites = true;
  Transfer();
  EXPECT_EQ(Old("MainTop"), "100");
  EXPECT_EQ(CallsThatBegin("delete").size(), 134U);
}

TEST_F(TransferSettingsTest, TheFilesMoveAndTheOldFolderGoes) {
  PutOld("MainTop", "100");
  PutOldFile("ChannelList.txt", "channels");
  PutOldFile("Kestrune.log", "log");
  PutOldFile("noextension", "x");
  files_.MakeFolders(kNewFolder);
  Transfer();
  EXPECT_THAT(files_.AllFiles(), ElementsAre("/home/user/Application Data/Kestrune/ChannelList.txt",
                                             "/home/user/Application Data/Kestrune/Kestrune.log",
                                             "/home/user/Application Data/Kestrune/noextension"));
  EXPECT_EQ(files_.Text(std::string(kNewFolder) + "/Kestrune.log"), "log");
  EXPECT_FALSE(files_.Exists(kOldFolder));
}

TEST_F(TransferSettingsTest, AFileMovesBeforeTheNextIsAskedFor) {
  PutOld("MainTop", "100");
  PutOldFile("a", "1");
  files_.MakeFolders(kNewFolder);
  Transfer();
  EXPECT_THAT(files_.Calls, ElementsAre("Remove /home/user/Application Data/Kestrune/a",
                                        "Copy /home/user/Application Data/Varrowen Kestrune/a "
                                        "/home/user/Application Data/Kestrune/a",
                                        "Remove /home/user/Application Data/Varrowen Kestrune/a",
                                        "RemoveFolder /home/user/Application Data/Varrowen Kestrune"));
}

TEST_F(TransferSettingsTest, AFileOfTheSameNameIsReplaced) {
  PutOld("MainTop", "100");
  PutOldFile("Kestrune.log", "old");
  files_.Put(std::string(kNewFolder) + "/Kestrune.log", "new");
  Transfer();
  EXPECT_EQ(files_.Text(std::string(kNewFolder) + "/Kestrune.log"), "old");
}

TEST_F(TransferSettingsTest, HiddenFilesAndFoldersStayAndKeepTheOldFolder) {
  PutOld("MainTop", "100");
  PutOldFile(".hidden", "h");
  PutOldFile("sub/inside", "i");
  PutOldFile("plain", "p");
  files_.MakeFolders(kNewFolder);
  Transfer();
  EXPECT_EQ(files_.Text(std::string(kOldFolder) + "/.hidden"), "h");
  EXPECT_EQ(files_.Text(std::string(kOldFolder) + "/sub/inside"), "i");
  EXPECT_EQ(files_.Text(std::string(kNewFolder) + "/plain"), "p");
}

TEST_F(TransferSettingsTest, WithoutTheNewFolderTheOldFilesAreLost) {
  PutOld("MainTop", "100");
  PutOldFile("Kestrune.log", "old");
  Transfer();
  EXPECT_THAT(files_.AllFiles(), IsEmpty());
  EXPECT_FALSE(files_.Exists(kNewFolder));
  EXPECT_FALSE(files_.Exists(kOldFolder));
}

TEST_F(TransferSettingsTest, WithoutAProfileTheKeysMoveAndTheOldFolderStays) {
  environment_.Variables["userprofile"] = "";
  PutOld("MainTop", "100");
  PutOldFile("Kestrune.log", "old");
  Transfer();
  EXPECT_EQ(New("MainTop"), "100");
  EXPECT_EQ(files_.Text(std::string(kOldFolder) + "/Kestrune.log"), "old");
  EXPECT_THAT(files_.Calls, IsEmpty());
}

TEST_F(TransferSettingsTest, AFileThatCannotBeDeletedIsTriedUntilItCan) {
  PutOld("MainTop", "100");
  PutOldFile("Kestrune.log", "old");
  files_.MakeFolders(kNewFolder);
  files_.FailNext(FileOperation::Remove, 6);  // two a round, in the new folder and in the old one
  Transfer();
  EXPECT_EQ(std::count(files_.Calls.begin(), files_.Calls.end(),
                       std::string("Remove ") + kOldFolder + "/Kestrune.log"),
            4);
  EXPECT_EQ(files_.Text(std::string(kNewFolder) + "/Kestrune.log"), "old");
  EXPECT_FALSE(files_.Exists(kOldFolder));
}

}  // namespace
}  // namespace kestrune::test
