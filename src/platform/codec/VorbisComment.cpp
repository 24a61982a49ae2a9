#include "platform/codec/VorbisComment.h"

#include <vorbis/codec.h>

#include "platform/codec/CommentFields.h"
#include "platform/codec/OggComment.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kPacketStart = "\x03vorbis";
static_assert(kPacketStart.size() + kMaxCommentFields + 1 <= kTagRoom);

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
  return WriteOggComment(file, kPacketStart, VorbisCommentPacket(texts));
}

}  // namespace kestrune::platform
