#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/IniSettingsStore.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::CountNames;
using test::FileMode;
using test::FileText;
using test::OrdinaryUser;
using test::PutFile;
using test::TemporaryFolder;

class IniSettingsStoreTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  IniSettingsStore store{folder / "config"};
  std::string file = folder / "config/lorimel.ini";

  std::string Get(const char* section, const char* key) {
    return store.GetSetting("Lorimel", section, key, "(default)");
  }
  bool Save(const char* section, const char* key, std::string_view value) {
    return store.SaveSetting("Lorimel", section, key, value);
  }
};

TEST_F(IniSettingsStoreTest, AnAbsentKeyGivesTheDefaultAndMakesNothing) {
  EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
  EXPECT_FALSE(std::filesystem::exists(folder / "config"));
}

TEST_F(IniSettingsStoreTest, AValueWrittenIsOnDiskWhenTheCallReturns) {
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_EQ(FileText(file), "[Kestrune]\nChannel=44\n");
  EXPECT_EQ(FileMode(folder / "config"), 0700U);
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  EXPECT_EQ(IniSettingsStore(folder / "config").GetSetting("Lorimel", "Kestrune", "Channel", ""), "44");
}

TEST_F(IniSettingsStoreTest, ApplicationsSectionsAndKeysCompareWithoutRegardToCase) {
  EXPECT_TRUE(Save("Kestrune", "ScheduleMP3BitRate1", "128 Stereo"));
  EXPECT_EQ(store.GetSetting("LORIMEL", "KESTRUNE", "Schedulemp3bitrate1", ""), "128 Stereo");
}

TEST_F(IniSettingsStoreTest, ApplicationsHaveFilesOfTheirOwn) {
  EXPECT_TRUE(Save("Kestrune", "MainTop", "1"));
  EXPECT_TRUE(store.SaveSetting("Varrowen", "Kestrune", "MainTop", "2"));
  EXPECT_EQ(Get("Kestrune", "MainTop"), "1");
  EXPECT_EQ(store.GetSetting("varrowen", "Kestrune", "MainTop", ""), "2");
  EXPECT_EQ(store.FileOf("../x"), folder / "config/%2e%2e%2fx.ini");
}

TEST_F(IniSettingsStoreTest, AnEmptyValueIsNoAbsentOne) {
  EXPECT_TRUE(Save("Kestrune", "Preset1", ""));
  EXPECT_EQ(Get("Kestrune", "Preset1"), "");
}

TEST_F(IniSettingsStoreTest, DeletingTakesTheKeyAndFailsIfThereIsNone) {
  EXPECT_FALSE(store.DeleteSetting("Lorimel", "Kestrune", "Channel"));
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_TRUE(store.DeleteSetting("lorimel", "kestrune", "channel"));
  EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
  EXPECT_FALSE(store.DeleteSetting("Lorimel", "Kestrune", "Channel"));
}

TEST_F(IniSettingsStoreTest, AWriteMergesWithWhatAnotherProcessWrote) {
  IniSettingsStore other(folder / "config");
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_TRUE(other.SaveSetting("Lorimel", "Kestrune2", "Channel", "5"));
  EXPECT_TRUE(Save("Kestrune", "PortNum", "3"));
  EXPECT_EQ(FileText(file), "[Kestrune]\nChannel=44\nPortNum=3\n\n[Kestrune2]\nChannel=5\n");
}

TEST_F(IniSettingsStoreTest, AReadSeesWhatAnotherProcessWroteAlsoOfTheSameLength) {
  IniSettingsStore other(folder / "config");
  for (int round = 0; round < 50; ++round) {
    const std::string value = std::to_string(10 + round);
    EXPECT_TRUE(other.SaveSetting("Lorimel", "Kestrune", "Channel", value));
    ASSERT_EQ(Get("Kestrune", "Channel"), value);
  }
}

TEST_F(IniSettingsStoreTest, AFileThatGoesAwayGivesDefaultsAgain) {
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  std::filesystem::remove(file);
  EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
  EXPECT_TRUE(Save("Kestrune", "PortNum", "1"));
  EXPECT_EQ(FileText(file), "[Kestrune]\nPortNum=1\n");
}

TEST_F(IniSettingsStoreTest, AValueThatIsThereAlreadyIsNotWrittenAgain) {
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  struct stat before {};
  ASSERT_EQ(::stat(file.c_str(), &before), 0);
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  struct stat after {};
  ASSERT_EQ(::stat(file.c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(IniSettingsStoreTest, AFileOfRubbishReadsAsDefaultsAndIsKept) {
  std::filesystem::create_directory(folder / "config");
  const std::string rubbish(
      "\x7F"
      "ELF\0\xFF[[[\n]]]\n\n=\n\\",
      18);
  PutFile(file, rubbish);
  EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  EXPECT_TRUE(FileText(file).starts_with(rubbish));
}

TEST_F(IniSettingsStoreTest, WhatCannotBeReadIsNotWrittenOver) {
  std::filesystem::create_directories(file);
  EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
  EXPECT_FALSE(Save("Kestrune", "Channel", "44"));
  EXPECT_FALSE(store.DeleteSetting("Lorimel", "Kestrune", "Channel"));
  EXPECT_TRUE(std::filesystem::is_directory(file));
}

TEST_F(IniSettingsStoreTest, AFileThatTheUserMayNotReadIsNotWrittenOver) {
  std::filesystem::create_directory(folder / "config");
  PutFile(file, "[Kestrune]\nChannel=44\n");
  for (const auto& path : {folder.Path(), folder / "config"}) ASSERT_EQ(::chmod(path.c_str(), 0777), 0);
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  {
    const OrdinaryUser user;
    EXPECT_EQ(Get("Kestrune", "Channel"), "(default)");
    EXPECT_FALSE(Save("Kestrune", "PortNum", "1"));
  }
  ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
  EXPECT_EQ(FileText(file), "[Kestrune]\nChannel=44\n");
}

TEST_F(IniSettingsStoreTest, AnUnwritableFolderFailsAndKeepsTheSettings) {
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  ASSERT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod((folder / "config").c_str(), 0555), 0);
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  {
    const OrdinaryUser user;
    EXPECT_FALSE(Save("Kestrune", "Channel", "5"));
    EXPECT_FALSE(store.DeleteSetting("Lorimel", "Kestrune", "Channel"));
    EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  }
  ASSERT_EQ(::chmod((folder / "config").c_str(), 0755), 0);
}

TEST_F(IniSettingsStoreTest, WhileTheFileCannotBeReadItsLastValuesStay) {
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  std::filesystem::rename(file, file + ".away");
  std::filesystem::create_directory(file);
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  EXPECT_FALSE(Save("Kestrune", "Channel", "45"));
  std::filesystem::remove(file);
  std::filesystem::rename(file + ".away", file);
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
}

TEST_F(IniSettingsStoreTest, AnApplicationWithAnEndlessNameFailsQuietly) {
  const std::string name(300, 'a');
  EXPECT_FALSE(store.SaveSetting(name, "s", "k", "v"));
  EXPECT_EQ(store.GetSetting(name, "s", "k", "d"), "d");
}

TEST_F(IniSettingsStoreTest, OnAFullDiskTheOldSettingsStay) {
  std::filesystem::create_directory(folder / "config");
  const std::string config = folder / "config";
  if (::mount("tmpfs", config.c_str(), "tmpfs", 0, "size=16k") != 0) {
    GTEST_SKIP() << "a small volume cannot be mounted here: " << std::strerror(errno);
  }
  EXPECT_TRUE(Save("Kestrune", "Channel", "44"));
  EXPECT_FALSE(Save("Kestrune", "FilenameFormat", std::string(100000, 'x')));
  EXPECT_EQ(FileText(file), "[Kestrune]\nChannel=44\n");
  EXPECT_EQ(Get("Kestrune", "Channel"), "44");
  EXPECT_EQ(CountNames(config), 2U);
  store = IniSettingsStore("/");
  EXPECT_EQ(::umount(config.c_str()), 0);
}

TEST_F(IniSettingsStoreTest, TwoProcessesThatWriteAtOnceLoseNothing) {
  constexpr int kWrites = 200;
  const auto writeAll = [this](const char* section) {
    IniSettingsStore own(folder / "config");
    bool good = true;
    for (int i = 0; i < kWrites; ++i) {
      good = own.SaveSetting("Lorimel", section, "Key" + std::to_string(i), std::to_string(i * i)) && good;
    }
    return good;
  };
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) ::_exit(writeAll("Kestrune2") ? 0 : 1);
  EXPECT_TRUE(writeAll("Kestrune"));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const char* section : {"Kestrune", "Kestrune2"}) {
    for (int i = 0; i < kWrites; ++i) {
      ASSERT_EQ(Get(section, ("Key" + std::to_string(i)).c_str()), std::to_string(i * i)) << section;
    }
  }
  EXPECT_EQ(CountNames(folder / "config"), 2U);
}

}  // namespace
}  // namespace kestrune::platform
