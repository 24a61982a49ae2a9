#pragma once

#include <string_view>

namespace kestrune::base {

/// Where the rooms report what happened. All calls come on the main thread; none reports a failure to its caller.
class Journal {
 public:
  virtual ~Journal() = default;

  /// One line of the user's log. The text "Clear" empties it.
  virtual void DoLog(std::string_view text) = 0;

  /// A line for the log and the trace file, in debug mode only.
  virtual void DebugPrint(std::string_view text) = 0;

  /// Whether a trace file is open; callers build trace lines only if it is.
  [[nodiscard]] virtual bool Tracing() const = 0;

  /// One line of the trace file: the seconds since midnight, a blank and the text. Nothing if no file is
  /// open.
  virtual void Trace(std::string_view text) = 0;
};

}  // namespace kestrune::base
