#include "support/MemoryFiles.h"

#include <utility>

#include <fmt/format.h>

namespace kestrune::test {
namespace {

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
  const auto failure = failures_.find(operation);
  if (failure == failures_.end() || failure->second == 0) return false;
  --failure->second;
  return true;
}

bool MemoryFiles::Writable(const std::string& path) const {
  const std::string parent = Parent(path);
  return folders_.contains(parent) && !unwritable_.contains(parent);
}

bool MemoryFiles::Write(const std::string& path, std::string text) {
  if (DiskFull || !Writable(path) || folders_.contains(path)) return false;
  files_[path] = std::move(text);
  return true;
}

bool MemoryFiles::Exists(std::string_view path) const {
  const std::string clean = Clean(path);
  return files_.contains(clean) || folders_.contains(clean);
}

bool MemoryFiles::CreateFolder(std::string_view path) {
  Calls.push_back(fmt::format("CreateFolder {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::CreateFolder) || DiskFull || Exists(clean) || !Writable(clean)) return false;
  folders_.insert(clean);
  return true;
}

bool MemoryFiles::MakeOwnFolder(std::string_view path) {
  Calls.push_back(fmt::format("MakeOwnFolder {}", path));
  const std::string clean = Clean(path);
  std::string top = clean;
  while (!folders_.contains(top) && !folders_.contains(Parent(top))) top = Parent(top);
  if (Fails(FileOperation::MakeOwnFolder) || !Writable(top) || (DiskFull && !folders_.contains(clean))) return false;
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

bool MemoryFiles::RemoveFolder(std::string_view path) {
  Calls.push_back(fmt::format("RemoveFolder {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::RemoveFolder) || !folders_.contains(clean) || !Writable(clean)) return false;
  const std::string inside = clean + "/";
  const auto file = files_.lower_bound(inside);
  if (file != files_.end() && file->first.starts_with(inside)) return false;
  const auto folder = folders_.lower_bound(inside);
  if (folder != folders_.end() && folder->starts_with(inside)) return false;
  folders_.erase(clean);
  return true;
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

bool MemoryFiles::Remove(std::string_view path) {
  Calls.push_back(fmt::format("Remove {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::Remove) || !Writable(clean)) return false;
  return files_.erase(clean) > 0;
}

bool MemoryFiles::RenameNoReplace(std::string_view from, std::string_view to) {
  Calls.push_back(fmt::format("Rename {} {}", from, to));
  const std::string source = Clean(from);
  const std::string target = Clean(to);
  if (Fails(FileOperation::Rename) || !files_.contains(source) || Exists(target) || !Writable(source) ||
      !Writable(target)) {
    return false;
  }
  auto file = files_.extract(source);
  file.key() = target;
  files_.insert(std::move(file));
  return true;
}

bool MemoryFiles::Copy(std::string_view from, std::string_view to) {
  Calls.push_back(fmt::format("Copy {} {}", from, to));
  const auto source = files_.find(Clean(from));
  if (Fails(FileOperation::Copy) || source == files_.end()) return false;
  return Write(Clean(to), source->second);
}

std::optional<std::string> MemoryFiles::Read(std::string_view path) const {
  const auto file = files_.find(Clean(path));
  if (Fails(FileOperation::Read) || file == files_.end()) return std::nullopt;
  return file->second;
}

bool MemoryFiles::Replace(std::string_view path, std::string_view text) {
  Calls.push_back(fmt::format("Replace {}", path));
  if (Fails(FileOperation::Replace)) return false;
  return Write(Clean(path), std::string(text));
}

bool MemoryFiles::Append(std::string_view path, std::string_view text) {
  Calls.push_back(fmt::format("Append {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::Append) || DiskFull || !Writable(clean) || folders_.contains(clean)) return false;
  files_[clean].append(text);
  return true;
}

bool MemoryFiles::CreateProgram(std::string_view path, std::string_view bytes) {
  Calls.push_back(fmt::format("CreateProgram {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::CreateProgram) || Exists(clean) || path.ends_with('/')) return false;
  return Write(clean, std::string(bytes));
}

std::unique_ptr<platform::OpenTextFile> MemoryFiles::OpenForWriting(std::string_view path) {
  Calls.push_back(fmt::format("Open {}", path));
  const std::string clean = Clean(path);
  if (Fails(FileOperation::Open) || !Write(clean, {})) return nullptr;
  return std::make_unique<OpenFile>(*this, clean);
}

double MemoryFiles::FreeBytes(std::string_view /*path*/) const {
  return Free;
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
}

std::string MemoryFiles::Text(std::string_view path) const {
  const auto file = files_.find(Clean(path));
  return file == files_.end() ? "(absent)" : file->second;
}

bool MemoryFiles::IsFolder(std::string_view path) const {
  return folders_.contains(Clean(path));
}

std::vector<std::string> MemoryFiles::AllFiles() const {
  std::vector<std::string> paths;
  for (const auto& [path, text] : files_) paths.push_back(path);
  return paths;
}

}  // namespace kestrune::test
