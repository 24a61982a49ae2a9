#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace kestrune::test {

enum class FileOperation {
  CreateFolder,
  MakeOwnFolder,
  CreatePrivateFolder,
  CreateProgram,
  RemoveFolder,
  Remove,
  Rename,
  Copy,
  Read,
  Replace,
  Append,
  Open,
  WriteLine
};

/// A file system in memory, with the strictness of the real one: a file needs its folder, a folder is removed
/// only when empty, names differ by case. It can be told to fail at any step.
class MemoryFiles final : public platform::Files {
 public:
  [[nodiscard]] bool Exists(std::string_view path) const override;
  [[nodiscard]] bool CreateFolder(std::string_view path) override;
  [[nodiscard]] bool MakeOwnFolder(std::string_view path) override;
  /// Named "private" and a number that counts up.
  [[nodiscard]] std::string CreatePrivateFolder(std::string_view parent) override;
  [[nodiscard]] bool RemoveFolder(std::string_view path) override;
  [[nodiscard]] std::vector<std::string> Matching(std::string_view folder,
                                                  std::string_view pattern) const override;
  [[nodiscard]] bool Remove(std::string_view path) override;
  [[nodiscard]] bool RenameNoReplace(std::string_view from, std::string_view to) override;
  [[nodiscard]] bool Copy(std::string_view from, std::string_view to) override;
  [[nodiscard]] std::optional<std::string> Read(std::string_view path) const override;
  [[nodiscard]] bool Replace(std::string_view path, std::string_view text) override;
  [[nodiscard]] bool Append(std::string_view path, std::string_view text) override;
  [[nodiscard]] bool CreateProgram(std::string_view path, std::string_view bytes) override;
  [[nodiscard]] std::unique_ptr<platform::OpenTextFile> OpenForWriting(std::string_view path) override;
  [[nodiscard]] double FreeBytes(std::string_view path) const override;

  /// Makes the folder with all its parents, leaving no trace in Calls.
  void MakeFolders(std::string_view path);
  /// Puts a file there, its folders made as needed, leaving no trace in Calls.
  void Put(std::string_view path, std::string_view text);
  /// The text of a file, or "(absent)".
  [[nodiscard]] std::string Text(std::string_view path) const;
  [[nodiscard]] bool IsFolder(std::string_view path) const;
  /// Made or closed by MakeOwnFolder.
  [[nodiscard]] bool IsOwnFolder(std::string_view path) const { return ownFolders_.contains(Clean(path)); }
  /// Full paths of all files, sorted.
  [[nodiscard]] std::vector<std::string> AllFiles() const;

  /// The next `times` calls of the operation fail and change nothing.
  void FailNext(FileOperation operation, int times = 1) { failures_[operation] = times; }
  /// Every call of the operation fails from now on.
  void FailAlways(FileOperation operation) { FailNext(operation, std::numeric_limits<int>::max()); }
  void Heal() { failures_.clear(); }
  /// Nothing in this folder itself can be made, changed, renamed or removed.
  void MakeUnwritable(std::string_view folder) { unwritable_.insert(Clean(folder)); }

  /// While set, whatever needs room fails: new folders, copies, writes.
  bool DiskFull = false;
  /// What FreeBytes answers for every volume.
  double Free = 100e9;
  /// Each call that changes something, failed ones too: the operation's name and the path or paths.
  std::vector<std::string> Calls;

 private:
  class OpenFile;

  [[nodiscard]] static std::string Clean(std::string_view path);
  [[nodiscard]] static std::string Parent(const std::string& path);
  /// True, and one failure used up, if the operation has been told to fail.
  [[nodiscard]] bool Fails(FileOperation operation) const;
  /// Whether an entry of that name may be made, changed or removed.
  [[nodiscard]] bool Writable(const std::string& path) const;
  [[nodiscard]] bool Write(const std::string& path, std::string text);

  std::map<std::string, std::string> files_;
  std::set<std::string> folders_{"/"};
  std::set<std::string> ownFolders_;
  std::set<std::string> unwritable_;
  int privateFolders_ = 0;
  mutable std::map<FileOperation, int> failures_;
};

}  // namespace kestrune::test
