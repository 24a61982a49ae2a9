#include "presenters/LogWindow.h"

#include <string>

#include "base/Ignored.h"

namespace kestrune::presenters {

void LogWindow::cmdClear() {
  const auto answer = dialogs_.Show({.Title = "Clear Log",
                                     .Text = "Are you sure you want to clear your log?",
                                     .Icon = platform::MessageIcon::Question,
                                     .Buttons = platform::MessageButtons::YesNo});
  if (answer == platform::MessageAnswer::Yes) list_.DoLog("Clear");
}

LogWindow::~LogWindow() {
  if (folder_.empty()) return;
  base::Ignored(files_.Remove(CopyPath()));
  base::Ignored(files_.RemoveFolder(folder_));
}

void LogWindow::OpenCopy() {
  const std::string& log = list_.LogPath();
  if (!files_.Exists(log)) return;
  if (folder_.empty() || !files_.Exists(folder_)) {
    folder_ = files_.CreatePrivateFolder(environment_.Variable("temp"));
  }
  // An older copy is not shown for the log.
  if (!folder_.empty() && files_.Copy(log, CopyPath())) base::Ignored(shell_.Open(CopyPath()));
}

}  // namespace kestrune::presenters
