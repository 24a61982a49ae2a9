#pragma once

#include "base/RunState.h"
#include "config/settings/SettingsDoor.h"
#include "presenters/DesktopRecord.h"
#include "presenters/WindowTable.h"
#include "recorder/Windows.h"

namespace kestrune::presenters {

/// The check boxes of the main window that show and hide other windows, and their menu entries, which show
/// the same mark. Once the program closes they do nothing: a window that goes then leaves its box, and so the
/// next start, as the user had it.
class WindowSwitches {
 public:
  /// All must outlive the object.
  WindowSwitches(DesktopRecord& desktop, recorder::Windows& windows, config::SettingsDoor& settings,
                 const base::RunState& run)
      : desktop_(desktop), windows_(windows), settings_(settings), run_(run) {}

  /// The user, or a window that closes, has set the window's box.
  void Click(recorder::WindowName name, bool checked);

  /// Shows the mixer, or closes it if it is open.
  void cmdMixer_Click();

  /// Sets the remembered boxes as the last run left them; each opens its window through its own rule.
  void ShowRemembered();

 private:
  void Follow(recorder::WindowName name, bool checked);

  DesktopRecord& desktop_;
  recorder::Windows& windows_;
  config::SettingsDoor& settings_;
  const base::RunState& run_;
};

}  // namespace kestrune::presenters
