#include "platform/codec/DiskFile.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Ignored.h"

namespace kestrune::platform {
namespace {

bool WriteAll(int descriptor, std::int64_t offset, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
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

bool DiskFile::Create(std::string_view path) {
  Close();
  path_ = path;
  descriptor_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return IsOpen();
}

bool DiskFile::OpenExisting(std::string_view path) {
  Close();
  path_ = path;
  descriptor_ = ::open(path_.c_str(), O_RDWR | O_CLOEXEC);
  if (!IsOpen()) return false;
  if (!IsPlainFile(descriptor_)) {
    Close();
    return false;
  }
  size_ = ::lseek(descriptor_, 0, SEEK_END);
  return true;
}

bool DiskFile::Append(std::span<const std::byte> bytes) {
  if (!IsOpen()) return false;
  if (!WriteAll(descriptor_, size_, bytes)) {
    base::Ignored(Truncate(size_));
    return false;
  }
  size_ += static_cast<std::int64_t>(bytes.size());
  return true;
}

bool DiskFile::WriteAt(std::int64_t offset, std::span<const std::byte> bytes) {
  if (!IsOpen() || offset < 0 || offset + static_cast<std::int64_t>(bytes.size()) > size_) return false;
  return WriteAll(descriptor_, offset, bytes);
}

std::optional<std::string> DiskFile::ReadAt(std::int64_t offset, std::size_t count) const {
  if (!IsOpen() || offset < 0 || offset + static_cast<std::int64_t>(count) > size_) return std::nullopt;
  std::string bytes(count, '\0');
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        ::pread(descriptor_, bytes.data() + done, count - done, offset + static_cast<std::int64_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    done += static_cast<std::size_t>(got);
  }
  return bytes;
}

bool DiskFile::Truncate(std::int64_t size) {
  if (!IsOpen() || ::ftruncate(descriptor_, size) != 0) return false;
  size_ = size;
  return true;
}

void DiskFile::Close() {
  if (IsOpen()) ::close(descriptor_);
  descriptor_ = -1;
  size_ = 0;
}

void DiskFile::CloseAndRemove() {
  // A device is never removed, whatever the user entered as the folder of recordings.
  if (IsOpen() && IsPlainFile(descriptor_)) ::unlink(path_.c_str());
  Close();
}

}  // namespace kestrune::platform
