#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/formats/Formats.h"
#include "platform/CaptureFormat.h"

namespace kestrune::config {

/// One recording format: its code, its settings, and what its record asks the encoder for.
struct FormatRow {
  std::string_view Code;       ///< in upper case; in lower case it is the extension of the files
  std::string_view KeyPrefix;  ///< of the keys of its settings
  /// What the record says, unchecked. `scheduled` is the bit rate text of the running schedule entry, such as
  /// "128 Stereo", and absent while none runs.
  platform::CaptureFormat (*Format)(const FormatSettings& settings,
                                    const std::optional<std::string>& scheduled);
};

/// All formats, in the order in which the configuration window lists them.
[[nodiscard]] std::span<const FormatRow> FormatTable();
/// By its exact code; null if there is none.
[[nodiscard]] const FormatRow* FindFormat(std::string_view code);
/// The codes, in the order of the table.
[[nodiscard]] std::vector<std::string_view> FileFormats();

}  // namespace kestrune::config
