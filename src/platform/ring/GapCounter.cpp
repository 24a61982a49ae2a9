#include "platform/ring/GapCounter.h"

#include <utility>

#include <time.h>

namespace kestrune::platform {

GapCounter::Moment GapCounter::Now() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return std::chrono::duration_cast<Moment>(std::chrono::seconds(now.tv_sec) +
                                            std::chrono::nanoseconds(now.tv_nsec));
}

void GapCounter::Start(std::int32_t sampleRate, Moment now) {
  sampleRate_ = sampleRate;
  state_ = State::Starting;
  from_ = now;
  lastArrival_ = now;
  came_ = 0;
}

void GapCounter::Interrupt() {
  if (state_ != State::Starting) state_ = State::Interrupted;
}

std::int64_t GapCounter::Arrived(std::int64_t frames, Moment now) {
  const Moment before = std::exchange(lastArrival_, now);
  came_ += frames;
  switch (state_) {
    case State::Starting:
      return Account(now, kStartLimit);
    case State::Interrupted:
      return Account(now, Moment(0));
    case State::Late:
      return now - cameAt_ < kLateness ? 0 : Account(now, kBeat);
    case State::Running:
      break;
  }
  if (now - before > kSilence) {
    state_ = State::Late;
    cameAt_ = now;
  } else {
    from_ = now;
    came_ = 0;
  }
  return 0;
}

/// What is missing up to now, if it is more than the limit.
std::int64_t GapCounter::Account(Moment now, Moment limit) {
  const std::int64_t missing = FramesIn(now - from_) - came_;
  state_ = State::Running;
  from_ = now;
  came_ = 0;
  return missing > FramesIn(limit) ? missing : 0;
}

}  // namespace kestrune::platform
