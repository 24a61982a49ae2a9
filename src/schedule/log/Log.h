#pragma once

#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "schedule/log/LogList.h"
#include "schedule/log/TraceFile.h"

namespace kestrune::schedule {

/// The user's record of what the program did: the unit's log file, which grows until the user clears it, the
/// list of its last lines and, in debug mode, the trace file. Every failure is ignored, and a line that cannot
/// reach the disk still reaches the list.
class Log final : public base::Journal {
 public:
  /// All references must outlive the log.
  Log(platform::Files& files, const platform::Environment& environment, const base::EventLoop& loop);

  /// Names the log file after the unit; the unit is empty until this is called.
  void SetMultiUnit(std::string_view multiUnit);
  void SetDebugMode(bool on) { debugMode_ = on; }
  [[nodiscard]] bool DebugMode() const { return debugMode_; }
  /// Opens the trace file if debug mode is on and none is open.
  void OpenTrace();
  void CloseTrace() { trace_.Close(); }

  /// Appends the time stamp and the text as one line, whatever control characters the text holds. The text
  /// "Clear" empties file and list.
  void DoLog(std::string_view text) override;
  void DebugPrint(std::string_view text) override;
  [[nodiscard]] bool Tracing() const override { return trace_.IsOpen(); }
  void Trace(std::string_view text) override { trace_.WriteLine(text); }

  [[nodiscard]] LogList& List() { return list_; }
  [[nodiscard]] const LogList& List() const { return list_; }

 private:
  platform::Files& files_;
  const platform::Environment& environment_;
  const base::EventLoop& loop_;
  LogList list_;
  TraceFile trace_;
  bool debugMode_ = false;
};

}  // namespace kestrune::schedule
