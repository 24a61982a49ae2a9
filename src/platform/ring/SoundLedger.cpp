#include "platform/ring/SoundLedger.h"

#include <algorithm>
#include <utility>

namespace kestrune::platform {

void SoundLedger::Open(std::int32_t sampleRate, Moment now) {
  sampleRate_ = sampleRate;
  seen_.Frames = 0;
  heardAt_ = now;
  chargedAhead_ = 0;
  returned_ = false;
}

void SoundLedger::BeginCapture() {
  sound_ = {};
  capturing_ = true;
  const std::int64_t before = std::exchange(betweenCaptures_, 0);
  if (before > 0) sound_.Gaps.push_back({.At = 0, .Frames = before});
}

void SoundLedger::Look(const Arrivals& arrivals, Moment now) {
  const std::int64_t came = arrivals.Frames - seen_.Frames;
  const std::int64_t lost = arrivals.Lost - seen_.Lost;
  seen_ = arrivals;
  if (returned_ && now - returnedAt_ > kReportLimit) chargedAhead_ = 0;
  const std::int64_t ahead = std::clamp<std::int64_t>(lost, 0, chargedAhead_);
  chargedAhead_ -= ahead;
  Charge(lost - ahead);
  if (came == 0 && lost == 0) return;
  if (!std::exchange(returned_, true)) returnedAt_ = now;
  // What neither came nor is reported leaves the capture short. Less than the limit is only on its way.
  const Moment accounted(1000 * (came + lost - ahead) / std::max(sampleRate_, 1));
  heardAt_ = now - heardAt_ - accounted > kSilence ? heardAt_ + accounted : now;
}

void SoundLedger::EndCapture(Moment now) {
  if (now - heardAt_ > kSilence) {
    const std::int64_t missing = (now - heardAt_).count() * sampleRate_ / 1000;
    Charge(missing);
    chargedAhead_ += missing;
    returned_ = false;
    heardAt_ = now;
  }
  capturing_ = false;
}

void SoundLedger::Forget(Moment now) {
  betweenCaptures_ = 0;
  heardAt_ = now;
}

std::int64_t SoundLedger::Lost(std::int64_t lostBySource) const {
  return charged_ + std::max<std::int64_t>(lostBySource - seen_.Lost - chargedAhead_, 0);
}

void SoundLedger::Charge(std::int64_t frames) {
  if (frames <= 0) return;
  charged_ += frames;
  if (!capturing_) {
    betweenCaptures_ += frames;
  } else if (!sound_.Gaps.empty() && sound_.Gaps.back().At == sound_.Frames) {
    sound_.Gaps.back().Frames += frames;
  } else {
    sound_.Gaps.push_back({.At = sound_.Frames, .Frames = frames});
  }
}

}  // namespace kestrune::platform
