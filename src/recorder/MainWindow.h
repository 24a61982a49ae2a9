#pragma once

#include <array>
#include <string>
#include <string_view>

namespace kestrune::recorder {

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
  std::string Tag;  ///< "1" makes it blink with the status
};

/// How the window stands on the desktop; `None` where the program runs without one.
enum class WindowState { None, Normal, Minimized, Maximized };

/// The texts that the status label can show. Other code tests its first nine characters.
namespace status {
inline constexpr std::string_view kWaitingForChannelLoad = "Waiting for channel load";
inline constexpr std::string_view kWaitingForNextSong = "Waiting for next song";
inline constexpr std::string_view kRecording = "Recording";
inline constexpr std::string_view kGrabbed = "Recording (Grabbed)";
inline constexpr std::string_view kKilled = "Recording (Killed)";
}  // namespace status

/// What the main window shows, as plain state: the logic writes it, a window binds to it, a run without a
/// window simply keeps it. Captions of labels carry "&" doubled.
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

  /// The status shows one of the three texts that mean a song is being kept.
  [[nodiscard]] bool ShowsRecording() const {
    return lblRecording.Caption.compare(0, status::kRecording.size(), status::kRecording) == 0;
  }
  /// "Kestrune: " + status + line end + artist + " - " + title.
  void SetTrayTipForSong(std::string_view artist, std::string_view song) {
    TrayTip = "Kestrune: " + lblRecording.Caption + "\n";
    TrayTip.append(artist).append(" - ").append(song);
  }
};

}  // namespace kestrune::recorder
