#pragma once

#include <string>

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

  /// Removes the copy and its folder.
  ~LogWindow();
  LogWindow(const LogWindow&) = delete;
  LogWindow& operator=(const LogWindow&) = delete;

  [[nodiscard]] schedule::LogList& List() const { return list_; }

  /// Asks first; nothing is logged about it.
  void cmdClear();

  /// Opens a copy of the log file with the desktop's program for text files, so that the log grows on undisturbed.
  /// The copy lies in a folder of its own inside the temporary one, closed to other users, since a name in the
  /// common folder could be a link that another user has put there. Does nothing if there is no log file, or no
  /// copy could be made.
  void OpenCopy();

 private:
  [[nodiscard]] std::string CopyPath() const { return folder_ + "/KestruneLog.txt"; }

  schedule::LogList& list_;
  platform::Files& files_;
  const platform::Environment& environment_;
  platform::Shell& shell_;
  platform::Dialogs& dialogs_;
  std::string folder_;  ///< of the copy; empty before the first one
};

}  // namespace kestrune::presenters
