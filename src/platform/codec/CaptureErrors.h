#pragma once

#include <cstdint>
#include <string_view>

namespace kestrune::platform {

/// The numbers of EncodedFile::Create, besides kNameHeld. The user's log names them, so they do not change.
inline constexpr std::int16_t kCreated = 0;
/// The file cannot be opened for writing: folder missing, no right, a name that the volume refuses.
inline constexpr std::int16_t kFileNotOpened = -1;
/// The file was opened, but not even its header fitted: the disk is full.
inline constexpr std::int16_t kDiskFull = -2;
/// No SetFormat call came before Create.
inline constexpr std::int16_t kNoFormat = -3;
/// The format does not know this sample rate.
inline constexpr std::int16_t kRateRefused = -4;
/// Ogg Vorbis: no bitrate, or none that lies between the limits. Opus: one outside its range.
inline constexpr std::int16_t kBitrateRefused = -5;
/// The format does not know this number of channels, or of bits a sample.
inline constexpr std::int16_t kShapeRefused = -6;
/// Another parameter lies outside its range.
inline constexpr std::int16_t kParameterRefused = -7;
/// Every parameter lies in its range, but the encoder does not start with this combination.
inline constexpr std::int16_t kEncoderRefused = -8;

/// What a number says about the format, in words; the others come with the system's reason.
[[nodiscard]] constexpr std::string_view MeaningOf(std::int16_t number) {
  switch (number) {
    case kNoFormat:
      return "no format is set";
    case kRateRefused:
      return "the format does not have this sample rate";
    case kBitrateRefused:
      return "the format does not have this bit rate at this sample rate";
    case kShapeRefused:
      return "the format does not have this number of channels or bits";
    case kParameterRefused:
      return "a parameter of the format is out of range";
    default:
      return "the encoder refuses this combination of parameters";
  }
}

}  // namespace kestrune::platform
