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

void LogWindow::OpenCopy() {
  const std::string& log = list_.LogPath();
  if (!files_.Exists(log)) return;
  const std::string copy = environment_.Variable("temp") + "/KestruneLog.txt";
  // An older copy, left by whomever, is not shown for the log.
  if (files_.Copy(log, copy)) base::Ignored(shell_.Open(copy));
}

}  // namespace kestrune::presenters
