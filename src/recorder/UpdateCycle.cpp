#include "recorder/UpdateCycle.h"

namespace kestrune::recorder {
namespace {

constexpr int kTicksPerSchedulePass = 20;

}  // namespace

UpdateCycle::UpdateCycle(RecordingState& state, const radio::RadioState& radio, const base::RunState& run,
                         radio::Channels& channels, const Modes& modes, SongBoundary& boundary,
                         RecordCommands& commands, Display& display, base::EventLoop& loop,
                         base::Timer& tmrUpdate)
    : state_(state),
      radio_(radio),
      run_(run),
      channels_(channels),
      modes_(modes),
      boundary_(boundary),
      commands_(commands),
      display_(display),
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

  channels_.RequestChannelInfo();
  if (state_.SettleTicks > 0) {
    boundary_.FollowCurrentSong();
    --state_.SettleTicks;
    return EndTick();
  }
  const bool split = modes_.CheckCleftune();
  if (GateOpen(split)) {
    state_.BoundaryBusy = true;
    boundary_.Take(split);
    state_.BoundaryBusy = false;
    commands_.RunHeldBack();
    // The commands turn the timer on, and this tick is not over.
    tmrUpdate_.SetEnabled(false);
  }

  loop_.PumpEvents();
  if (const radio::ChannelEntry* tuned = channels_.TunedRow()) {
    display_.RefreshChannel(radio_.ChannelNumber, *tuned);
  }
  display_.RefreshCounters(state_);
  loop_.PumpEvents();
  if (run_.Quitting) {
    updateBusy_ = false;
    return;
  }
  if (updateTick_ == 0) schedulePass_();
  EndTick();
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
