#include "platform/codec/OpusTags.h"

#include <fmt/format.h>
#include <opusenc.h>

#include "platform/codec/CommentFields.h"
#include "platform/codec/OggComment.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kPacketStart = "OpusTags";
static_assert(kPacketStart.size() + kMaxCommentFields <= kTagRoom);

}  // namespace

std::string OpusTagsPacket(const TagTexts& texts) {
  std::string packet(kPacketStart);
  packet += CommentFields(fmt::format("{}, {}", opus_get_version_string(), ope_get_version_string()), texts);
  packet.resize(kTagRoom, '\0');
  return packet;
}

bool WriteOpusTags(DiskFile& file, const TagTexts& texts) {
  return WriteOggComment(file, kPacketStart, OpusTagsPacket(texts));
}

FoundTags ReadOpusTags(std::string_view packet) {
  if (!packet.starts_with(kPacketStart)) return {};
  return ReadCommentFields(packet.substr(kPacketStart.size()));
}

}  // namespace kestrune::platform
