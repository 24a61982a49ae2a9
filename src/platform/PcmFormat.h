#pragma once

#include <cstdint>

namespace kestrune::platform {

/// The form of the samples that a capture file wants: 16-bit signed, interleaved.
struct PcmFormat {
  std::int32_t SampleRate = 44100;  ///< Hz
  std::int16_t Channels = 2;        ///< 1 or 2

  bool operator==(const PcmFormat&) const = default;
};

}  // namespace kestrune::platform
