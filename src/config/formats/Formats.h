#pragma once

#include <cstdint>
#include <string>

namespace kestrune::config {

/// The settings of each recording format, with the defaults of a fresh installation. Frequencies in Hz,
/// bitrates in kbit/s. Nothing is checked: what the user saved is passed on to the encoder as it is.
struct Format726 {
  std::int32_t Frequency = 44100;
  std::int16_t Bits = 4;  ///< bits a sample, 2 to 5

  bool operator==(const Format726&) const = default;
};

struct FormatFLAC {
  std::int16_t Level = 5;  ///< 0 fastest to 8, smallest

  bool operator==(const FormatFLAC&) const = default;
};

struct FormatMP3 {
  std::int32_t Frequency = 44100;
  std::int16_t Bitrate = 160;
  std::int16_t Channels = 2;  ///< 1 or 2
  std::int16_t Quality = 4;   ///< 0 best to 9 fastest
  bool HighPassFilter = false;
  std::int16_t HighPassFilterFreq = 30;  ///< Hz
  std::int16_t HighPassFilterWidth = 5;  ///< Hz
  bool LowPassFilter = false;
  std::int16_t LowPassFilterFreq = 16000;  ///< Hz
  std::int16_t LowPassFilterWidth = 500;   ///< Hz
  std::int16_t VBRCodingMethod = -1;       ///< -1 is constant bitrate
  std::int16_t VBRMaxBitrate = 160;
  std::int16_t VBRQuality = 4;
  bool VBRHeader = true;
  bool VBREnforceMinBitRate = false;
  std::int16_t VBRTargetBitrate = 128;
  bool IncludeCRC = false;
  bool ComplyISO = false;
  bool DifferentBlockTypes = false;
  bool ShortBlocks = false;
  bool BitReservoir = false;
  std::int16_t ATHControl = 0;
  std::int16_t DeEmphasis = 0;
  std::int16_t TypeStereo = 2;

  bool operator==(const FormatMP3&) const = default;
};

struct FormatOGG {
  std::int16_t Bitrate = 160;
  std::int16_t MinBitrate = 128;
  std::int16_t MaxBitrate = 192;
  bool VbrEnabled = false;
  std::int16_t Quality = 4;  ///< 0 to 10
  bool QualityEnabled = false;

  bool operator==(const FormatOGG&) const = default;
};

struct FormatOPUS {
  std::int16_t Bitrate = 128;  ///< 32 to 256
  bool Voice = false;

  bool operator==(const FormatOPUS&) const = default;
};

struct FormatRAW {
  std::int32_t Frequency = 44100;
  std::int16_t Compression = 0;  ///< 1 16-bit PCM, 2 A-law, 3 mu-law; 0 until the user has chosen
  std::int16_t Channels = 2;

  bool operator==(const FormatRAW&) const = default;
};

struct FormatVOX {
  std::int32_t Frequency = 44100;

  bool operator==(const FormatVOX&) const = default;
};

struct FormatWAV {
  std::int32_t Frequency = 44100;
  std::int16_t Channels = 2;
  std::int16_t Bits = 16;  ///< bits a sample, 8 or 16

  bool operator==(const FormatWAV&) const = default;
};

/// The chosen format and the records of all: everything that the preparation of a capture file needs.
struct FormatSettings {
  std::string FileFormat = "MP3";  ///< a code of the format table; anything else prepares no format

  // The type names need their namespace here, as the fields bear the same names.
  config::Format726 Format726;
  config::FormatMP3 FormatMP3;
  config::FormatOGG FormatOGG;
  config::FormatRAW FormatRAW;
  config::FormatVOX FormatVOX;
  config::FormatWAV FormatWAV;
  config::FormatFLAC FormatFLAC;
  config::FormatOPUS FormatOPUS;

  bool operator==(const FormatSettings&) const = default;
};

}  // namespace kestrune::config
