#include "recorder/Kestrune.h"

#include <chrono>
#include <optional>

#include "base/Ignored.h"
#include "base/Text.h"
#include "presenters/Explanation.h"
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
      door_(outside.Loop),
      boxes_(outside.Dialogs, door_),
      wishes_(*this, door_),
      section_(outside.Settings),
      tmrUpdate_(outside.Loop.MakeTimer(kUpdateInterval, [this] { updateCycle_.Tick(); })),
      tmrClock_(outside.Loop.MakeTimer(kClockInterval, [this] { clock_.Tick(); })),
      tmrQuit_(outside.Loop.MakeTimer(kQuitInterval, [this] { tmrQuit_Timer(); })),
      log_(outside.Files, outside.Environment, outside.Loop),
      session_(outside.pcrComm, outside.Loop, state_.Run, log_),
      bringUp_(session_, outside.Loop, state_.Run, log_),
      channels_(state_.Radio, state_.Run, session_, outside.Files, outside.Loop, log_, *this),
      restrictions_(outside.Files, outside.Environment, log_),
      restrictListEditor_(restrictions_, outside.Files, outside.Environment, outside.Dialogs, log_),
      grabKill_(restrictions_, restrictListEditor_, outside.Files, outside.Environment, log_),
      fileSpecs_([this](std::int16_t slot) { return audio_.File(slot); }, state_.Settings,
                 state_.Recording.CaptureSlot, [this] { return ScheduledBitRate(); }),
      songFiles_(outside.Files, outside.FileSync, log_),
      capture_(audio_, state_, fileSpecs_, songFiles_, log_),
      disposition_(state_, fileSpecs_, restrictions_, songFiles_, outside.Loop, log_),
      display_(state_, log_),
      boundary_(
          state_,
          {.Channels = channels_, .Capture = capture_, .Disposition = disposition_, .Display = display_},
          songFiles_, outside.Loop),
      commands_(state_, display_, session_, outside.Loop, *tmrUpdate_),
      settingsDoor_({.Settings = state_.Settings,
                     .Section = section_,
                     .Environment = outside.Environment,
                     .Files = outside.Files,
                     .Log = log_},
                    {.StopRecording = [this] { commands_.StopRecording(); },
                     .PrepareFormat = [this] { fileSpecs_.SetFileSpecs(-1); },
                     .DeviceChanged = [this] { InputDeviceChanged(); }}),
      schedulePass_(state_, channels_, commands_, log_, outside.Loop, *tmrUpdate_),
      updateCycle_(state_,
                   {.Channels = channels_, .Boundary = boundary_, .Commands = commands_, .Display = display_},
                   outside.Loop, *tmrUpdate_),
      clock_(state_, restrictions_, outside.Windows, session_, outside.Loop),
      options_(settingsDoor_, state_.Run, boxes_),
      switches_(window_, outside.Windows, settingsDoor_, state_.Run),
      resize_(window_, outside.Windows, state_.Settings, state_.Run),
      presets_(channels_, outside.Sounds,
               {.Read = [this](std::string_view key) { return section_.Text(key, ""); },
                .Write = [this](std::string_view key,
                                std::string_view text) { base::Ignored(section_.SaveText(key, text)); }},
               [this] { return state_.Recording.GetRecordingStatus(); }),
      presetSetup_(channels_.Grid(), presets_, outside.Dialogs),
      channelChooser_(channels_, state_.Run, outside.Sounds, outside.Loop, *tmrUpdate_,
                      [this] { return state_.Recording.GetRecordingStatus(); }),
      nowScreen_(channels_, presets_, outside.Loop,
                 [this] {
                   const presenters::MainWindow window = Window();
                   return presenters::NowLines{.lblChannel = window.lblChannel.Caption,
                                               .lblArtist = window.lblArtist.Caption,
                                               .lblSong = window.lblSong.Caption};
                 }),
      update_(outside, state_.Run, commands_, boxes_, [this] { wishes_.Close(); }),
      stayAwake_(state_, outside.SleepInhibitor, outside.Loop) {
  // A unit that has not begun to load takes no wishes either.
  state_.Run.FormLoading = true;
  session_.pcrChannelInfoReceived = [this](const radio::ChannelInfo& info) {
    channels_.pcrChannelInfoReceived(info);
  };
  session_.pcrSignalReceived = [this](std::int16_t satellite1, std::int16_t satellite2,
                                      std::int16_t terrestrial) {
    display_.pcrSignalReceived(satellite1, satellite2, terrestrial);
  };
  const auto tune = [this](std::int16_t channel, std::function<void()> refused) {
    wishes_.Tune(channel, [refused = std::move(refused)](const base::Result& result) {
      if (!result.Ok()) refused();
    });
  };
  presets_.Tune = tune;
  channelChooser_.Tune = tune;
  // A pass may tune, and a wish whose wait let this tick in may be tuning: the next pass is early enough.
  updateCycle_.SetSchedulePass([this] {
    if (!door_.Serving()) schedulePass_.Run();
  });
}

Kestrune::~Kestrune() = default;

bool Kestrune::SetMute(bool on) {
  if (state_.Recording.GetRecordingStatus()) {
    outside_.Sounds.Play("SystemAsterisk");
    return false;
  }
  state_.Recording.Muted = on;
  base::Ignored(session_.pcrMute(on));
  return true;
}

void Kestrune::mnuReload_Click() {
  channels_.mnuReload();
  boxes_.Show({.Title = std::string(radio::Channels::kReloadTitle),
               .Text = std::string(radio::Channels::kReloadText)});
}

std::string Kestrune::Explanation() const {
  return presenters::ExplainRecording(state_, restrictions_);
}

void Kestrune::AudioRecord_Timer() {
  const std::int32_t count = audioDisplay_.SampleCount();
  if (count <= 0) return;
  audioDisplay_.Draw(audio_.AudioRecord->GetDisplaySamples(count),
                     audio_.File(state_.Recording.CaptureSlot)->FormatValues());
}

void Kestrune::ReloadSchedule() {
  schedule::ReloadSchedule(
      [this](std::string_view key, std::string_view defaultText) { return section_.Text(key, defaultText); },
      outside_.Loop.Now(), state_.Entries);
}

std::vector<schedule::SchedulerChannel> Kestrune::SchedulerChannels() const {
  std::vector<schedule::SchedulerChannel> channels;
  const radio::ChannelGrid& grid = channels_.Grid();
  for (int row = 1; row <= grid.RowCount(); ++row) {
    channels.push_back({.Number = grid.NumberAt(row),
                        .Station = std::string(base::Trim(grid.At(row).at(radio::ChannelGrid::Station)))});
  }
  return channels;
}

std::shared_ptr<presenters::Scheduler> Kestrune::OpenScheduler() {
  presenters::SchedulerPorts ports{
      .Loop = outside_.Loop,
      .Dialogs = outside_.Dialogs,
      .Log = log_,
      .Editors = entryEditors_,
      .Settings = {
          .Read = [this](std::string_view key, std::string_view text) { return section_.Text(key, text); },
          .Save = [this](std::string_view key,
                         std::string_view text) { return section_.SaveText(key, text); }},
      .ReloadSchedule = [this] { ReloadSchedule(); }};
  return std::make_shared<presenters::Scheduler>(std::move(ports), SchedulerChannels());
}

std::optional<std::string> Kestrune::ScheduledBitRate() const {
  if (state_.Schedule.ActiveSchedule == 0) return std::nullopt;
  return state_.Entries.at(static_cast<std::size_t>(state_.Schedule.ActiveSchedule - 1)).MP3BitRate;
}

presenters::ConfigurationAccess Kestrune::ConfigurationAccess() {
  return {.Settings = settingsDoor_,
          .FileSpecs = fileSpecs_,
          .Dialogs = outside_.Dialogs,
          .Environment = outside_.Environment,
          .Devices = [this] { return inputDevices_.Listed; }};
}

void Kestrune::KeepInputDeviceId() {
  config::Settings wished = state_.Settings;
  wished.InputDeviceId = inputDevices_.IdOf(wished.InputDevice);
  base::Ignored(settingsDoor_.Change(wished, {"InputDeviceId"}));
}

void Kestrune::InputDeviceChanged() {
  KeepInputDeviceId();
  if (audio_.AudioRecord == nullptr) return;
  audio_.AudioRecord->SetDeviceIndex(state_.Settings.InputDevice);
  inputDeviceName_ = audio_.AudioRecord->DeviceUsable() ? audio_.AudioRecord->DeviceName() : "";
}

std::string Kestrune::InputDeviceId() {
  if (audio_.AudioRecord == nullptr) return {};
  audio_.AudioRecord->SetDeviceIndex(state_.Settings.InputDevice);
  return audio_.AudioRecord->DeviceId();
}

void Kestrune::ShowChannel(const radio::ChannelEntry& entry) {
  display_.ShowChannel(state_.Radio.ChannelNumber, entry);
}

void Kestrune::ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  display_.ShowTunedChannel(number, entry);
}

void Kestrune::ShowBareTitle() {
  display_.ShowBareTitle();
}

void Kestrune::ChannelTuned() {
  state_.Recording.SongBoundarySeen = false;
  state_.Recording.SkipSongDelay = true;
}

void Kestrune::WalkFinished() {
  state_.Recording.ForceSongChange = true;
  state_.Recording.ChannelsLoaded = true;
  if (state_.Recording.Phase == Phase::WaitingForChannelLoad) {
    if (Modes(state_).CheckIntegrel()) {
      state_.Recording.LastArtist = state_.Radio.CurrentArtist;
      state_.Recording.LastSong = state_.Radio.CurrentSong;
    }
    cmdRecord();
  } else {
    state_.Recording.LastArtist = kNoSong;
    state_.Recording.LastSong = kNoSong;
  }
}

}  // namespace kestrune::recorder
