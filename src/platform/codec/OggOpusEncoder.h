#pragma once

#include <memory>
#include <string>

#include <opusenc.h>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"

namespace kestrune::platform {

/// Ogg Opus as libopusenc makes it, which brings every sample rate to the 48000 Hz of Opus and writes how much to leave
/// out at both ends: what is decoded is as long as what went in. The comment packet is padded and alone on its page, so
/// that tags are written in place.
class OggOpusEncoder final : public Encoder {
 public:
  explicit OggOpusEncoder(const OpusFormat& format) : format_(format) {}

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override;
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  struct DestroyEncoder {
    void operator()(OggOpusEnc* encoder) const { ope_encoder_destroy(encoder); }
  };

  /// Each call brings one page.
  static int TakePage(void* self, const unsigned char* bytes, opus_int32 size);
  [[nodiscard]] bool AppendPage(std::string_view page);

  OpusFormat format_;
  DiskFile* file_ = nullptr;
  int pages_ = 0;
  std::unique_ptr<OggOpusEnc, DestroyEncoder> encoder_;
  bool failed_ = false;
};

[[nodiscard]] std::string FormatDescription(const OpusFormat& format);

}  // namespace kestrune::platform
