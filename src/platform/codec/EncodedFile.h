#pragma once

#include <memory>

#include "platform/CaptureFile.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/Encoder.h"

namespace kestrune::platform {

/// Capture files on disk, encoded by the libraries of the desktop. The numbers of Create are in CaptureErrors.h.
///
/// Limits of the formats themselves: VOX holds two samples a byte, G.726 a whole number of bytes of its 2 to
/// 5 bits a sample. A capture that ends in between is filled up with its last sample; a G.726 file holds its
/// true length in its fact chunk, VOX has no place for it.
class EncodedFile final : public CaptureFile {
 public:
  EncodedFile() = default;
  ~EncodedFile() override { static_cast<void>(Close()); }
  EncodedFile(const EncodedFile&) = delete;
  EncodedFile& operator=(const EncodedFile&) = delete;

  void SetFormat(const CaptureFormat& format) override { format_ = format; }

  /// Closes and releases a file that is open. The encoder is asked first: a refused format leaves a file of that name
  /// as it was.
  NumberedResult Create(std::string_view path) override;
  [[nodiscard]] PcmFormat FormatValues() const override;
  /// After a failed write nothing more is taken, so that the file has an end but no gap.
  base::Result WriteBlock(std::span<const std::int16_t> samples) override;
  [[nodiscard]] std::int32_t Length() const override;
  [[nodiscard]] std::string FormatDescription() const override;
  base::Result Close() override;
  void Release() override;

 private:
  /// Why the file or the encoder took no more.
  [[nodiscard]] base::Result WriteFailure() const;

  CaptureFormat format_;
  DiskFile file_;
  std::unique_ptr<Encoder> encoder_;  ///< while a file is open
  PcmFormat open_;                    ///< of the file that is or was open
  std::int64_t framesWritten_ = 0;
  bool failed_ = false;
};

}  // namespace kestrune::platform
