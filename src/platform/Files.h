#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::platform {

/// A text file that stays open for writing, such as a trace. Each line is on its way to disk when the call
/// returns.
class OpenTextFile {
 public:
  virtual ~OpenTextFile() = default;
  [[nodiscard]] virtual bool WriteLine(std::string_view text) = 0;
};

/// The file system. Paths are UTF-8 with "/" between folders. A call that fails leaves things as they were
/// and says so with false or nothing. Files that are written here belong to the user alone (mode 0600). Used from the
/// main thread.
class Files {
 public:
  virtual ~Files() = default;

  [[nodiscard]] virtual bool Exists(std::string_view path) const = 0;
  /// Creates one folder, not its parents; false if it exists already.
  [[nodiscard]] virtual bool CreateFolder(std::string_view path) = 0;
  /// Makes a folder and the parents that are missing, all closed to other users, and closes one that is there already.
  [[nodiscard]] virtual bool MakeOwnFolder(std::string_view path) = 0;
  /// Makes a folder with a new name inside another one, closed to other users; its path, or empty.
  [[nodiscard]] virtual std::string CreatePrivateFolder(std::string_view parent) = 0;
  /// Removes an empty folder.
  [[nodiscard]] virtual bool RemoveFolder(std::string_view path) = 0;
  /// Names of the plain, not hidden files of a folder that match a pattern with "*" and "?", sorted.
  [[nodiscard]] virtual std::vector<std::string> Matching(std::string_view folder,
                                                          std::string_view pattern) const = 0;

  [[nodiscard]] virtual bool Remove(std::string_view path) = 0;
  /// Never replaces a file: fails if the new name is taken, also when it is taken at the same moment.
  [[nodiscard]] virtual bool RenameNoReplace(std::string_view from, std::string_view to) = 0;
  [[nodiscard]] virtual bool Copy(std::string_view from, std::string_view to) = 0;

  /// The whole file, or nothing.
  [[nodiscard]] virtual std::optional<std::string> Read(std::string_view path) const = 0;
  /// Replaces the file as a whole: a reader sees the old text or the new one.
  [[nodiscard]] virtual bool Replace(std::string_view path, std::string_view text) = 0;
  /// Appends with one write, creating the file if need be.
  [[nodiscard]] virtual bool Append(std::string_view path, std::string_view text) = 0;
  /// Makes a file that was not there before and that this user can run as a program. On failure none is left.
  [[nodiscard]] virtual bool CreateProgram(std::string_view path, std::string_view bytes) = 0;
  /// Opens for writing, truncating; null on failure.
  [[nodiscard]] virtual std::unique_ptr<OpenTextFile> OpenForWriting(std::string_view path) = 0;

  /// Free bytes for the caller on the volume of the path; -1 if unknown.
  [[nodiscard]] virtual double FreeBytes(std::string_view path) const = 0;
};

}  // namespace kestrune::platform
