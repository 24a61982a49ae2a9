#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "base/Result.h"

namespace kestrune::platform {

/// A capture that no run closed, as the mender leaves it.
struct MendedCapture {
  enum class State {
    Whole,      ///< decodes from its beginning to its end, and is held
    Empty,      ///< there is no sound in it; it is held
    Not,        ///< cannot be mended, or opened, and is as it was; it is held if it could be opened
    Untouched,  ///< gone, held by somebody else, or a link
  };
  static constexpr std::int64_t kUnknownLength = -1;

  State Is = State::Untouched;
  std::int64_t LengthMs = kUnknownLength;  ///< of a whole one; raw samples do not say how long they are
  std::string Artist{};       ///< as the tags have it, valid UTF-8; empty if they are not written yet
  std::string Title{};        ///< the same
  base::DateValue Written{};  ///< when its last sound was written
  std::string Cause{};        ///< why it cannot be mended
};

/// Finds captures that a crash or a power cut left open, and gives them an end. What may take long is done aside; the
/// answers come from the event loop. One call at a time: the next one after the answer. Used from the main thread.
///
/// 1. A file that another process holds is not touched, nor what is no plain file, and no link is followed.
/// 2. Only the end and the lengths of a file change, and its time stays. What cannot be mended stays as it is.
/// 3. The file is held from the answer to the next call, so that nobody takes it for a leftover meanwhile.
/// 4. A call that is broken off has left a file that can be mended again.
class CaptureMender {
 public:
  virtual ~CaptureMender() = default;

  /// `looked` has failed if the system has kept the search from a folder: there may be more files than were found. A
  /// folder that this user may not read is passed over.
  using FoundHandler = std::function<void(const std::vector<std::string>& paths, const base::Result& looked)>;
  /// Plain files in the folder and in all folders below it whose name matches a pattern with "*" and "?", sorted; none
  /// if the folder is not there. It looks at a million names at most.
  virtual void Find(std::string_view folder, std::string_view pattern, FoundHandler found) = 0;

  using MendedHandler = std::function<void(const MendedCapture& mended)>;
  /// Mends a file by its format, which the end of its name tells.
  virtual void Mend(std::string_view path, MendedHandler mended) = 0;

  /// Lets go of the file, and breaks off what goes on; no handler is called any more.
  virtual void Stop() = 0;
};

}  // namespace kestrune::platform
