#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/posix/RuntimeFolder.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::VariableValue;

TEST(RuntimeFolder, IsInTheSessionsFolder) {
  const VariableValue session("XDG_RUNTIME_DIR", "/run/user/1000");
  EXPECT_EQ(RuntimeFolderPath(""), "/run/user/1000/kestrune");
  const VariableValue withEnd("XDG_RUNTIME_DIR", "/run/user/1000//");
  EXPECT_EQ(RuntimeFolderPath(""), "/run/user/1000/kestrune");
}

TEST(RuntimeFolder, WithoutASessionItIsTheUsersOwnInTmp) {
  const std::string own = "/tmp/kestrune-" + std::to_string(::geteuid());
  for (const char* session : {static_cast<const char*>(nullptr), "", "relative"}) {
    const VariableValue value("XDG_RUNTIME_DIR", session);
    EXPECT_EQ(RuntimeFolderPath(""), own);
  }
}

TEST(RuntimeFolder, AProfileHasItsOwnAndAskingMakesNothing) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(RuntimeFolderPath(folder / "p"), folder / "p/run");
  EXPECT_FALSE(std::filesystem::exists(folder / "p"));
}

}  // namespace
}  // namespace kestrune::platform
