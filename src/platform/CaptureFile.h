#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/Mp3Parameters.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// An encoding file writer, one a capture slot. Used from the main thread.
///
/// 1. A SetFormat call prepares the next Create and does not touch a file that is open. Nothing is checked
/// until
///    Create; parameters that the encoder refuses give a negative last result there, and no file stays
///    behind.
/// 2. Create starts a fresh encoder. What is written until Close, decoded, is exactly what was handed over.
/// 3. Room for the tags is reserved in Create, so that tagging later moves no sound.
/// 4. Close on a file that is not open does nothing.
class CaptureFile {
 public:
  virtual ~CaptureFile() = default;

  virtual void SetFormatWAV(std::int32_t frequency, std::int16_t channels, std::int16_t bits) = 0;
  /// Compression: 1 16-bit PCM, 2 A-law, 3 mu-law; 0 counts as 1. The last argument is always 16.
  virtual void SetFormatRAW(std::int16_t compression, std::int32_t frequency, std::int16_t channels,
                            std::int16_t bits) = 0;
  virtual void SetFormatVOX(std::int32_t frequency) = 0;
  virtual void SetFormatMP3(const Mp3Parameters& parameters) = 0;
  /// Bitrates in kbit/s. Quality -1 means bitrate managed, else 0 to 10; minimum and maximum 0 mean no
  /// limits.
  virtual void SetFormatOgg(std::int32_t frequency, std::int16_t channels, std::int16_t nominalBitrate,
                            std::int16_t minBitrate, std::int16_t maxBitrate, std::int16_t quality) = 0;
  virtual void SetFormatG726(std::int32_t frequency, std::int16_t bits) = 0;

  /// Opens the file for writing, replacing one that is there. See LastResult.
  virtual void Create(std::string_view path) = 0;
  /// Of the last Create: 0 or more on success, negative on failure.
  [[nodiscard]] virtual std::int16_t LastResult() const = 0;
  /// The samples that the prepared format wants.
  [[nodiscard]] virtual PcmFormat FormatValues() const = 0;
  /// Encodes and appends interleaved samples; false if nothing is open or the file takes no more.
  [[nodiscard]] virtual bool WriteBlock(std::span<const std::int16_t> samples) = 0;
  /// Milliseconds written since Create, the fraction dropped; kept after Close.
  [[nodiscard]] virtual std::int32_t Length() const = 0;
  /// One line that names the prepared format and its main parameters.
  [[nodiscard]] virtual std::string FormatDescription() const = 0;
  /// Finishes and closes the file.
  virtual void Close() = 0;
};

}  // namespace kestrune::platform
