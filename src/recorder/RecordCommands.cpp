#include "recorder/RecordCommands.h"

#include "base/Ignored.h"

namespace kestrune::recorder {

RecordCommands::RecordCommands(State& state, Announcer& announcer, radio::RadioLink& link,
                               base::EventLoop& loop, base::Timer& tmrUpdate)
    : state_(state), modes_(state), announcer_(announcer), link_(link), loop_(loop), tmrUpdate_(tmrUpdate) {}

void RecordCommands::cmdRecord() {
  RecordingState& recording = state_.Recording;
  if (state_.Radio.ChannelsLoading) {
    // The end of the channel load performs the command again.
    recording.Phase = Phase::WaitingForChannelLoad;
    state_.Clock.StatusShown = true;
    return;
  }
  tmrUpdate_.SetEnabled(false);
  state_.Clock.CaptureSeconds.reset();
  recording.RecordedCount = recording.TooShortCount = recording.TooLongCount = recording.RestrictedCount = 0;
  recording.RecordRequested = recording.RecordArmed = true;
  TakeSession(loop_.Now());

  if (recording.SongBoundarySeen) {
    recording.WaitingForNextSong = false;
    recording.Phase = Phase::Recording;
    recording.StartPending = recording.Incomplete = false;
    TakeSession(recording.SongBoundaryTime);
  } else if (modes_.CheckIntegrel()) {
    recording.WaitingForNextSong = true;
    recording.Phase = Phase::WaitingForNextSong;
    recording.StartPending = false;
  } else {
    recording.WaitingForNextSong = false;
    recording.Phase = Phase::Recording;
    recording.StartPending = recording.Incomplete = true;
  }
  NameCaptureInHand();
  announcer_.ShowTrayTip();
  state_.Clock.StatusShown = true;
  recording.StopPending = false;
  if (recording.Muted) {
    recording.Muted = false;
    base::Ignored(link_.Mute(false));
  }
  tmrUpdate_.SetEnabled(true);
}

void RecordCommands::cmdStop() {
  RecordingState& recording = state_.Recording;
  if (recording.Phase == Phase::WaitingForChannelLoad) {
    recording.Phase = Phase::Idle;
    state_.Clock.StatusShown = false;
    return;
  }
  tmrUpdate_.SetEnabled(false);
  recording.RecordRequested = recording.RecordArmed = false;
  recording.Phase = Phase::Idle;
  announcer_.ShowTrayTip();
  if (!modes_.CheckIntegrel()) recording.StopPending = recording.Incomplete = true;
  TakeSession(loop_.Now());
  tmrUpdate_.SetEnabled(true);
}

void RecordCommands::StopRecording() {
  if (state_.Recording.Phase != Phase::Idle) cmdStop();
}

void RecordCommands::NameCaptureInHand() {
  // It was named when it began, before there was this session.
  RecordingState& recording = state_.Recording;
  SongNameValues& values =
      recording.CaptureSlots[static_cast<std::size_t>(recording.CaptureSlot)].Naming.Values;
  values.SessionStart = recording.SessionStart;
  values.Recorded = recording.RecordedCount;
}

void RecordCommands::TakeSession(base::DateValue start) {
  state_.Recording.RecordStartTime = start;
  state_.Recording.SessionStart = start;
}

}  // namespace kestrune::recorder
