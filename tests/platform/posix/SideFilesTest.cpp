#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/posix/SideFiles.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::PutFile;
using test::TemporaryFolder;

/// An installation with its programs in bin and its side files in share/kestrune.
class SideFilesTest : public testing::Test {
 protected:
  SideFilesTest() {
    std::filesystem::create_directories(folder / "bin/Documentation");
    std::filesystem::create_directories(folder / "share/kestrune/Documentation");
  }

  [[nodiscard]] std::string Help() const {
    return SideFile(folder / "bin", "\\Documentation\\Kestrune.html", "../share/kestrune");
  }

  TemporaryFolder folder;
};

TEST_F(SideFilesTest, AFileBesideTheProgramIsTaken) {
  PutFile(folder / "bin/Documentation/Kestrune.html", "built");
  PutFile(folder / "share/kestrune/Documentation/Kestrune.html", "installed");
  EXPECT_EQ(Help(), folder / "bin/Documentation/Kestrune.html");
}

TEST_F(SideFilesTest, OtherwiseTheFileOfTheInstallationIsTaken) {
  PutFile(folder / "share/kestrune/Documentation/Kestrune.html", "installed");
  EXPECT_EQ(Help(), folder / "share/kestrune/Documentation/Kestrune.html");
}

TEST_F(SideFilesTest, AFolderOfThatNameIsNoFile) {
  std::filesystem::create_directories(folder / "bin/Documentation/Kestrune.html");
  PutFile(folder / "share/kestrune/Documentation/Kestrune.html", "installed");
  EXPECT_EQ(Help(), folder / "share/kestrune/Documentation/Kestrune.html");
}

TEST_F(SideFilesTest, AMissingFileIsNamedBesideTheProgram) {
  EXPECT_EQ(Help(), folder / "bin/Documentation/Kestrune.html");
}

TEST_F(SideFilesTest, ANameAloneIsInTheFolderItself) {
  PutFile(folder / "share/kestrune/Agreement.html", "installed");
  EXPECT_EQ(SideFile(folder / "bin", "Agreement.html", "../share/kestrune"),
            folder / "share/kestrune/Agreement.html");
}

TEST_F(SideFilesTest, AnAbsoluteSharedFolderCannotComeFromTheBuild) {
  ASSERT_FALSE(kSharedFolder.empty());
  EXPECT_NE(kSharedFolder.front(), '/');
}

TEST_F(SideFilesTest, TheBuildHasTheHelpBesideTheProgram) {
  const std::filesystem::path program = std::filesystem::canonical("/proc/self/exe").parent_path();
  const std::string path = SideFile(program.string(), "\\Documentation\\Kestrune.html");
  EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
}

}  // namespace
}  // namespace kestrune::platform
