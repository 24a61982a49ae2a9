#include "recorder/UpdateCycle.h"

namespace kestrune::recorder {
namespace {

constexpr int kTicksPerSchedulePass = 20;

}  // namespace

UpdateCycle::UpdateCycle(State& state, const Parts& parts, base::EventLoop& loop, base::Timer& tmrUpdate)
    : state_(state.Recording),
      radio_(state.Radio),
      run_(state.Run),
      settings_(state.Settings),
      channels_(parts.Channels),
      modes_(state),
      boundary_(parts.Boundary),
      captureWatch_(parts.CaptureWatch),
      commands_(parts.Commands),
      announcer_(parts.Announcer),
      loop_(loop),
      tmrUpdate_(tmrUpdate) {}

void UpdateCycle::Tick() {
  if (run_.ShuttingDown) {
    tmrUpdate_.SetEnabled(false);
    return;
  }
  if (radio_.InfoBusy || updateBusy_) return;
  updateBusy_ = true;
  tmrUpdate_.SetEnabled(false);
  updateTick_ = (updateTick_ + 1) % kTicksPerSchedulePass;
  if (run_.FormLoading) return EndTick();

  channels_.FollowTunedClosely(settings_.CutPlacement == config::CutPlacement::Listen);
  channels_.RequestChannelInfo();
  if (state_.SettleTicks > 0) {
    boundary_.FollowCurrentSong();
    --state_.SettleTicks;
    return EndTick();
  }
  const bool split = modes_.CheckCleftune();
  if (GateOpen(split)) TakeBoundary(split);
  boundary_.FollowCuts();
  captureWatch_.Look();

  loop_.PumpEvents();
  if (const radio::ChannelEntry* tuned = channels_.TunedRow()) {
    announcer_.RefreshChannel(radio_.ChannelNumber, *tuned);
  }
  loop_.PumpEvents();
  if (run_.Quitting) {
    updateBusy_ = false;
    return;
  }
  if (updateTick_ == 0) schedulePass_();
  EndTick();
}

void UpdateCycle::FinishSongs() {
  updateBusy_ = true;
  tmrUpdate_.SetEnabled(false);
  boundary_.SettleCuts();
  if (state_.StopPending) TakeBoundary(modes_.CheckCleftune());
  EndTick();
}

void UpdateCycle::TakeBoundary(bool split) {
  state_.BoundaryBusy = true;
  boundary_.Take(split);
  state_.BoundaryBusy = false;
}

bool UpdateCycle::GateOpen(bool split) const {
  const bool differs = radio_.CurrentArtist != state_.LastArtist || radio_.CurrentSong != state_.LastSong;
  const bool pending = state_.StartPending || state_.StopPending;
  return (differs || pending) && !radio_.ChannelsLoading && (split || pending || state_.ForceSongChange);
}

void UpdateCycle::EndTick() {
  tmrUpdate_.SetEnabled(true);
  updateBusy_ = false;
}

}  // namespace kestrune::recorder
