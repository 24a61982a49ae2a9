#include "support/MemoryFiles.h"

#include <utility>

#include <fmt/format.h>

namespace kestrune::test {
namespace {

// The system's words.
constexpr const char* kNoSuchFile = "No such file or directory";
constexpr const char* kDenied = "Permission denied";
constexpr const char* kFull = "No space left on device";
constexpr const char* kTaken = "File exists";
constexpr const char* kIsFolder = "Is a directory";
constexpr const char* kToldToFail = "Input/output error";

bool Matches(std::string_view name, std::string_view pattern) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() == '*') {
    return Matches(name, pattern.substr(1)) || (!name.empty() && Matches(name.substr(1), pattern));
  }
  return !name.empty() && (pattern.front() == '?' || pattern.front() == name.front()) &&
         Matches(name.substr(1), pattern.substr(1));
}

}  // namespace

class MemoryFiles::OpenFile final : public platform::OpenTextFile {
 public:
  OpenFile(MemoryFiles& files, std::string path) : files_(files), path_(std::move(path)) {}
  [[nodiscard]] bool WriteLine(std::string_view text) override {
    if (files_.Fails(FileOperation::WriteLine) || files_.DiskFull) return false;
    files_.files_[path_].append(text).append("\n");
    files_.NoteWritten(path_);
    return true;
  }

 private:
  MemoryFiles& files_;
  std::string path_;
};

std::string MemoryFiles::Clean(std::string_view path) {
  std::string clean;
  for (const char c : path) {
    if (c != '/' || clean.empty() || clean.back() != '/') clean += c;
  }
  if (clean.size() > 1 && clean.back() == '/') clean.pop_back();
  return clean;
}

std::string MemoryFiles::Parent(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return {};
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool MemoryFiles::Fails(FileOperation operation) const {
  if (changesLeft_ == 0 && operation != FileOperation::Read) return true;
  const bool counts = operation != FileOperation::Read && operation != FileOperation::Append;
  if (changesLeft_ > 0 && counts) --changesLeft_;
  const auto failure = failures_.find(operation);
  if (failure == failures_.end() || failure->second == 0) return false;
  --failure->second;
  return true;
}

base::Result MemoryFiles::Writable(const std::string& path) const {
  const std::string parent = Parent(path);
  if (!folders_.contains(parent)) return base::Result::Failed(kNoSuchFile);
  return unwritable_.contains(parent) ? base::Result::Failed(kDenied) : base::Result::Done();
}

std::string MemoryFiles::Followed(std::string_view path) const {
  const std::string clean = Clean(path);
  const auto link = links_.find(clean);
  return link == links_.end() ? clean : link->second;
}

base::Result MemoryFiles::Write(const std::string& path, std::string text) {
  if (DiskFull) return base::Result::Failed(kFull);
  if (base::Result writable = Writable(path); !writable) return writable;
  if (folders_.contains(path)) return base::Result::Failed(kIsFolder);
  files_[path] = std::move(text);
  NoteWritten(path);
  return base::Result::Done();
}

void MemoryFiles::PlantLink(std::string_view path, std::string_view target) {
  links_[Clean(path)] = Clean(target);
}

platform::NumberedResult MemoryFiles::CreateHeld(std::string_view path) {
  const std::string clean = Clean(path);
  if (held_.contains(clean) || folders_.contains(clean)) {
    return {.Number = platform::kNameHeld, .Cause = "Device or resource busy"};
  }
  links_.erase(clean);
  const base::Result created = Replace(path, {});
  if (!created) return {.Number = -1, .Cause = created.Cause()};
  return {};
}

bool MemoryFiles::Exists(std::string_view path) const {
  const std::string clean = Followed(path);
  return files_.contains(clean) || folders_.contains(clean);
}

base::Result MemoryFiles::CheckWritable(std::string_view folder) const {
  std::string nearest = Clean(folder);
  while (!Exists(nearest) && !nearest.empty()) nearest = Parent(nearest);
  if (!folders_.contains(nearest)) return base::Result::Failed("Not a directory");
  return unwritable_.contains(nearest) ? base::Result::Failed("Permission denied") : base::Result::Done();
}

base::Result MemoryFiles::CreateFolder(std::string_view path) {
  Calls.push_back(fmt::format("CreateFolder {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::CreateFolder)) return base::Result::Failed(kToldToFail);
  if (DiskFull) return base::Result::Failed(kFull);
  if (Exists(clean)) return base::Result::Failed(kTaken);
  if (base::Result writable = Writable(clean); !writable) return writable;
  folders_.insert(clean);
  return base::Result::Done();
}

bool MemoryFiles::MakeOwnFolder(std::string_view path) {
  Calls.push_back(fmt::format("MakeOwnFolder {}", path));
  const std::string clean = Clean(path);
  std::string top = clean;
  while (!folders_.contains(top) && !folders_.contains(Parent(top))) top = Parent(top);
  if (Fails(FileOperation::MakeOwnFolder) || !Writable(top) || (DiskFull && !folders_.contains(clean)))
    return false;
  MakeFolders(clean);
  ownFolders_.insert(clean);
  return true;
}

std::string MemoryFiles::CreatePrivateFolder(std::string_view parent) {
  Calls.push_back(fmt::format("CreatePrivateFolder {}", parent));
  std::string clean = fmt::format("{}/private{}", Clean(parent), privateFolders_ + 1);
  if (Fails(FileOperation::CreatePrivateFolder) || DiskFull || !Writable(clean)) return {};
  ++privateFolders_;
  folders_.insert(clean);
  return clean;
}

base::Result MemoryFiles::RemoveFolder(std::string_view path) {
  Calls.push_back(fmt::format("RemoveFolder {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::RemoveFolder)) return base::Result::Failed(kToldToFail);
  if (!folders_.contains(clean)) return base::Result::Failed(kNoSuchFile);
  if (base::Result writable = Writable(clean); !writable) return writable;
  const std::string inside = clean + "/";
  const auto file = files_.lower_bound(inside);
  const auto folder = folders_.lower_bound(inside);
  if ((file != files_.end() && file->first.starts_with(inside)) ||
      (folder != folders_.end() && folder->starts_with(inside))) {
    return base::Result::Failed("Directory not empty");
  }
  folders_.erase(clean);
  return base::Result::Done();
}

std::vector<std::string> MemoryFiles::Matching(std::string_view folder, std::string_view pattern) const {
  const std::string clean = Clean(folder);
  std::vector<std::string> names;
  for (const auto& [path, text] : files_) {
    if (Parent(path) != clean) continue;
    std::string name = path.substr(path.rfind('/') + 1);
    if (!name.starts_with('.') && Matches(name, pattern)) names.push_back(std::move(name));
  }
  return names;
}

base::Result MemoryFiles::Remove(std::string_view path) {
  Calls.push_back(fmt::format("Remove {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::Remove)) return base::Result::Failed(kToldToFail);
  if (base::Result writable = Writable(clean); !writable) return writable;
  if (links_.erase(clean) > 0 || files_.erase(clean) > 0) return base::Result::Done();
  return base::Result::Failed(kNoSuchFile);
}

base::Result MemoryFiles::RemoveUnlessHeld(std::string_view path) {
  if (held_.contains(Clean(path))) return base::Result::Failed("Device or resource busy");
  return Remove(path);
}

platform::RenameResult MemoryFiles::RenameNoReplace(std::string_view from, std::string_view to) {
  Calls.push_back(fmt::format("Rename {} {}", from, to));
  const std::string source = Clean(from);
  const std::string target = Clean(to);
  if (takenAtRename_) files_[target] = *std::exchange(takenAtRename_, std::nullopt);
  if (Fails(FileOperation::Rename)) return {.Outcome = base::Result::Failed(kToldToFail)};
  if (!files_.contains(source)) return {.Outcome = base::Result::Failed(kNoSuchFile)};
  if (VolumeOf(source) != VolumeOf(target)) {
    return {.Outcome = base::Result::Failed("Invalid cross-device link"),
            .NameTaken = false,
            .OtherVolume = true};
  }
  if (Exists(target) || links_.contains(target)) {
    return {.Outcome = base::Result::Failed(kTaken), .NameTaken = true};
  }
  for (const std::string& path : {source, target}) {
    if (base::Result writable = Writable(path); !writable) return {.Outcome = writable};
  }
  written_[target] = written_[source];
  if (inUse_.erase(source) > 0) inUse_.insert(target);
  auto file = files_.extract(source);
  file.key() = target;
  files_.insert(std::move(file));
  return {};
}

base::Result MemoryFiles::Copy(std::string_view from, std::string_view to) {
  Calls.push_back(fmt::format("Copy {} {}", from, to));
  const auto source = files_.find(Clean(from));
  if (Fails(FileOperation::Copy)) return base::Result::Failed(kToldToFail);
  if (source == files_.end()) return base::Result::Failed(kNoSuchFile);
  return Write(Clean(to), source->second);
}

std::optional<std::string> MemoryFiles::Read(std::string_view path) const {
  const auto file = files_.find(Followed(path));
  if (Fails(FileOperation::Read) || file == files_.end()) return std::nullopt;
  return file->second;
}

base::Result MemoryFiles::Replace(std::string_view path, std::string_view text) {
  Calls.push_back(fmt::format("Replace {}", path));
  if (Fails(FileOperation::Replace)) return base::Result::Failed(kToldToFail);
  return Write(Followed(path), std::string(text));
}

base::Result MemoryFiles::Append(std::string_view path, std::string_view text) {
  Calls.push_back(fmt::format("Append {}", path));
  const std::string clean = Followed(path);
  if (Fails(FileOperation::Append)) return base::Result::Failed(kToldToFail);
  if (DiskFull) return base::Result::Failed(kFull);
  if (base::Result writable = Writable(clean); !writable) return writable;
  if (folders_.contains(clean)) return base::Result::Failed(kIsFolder);
  files_[clean].append(text);
  NoteWritten(clean);
  return base::Result::Done();
}

base::Result MemoryFiles::CreateProgram(std::string_view path, std::string_view bytes) {
  Calls.push_back(fmt::format("CreateProgram {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::CreateProgram)) return base::Result::Failed(kToldToFail);
  if (Exists(clean) || path.ends_with('/')) return base::Result::Failed(kTaken);
  return Write(clean, std::string(bytes));
}

std::unique_ptr<platform::OpenTextFile> MemoryFiles::OpenForWriting(std::string_view path) {
  Calls.push_back(fmt::format("Open {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::Open) || !Write(clean, {})) return nullptr;
  return std::make_unique<OpenFile>(*this, clean);
}

double MemoryFiles::FreeBytes(std::string_view /*path*/) const {
  ++Asked;
  return FilledFolder.empty() ? Free : Free - static_cast<double>(BytesBelow(FilledFolder));
}

std::vector<platform::FileEntry> MemoryFiles::List(std::string_view folder) const {
  std::multimap<std::uint64_t, platform::FileEntry> entries;
  for (const std::string& name : Matching(folder, "*")) {
    const std::string path = Clean(folder) + "/" + name;
    const auto written = written_.find(path);
    const Written when = written == written_.end() ? Written() : written->second;
    entries.insert({when.Order, {.Name = name, .Bytes = Bytes(path).value_or(0), .Written = when.At}});
  }
  std::vector<platform::FileEntry> list;
  for (auto& [order, entry] : entries) list.push_back(std::move(entry));
  return list;
}

std::optional<std::int64_t> MemoryFiles::Bytes(std::string_view path) const {
  const auto file = files_.find(Followed(path));
  if (file == files_.end()) return std::nullopt;
  return static_cast<std::int64_t>(file->second.size());
}

void MemoryFiles::OpenByAnother(std::string_view path, bool open) {
  if (open) {
    inUse_.insert(Clean(path));
  } else {
    inUse_.erase(Clean(path));
  }
}

std::string MemoryFiles::VolumeOf(const std::string& path) const {
  std::string volume;
  for (const std::string& folder : volumes_)
    if (path.starts_with(folder + "/") && folder.size() > volume.size()) volume = folder;
  return volume;
}

void MemoryFiles::MakeFolders(std::string_view path) {
  for (std::string folder = Clean(path); !folder.empty() && folders_.insert(folder).second;) {
    folder = Parent(folder);
  }
}

void MemoryFiles::Put(std::string_view path, std::string_view text) {
  const std::string clean = Clean(path);
  MakeFolders(Parent(clean));
  files_[clean] = text;
  NoteWritten(clean);
}

std::string MemoryFiles::Text(std::string_view path) const {
  const auto file = files_.find(Clean(path));
  return file == files_.end() ? "(absent)" : file->second;
}

bool MemoryFiles::IsFolder(std::string_view path) const {
  return folders_.contains(Clean(path));
}

std::int64_t MemoryFiles::BytesBelow(std::string_view folder) const {
  const std::string below = Clean(folder) + '/';
  std::int64_t bytes = 0;
  for (auto file = files_.lower_bound(below); file != files_.end() && file->first.starts_with(below); ++file)
    bytes += static_cast<std::int64_t>(file->second.size());
  return bytes;
}

std::vector<std::string> MemoryFiles::AllFiles() const {
  std::vector<std::string> paths;
  for (const auto& [path, text] : files_) paths.push_back(path);
  return paths;
}

}  // namespace kestrune::test
