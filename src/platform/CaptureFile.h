#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/CaptureFormat.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// An encoding file writer, one a capture slot. Used from the main thread.
///
/// 1. SetFormat prepares the next Create and does not touch a file that is open. Nothing is checked until Create;
///    parameters that the encoder refuses give a negative last result there, and no file is left.
/// 2. Create starts a fresh encoder. What is written until Close, decoded, is exactly what was handed over.
/// 3. Room for the tags is reserved in Create, so that tagging later moves no sound.
/// 4. Close on a file that is not open does nothing.
class CaptureFile {
 public:
  virtual ~CaptureFile() = default;

  virtual void SetFormat(const CaptureFormat& format) = 0;

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
