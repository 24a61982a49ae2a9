#pragma once

#include <QApplication>
#include <QCoreApplication>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "support/RecordingShell.h"
#include "support/UnitRig.h"
#include "windows/Desktop.h"

namespace kestrune::test {

/// A whole unit on simulated time with the desktop's windows, on a platform without a screen.
class DesktopRig {
 public:
  DesktopRig()
      : Desktop({.Loop = Unit.Loop,
                 .Dialogs = Unit.Dialogs,
                 .Shell = Shell,
                 .HelpFile = "/program/Documentation/Kestrune.html",
                 .Links = {.WebSite = "https://radio.example", .Mail = "help@radio.example"}}) {
    Unit.MeetWindows(Desktop);
    Desktop.Attach(*Unit.Rules);
  }
  ~DesktopRig() { Desktop.Detach(); }
  DesktopRig(const DesktopRig&) = delete;
  DesktopRig& operator=(const DesktopRig&) = delete;

  /// Of the main window.
  template <typename Control>
  [[nodiscard]] Control& Find(const char* name) {
    auto* control = Main().findChild<Control*>(QLatin1String(name));
    if (control == nullptr) throw std::runtime_error(std::string("there is no control ") + name);
    return *control;
  }
  [[nodiscard]] windows::frmKestrune& Main() { return *Desktop.Main(); }
  /// Lets time pass and Qt deliver what was posted.
  void Run(std::chrono::milliseconds time) {
    Unit.Run(time);
    QCoreApplication::processEvents();
  }
  [[nodiscard]] presenters::DesktopRecord& Record() { return Unit.Rules->OnDesktop(); }

  UnitRig Unit;
  RecordingShell Shell;
  windows::Desktop Desktop;
};

}  // namespace kestrune::test
