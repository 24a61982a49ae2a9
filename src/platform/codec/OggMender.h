#pragma once

#include "platform/codec/Mending.h"

namespace kestrune::platform {

/// A file of Ogg Vorbis or Opus ends with the last page that is whole and ends a packet; that page says that it is the
/// last one.
[[nodiscard]] MendedCapture MendOgg(DiskFile& file, const std::stop_token& stop);

}  // namespace kestrune::platform
