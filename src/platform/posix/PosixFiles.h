#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace kestrune::platform {

/// The file system of the machine. Names go to it byte for byte; a path with a NUL fails.
class PosixFiles final : public Files {
 public:
  [[nodiscard]] bool Exists(std::string_view path) const override;
  [[nodiscard]] base::Result CheckWritable(std::string_view folder) const override;
  [[nodiscard]] base::Result CreateFolder(std::string_view path) override;
  [[nodiscard]] bool MakeOwnFolder(std::string_view path) override;
  [[nodiscard]] std::string CreatePrivateFolder(std::string_view parent) override;
  [[nodiscard]] base::Result RemoveFolder(std::string_view path) override;
  /// A link to a plain file counts as one.
  [[nodiscard]] std::vector<std::string> Matching(std::string_view folder,
                                                  std::string_view pattern) const override;
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder) const override;
  [[nodiscard]] std::optional<std::int64_t> Bytes(std::string_view path) const override;
  /// Asks the system for a lease, which it gives only on a file that nobody has open, and gives it back. Only on the
  /// user's own files.
  [[nodiscard]] bool InUse(std::string_view path) const override;
  /// Removes a file, never a folder.
  [[nodiscard]] base::Result Remove(std::string_view path) override;
  [[nodiscard]] base::Result RemoveUnlessHeld(std::string_view path) override;
  [[nodiscard]] RenameResult RenameNoReplace(std::string_view from, std::string_view to) override;
  /// Plain files only; a file of the new name is replaced as a whole.
  [[nodiscard]] base::Result Copy(std::string_view from, std::string_view to) override;
  /// Plain files only, so that a pipe never holds up the caller.
  [[nodiscard]] std::optional<std::string> Read(std::string_view path) const override;
  [[nodiscard]] base::Result Replace(std::string_view path, std::string_view text) override;
  [[nodiscard]] base::Result Append(std::string_view path, std::string_view text) override;
  /// A link of that name counts as an existing file.
  [[nodiscard]] base::Result CreateProgram(std::string_view path, std::string_view bytes) override;
  [[nodiscard]] std::unique_ptr<OpenTextFile> OpenForWriting(std::string_view path) override;
  /// A path that does not exist yet counts as being in the nearest folder above it that does.
  [[nodiscard]] double FreeBytes(std::string_view path) const override;
};

}  // namespace kestrune::platform
