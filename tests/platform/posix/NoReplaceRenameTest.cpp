#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/NoReplaceRename.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::CountNames;
using test::FileText;
using test::PutFile;
using test::TemporaryFolder;

using Way = RenameOutcome (*)(const std::string&, const std::string&);

class NoReplaceRename : public testing::TestWithParam<Way> {
 protected:
  TemporaryFolder folder;
};

TEST_P(NoReplaceRename, MovesTheFileToAFreeName) {
  PutFile(folder / "from", "text");
  EXPECT_EQ(GetParam()(folder / "from", folder / "to"), RenameOutcome::Done);
  EXPECT_EQ(FileText(folder / "to"), "text");
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

TEST_P(NoReplaceRename, LeavesATakenNameAlone) {
  PutFile(folder / "from", "new");
  PutFile(folder / "to", "old");
  EXPECT_EQ(GetParam()(folder / "from", folder / "to"), RenameOutcome::Refused);
  EXPECT_EQ(FileText(folder / "from"), "new");
  EXPECT_EQ(FileText(folder / "to"), "old");
}

TEST_P(NoReplaceRename, ADanglingLinkTakesTheNameToo) {
  PutFile(folder / "from", "new");
  std::filesystem::create_symlink("nowhere", folder / "to");
  EXPECT_EQ(GetParam()(folder / "from", folder / "to"), RenameOutcome::Refused);
  EXPECT_EQ(FileText(folder / "from"), "new");
}

TEST_P(NoReplaceRename, ToItsOwnNameIsRefused) {
  PutFile(folder / "same", "text");
  EXPECT_EQ(GetParam()(folder / "same", folder / "same"), RenameOutcome::Refused);
  EXPECT_EQ(FileText(folder / "same"), "text");
}

TEST_P(NoReplaceRename, AMissingFileLeavesNothingBehind) {
  EXPECT_EQ(GetParam()(folder / "from", folder / "to"), RenameOutcome::Refused);
  EXPECT_EQ(CountNames(folder.Path()), 0U);
}

TEST_P(NoReplaceRename, AMissingFolderKeepsTheFile) {
  PutFile(folder / "from", "text");
  EXPECT_EQ(GetParam()(folder / "from", folder / "none/to"), RenameOutcome::Refused);
  EXPECT_EQ(FileText(folder / "from"), "text");
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

INSTANTIATE_TEST_SUITE_P(Ways, NoReplaceRename,
                         testing::Values(&RenameInOneStep, &RenameByLink, &RenameByClaim));

TEST(RenameNeverReplacing, TakesTheFirstWayThereIs) {
  const TemporaryFolder folder;
  PutFile(folder / "from", "text");
  EXPECT_EQ(RenameNeverReplacing(folder / "from", folder / "to"), 0);
  EXPECT_EQ(FileText(folder / "to"), "text");
  EXPECT_EQ(RenameNeverReplacing(folder / "from", folder / "other"), ENOENT);
}

}  // namespace
}  // namespace kestrune::platform
