#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <FLAC/stream_encoder.h>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/FlacHeader.h"

namespace kestrune::platform {

/// FLAC: facts, room for the tags, and blocks of sound as libFLAC makes them. Each block has a checksum, and until
/// Finish the facts leave the length open, so that a file that was never finished can still be played.
class FlacEncoder final : public Encoder {
 public:
  explicit FlacEncoder(const FlacFormat& format) : format_(format) {}

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override;
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  struct DeleteEncoder {
    void operator()(FLAC__StreamEncoder* encoder) const { FLAC__stream_encoder_delete(encoder); }
  };

  static FLAC__StreamEncoderWriteStatus TakeBlock(const FLAC__StreamEncoder* encoder, const FLAC__byte* bytes,
                                                  std::size_t size, std::uint32_t frames,
                                                  std::uint32_t number, void* self);
  static void TakeFacts(const FLAC__StreamEncoder* encoder, const FLAC__StreamMetadata* metadata, void* self);

  FlacFormat format_;
  DiskFile* file_ = nullptr;
  FlacFacts facts_;  ///< of what the file has taken
  std::vector<FLAC__int32> wide_;
  std::unique_ptr<FLAC__StreamEncoder, DeleteEncoder> encoder_;
  bool failed_ = false;
};

[[nodiscard]] std::string FormatDescription(const FlacFormat& format);

}  // namespace kestrune::platform
