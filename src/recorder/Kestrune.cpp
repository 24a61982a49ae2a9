#include "recorder/Kestrune.h"

#include <chrono>
#include <optional>

#include "base/Ignored.h"
#include "base/Text.h"
#include "recorder/Explanation.h"
#include "schedule/entries/ReloadSchedule.h"

namespace kestrune::recorder {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kUpdateInterval{200};
constexpr milliseconds kClockInterval{100};
constexpr milliseconds kQuitInterval{2000};

}  // namespace

Kestrune::Kestrune(const Outside& outside)
    : outside_(outside),
      section_(outside.Settings),
      tmrUpdate_(outside.Loop.MakeTimer(kUpdateInterval, [this] { updateCycle_.Tick(); })),
      tmrClock_(outside.Loop.MakeTimer(kClockInterval, [this] { clock_.Tick(); })),
      tmrQuit_(outside.Loop.MakeTimer(kQuitInterval, [this] { tmrQuit_Timer(); })),
      tmrClose_(outside.Loop.MakeTimer(milliseconds(0),
                                       [this] {
                                         tmrClose_->SetEnabled(false);
                                         Close();
                                       })),
      log_(outside.Files, outside.Environment, outside.Loop),
      session_(outside.pcrComm, outside.Loop, run_, log_),
      channels_(radioState_, run_, session_, outside.Files, outside.Loop, log_, *this),
      modes_(schedule_, settings_, window_),
      restrictions_(outside.Files, outside.Environment),
      restrictListEditor_(restrictions_, outside.Files, outside.Environment, outside.Dialogs),
      grabKill_(restrictions_, restrictListEditor_, outside.Files, outside.Environment),
      fileSpecs_([this](std::int16_t slot) { return audio_.File(slot); }, settings_, recording_.CaptureSlot,
                 [this] { return ScheduledBitRate(); }),
      capture_(audio_, recording_, fileSpecs_, settings_, radioState_, outside.Files, log_),
      disposition_(recording_, radioState_, settings_, fileSpecs_, modes_, restrictions_, outside.Files,
                   outside.Loop, log_),
      display_(window_, run_, log_),
      boundary_(recording_, settings_, channels_, radioState_, capture_, disposition_, display_, window_,
                outside.Files, outside.Loop),
      commands_(recording_, radioState_, modes_, window_, session_, outside.Loop, *tmrUpdate_),
      settingChanges_(settings_, section_, [this] { commands_.cmdStop(); }),
      schedulePass_(entries_, schedule_, recording_, radioState_, channels_, commands_, window_, log_,
                    outside.Loop, *tmrUpdate_),
      updateCycle_(recording_, radioState_, run_, channels_, modes_, boundary_, commands_, display_,
                   outside.Loop, *tmrUpdate_),
      clock_(recording_, schedule_, modes_, restrictions_, settings_, window_, outside.Windows, session_,
             outside.Loop),
      options_(window_, settings_, section_, run_, outside.Dialogs),
      switches_(window_, outside.Windows, settings_, section_, run_),
      resize_(window_, outside.Windows, settings_, run_),
      presets_(channels_, outside.Sounds,
               {.Read = [this](std::string_view key) { return section_.Text(key, ""); },
                .Write = [this](std::string_view key,
                                std::string_view text) { base::Ignored(section_.SaveText(key, text)); }},
               [this] { return recording_.GetRecordingStatus(); }),
      presetSetup_(channels_.Grid(), presets_, outside.Dialogs),
      channelChooser_(channels_, run_, outside.Sounds, outside.Loop, *tmrUpdate_,
                      [this] { return recording_.GetRecordingStatus(); }),
      nowScreen_(channels_, presets_, outside.Loop,
                 [this] {
                   return presenters::NowLines{.lblChannel = window_.lblChannel.Caption,
                                               .lblArtist = window_.lblArtist.Caption,
                                               .lblSong = window_.lblSong.Caption};
                 }),
      update_(outside, run_, commands_, [this] { Close(); }),
      stayAwake_(recording_, schedule_, entries_, outside.SleepInhibitor, outside.Loop) {
  session_.pcrChannelInfoReceived = [this](const radio::ChannelInfo& info) {
    channels_.pcrChannelInfoReceived(info);
  };
  session_.pcrSignalReceived = [this](std::int16_t satellite1, std::int16_t satellite2,
                                      std::int16_t terrestrial) {
    display_.pcrSignalReceived(satellite1, satellite2, terrestrial);
  };
  updateCycle_.SetSchedulePass([this] { schedulePass_.Run(); });
}

Kestrune::~Kestrune() = default;

bool Kestrune::SetMute(bool on) {
  if (recording_.GetRecordingStatus()) {
    outside_.Sounds.Play("SystemAsterisk");
    return false;
  }
  window_.mnuMute = on;
  base::Ignored(session_.pcrMute(on));
  return true;
}

void Kestrune::mnuRecord_Click() {
  if (window_.cmdRecord.Enabled) cmdRecord();
}

void Kestrune::mnuStop_Click() {
  if (window_.cmdStop.Enabled) cmdStop();
}

void Kestrune::mnuMute_Click() {
  base::Ignored(SetMute(!window_.mnuMute));
}

void Kestrune::mnuReload_Click() {
  channels_.mnuReload();
  base::Ignored(outside_.Dialogs.Show({.Title = std::string(radio::Channels::kReloadTitle),
                                       .Text = std::string(radio::Channels::kReloadText)}));
}

std::string Kestrune::Explanation() const {
  return ExplainRecording(window_, recording_, radioState_, modes_, restrictions_);
}

void Kestrune::AudioRecord_Timer() {
  const std::int32_t count = audioDisplay_.SampleCount();
  if (count <= 0) return;
  audioDisplay_.Draw(audio_.AudioRecord->GetDisplaySamples(count),
                     audio_.File(recording_.CaptureSlot)->FormatValues());
}

std::optional<std::string> Kestrune::ReadSetting(std::string_view key) const {
  return settingChanges_.Get(key);
}

config::SettingOutcome Kestrune::ChangeSetting(std::string_view key, std::string_view value) {
  const std::int16_t device = settings_.InputDevice;
  config::SettingOutcome outcome = settingChanges_.Set(key, value);
  if (outcome.FormatChanged) fileSpecs_.SetFileSpecs(-1);
  if (settings_.InputDevice != device) ReadInputDeviceName();
  ShowSettings();
  return outcome;
}

void Kestrune::ReloadSchedule() {
  schedule::ReloadSchedule(
      [this](std::string_view key, std::string_view defaultText) { return section_.Text(key, defaultText); },
      outside_.Loop.Now(), entries_);
}

presenters::Scheduler Kestrune::OpenScheduler() {
  std::vector<schedule::SchedulerChannel> channels;
  const radio::ChannelGrid& grid = channels_.Grid();
  for (int row = 1; row <= grid.RowCount(); ++row) {
    channels.push_back({.Number = grid.NumberAt(row),
                        .Station = std::string(base::Trim(grid.At(row).at(radio::ChannelGrid::Station)))});
  }
  return {{.Loop = outside_.Loop,
           .Dialogs = outside_.Dialogs,
           .Settings = {.Read = [this](std::string_view key,
                                       std::string_view text) { return section_.Text(key, text); },
                        .Save = [this](std::string_view key,
                                       std::string_view text) { return section_.SaveText(key, text); }},
           .ReloadSchedule = [this] { ReloadSchedule(); }},
          std::move(channels)};
}

std::optional<std::string> Kestrune::ScheduledBitRate() const {
  if (schedule_.ActiveSchedule == 0) return std::nullopt;
  return entries_.at(static_cast<std::size_t>(schedule_.ActiveSchedule - 1)).MP3BitRate;
}

presenters::ConfigurationAccess Kestrune::ConfigurationAccess() {
  return {.Settings = settings_,
          .Section = section_,
          .FileSpecs = fileSpecs_,
          .Dialogs = outside_.Dialogs,
          .Environment = outside_.Environment,
          .Devices = [this] { return deviceList_; },
          .cmdStop = [this] { commands_.cmdStop(); },
          .DeviceChanged = [this] { ReadInputDeviceName(); }};
}

void Kestrune::ReadInputDeviceName() {
  if (audio_.AudioRecord == nullptr) return;
  audio_.AudioRecord->SetDeviceIndex(settings_.InputDevice);
  inputDeviceName_ = audio_.AudioRecord->DeviceUsable() ? audio_.AudioRecord->DeviceName() : "";
}

std::string Kestrune::InputDeviceId() {
  if (audio_.AudioRecord == nullptr) return {};
  audio_.AudioRecord->SetDeviceIndex(settings_.InputDevice);
  return audio_.AudioRecord->DeviceId();
}

void Kestrune::ShowSettings() {
  window_.chkSievanceGrab = settings_.SievanceGrab != 0;
  window_.chkSievanceKill = settings_.SievanceKill != 0;
  window_.mnuCheckUpdatesAtStartup = settings_.CheckUpdatesAtStartup;
  window_.chkIntegrel = settings_.Integrel;
  window_.chkRadioOnAtExit = settings_.RadioOnAtExit;
  window_.mnuCleftune = settings_.Cleftune;
}

void Kestrune::ShowChannel(const radio::ChannelEntry& entry) {
  display_.ShowChannel(radioState_.ChannelNumber, entry);
}

void Kestrune::ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  display_.ShowTunedChannel(number, entry);
}

void Kestrune::ShowBareTitle() {
  display_.ShowBareTitle();
}

void Kestrune::ChannelTuned() {
  recording_.SongBoundarySeen = false;
  recording_.SkipSongDelay = true;
}

void Kestrune::WalkFinished() {
  recording_.ForceSongChange = true;
  window_.mnuReload.Enabled = true;
  if (window_.lblRecording.Caption == status::kWaitingForChannelLoad) {
    if (settings_.Integrel) {
      recording_.LastArtist = radioState_.CurrentArtist;
      recording_.LastSong = radioState_.CurrentSong;
    }
    cmdRecord();
  } else {
    recording_.LastArtist = kNoSong;
    recording_.LastSong = kNoSong;
  }
}

}  // namespace kestrune::recorder
