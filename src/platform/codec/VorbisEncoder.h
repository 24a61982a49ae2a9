#pragma once

#include <string>

#include <ogg/ogg.h>
#include <vorbis/codec.h>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"

namespace kestrune::platform {

/// Ogg Vorbis, by quality or managed by bitrate. The comment packet is padded and alone on its page,
/// so that tags are written in place.
class VorbisEncoder final : public Encoder {
 public:
  explicit VorbisEncoder(const OggFormat& format) : format_(format) {}
  ~VorbisEncoder() override;
  VorbisEncoder(const VorbisEncoder&) = delete;
  VorbisEncoder& operator=(const VorbisEncoder&) = delete;

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override;
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  [[nodiscard]] bool DrainEncoder();
  [[nodiscard]] bool AppendPage(const ogg_page& page);
  [[nodiscard]] bool FlushPages();

  OggFormat format_;
  DiskFile* file_ = nullptr;
  vorbis_info info_{};
  vorbis_dsp_state dsp_{};
  vorbis_block block_{};
  ogg_stream_state stream_{};
  bool encoderReady_ = false;
  bool failed_ = false;
};

[[nodiscard]] std::string FormatDescription(const OggFormat& format);

}  // namespace kestrune::platform
