#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "config/formats/Formats.h"
#include "platform/CaptureFile.h"

namespace kestrune::config {

/// Prepares a capture slot's file with the chosen format, so that the slot's next capture is written in it.
class FileSpecs {
 public:
  /// The MP3 bit rate text of the running schedule entry, such as "128 Stereo"; nothing while none runs.
  using ScheduledBitRate = std::function<std::optional<std::string>()>;

  /// The capture file of slot 0 or 1; null while there is none, and nothing is prepared then.
  using SlotFile = std::function<platform::CaptureFile*(std::int16_t slot)>;

  /// All references must outlive this object; `captureSlot` is the number of the slot being written, 0 or 1.
  FileSpecs(SlotFile slotFile, const FormatSettings& settings, const std::int16_t& captureSlot,
            ScheduledBitRate scheduledBitRate);

  /// Prepares slot 0 or 1; -1 is the slot that is not being written now. Any other slot does nothing. An
  /// unknown format code prepares nothing, and the description is still read.
  void SetFileSpecs(std::int16_t slot);

  /// What a capture that began now would be asked to write; empty for an unknown format code.
  [[nodiscard]] platform::CaptureFormat Format() const;

  /// The description of the slot that was prepared last.
  [[nodiscard]] const std::string& FileFormatString() const { return fileFormatText_; }

 private:
  SlotFile slotFile_;
  const FormatSettings& settings_;
  const std::int16_t& captureSlot_;
  ScheduledBitRate scheduledBitRate_;
  std::string fileFormatText_;
};

}  // namespace kestrune::config
