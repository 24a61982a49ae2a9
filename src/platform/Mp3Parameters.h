#pragma once

#include <cstdint>

namespace kestrune::platform {

/// What an MP3 encoder is asked for. Values outside their ranges are allowed here; see LameSettings.h.
struct Mp3Parameters {
  std::int16_t VBRMaxBitrate = 0;     ///< kbit/s
  std::int16_t VBRQuality = 0;        ///< 0 best to 9
  std::int16_t VBRCodingMethod = -1;  ///< -1 constant, 0 default, 1 old, 2 new, 3 mtrh, 4 average bitrate
  std::int16_t VBRTargetBitrate = 0;  ///< kbit/s, for average bitrate
  std::int16_t TypeStereo = 0;        ///< 1 simple, 2 joint, 3 forced joint, 4 dual channel
  std::int16_t Quality = 0;           ///< 0 best to 9 fastest
  bool VBRHeader = false;
  bool BitReservoir = false;
  bool DifferentBlockTypes = false;
  bool ShortBlocks = false;
  std::int16_t DeEmphasis = 0;  ///< 0 none, 1 50/15 microseconds, 2 CCITT J.17
  bool ComplyISO = false;
  bool VBREnforceMinBitRate = false;
  std::int16_t ATHControl = 0;           ///< 0 default, 1 ATH only, 2 no ATH, 3 ATH for short blocks only
  std::int16_t LowPassFilterFreq = -1;   ///< Hz, -1 no filter
  std::int16_t HighPassFilterFreq = -1;  ///< Hz, -1 no filter
  std::int16_t LowPassFilterWidth = 0;   ///< Hz
  std::int16_t HighPassFilterWidth = 0;  ///< Hz
  bool IncludeCRC = false;
  std::int32_t Frequency = 44100;  ///< Hz
  std::int16_t Channels = 2;
  std::int16_t Bitrate = 0;  ///< kbit/s, 0 is the encoder's own choice

  [[nodiscard]] std::int64_t BytesPerSecond() const {
    std::int64_t kilobits = VBRMaxBitrate;
    if (VBRCodingMethod == 4) kilobits = VBRTargetBitrate;
    if (VBRCodingMethod == -1) kilobits = Bitrate != 0 ? Bitrate : Channels == 1 ? 64 : 128;
    return kilobits * 1000 / 8;
  }
  bool operator==(const Mp3Parameters&) const = default;
};

}  // namespace kestrune::platform
