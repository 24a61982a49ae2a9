#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/HeldFile.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::CountNames;
using test::FileText;
using test::PutFile;
using test::TemporaryFolder;

constexpr mode_t kMode = 0640;

class HeldFileTest : public testing::Test {
 protected:
  /// Writes into a file that was just created.
  static void Write(const FileDescriptor& file, std::string_view text) {
    EXPECT_EQ(::write(file.Number(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  TemporaryFolder folder;
  std::string path = folder / "Capture0.wav";
};

TEST_F(HeldFileTest, CreatesAnEmptyFileWithTheMode) {
  const FileDescriptor file = CreateHeld(path, kMode);
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(FileText(path), "");
  EXPECT_EQ(test::FileMode(path) & ~0640U, 0U);
}

TEST_F(HeldFileTest, AHeldFileIsNeitherEmptiedNorRemoved) {
  const FileDescriptor first = CreateHeld(path, kMode);
  Write(first, "song of another unit");
  EXPECT_FALSE(CreateHeld(path, kMode).IsOpen());
  EXPECT_EQ(errno, EBUSY);
  EXPECT_EQ(RemoveUnheld(path), EBUSY);
  EXPECT_EQ(FileText(path), "song of another unit");
}

TEST_F(HeldFileTest, AHeldFileStaysHeldUnderItsNewName) {
  const FileDescriptor first = CreateHeld(path, kMode);
  ASSERT_EQ(std::rename(path.c_str(), (folder / "song.wav").c_str()), 0);
  EXPECT_TRUE(CreateHeld(path, kMode).IsOpen()) << "the old name is free";
  EXPECT_EQ(RemoveUnheld(folder / "song.wav"), EBUSY);
}

TEST_F(HeldFileTest, ALockOfTheOtherFamilyHoldsTheFileToo) {
  PutFile(path, "text");
  const FileDescriptor other(::open(path.c_str(), O_RDWR | O_CLOEXEC));
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  ASSERT_EQ(::fcntl(other.Number(), F_OFD_SETLK, &lock), 0);
  EXPECT_FALSE(CreateHeld(path, kMode).IsOpen());
  EXPECT_EQ(FileText(path), "text");
}

TEST_F(HeldFileTest, WhatAKilledProcessLeftIsReplacedByANewFile) {
  PutFile(path, "half a song");
  std::filesystem::create_hard_link(path, folder / "second name");
  const FileDescriptor file = CreateHeld(path, kMode);
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(FileText(path), "");
  EXPECT_EQ(FileText(folder / "second name"), "half a song") << "replaced, not emptied";
}

TEST_F(HeldFileTest, APlantedLinkIsReplacedAndItsTargetKept) {
  PutFile(folder / "precious", "text");
  std::filesystem::create_symlink(folder / "precious", path);
  const FileDescriptor file = CreateHeld(path, kMode);
  ASSERT_TRUE(file.IsOpen());
  Write(file, "sound");
  EXPECT_EQ(FileText(folder / "precious"), "text");
  EXPECT_FALSE(std::filesystem::is_symlink(path));
}

TEST_F(HeldFileTest, ALinkToNothingCreatesNothingElsewhere) {
  std::filesystem::create_symlink(folder / "elsewhere", path);
  const FileDescriptor file = CreateHeld(path, kMode);
  EXPECT_TRUE(file.IsOpen());
  EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
}

TEST_F(HeldFileTest, AFolderAndAPipeKeepTheirNames) {
  std::filesystem::create_directory(path);
  EXPECT_FALSE(CreateHeld(path, kMode).IsOpen());
  EXPECT_EQ(errno, EBUSY);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(CreateHeld(folder / "pipe", kMode).IsOpen());
  EXPECT_EQ(errno, EBUSY);
  EXPECT_EQ(CountNames(folder.Path()), 2U);
}

TEST_F(HeldFileTest, AMissingFolderIsItsOwnError) {
  EXPECT_FALSE(CreateHeld(folder / "none/file", kMode).IsOpen());
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(RemoveUnheld(folder / "none/file"), ENOENT);
}

TEST_F(HeldFileTest, AFileIsFreeOnceItsHolderHasClosedIt) {
  FileDescriptor file = CreateHeld(path, kMode);
  file.Close();
  EXPECT_EQ(RemoveUnheld(path), 0);
  EXPECT_EQ(CountNames(folder.Path()), 0U);
}

}  // namespace
}  // namespace kestrune::platform
