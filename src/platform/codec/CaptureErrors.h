#pragma once

#include <cstdint>

namespace kestrune::platform {

/// What EncodedFile::LastResult says. They stand in the user's log as numbers, so they do not change.
inline constexpr std::int16_t kCreated = 0;
/// The file cannot be opened for writing: folder missing, no right, a name that the volume refuses.
inline constexpr std::int16_t kFileNotOpened = -1;
/// The file was opened, but took not even what stands in front of the sound: the disk is full.
inline constexpr std::int16_t kDiskFull = -2;
/// No SetFormat call came before Create.
inline constexpr std::int16_t kNoFormat = -3;
/// The format does not know this sample rate.
inline constexpr std::int16_t kRateRefused = -4;
/// Ogg Vorbis: no bitrate, or none that lies between the limits.
inline constexpr std::int16_t kBitrateRefused = -5;
/// The format does not know this number of channels, or of bits a sample.
inline constexpr std::int16_t kShapeRefused = -6;
/// Another parameter lies outside its range.
inline constexpr std::int16_t kParameterRefused = -7;
/// Every parameter lies in its range, but the encoder does not start with this combination.
inline constexpr std::int16_t kEncoderRefused = -8;

}  // namespace kestrune::platform
