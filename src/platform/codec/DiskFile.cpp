#include "platform/codec/DiskFile.h"

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/HeldFile.h"
#include "platform/posix/SystemError.h"

namespace kestrune::platform {
namespace {

// A song is for everybody whom the user's own mask lets read it.
constexpr mode_t kSongMode = 0666;

bool WriteAll(int descriptor, std::int64_t offset, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      if (written == 0) errno = ENOSPC;
      return false;
    }
    offset += written;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

bool IsPlainFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

bool DiskFile::Take(FileDescriptor file, std::string_view path) {
  error_ = file.IsOpen() ? 0 : errno;
  readError_ = 0;
  file_ = std::move(file);
  path_ = path;
  size_ = 0;
  return IsOpen();
}

bool DiskFile::Fails(int error) {
  error_ = error;
  return false;
}

bool DiskFile::Create(std::string_view path) {
  Close();
  return Take(CreateHeld(std::string(path), kSongMode), path);
}

bool DiskFile::OpenExisting(std::string_view path) {
  Close();
  if (!Take(FileDescriptor(::open(std::string(path).c_str(), O_RDWR | O_CLOEXEC)), path)) return false;
  if (!IsPlainFile(file_.Number())) {
    Close();
    return Fails(EINVAL);
  }
  return TakeSize();
}

bool DiskFile::OpenHeld(std::string_view path) {
  Close();
  if (!Take(platform::OpenHeld(std::string(path)), path)) return false;
  return TakeSize();
}

bool DiskFile::TakeSize() {
  const off_t end = ::lseek(file_.Number(), 0, SEEK_END);
  if (end < 0) {
    const int error = errno;
    Close();
    return Fails(error);
  }
  size_ = end;
  return true;
}

bool DiskFile::Append(std::span<const std::byte> bytes) {
  if (!IsOpen()) return Fails(EBADF);
  if (!WriteAll(file_.Number(), size_, bytes)) {
    const int error = errno;
    base::Ignored(Truncate(size_));
    return Fails(error);
  }
  size_ += static_cast<std::int64_t>(bytes.size());
  return true;
}

bool DiskFile::WriteAt(std::int64_t offset, std::span<const std::byte> bytes) {
  if (!IsOpen() || offset < 0 || offset + static_cast<std::int64_t>(bytes.size()) > size_) {
    return Fails(EINVAL);
  }
  if (readError_ != 0) return Fails(readError_);
  return WriteAll(file_.Number(), offset, bytes) || Fails(errno);
}

std::optional<std::string> DiskFile::ReadAt(std::int64_t offset, std::size_t count) const {
  if (!IsOpen() || offset < 0 || offset + static_cast<std::int64_t>(count) > size_) return std::nullopt;
  std::string bytes(count, '\0');
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        ::pread(file_.Number(), bytes.data() + done, count - done, offset + static_cast<std::int64_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      error_ = got == 0 ? EIO : errno;  // it was longer before
      if (readError_ == 0) readError_ = error_;
      return std::nullopt;
    }
    done += static_cast<std::size_t>(got);
  }
  return bytes;
}

bool DiskFile::Truncate(std::int64_t size) {
  if (!IsOpen()) return Fails(EBADF);
  if (readError_ != 0) return Fails(readError_);
  if (::ftruncate(file_.Number(), size) != 0) return Fails(errno);
  size_ = size;
  return true;
}

timespec DiskFile::Written() const {
  struct stat status {};
  return ::fstat(file_.Number(), &status) == 0 ? status.st_mtim : timespec{};
}

void DiskFile::SetWritten(timespec time) {
  const std::array<timespec, 2> times{{{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, time}};
  base::Ignored(::futimens(file_.Number(), times.data()));
}

void DiskFile::Close() {
  file_.Close();
  size_ = 0;
}

base::Result DiskFile::Failure() const {
  return FailedWith(error_);
}

void DiskFile::CloseAndRemove() {
  if (IsOpen()) ::unlink(path_.c_str());
  Close();
}

}  // namespace kestrune::platform
