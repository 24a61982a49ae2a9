#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/PosixEnvironment.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::FileMode;
using test::PutFile;
using test::TemporaryFolder;
using test::VariableValue;

/// No variable of the machine that runs the test gets in.
class PosixEnvironmentTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  VariableValue home{"HOME", folder / "me"};
  VariableValue userProfile{"userprofile", nullptr};
  VariableValue lowerTemp{"temp", nullptr};
  VariableValue upperTemp{"Temp", nullptr};
  VariableValue tmpDir{"TMPDIR", nullptr};
  VariableValue config{"XDG_CONFIG_HOME", nullptr};
  VariableValue runtime{"XDG_RUNTIME_DIR", nullptr};

  static PosixEnvironment Plain() { return PosixEnvironment({"/usr/bin/env", "/multi2 /debug", {}}); }
  PosixEnvironment Profile() const { return PosixEnvironment({"/usr/bin/env", "", folder / "profile"}); }
};

TEST_F(PosixEnvironmentTest, UserProfileIsTheVariableElseTheHomeFolder) {
  EXPECT_EQ(Plain().Variable("userprofile"), folder / "me");
  {
    const VariableValue set("userprofile", "/elsewhere/");
    EXPECT_EQ(Plain().Variable("userprofile"), "/elsewhere");
  }
  const VariableValue none("HOME", nullptr);
  EXPECT_EQ(Plain().Variable("userprofile"), "");
  const VariableValue empty("HOME", "");
  EXPECT_EQ(Plain().Variable("userprofile"), "");
}

TEST_F(PosixEnvironmentTest, TempIsTheVariableElseTheSystemsFolder) {
  EXPECT_EQ(Plain().Variable("temp"), "/tmp");
  EXPECT_EQ(Plain().Variable("Temp"), "/tmp");
  const VariableValue system("TMPDIR", "/var/tmp/");
  EXPECT_EQ(Plain().Variable("temp"), "/var/tmp");
  const VariableValue lower("temp", "/one");
  const VariableValue upper("Temp", "/two/");
  EXPECT_EQ(Plain().Variable("temp"), "/one");
  EXPECT_EQ(Plain().Variable("Temp"), "/two");
}

TEST_F(PosixEnvironmentTest, OtherVariablesAreReadUnchanged) {
  const VariableValue other("KESTRUNE_TEST_VARIABLE", "a/");
  EXPECT_EQ(Plain().Variable("KESTRUNE_TEST_VARIABLE"), "a/");
  EXPECT_EQ(Plain().Variable("KESTRUNE_TEST_NONE"), "");
  EXPECT_EQ(Plain().Variable(std::string_view("HOME\0", 5)), "");
}

TEST_F(PosixEnvironmentTest, TheCommandLineIsPassedOn) {
  EXPECT_EQ(Plain().CommandLine(), "/multi2 /debug");
}

TEST_F(PosixEnvironmentTest, TheExecutableFolderIsWhereTheProgramReallyIs) {
  std::filesystem::create_directories(folder / "real");
  PutFile(folder / "real/program", "");
  std::filesystem::create_symlink("real/program", folder / "link");
  const std::string real = std::filesystem::canonical(folder / "real").string();
  EXPECT_EQ(PosixEnvironment({folder / "link", "", {}}).ExecutableFolder(), real);
  const std::string own = std::filesystem::canonical("/proc/self/exe").parent_path().string();
  EXPECT_EQ(PosixEnvironment({"", "", {}}).ExecutableFolder(), own);
  EXPECT_EQ(PosixEnvironment({"kestrune", "", {}}).ExecutableFolder(), own);
  EXPECT_EQ(PosixEnvironment({"/no/such/program", "", {}}).ExecutableFolder(), own);
}

TEST_F(PosixEnvironmentTest, RecordingsGoToTheMusicFolderOfTheHomeFolder) {
  EXPECT_EQ(Plain().DefaultRecordingFolder(), folder / "me/Music/Kestrune");
  EXPECT_TRUE(std::filesystem::is_directory(folder / "me/Music/Kestrune"));
}

TEST_F(PosixEnvironmentTest, TheDesktopsListNamesAnotherMusicFolder) {
  struct Row {
    std::string List;
    std::string Music;
  };
  std::filesystem::create_directories(folder / "me/.config");
  const std::string absolute = folder / "sounds";
  for (const Row& row :
       {Row{"# comment\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_MUSIC_DIR=\"$HOME/Musik\"\n",
            folder / "me/Musik"},
        Row{"  XDG_MUSIC_DIR=\"$HOME/Ma musique\"", folder / "me/Ma musique"},
        Row{"XDG_MUSIC_DIR=\"$HOME/a\\\"b\\\\c\"\n", folder / "me/a\"b\\c"},
        Row{"XDG_MUSIC_DIR=\"" + absolute + "\"\n", absolute},
        Row{"XDG_MUSIC_DIR=\"$HOME/\"\n", folder / "me"}, Row{"XDG_MUSIC_DIR=\"$HOME\"\n", folder / "me"},
        // What sets nothing leaves the default: relative paths, no closing mark, comments, rubbish.
        Row{"XDG_MUSIC_DIR=\"Musik\"\n", folder / "me/Music"},
        Row{"XDG_MUSIC_DIR=\"$HOME/x\n", folder / "me/Music"},
        Row{"XDG_MUSIC_DIR=\"$HOMEless/x\"\n", folder / "me/Music"},
        Row{"#XDG_MUSIC_DIR=\"$HOME/x\"\n", folder / "me/Music"}, Row{"XDG_MUSIC_DIR=", folder / "me/Music"},
        Row{"XDG_MUSIC_DIR=\"\\", folder / "me/Music"}, Row{std::string("\0\xFF", 2), folder / "me/Music"},
        Row{"", folder / "me/Music"}}) {
    PutFile(folder / "me/.config/user-dirs.dirs", row.List);
    EXPECT_EQ(Plain().DefaultRecordingFolder(), row.Music + "/Kestrune") << row.List;
  }
}

TEST_F(PosixEnvironmentTest, TheListIsInTheConfigurationFolder) {
  std::filesystem::create_directories(folder / "configuration");
  PutFile(folder / "configuration/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Tunes\"\n");
  const VariableValue set("XDG_CONFIG_HOME", folder / "configuration");
  EXPECT_EQ(Plain().DefaultRecordingFolder(), folder / "me/Tunes/Kestrune");
}

TEST_F(PosixEnvironmentTest, SettingsLieInTheConfigurationFolder) {
  EXPECT_EQ(Plain().SettingsFolder(), folder / "me/.config/kestrune");
  const VariableValue set("XDG_CONFIG_HOME", "/somewhere/");
  EXPECT_EQ(Plain().SettingsFolder(), "/somewhere/kestrune");
  const VariableValue relative("XDG_CONFIG_HOME", "relative");
  EXPECT_EQ(Plain().SettingsFolder(), folder / "me/.config/kestrune");
  const VariableValue none("HOME", nullptr);
  EXPECT_EQ(Plain().SettingsFolder(), Plain().ExecutableFolder() + "/.config/kestrune");
}

TEST_F(PosixEnvironmentTest, TheRuntimeFolderIsMadeForTheUserAlone) {
  const VariableValue set("XDG_RUNTIME_DIR", folder.Path());
  EXPECT_EQ(Plain().RuntimeFolder(), folder / "kestrune");
  EXPECT_EQ(FileMode(folder / "kestrune"), 0700U);
  ASSERT_EQ(::chmod((folder / "kestrune").c_str(), 0777), 0);
  EXPECT_EQ(Plain().RuntimeFolder(), folder / "kestrune");
  EXPECT_EQ(FileMode(folder / "kestrune"), 0700U);
}

TEST_F(PosixEnvironmentTest, ARuntimeFolderThatIsALinkOrAFileIsRefused) {
  const VariableValue set("XDG_RUNTIME_DIR", folder.Path());
  std::filesystem::create_directory(folder / "other");
  std::filesystem::create_symlink("other", folder / "kestrune");
  EXPECT_EQ(Plain().RuntimeFolder(), "");
  std::filesystem::remove(folder / "kestrune");
  PutFile(folder / "kestrune", "");
  EXPECT_EQ(Plain().RuntimeFolder(), "");
}

TEST_F(PosixEnvironmentTest, ARuntimeFolderOfSomebodyElseIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  const VariableValue set("XDG_RUNTIME_DIR", folder.Path());
  std::filesystem::create_directory(folder / "kestrune");
  ASSERT_EQ(::chown((folder / "kestrune").c_str(), 12345, 12345), 0);
  EXPECT_EQ(Plain().RuntimeFolder(), "");
}

TEST_F(PosixEnvironmentTest, WithoutARuntimeFolderOfTheSystemItIsInTmpWithTheUsersNumber) {
  const std::string path = "/tmp/kestrune-" + std::to_string(::geteuid());
  const bool existed = std::filesystem::exists(path);
  EXPECT_EQ(Plain().RuntimeFolder(), path);
  EXPECT_EQ(FileMode(path), 0700U);
  if (!existed) std::filesystem::remove(path);
}

TEST_F(PosixEnvironmentTest, AProfileHoldsEverything) {
  const VariableValue set("userprofile", "/elsewhere");
  const VariableValue temp("temp", "/elsewhere");
  const VariableValue runtimeSet("XDG_RUNTIME_DIR", "/elsewhere");
  const VariableValue configSet("XDG_CONFIG_HOME", "/elsewhere");
  const PosixEnvironment environment = Profile();
  const std::string profile = std::filesystem::canonical(folder / "profile").string();
  EXPECT_EQ(environment.Variable("userprofile"), profile + "/home");
  EXPECT_EQ(environment.Variable("temp"), profile + "/tmp");
  EXPECT_EQ(environment.Variable("Temp"), profile + "/tmp");
  EXPECT_EQ(environment.SettingsFolder(), profile + "/config");
  EXPECT_EQ(environment.RuntimeFolder(), profile + "/run");
  EXPECT_EQ(environment.DefaultRecordingFolder(), profile + "/Music/Kestrune");
  for (const char* name : {"", "/home", "/tmp", "/config", "/run", "/Music", "/Music/Kestrune"}) {
    EXPECT_EQ(FileMode(profile + name), 0700U) << name;
  }
  EXPECT_EQ(environment.Variable("HOME"), folder / "me");
}

TEST_F(PosixEnvironmentTest, TheFoldersOfAProfileAreMadeWhenAskedFor) {
  const PosixEnvironment environment = Profile();
  EXPECT_FALSE(std::filesystem::exists(folder / "profile/home"));
  EXPECT_FALSE(std::filesystem::exists(folder / "profile/run"));
}

TEST_F(PosixEnvironmentTest, ARelativeProfileStaysWhereItWasWhenTheProgramMoves) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const PosixEnvironment environment({"", "", "here"});
  std::filesystem::current_path(before);
  EXPECT_EQ(environment.SettingsFolder(),
            std::filesystem::canonical(folder.Path()).string() + "/here/config");
}

}  // namespace
}  // namespace kestrune::platform
