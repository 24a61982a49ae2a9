#include "recorder/SoundSide.h"

namespace kestrune::recorder {
namespace {

/// The bit rate of the running event; nothing outside events.
std::optional<std::string> ScheduledBitRate(const State& state) {
  if (state.Schedule.ActiveSchedule == 0) return std::nullopt;
  return state.Entries.at(static_cast<std::size_t>(state.Schedule.ActiveSchedule - 1)).MP3BitRate;
}

}  // namespace

SoundSide::SoundSide(const Outside& outside, State& state, const Sources& sources, schedule::Log& log)
    : Cuts(sources.Lags),
      FileSpecs([this](std::int16_t slot) { return Audio.File(slot); }, state.Settings,
                state.Recording.CaptureSlot, [&state] { return ScheduledBitRate(state); }),
      SongFiles(outside.Files, outside.FileSync, log),
      Shelving(state,
               {.Files = outside.Files,
                .SongFiles = SongFiles,
                .Chronicle = sources.Chronicle,
                .History = sources.History},
               outside.Loop, log),
      Capture(state,
              {.Audio = Audio, .Meter = Meter, .Cuts = Cuts, .FileSpecs = FileSpecs, .SongFiles = SongFiles},
              log),
      Disposition(state,
                  {.FileSpecs = FileSpecs,
                   .Restrictions = sources.Restrictions,
                   .SongFiles = SongFiles,
                   .Chronicle = sources.Chronicle,
                   .Shelving = Shelving},
                  outside.Loop, log),
      Boundary(state,
               {.Channels = sources.Channels,
                .Capture = Capture,
                .Cuts = Cuts,
                .Disposition = Disposition,
                .Announcer = sources.Announcer,
                .Chronicle = sources.Chronicle,
                .Shelving = Shelving,
                .Journal = log},
               SongFiles, outside.Loop) {}

void SoundSide::Create(platform::AudioLibrary& library) {
  Audio.Create(library);
  Capture.ConnectRecorder();
}

void SoundSide::FollowInputDevice(std::int16_t index) {
  if (Audio.AudioRecord == nullptr) return;
  Audio.AudioRecord->SetDeviceIndex(index);
  InputDeviceName = Audio.AudioRecord->DeviceUsable() ? Audio.AudioRecord->DeviceName() : "";
}

}  // namespace kestrune::recorder
