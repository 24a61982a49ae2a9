#include "platform/codec/VorbisComment.h"

#include <optional>

#include <ogg/ogg.h>
#include <vorbis/codec.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/CommentFields.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kPacketStart = "\x03vorbis";
constexpr std::size_t kPageFixedBytes = 27;
static_assert(kPacketStart.size() + kMaxCommentFields + 1 <= kTagRoom);

/// Bytes of the page's header and of its body, by its segment table; nothing if no page begins here.
struct PageSizes {
  std::size_t Header = 0;
  std::size_t Body = 0;
};

std::optional<PageSizes> SizesOfPage(const DiskFile& file, std::int64_t at) {
  const auto fixed = file.ReadAt(at, kPageFixedBytes);
  if (!fixed || !fixed->starts_with("OggS")) return std::nullopt;
  const auto segments = static_cast<std::size_t>(ReadLe(*fixed, kPageFixedBytes - 1, 1));
  const auto table = file.ReadAt(at + static_cast<std::int64_t>(kPageFixedBytes), segments);
  if (!table) return std::nullopt;
  PageSizes sizes{kPageFixedBytes + segments, 0};
  for (const char lacing : *table) sizes.Body += static_cast<unsigned char>(lacing);
  return sizes;
}

}  // namespace

std::string VorbisCommentPacket(const TagTexts& texts) {
  std::string packet(kPacketStart);
  packet += CommentFields(vorbis_version_string(), texts);
  packet += '\x01';
  packet.resize(kTagRoom, '\0');
  return packet;
}

FoundTags ReadVorbisComment(std::string_view packet) {
  if (!packet.starts_with(kPacketStart)) return {};
  return ReadCommentFields(packet.substr(kPacketStart.size()));
}

bool WriteVorbisComment(DiskFile& file, const TagTexts& texts) {
  const auto first = SizesOfPage(file, 0);
  if (!first) return false;
  const auto at = static_cast<std::int64_t>(first->Header + first->Body);
  const auto second = SizesOfPage(file, at);
  if (!second || second->Body != kTagRoom) return false;
  auto page = file.ReadAt(at, second->Header + second->Body);
  if (!page || page->compare(second->Header, kPacketStart.size(), kPacketStart) != 0) return false;

  page->replace(second->Header, kTagRoom, VorbisCommentPacket(texts));
  auto* bytes = reinterpret_cast<unsigned char*>(page->data());
  ogg_page view{bytes, static_cast<long>(second->Header), bytes + second->Header,
                static_cast<long>(second->Body)};
  ogg_page_checksum_set(&view);
  return file.WriteAt(at, AsBytes(*page));
}

}  // namespace kestrune::platform
