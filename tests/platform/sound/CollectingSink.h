#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "platform/SoundSource.h"

namespace kestrune::platform {

/// Keeps what a source delivers on its thread, for the test to examine on its own.
class CollectingSink final : public SampleSink {
 public:
  void OnSamples(std::span<const std::int16_t> interleaved) override {
    const std::lock_guard lock(mutex_);
    samples_.insert(samples_.end(), interleaved.begin(), interleaved.end());
  }
  void OnLost(std::int64_t frames) override {
    const std::lock_guard lock(mutex_);
    lost_ += frames;
  }

  [[nodiscard]] std::vector<std::int16_t> Samples() const {
    const std::lock_guard lock(mutex_);
    return samples_;
  }
  [[nodiscard]] std::size_t Count() const {
    const std::lock_guard lock(mutex_);
    return samples_.size();
  }
  [[nodiscard]] std::int64_t Lost() const {
    const std::lock_guard lock(mutex_);
    return lost_;
  }
  /// Waits until there are that many samples; false if they do not come in time.
  [[nodiscard]] bool WaitFor(std::size_t count, std::chrono::milliseconds limit) const {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (Count() < count) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::int16_t> samples_;
  std::int64_t lost_ = 0;
};

}  // namespace kestrune::platform
