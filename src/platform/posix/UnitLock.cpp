#include "platform/posix/UnitLock.h"

#include <charconv>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/WholeFile.h"

namespace kestrune::platform {

namespace {

/// A lock on the whole file that belongs to the open file, not to the process, and that can be queried
/// without being taken: a probe never keeps a unit from starting.
struct flock WholeFileLock() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

}  // namespace

UnitLock::UnitLock(std::string_view runtimeFolder, std::string_view unit)
    : path_(fmt::format("{}/unit{}.lock", runtimeFolder, FileNameFor(unit))) {}

UnitLock::~UnitLock() {
  // Removing the file would let two later processes lock two files of one name.
  if (held_.IsOpen()) base::Ignored(::ftruncate(held_.Number(), 0));
}

bool UnitLock::TryAcquire() {
  if (held_.IsOpen()) return true;
  FileDescriptor file(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  struct flock lock = WholeFileLock();
  if (!file.IsOpen() || ::fcntl(file.Number(), F_OFD_SETLK, &lock) != 0) return false;
  // The number is for those who ask who holds the lock; the lock itself does not need it.
  base::Ignored(::ftruncate(file.Number(), 0) == 0 &&
                WriteAll(file.Number(), fmt::format("{}\n", ::getpid())));
  held_ = std::move(file);
  return true;
}

std::optional<pid_t> UnitLock::HolderPid() const {
  if (held_.IsOpen()) return ::getpid();
  const FileDescriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  if (!file.IsOpen()) return std::nullopt;
  // If the lock is free, nobody runs the unit, whatever the file says.
  struct flock lock = WholeFileLock();
  if (::fcntl(file.Number(), F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return std::nullopt;
  const auto text = ReadToEnd(file.Number());
  pid_t pid = 0;
  if (!text) return std::nullopt;
  const auto read = std::from_chars(text->data(), text->data() + text->size(), pid);
  return read.ec == std::errc() ? std::optional(pid) : std::nullopt;
}

}  // namespace kestrune::platform
