#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "base/Result.h"

namespace kestrune::platform {

/// How a rename went. `NameTaken` says that it failed because the new name is in use, so that another name may do;
/// `OtherVolume`, that the new name lies on another volume, where only a copy can go.
struct [[nodiscard]] RenameResult {
  base::Result Outcome = base::Result::Done();
  bool NameTaken = false;
  bool OtherVolume = false;

  explicit operator bool() const { return Outcome.Ok(); }
};

/// A plain file in a folder.
struct FileEntry {
  std::string Name;
  std::int64_t Bytes = 0;
  base::DateValue Written;  ///< when its contents last changed, local time

  bool operator==(const FileEntry&) const = default;
};

/// A text file that stays open for writing, such as a trace. Each line is on its way to disk when the call
/// returns.
class OpenTextFile {
 public:
  virtual ~OpenTextFile() = default;
  [[nodiscard]] virtual bool WriteLine(std::string_view text) = 0;
};

/// The file system. Paths are UTF-8 with "/" between folders. A call that fails leaves things as they were. A Result
/// then carries the system's reason; the other calls return false, or nothing. Files that are written here belong to
/// the user alone (mode 0600). Used from the main thread.
class Files {
 public:
  virtual ~Files() = default;

  [[nodiscard]] virtual bool Exists(std::string_view path) const = 0;
  /// Whether files could be created in the folder or, while it does not exist, in the nearest folder above it that
  /// does; the cause is the system's.
  [[nodiscard]] virtual base::Result CheckWritable(std::string_view folder) const = 0;
  /// Creates one folder, not its parents; fails if it exists already.
  [[nodiscard]] virtual base::Result CreateFolder(std::string_view path) = 0;
  /// Makes a folder and the parents that are missing, all closed to other users, and closes one that is there already.
  [[nodiscard]] virtual bool MakeOwnFolder(std::string_view path) = 0;
  /// Makes a folder with a new name inside another one, closed to other users; its path, or empty.
  [[nodiscard]] virtual std::string CreatePrivateFolder(std::string_view parent) = 0;
  /// Removes an empty folder.
  [[nodiscard]] virtual base::Result RemoveFolder(std::string_view path) = 0;
  /// Names of the plain, not hidden files of a folder that match a pattern with "*" and "?", sorted.
  [[nodiscard]] virtual std::vector<std::string> Matching(std::string_view folder,
                                                          std::string_view pattern) const = 0;
  /// The plain, not hidden files of a folder, no links: what was written first comes first, and of the same moment by
  /// name. Empty if there is no such folder.
  [[nodiscard]] virtual std::vector<FileEntry> List(std::string_view folder) const = 0;
  /// The size of a file; nothing if there is none.
  [[nodiscard]] virtual std::optional<std::int64_t> Bytes(std::string_view path) const = 0;
  /// Whether anybody, this process too, has the file open at this moment; false where that cannot be told.
  [[nodiscard]] virtual bool InUse(std::string_view path) const = 0;

  [[nodiscard]] virtual base::Result Remove(std::string_view path) = 0;
  /// Removes a file, unless a process holds it as the capture that it is writing. See CaptureFile.
  [[nodiscard]] virtual base::Result RemoveUnlessHeld(std::string_view path) = 0;
  /// Never replaces a file: fails if the new name is taken, even if it is taken at the same moment.
  [[nodiscard]] virtual RenameResult RenameNoReplace(std::string_view from, std::string_view to) = 0;
  [[nodiscard]] virtual base::Result Copy(std::string_view from, std::string_view to) = 0;

  /// The whole file, or nothing.
  [[nodiscard]] virtual std::optional<std::string> Read(std::string_view path) const = 0;
  /// Replaces the file as a whole: a reader sees the old text or the new one.
  [[nodiscard]] virtual base::Result Replace(std::string_view path, std::string_view text) = 0;
  /// Appends with one write, creating the file if need be.
  [[nodiscard]] virtual base::Result Append(std::string_view path, std::string_view text) = 0;
  /// Makes a file that was not there before and that this user can run as a program. On failure none is left.
  [[nodiscard]] virtual base::Result CreateProgram(std::string_view path, std::string_view bytes) = 0;
  /// Opens for writing, truncating; null on failure.
  [[nodiscard]] virtual std::unique_ptr<OpenTextFile> OpenForWriting(std::string_view path) = 0;

  /// Free bytes for the caller on the volume of the path; -1 if unknown.
  [[nodiscard]] virtual double FreeBytes(std::string_view path) const = 0;
};

}  // namespace kestrune::platform
