#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/Result.h"
#include "platform/CaptureFormat.h"
#include "platform/NumberedResult.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// What Create returns, as a number, if its name cannot be had: another process holds a file of that name, or
/// something that is no file stands there. Another name may do.
inline constexpr std::int16_t kNameHeld = -9;

/// An encoding file writer, one a capture slot. Used from the main thread.
///
/// 1. SetFormat prepares the next Create and does not touch a file that is open. Nothing is checked until Create. If the
///    encoder refuses the parameters, Create fails and leaves no file.
/// 2. Create starts a fresh encoder. What is written until Close, decoded, is exactly what was handed over.
/// 3. Create makes a new file and never writes through a link. A file or link of that name is removed first, unless
///    another process holds it: then Create returns kNameHeld and touches nothing.
/// 4. The file is held from Create to Release, so that no other process takes it for a leftover.
/// 5. Room for the tags is reserved in Create, so that tagging later moves no sound.
/// 6. Close on a file that is not open does nothing, and so does a second Release.
class CaptureFile {
 public:
  virtual ~CaptureFile() = default;

  virtual void SetFormat(const CaptureFormat& format) = 0;

  /// Creates the file and holds it. The number is the last result that the log names.
  virtual NumberedResult Create(std::string_view path) = 0;
  /// The samples that the prepared format wants.
  [[nodiscard]] virtual PcmFormat FormatValues() const = 0;
  /// Encodes and appends interleaved samples. Fails with the system's reason if the file takes no more.
  virtual base::Result WriteBlock(std::span<const std::int16_t> samples) = 0;
  /// Milliseconds written since Create, the fraction dropped; kept after Close.
  [[nodiscard]] virtual std::int32_t Length() const = 0;
  /// One line that names the prepared format and its main parameters.
  [[nodiscard]] virtual std::string FormatDescription() const = 0;
  /// Finishes the file. Fails with the system's reason if what the encoder still held did not fit.
  virtual base::Result Close() = 0;
  /// Lets go of the finished file, once it has its name or is gone.
  virtual void Release() = 0;
};

}  // namespace kestrune::platform
