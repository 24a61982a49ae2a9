#include "platform/codec/OggComment.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include <ogg/ogg.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kPageFixedBytes = 27;
constexpr std::size_t kFullSegment = 255;

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

void SetChecksum(std::string& page, std::size_t header) {
  auto* const bytes = reinterpret_cast<unsigned char*>(page.data());
  ogg_page view{bytes, static_cast<long>(header), bytes + header, static_cast<long>(page.size() - header)};
  ogg_page_checksum_set(&view);
}

}  // namespace

std::string OggCommentPage(std::string_view page, std::string_view packet) {
  constexpr std::size_t kFull = kTagRoom / kFullSegment;
  std::string made(page.substr(0, kPageFixedBytes - 1));
  AppendLe(made, kFull + 1, 1);
  made.append(kFull, static_cast<char>(kFullSegment));
  AppendLe(made, kTagRoom % kFullSegment, 1);
  const std::size_t header = made.size();
  made += packet;
  SetChecksum(made, header);
  return made;
}

bool WriteOggComment(DiskFile& file, std::string_view start, std::string_view packet) {
  const auto first = SizesOfPage(file, 0);
  if (!first) return false;
  const auto at = static_cast<std::int64_t>(first->Header + first->Body);
  const auto second = SizesOfPage(file, at);
  if (!second || second->Body != kTagRoom) return false;
  auto page = file.ReadAt(at, second->Header + second->Body);
  if (!page || page->compare(second->Header, start.size(), start) != 0) return false;
  page->replace(second->Header, kTagRoom, packet);
  SetChecksum(*page, second->Header);
  return file.WriteAt(at, AsBytes(*page));
}

}  // namespace kestrune::platform
