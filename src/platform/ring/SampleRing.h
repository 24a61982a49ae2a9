#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kestrune::platform {

/// A first-in first-out store of samples between two threads: one pushes, one pops, neither ever waits.
///
/// 1. Push takes what fits, from the front of what is offered; the rest is dropped and counted in Lost.
/// 2. What is popped is what was pushed, in its order, each sample once.
/// 3. The store is made once, by the constructor. If its size and every call's size are whole frames, frames are
///    never torn.
class SampleRing {
 public:
  /// Holds up to `capacity` samples, at least one.
  explicit SampleRing(std::size_t capacity);

  /// The pushing thread only. Returns how many samples were taken.
  std::size_t Push(std::span<const std::int16_t> samples);
  /// The popping thread only. Fills the front of `samples`; returns how many.
  std::size_t Pop(std::span<std::int16_t> samples);
  /// The popping thread only. A Pop gets at least this many samples.
  [[nodiscard]] std::size_t Available() const;

  [[nodiscard]] std::size_t Capacity() const { return capacity_; }
  /// Samples that were offered so far, whether they fitted or not; any thread.
  [[nodiscard]] std::uint64_t Offered() const { return pushed_.load(std::memory_order_relaxed) + Lost(); }
  /// Samples that did not fit; any thread.
  [[nodiscard]] std::uint64_t Lost() const { return lost_.load(std::memory_order_relaxed); }

 private:
  // Each side's fields are on a cache line of their own, so that the threads do not contend for it.
  static constexpr std::size_t kCacheLine = 64;

  const std::size_t capacity_;
  const std::unique_ptr<std::int16_t[]> store_;

  // Positions count samples since the start and never wrap within a lifetime. Each is written by its own side
  // only; storing it with release and loading it with acquire on the other side hands over the samples, or
  // the room, that it stands for.
  alignas(kCacheLine) std::atomic<std::uint64_t> pushed_{0};
  std::uint64_t poppedSeen_ = 0;  // the pushing side's last look at popped_
  std::atomic<std::uint64_t> lost_{0};
  alignas(kCacheLine) std::atomic<std::uint64_t> popped_{0};
};

}  // namespace kestrune::platform
