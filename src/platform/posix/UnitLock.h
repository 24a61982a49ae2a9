#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

/// Marks a unit as running. The system releases the lock when the process ends, however it ends; the file stays.
class UnitLock {
 public:
  /// Names the lock; takes nothing yet.
  UnitLock(std::string_view runtimeFolder, std::string_view unit);
  ~UnitLock();
  UnitLock(const UnitLock&) = delete;
  UnitLock& operator=(const UnitLock&) = delete;

  /// True if this object holds the lock afterwards. False if another holds it, or the folder is missing.
  [[nodiscard]] bool TryAcquire();

  /// The process that holds the lock; nothing if none does.
  [[nodiscard]] std::optional<pid_t> HolderPid() const;

 private:
  std::string path_;
  FileDescriptor held_;
};

}  // namespace kestrune::platform
