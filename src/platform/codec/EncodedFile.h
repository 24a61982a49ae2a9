#pragma once

#include <memory>

#include "platform/CaptureFile.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/Encoder.h"

namespace kestrune::platform {

/// Capture files on disk, encoded by the libraries of the desktop. The last results stand in CaptureErrors.h.
///
/// What the formats themselves bound: VOX holds two samples a byte, G.726 a whole number of bytes of its 2 to
/// 5 bits a sample. A capture that ends in between is filled up with its last sample; a G.726 file says its
/// true length in its fact chunk, VOX has no place for it.
class EncodedFile final : public CaptureFile {
 public:
  EncodedFile() = default;
  ~EncodedFile() override { Close(); }
  EncodedFile(const EncodedFile&) = delete;
  EncodedFile& operator=(const EncodedFile&) = delete;

  void SetFormat(const CaptureFormat& format) override { format_ = format; }

  /// Closes a file that is open. The encoder is asked first: a refused format leaves a file of that name as
  /// it was.
  void Create(std::string_view path) override;
  [[nodiscard]] std::int16_t LastResult() const override { return lastResult_; }
  [[nodiscard]] PcmFormat FormatValues() const override;
  /// After a failed write nothing more is taken, so that the file has an end but no gap.
  [[nodiscard]] bool WriteBlock(std::span<const std::int16_t> samples) override;
  [[nodiscard]] std::int32_t Length() const override;
  [[nodiscard]] std::string FormatDescription() const override;
  void Close() override;

 private:
  CaptureFormat format_;
  std::int16_t lastResult_ = 0;
  DiskFile file_;
  std::unique_ptr<Encoder> encoder_;  ///< while a file is open
  PcmFormat open_;                    ///< of the file that is or was open
  std::int64_t framesWritten_ = 0;
  bool failed_ = false;
};

}  // namespace kestrune::platform
