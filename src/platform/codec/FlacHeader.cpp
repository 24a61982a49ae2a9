#include "platform/codec/FlacHeader.h"

#include <algorithm>

#include <FLAC/format.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/CommentFields.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kMarker = "fLaC";
constexpr std::size_t kBlockHeader = 4;
constexpr std::size_t kFactsAt = kMarker.size() + kBlockHeader;
constexpr std::size_t kPackedAt = kFactsAt + 10;  ///< 20 bits rate, 3 channels, 5 bits a sample, 36 length
constexpr std::size_t kMd5At = kPackedAt + 8;
constexpr unsigned kSampleBits = 16;
constexpr std::int64_t kMostFrames = (std::int64_t{1} << 36) - 1;
constexpr std::uint64_t kLastBlock = 0x80;
static_assert(kMd5At + 16 == kFlacTagsAt);
static_assert(kBlockHeader + kMaxCommentFields + kBlockHeader <= kTagRoom);

void AppendBlockHeader(std::string& bytes, std::uint64_t type, std::size_t size) {
  AppendBe(bytes, type, 1);
  AppendBe(bytes, size, 3);
}

std::uint64_t ReadBe(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (const char byte : bytes.substr(at, count)) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

/// Whether a block of this type begins here; its size.
std::optional<std::size_t> BlockSize(std::string_view bytes, std::size_t at, std::uint64_t type) {
  if (bytes.size() < at + kBlockHeader || ReadBe(bytes, at, 1) != type) return std::nullopt;
  return static_cast<std::size_t>(ReadBe(bytes, at + 1, 3));
}

/// Nothing if this is no block of such facts.
std::optional<FlacFacts> ReadFacts(std::string_view start) {
  FlacFacts facts;
  const std::uint64_t packed = ReadBe(start, kPackedAt, 8);
  facts.BlockFrames = static_cast<std::uint16_t>(ReadBe(start, kFactsAt, 2));
  facts.SmallestBlock = static_cast<std::uint32_t>(ReadBe(start, kFactsAt + 4, 3));
  facts.LargestBlock = static_cast<std::uint32_t>(ReadBe(start, kFactsAt + 7, 3));
  facts.SampleRate = static_cast<std::int32_t>(packed >> 44);
  facts.Channels = static_cast<std::int16_t>((packed >> 41 & 7U) + 1);
  facts.Frames = static_cast<std::int64_t>(packed) & kMostFrames;
  std::copy_n(start.begin() + kMd5At, facts.Md5.size(), facts.Md5.begin());
  const bool ours = facts.BlockFrames >= FLAC__MIN_BLOCK_SIZE && facts.SampleRate > 0 && facts.Channels <= 2;
  if (!ours || FlacStart(facts) != start) return std::nullopt;
  return facts;
}

/// The comments of a room for tags; nothing if it is none.
std::optional<std::string_view> CommentsIn(std::string_view room) {
  const auto comments = BlockSize(room, 0, FLAC__METADATA_TYPE_VORBIS_COMMENT);
  if (!comments) return std::nullopt;
  const std::size_t paddingAt = kBlockHeader + *comments;
  const auto padding = BlockSize(room, paddingAt, kLastBlock | FLAC__METADATA_TYPE_PADDING);
  if (!padding || paddingAt + kBlockHeader + *padding != room.size()) return std::nullopt;
  return room.substr(kBlockHeader, *comments);
}

}  // namespace

std::string FlacStart(const FlacFacts& facts) {
  std::string start(kMarker);
  AppendBlockHeader(start, FLAC__METADATA_TYPE_STREAMINFO, kFlacTagsAt - kFactsAt);
  AppendBe(start, facts.BlockFrames, 2);
  AppendBe(start, facts.BlockFrames, 2);
  AppendBe(start, facts.SmallestBlock, 3);
  AppendBe(start, facts.LargestBlock, 3);
  const auto channels = static_cast<std::uint64_t>(facts.Channels - 1);
  // What is longer than can be said is of unknown length.
  const std::int64_t frames = facts.Frames > kMostFrames ? 0 : facts.Frames;
  AppendBe(start,
           static_cast<std::uint64_t>(facts.SampleRate) << 44 | channels << 41 |
               std::uint64_t{kSampleBits - 1} << 36 | static_cast<std::uint64_t>(frames),
           8);
  start.append(facts.Md5.begin(), facts.Md5.end());
  return start;
}

std::string FlacTagRoom(const TagTexts& texts) {
  const std::string comments = CommentFields(FLAC__VENDOR_STRING, texts);
  std::string room;
  AppendBlockHeader(room, FLAC__METADATA_TYPE_VORBIS_COMMENT, comments.size());
  room += comments;
  AppendBlockHeader(room, kLastBlock | FLAC__METADATA_TYPE_PADDING, kTagRoom - room.size() - kBlockHeader);
  room.resize(kTagRoom, '\0');
  return room;
}

std::optional<FlacHead> ReadFlacHead(const DiskFile& file) {
  const auto head = file.ReadAt(0, kFlacSoundAt);
  if (!head) return std::nullopt;
  const std::string_view bytes = *head;
  const auto facts = ReadFacts(bytes.substr(0, kFlacTagsAt));
  const auto comments = CommentsIn(bytes.substr(kFlacTagsAt));
  if (!facts || !comments) return std::nullopt;
  return FlacHead{.Facts = *facts, .Tags = ReadCommentFields(*comments)};
}

bool EndsInFlacHead(const DiskFile& file) {
  if (file.Size() >= static_cast<std::int64_t>(kFlacSoundAt)) return false;
  const auto head = file.ReadAt(0, static_cast<std::size_t>(file.Size()));
  if (!head) return false;
  const std::string start = FlacStart({});
  if (head->size() < kFlacTagsAt)
    return head->compare(0, kFactsAt, start, 0, std::min(head->size(), kFactsAt)) == 0;
  if (!ReadFacts(std::string_view(*head).substr(0, kFlacTagsAt))) return false;
  return FlacTagRoom(TagTexts({})).starts_with(std::string_view(*head).substr(kFlacTagsAt));
}

bool WriteFlacComment(DiskFile& file, const TagTexts& texts) {
  if (!ReadFlacHead(file)) return false;
  return file.WriteAt(static_cast<std::int64_t>(kFlacTagsAt), AsBytes(FlacTagRoom(texts)));
}

}  // namespace kestrune::platform
