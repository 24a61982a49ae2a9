#include "recorder/Kestrune.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>

#include "base/Ignored.h"
#include "base/Text.h"
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
      tmrClock_(outside.Loop.MakeTimer(kClockInterval, [this] { tmrClock_Timer(); })),
      tmrQuit_(outside.Loop.MakeTimer(kQuitInterval, [this] { tmrQuit_Timer(); })),
      log_(outside.Files, outside.Environment, outside.Loop),
      restrictions_(outside.Files, outside.Environment, log_),
      history_(outside.HistoryStore, outside.Loop),
      chronicle_(history_, outside.Loop),
      stationLags_(history_, state_.Settings, outside.Loop),
      announcer_(state_, log_),
      radio_(outside, state_, log_, *this),
      hints_(state_, radio_.Channels, restrictions_, outside.Loop),
      sound_(outside, state_,
             {.Channels = radio_.Channels,
              .Restrictions = restrictions_,
              .Announcer = announcer_,
              .Chronicle = chronicle_,
              .History = history_,
              .Lags = stationLags_},
             log_),
      commands_(state_, announcer_, radio_.Link, outside.Loop, *tmrUpdate_),
      settingsDoor_({.Settings = state_.Settings,
                     .Section = section_,
                     .Environment = outside.Environment,
                     .Files = outside.Files,
                     .Log = log_},
                    {.StopRecording = [this] { commands_.StopRecording(); },
                     .PrepareFormat = [this] { sound_.FileSpecs.SetFileSpecs(-1); },
                     .DeviceChanged = [this] { InputDeviceChanged(); }}),
      linkWatch_(state_, {.Link = radio_.Link,
                          .Channels = radio_.Channels,
                          .Settings = settingsDoor_,
                          .Loop = outside.Loop,
                          .Journal = log_}),
      captureWatch_(state_, sound_.Boundary, outside.Loop, log_),
      schedulePass_(state_, {.Channels = radio_.Channels, .Commands = commands_, .Chronicle = chronicle_},
                    log_, outside.Loop, *tmrUpdate_),
      updateCycle_(state_,
                   {.Channels = radio_.Channels,
                    .Boundary = sound_.Boundary,
                    .Commands = commands_,
                    .Announcer = announcer_,
                    .CaptureWatch = captureWatch_},
                   outside.Loop, *tmrUpdate_),
      clock_(state_, restrictions_, radio_.Link, outside.Loop),
      update_(outside, state_.Run, commands_, boxes_, [this] { wishes_.Close(); }),
      stayAwake_(state_, outside.SleepInhibitor, outside.Loop),
      soundWatch_(state_, sound_.Audio, sound_.Meter, outside.Loop, log_),
      diskWatch_(state_, sound_.FileSpecs, outside.Files, outside.Loop, log_),
      clockWatch_(state_, chronicle_, outside.Loop, log_),
      hintFollower_(
          state_, {.Channels = radio_.Channels, .Door = door_, .Loop = outside.Loop, .Journal = log_},
          {.Mark = [this] { base::Ignored(KeepCurrent()); }, .Marked = [this] { return KeepsSong(); }}),
      recovery_(state_, outside.CaptureMender, outside.Files, sound_.SongFiles, log_) {
  // A unit that has not begun to load takes no wishes either.
  state_.Run.FormLoading = true;
  outside_.HistoryStore.SetTroubleHandler([this](const std::string& line) { log_.DoLog(line); });
  radio_.Link.SetChannelInfoHandler([this](const radio::ChannelInfo& info) {
    chronicle_.Heard(info);
    hints_.Heard(info);
    if (info.Channel == state_.Radio.ChannelNumber)
      sound_.Cuts.TextCame(info.Artist, info.Song, sound_.Capture.FrameNow());
    radio_.Channels.pcrChannelInfoReceived(info);
  });
  radio_.Link.SetSignalHandler(
      [this](std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial) {
        announcer_.pcrSignalReceived(satellite1, satellite2, terrestrial);
      });
  schedulePass_.SetSettleCuts([this] { sound_.Boundary.SettleCuts(); });
  // A pass may tune, and a wish whose wait let this tick in may be tuning: the next pass is early enough.
  updateCycle_.SetSchedulePass([this] {
    if (!door_.Serving()) schedulePass_.Run();
  });
}

Kestrune::~Kestrune() {
  outside_.HistoryStore.SetTroubleHandler({});
}

void Kestrune::SetPresentation(Presentation* presentation) {
  presentation_ = presentation != nullptr ? presentation : &noWindows_;
}

Snapshot Kestrune::Snapshot() const {
  const platform::AudioRecorder* recorder = sound_.Audio.AudioRecord.get();
  return {.State = state_,
          .MultiUnit = multiUnit_,
          .Tuned = radio_.Channels.TunedEntry(),
          .ChannelCount = radio_.Channels.Table().ChannelCount(),
          .FormatDescription = sound_.FileSpecs.FileFormatString(),
          .InputDeviceName = sound_.InputDeviceName,
          .FramesCaptured = recorder != nullptr ? recorder->FramesCaptured() : 0,
          .FramesLost = recorder != nullptr ? recorder->FramesLost() : 0};
}

UnitParts Kestrune::Parts() {
  return {.Channels = radio_.Channels,
          .Log = log_,
          .History = history_,
          .StationLags = stationLags_,
          .Shelving = sound_.Shelving,
          .Restrictions = restrictions_,
          .EntryEditors = entryEditors_,
          .Section = section_,
          .Settings = settingsDoor_,
          .FileSpecs = sound_.FileSpecs,
          .Boxes = boxes_,
          .InputDevices = sound_.Devices,
          .tmrUpdate = *tmrUpdate_};
}

bool Kestrune::SetMute(bool on) {
  if (state_.Recording.GetRecordingStatus()) {
    outside_.Sounds.Play("SystemAsterisk");
    return false;
  }
  state_.Recording.Muted = on;
  base::Ignored(radio_.Link.Mute(on));
  return true;
}

base::Result Kestrune::KeepCurrent() {
  RecordingState& recording = state_.Recording;
  CaptureRecord& capture = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
  if (capture.FileName.empty()) return base::Result::Failed("no song is captured yet");
  const std::string& failure = capture.Outcome.Failure();
  if (!failure.empty()) return base::Result::Failed("the song is not being captured: " + failure);
  capture.KeepAtEnd = true;
  return base::Result::Done();
}

bool Kestrune::KeepsSong() const {
  const RecordingState& recording = state_.Recording;
  return recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot)).KeepAtEnd ||
         std::any_of(recording.AwaitedCuts.begin(), recording.AwaitedCuts.end(),
                     [](const AwaitedCut& cut) { return cut.Song.KeepAtEnd; });
}

void Kestrune::mnuReload_Click() {
  radio_.Channels.mnuReload();
  boxes_.Show({.Title = std::string(radio::Channels::kReloadTitle),
               .Text = std::string(radio::Channels::kReloadText)});
}

void Kestrune::tmrClock_Timer() {
  clock_.Tick();
  chronicle_.Follow(state_.Watch);
  hints_.Follow();
  presentation_->ApplyResizeRule();
  presentation_->FollowSongs();
}

void Kestrune::AudioRecord_Timer() {
  const std::int32_t count = presentation_->DisplaySamples();
  if (count <= 0) return;
  presentation_->DrawSound(sound_.Audio.AudioRecord->GetDisplaySamples(count),
                           sound_.Audio.File(state_.Recording.CaptureSlot)->FormatValues());
}

void Kestrune::ReloadSchedule() {
  schedule::ReloadSchedule(
      [this](std::string_view key, std::string_view defaultText) { return section_.Text(key, defaultText); },
      outside_.Loop.Now(), state_.Entries);
}

std::vector<schedule::SchedulerChannel> Kestrune::SchedulerChannels() const {
  std::vector<schedule::SchedulerChannel> channels;
  const radio::ChannelGrid& grid = radio_.Channels.Grid();
  for (int row = 1; row <= grid.RowCount(); ++row) {
    channels.push_back({.Number = grid.NumberAt(row),
                        .Station = std::string(base::Trim(grid.At(row).at(radio::ChannelGrid::Station)))});
  }
  return channels;
}

void Kestrune::KeepInputDeviceId() {
  config::Settings wished = state_.Settings;
  wished.InputDeviceId = sound_.Devices.IdOf(wished.InputDevice);
  base::Ignored(settingsDoor_.Change(wished, {"InputDeviceId"}));
}

void Kestrune::InputDeviceChanged() {
  KeepInputDeviceId();
  sound_.FollowInputDevice(state_.Settings.InputDevice);
}

std::string Kestrune::CapturedDeviceId() const {
  return sound_.Audio.AudioRecord == nullptr ? std::string() : sound_.Audio.AudioRecord->OpenDeviceId();
}

std::string Kestrune::InputDeviceId() {
  if (sound_.Audio.AudioRecord == nullptr) return {};
  sound_.Audio.AudioRecord->SetDeviceIndex(state_.Settings.InputDevice);
  return sound_.Audio.AudioRecord->DeviceId();
}

void Kestrune::ShowChannel(const radio::ChannelEntry& entry) {
  announcer_.ShowChannel(state_.Radio.ChannelNumber, entry);
}

void Kestrune::ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  announcer_.ShowTunedChannel(number, entry);
}

void Kestrune::ShowBareTitle() {
  announcer_.ShowBareTitle();
}

void Kestrune::ChannelTuned() {
  sound_.Boundary.ChooseCuts();
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
