#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <lame/lame.h>

#include "platform/Mp3Parameters.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/Mp3Bitrates.h"
#include "platform/codec/Mp3InfoFrame.h"

namespace kestrune::platform {

/// MP3: room for the tag, the info frame, and the sound as LAME makes it of these parameters (see
/// LameSettings.h). VBRHeader decides whether the info frame holds a seek table; the length is always there.
class LameEncoder final : public Encoder {
 public:
  explicit LameEncoder(const Mp3Parameters& parameters) : parameters_(WithRealBitrates(parameters)) {}

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override;
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  struct CloseLame {
    void operator()(lame_global_flags* lame) const { lame_close(lame); }
  };

  [[nodiscard]] bool AppendSound(int encodedBytes);
  [[nodiscard]] Mp3InfoFrame::Contents Facts() const;

  Mp3Parameters parameters_;
  std::unique_ptr<lame_global_flags, CloseLame> lame_;
  std::optional<Mp3InfoFrame> infoFrame_;
  DiskFile* file_ = nullptr;
  std::vector<unsigned char> buffer_;
  Mp3SeekTable seekTable_;
  std::optional<MpegFrameWalker> walker_;
  std::int64_t samplesIn_ = 0;  ///< sample frames taken
  std::uint16_t soundCrc_ = 0;
  bool failed_ = false;
};

/// Names the bitrates that are really written.
[[nodiscard]] std::string FormatDescription(const Mp3Parameters& asked);

}  // namespace kestrune::platform
