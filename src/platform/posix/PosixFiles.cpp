#include "platform/posix/PosixFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <system_error>
#include <tuple>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/HeldFile.h"
#include "platform/posix/NoReplaceRename.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/WholeFile.h"

namespace kestrune::platform {

namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

/// Opens a plain file for reading. Nothing else is opened: the reader of a pipe would wait for its writer.
FileDescriptor OpenPlain(const std::string& path) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0) return {};
  if (S_ISREG(status.st_mode)) return file;
  errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  return {};
}

base::DateValue LocalTime(std::time_t moment) {
  std::tm fields{};
  if (::localtime_r(&moment, &fields) == nullptr) return {};
  return base::DateValue::FromCivil(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                                    fields.tm_min, fields.tm_sec);
}

/// A file of a folder, with the exact time by which they are put in order.
struct WrittenFile {
  timespec Written{};
  FileEntry Entry;

  bool operator<(const WrittenFile& other) const {
    return std::tie(Written.tv_sec, Written.tv_nsec, Entry.Name) <
           std::tie(other.Written.tv_sec, other.Written.tv_nsec, other.Entry.Name);
  }
};

/// What the system answers to a path that it cannot take.
base::Result NoSuchPath() {
  return FailedWith(EINVAL);
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

/// One write, and if the system takes only a part of it, that part is removed again.
bool AppendOnce(int file, std::string_view text) {
  ssize_t count = 0;
  do {
    count = ::write(file, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  if (count == static_cast<ssize_t>(text.size())) return true;
  if (count >= 0) {
    const off_t end = ::lseek(file, 0, SEEK_CUR);
    struct stat status {};
    // Unless another process has appended something meanwhile.
    if (::fstat(file, &status) == 0 && status.st_size == end) base::Ignored(::ftruncate(file, end - count));
    errno = ENOSPC;
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

base::Result PosixFiles::CheckWritable(std::string_view folder) const {
  const auto failed = [](int error) { return base::Result::Failed(std::generic_category().message(error)); };
  std::string nearest(folder);
  struct stat status {};
  while (stat(nearest.c_str(), &status) != 0) {
    if (errno != ENOENT || nearest.empty() || nearest == "/") return failed(errno);
    while (nearest.size() > 1 && nearest.ends_with('/')) nearest.pop_back();
    const std::size_t parent = nearest.rfind('/');
    if (parent == std::string::npos) return failed(ENOENT);
    nearest.resize(std::max<std::size_t>(parent, 1));
  }
  if (!S_ISDIR(status.st_mode)) return failed(ENOTDIR);
  return faccessat(AT_FDCWD, nearest.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? base::Result::Done()
                                                                            : failed(errno);
}

base::Result PosixFiles::CreateFolder(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  return ResultOf(::mkdir(name->c_str(), 0777));
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

base::Result PosixFiles::RemoveFolder(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  return ResultOf(::rmdir(name->c_str()));
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

std::vector<FileEntry> PosixFiles::List(std::string_view folder) const {
  const auto path = SystemPath(folder);
  if (!path) return {};
  const std::unique_ptr<DIR, CloseFolder> open(::opendir(path->c_str()));
  if (!open) return {};
  std::vector<WrittenFile> files;
  while (const dirent* entry = ::readdir(open.get())) {
    const std::string name(&entry->d_name[0]);
    struct stat status {};
    if (name.starts_with('.') ||
        ::fstatat(::dirfd(open.get()), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 ||
        !S_ISREG(status.st_mode)) {
      continue;
    }
    files.push_back({.Written = status.st_mtim,
                     .Entry = {.Name = name,
                               .Bytes = static_cast<std::int64_t>(status.st_size),
                               .Written = LocalTime(status.st_mtim.tv_sec)}});
  }
  std::sort(files.begin(), files.end());
  std::vector<FileEntry> entries;
  entries.reserve(files.size());
  for (WrittenFile& file : files) entries.push_back(std::move(file.Entry));
  return entries;
}

std::optional<std::int64_t> PosixFiles::Bytes(std::string_view path) const {
  const auto name = SystemPath(path);
  struct stat status {};
  if (!name || ::stat(name->c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::int64_t>(status.st_size);
}

bool PosixFiles::InUse(std::string_view path) const {
  const auto name = SystemPath(path);
  if (!name) return false;
  const FileDescriptor file = OpenPlain(*name);
  if (!file.IsOpen()) return false;
  // The lease is over with the descriptor. Somebody who opens the file before that waits so long, and the system says
  // so with a signal: by default one that ends the process, so it is to be one that is ignored.
  if (::fcntl(file.Number(), F_SETSIG, SIGURG) != 0) return false;
  if (::fcntl(file.Number(), F_SETLEASE, F_WRLCK) == 0) return false;
  return errno == EAGAIN;
}

base::Result PosixFiles::Remove(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  return ResultOf(::unlink(name->c_str()));
}

base::Result PosixFiles::RemoveUnlessHeld(std::string_view path) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  const int error = RemoveUnheld(*name);
  return error == 0 ? base::Result::Done() : FailedWith(error);
}

RenameResult PosixFiles::RenameNoReplace(std::string_view from, std::string_view to) {
  const auto oldName = SystemPath(from);
  const auto newName = SystemPath(to);
  if (!oldName || !newName) return {.Outcome = NoSuchPath(), .NameTaken = false, .OtherVolume = false};
  const int error = RenameNeverReplacing(*oldName, *newName);
  if (error == 0) return {};
  return {.Outcome = FailedWith(error), .NameTaken = error == EEXIST, .OtherVolume = error == EXDEV};
}

base::Result PosixFiles::Copy(std::string_view from, std::string_view to) {
  const auto source = SystemPath(from);
  const auto target = SystemPath(to);
  if (!source || !target) return NoSuchPath();
  const FileDescriptor file = OpenPlain(*source);
  if (!file.IsOpen()) return FailedWith(errno);
  return ReplaceFile(*target, [&file](int copy) { return CopyBytes(file.Number(), copy); });
}

std::optional<std::string> PosixFiles::Read(std::string_view path) const {
  const auto name = SystemPath(path);
  if (!name) return std::nullopt;
  const FileDescriptor file = OpenPlain(*name);
  if (!file.IsOpen()) return std::nullopt;
  return ReadToEnd(file.Number());
}

base::Result PosixFiles::Replace(std::string_view path, std::string_view text) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  return ReplaceFile(*name, [text](int file) { return WriteAll(file, text); });
}

base::Result PosixFiles::Append(std::string_view path, std::string_view text) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  FileDescriptor file(
      ::open(name->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, kOwnFile));
  if (!file.IsOpen()) return FailedWith(errno);
  if (!AppendOnce(file.Number(), text)) return FailedWith(errno);
  return file.Close() ? base::Result::Done() : FailedWith(errno);
}

base::Result PosixFiles::CreateProgram(std::string_view path, std::string_view bytes) {
  const auto name = SystemPath(path);
  if (!name) return NoSuchPath();
  FileDescriptor file(
      ::open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnFolder));
  if (!file.IsOpen()) return FailedWith(errno);
  base::Result written = ResultOf(WriteAll(file.Number(), bytes) ? 0 : -1);
  if (!file.Close() && written) written = FailedWith(errno);
  if (!written) base::Ignored(::unlink(name->c_str()));
  return written;
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
