#pragma once

#include <array>
#include <string>
#include <string_view>

#include "recorder/State.h"

namespace kestrune::presenters {

struct Label {
  std::string Caption;
  bool Visible = true;
};

struct Button {
  bool Enabled = true;
};

struct SignalBar {
  int Value = 0;  ///< percent times 30
  std::string Caption;
};

/// The mark of a running scheduled event.
struct TimerMark {
  bool Visible = false;
};

/// How the window stands on the desktop; `None` where the program runs without one.
enum class WindowState { None, Normal, Minimized, Maximized };

/// What the main window shows. Captions of labels carry "&" doubled.
struct MainWindow {
  std::string Title = "Kestrune";
  std::string TrayTip = "Kestrune";
  WindowState State = WindowState::None;
  float Top = 0;   ///< twips
  float Left = 0;  ///< twips
  bool Visible = false;
  bool TrayIcon = false;  ///< the desktop shows the program's icon, by which a hidden window comes back

  Label lblChannel;
  Label lblGenre;
  Label lblArtist;
  Label lblSong;
  Label lblRecording{.Caption = "", .Visible = false};
  bool Recording = false;  ///< a song is being kept, and the status is to catch the eye
  Label lblClock{.Caption = "", .Visible = false};
  Label lblcRemaining{.Caption = "", .Visible = false};  ///< names the next one; its text is the window's own
  Label lblRemaining{.Caption = "", .Visible = false};
  TimerMark pctTimer;
  Label lblRecorded{.Caption = "0"};
  Label lblTooShort{.Caption = "0"};
  Label lblTooLong{.Caption = "0"};
  Label lblRestricted{.Caption = "0"};
  std::array<SignalBar, 2> pbrSatSignal;
  SignalBar pbrTerSignal;

  Button cmdRecord{.Enabled = true};
  Button cmdStop{.Enabled = false};
  Button mnuReload{.Enabled = false};

  bool chkIntegrel = false;
  bool chkSievanceGrab = false;
  bool chkSievanceKill = false;
  bool chkRadioOnAtExit = false;
  bool mnuCleftune = false;
  bool mnuCheckUpdatesAtStartup = false;
  bool mnuMute = false;

  bool chkChannelListing = false;
  bool chkRecordLog = false;
  bool chkSchedule = false;
  bool chkRestrictList = false;
  bool chkKestruneNow = false;
};

/// The main window in this state: the record of what only the window knows (its place, state and visibility, the
/// tray icon, the open windows) with everything else derived from the state.
[[nodiscard]] MainWindow ShowState(const recorder::State& state, MainWindow window);

/// The text of the status label.
[[nodiscard]] std::string_view StatusText(recorder::Phase phase);

}  // namespace kestrune::presenters
