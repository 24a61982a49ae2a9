#include "recorder/Clock.h"

#include "base/Text.h"

namespace kestrune::recorder {
namespace {

constexpr int kTicksPerBlink = 5;
constexpr int kTicksPerSignalPoll = 50;

/// The form in which the clock looks a name up in the lists: the caption of its label, which has each "&" twice.
/// So a fragment with one "&" finds nothing here, though it decides at the song's end. That is meant.
std::string LookupText(std::string_view name) {
  return base::DoubleAmpersands(name);
}

}  // namespace

Clock::Clock(State& state, const schedule::Restrictions& restrictions, radio::RadioLink& link,
             base::EventLoop& loop)
    : state_(state), modes_(state), restrictions_(restrictions), link_(link), loop_(loop) {}

void Clock::Tick() {
  const RecordingState& recording = state_.Recording;
  if (recording.IsRecording()) {
    Blink();
    LookUpSong();
  }
  if (recording.ShowsLength()) {
    const auto slot = static_cast<std::size_t>(recording.CaptureSlot);
    state_.Clock.CaptureSeconds = recording.CaptureSlots[slot].LengthMs / 1000;
  }
  const schedule::ScheduleState& event = state_.Schedule;
  if (event.ActiveSchedule != 0 && loop_.Now() <= event.RemainingUntil) {
    state_.Clock.SecondsLeft = base::TimeUntil(loop_, event.RemainingUntil).count();
  }
  signalTick_ = (signalTick_ + 1) % kTicksPerSignalPoll;
  if (signalTick_ == 0) link_.AskForSignal();
}

void Clock::Blink() {
  blinkTick_ = (blinkTick_ + 1) % kTicksPerBlink;
  if (blinkTick_ != 0) return;
  state_.Clock.StatusShown = !state_.Clock.StatusShown;
  if (state_.Schedule.ActiveSchedule != 0) state_.Clock.EventMarkShown = !state_.Clock.EventMarkShown;
}

void Clock::LookUpSong() {
  const std::string artist = LookupText(state_.Announcement.Artist);
  const std::string song = LookupText(state_.Announcement.Song);
  Phase& phase = state_.Recording.Phase;
  // The Kill test has the last word in both of its other branches, so Grabbed never stays.
  phase = modes_.CheckGrab() && restrictions_.IsInGrabList(artist, song) ? Phase::Grabbed : Phase::Recording;
  phase = modes_.CheckKill() && restrictions_.IsInKillList(artist, song) ? Phase::Killed : Phase::Recording;
}

}  // namespace kestrune::recorder
