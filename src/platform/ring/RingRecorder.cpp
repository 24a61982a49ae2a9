#include "platform/ring/RingRecorder.h"

#include <algorithm>
#include <utility>

namespace kestrune::platform {

namespace {

constexpr std::int32_t kBlockMilliseconds = 100;
constexpr std::int32_t kHighestRate = 192000;
// Enough for the widest level display.
constexpr std::size_t kNewestSamples = 16384;
constexpr std::size_t kMostSamples = 40960;  // the newest are moved to the front once in some blocks

bool Recordable(const PcmFormat& format) {
  return format.SampleRate > 0 && format.SampleRate <= kHighestRate && format.Channels >= 1 &&
         format.Channels <= 2;
}

}  // namespace

RingRecorder::RingRecorder(base::EventLoop& loop, SoundSource& source)
    : source_(source), loop_(loop), timer_(loop.MakeTimer(kInterval, [this] { Poll(); })) {}

RingRecorder::~RingRecorder() {
  CloseSource();
}

std::int16_t RingRecorder::DeviceCount() {
  devices_ = source_.Devices();
  devicesKnown_ = true;
  mapped_.reset();
  if (devices_.empty()) return 0;
  return static_cast<std::int16_t>(std::min<std::size_t>(devices_.size() + 1, INT16_MAX));
}

bool RingRecorder::MapperSelected() {
  if (!devicesKnown_) static_cast<void>(DeviceCount());
  return !devices_.empty() && deviceIndex_ >= 0 && static_cast<std::size_t>(deviceIndex_) == devices_.size();
}

const SoundDevice* RingRecorder::MappedDevice() {
  if (mapped_) return &devices_[*mapped_];
  const auto usable = std::find_if(devices_.begin(), devices_.end(),
                                   [this](const SoundDevice& device) { return source_.Usable(device.Id); });
  // Without a usable one, the one that the source itself puts first may become usable.
  if (usable == devices_.end()) return &devices_.front();
  mapped_ = static_cast<std::size_t>(usable - devices_.begin());
  return &*usable;
}

const SoundDevice* RingRecorder::SelectedDevice() {
  if (MapperSelected()) return MappedDevice();
  if (deviceIndex_ < 0 || static_cast<std::size_t>(deviceIndex_) >= devices_.size()) return nullptr;
  return &devices_[static_cast<std::size_t>(deviceIndex_)];
}

bool RingRecorder::DeviceUsable() {
  const SoundDevice* device = SelectedDevice();
  return device != nullptr && source_.Usable(device->Id);
}

std::string RingRecorder::DeviceName() {
  if (MapperSelected()) return kMapperName;
  const SoundDevice* device = SelectedDevice();
  return device == nullptr ? std::string() : device->Name;
}

std::string RingRecorder::DeviceId() {
  const SoundDevice* device = SelectedDevice();
  return device == nullptr ? std::string() : device->Id;
}

std::int32_t RingRecorder::TimeToBytes(std::int32_t milliseconds) const {
  const std::int64_t frames = std::int64_t{milliseconds} * format_.SampleRate / 1000;
  return static_cast<std::int32_t>(frames * format_.Channels *
                                   static_cast<std::int64_t>(sizeof(std::int16_t)));
}

NumberedResult RingRecorder::StartRecording() {
  if (recording_) Stop();
  if (!Recordable(format_))
    return {.Number = kBadFormat, .Cause = "the input cannot record this sample format"};
  const SoundDevice* device = SelectedDevice();
  if (device == nullptr) return {.Number = kNoSuchDevice, .Cause = "there is no such input"};
  if (!open_ || openId_ != device->Id || openFormat_ != format_) OpenSource(*device);
  const auto channels = static_cast<std::size_t>(format_.Channels);
  const std::int32_t bytes = blockBytes_ > 0 ? blockBytes_ : TimeToBytes(kBlockMilliseconds);
  const std::size_t frames = static_cast<std::size_t>(bytes) / sizeof(std::int16_t) / channels;
  blockSamples_ = std::max<std::size_t>(frames, 1) * channels;
  block_.reserve(blockSamples_);
  Look();
  ledger_.BeginCapture();
  recording_ = true;
  timer_->SetEnabled(true);
  return {};
}

void RingRecorder::Stop() {
  if (!recording_) return Forget();
  Look();
  // Only what is there now: the source goes on delivering.
  const std::size_t captured = ring_->Available();
  std::size_t handed = 0;
  while (recording_ && handed < captured) {
    const std::size_t count = std::min(blockSamples_, captured - handed);
    handed += count;
    HandOver(count);
  }
  recording_ = false;
  stoppedAt_ = loop_.BootNow();
  ledger_.EndCapture(stoppedAt_);
}

void RingRecorder::Forget() {
  if (!open_) return;
  block_.resize(ring_->Available());
  block_.resize(ring_->Pop(block_));
  Look();
  ledger_.Forget(loop_.BootNow());
}

void RingRecorder::Look() {
  const auto offered = static_cast<std::int64_t>(ring_->Offered());
  ledger_.Look({.Frames = offered / openFormat_.Channels, .Lost = LostBySource()}, loop_.BootNow());
}

void RingRecorder::Poll() {
  Look();
  if (!recording_) {
    if (loop_.BootNow() - stoppedAt_ >= kIdleLimit) CloseSource();
    return;
  }
  for (std::size_t blocks = ring_->Available() / blockSamples_; blocks > 0 && recording_; --blocks) {
    HandOver(blockSamples_);
  }
  if (recording_ && timerHandler_) timerHandler_();
}

void RingRecorder::HandOver(std::size_t samples) {
  block_.resize(samples);
  block_.resize(ring_->Pop(block_));
  gainControl_.Process(block_);
  const std::int64_t frames = static_cast<std::int64_t>(block_.size()) / openFormat_.Channels;
  framesCaptured_ += frames;
  ledger_.HandOver(frames);
  if (newest_.size() + block_.size() > kMostSamples && newest_.size() > kNewestSamples) {
    newest_.erase(newest_.begin(), newest_.end() - static_cast<std::ptrdiff_t>(kNewestSamples));
  }
  newest_.insert(newest_.end(), block_.begin(), block_.end());
  if (blockHandler_) blockHandler_();
}

std::vector<std::int16_t> RingRecorder::GetDisplaySamples(std::int32_t count) const {
  const auto wanted = static_cast<std::ptrdiff_t>(std::max(count, 0));
  const auto there = static_cast<std::ptrdiff_t>(newest_.size());
  return {newest_.end() - std::min(wanted, there), newest_.end()};
}

void RingRecorder::OpenSource(const SoundDevice& device) {
  if (open_) {
    // Counted in frames of the capture that lacks it.
    const std::int64_t left = static_cast<std::int64_t>(ring_->Available()) / openFormat_.Channels;
    CloseSource();
    lostByRings_ += left * format_.SampleRate / openFormat_.SampleRate;
  }
  newest_.clear();
  newest_.reserve(kMostSamples);
  gainControl_.SetFormat(format_);
  const auto samples = static_cast<std::size_t>(format_.SampleRate) *
                       static_cast<std::size_t>(format_.Channels) * static_cast<std::size_t>(kRingSeconds);
  ring_ = std::make_unique<SampleRing>(samples);
  openFormat_ = format_;
  openId_ = device.Id;
  ledger_.Open(format_.SampleRate, loop_.BootNow());
  openError_ = source_.Open(device.Id, format_, *this);
  open_ = true;
}

void RingRecorder::CloseSource() {
  timer_->SetEnabled(false);
  recording_ = false;
  if (!open_) return;
  source_.Close();
  open_ = false;
  lostByRings_ += static_cast<std::int64_t>(ring_->Lost()) / openFormat_.Channels;
  ring_.reset();
}

std::int64_t RingRecorder::LostBySource() const {
  std::int64_t lost = lostBySource_.load(std::memory_order_relaxed) + lostByRings_;
  if (ring_) lost += static_cast<std::int64_t>(ring_->Lost()) / openFormat_.Channels;
  return lost;
}

std::int64_t RingRecorder::FramesLost() const {
  return ledger_.Lost(LostBySource());
}

std::int64_t RingRecorder::FramesWaiting() const {
  return open_ ? static_cast<std::int64_t>(ring_->Available()) / openFormat_.Channels : 0;
}

void RingRecorder::OnSamples(std::span<const std::int16_t> interleaved) {
  ring_->Push(interleaved);
}

void RingRecorder::OnLost(std::int64_t frames) {
  lostBySource_.fetch_add(frames, std::memory_order_relaxed);
}

}  // namespace kestrune::platform
