#include "recorder/StayAwake.h"

#include <chrono>

#include "schedule/entries/NextRun.h"

namespace kestrune::recorder {
namespace {

constexpr std::chrono::seconds kPause{10};
constexpr std::chrono::minutes kBefore{5};

}  // namespace

StayAwake::StayAwake(const RecordingState& recording, const schedule::ScheduleState& running,
                     const schedule::ScheduleEntries& entries, platform::SleepInhibitor& inhibitor,
                     base::EventLoop& loop)
    : recording_(recording),
      running_(running),
      entries_(entries),
      inhibitor_(inhibitor),
      loop_(loop),
      timer_(loop.MakeTimer(kPause, [this] { Look(); })) {}

void StayAwake::Start() {
  Look();
  timer_->SetEnabled(true);
}

void StayAwake::Stop() {
  timer_->SetEnabled(false);
  inhibitor_.Release();
}

bool StayAwake::Needed() const {
  return recording_.RecordArmed || running_.ActiveSchedule != 0 ||
         schedule::RunsWithin(entries_, loop_.Now(), kBefore);
}

void StayAwake::Look() {
  if (Needed()) {
    inhibitor_.Hold("Recording from the radio");
  } else {
    inhibitor_.Release();
  }
}

}  // namespace kestrune::recorder
