#pragma once

#include "platform/codec/Mending.h"

namespace kestrune::platform {

/// A FLAC file of ours ends with its last whole block, and its facts say how long it is. The checksum of all its samples
/// is then unknown, unless it was finished.
[[nodiscard]] MendedCapture MendFlac(DiskFile& file, const std::stop_token& stop);

}  // namespace kestrune::platform
