#pragma once

#include <memory>
#include <string>
#include <vector>

#include <sndfile.h>

#include "platform/CaptureFormat.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/Mending.h"

namespace kestrune::platform {

/// Files without a header: raw samples (16-bit little-endian, A-law, mu-law) and VOX (4-bit ADPCM, the first
/// sample in the upper half of a byte).
class SndfileEncoder final : public Encoder {
 public:
  explicit SndfileEncoder(const RawFormat& format);
  explicit SndfileEncoder(const VoxFormat& format);

  [[nodiscard]] std::int16_t Prepare() override;
  [[nodiscard]] bool Begin(DiskFile& file) override;
  [[nodiscard]] bool Write(std::span<const std::int16_t> samples) override;
  [[nodiscard]] bool Finish() override;

 private:
  struct CloseSound {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
  };

  /// What the library writes to. It does not report a failure in every format, so the failure is kept here.
  struct Sink {
    DiskFile* File = nullptr;
    bool Failed = false;
  };

  [[nodiscard]] static SF_VIRTUAL_IO WriteOnly();
  [[nodiscard]] bool WriteWhole(std::span<const std::int16_t> samples);

  SF_INFO info_{};
  Sink sink_;
  bool shapeKnown_ = true;
  bool evenBlocks_ = false;            ///< a block of an odd number of samples would be filled up
  std::vector<std::int16_t> waiting_;  ///< for its neighbour: one sample at most between calls
  std::unique_ptr<SNDFILE, CloseSound> sound_;
};

/// Cuts to whole frames, whatever the samples are: two channels of 16 bits take the most bytes.
[[nodiscard]] MendedCapture MendRaw(DiskFile& file, const std::stop_token& stop);
/// Each byte of a VOX file is whole by itself.
[[nodiscard]] MendedCapture MendVox(DiskFile& file, const std::stop_token& stop);

[[nodiscard]] std::string FormatDescription(const RawFormat& format);
[[nodiscard]] std::string FormatDescription(const VoxFormat& format);

}  // namespace kestrune::platform
