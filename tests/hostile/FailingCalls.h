#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrune::test {

/// Kinds of system calls on files that can be made to fail.
enum class CallKind : std::uint8_t {
  Open,      ///< a file or a folder, by open or opendir
  Close,     ///< the file is closed all the same, as the system does it
  Read,      ///< also at a place
  Write,     ///< also at a place
  Sync,      ///< fsync, fdatasync
  Truncate,  ///< ftruncate
  Status,    ///< stat and the like, realpath, access
  Seek,      ///< lseek
  Lock,      ///< flock, and locks by fcntl
  Change,    ///< rights, owner and times
  Rename,    ///< also the one that never replaces
  Link,
  Remove,  ///< unlink, rmdir
  MakeFolder,
  Room,  ///< statvfs
};
inline constexpr std::size_t kCallKinds = 15;

/// The record's database has calls of its own, on threads of their own, so they are counted apart.
enum class CallPlace : std::uint8_t { Files, Record };
inline constexpr std::size_t kCallPlaces = 2;

struct WatchedCall {
  CallKind Kind = CallKind::Open;
  CallPlace Place = CallPlace::Files;
  int Number = 0;    ///< among those of its kind and place, from 1
  std::string Path;  ///< below the watched folder
};

struct PlannedFailure {
  CallKind Kind = CallKind::Open;
  CallPlace Place = CallPlace::Files;
  int Number = 1;
  int Error = 0;
  /// All later calls of its kind and place fail too, and the first of several bytes to be written are still taken.
  bool Lasting = false;
};

[[nodiscard]] const char* NameOf(CallKind kind);

// For this process, whose threads may all make such calls. A program has them if it is linked with the library
// failing_calls, which stands between it and the system's.

/// From now on calls on what is in the folder are counted, and kept if `keep`.
void WatchCalls(const std::string& folder, bool keep);
/// One of the calls that are counted from now on is to fail.
void FailCall(const PlannedFailure& failure);
/// Counts nothing and fails nothing any more.
void LeaveCallsAlone();
/// How many calls have failed since FailCall.
[[nodiscard]] int CallsFailed();
/// Where the first of them was.
[[nodiscard]] std::string FirstFailedPath();
[[nodiscard]] std::vector<WatchedCall> WatchedCalls();

}  // namespace kestrune::test
