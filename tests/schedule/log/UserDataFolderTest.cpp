#include <gtest/gtest.h>

#include "schedule/log/UserDataFolder.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {
namespace {

TEST(UserDataFolder, StandsUnderTheProfile) {
  FakeEnvironment environment;
  environment.Variables["userprofile"] = "/home/ann";
  EXPECT_EQ(schedule::UserDataFolder(environment), "/home/ann/Application Data/Kestrune");
}

TEST(UserDataFolder, IsTheFolderOfTheExecutableWithoutAProfile) {
  FakeEnvironment environment;
  environment.Variables["userprofile"] = "";
  environment.Executable = "/usr/lib/kestrune";
  EXPECT_EQ(schedule::UserDataFolder(environment), "/usr/lib/kestrune");
}

TEST(UserDataFolder, IsMadeWithItsParents) {
  FakeEnvironment environment;
  MemoryFiles files;
  EXPECT_EQ(schedule::MakeUserDataFolder(files, environment), "/home/user/Application Data/Kestrune");
  EXPECT_TRUE(files.IsFolder("/home/user/Application Data/Kestrune"));
}

TEST(UserDataFolder, IsMadeForItsUserAlone) {
  FakeEnvironment environment;
  MemoryFiles files;
  EXPECT_EQ(schedule::MakeUserDataFolder(files, environment), "/home/user/Application Data/Kestrune");
  EXPECT_TRUE(files.IsOwnFolder("/home/user/Application Data/Kestrune"));
}

TEST(UserDataFolder, IsClosedToOthersIfAnEarlierReleaseHasLeftItOpen) {
  FakeEnvironment environment;
  MemoryFiles files;
  files.MakeFolders("/home/user/Application Data/Kestrune");
  schedule::CloseUserDataFolder(files, environment);
  EXPECT_TRUE(files.IsOwnFolder("/home/user/Application Data/Kestrune"));
}

TEST(UserDataFolder, TheFolderOfTheExecutableStaysOpen) {
  FakeEnvironment environment;
  MemoryFiles files;
  environment.Variables["userprofile"] = "";
  schedule::CloseUserDataFolder(files, environment);
  EXPECT_TRUE(files.Calls.empty());
}

TEST(UserDataFolder, IsLeftAloneIfItIsThere) {
  FakeEnvironment environment;
  MemoryFiles files;
  files.MakeFolders("/home/user/Application Data/Kestrune");
  EXPECT_EQ(schedule::MakeUserDataFolder(files, environment), "/home/user/Application Data/Kestrune");
  EXPECT_TRUE(files.Calls.empty());
}

TEST(UserDataFolder, IsNamedEvenIfItCannotBeMade) {
  FakeEnvironment environment;
  MemoryFiles files;
  files.FailAlways(FileOperation::MakeOwnFolder);
  EXPECT_EQ(schedule::MakeUserDataFolder(files, environment), "/home/user/Application Data/Kestrune");
  EXPECT_FALSE(files.Exists("/home"));
}

}  // namespace
}  // namespace kestrune::test
