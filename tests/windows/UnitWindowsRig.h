#pragma once

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <utility>

#include "base/Ignored.h"
#include "support/FakeAutostart.h"
#include "support/FakeInputListener.h"
#include "support/FakeMixer.h"
#include "windows/DesktopRig.h"
#include "windows/QtDialogs.h"
#include "windows/UnitWindows.h"

namespace kestrune::test {

/// The desktop with all of the program's windows, at a start that is not the first.
class UnitWindowsRig : public DesktopRig {
 public:
  UnitWindowsRig() {
    Mixer.Lines = {{.Name = "Line In"}, {.Name = "Microphone"}};
    Unit.Set("MainTop", "1500");
    Unit.Set("MainLeft", "1500");
    // What the program does with the windows that wait for an answer.
    Unit.Dialogs.OnGiveUp = [] { windows::QtDialogs("", true).GiveUp(); };
  }
  ~UnitWindowsRig() { Desktop.Detach(); }
  UnitWindowsRig(const UnitWindowsRig&) = delete;
  UnitWindowsRig& operator=(const UnitWindowsRig&) = delete;

  /// The first start of the program here.
  void ForgetTheLastRun() { base::Ignored(Unit.Store.DeleteSetting("Lorimel", "Kestrune", "MainTop")); }
  [[nodiscard]] bool Shows(recorder::WindowName name) const {
    const QWidget* window = Desktop.WidgetOf(name);
    return window != nullptr && window->isVisible();
  }
  /// The open window of that name.
  [[nodiscard]] QWidget& Window(recorder::WindowName name) const {
    QWidget* window = Desktop.WidgetOf(name);
    if (window == nullptr) throw std::runtime_error("the window is not open");
    return *window;
  }
  /// Chooses an entry of the main window's menus.
  void Choose(const char* entry) { Main().Entry(entry)->trigger(); }

  /// Calls `opens`, which returns only once a modal window has closed, and does `act` with that window. The
  /// modal window's name, or nothing if there was none.
  template <typename Opens>
  QString WithinModal(Opens opens, std::function<void(QWidget&)> act) {
    QString name;
    QTimer::singleShot(0, &Desktop, [&name, act = std::move(act)] {
      const QPointer<QWidget> window = QApplication::activeModalWidget();
      if (window == nullptr) return;
      name = window->objectName();
      act(*window);
    });
    opens();
    QCoreApplication::processEvents();
    return name;
  }

  FakeMixer Mixer;
  FakeAutostart Autostart;
  FakeInputListener Inputs;
  windows::UnitWindows Windows{Desktop,
                               *Unit.Rules,
                               {.Loop = Unit.Loop,
                                .Files = Unit.Files,
                                .Environment = Unit.Environment,
                                .Dialogs = Unit.Dialogs,
                                .Shell = Shell,
                                .Mixer = Mixer,
                                .Autostart = Autostart,
                                .Audio = Unit.Audio,
                                .InputListener = Inputs}};
};

}  // namespace kestrune::test
