#include "recorder/RecordCommands.h"

#include "base/Ignored.h"

namespace kestrune::recorder {

RecordCommands::RecordCommands(RecordingState& state, const radio::RadioState& radio, const Modes& modes,
                               MainWindow& window, radio::RadioSession& session, base::EventLoop& loop,
                               base::Timer& tmrUpdate)
    : state_(state),
      radio_(radio),
      modes_(modes),
      window_(window),
      session_(session),
      loop_(loop),
      tmrUpdate_(tmrUpdate) {}

bool RecordCommands::HeldBack(Command command) {
  if (state_.BoundaryBusy) heldBack_.push_back(command);
  return state_.BoundaryBusy;
}

void RecordCommands::RunHeldBack() {
  std::vector<Command> commands;
  commands.swap(heldBack_);
  for (const Command command : commands) {
    if (command == Command::Record && window_.cmdRecord.Enabled) cmdRecord();
    if (command == Command::Stop && window_.cmdStop.Enabled) cmdStop();
  }
}

void RecordCommands::cmdRecord() {
  if (HeldBack(Command::Record)) return;
  if (radio_.ChannelsLoading) {
    // The end of the channel load performs the command again.
    ShowStatus(status::kWaitingForChannelLoad);
    window_.cmdRecord.Enabled = false;
    window_.cmdStop.Enabled = true;
    return;
  }
  tmrUpdate_.SetEnabled(false);
  window_.lblClock.Caption.clear();
  state_.RecordedCount = state_.TooShortCount = state_.TooLongCount = state_.RestrictedCount = 0;
  state_.RecordRequested = state_.RecordArmed = true;
  window_.cmdRecord.Enabled = false;
  window_.cmdStop.Enabled = true;
  TakeSession(loop_.Now());

  if (state_.SongBoundarySeen) {
    state_.WaitingForNextSong = false;
    window_.lblRecording.Caption = status::kRecording;
    window_.lblClock.Visible = true;
    state_.StartPending = state_.Incomplete = false;
    TakeSession(state_.SongBoundaryTime);
  } else if (modes_.CheckIntegrel()) {
    state_.WaitingForNextSong = true;
    window_.lblRecording.Caption = status::kWaitingForNextSong;
    state_.StartPending = false;
  } else {
    state_.WaitingForNextSong = false;
    window_.lblRecording.Caption = status::kRecording;
    state_.StartPending = state_.Incomplete = true;
  }
  window_.SetTrayTipForSong(radio_.CurrentArtist, radio_.CurrentSong);
  window_.lblRecording.Visible = true;
  state_.StopPending = false;
  if (window_.mnuMute) {
    window_.mnuMute = false;
    base::Ignored(session_.pcrMute(false));
  }
  tmrUpdate_.SetEnabled(true);
}

void RecordCommands::cmdStop() {
  if (HeldBack(Command::Stop)) return;
  if (window_.lblRecording.Caption == status::kWaitingForChannelLoad) {
    window_.lblRecording = {.Caption = "", .Visible = false};
    window_.cmdRecord.Enabled = true;
    window_.cmdStop.Enabled = false;
    return;
  }
  tmrUpdate_.SetEnabled(false);
  state_.RecordRequested = state_.RecordArmed = false;
  window_.cmdRecord.Enabled = true;
  window_.cmdStop.Enabled = false;
  window_.lblRecording.Caption.clear();
  window_.SetTrayTipForSong(radio_.CurrentArtist, radio_.CurrentSong);
  window_.lblClock.Visible = false;
  if (!modes_.CheckIntegrel()) state_.StopPending = state_.Incomplete = true;
  TakeSession(loop_.Now());
  tmrUpdate_.SetEnabled(true);
}

void RecordCommands::TakeSession(base::DateValue start) {
  state_.RecordStartTime = start;
  state_.SessionStart = start;
}

void RecordCommands::ShowStatus(std::string_view status) {
  window_.lblRecording = {.Caption = std::string(status), .Visible = true};
}

}  // namespace kestrune::recorder
