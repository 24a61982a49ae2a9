#include "platform/posix/WholeFile.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/HeldFile.h"
#include "platform/posix/SystemError.h"

namespace kestrune::platform {

namespace {

std::string FollowLinks(const std::string& path) {
  std::array<char, PATH_MAX> target{};
  return ::realpath(path.c_str(), target.data()) == nullptr ? path : std::string(target.data());
}

constexpr std::string_view kPrivatePattern = ".kestrune-*-*";

/// Removes what processes that were killed while they wrote have left in the folder.
void RemoveLeftovers(const std::string& folder) {
  DIR* const open = ::opendir(folder.c_str());
  if (open == nullptr) return;
  while (const dirent* entry = ::readdir(open)) {
    const std::string name(&entry->d_name[0]);
    if (MatchesPattern(name, kPrivatePattern)) base::Ignored(RemoveUnheld(folder + "/" + name));
  }
  ::closedir(open);
}

/// A new file under a hidden name that is short, whatever the length of the name it is to take.
FileDescriptor OpenPrivate(const std::string& folder, std::string& path) {
  for (int attempt = 0; attempt < 1000; ++attempt) {
    path = fmt::format("{}/.kestrune-{}-{}", folder, ::getpid(), attempt);
    FileDescriptor file = CreateHeld(path, kOwnFile);
    if (file.IsOpen() || errno != EBUSY) return file;
  }
  return {};
}

/// The new name itself must survive a power cut too, as far as the file system can promise it.
void SyncFolder(const std::string& folder) {
  const FileDescriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.IsOpen()) base::Ignored(::fsync(directory.Number()));
}

}  // namespace

std::optional<std::string> ReadToEnd(int file) {
  std::string text;
  std::array<char, 65536> block{};
  for (;;) {
    const ssize_t count = ::read(file, block.data(), block.size());
    if (count == 0) return text;
    if (count > 0) {
      text.append(block.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return std::nullopt;
    }
  }
}

bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      if (count == 0) errno = ENOSPC;
      return false;
    }
  }
  return true;
}

base::Result ReplaceFile(const std::string& path, const std::function<bool(int file)>& write) {
  const std::string target = FollowLinks(path);
  const std::string folder = FolderOf(target);
  std::string temporary;
  RemoveLeftovers(folder);
  FileDescriptor file = OpenPrivate(folder, temporary);
  if (!file.IsOpen()) return FailedWith(errno);

  const bool good = write(file.Number()) && ::fsync(file.Number()) == 0;
  // The file stays open, and so held, until it has its name: nobody takes it for a leftover.
  const base::Result done = ResultOf(good ? std::rename(temporary.c_str(), target.c_str()) : -1);
  if (!done) {
    base::Ignored(::unlink(temporary.c_str()));
    return done;
  }
  SyncFolder(folder);
  return done;
}

}  // namespace kestrune::platform
