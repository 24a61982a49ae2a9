#pragma once

#include <memory>
#include <string_view>

#include "base/EventLoop.h"
#include "platform/Environment.h"
#include "platform/Files.h"

namespace kestrune::schedule {

/// The trace of a debugging run: a file in the user data folder, named for the minute in which it was opened.
class TraceFile {
 public:
  TraceFile(platform::Files& files, const platform::Environment& environment, const base::EventLoop& loop)
      : files_(files), environment_(environment), loop_(loop) {}

  /// Opens the file, truncating one of the same minute; does nothing if it is open.
  void Open();
  void Close() { file_.reset(); }
  [[nodiscard]] bool IsOpen() const { return file_ != nullptr; }
  /// The seconds since midnight as a single-precision number, a blank and the text. Nothing if not open.
  void WriteLine(std::string_view text);

 private:
  platform::Files& files_;
  const platform::Environment& environment_;
  const base::EventLoop& loop_;
  std::unique_ptr<platform::OpenTextFile> file_;
};

}  // namespace kestrune::schedule
