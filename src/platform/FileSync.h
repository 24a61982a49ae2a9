#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Result.h"

namespace kestrune::platform {

/// Brings finished files to the disk without holding up the caller. Used from the main thread.
///
/// 1. Sync returns at once. The files follow in the order of the calls, each within a second or so on a disk that is
///    not overloaded: first its data, then its name, then the folders above it, which may be new too.
/// 2. A file that is gone by then is no failure. Every other failure goes to the handler, from the event loop.
/// 3. Destroying the object waits until all that was asked for is done; the handler is no longer called then.
class FileSync {
 public:
  virtual ~FileSync() = default;

  /// `path` is absolute, UTF-8, with "/" between folders.
  virtual void Sync(std::string_view path) = 0;

  using FailureHandler = std::function<void(const std::string& path, const base::Result& failure)>;
  /// An empty handler ends the reports.
  virtual void SetFailureHandler(FailureHandler handler) = 0;
};

}  // namespace kestrune::platform
