#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::platform {

/// A file on disk that reports every failure. Closes itself when destroyed.
class DiskFile {
 public:
  DiskFile() = default;
  ~DiskFile() { Close(); }
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  /// Opens for writing and empties what is there.
  [[nodiscard]] bool Create(std::string_view path);
  /// Opens a plain file that exists, for reading and writing.
  [[nodiscard]] bool OpenExisting(std::string_view path);
  [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }

  /// All or nothing: what does not fit whole is taken off again, so that the file ends where a block of the
  /// caller ends.
  [[nodiscard]] bool Append(std::span<const std::byte> bytes);
  /// Writes over bytes that are there already.
  [[nodiscard]] bool WriteAt(std::int64_t offset, std::span<const std::byte> bytes);
  /// Exactly `count` bytes, or nothing.
  [[nodiscard]] std::optional<std::string> ReadAt(std::int64_t offset, std::size_t count) const;
  [[nodiscard]] std::int64_t Size() const { return size_; }
  [[nodiscard]] bool Truncate(std::int64_t size);

  void Close();
  /// Closes, and removes a plain file by the path of Create.
  void CloseAndRemove();

 private:
  std::string path_;
  int descriptor_ = -1;
  std::int64_t size_ = 0;
};

}  // namespace kestrune::platform
