#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/posix/UnitLock.h"

namespace kestrune::platform {
namespace {

using test::FileText;
using test::PutFile;
using test::TemporaryFolder;

TEST(UnitLock, OneHoldsTheUnitAtATime) {
  const TemporaryFolder folder;
  auto first = std::make_unique<UnitLock>(folder.Path(), "2");
  UnitLock second(folder.Path(), "2");
  EXPECT_EQ(second.HolderPid(), std::nullopt);
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_FALSE(second.TryAcquire());
  EXPECT_EQ(second.HolderPid(), ::getpid());
  EXPECT_EQ(FileText(folder / "unit2.lock"), std::to_string(::getpid()) + "\n");
  first.reset();
  EXPECT_EQ(second.HolderPid(), std::nullopt);
  EXPECT_TRUE(second.TryAcquire());
}

TEST(UnitLock, UnitsDoNotMeet) {
  const TemporaryFolder folder;
  UnitLock single(folder.Path(), "");
  UnitLock second(folder.Path(), "2");
  UnitLock slash(folder.Path(), "/");
  EXPECT_TRUE(single.TryAcquire());
  EXPECT_TRUE(second.TryAcquire());
  EXPECT_TRUE(slash.TryAcquire());
  EXPECT_TRUE(std::filesystem::exists(folder / "unit.lock"));
  EXPECT_TRUE(std::filesystem::exists(folder / "unit%2f.lock"));
}

TEST(UnitLock, UnitsThatShareTheirSettingsShareTheLock) {
  const TemporaryFolder folder;
  UnitLock small(folder.Path(), "x");
  UnitLock large(folder.Path(), "X");
  EXPECT_TRUE(small.TryAcquire());
  EXPECT_FALSE(large.TryAcquire());
}

TEST(UnitLock, ANumberLeftInTheFileHoldsNothing) {
  const TemporaryFolder folder;
  PutFile(folder / "unit.lock", "1\n");
  UnitLock lock(folder.Path(), "");
  EXPECT_EQ(lock.HolderPid(), std::nullopt);
  EXPECT_TRUE(lock.TryAcquire());
  EXPECT_EQ(lock.HolderPid(), ::getpid());
}

TEST(UnitLock, AFolderThatIsMissingGivesNoLock) {
  const TemporaryFolder folder;
  UnitLock lock(folder / "none", "");
  EXPECT_FALSE(lock.TryAcquire());
  EXPECT_EQ(lock.HolderPid(), std::nullopt);
}

TEST(UnitLock, ALinkInThePlaceOfTheFileIsNotFollowed) {
  const TemporaryFolder folder;
  PutFile(folder / "precious", "text");
  std::filesystem::create_symlink("precious", folder / "unit.lock");
  UnitLock lock(folder.Path(), "");
  EXPECT_FALSE(lock.TryAcquire());
  EXPECT_EQ(FileText(folder / "precious"), "text");
}

TEST(UnitLock, AProcessThatIsKilledLetsGo) {
  const TemporaryFolder folder;
  std::array<int, 2> ready{};
  ASSERT_EQ(::pipe(ready.data()), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    UnitLock lock(folder.Path(), "");
    const char answer = lock.TryAcquire() ? 'y' : 'n';
    if (::write(ready[1], &answer, 1) == 1) ::pause();
    ::_exit(1);
  }
  char answer = 0;
  ASSERT_EQ(::read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  UnitLock lock(folder.Path(), "");
  EXPECT_FALSE(lock.TryAcquire());
  EXPECT_EQ(lock.HolderPid(), child);
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  EXPECT_EQ(lock.HolderPid(), std::nullopt);
  EXPECT_TRUE(lock.TryAcquire());
  ::close(ready[0]);
  ::close(ready[1]);
}

}  // namespace
}  // namespace kestrune::platform
