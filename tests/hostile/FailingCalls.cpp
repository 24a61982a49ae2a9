#include "hostile/FailingCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kestrune::test {
namespace {

struct Watch {
  std::string Folder;
  bool Keep = false;
  std::array<std::array<int, kCallKinds>, kCallPlaces> Counts{};
  std::vector<WatchedCall> Calls;
  std::optional<PlannedFailure> Failure;
  int Failed = 0;
  std::string FirstFailed;
};

std::atomic<bool> watching{false};
std::mutex mutex;

Watch& TheWatch() {
  static Watch watch;
  return watch;
}

/// The work on a call makes calls itself.
thread_local bool within = false;

std::string PathOf(int file) {
  std::array<char, PATH_MAX> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const long length = ::syscall(SYS_readlink, link.c_str(), path.data(), path.size());
  return length <= 0 ? std::string() : std::string(path.data(), static_cast<std::size_t>(length));
}

std::string PathAt(int folder, const char* path) {
  if (path == nullptr) return {};
  if (*path == '/' || folder == AT_FDCWD) return path;
  return *path == '\0' ? PathOf(folder) : PathOf(folder) + "/" + path;
}

bool Fails(Watch& watch, CallKind kind, CallPlace place, int number) {
  if (!watch.Failure || watch.Failure->Kind != kind || watch.Failure->Place != place) return false;
  return number == watch.Failure->Number || (watch.Failure->Lasting && number > watch.Failure->Number);
}

struct Answer {
  int Error = 0;        ///< 0: the call is to be made
  bool Partly = false;  ///< some of it is done all the same
};

Answer Ask(CallKind kind, const std::string& path) {
  const std::lock_guard lock(mutex);
  Watch& watch = TheWatch();
  if (!path.starts_with(watch.Folder)) return {};
  const CallPlace place = path.find("/History") == std::string::npos ? CallPlace::Files : CallPlace::Record;
  const int number = ++watch.Counts.at(static_cast<std::size_t>(place)).at(static_cast<std::size_t>(kind));
  if (watch.Keep)
    watch.Calls.push_back(
        {.Kind = kind, .Place = place, .Number = number, .Path = path.substr(watch.Folder.size())});
  if (!Fails(watch, kind, place, number)) return {};
  if (watch.Failed++ == 0) watch.FirstFailed = path.substr(watch.Folder.size());
  return {.Error = watch.Failure->Error, .Partly = watch.Failure->Lasting && watch.Failed == 1};
}

Answer AskForPath(CallKind kind, const char* path, int folder = AT_FDCWD) {
  if (!watching || within) return {};
  within = true;
  const Answer answer = Ask(kind, PathAt(folder, path));
  within = false;
  return answer;
}

Answer AskForFile(CallKind kind, int file) {
  if (!watching || within) return {};
  within = true;
  const Answer answer = Ask(kind, PathOf(file));
  within = false;
  return answer;
}

/// The system's own.
template <typename Function>
Function* Own(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int Failed(const Answer& answer) {
  errno = answer.Error;
  return -1;
}

}  // namespace

const char* NameOf(CallKind kind) {
  constexpr std::array<const char*, kCallKinds> kNames{"open",      "close", "read",   "write", "fsync",
                                                       "ftruncate", "stat",  "lseek",  "lock",  "change",
                                                       "rename",    "link",  "unlink", "mkdir", "statvfs"};
  return kNames.at(static_cast<std::size_t>(kind));
}

void WatchCalls(const std::string& folder, bool keep) {
  const std::lock_guard lock(mutex);
  TheWatch() = {.Folder = folder,
                .Keep = keep,
                .Counts = {},
                .Calls = {},
                .Failure = {},
                .Failed = 0,
                .FirstFailed = {}};
  watching = true;
}

void FailCall(const PlannedFailure& failure) {
  const std::lock_guard lock(mutex);
  TheWatch().Failure = failure;
}

void LeaveCallsAlone() {
  watching = false;
}

int CallsFailed() {
  const std::lock_guard lock(mutex);
  return TheWatch().Failed;
}

std::string FirstFailedPath() {
  const std::lock_guard lock(mutex);
  return TheWatch().FirstFailed;
}

std::vector<WatchedCall> WatchedCalls() {
  const std::lock_guard lock(mutex);
  return TheWatch().Calls;
}

}  // namespace kestrune::test

// What follows takes the places of the system's own functions. Each has a name of ours here, since the system's headers may
// define theirs in place, and no list of parameters without an end: a function that is called with one finds them all the same.

namespace {

using kestrune::test::Answer;
using kestrune::test::AskForFile;
using kestrune::test::AskForPath;
using kestrune::test::CallKind;
using kestrune::test::Failed;
using kestrune::test::Own;

bool IsLock(int command) {
  return command == F_SETLK || command == F_SETLKW || command == F_OFD_SETLK || command == F_OFD_SETLKW;
}

Answer AskForLock(int file, int command) {
  return IsLock(command) ? AskForFile(CallKind::Lock, file) : Answer();
}

template <typename Pointer>
Pointer FailedWithNone(const Answer& answer) {
  errno = answer.Error;
  return nullptr;
}

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the name of a function is to be a text too.

#define KESTRUNE_DECLARE(symbol, Type, parameters)               \
  extern "C" Type Kestrune_##symbol parameters __asm__(#symbol); \
  extern "C" Type Kestrune_##symbol parameters

#define KESTRUNE_CALL(symbol, Type, refused, question, parameters, arguments) \
  KESTRUNE_DECLARE(symbol, Type, parameters) {                                \
    static auto* const own = Own<Type parameters>(#symbol);                   \
    const Answer answer = question;                                           \
    return answer.Error == 0 ? own arguments : refused(answer);               \
  }

#define KESTRUNE_PATH_CALL(symbol, kind, parameters, arguments) \
  KESTRUNE_CALL(symbol, int, Failed, AskForPath(CallKind::kind, path), parameters, arguments)
#define KESTRUNE_AT_CALL(symbol, kind, parameters, arguments) \
  KESTRUNE_CALL(symbol, int, Failed, AskForPath(CallKind::kind, path, folder), parameters, arguments)
#define KESTRUNE_FILE_CALL(symbol, Type, kind, parameters, arguments) \
  KESTRUNE_CALL(symbol, Type, Failed, AskForFile(CallKind::kind, file), parameters, arguments)

#define KESTRUNE_OPEN(symbol) \
  KESTRUNE_PATH_CALL(symbol, Open, (const char* path, int flags, mode_t mode), (path, flags, mode))
#define KESTRUNE_CHECKED_OPEN(symbol) \
  KESTRUNE_PATH_CALL(symbol, Open, (const char* path, int flags), (path, flags))
#define KESTRUNE_OPEN_AT(symbol)                                                         \
  KESTRUNE_AT_CALL(symbol, Open, (int folder, const char* path, int flags, mode_t mode), \
                   (folder, path, flags, mode))
#define KESTRUNE_OPEN_STREAM(symbol)                                                    \
  KESTRUNE_CALL(symbol, FILE*, FailedWithNone<FILE*>, AskForPath(CallKind::Open, path), \
                (const char* path, const char* mode), (path, mode))
#define KESTRUNE_PREAD(symbol)                                                               \
  KESTRUNE_FILE_CALL(symbol, ssize_t, Read, (int file, void* bytes, size_t count, off_t at), \
                     (file, bytes, count, at))
#define KESTRUNE_CHECKED_PREAD(symbol)                                                                    \
  KESTRUNE_FILE_CALL(symbol, ssize_t, Read, (int file, void* bytes, size_t count, off_t at, size_t room), \
                     (file, bytes, count, at, room))
#define KESTRUNE_PWRITE(symbol)                                                              \
  KESTRUNE_DECLARE(symbol, ssize_t, (int file, const void* bytes, size_t count, off_t at)) { \
    static auto* const own = Own<ssize_t(int, const void*, size_t, off_t)>(#symbol);         \
    const Answer answer = AskForFile(CallKind::Write, file);                                 \
    if (answer.Partly && count > 1) return own(file, bytes, count / 2, at);                  \
    return answer.Error == 0 ? own(file, bytes, count, at) : Failed(answer);                 \
  }
#define KESTRUNE_STAT(symbol) \
  KESTRUNE_PATH_CALL(symbol, Status, (const char* path, struct stat* status), (path, status))
#define KESTRUNE_STAT_FILE(symbol) \
  KESTRUNE_FILE_CALL(symbol, int, Status, (int file, struct stat* status), (file, status))
#define KESTRUNE_STAT_AT(symbol)                                                                   \
  KESTRUNE_AT_CALL(symbol, Status, (int folder, const char* path, struct stat* status, int flags), \
                   (folder, path, status, flags))
#define KESTRUNE_SEEK(symbol) \
  KESTRUNE_FILE_CALL(symbol, off_t, Seek, (int file, off_t offset, int whence), (file, offset, whence))
#define KESTRUNE_CONTROL(symbol)                                                                         \
  KESTRUNE_CALL(symbol, int, Failed, AskForLock(file, command), (int file, int command, void* argument), \
                (file, command, argument))
#define KESTRUNE_ROOM(symbol) \
  KESTRUNE_PATH_CALL(symbol, Room, (const char* path, struct statvfs* volume), (path, volume))

KESTRUNE_OPEN(open)
KESTRUNE_OPEN(open64)
KESTRUNE_CHECKED_OPEN(__open_2)
KESTRUNE_CHECKED_OPEN(__open64_2)
KESTRUNE_OPEN_AT(openat)
KESTRUNE_OPEN_AT(openat64)
KESTRUNE_OPEN_STREAM(fopen)
KESTRUNE_OPEN_STREAM(fopen64)
KESTRUNE_CALL(opendir, DIR*, FailedWithNone<DIR*>, AskForPath(CallKind::Open, path), (const char* path),
              (path))

KESTRUNE_DECLARE(close, int, (int file)) {
  static auto* const own = Own<int(int)>("close");
  const Answer answer = AskForFile(CallKind::Close, file);
  const int closed = own(file);
  return answer.Error == 0 ? closed : Failed(answer);
}

KESTRUNE_FILE_CALL(read, ssize_t, Read, (int file, void* bytes, size_t count), (file, bytes, count))
KESTRUNE_FILE_CALL(__read_chk, ssize_t, Read, (int file, void* bytes, size_t count, size_t room),
                   (file, bytes, count, room))
KESTRUNE_PREAD(pread)
KESTRUNE_PREAD(pread64)
KESTRUNE_CHECKED_PREAD(__pread_chk)
KESTRUNE_CHECKED_PREAD(__pread64_chk)

KESTRUNE_DECLARE(write, ssize_t, (int file, const void* bytes, size_t count)) {
  static auto* const own = Own<ssize_t(int, const void*, size_t)>("write");
  const Answer answer = AskForFile(CallKind::Write, file);
  if (answer.Partly && count > 1) return own(file, bytes, count / 2);
  return answer.Error == 0 ? own(file, bytes, count) : Failed(answer);
}

KESTRUNE_FILE_CALL(writev, ssize_t, Write, (int file, const void* parts, int count), (file, parts, count))
KESTRUNE_PWRITE(pwrite)
KESTRUNE_PWRITE(pwrite64)

KESTRUNE_FILE_CALL(fsync, int, Sync, (int file), (file))
KESTRUNE_FILE_CALL(fdatasync, int, Sync, (int file), (file))
KESTRUNE_FILE_CALL(ftruncate, int, Truncate, (int file, off_t size), (file, size))
KESTRUNE_FILE_CALL(ftruncate64, int, Truncate, (int file, off_t size), (file, size))

KESTRUNE_STAT(stat)
KESTRUNE_STAT(stat64)
KESTRUNE_STAT(lstat)
KESTRUNE_STAT(lstat64)
KESTRUNE_STAT_FILE(fstat)
KESTRUNE_STAT_FILE(fstat64)
KESTRUNE_STAT_AT(fstatat)
KESTRUNE_STAT_AT(fstatat64)
KESTRUNE_AT_CALL(faccessat, Status, (int folder, const char* path, int mode, int flags),
                 (folder, path, mode, flags))
KESTRUNE_PATH_CALL(access, Status, (const char* path, int mode), (path, mode))
KESTRUNE_CALL(realpath, char*, FailedWithNone<char*>, AskForPath(CallKind::Status, path),
              (const char* path, char* real), (path, real))

KESTRUNE_SEEK(lseek)
KESTRUNE_SEEK(lseek64)
KESTRUNE_FILE_CALL(flock, int, Lock, (int file, int operation), (file, operation))
KESTRUNE_CONTROL(fcntl)
KESTRUNE_CONTROL(fcntl64)
KESTRUNE_FILE_CALL(fchmod, int, Change, (int file, mode_t mode), (file, mode))
KESTRUNE_FILE_CALL(fchown, int, Change, (int file, uid_t user, gid_t group), (file, user, group))
KESTRUNE_FILE_CALL(futimens, int, Change, (int file, const timespec* times), (file, times))

KESTRUNE_PATH_CALL(rename, Rename, (const char* path, const char* to), (path, to))
KESTRUNE_AT_CALL(renameat2, Rename,
                 (int folder, const char* path, int toFolder, const char* to, unsigned flags),
                 (folder, path, toFolder, to, flags))
KESTRUNE_PATH_CALL(link, Link, (const char* path, const char* to), (path, to))
KESTRUNE_PATH_CALL(unlink, Remove, (const char* path), (path))
KESTRUNE_AT_CALL(unlinkat, Remove, (int folder, const char* path, int flags), (folder, path, flags))
KESTRUNE_PATH_CALL(rmdir, Remove, (const char* path), (path))
KESTRUNE_PATH_CALL(mkdir, MakeFolder, (const char* path, mode_t mode), (path, mode))
KESTRUNE_ROOM(statvfs)
KESTRUNE_ROOM(statvfs64)

// NOLINTEND(cppcoreguidelines-macro-usage)
