#include "platform/ring/SampleRing.h"

#include <algorithm>

namespace kestrune::platform {

SampleRing::SampleRing(std::size_t capacity)
    : capacity_(std::max<std::size_t>(capacity, 1)),
      store_(std::make_unique_for_overwrite<std::int16_t[]>(capacity_)) {}

std::size_t SampleRing::Push(std::span<const std::int16_t> samples) {
  const std::uint64_t pushed = pushed_.load(std::memory_order_relaxed);
  if (pushed - poppedSeen_ + samples.size() > capacity_) {
    poppedSeen_ = popped_.load(std::memory_order_acquire);
  }
  const std::size_t room = capacity_ - static_cast<std::size_t>(pushed - poppedSeen_);
  const std::size_t count = std::min(room, samples.size());
  const std::size_t place = static_cast<std::size_t>(pushed % capacity_);
  const std::size_t untilEnd = std::min(count, capacity_ - place);
  std::copy_n(samples.data(), untilEnd, store_.get() + place);
  std::copy_n(samples.data() + untilEnd, count - untilEnd, store_.get());
  pushed_.store(pushed + count, std::memory_order_release);
  if (count < samples.size()) {
    lost_.fetch_add(samples.size() - count, std::memory_order_relaxed);
  }
  return count;
}

std::size_t SampleRing::Pop(std::span<std::int16_t> samples) {
  const std::uint64_t popped = popped_.load(std::memory_order_relaxed);
  const std::size_t count = std::min(Available(), samples.size());
  const std::size_t place = static_cast<std::size_t>(popped % capacity_);
  const std::size_t untilEnd = std::min(count, capacity_ - place);
  std::copy_n(store_.get() + place, untilEnd, samples.data());
  std::copy_n(store_.get(), count - untilEnd, samples.data() + untilEnd);
  popped_.store(popped + count, std::memory_order_release);
  return count;
}

std::size_t SampleRing::Available() const {
  return static_cast<std::size_t>(pushed_.load(std::memory_order_acquire) -
                                  popped_.load(std::memory_order_relaxed));
}

}  // namespace kestrune::platform
