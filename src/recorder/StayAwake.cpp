#include "recorder/StayAwake.h"

#include <chrono>

#include "schedule/entries/NextRun.h"

namespace kestrune::recorder {
namespace {

constexpr std::chrono::seconds kInterval{10};
constexpr std::chrono::minutes kBefore{5};

}  // namespace

StayAwake::StayAwake(const State& state, platform::SleepInhibitor& inhibitor, base::EventLoop& loop)
    : state_(state),
      inhibitor_(inhibitor),
      loop_(loop),
      due_(state.Entries, [&loop] { return loop.Now(); }),
      timer_(loop.MakeTimer(kInterval, [this] { Check(); })) {}

void StayAwake::Start() {
  Check();
  timer_->SetEnabled(true);
}

void StayAwake::Stop() {
  timer_->SetEnabled(false);
  inhibitor_.Release();
}

bool StayAwake::Needed() const {
  const RecordingState& recording = state_.Recording;
  const CaptureRecord& capture = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
  return recording.RecordArmed || capture.KeepAtEnd || state_.Schedule.ActiveSchedule != 0 ||
         schedule::RunsWithin(state_.Entries, loop_.Now(), kBefore) || due_.Find();
}

void StayAwake::Check() {
  if (Needed()) {
    inhibitor_.Hold("Recording from the radio");
  } else {
    inhibitor_.Release();
  }
}

}  // namespace kestrune::recorder
