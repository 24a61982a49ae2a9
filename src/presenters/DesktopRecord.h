#pragma once

namespace kestrune::presenters {

/// How the window stands on the desktop; `None` where the program runs without one.
enum class WindowState { None, Normal, Minimized, Maximized };

/// What only the main window knows of itself, and which windows its check boxes have opened. The window and the
/// rules of its boxes keep it up to date.
struct DesktopRecord {
  WindowState State = WindowState::None;
  float Top = 0;   ///< twips
  float Left = 0;  ///< twips
  bool Visible = false;
  bool TrayIcon = false;  ///< the desktop shows the program's icon, by which a hidden window comes back

  bool chkChannelListing = false;
  bool chkRecordLog = false;
  bool chkSchedule = false;
  bool chkRestrictList = false;
  bool chkKestruneNow = false;
  bool chkReport = false;
};

}  // namespace kestrune::presenters
