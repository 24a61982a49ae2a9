#pragma once

#include "platform/codec/Mending.h"

namespace kestrune::platform {

/// An MP3 file of ours ends with its last whole frame, or with the tag after it, and its info frame says how many there
/// are.
[[nodiscard]] MendedCapture MendMp3(DiskFile& file, const std::stop_token& stop);

}  // namespace kestrune::platform
