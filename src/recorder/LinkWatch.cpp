#include "recorder/LinkWatch.h"

#include <cstddef>

#include "base/Ignored.h"

namespace kestrune::recorder {
namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 100ms;
// The tuned channel is asked several times within this.
constexpr auto kTextWithin = 6s;
constexpr auto kWalkAgainAfter = 1min;
constexpr std::int64_t kNewFileMs = 5000;
// Until the text has been read, no change of it is a change of song.
constexpr std::int16_t kSettleTicks = 4;

}  // namespace

LinkWatch::LinkWatch(recorder::State& state, const Parts& parts)
    : state_(state), parts_(parts), tmrReturn_(parts.Loop.MakeTimer(kLook, [this] { Look(); })) {}

void LinkWatch::Stop() {
  tmrReturn_->SetEnabled(false);
  parts_.Link.StopWatch();
}

radio::LinkOrders LinkWatch::Orders() const {
  return {.Watch = state_.Settings.Watch,
          .Channel = state_.Radio.ChannelNumber,
          .Muted = state_.Recording.Muted,
          .InEvent = state_.Schedule.ActiveSchedule != 0};
}

void LinkWatch::RadioLost(const radio::LinkStatus& status) {
  parts_.Journal.DoLog(radio::RadioLostLine(status));
  state_.Announcement.Signal.reset();
  tmrReturn_->SetEnabled(false);
  step_ = Step::Nothing;
  MarkCaptureInHand();
}

void LinkWatch::RadioFound(const radio::LinkStatus& status, std::chrono::milliseconds away) {
  parts_.Journal.DoLog(radio::RadioFoundLine(status, away));
  // It may have come from a radio that had not said who it is.
  state_.Announcement.Signal.reset();
  if (status.Port != state_.Settings.PortNum) {
    config::Settings wished = state_.Settings;
    wished.PortNum = status.Port;
    base::Ignored(parts_.Settings.Change(wished, {"PortNum"}));
  }
  MarkCaptureInHand();
  walkAgain_ = away > kWalkAgainAfter;
  returned_ = parts_.Loop.SteadyNow();
  step_ = Step::AwaitText;
  state_.Radio.ChannelChanged = true;
  state_.Radio.PollTunedNext = true;
  state_.Recording.SettleTicks = kSettleTicks;
  tmrReturn_->SetEnabled(true);
}

void LinkWatch::LinkChanged(const radio::LinkStatus& status) {
  state_.Link = status;
  state_.Watch.RadioFailure = status.Cause;
  state_.Watch.RadioDoubt = status.Doubt;
}

void LinkWatch::Look() {
  if (state_.Run.ShuttingDown) return tmrReturn_->SetEnabled(false);
  // A boundary that is being taken ends first.
  if (state_.Recording.BoundaryBusy) return;
  if (step_ == Step::AwaitText) {
    const bool read = !state_.Radio.ChannelChanged;
    if (read || parts_.Loop.SteadyNow() - returned_ > kTextWithin) return BeginNewFile();
    state_.Recording.SettleTicks = kSettleTicks;
  } else if (step_ == Step::AwaitCut && state_.Recording.CaptureSlot != slot_) {
    EndReturn();
  }
}

void LinkWatch::BeginNewFile() {
  RecordingState& recording = state_.Recording;
  slot_ = recording.CaptureSlot;
  // Whoever waits for a whole song goes on waiting: what plays now is the remainder of one.
  if (recording.WaitingForNextSong) return EndReturn();
  // A radio that answered before it was brought up may have led to a cut just now.
  if (recording.CaptureSlots.at(static_cast<std::size_t>(slot_)).LengthMs < kNewFileMs) return EndReturn();
  recording.SettleTicks = 0;
  recording.ForceSongChange = recording.SkipSongDelay = true;
  recording.SongBoundarySeen = false;
  recording.LastArtist = recording.LastSong = kNoSong;
  step_ = Step::AwaitCut;
}

void LinkWatch::EndReturn() {
  step_ = Step::Nothing;
  tmrReturn_->SetEnabled(false);
  MarkCaptureInHand();
  if (walkAgain_) parts_.Channels.RepeatWalk();
}

void LinkWatch::MarkCaptureInHand() {
  const auto slot = static_cast<std::size_t>(state_.Recording.CaptureSlot);
  state_.Recording.CaptureSlots.at(slot).Outcome.RadioLost = true;
}

}  // namespace kestrune::recorder
