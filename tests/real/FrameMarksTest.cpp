#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "real/FrameMarks.h"

namespace kestrune::test {
namespace {

/// Frames with their marks, made bit by bit.
Decoded MarkedFrames(const std::vector<std::int64_t>& frames) {
  Decoded sound{.Rate = 44100, .Channels = 2, .Samples = {}};
  for (const std::int64_t frame : frames) {
    const std::int64_t group = frame / 32;
    const std::int64_t bit = frame % 32;
    sound.Samples.push_back(static_cast<std::int16_t>(1000 + (group >> bit & 1)));
    sound.Samples.push_back(static_cast<std::int16_t>(-2000 + (bit == 0 ? 1 : 0)));
  }
  return sound;
}

std::vector<std::int64_t> Row(std::int64_t first, std::int64_t end) {
  std::vector<std::int64_t> row;
  for (std::int64_t frame = first; frame < end; ++frame) row.push_back(frame);
  return row;
}

void Append(std::vector<std::int64_t>& row, std::int64_t first, std::int64_t end) {
  for (const std::int64_t frame : Row(first, end)) row.push_back(frame);
}

TEST(FrameMarks, TellTheFirstFrameAndTheLast) {
  const MarkedSound sound = ReadFrameMarks(MarkedFrames(Row(100005, 100300)));
  EXPECT_TRUE(sound.Found);
  EXPECT_EQ(sound.First, 100005);
  EXPECT_EQ(sound.End, 100300);
  EXPECT_EQ(sound.Lost + sound.Doubled + sound.Silent, 0);
}

TEST(FrameMarks, MissingFramesAreLost) {
  std::vector<std::int64_t> row = Row(640, 800);
  Append(row, 815, 1000);
  EXPECT_EQ(ReadFrameMarks(MarkedFrames(row)).Lost, 15);
}

TEST(FrameMarks, FramesThatComeAgainAreDoubled) {
  std::vector<std::int64_t> row = Row(640, 800);
  Append(row, 736, 1000);
  EXPECT_EQ(ReadFrameMarks(MarkedFrames(row)).Doubled, 64);
}

TEST(FrameMarks, SilenceBetweenFramesIsNoneOfBoth) {
  Decoded sound = MarkedFrames(Row(640, 803));
  sound.Samples.insert(sound.Samples.end(), 2 * 50, 0);
  const Decoded rest = MarkedFrames(Row(803, 1000));
  sound.Samples.insert(sound.Samples.end(), rest.Samples.begin(), rest.Samples.end());
  const MarkedSound marked = ReadFrameMarks(sound);
  EXPECT_EQ(marked.Silent, 50);
  EXPECT_EQ(marked.Lost + marked.Doubled, 0);
}

TEST(FrameMarks, OtherSoundHasNone) {
  EXPECT_FALSE(ReadFrameMarks({44100, 2, std::vector<std::int16_t>(1000)}).Found);
}

}  // namespace
}  // namespace kestrune::test
