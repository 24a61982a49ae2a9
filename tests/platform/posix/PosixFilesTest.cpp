#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/HeldFile.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::CountNames;
using test::FileMode;
using test::FileText;
using test::OrdinaryUser;
using test::PutFile;
using test::TemporaryFolder;
using Names = std::vector<std::string>;

class PosixFilesTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  PosixFiles files;
};

TEST_F(PosixFilesTest, ExistsSeesFilesAndFolders) {
  PutFile(folder / "file", "");
  EXPECT_TRUE(files.Exists(folder / "file"));
  EXPECT_TRUE(files.Exists(folder.Path()));
  EXPECT_FALSE(files.Exists(folder / "none"));
  EXPECT_FALSE(files.Exists(folder / "file/below"));
  EXPECT_FALSE(files.Exists(""));
}

TEST_F(PosixFilesTest, AListHasThePlainFilesInTheOrderInWhichTheyWereWritten) {
  const auto put = [this](const char* name, std::size_t bytes, long seconds, long nanoseconds) {
    PutFile(folder / name, std::string(bytes, 'x'));
    const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                              {.tv_sec = seconds, .tv_nsec = nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / name).c_str(), &times[0], 0), 0);
  };
  put("a", 3, 1'700'000'000, 500);
  put("b", 1, 1'700'000'000, 400);
  put("d", 0, 1'600'000'000, 0);
  put("c", 2, 1'600'000'000, 0);
  put(".hidden", 2, 1'600'000'000, 0);
  ASSERT_TRUE(files.CreateFolder(folder / "folder"));
  std::filesystem::create_symlink(folder / "a", folder / "link");
  std::vector<std::string> found;
  for (const FileEntry& entry : files.List(folder.Path()))
    found.push_back(entry.Name + std::to_string(entry.Bytes));
  EXPECT_EQ(found, (std::vector<std::string>{"c2", "d0", "b1", "a3"}));
  const std::time_t moment = 1'700'000'000;
  std::tm fields{};
  ASSERT_NE(::localtime_r(&moment, &fields), nullptr);
  EXPECT_EQ(files.List(folder.Path())[3].Written,
            base::DateValue::FromCivil(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                                       fields.tm_hour, fields.tm_min, fields.tm_sec));
  EXPECT_TRUE(files.List(folder / "none").empty());
}

TEST_F(PosixFilesTest, ASizeIsThatOfAPlainFile) {
  PutFile(folder / "file", "12345");
  EXPECT_EQ(files.Bytes(folder / "file"), 5);
  EXPECT_EQ(files.Bytes(folder.Path()), std::nullopt);
  EXPECT_EQ(files.Bytes(folder / "none"), std::nullopt);
}

TEST_F(PosixFilesTest, AFileIsInUseWhileAnotherProcessHasItOpen) {
  const std::string path = folder / "song";
  PutFile(path, "sound");
  EXPECT_FALSE(files.InUse(path));
  int gate[2] = {};
  int ready[2] = {};
  ASSERT_EQ(::pipe(&gate[0]), 0);
  ASSERT_EQ(::pipe(&ready[0]), 0);
  const pid_t reader = ::fork();
  if (reader == 0) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    char byte = file >= 0 ? 'y' : 'n';
    if (::write(ready[1], &byte, 1) != 1) ::_exit(1);
    if (::read(gate[0], &byte, 1) != 1) ::_exit(1);
    ::_exit(0);
  }
  char byte = 'n';
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  ASSERT_EQ(byte, 'y');
  EXPECT_TRUE(files.InUse(path));
  EXPECT_FALSE(files.InUse(folder / "other"));
  ASSERT_EQ(::write(gate[1], &byte, 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(reader, &status, 0), reader);
  EXPECT_FALSE(files.InUse(path));
  EXPECT_FALSE(files.InUse(folder.Path()));
  for (const int end : {gate[0], gate[1], ready[0], ready[1]}) ::close(end);
}

// Whoever opens the file while it is being asked about must not end this process.
TEST_F(PosixFilesTest, AReaderThatComesInBetweenHarmsNobody) {
  const std::string path = folder / "song";
  PutFile(path, "sound");
  const pid_t reader = ::fork();
  if (reader == 0) {
    for (;;) {
      const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
      if (file >= 0) ::close(file);
    }
  }
  int inUse = 0;
  for (int i = 0; i < 20000; ++i) inUse += files.InUse(path) ? 1 : 0;
  ::kill(reader, SIGKILL);
  int status = 0;
  ASSERT_EQ(::waitpid(reader, &status, 0), reader);
  EXPECT_GE(inUse, 0);
}

TEST_F(PosixFilesTest, ARenameToAnotherVolumeIsKnownAsSuch) {
  std::string other = "/dev/shm/kestrune-test-XXXXXX";
  if (::mkdtemp(other.data()) == nullptr) GTEST_SKIP() << "there is no other volume";
  struct stat here {};
  struct stat there {};
  ASSERT_EQ(::stat(folder.Path().c_str(), &here), 0);
  ASSERT_EQ(::stat(other.c_str(), &there), 0);
  PutFile(folder / "file", "text");
  const RenameResult moved = files.RenameNoReplace(folder / "file", other + "/file");
  std::filesystem::remove_all(other);
  if (here.st_dev == there.st_dev) GTEST_SKIP() << "there is no other volume";
  EXPECT_FALSE(moved);
  EXPECT_TRUE(moved.OtherVolume);
  EXPECT_FALSE(moved.NameTaken);
  EXPECT_EQ(FileText(folder / "file"), "text");
  EXPECT_FALSE(files.RenameNoReplace(folder / "none", folder / "to").OtherVolume);
}

TEST_F(PosixFilesTest, APathWithANulFailsEverywhere) {
  PutFile(folder / "file", "text");
  const std::string bad = (folder / "file") + '\0' + "x";
  EXPECT_FALSE(files.Exists(bad));
  EXPECT_FALSE(files.CreateFolder(bad));
  EXPECT_FALSE(files.RemoveFolder(bad));
  EXPECT_TRUE(files.Matching(bad, "*").empty());
  EXPECT_TRUE(files.List(bad).empty());
  EXPECT_EQ(files.Bytes(bad), std::nullopt);
  EXPECT_FALSE(files.InUse(bad));
  EXPECT_FALSE(files.Remove(bad));
  EXPECT_FALSE(files.RenameNoReplace(bad, folder / "to"));
  EXPECT_FALSE(files.RenameNoReplace(folder / "file", bad));
  EXPECT_FALSE(files.Copy(bad, folder / "to"));
  EXPECT_FALSE(files.Copy(folder / "file", bad));
  EXPECT_EQ(files.Read(bad), std::nullopt);
  EXPECT_FALSE(files.Replace(bad, "new"));
  EXPECT_FALSE(files.Append(bad, "new"));
  EXPECT_EQ(files.OpenForWriting(bad), nullptr);
  EXPECT_EQ(files.FreeBytes(bad), -1);
  EXPECT_EQ(FileText(folder / "file"), "text");
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

TEST_F(PosixFilesTest, CreateFolderMakesOneThatIsNotThere) {
  EXPECT_TRUE(files.CreateFolder(folder / "a"));
  EXPECT_FALSE(files.CreateFolder(folder / "a"));
  EXPECT_FALSE(files.CreateFolder(folder / "b/c"));
}

TEST_F(PosixFilesTest, RemoveFolderTakesOnlyAnEmptyOne) {
  EXPECT_TRUE(files.CreateFolder(folder / "a"));
  PutFile(folder / "a/file", "");
  EXPECT_FALSE(files.RemoveFolder(folder / "a"));
  EXPECT_FALSE(files.RemoveFolder(folder / "a/file"));
  EXPECT_TRUE(files.Remove(folder / "a/file"));
  EXPECT_TRUE(files.RemoveFolder(folder / "a"));
  EXPECT_FALSE(files.RemoveFolder(folder / "a"));
}

TEST_F(PosixFilesTest, MatchingGivesPlainFilesSorted) {
  for (const char* name : {"b.txt", "a.txt", "c.log", "plain", ".hidden.txt", "Ä.txt"})
    PutFile(folder / name, "");
  std::filesystem::create_directory(folder / "folder.txt");
  std::filesystem::create_symlink("c.log", folder / "link.txt");
  std::filesystem::create_symlink("nowhere", folder / "dangling.txt");
  EXPECT_EQ(files.Matching(folder.Path(), "*.txt"), Names({"a.txt", "b.txt", "link.txt", "Ä.txt"}));
  EXPECT_EQ(files.Matching(folder.Path(), "?.log"), Names({"c.log"}));
  EXPECT_EQ(files.Matching(folder.Path(), "plain"), Names({"plain"}));
  EXPECT_EQ(files.Matching(folder.Path(), "*").size(), 6U);
  EXPECT_EQ(files.Matching(folder / "none", "*"), Names());
}

TEST_F(PosixFilesTest, RemoveTakesFilesNeverFolders) {
  PutFile(folder / "file", "");
  std::filesystem::create_directory(folder / "empty");
  EXPECT_TRUE(files.Remove(folder / "file"));
  EXPECT_FALSE(files.Remove(folder / "file"));
  EXPECT_FALSE(files.Remove(folder / "empty"));
}

TEST_F(PosixFilesTest, RenameNeverReplaces) {
  PutFile(folder / "from", "new");
  PutFile(folder / "to", "old");
  EXPECT_FALSE(files.RenameNoReplace(folder / "from", folder / "to"));
  EXPECT_EQ(FileText(folder / "to"), "old");
  EXPECT_TRUE(files.RenameNoReplace(folder / "from", folder / "free"));
  EXPECT_EQ(FileText(folder / "free"), "new");
  EXPECT_FALSE(files.Exists(folder / "from"));
}

TEST_F(PosixFilesTest, CopyTakesAllBytesAndReplaces) {
  std::string bytes;
  for (int i = 0; i < 300000; ++i) bytes += static_cast<char>(i * 7);
  PutFile(folder / "from", bytes);
  PutFile(folder / "to", "old");
  EXPECT_TRUE(files.Copy(folder / "from", folder / "to"));
  EXPECT_EQ(FileText(folder / "to"), bytes);
  EXPECT_EQ(FileText(folder / "from"), bytes);
  EXPECT_EQ(CountNames(folder.Path()), 2U);
}

TEST_F(PosixFilesTest, CopyOfWhatIsNoFileFails) {
  EXPECT_FALSE(files.Copy(folder / "none", folder / "to"));
  EXPECT_FALSE(files.Copy(folder.Path(), folder / "to"));
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(files.Copy(folder / "pipe", folder / "to"));
  EXPECT_FALSE(files.Exists(folder / "to"));
}

TEST_F(PosixFilesTest, ReadGivesTheWholeFileOrNothing) {
  const std::string text("a\0b\n\xFF", 5);
  PutFile(folder / "file", text);
  PutFile(folder / "empty", "");
  EXPECT_EQ(files.Read(folder / "file"), text);
  EXPECT_EQ(files.Read(folder / "empty"), "");
  EXPECT_EQ(files.Read(folder / "none"), std::nullopt);
  EXPECT_EQ(files.Read(folder.Path()), std::nullopt);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(files.Read(folder / "pipe"), std::nullopt);
}

TEST_F(PosixFilesTest, ReplacePutsANewFileInPlace) {
  EXPECT_TRUE(files.Replace(folder / "file", "one"));
  EXPECT_EQ(FileText(folder / "file"), "one");
  EXPECT_TRUE(files.Replace(folder / "file", "two"));
  EXPECT_EQ(FileText(folder / "file"), "two");
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

TEST_F(PosixFilesTest, AReaderWithTheOldFileOpenKeepsTheOldText) {
  PutFile(folder / "file", "old");
  std::ifstream reader(folder / "file");
  EXPECT_TRUE(files.Replace(folder / "file", "new"));
  std::string text;
  reader >> text;
  EXPECT_EQ(text, "old");
}

TEST_F(PosixFilesTest, ReplaceFollowsALink) {
  PutFile(folder / "real", "old");
  std::filesystem::create_symlink("real", folder / "link");
  EXPECT_TRUE(files.Replace(folder / "link", "new"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(FileText(folder / "real"), "new");
}

TEST_F(PosixFilesTest, ReplaceOfAFolderFailsAndLeavesNothing) {
  std::filesystem::create_directory(folder / "sub");
  EXPECT_FALSE(files.Replace(folder / "sub", "x"));
  EXPECT_FALSE(files.Replace(folder / "none/file", "x"));
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

TEST_F(PosixFilesTest, AppendMakesTheFileAndGoesOnAtItsEnd) {
  EXPECT_TRUE(files.Append(folder / "log", "one\n"));
  EXPECT_TRUE(files.Append(folder / "log", "two\n"));
  EXPECT_TRUE(files.Append(folder / "log", ""));
  EXPECT_EQ(FileText(folder / "log"), "one\ntwo\n");
  EXPECT_FALSE(files.Append(folder.Path(), "x"));
  EXPECT_FALSE(files.Append(folder / "none/log", "x"));
}

TEST_F(PosixFilesTest, AFileThatWasMovedAwayIsBegunAnewByTheNextLine) {
  EXPECT_TRUE(files.Append(folder / "log", "one\n"));
  std::filesystem::rename(folder / "log", folder / "log.1");
  EXPECT_TRUE(files.Append(folder / "log", "two\n"));
  EXPECT_EQ(files.Read(folder / "log"), "two\n");
  EXPECT_EQ(files.Read(folder / "log.1"), "one\n");
}

TEST_F(PosixFilesTest, TwoProcessesAppendWholeLines) {
  const std::string lineOfChild(500, 'c');
  const std::string lineOfParent(500, 'p');
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  const std::string line = (child == 0 ? lineOfChild : lineOfParent) + "\n";
  bool good = true;
  for (int i = 0; i < 200; ++i) good = files.Append(folder / "log", line) && good;
  if (child == 0) ::_exit(good ? 0 : 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(good);
  EXPECT_EQ(status, 0);
  std::ifstream log(folder / "log");
  int lines = 0;
  for (std::string each; std::getline(log, each); ++lines) {
    ASSERT_TRUE(each == lineOfChild || each == lineOfParent) << each;
  }
  EXPECT_EQ(lines, 400);
}

TEST_F(PosixFilesTest, AnOpenFileHasEachLineOnItsWayAtOnce) {
  PutFile(folder / "trace", "old text");
  const auto trace = files.OpenForWriting(folder / "trace");
  ASSERT_NE(trace, nullptr);
  EXPECT_EQ(FileText(folder / "trace"), "");
  EXPECT_TRUE(trace->WriteLine("one"));
  EXPECT_EQ(FileText(folder / "trace"), "one\n");
  EXPECT_TRUE(trace->WriteLine(""));
  EXPECT_EQ(FileText(folder / "trace"), "one\n\n");
  EXPECT_EQ(files.OpenForWriting(folder.Path()), nullptr);
  EXPECT_EQ(files.OpenForWriting(folder / "none/trace"), nullptr);
}

TEST_F(PosixFilesTest, FreeBytesAreThoseOfTheVolumeAlsoForAPathToBeMade) {
  const double free = files.FreeBytes(folder.Path());
  EXPECT_GT(free, 0);
  EXPECT_GT(files.FreeBytes(folder / "not/yet/there"), 0);
  PutFile(folder / "file", "");
  EXPECT_GT(files.FreeBytes(folder / "file/below"), 0);
  EXPECT_EQ(files.FreeBytes(""), -1);
}

TEST_F(PosixFilesTest, APrivateFolderIsNewEachTimeAndClosedToOthers) {
  const std::string one = files.CreatePrivateFolder(folder.Path());
  const std::string two = files.CreatePrivateFolder(folder.Path());
  EXPECT_TRUE(one.starts_with(folder.Path() + "/")) << one;
  EXPECT_NE(one, two);
  EXPECT_EQ(FileMode(one), 0700U);
  EXPECT_TRUE(std::filesystem::is_directory(one));
  EXPECT_EQ(files.CreatePrivateFolder(folder / "none"), "");
  EXPECT_EQ(files.CreatePrivateFolder(""), "");
}

TEST_F(PosixFilesTest, AnOwnFolderIsMadeWithItsParentsAndClosedToOthers) {
  EXPECT_TRUE(files.MakeOwnFolder(folder / "a/b"));
  EXPECT_EQ(FileMode(folder / "a"), 0700U);
  EXPECT_EQ(FileMode(folder / "a/b"), 0700U);
}

TEST_F(PosixFilesTest, AnOwnFolderThatStoodOpenIsClosed) {
  ASSERT_EQ(::mkdir((folder / "open").c_str(), 0755), 0);
  EXPECT_TRUE(files.MakeOwnFolder(folder / "open"));
  EXPECT_EQ(FileMode(folder / "open"), 0700U);
}

TEST_F(PosixFilesTest, WhatIsWrittenBelongsToItsUserAlone) {
  EXPECT_TRUE(files.Append(folder / "log", "a\n"));
  EXPECT_EQ(FileMode(folder / "log"), 0600U);
  EXPECT_TRUE(files.Replace(folder / "lists", "a\n"));
  EXPECT_EQ(FileMode(folder / "lists"), 0600U);
  EXPECT_TRUE(files.OpenForWriting(folder / "trace"));
  EXPECT_EQ(FileMode(folder / "trace"), 0600U);
}

TEST_F(PosixFilesTest, AFileThatStoodOpenIsClosedWhenItIsReplaced) {
  PutFile(folder / "lists", "old");
  ASSERT_EQ(::chmod((folder / "lists").c_str(), 0644), 0);
  EXPECT_TRUE(files.Replace(folder / "lists", "new"));
  EXPECT_EQ(FileMode(folder / "lists"), 0600U);
}

TEST_F(PosixFilesTest, AProgramIsMadeForItsUserAlone) {
  EXPECT_TRUE(files.CreateProgram(folder / "program", std::string("a\0b", 3)));
  EXPECT_EQ(FileText(folder / "program"), std::string("a\0b", 3));
  EXPECT_EQ(FileMode(folder / "program"), 0700U);
  EXPECT_TRUE(files.CreateProgram(folder / "empty", ""));
}

TEST_F(PosixFilesTest, AProgramNeverTakesAnExistingName) {
  PutFile(folder / "file", "old");
  std::filesystem::create_symlink(folder / "target", folder / "link");
  std::filesystem::create_directory(folder / "folder");
  EXPECT_FALSE(files.CreateProgram(folder / "file", "new"));
  EXPECT_FALSE(files.CreateProgram(folder / "link", "new"));
  EXPECT_FALSE(files.CreateProgram(folder / "folder", "new"));
  EXPECT_FALSE(files.CreateProgram(folder / "folder/", "new"));
  EXPECT_FALSE(files.CreateProgram(folder / "folder/..", "new"));
  EXPECT_EQ(FileText(folder / "file"), "old");
  EXPECT_FALSE(files.Exists(folder / "target"));
}

TEST_F(PosixFilesTest, NamesOf255BytesWorkAndLongerOnesFail) {
  const std::string longest = folder / std::string(255, 'n');
  const std::string tooLong = folder / std::string(256, 'n');
  EXPECT_TRUE(files.Replace(longest, "one"));
  EXPECT_TRUE(files.Append(longest, " two"));
  EXPECT_EQ(files.Read(longest), "one two");
  EXPECT_TRUE(files.Copy(longest, folder / std::string(255, 'm')));
  EXPECT_FALSE(files.Exists(tooLong));
  EXPECT_FALSE(files.CreateFolder(tooLong));
  EXPECT_FALSE(files.Replace(tooLong, "x"));
  EXPECT_FALSE(files.Append(tooLong, "x"));
  EXPECT_FALSE(files.Copy(longest, tooLong));
  EXPECT_FALSE(files.RenameNoReplace(longest, tooLong));
  EXPECT_EQ(files.OpenForWriting(tooLong), nullptr);
  EXPECT_EQ(files.Read(longest), "one two");
  EXPECT_EQ(CountNames(folder.Path()), 2U);
}

TEST_F(PosixFilesTest, NamesOfAnyBytesAreTakenAsTheyAre) {
  for (const char* name :
       {"Beyoncé – Halo.mp3", "\xE9\xFF", "new\nline", "back\\slash", "-rf", "日本", " "}) {
    EXPECT_TRUE(files.Replace(folder / name, name));
    EXPECT_EQ(files.Read(folder / name), name);
  }
  EXPECT_EQ(files.Matching(folder.Path(), "*").size(), 7U);
}

TEST_F(PosixFilesTest, AnUnwritableFolderRefusesAndKeepsWhatItHolds) {
  PutFile(folder / "file", "text");
  ASSERT_EQ(::chmod(folder.Path().c_str(), 0555), 0);
  {
    const OrdinaryUser user;
    EXPECT_FALSE(files.CreateFolder(folder / "new"));
    EXPECT_FALSE(files.Remove(folder / "file"));
    EXPECT_FALSE(files.RenameNoReplace(folder / "file", folder / "to"));
    EXPECT_FALSE(files.Replace(folder / "file", "new"));
    EXPECT_FALSE(files.Copy(folder / "file", folder / "to"));
    EXPECT_FALSE(files.Append(folder / "new", "x"));
    EXPECT_EQ(files.OpenForWriting(folder / "new"), nullptr);
    EXPECT_EQ(files.Read(folder / "file"), "text");
  }
  ASSERT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

TEST_F(PosixFilesTest, CheckWritableLooksAtTheNearestFolderThatExists) {
  PutFile(folder / "file", "text");
  EXPECT_TRUE(files.CheckWritable(folder.Path()).Ok());
  EXPECT_TRUE(files.CheckWritable(folder / "new/below//deeper/").Ok());
  EXPECT_EQ(files.CheckWritable(folder / "file").Cause(), "Not a directory");
  EXPECT_EQ(files.CheckWritable(folder / "file/below").Cause(), "Not a directory");
  ASSERT_EQ(::chmod(folder.Path().c_str(), 0555), 0);
  {
    const OrdinaryUser user;
    EXPECT_EQ(files.CheckWritable(folder.Path()).Cause(), "Permission denied");
    EXPECT_EQ(files.CheckWritable(folder / "new/below/").Cause(), "Permission denied");
  }
  ASSERT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
  EXPECT_TRUE(files.CheckWritable("/").Ok() || files.CheckWritable("/").Cause() == "Permission denied");
  EXPECT_FALSE(files.CheckWritable("").Ok());
}

/// A volume of 64 KiB, all of it taken.
class FullDiskTest : public PosixFilesTest {
 protected:
  void SetUp() override {
    mounted_ = ::mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "size=64k") == 0;
    if (!mounted_) GTEST_SKIP() << "a small volume cannot be mounted here: " << std::strerror(errno);
    PutFile(folder / "log", "one\n");
    PutFile(folder / "filler", std::string(60000, 'x'));
  }
  void TearDown() override {
    if (!mounted_) return;
    EXPECT_EQ(::umount(folder.Path().c_str()), 0);
  }

 private:
  bool mounted_ = false;
};

TEST_F(FullDiskTest, AFailedWriteLeavesThingsAsTheyWere) {
  const std::string large(20000, 'y');
  EXPECT_LT(files.FreeBytes(folder.Path()), 20000);
  EXPECT_FALSE(files.Replace(folder / "log", large));
  EXPECT_EQ(FileText(folder / "log"), "one\n");
  EXPECT_FALSE(files.Append(folder / "log", large));
  EXPECT_EQ(FileText(folder / "log"), "one\n");
  EXPECT_FALSE(files.Copy(folder / "filler", folder / "copy"));
  EXPECT_EQ(CountNames(folder.Path()), 2U);
  const auto trace = files.OpenForWriting(folder / "trace");
  ASSERT_NE(trace, nullptr);
  EXPECT_FALSE(trace->WriteLine(large));
}

TEST_F(FullDiskTest, AProgramThatDoesNotFitLeavesNothing) {
  EXPECT_FALSE(files.CreateProgram(folder / "program", std::string(20000, 'y')));
  EXPECT_FALSE(files.Exists(folder / "program"));
}

TEST_F(FullDiskTest, WorksAgainOnceThereIsRoom) {
  EXPECT_FALSE(files.Replace(folder / "log", std::string(20000, 'y')));
  EXPECT_TRUE(files.Remove(folder / "filler"));
  EXPECT_TRUE(files.Replace(folder / "log", std::string(20000, 'y')));
}

TEST_F(PosixFilesTest, TheNextWriteRemovesWhatKilledProcessesLeftInTheFolder) {
  PutFile(folder / ".kestrune-123-0", "half a list");
  PutFile(folder / ".kestrune-4194304-7", "half a list");
  PutFile(folder / ".kestrune-notes", "not ours");
  EXPECT_TRUE(files.Replace(folder / "list.txt", "text"));
  EXPECT_EQ(FileText(folder / "list.txt"), "text");
  EXPECT_EQ(FileText(folder / ".kestrune-notes"), "not ours");
  EXPECT_EQ(CountNames(folder.Path()), 2U);
}

TEST_F(PosixFilesTest, AWriteOfAnotherProcessIsNoLeftover) {
  const platform::FileDescriptor other = platform::CreateHeld(folder / ".kestrune-123-0", 0600);
  ASSERT_TRUE(other.IsOpen());
  EXPECT_TRUE(files.Replace(folder / "list.txt", "text"));
  EXPECT_EQ(CountNames(folder.Path()), 2U);
}

TEST_F(PosixFilesTest, AFailureSaysWhy) {
  PutFile(folder / "a", "text");
  PutFile(folder / "b", "text");
  const platform::RenameResult taken = files.RenameNoReplace(folder / "a", folder / "b");
  EXPECT_TRUE(taken.NameTaken);
  EXPECT_EQ(taken.Outcome.Cause(), "File exists");
  const platform::RenameResult absent = files.RenameNoReplace(folder / "none", folder / "c");
  EXPECT_FALSE(absent.NameTaken);
  EXPECT_EQ(absent.Outcome.Cause(), "No such file or directory");
  EXPECT_EQ(files.Remove(folder / "none").Cause(), "No such file or directory");
  EXPECT_EQ(files.CreateFolder(folder / "a").Cause(), "File exists");
  EXPECT_EQ(files.Replace(folder / "none/a", "text").Cause(), "No such file or directory");
  EXPECT_EQ(files.Append(folder / "none/a", "text").Cause(), "No such file or directory");
  EXPECT_EQ(files.Copy(folder / "none", folder / "c").Cause(), "No such file or directory");
  EXPECT_EQ(files.RenameNoReplace(folder / "a", folder / std::string(300, 'x')).Outcome.Cause(),
            "File name too long");
}

TEST_F(PosixFilesTest, AHeldFileIsNotRemovedAsALeftover) {
  const platform::FileDescriptor capture = platform::CreateHeld(folder / "Capture0.wav", 0600);
  PutFile(folder / "Capture1.wav", "left");
  EXPECT_EQ(files.RemoveUnlessHeld(folder / "Capture0.wav").Cause(), "Device or resource busy");
  EXPECT_TRUE(files.RemoveUnlessHeld(folder / "Capture1.wav"));
  EXPECT_EQ(CountNames(folder.Path()), 1U);
}

}  // namespace
}  // namespace kestrune::platform
