#include "platform/codec/VorbisComment.h"

#include <cstdint>
#include <optional>

#include <ogg/ogg.h>
#include <vorbis/codec.h>

#include "platform/codec/Bytes.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kPacketStart = "\x03vorbis";
constexpr std::size_t kMaxVendor = 128;
constexpr std::size_t kPageFixedBytes = 27;
static_assert(7 + 4 + kMaxVendor + 4 + 4 * (4 + 11 + kMaxTagText) + 1 <= kTagRoom);

void AppendComment(std::string& comments, std::uint32_t& count, std::string_view name,
                   const std::string& text) {
  if (text.empty()) return;
  AppendLe(comments, name.size() + 1 + text.size(), 4);
  comments += name;
  comments += '=';
  comments += text;
  ++count;
}

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
  std::string comments;
  std::uint32_t count = 0;
  AppendComment(comments, count, "ARTIST", texts.Artist);
  AppendComment(comments, count, "TITLE", texts.Title);
  AppendComment(comments, count, "COMMENT", texts.Comment);
  AppendComment(comments, count, "ENCODER", texts.Encoder);

  std::string packet = "\x03vorbis";
  const std::string_view vendor = std::string_view(vorbis_version_string()).substr(0, kMaxVendor);
  AppendLe(packet, vendor.size(), 4);
  packet += vendor;
  AppendLe(packet, count, 4);
  packet += comments;
  packet += '\x01';
  packet.resize(kTagRoom, '\0');
  return packet;
}

FoundTags ReadVorbisComment(std::string_view packet) {
  FoundTags found;
  std::size_t at = kPacketStart.size();
  if (!packet.starts_with(kPacketStart)) return found;
  const auto number = [&]() -> std::optional<std::size_t> {
    if (packet.size() - at < 4) return std::nullopt;
    at += 4;
    return static_cast<std::size_t>(ReadLe(packet, at - 4, 4));
  };
  const auto text = [&]() -> std::optional<std::string_view> {
    const auto size = number();
    if (!size || *size > packet.size() - at) return std::nullopt;
    at += *size;
    return packet.substr(at - *size, *size);
  };
  if (!text()) return found;
  for (std::size_t left = number().value_or(0); left > 0; --left) {
    const auto comment = text();
    if (!comment) break;
    if (comment->starts_with("ARTIST=")) found.Artist = CleanTagText(comment->substr(7));
    if (comment->starts_with("TITLE=")) found.Title = CleanTagText(comment->substr(6));
  }
  return found;
}

bool WriteVorbisComment(DiskFile& file, const TagTexts& texts) {
  const auto first = SizesOfPage(file, 0);
  if (!first) return false;
  const auto at = static_cast<std::int64_t>(first->Header + first->Body);
  const auto second = SizesOfPage(file, at);
  if (!second || second->Body != kTagRoom) return false;
  auto page = file.ReadAt(at, second->Header + second->Body);
  if (!page || page->compare(second->Header, 7, "\x03vorbis") != 0) return false;

  page->replace(second->Header, kTagRoom, VorbisCommentPacket(texts));
  auto* bytes = reinterpret_cast<unsigned char*>(page->data());
  ogg_page view{bytes, static_cast<long>(second->Header), bytes + second->Header,
                static_cast<long>(second->Body)};
  ogg_page_checksum_set(&view);
  return file.WriteAt(at, AsBytes(*page));
}

}  // namespace kestrune::platform
