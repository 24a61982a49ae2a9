#include "platform/posix/PosixFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/NoReplaceRename.h"
#include "platform/posix/WholeFile.h"

namespace kestrune::platform {

namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

/// Opens a plain file for reading; what is none is not opened, or its reader would wait for its writer.
FileDescriptor OpenPlain(const std::string& path) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  return file;
}

bool CopyBytes(int from, int to) {
  std::array<char, 65536> block{};
  for (;;) {
    const ssize_t count = ::read(from, block.data(), block.size());
    if (count == 0) return true;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 || !WriteAll(to, {block.data(), static_cast<std::size_t>(count)})) return false;
  }
}

/// One write, and if the system takes only a part of it, that part is taken back.
bool AppendOnce(int file, std::string_view text) {
  ssize_t count = 0;
  do {
    count = ::write(file, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  if (count == static_cast<ssize_t>(text.size())) return true;
  if (count > 0) {
    const off_t end = ::lseek(file, 0, SEEK_CUR);
    struct stat status {};
    // Unless another process has appended behind it meanwhile.
    if (::fstat(file, &status) == 0 && status.st_size == end) base::Ignored(::ftruncate(file, end - count));
  }
  return false;
}

class PosixTextFile final : public OpenTextFile {
 public:
  explicit PosixTextFile(FileDescriptor file) : file_(std::move(file)) {}
  [[nodiscard]] bool WriteLine(std::string_view text) override {
    std::string line(text);
    line += '\n';
    return WriteAll(file_.Number(), line);
  }

 private:
  FileDescriptor file_;
};

}  // namespace

bool PosixFiles::Exists(std::string_view path) const {
  const auto name = SystemPath(path);
  struct stat status {};
  return name && ::stat(name->c_str(), &status) == 0;
}

bool PosixFiles::CreateFolder(std::string_view path) {
  const auto name = SystemPath(path);
  return name && ::mkdir(name->c_str(), 0777) == 0;
}

bool PosixFiles::MakeOwnFolder(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name || !MakeFolders(*name, kOwnFolder)) return false;
  // One that an earlier release has made may still be open to others.
  const FileDescriptor folder(::open(name->c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return folder.IsOpen() && ::fchmod(folder.Number(), kOwnFolder) == 0;
}

std::string PosixFiles::CreatePrivateFolder(std::string_view parent) {
  auto name = SystemPath(parent);
  if (!name || name->empty()) return {};
  *name += "/kestrune-XXXXXX";
  return ::mkdtemp(name->data()) == nullptr ? std::string() : *name;
}

bool PosixFiles::RemoveFolder(std::string_view path) {
  const auto name = SystemPath(path);
  return name && ::rmdir(name->c_str()) == 0;
}

std::vector<std::string> PosixFiles::Matching(std::string_view folder, std::string_view pattern) const {
  std::vector<std::string> names;
  const auto path = SystemPath(folder);
  if (!path) return names;
  const std::unique_ptr<DIR, CloseFolder> open(::opendir(path->c_str()));
  if (!open) return names;
  while (const dirent* entry = ::readdir(open.get())) {
    const std::string name(&entry->d_name[0]);
    if (name.starts_with('.') || !MatchesPattern(name, pattern)) continue;
    struct stat status {};
    const bool known = ::fstatat(::dirfd(open.get()), name.c_str(), &status, 0) == 0;
    if (known && S_ISREG(status.st_mode)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool PosixFiles::Remove(std::string_view path) {
  const auto name = SystemPath(path);
  return name && ::unlink(name->c_str()) == 0;
}

bool PosixFiles::RenameNoReplace(std::string_view from, std::string_view to) {
  const auto oldName = SystemPath(from);
  const auto newName = SystemPath(to);
  return oldName && newName && RenameNeverReplacing(*oldName, *newName);
}

bool PosixFiles::Copy(std::string_view from, std::string_view to) {
  const auto source = SystemPath(from);
  const auto target = SystemPath(to);
  if (!source || !target) return false;
  const FileDescriptor file = OpenPlain(*source);
  if (!file.IsOpen()) return false;
  return ReplaceFile(*target, [&file](int copy) { return CopyBytes(file.Number(), copy); });
}

std::optional<std::string> PosixFiles::Read(std::string_view path) const {
  const auto name = SystemPath(path);
  if (!name) return std::nullopt;
  const FileDescriptor file = OpenPlain(*name);
  if (!file.IsOpen()) return std::nullopt;
  return ReadToEnd(file.Number());
}

bool PosixFiles::Replace(std::string_view path, std::string_view text) {
  const auto name = SystemPath(path);
  return name && ReplaceFile(*name, [text](int file) { return WriteAll(file, text); });
}

bool PosixFiles::Append(std::string_view path, std::string_view text) {
  const auto name = SystemPath(path);
  if (!name) return false;
  FileDescriptor file(
      ::open(name->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, kOwnFile));
  if (!file.IsOpen()) return false;
  const bool written = AppendOnce(file.Number(), text);
  return file.Close() && written;
}

bool PosixFiles::CreateProgram(std::string_view path, std::string_view bytes) {
  const auto name = SystemPath(path);
  if (!name) return false;
  FileDescriptor file(
      ::open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnFolder));
  if (!file.IsOpen()) return false;
  const bool written = WriteAll(file.Number(), bytes);
  if (file.Close() && written) return true;
  base::Ignored(::unlink(name->c_str()));
  return false;
}

std::unique_ptr<OpenTextFile> PosixFiles::OpenForWriting(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name) return nullptr;
  FileDescriptor file(::open(name->c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kOwnFile));
  if (!file.IsOpen()) return nullptr;
  return std::make_unique<PosixTextFile>(std::move(file));
}

double PosixFiles::FreeBytes(std::string_view path) const {
  auto name = SystemPath(path);
  if (!name || name->empty()) return -1;
  struct statvfs volume {};
  while (::statvfs(name->c_str(), &volume) != 0) {
    std::string above = FolderOf(*name);
    if ((errno != ENOENT && errno != ENOTDIR) || above == *name) return -1;
    name = std::move(above);
  }
  return static_cast<double>(volume.f_bavail) * static_cast<double>(volume.f_frsize);
}

}  // namespace kestrune::platform
