#include "platform/posix/HeldFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrune::platform {

namespace {

/// Takes the hold on an open file; false if another one has it.
bool Hold(int file) {
  if (::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  // A program of another kind may hold the file by a lock of the other family.
  struct flock other {};
  other.l_type = F_WRLCK;
  other.l_whence = SEEK_SET;
  return ::fcntl(file, F_OFD_GETLK, &other) != 0 || other.l_type == F_UNLCK;
}

/// 0 if the path still leads to the open file, which may have been removed before it was held; EBUSY if not; or why
/// that cannot be found out.
int StillNamed(int file, const std::string& path) {
  struct stat open {};
  struct stat named {};
  if (::fstat(file, &open) != 0) return errno;
  if (::lstat(path.c_str(), &named) != 0) return errno == ENOENT ? EBUSY : errno;
  return open.st_dev == named.st_dev && open.st_ino == named.st_ino ? 0 : EBUSY;
}

/// Holds an open file if it is a plain one; 0, or the error.
int HoldPlain(int file, const std::string& path) {
  if (!Hold(file)) return EBUSY;
  struct stat status {};
  if (::fstat(file, &status) != 0) return errno;
  return S_ISREG(status.st_mode) ? StillNamed(file, path) : EBUSY;
}

int Unlink(const std::string& path) {
  return ::unlink(path.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int RemoveUnheld(const std::string& path) {
  struct stat there {};
  if (::lstat(path.c_str(), &there) != 0) return errno;
  if (S_ISLNK(there.st_mode)) return Unlink(path);
  if (!S_ISREG(there.st_mode)) return EBUSY;
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen()) return errno;
  // The hold stays until the name is gone, so that nobody takes the file up in between.
  const int error = HoldPlain(file.Number(), path);
  return error == 0 ? Unlink(path) : error;
}

FileDescriptor OpenHeld(const std::string& path) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen()) return {};
  const int error = HoldPlain(file.Number(), path);
  if (error == 0) return file;
  file.Close();
  errno = error;
  return {};
}

FileDescriptor CreateHeld(const std::string& path, mode_t mode) {
  constexpr int kTries = 3;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (file.IsOpen()) {
      // Another process may have taken the new file for a leftover before it was held.
      if (HoldPlain(file.Number(), path) == 0) return file;
      continue;
    }
    if (errno != EEXIST) return {};
    const int error = RemoveUnheld(path);
    if (error != 0 && error != ENOENT) {
      errno = EBUSY;
      return {};
    }
  }
  errno = EBUSY;
  return {};
}

}  // namespace kestrune::platform
