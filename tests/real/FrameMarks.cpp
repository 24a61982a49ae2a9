#include "real/FrameMarks.h"

#include <optional>

namespace kestrune::test {
namespace {

constexpr std::size_t kGroup = 32;

/// The number of the group that begins with this frame; nothing if none does.
std::optional<std::int64_t> GroupAt(const Decoded& sound, std::size_t frame) {
  if (frame + kGroup > sound.Frames()) return std::nullopt;
  std::int64_t number = 0;
  for (std::size_t i = 0; i < kGroup; ++i) {
    const bool right = (sound.Samples[2 * (frame + i) + 1] & 1) != 0;
    if (right != (i == 0)) return std::nullopt;
    if ((sound.Samples[2 * (frame + i)] & 1) != 0) number |= std::int64_t{1} << i;
  }
  return number;
}

/// Only groups of which two follow one another count: silence that is put into one makes another number of it.
std::optional<std::int64_t> SureGroupAt(const Decoded& sound, std::size_t frame) {
  const auto group = GroupAt(sound, frame);
  if (!group) return std::nullopt;
  const bool before = frame >= kGroup && GroupAt(sound, frame - kGroup) == *group - 1;
  return before || GroupAt(sound, frame + kGroup) == *group + 1 ? group : std::nullopt;
}

}  // namespace

MarkedSound ReadFrameMarks(const Decoded& sound) {
  MarkedSound marked;
  std::int64_t last = 0;   // the number of the frame ...
  std::size_t lastAt = 0;  // ... that lies here
  for (std::size_t at = 0; at < sound.Frames();) {
    const auto group = SureGroupAt(sound, at);
    if (!group) {
      ++at;
      continue;
    }
    const std::int64_t frame = *group * static_cast<std::int64_t>(kGroup);
    const std::int64_t expected = last + static_cast<std::int64_t>(at - lastAt);
    if (!marked.Found) {
      marked.Found = true;
      marked.First = frame - static_cast<std::int64_t>(at);
    } else if (frame > expected) {
      marked.Lost += frame - expected;
    } else if (frame <= last) {
      marked.Doubled += expected - frame;
    } else {
      marked.Silent += expected - frame;
    }
    last = frame;
    lastAt = at;
    at += kGroup;
  }
  marked.End = last + static_cast<std::int64_t>(sound.Frames() - lastAt);
  return marked;
}

}  // namespace kestrune::test
