#include "presenters/MainWindow.h"

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Text.h"
#include "presenters/HintLine.h"
#include "presenters/Shelf.h"

namespace kestrune::presenters {
namespace {

// The bars of the window run from 0 to 3000.
constexpr int kBarUnitsPerPercent = 30;

std::string Elapsed(std::optional<std::int64_t> seconds) {
  return seconds ? base::FormatDate(base::DateValue::FromSeconds(*seconds), "Hh:Nn:Ss") : std::string();
}

SignalBar Bar(std::int16_t percent) {
  return {.Value = percent * kBarUnitsPerPercent, .Caption = fmt::format("{}%", percent)};
}

void ShowAnnouncement(const recorder::Announcement& announcement, bool linkUp, MainWindow& window) {
  if (announcement.Channel != 0) {
    window.lblChannel.Caption =
        fmt::format("{}: {}", announcement.Channel, base::DoubleAmpersands(announcement.Station));
  }
  window.lblGenre.Caption = base::DoubleAmpersands(announcement.Genre);
  window.lblArtist.Caption = base::DoubleAmpersands(announcement.Artist);
  window.lblSong.Caption = base::DoubleAmpersands(announcement.Song);
  window.Title = announcement.TitleArtist ? "Kestrune: " + *announcement.TitleArtist : "Kestrune";
  window.TrayTip = "Kestrune";
  if (const auto& tip = announcement.TrayTip) {
    window.TrayTip =
        fmt::format("Kestrune: {}\n{} - {}", recorder::StatusText(tip->Phase), tip->Artist, tip->Song);
  }
  if (const auto& signal = announcement.Signal; signal && linkUp) {
    window.pbrSatSignal = {Bar(signal->Satellite1), Bar(signal->Satellite2)};
    window.pbrTerSignal = Bar(signal->Terrestrial);
  }
}

void ShowRecording(const recorder::State& state, MainWindow& window) {
  const recorder::RecordingState& recording = state.Recording;
  window.lblRecording = {.Caption = std::string(recorder::StatusText(recording.Phase)),
                         .Visible = state.Clock.StatusShown};
  window.lblClock = {.Caption = Elapsed(state.Clock.CaptureSeconds), .Visible = recording.ShowsLength()};
  const bool event = state.Schedule.ActiveSchedule != 0;
  window.lblcRemaining.Visible = event;
  window.lblRemaining = {.Caption = Elapsed(state.Clock.SecondsLeft), .Visible = event};
  window.pctTimer.Visible = state.Clock.EventMarkShown;
  window.lblRecorded.Caption = std::to_string(recording.RecordedCount);
  window.lblTooShort.Caption = std::to_string(recording.TooShortCount);
  window.lblTooLong.Caption = std::to_string(recording.TooLongCount);
  window.lblRestricted.Caption = std::to_string(recording.RestrictedCount);
  window.cmdRecord.Enabled = state.MayRecord();
  window.cmdStop.Enabled = state.MayStop();
  window.cmdKeep.Enabled = MayKeepCurrent(state);
  window.mnuReload.Enabled = recording.ChannelsLoaded;
  window.mnuMute = recording.Muted;
}

void ShowOptions(const config::Settings& settings, MainWindow& window) {
  window.chkIntegrel = settings.Integrel;
  window.chkSievanceGrab = settings.SievanceGrab != 0;
  window.chkSievanceKill = settings.SievanceKill != 0;
  window.chkRadioOnAtExit = settings.RadioOnAtExit;
  window.mnuCleftune = settings.Cleftune;
  window.mnuCheckUpdatesAtStartup = settings.CheckUpdatesAtStartup;
}

}  // namespace

MainWindow ShowState(const recorder::State& state, const DesktopRecord& desktop) {
  MainWindow window;
  static_cast<DesktopRecord&>(window) = desktop;
  ShowAnnouncement(state.Announcement, state.Link.Up(), window);
  ShowRecording(state, window);
  ShowOptions(state.Settings, window);
  if (const recorder::Hint* const hint = ShownHint(state)) {
    window.TrayTip = window.TrayTip.substr(0, window.TrayTip.find('\n')) + '\n' + recorder::HintText(*hint);
    window.HintStation = base::Trim(fmt::format("{} {}", hint->Channel, hint->Station));
  }
  window.HintChannel = HintChannel(state);
  window.Warning = state.Watch.Warning();
  if (!window.Warning.empty()) window.TrayTip += "\n" + window.Warning;
  window.Load = ShowLoad(state.Radio);
  window.ChannelLocked = state.Recording.GetRecordingStatus();
  window.Recording = state.Recording.IsRecording();
  return window;
}

}  // namespace kestrune::presenters
