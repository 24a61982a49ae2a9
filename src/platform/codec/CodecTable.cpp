#include "platform/codec/CodecTable.h"

#include "base/Text.h"
#include "platform/codec/FlacEncoder.h"
#include "platform/codec/FlacHeader.h"
#include "platform/codec/FlacMender.h"
#include "platform/codec/G726Encoder.h"
#include "platform/codec/Id3Tag.h"
#include "platform/codec/LameEncoder.h"
#include "platform/codec/Mp3Mender.h"
#include "platform/codec/OggMender.h"
#include "platform/codec/OggOpusEncoder.h"
#include "platform/codec/OpusTags.h"
#include "platform/codec/RiffFile.h"
#include "platform/codec/SndfileEncoder.h"
#include "platform/codec/VorbisComment.h"
#include "platform/codec/VorbisEncoder.h"
#include "platform/codec/WaveEncoder.h"

namespace kestrune::platform {
namespace {

template <typename Format, typename ItsEncoder>
constexpr Codec Row(std::string_view extension, bool (*writeTags)(DiskFile&, const TagTexts&),
                    MendFile mend) {
  return {extension,
          [](const CaptureFormat& format) { return std::holds_alternative<Format>(format); },
          [](const CaptureFormat& format) -> std::unique_ptr<Encoder> {
            return std::make_unique<ItsEncoder>(std::get<Format>(format));
          },
          [](const CaptureFormat& format) { return FormatDescription(std::get<Format>(format)); },
          writeTags,
          mend};
}

constexpr Codec kCodecs[] = {
    Row<Mp3Parameters, LameEncoder>(".mp3", WriteId3, MendMp3),
    Row<OggFormat, VorbisEncoder>(".ogg", WriteVorbisComment, MendOgg),
    Row<WavFormat, WaveEncoder>(".wav", WriteRiffInfo, MendRiff),
    Row<RawFormat, SndfileEncoder>(".raw", nullptr, MendRaw),
    Row<VoxFormat, SndfileEncoder>(".vox", nullptr, MendVox),
    Row<G726Format, G726Encoder>(".g726", WriteRiffInfo, MendRiff),
    Row<FlacFormat, FlacEncoder>(".flac", WriteFlacComment, MendFlac),
    Row<OpusFormat, OggOpusEncoder>(".opus", WriteOpusTags, MendOgg),
};

}  // namespace

const Codec* FindCodec(const CaptureFormat& format) {
  for (const Codec& codec : kCodecs) {
    if (codec.Holds(format)) return &codec;
  }
  return nullptr;
}

const Codec* FindCodecOfFile(std::string_view path) {
  for (const Codec& codec : kCodecs) {
    const std::size_t size = codec.Extension.size();
    if (path.size() >= size && base::EqualsNoCase(path.substr(path.size() - size), codec.Extension))
      return &codec;
  }
  return nullptr;
}

}  // namespace kestrune::platform
