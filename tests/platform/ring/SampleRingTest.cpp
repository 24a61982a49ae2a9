#include <atomic>
#include <cstdint>
#include <iostream>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ring/SampleRing.h"

namespace kestrune::platform {
namespace {

std::vector<std::int16_t> Counting(std::int16_t from, std::size_t count) {
  std::vector<std::int16_t> samples(count);
  std::iota(samples.begin(), samples.end(), from);
  return samples;
}

TEST(SampleRing, ReturnsWhatWasPushedInItsOrder) {
  SampleRing ring(8);
  EXPECT_EQ(ring.Push(Counting(1, 5)), 5U);
  EXPECT_EQ(ring.Available(), 5U);
  std::vector<std::int16_t> out(3);
  EXPECT_EQ(ring.Pop(out), 3U);
  EXPECT_EQ(out, Counting(1, 3));
  // Past the end of the store and on from its beginning.
  EXPECT_EQ(ring.Push(Counting(6, 6)), 6U);
  out.resize(8);
  EXPECT_EQ(ring.Pop(out), 8U);
  EXPECT_EQ(out, Counting(4, 8));
  EXPECT_EQ(ring.Available(), 0U);
  EXPECT_EQ(ring.Lost(), 0U);
}

TEST(SampleRing, AnEmptyRingReturnsNothing) {
  SampleRing ring(4);
  std::vector<std::int16_t> out(4, 77);
  EXPECT_EQ(ring.Pop(out), 0U);
  EXPECT_EQ(out, std::vector<std::int16_t>(4, 77));
}

TEST(SampleRing, WhatDoesNotFitIsCountedAsLostAndTheRestStays) {
  SampleRing ring(6);
  EXPECT_EQ(ring.Push(Counting(1, 4)), 4U);
  EXPECT_EQ(ring.Push(Counting(5, 5)), 2U);
  EXPECT_EQ(ring.Lost(), 3U);
  EXPECT_EQ(ring.Push(Counting(50, 2)), 0U);
  EXPECT_EQ(ring.Lost(), 5U);
  std::vector<std::int16_t> out(6);
  EXPECT_EQ(ring.Pop(out), 6U);
  EXPECT_EQ(out, Counting(1, 6));
  EXPECT_EQ(ring.Push(Counting(9, 6)), 6U);
}

TEST(SampleRing, APushLargerThanTheRingFillsIt) {
  SampleRing ring(4);
  EXPECT_EQ(ring.Push(Counting(1, 10)), 4U);
  EXPECT_EQ(ring.Lost(), 6U);
}

// Stereo frames through a ring that is nearly always full or empty, in pieces of random size. The pushing
// side offers again what did not fit, so the popping side must see every frame once.
TEST(SampleRing, TwoThreadsPassACountingSignalWithoutLossOrDoubling) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  constexpr std::uint32_t kFrames = 1'000'000;
  SampleRing ring(2 * 1500);

  std::thread pushing([&ring, seed] {
    std::mt19937 random(seed);
    std::vector<std::int16_t> piece;
    std::uint32_t next = 0;
    while (next < kFrames) {
      const std::uint32_t count = std::min<std::uint32_t>(1 + random() % 700, kFrames - next);
      piece.clear();
      for (std::uint32_t frame = next; frame < next + count; ++frame) {
        piece.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(frame)));
        piece.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(frame >> 16)));
      }
      const std::size_t taken = ring.Push(piece);
      next += static_cast<std::uint32_t>(taken / 2);
      if (taken == 0) std::this_thread::yield();
    }
  });

  std::mt19937 random(seed + 1);
  std::uint32_t expected = 0;
  std::uint32_t wrong = 0;
  std::vector<std::int16_t> out(2 * 900);
  while (expected < kFrames) {
    const std::size_t wanted = 2 * (1 + random() % 900);
    const std::size_t got = ring.Pop(std::span(out).first(wanted));
    ASSERT_EQ(got % 2, 0U);
    for (std::size_t at = 0; at < got; at += 2) {
      const std::uint32_t low = static_cast<std::uint16_t>(out[at]);
      const std::uint32_t high = static_cast<std::uint16_t>(out[at + 1]);
      if ((low | high << 16) != expected) ++wrong;
      ++expected;
    }
    if (got == 0) std::this_thread::yield();
  }
  pushing.join();
  EXPECT_EQ(wrong, 0U);
  EXPECT_EQ(ring.Available(), 0U);
}

// The other way to live with a full ring: push and forget. Whatever goes missing, the numbers rise, and what
// arrived and what was counted as lost make up all that was offered.
TEST(SampleRing, TwoThreadsWithAnOverrunStillAccountForEverySample) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  constexpr std::int64_t kSamples = 300'000;
  SampleRing ring(512);
  std::atomic<bool> done{false};

  std::thread pushing([&] {
    std::mt19937 random(seed);
    std::vector<std::int16_t> piece;
    std::int64_t next = 0;
    while (next < kSamples) {
      const auto count = std::min<std::int64_t>(1 + random() % 300, kSamples - next);
      piece.clear();
      for (std::int64_t sample = next; sample < next + count; ++sample) {
        piece.push_back(static_cast<std::int16_t>(sample % 32768));
      }
      ring.Push(piece);
      next += count;
      if (random() % 3 == 0) std::this_thread::yield();
    }
    done = true;
  });

  std::int64_t received = 0;
  std::vector<std::int16_t> out(200);
  for (;;) {
    const bool last = done;
    const std::size_t got = ring.Pop(out);
    received += static_cast<std::int64_t>(got);
    if (got == 0 && last) break;
  }
  pushing.join();
  EXPECT_EQ(received + static_cast<std::int64_t>(ring.Lost()), kSamples);
}

}  // namespace
}  // namespace kestrune::platform
