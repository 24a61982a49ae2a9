#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <variant>

#include "platform/Mp3Parameters.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

struct WavFormat {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Channels = 0;
  std::int16_t Bits = 0;  ///< 8 or 16

  [[nodiscard]] std::int64_t BytesPerSecond() const { return std::int64_t{Frequency} * Channels * Bits / 8; }
  bool operator==(const WavFormat&) const = default;
};

struct RawFormat {
  std::int16_t Compression = 0;  ///< 1 16-bit PCM, 2 A-law, 3 mu-law; 0 counts as 1
  std::int32_t Frequency = 0;    ///< Hz
  std::int16_t Channels = 0;
  std::int16_t Bits = 0;  ///< of the samples handed over: always 16

  [[nodiscard]] std::int64_t BytesPerSecond() const {
    return std::int64_t{Frequency} * Channels * (Compression > 1 ? 1 : 2);
  }
  bool operator==(const RawFormat&) const = default;
};

/// Always mono.
struct VoxFormat {
  std::int32_t Frequency = 0;  ///< Hz

  /// Four bits a sample.
  [[nodiscard]] std::int64_t BytesPerSecond() const { return Frequency / 2; }
  bool operator==(const VoxFormat&) const = default;
};

struct OggFormat {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Channels = 0;
  std::int16_t NominalBitrate = 0;  ///< kbit/s
  std::int16_t MinBitrate = 0;      ///< kbit/s, 0 no limit
  std::int16_t MaxBitrate = 0;      ///< kbit/s, 0 no limit
  std::int16_t Quality = -1;        ///< 0 to 10, or -1: managed by bitrate

  /// By quality, the rates that the encoder's documentation names for two channels at 44.1 kHz.
  [[nodiscard]] std::int64_t BytesPerSecond() const {
    constexpr std::array<std::int64_t, 11> kByQuality{64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 500};
    const std::int64_t kilobits =
        Quality < 0 ? NominalBitrate : kByQuality.at(static_cast<std::size_t>(std::min<int>(Quality, 10)));
    return kilobits * 1000 / 8;
  }
  bool operator==(const OggFormat&) const = default;
};

/// Always mono.
struct G726Format {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Bits = 0;       ///< 2 to 5 a sample

  [[nodiscard]] std::int64_t BytesPerSecond() const { return std::int64_t{Frequency} * Bits / 8; }
  bool operator==(const G726Format&) const = default;
};

inline constexpr std::int16_t kMostFlacLevel = 8;

/// Always 16 bits a sample.
struct FlacFormat {
  std::int32_t Frequency = 0;  ///< Hz
  std::int16_t Channels = 0;
  std::int16_t Level = 0;  ///< 0 fastest to kMostFlacLevel, smallest

  /// Of sound that cannot be compressed, such as noise.
  [[nodiscard]] std::int64_t BytesPerSecond() const { return std::int64_t{Frequency} * Channels * 2; }
  bool operator==(const FlacFormat&) const = default;
};

inline constexpr std::int16_t kLeastOpusBitrate = 32;
inline constexpr std::int16_t kMostOpusBitrate = 256;

struct OpusFormat {
  std::int32_t Frequency = 0;  ///< Hz of the samples handed over, 8000 to 48000; the file's own is 48000
  std::int16_t Channels = 0;
  std::int16_t Bitrate = 0;  ///< kbit/s on average, kLeastOpusBitrate to kMostOpusBitrate
  bool Voice = false;        ///< made for speech instead of music

  [[nodiscard]] std::int64_t BytesPerSecond() const { return std::int64_t{Bitrate} * 1000 / 8; }
  bool operator==(const OpusFormat&) const = default;
};

/// What a capture file is asked to write; the empty one is no format. Each alternative has a Frequency in Hz
/// and, unless it is always mono, Channels, and about how many bytes a second of sound takes: exact for a fixed rate,
/// else the nominal or the highest one.
using CaptureFormat = std::variant<std::monostate, WavFormat, RawFormat, VoxFormat, Mp3Parameters, OggFormat,
                                   G726Format, FlacFormat, OpusFormat>;

/// As each format has it; 0 for no format.
[[nodiscard]] inline std::int64_t BytesPerSecond(const CaptureFormat& format) {
  return std::visit(
      []<typename Format>(const Format& chosen) -> std::int64_t {
        if constexpr (std::same_as<Format, std::monostate>) {
          return 0;
        } else {
          return chosen.BytesPerSecond();
        }
      },
      format);
}

/// The samples that the format takes.
[[nodiscard]] inline PcmFormat FormatValues(const CaptureFormat& format) {
  return std::visit(
      []<typename Format>(const Format& chosen) -> PcmFormat {
        if constexpr (std::same_as<Format, std::monostate>) {
          return {};
        } else if constexpr (requires { chosen.Channels; }) {
          return {chosen.Frequency, chosen.Channels};
        } else {
          return {chosen.Frequency, 1};
        }
      },
      format);
}

}  // namespace kestrune::platform
