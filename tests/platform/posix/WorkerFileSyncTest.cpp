#include <cerrno>
#include <chrono>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/posix/WorkerFileSync.h"
#include "support/RealEventLoop.h"

namespace kestrune::platform {
namespace {

using namespace std::chrono_literals;
using test::PutFile;
using test::TemporaryFolder;

TEST(SyncToDisk, TakesAFileInFoldersThatAreNew) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "Rock/44 - Harbour");
  PutFile(folder / "Rock/44 - Harbour/song.mp3", "sound");
  EXPECT_EQ(SyncToDisk(folder / "Rock/44 - Harbour/song.mp3"), 0);
}

TEST(SyncToDisk, SaysThatAFileIsGone) {
  const TemporaryFolder folder;
  EXPECT_EQ(SyncToDisk(folder / "song.mp3"), ENOENT);
}

TEST(SyncToDisk, FollowsNoLink) {
  const TemporaryFolder folder;
  PutFile(folder / "real", "text");
  std::filesystem::create_symlink(folder / "real", folder / "song.mp3");
  EXPECT_EQ(SyncToDisk(folder / "song.mp3"), ELOOP);
}

class WorkerFileSyncTest : public testing::Test {
 protected:
  void Report(WorkerFileSync& sync) {
    sync.SetFailureHandler([this](const std::string& path, const base::Result& failure) {
      Failures.push_back(path + ": " + failure.Cause());
    });
  }

  TemporaryFolder folder;
  test::RealEventLoop loop;
  std::vector<std::string> Failures;
};

TEST_F(WorkerFileSyncTest, AFailureComesFromTheLoopWithTheSystemsReason) {
  WorkerFileSync sync(loop);
  Report(sync);
  std::filesystem::create_symlink(folder / "elsewhere", folder / "song.mp3");
  sync.Sync(folder / "song.mp3");
  EXPECT_TRUE(Failures.empty()) << "never from within the call";
  ASSERT_TRUE(loop.RunUntil([this] { return !Failures.empty(); }, 10s));
  EXPECT_EQ(Failures,
            std::vector<std::string>{(folder / "song.mp3") + ": Too many levels of symbolic links"});
}

TEST_F(WorkerFileSyncTest, AFileThatIsGoneIsNoFailure) {
  std::filesystem::create_symlink(folder / "elsewhere", folder / "link");
  WorkerFileSync sync(loop);
  Report(sync);
  sync.Sync(folder / "gone.mp3");
  sync.Sync(folder / "link");
  ASSERT_TRUE(loop.RunUntil([this] { return !Failures.empty(); }, 10s));
  EXPECT_EQ(Failures.size(), 1U) << "the calls are served in their order";
}

TEST_F(WorkerFileSyncTest, ItsEndWaitsForWhatWasAskedForAndReportsNothing) {
  {
    WorkerFileSync sync(loop);
    Report(sync);
    for (int i = 0; i < 100; ++i) sync.Sync(folder / "gone.mp3");
    std::filesystem::create_symlink(folder / "elsewhere", folder / "song.mp3");
    sync.Sync(folder / "song.mp3");
  }
  loop.PumpEvents();
  EXPECT_TRUE(Failures.empty());
}

}  // namespace
}  // namespace kestrune::platform
