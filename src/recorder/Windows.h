#pragma once

#include "recorder/WindowName.h"

namespace kestrune::recorder {

/// The windows that the run opens and closes by itself, at the moments named. A run without windows uses this
/// class as it is: then every call does nothing. All calls come on the main thread.
class Windows {
 public:
  virtual ~Windows() = default;

  virtual void AddTrayIcon() {}
  virtual void RemoveTrayIcon() {}
  virtual void PlaceMainWindow() {}
  virtual void HideAndDisableMainWindow() {}
  virtual void ShowPleaseWaitAndSplash() {}
  /// State::Search has changed. The caller may sleep next, so it is to be shown before this returns.
  virtual void ShowSearch() {}
  virtual void ClosePleaseWait() {}
  /// Shows the main window, gives it the focus and lets it take no input.
  virtual void ShowMainWindowDisabled() {}
  /// The channels window, hidden; its grid has been set up.
  virtual void LoadChannelsWindow() {}
  /// The first run here: the configuration, which has to be saved once.
  virtual void ShowFirstConfiguration() {}
  virtual void EnableMainWindow() {}
  virtual void ShowRememberedWindows() {}
  /// The wait cursor over the main window, and the normal one again.
  virtual void ShowWaitCursor(bool /*wait*/) {}
  /// The window of a download, which does not hold up the caller.
  virtual void ShowUpdating() {}
  virtual void CloseUpdating() {}

  /// Opens the window, or brings an open one to the front.
  virtual void Show(WindowName /*name*/) {}
  /// As if the user had asked it to close: its own closing rule runs. A window that is only hidden is hidden.
  virtual void Close(WindowName /*name*/) {}
  /// Hides a loaded window or shows it again, without giving it the focus.
  virtual void SetVisible(WindowName /*name*/, bool /*visible*/) {}
  [[nodiscard]] virtual bool IsLoaded(WindowName /*name*/) const { return false; }

  virtual void HideAll() {}
  virtual void UnloadChannelsAndLog() {}
  virtual void UnloadAll() {}
};

}  // namespace kestrune::recorder
