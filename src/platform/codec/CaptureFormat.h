#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Mp3Parameters.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

struct WavFormat {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Channels = 0;
  std::int16_t Bits = 0;  ///< 8 or 16
};

struct RawFormat {
  std::int16_t Compression = 0;  ///< 1 16-bit PCM, 2 A-law, 3 mu-law; 0 counts as 1
  std::int32_t Frequency = 0;    ///< Hz
  std::int16_t Channels = 0;
  std::int16_t Bits = 0;  ///< of the samples handed over: 16
};

struct VoxFormat {
  std::int32_t Frequency = 0;  ///< Hz
};

struct OggFormat {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Channels = 0;
  std::int16_t NominalBitrate = 0;  ///< kbit/s
  std::int16_t MinBitrate = 0;      ///< kbit/s, 0 no limit
  std::int16_t MaxBitrate = 0;      ///< kbit/s, 0 no limit
  std::int16_t Quality = -1;        ///< 0 to 10, or -1: managed by bitrate
};

struct G726Format {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Bits = 0;       ///< 2 to 5 a sample
};

/// What a SetFormat call asked for, as it came.
using CaptureFormat =
    std::variant<std::monostate, WavFormat, RawFormat, VoxFormat, Mp3Parameters, OggFormat, G726Format>;

/// The samples that the format wants; VOX and G.726 are mono.
[[nodiscard]] PcmFormat FormatValues(const CaptureFormat& format);

/// One line for the user, such as "MP3, 160 kbit/s constant, 44100 Hz, joint stereo".
[[nodiscard]] std::string FormatDescription(const CaptureFormat& format);

}  // namespace kestrune::platform
