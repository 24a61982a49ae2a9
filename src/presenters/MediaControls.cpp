#include "presenters/MediaControls.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

#include "recorder/Snapshot.h"

namespace kestrune::presenters {
namespace {

/// Half the time that a person takes for "at once".
constexpr std::chrono::milliseconds kFollowInterval(200);

}  // namespace

MediaControls::MediaControls(recorder::Kestrune& unit, Presets& presets, base::EventLoop& loop,
                             platform::MediaPlayer& player)
    : unit_(unit),
      presets_(presets),
      player_(player),
      tmrFollow_(loop.MakeTimer(kFollowInterval, [this] { Follow(); })) {
  player_.SetHandler([this](platform::MediaCommand command) { Obey(command); });
  tmrFollow_->SetEnabled(true);
}

MediaControls::~MediaControls() {
  player_.SetHandler({});
}

void MediaControls::Follow() {
  const recorder::Snapshot now = unit_.Snapshot();
  const recorder::State& state = now.State;
  const bool ready = !state.Run.FormLoading && unit_.RadioReady().Ok();
  const bool free = ready && !state.Recording.GetRecordingStatus();
  player_.Show({.Title = now.Tuned.Song,
                .Artist = now.Tuned.Artist,
                .Album = now.Tuned.Station,
                .Sounding = ready && !state.Recording.Muted,
                .CanSwitch = free,
                .CanStep = free && HasPresets()});
}

bool MediaControls::HasPresets() const {
  const auto& buttons = presets_.Buttons();
  return std::any_of(buttons.begin(), buttons.end(),
                     [](const PresetButton& button) { return !button.Caption.empty(); });
}

void MediaControls::Obey(platform::MediaCommand command) {
  recorder::Wishes& wishes = unit_.Wishes();
  switch (command) {
    case platform::MediaCommand::Play:
      return wishes.Mute(false);
    case platform::MediaCommand::Pause:
    case platform::MediaCommand::Stop:
      return wishes.Mute(true);
    case platform::MediaCommand::PlayPause:
      return wishes.ToggleMute();
    case platform::MediaCommand::Next:
      return Step(1);
    case platform::MediaCommand::Previous:
      return Step(-1);
    case platform::MediaCommand::Raise:
      return Raise();
    case platform::MediaCommand::Quit:
      return wishes.Close();
  }
}

void MediaControls::Step(int direction) {
  if (!HasPresets()) return;
  const std::int16_t tuned = unit_.Snapshot().Tuned.Number;
  int from = direction > 0 ? -1 : Presets::kCount;
  for (int i = 0; i < Presets::kCount; ++i) {
    if (tuned != 0 && presets_.ChannelOf(i) == tuned) {
      from = i;
      break;
    }
  }
  int to = from;
  do {
    to = (to + direction + Presets::kCount) % Presets::kCount;
  } while (presets_.Buttons().at(static_cast<std::size_t>(to)).Caption.empty());
  if (to != from) presets_.cmdPresetStation_Click(to);
}

}  // namespace kestrune::presenters
