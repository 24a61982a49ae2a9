#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "config/formats/Formats.h"
#include "platform/CaptureFile.h"
#include "platform/Mp3Parameters.h"

namespace kestrune::config {

/// Turns the chosen format into calls on a capture slot's file, so that the slot's next capture is written in
/// that format. It owns the one set of MP3 parameters that both slots share.
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

  /// What the slot prepared last says about its format.
  [[nodiscard]] const std::string& FileFormatString() const { return fileFormatText_; }

 private:
  void FillMp3Parameters(const std::optional<std::string>& scheduled);
  void PrepareOgg(platform::CaptureFile& file) const;

  SlotFile slotFile_;
  const FormatSettings& settings_;
  const std::int16_t& captureSlot_;
  ScheduledBitRate scheduledBitRate_;
  platform::Mp3Parameters mp3Parameters_;
  std::string fileFormatText_;
};

}  // namespace kestrune::config
