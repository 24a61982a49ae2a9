#include "platform/codec/OggMender.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <ogg/ogg.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/OpusTags.h"
#include "platform/codec/VorbisComment.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kFixedBytes = 27;
constexpr std::size_t kFlagsAt = 5;
constexpr std::size_t kPositionAt = 6;
constexpr std::size_t kSerialAt = 14;
constexpr std::size_t kSegmentsAt = 26;
constexpr std::uint8_t kFirstPage = 2;
constexpr std::uint8_t kLastPage = 4;
constexpr std::size_t kGoesOn = 255;  ///< a segment of this size is followed by another one of its packet

/// One page, with the checksum that its bytes have.
class Page {
 public:
  Page(std::string bytes, std::size_t header) : bytes_(std::move(bytes)), header_(header) {}

  [[nodiscard]] const std::string& Bytes() const { return bytes_; }
  [[nodiscard]] std::string_view Body() const { return std::string_view(bytes_).substr(header_); }
  [[nodiscard]] bool IsFirst() const { return (Flags() & kFirstPage) != 0; }
  /// Samples up to the last packet that ends here; negative if none does.
  [[nodiscard]] std::int64_t Position() const {
    return static_cast<std::int64_t>(ReadLe(bytes_, kPositionAt, 8));
  }
  [[nodiscard]] std::uint64_t Serial() const { return ReadLe(bytes_, kSerialAt, 4); }
  /// How many packets end here.
  [[nodiscard]] int Packets() const {
    int packets = 0;
    for (std::size_t at = kFixedBytes; at < header_; ++at) packets += ReadLe(bytes_, at, 1) < kGoesOn ? 1 : 0;
    return packets;
  }
  [[nodiscard]] bool IsSound() const {
    Page same = *this;
    same.SetChecksum();
    return same.bytes_ == bytes_;
  }
  /// Cuts off the packet that would go on, and marks the page as the last one. A packet must end here.
  void MakeLast() {
    std::size_t body = Body().size();
    while (header_ > kFixedBytes && ReadLe(bytes_, header_ - 1, 1) == kGoesOn) {
      body -= kGoesOn;
      bytes_.erase(--header_, 1);
    }
    bytes_.resize(header_ + body);
    bytes_[kSegmentsAt] = static_cast<char>(header_ - kFixedBytes);
    bytes_[kFlagsAt] = static_cast<char>(Flags() | kLastPage);
    SetChecksum();
  }

 private:
  [[nodiscard]] std::uint8_t Flags() const { return static_cast<std::uint8_t>(bytes_[kFlagsAt]); }
  void SetChecksum() {
    auto* const start = reinterpret_cast<unsigned char*>(bytes_.data());
    ogg_page view{start, static_cast<long>(header_), start + header_,
                  static_cast<long>(bytes_.size() - header_)};
    ogg_page_checksum_set(&view);
  }

  std::string bytes_;
  std::size_t header_;
};

/// What the first packet says of the sound.
struct Sound {
  std::int64_t Rate = 0;     ///< positions a second
  std::int64_t Skipped = 0;  ///< positions before the first sample that is heard
  int HeaderPackets = 0;     ///< of which the second holds the comments
  FoundTags (*ReadTags)(std::string_view packet) = nullptr;
};

/// Nothing if the page does not begin Vorbis or Opus.
std::optional<Sound> SoundOf(const Page& first) {
  constexpr std::string_view kVorbis = "\x01vorbis";
  constexpr std::size_t kVorbisBytes = 30;
  constexpr std::size_t kVorbisRateAt = 12;
  constexpr std::string_view kOpus = "OpusHead\x01";
  constexpr std::size_t kOpusBytes = 19;
  constexpr std::size_t kOpusSkippedAt = 10;
  constexpr std::int64_t kOpusRate = 48000;  // whatever went in
  if (!first.IsFirst()) return std::nullopt;
  const std::string_view head = first.Body();
  if (head.starts_with(kVorbis) && head.size() == kVorbisBytes) {
    const auto rate = static_cast<std::int64_t>(ReadLe(head, kVorbisRateAt, 4));
    if (rate == 0) return std::nullopt;
    return Sound{.Rate = rate, .Skipped = 0, .HeaderPackets = 3, .ReadTags = ReadVorbisComment};
  }
  if (head.starts_with(kOpus) && head.size() == kOpusBytes) {
    const auto skipped = static_cast<std::int64_t>(ReadLe(head, kOpusSkippedAt, 2));
    return Sound{.Rate = kOpusRate, .Skipped = skipped, .HeaderPackets = 2, .ReadTags = ReadOpusTags};
  }
  return std::nullopt;
}

/// What stands at a place of a file.
struct Look {
  std::optional<platform::Page> Page;
  bool EndsTooSoon = false;  ///< a page begins, but the file ends in it
};

Look LookAt(const DiskFile& file, std::int64_t at) {
  const std::int64_t left = file.Size() - at;
  const auto fixed = file.ReadAt(at, static_cast<std::size_t>(std::min<std::int64_t>(left, kFixedBytes)));
  if (!fixed) return {};
  constexpr std::string_view kStart{"OggS\0", 5};
  const std::string_view start = std::string_view(*fixed).substr(0, kStart.size());
  if (!kStart.starts_with(start)) return {};
  if (fixed->size() < kFixedBytes) return {.Page = {}, .EndsTooSoon = true};
  const auto segments = static_cast<std::size_t>(ReadLe(*fixed, kSegmentsAt, 1));
  const std::size_t header = kFixedBytes + segments;
  const auto table = file.ReadAt(at + static_cast<std::int64_t>(kFixedBytes), segments);
  if (!table) return {.Page = {}, .EndsTooSoon = true};
  std::size_t size = header;
  for (const char lacing : *table) size += static_cast<unsigned char>(lacing);
  auto bytes = file.ReadAt(at, size);
  if (!bytes) return {.Page = {}, .EndsTooSoon = true};
  Page page(std::move(*bytes), header);
  if (!page.IsSound()) return {};
  return {.Page = std::move(page)};
}

}  // namespace

MendedCapture MendOgg(DiskFile& file, const std::stop_token& stop) {
  Look look = LookAt(file, 0);
  if (!look.Page) return look.EndsTooSoon ? NoSound() : NoCapture();
  const Page first = *look.Page;
  const auto sound = SoundOf(first);
  if (!sound) return NoCapture();

  FoundTags tags;
  std::optional<Page> last;
  std::int64_t lastAt = 0;
  std::int64_t at = 0;
  int packets = 0;
  for (; look.Page && look.Page->Serial() == first.Serial(); look = LookAt(file, at)) {
    if (stop.stop_requested()) return NotMended("it was broken off");
    const Page& page = *look.Page;
    if (packets == 1) tags = sound->ReadTags(page.Body());
    if (packets >= sound->HeaderPackets && page.Packets() > 0 && page.Position() > sound->Skipped) {
      last = page;
      lastAt = at;
    }
    packets = std::min(packets + page.Packets(), sound->HeaderPackets);
    at += static_cast<std::int64_t>(page.Bytes().size());
  }
  if (!last) return look.EndsTooSoon || at == file.Size() ? NoSound() : NoCapture();
  if (file.Size() - at > kMostCutOff) return NotMended("it is damaged long before its end");

  const std::int64_t samples = last->Position() - sound->Skipped;
  const std::string before = last->Bytes();
  last->MakeLast();
  const std::int64_t end = lastAt + static_cast<std::int64_t>(last->Bytes().size());
  if (last->Bytes() != before && !file.WriteAt(lastAt, AsBytes(last->Bytes()))) return NotWritten(file);
  if (end != file.Size() && !file.Truncate(end)) return NotWritten(file);
  const std::int64_t whole = samples / sound->Rate;
  constexpr std::int64_t kLongest = INT64_MAX / 1000 - 1;
  return Mended(std::min(whole, kLongest) * 1000 + samples % sound->Rate * 1000 / sound->Rate,
                std::move(tags));
}

}  // namespace kestrune::platform
