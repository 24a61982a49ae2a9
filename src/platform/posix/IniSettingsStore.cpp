#include "platform/posix/IniSettingsStore.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>

#include "base/Ignored.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/WholeFile.h"

namespace kestrune::platform {

namespace {

bool SameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool SameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         SameTime(a.st_mtim, b.st_mtim) && SameTime(a.st_ctim, b.st_ctim);
}

}  // namespace

IniSettingsStore::IniSettingsStore(std::string folder) : folder_(std::move(folder)) {}

std::string IniSettingsStore::FileOf(std::string_view application) const {
  return folder_ + "/" + FileNameFor(application) + ".ini";
}

const IniText* IniSettingsStore::Current(const std::string& path) {
  KnownFile& known = files_[path];
  struct stat now {};
  if (::stat(path.c_str(), &now) != 0) {
    if (errno != ENOENT && errno != ENOTDIR) return nullptr;
    known = {};
    return &known.Content;
  }
  if (known.Open.IsOpen() && SameFile(known.Status, now)) return &known.Content;

  KnownFile fresh;
  if (!S_ISREG(now.st_mode)) return nullptr;
  fresh.Open = FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!fresh.Open.IsOpen() || ::fstat(fresh.Open.Number(), &fresh.Status) != 0) return nullptr;
  const auto text = ReadToEnd(fresh.Open.Number());
  if (!text) return nullptr;
  fresh.Content = IniText(*text);
  known = std::move(fresh);
  return &known.Content;
}

FileDescriptor IniSettingsStore::Lock(const std::string& path) const {
  base::Ignored(MakeFolders(folder_, kOwnFolder));
  // A file of its own: the settings file is a new one after each write.
  FileDescriptor lock(::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kOwnFile));
  if (!lock.IsOpen()) return lock;
  int locked = 0;
  do {
    locked = ::flock(lock.Number(), LOCK_EX);
  } while (locked != 0 && errno == EINTR);
  return locked == 0 ? std::move(lock) : FileDescriptor();
}

bool IniSettingsStore::Write(const std::string& path, const IniText& content) {
  return ReplaceFile(path, [&content](int file) { return WriteAll(file, content.Text()); }).Ok();
}

std::string IniSettingsStore::GetSetting(std::string_view application, std::string_view section,
                                         std::string_view key, std::string_view defaultText) {
  const std::string path = FileOf(application);
  const IniText* content = Current(path);
  if (content == nullptr && files_[path].Open.IsOpen()) content = &files_[path].Content;
  const auto value = content == nullptr ? std::nullopt : content->Get(section, key);
  return value ? *value : std::string(defaultText);
}

bool IniSettingsStore::SaveSetting(std::string_view application, std::string_view section,
                                   std::string_view key, std::string_view value) {
  const std::string path = FileOf(application);
  const FileDescriptor lock = Lock(path);
  if (!lock.IsOpen()) return false;
  const IniText* content = Current(path);
  if (content == nullptr) return false;
  if (content->Get(section, key) == value) return true;
  IniText changed = *content;
  changed.Set(section, key, value);
  return Write(path, changed);
}

bool IniSettingsStore::DeleteSetting(std::string_view application, std::string_view section,
                                     std::string_view key) {
  const std::string path = FileOf(application);
  const FileDescriptor lock = Lock(path);
  if (!lock.IsOpen()) return false;
  const IniText* content = Current(path);
  if (content == nullptr) return false;
  IniText changed = *content;
  return changed.Delete(section, key) && Write(path, changed);
}

}  // namespace kestrune::platform
