#pragma once

#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Shell.h"
#include "schedule/log/LogList.h"

namespace kestrune::presenters {

/// What the user can do in the log's window.
class LogWindow {
 public:
  /// All references must outlive the object.
  LogWindow(schedule::LogList& list, platform::Files& files, const platform::Environment& environment,
            platform::Shell& shell, platform::Dialogs& dialogs)
      : list_(list), files_(files), environment_(environment), shell_(shell), dialogs_(dialogs) {}

  [[nodiscard]] schedule::LogList& List() const { return list_; }

  /// Asks first; nothing is logged about it.
  void cmdClear();
  /// Opens a copy of the log file in the temporary folder with the desktop's program for text files, so that
  /// the log grows on undisturbed. Does nothing if there is no file, or no copy could be made.
  void OpenCopy();

 private:
  schedule::LogList& list_;
  platform::Files& files_;
  const platform::Environment& environment_;
  platform::Shell& shell_;
  platform::Dialogs& dialogs_;
};

}  // namespace kestrune::presenters
