#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "presenters/DesktopRecord.h"
#include "presenters/LoadProgress.h"
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

/// What the main window shows. Captions of labels carry "&" doubled.
struct MainWindow : DesktopRecord {
  std::string Title = "Kestrune";
  std::string TrayTip = "Kestrune";

  Label lblChannel;
  Label lblGenre;
  Label lblArtist;
  Label lblSong;
  Label lblRecording{.Caption = "", .Visible = false};
  std::string Warning;  ///< what has failed, for as long as it lasts; empty if all is well
  std::int16_t HintChannel =
      0;  ///< the channel that a click on the hint tunes to; 0: there is nothing to click on
  std::string HintStation;     ///< its number and its station
  bool ChannelLocked = false;  ///< channel, presets and mute cannot be changed
  bool Recording = false;      ///< a song is being kept, and the status is to catch the eye
  LoadProgress Load;           ///< of the radio's channels
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
  Button cmdKeep{.Enabled = false};
  Button mnuReload{.Enabled = false};

  bool chkIntegrel = false;
  bool chkSievanceGrab = false;
  bool chkSievanceKill = false;
  bool chkRadioOnAtExit = false;
  bool mnuCleftune = false;
  bool mnuCheckUpdatesAtStartup = false;
  bool mnuMute = false;
};

/// The main window in this state: what only the window knows, and everything else derived from the state.
[[nodiscard]] MainWindow ShowState(const recorder::State& state, const DesktopRecord& desktop);

}  // namespace kestrune::presenters
