#include "platform/ring/RingListener.h"

#include <cstddef>

namespace kestrune::platform {

base::Result RingListener::Open(const std::string& id, const PcmFormat& format) {
  Close();
  ring_ = std::make_unique<SampleRing>(static_cast<std::size_t>(format.SampleRate) *
                                       static_cast<std::size_t>(format.Channels) *
                                       static_cast<std::size_t>(kRingSeconds));
  source_ = makeSource_();
  std::string error = source_->Open(id, format, *this);
  return error.empty() ? base::Result::Done() : base::Result::Failed(std::move(error));
}

void RingListener::Close() {
  if (source_ == nullptr) return;
  source_->Close();
  source_.reset();
}

std::vector<std::int16_t> RingListener::Take() {
  if (source_ == nullptr) return {};
  std::vector<std::int16_t> samples(ring_->Available());
  samples.resize(ring_->Pop(samples));
  return samples;
}

}  // namespace kestrune::platform
