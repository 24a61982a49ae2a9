#pragma once

#include <string>
#include <vector>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/RiffFile.h"

namespace kestrune::platform {

/// Uncompressed wave files of 16 bits, or of the upper 8 bits of each sample.
class WaveEncoder final : public Encoder {
 public:
  explicit WaveEncoder(const WavFormat& format);

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override { return riff_.Begin(file); }
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override { return riff_.Finish(frames_); }

 private:
  WavFormat format_;
  RiffFile riff_;
  std::vector<std::byte> buffer_;
  std::int64_t frames_ = 0;
};

[[nodiscard]] std::string FormatDescription(const WavFormat& format);

}  // namespace kestrune::platform
