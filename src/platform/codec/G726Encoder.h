#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/RiffFile.h"

struct g726_state_s;

namespace kestrune::platform {

/// ADPCM of 2 to 5 bits a sample in a RIFF/WAVE file, first sample in the highest bits of a byte. The
/// standard knows 16 to 40 kbit/s at 8000 Hz; at other rates the bitrate changes with the rate.
class G726Encoder final : public Encoder {
 public:
  explicit G726Encoder(const G726Format& format);

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override { return riff_.Begin(file); }
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  struct Release {
    void operator()(g726_state_s* state) const;
  };

  [[nodiscard]] bool Encode(std::span<const std::int16_t> samples);

  G726Format format_;
  RiffFile riff_;
  std::unique_ptr<g726_state_s, Release> state_;
  std::vector<std::uint8_t> codes_;
  std::int64_t frames_ = 0;
  std::int16_t lastSample_ = 0;
  bool failed_ = false;
};

[[nodiscard]] std::string FormatDescription(const G726Format& format);

}  // namespace kestrune::platform
