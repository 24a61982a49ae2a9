#include "support/SimulatedSoundSource.h"

#include <algorithm>
#include <utility>

namespace kestrune::test {

SimulatedSoundSource::SimulatedSoundSource(SimulatedEventLoop& loop, Duration period)
    : loop_(loop), period_(period) {}

SimulatedSoundSource::~SimulatedSoundSource() = default;

bool SimulatedSoundSource::Usable(const std::string& id) {
  return unusable_.count(id) == 0 &&
         std::any_of(devices_.begin(), devices_.end(), [&](const auto& device) { return device.Id == id; });
}

void SimulatedSoundSource::SetUsable(const std::string& id, bool usable) {
  if (usable) {
    unusable_.erase(id);
  } else {
    unusable_.insert(id);
  }
}

std::string SimulatedSoundSource::Open(const std::string& id, const platform::PcmFormat& format,
                                       platform::SampleSink& sink) {
  openId_ = id;
  format_ = format;
  sink_ = &sink;
  slept_ = Duration(0);
  nextFrame_ = FrameAt(loop_.SteadyNow(), format.SampleRate);
  session_ = std::make_shared<int>(0);
  std::string error = OpeningError();
  running_ = error.empty();
  if (running_) ++timesOpened_;
  retryAt_ = loop_.SteadyNow() + kRetryInterval;
  Schedule();
  return error;
}

std::string SimulatedSoundSource::OpeningError() {
  if (!openingError_.empty()) return openingError_;
  return Usable(openId_) ? std::string() : "no such device: " + openId_;
}

bool SimulatedSoundSource::Retry(Duration now) {
  if (now < retryAt_) return false;
  retryAt_ = now + kRetryInterval;
  if (!OpeningError().empty()) return false;
  ++timesOpened_;
  running_ = true;
  dead_ = true;
  return true;
}

void SimulatedSoundSource::Close() {
  if (sink_ == nullptr) return;
  sink_ = nullptr;
  session_.reset();
  ++timesClosed_;
}

void SimulatedSoundSource::Drop(std::int64_t frames) {
  toDrop_ += frames;
}

void SimulatedSoundSource::Stall(Duration duration) {
  silentUntil_ = loop_.SteadyNow() + duration;
}

void SimulatedSoundSource::Slept(Duration duration) {
  if (sink_ != nullptr) slept_ += duration;
}

void SimulatedSoundSource::Die(Duration duration) {
  silentUntil_ = loop_.SteadyNow() + duration;
  dead_ = true;
}

void SimulatedSoundSource::Schedule() {
  loop_.AtHardware(period_, [this, session = std::weak_ptr<int>(session_)] {
    if (session.expired()) return;
    Tick();
    if (!session.expired()) Schedule();
  });
}

void SimulatedSoundSource::Tick() {
  const Duration now = loop_.SteadyNow();
  if (!running_ && !Retry(now)) return;
  if (now < silentUntil_) return;
  if (slept_.count() > 0) {
    // These frames have no numbers: the steady clock, which counts them, stood still.
    const auto missed =
        static_cast<std::int64_t>(FrameAt(std::exchange(slept_, Duration(0)), format_.SampleRate));
    framesDropped_ += missed;
    sink_->OnLost(missed);
  }
  const std::uint64_t end = FrameAt(now, format_.SampleRate);
  std::int64_t missing = 0;
  if (dead_) {
    dead_ = false;
    missing = static_cast<std::int64_t>(end - nextFrame_);
  } else if (toDrop_ > 0) {
    missing = std::min(toDrop_, static_cast<std::int64_t>(end - nextFrame_));
    toDrop_ -= missing;
  }
  if (missing > 0) {
    nextFrame_ += static_cast<std::uint64_t>(missing);
    framesDropped_ += missing;
    sink_->OnLost(missing);
  }
  if (nextFrame_ == end) return;
  samples_.clear();
  for (; nextFrame_ < end; ++nextFrame_) {
    for (int channel = 0; channel < format_.Channels; ++channel) {
      const auto half = static_cast<std::uint16_t>(nextFrame_ >> (16 * channel));
      samples_.push_back(signal_ ? signal_(nextFrame_, channel) : static_cast<std::int16_t>(half));
    }
  }
  framesDelivered_ += static_cast<std::int64_t>(samples_.size()) / format_.Channels;
  sink_->OnSamples(samples_);
}

std::uint64_t SimulatedSoundSource::FrameAt(Duration moment, std::int32_t sampleRate) {
  return static_cast<std::uint64_t>(moment.count()) * static_cast<std::uint64_t>(sampleRate) / 1000;
}

std::vector<std::uint32_t> SimulatedSoundSource::FrameNumbers(std::span<const std::int16_t> stereo) {
  std::vector<std::uint32_t> numbers;
  numbers.reserve(stereo.size() / 2);
  for (std::size_t at = 0; at + 1 < stereo.size(); at += 2) {
    const std::uint32_t low = static_cast<std::uint16_t>(stereo[at]);
    const std::uint32_t high = static_cast<std::uint16_t>(stereo[at + 1]);
    numbers.push_back(low | high << 16);
  }
  return numbers;
}

}  // namespace kestrune::test
