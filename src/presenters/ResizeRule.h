#pragma once

#include "base/RunState.h"
#include "config/settings/Settings.h"
#include "presenters/DesktopRecord.h"
#include "recorder/Windows.h"

namespace kestrune::presenters {

/// The other windows follow the main window: minimised, it takes them along, and itself leaves the task bar
/// if the user wants it in the tray only. It runs at each resize and ten times a second.
class ResizeRule {
 public:
  /// All must outlive the object.
  ResizeRule(DesktopRecord& desktop, recorder::Windows& windows, const config::Settings& settings,
             const base::RunState& run)
      : desktop_(desktop), windows_(windows), settings_(settings), run_(run) {}

  void Apply();

 private:
  DesktopRecord& desktop_;
  recorder::Windows& windows_;
  const config::Settings& settings_;
  const base::RunState& run_;
};

/// Whether a minimised main window keeps its place in the task bar. Without a tray icon it does in any case:
/// a window that nothing brings back must not be hidden.
[[nodiscard]] inline bool StaysInTaskBar(const DesktopRecord& desktop, const config::Settings& settings) {
  return settings.TaskBarMinimized || !desktop.TrayIcon;
}

}  // namespace kestrune::presenters
