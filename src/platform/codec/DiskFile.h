#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <time.h>

#include "base/Result.h"
#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

/// A file on disk that reports every failure, and why. Closes itself when destroyed.
class DiskFile {
 public:
  DiskFile() = default;
  ~DiskFile() = default;
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  /// Creates a file that is held while it is open, see platform/posix/HeldFile.h.
  [[nodiscard]] bool Create(std::string_view path);
  /// Opens a plain file that exists, for reading and writing.
  [[nodiscard]] bool OpenExisting(std::string_view path);
  /// The same for a file that nobody holds, which is held while it is open; never through a link.
  [[nodiscard]] bool OpenHeld(std::string_view path);
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }

  /// All or nothing: a part that was written before a failure is removed again, so that the file ends with a whole
  /// block of the caller.
  [[nodiscard]] bool Append(std::span<const std::byte> bytes);
  /// Overwrites bytes that are there already. Refused, like Truncate, once the system has refused to read any: what is known
  /// of the file may then be wrong.
  [[nodiscard]] bool WriteAt(std::int64_t offset, std::span<const std::byte> bytes);
  /// Exactly `count` bytes, or nothing: there are not so many, or the system refuses them, which is then the failure.
  [[nodiscard]] std::optional<std::string> ReadAt(std::int64_t offset, std::size_t count) const;
  [[nodiscard]] std::int64_t Size() const { return size_; }
  [[nodiscard]] bool Truncate(std::int64_t size);
  /// When the file was last written, as the system has it.
  [[nodiscard]] timespec Written() const;
  /// Gives it back its time.
  void SetWritten(timespec time);

  /// The error number of the call that failed last, 0 if none has failed since the file was opened.
  [[nodiscard]] int Error() const { return error_; }
  /// The error number of the first read that the system has refused, 0 if there is none.
  [[nodiscard]] int ReadError() const { return readError_; }
  /// Error() in words. One of the calls must have failed.
  [[nodiscard]] base::Result Failure() const;

  void Close();
  /// Closes, and removes the file by the path of Create.
  void CloseAndRemove();

 private:
  /// Takes up a file that has just been opened, or the reason why it was not.
  [[nodiscard]] bool Take(FileDescriptor file, std::string_view path);
  [[nodiscard]] bool TakeSize();
  [[nodiscard]] bool Fails(int error);

  std::string path_;
  FileDescriptor file_;
  std::int64_t size_ = 0;
  mutable int error_ = 0;  // a read may fail too
  mutable int readError_ = 0;
};

}  // namespace kestrune::platform
