#include "recorder/Clock.h"

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "recorder/ResizeRule.h"

namespace kestrune::recorder {
namespace {

constexpr int kTicksPerBlink = 5;
constexpr int kTicksPerSignalPoll = 50;
constexpr std::string_view kElapsedPattern = "Hh:Nn:Ss";

}  // namespace

Clock::Clock(const RecordingState& state, const schedule::ScheduleState& schedule, const Modes& modes,
             const schedule::Restrictions& restrictions, const config::Settings& settings, MainWindow& window,
             Windows& windows, radio::RadioSession& session, base::EventLoop& loop)
    : state_(state),
      schedule_(schedule),
      modes_(modes),
      restrictions_(restrictions),
      settings_(settings),
      window_(window),
      windows_(windows),
      session_(session),
      loop_(loop) {}

void Clock::Tick() {
  if (window_.ShowsRecording()) {
    Blink();
    FollowTaskBar();
    ShowListStatus();
  }
  if (window_.lblClock.Visible) {
    const std::int64_t ms = state_.CaptureSlots[static_cast<std::size_t>(state_.CaptureSlot)].LengthMs;
    window_.lblClock.Caption = base::FormatDate(base::DateValue::FromSeconds(ms / 1000), kElapsedPattern);
  }
  if (window_.lblRemaining.Visible && loop_.Now() <= schedule_.RemainingUntil) {
    const std::int64_t left = base::SecondsBetween(loop_.Now(), schedule_.RemainingUntil);
    window_.lblRemaining.Caption = base::FormatDate(base::DateValue::FromSeconds(left), kElapsedPattern);
  }
  signalTick_ = (signalTick_ + 1) % kTicksPerSignalPoll;
  if (signalTick_ == 0) base::Ignored(session_.pcrGetSignalLevels());
  windows_.ApplyResizeRule();
}

void Clock::Blink() {
  blinkTick_ = (blinkTick_ + 1) % kTicksPerBlink;
  if (blinkTick_ != 0) return;
  window_.lblRecording.Visible = !window_.lblRecording.Visible;
  if (window_.pctTimer.Tag == "1") window_.pctTimer.Visible = !window_.pctTimer.Visible;
}

void Clock::FollowTaskBar() {
  if (window_.State != WindowState::Minimized) return;
  window_.Visible = StaysInTaskBar(window_, settings_);
}

void Clock::ShowListStatus() {
  // The Kill test has the last word in both of its other branches, so "Recording (Grabbed)" never stays.
  const auto show = [this](std::string_view text) {
    if (window_.lblRecording.Caption != text) window_.lblRecording.Caption = text;
  };
  const std::string& artist = window_.lblArtist.Caption;
  const std::string& song = window_.lblSong.Caption;
  show(modes_.CheckGrab() && restrictions_.IsInGrabList(artist, song) ? status::kGrabbed
                                                                      : status::kRecording);
  show(modes_.CheckKill() && restrictions_.IsInKillList(artist, song) ? status::kKilled : status::kRecording);
}

}  // namespace kestrune::recorder
