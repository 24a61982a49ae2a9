#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/CaptureFile.h"
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
/// only when empty, names differ by case. It can be made to fail at any step.
class MemoryFiles final : public platform::Files {
 public:
  [[nodiscard]] bool Exists(std::string_view path) const override;
  [[nodiscard]] base::Result CheckWritable(std::string_view folder) const override;
  [[nodiscard]] base::Result CreateFolder(std::string_view path) override;
  [[nodiscard]] bool MakeOwnFolder(std::string_view path) override;
  /// Named "private" and a number that counts up.
  [[nodiscard]] std::string CreatePrivateFolder(std::string_view parent) override;
  [[nodiscard]] base::Result RemoveFolder(std::string_view path) override;
  [[nodiscard]] std::vector<std::string> Matching(std::string_view folder,
                                                  std::string_view pattern) const override;
  /// As of what was written when; what a test puts there counts as written at that moment.
  [[nodiscard]] std::vector<platform::FileEntry> List(std::string_view folder) const override;
  [[nodiscard]] std::optional<std::int64_t> Bytes(std::string_view path) const override;
  [[nodiscard]] bool InUse(std::string_view path) const override { return inUse_.contains(Clean(path)); }
  [[nodiscard]] base::Result Remove(std::string_view path) override;
  [[nodiscard]] base::Result RemoveUnlessHeld(std::string_view path) override;
  [[nodiscard]] platform::RenameResult RenameNoReplace(std::string_view from, std::string_view to) override;
  [[nodiscard]] base::Result Copy(std::string_view from, std::string_view to) override;
  [[nodiscard]] std::optional<std::string> Read(std::string_view path) const override;
  [[nodiscard]] base::Result Replace(std::string_view path, std::string_view text) override;
  [[nodiscard]] base::Result Append(std::string_view path, std::string_view text) override;
  [[nodiscard]] base::Result CreateProgram(std::string_view path, std::string_view bytes) override;
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
  /// All that the files below a folder hold.
  [[nodiscard]] std::int64_t BytesBelow(std::string_view folder) const;

  /// The next `times` calls of the operation fail and change nothing.
  void FailNext(FileOperation operation, int times = 1) { failures_[operation] = times; }
  /// Every call of the operation fails from now on.
  void FailAlways(FileOperation operation) { FailNext(operation, std::numeric_limits<int>::max()); }
  /// After so many changes more, appended text not counted, nothing changes any more, as when the program is killed.
  void FreezeAfter(int changes) { changesLeft_ = changes; }
  void Heal() {
    failures_.clear();
    changesLeft_ = -1;
  }
  /// Another process holds the file, which it is writing.
  void HoldByAnother(std::string_view path) { held_.insert(Clean(path)); }
  /// Another process has the file open, or no longer.
  void OpenByAnother(std::string_view path, bool open = true);
  /// What lies in the folder and below it is on a volume of its own: nothing is renamed into it or out of it.
  void PutOnOtherVolume(std::string_view folder) { volumes_.insert(Clean(folder)); }
  /// Plants a link to another file. Exists, Read, Replace and Append follow it; Remove removes the link.
  void PlantLink(std::string_view path, std::string_view target);
  /// Right before the next rename, somebody else puts a file under its new name.
  void TakeNameAtRename(std::string text) { takenAtRename_ = std::move(text); }
  /// Creates an empty file that was not there before, as a capture does.
  [[nodiscard]] platform::NumberedResult CreateHeld(std::string_view path);

  /// Nothing in this folder itself can be made, changed, renamed or removed.
  void MakeUnwritable(std::string_view folder) { unwritable_.insert(Clean(folder)); }

  /// While set, whatever needs room fails: new folders, copies, writes.
  bool DiskFull = false;
  /// What FreeBytes answers for every volume, less what lies below FilledFolder if that is not empty.
  double Free = 100e9;
  std::string FilledFolder;
  /// The wall clock, for List; without it all is written at the first of moments, in its order.
  std::function<base::DateValue()> Now = [] { return base::DateValue(); };
  /// How often FreeBytes was asked.
  mutable int Asked = 0;
  /// Each call that changes something, failed ones too: the operation's name and the path or paths.
  std::vector<std::string> Calls;

 private:
  class OpenFile;
  struct Written {
    base::DateValue At;
    std::uint64_t Order = 0;
  };

  [[nodiscard]] static std::string Clean(std::string_view path);
  [[nodiscard]] static std::string Parent(const std::string& path);
  /// True, and one failure used up, if the operation is to fail.
  [[nodiscard]] bool Fails(FileOperation operation) const;
  /// Whether an entry of that name may be made, changed or removed.
  [[nodiscard]] base::Result Writable(const std::string& path) const;
  /// The file that a path leads to.
  [[nodiscard]] std::string Followed(std::string_view path) const;
  [[nodiscard]] base::Result Write(const std::string& path, std::string text);
  void NoteWritten(const std::string& path) { written_[path] = {.At = Now(), .Order = ++writes_}; }
  /// The folder of its volume; empty for the one of the root.
  [[nodiscard]] std::string VolumeOf(const std::string& path) const;

  std::map<std::string, std::string> files_;
  std::set<std::string> folders_{"/"};
  std::set<std::string> ownFolders_;
  std::set<std::string> unwritable_;
  std::set<std::string> held_;
  std::set<std::string> inUse_;
  std::set<std::string> volumes_;
  std::map<std::string, Written> written_;
  std::uint64_t writes_ = 0;
  std::map<std::string, std::string> links_;
  std::optional<std::string> takenAtRename_;
  int privateFolders_ = 0;
  mutable std::map<FileOperation, int> failures_;
  mutable int changesLeft_ = -1;  // negative: any number
};

}  // namespace kestrune::test
