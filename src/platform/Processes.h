#pragma once

#include <cstdint>
#include <string_view>

namespace kestrune::platform {

/// How a wait for another program ended.
enum class WaitEnd {
  Ended,     ///< the program has ended
  TimedOut,  ///< it outlived the time given to it
  Failed,    ///< there is no such program, or none that was started here
  GivenUp,   ///< StopWaiting was called
};

/// Other programs. The main thread calls.
class Processes {
 public:
  virtual ~Processes() = default;

  /// Starts a program without waiting for it. The command line is words as base::SplitWords reads them, the
  /// first of them the program, which is found as a shell would find it; no shell is involved. `hidden`: its
  /// output is discarded, else it goes where this program's own output goes. Returns the process identifier; 0 if the
  /// program could not be started.
  [[nodiscard]] virtual std::int32_t Start(std::string_view commandLine, bool hidden) = 0;
  /// Waits for a program that Start has started, for so many milliseconds, or without limit if the number is 0.
  /// Events are served meanwhile.
  [[nodiscard]] virtual WaitEnd Wait(std::int32_t processId, std::uint32_t timeoutMs) = 0;
  /// This program is about to end: a wait under way returns, and so does every later one, at once. The programs
  /// waited for run on.
  virtual void StopWaiting() = 0;
};

}  // namespace kestrune::platform
