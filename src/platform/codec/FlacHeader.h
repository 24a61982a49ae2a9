#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// What the first block of a FLAC file says, which every decoder reads.
struct FlacFacts {
  std::uint16_t BlockFrames = 0;    ///< sample frames of each block but the last
  std::uint32_t SmallestBlock = 0;  ///< bytes; 0 is unknown
  std::uint32_t LargestBlock = 0;   ///< bytes; 0 is unknown
  std::int32_t SampleRate = 0;      ///< Hz
  std::int16_t Channels = 0;
  std::int64_t Frames = 0;  ///< sample frames of the whole; 0 is unknown, as in a file that is not finished
  std::array<std::uint8_t, 16> Md5 = {};  ///< of the samples; all zero is unknown

  bool operator==(const FlacFacts&) const = default;
};

/// The marker and the block of facts, of 16-bit samples.
[[nodiscard]] std::string FlacStart(const FlacFacts& facts);
/// Where the room for tags begins: kTagRoom bytes, filled by the comments and the padding after them.
inline constexpr std::size_t kFlacTagsAt = 42;
/// Where the sound begins.
inline constexpr std::size_t kFlacSoundAt = kFlacTagsAt + kTagRoom;

/// The room for tags: a block of comments, and the padding.
[[nodiscard]] std::string FlacTagRoom(const TagTexts& texts);

/// What a file begins with that is one of ours.
struct FlacHead {
  FlacFacts Facts;
  FoundTags Tags;
};
/// Nothing if it does not begin with such facts of 16-bit samples and such a room, whole.
[[nodiscard]] std::optional<FlacHead> ReadFlacHead(const DiskFile& file);
/// Whether the file ends before the sound does, in what a file that is not finished begins with.
[[nodiscard]] bool EndsInFlacHead(const DiskFile& file);

/// Writes the comments into the room of a FLAC file of ours. False, and the file as it was, if it has no such room.
[[nodiscard]] bool WriteFlacComment(DiskFile& file, const TagTexts& texts);

}  // namespace kestrune::platform
