#include "platform/codec/CaptureFormat.h"

#include <string_view>

#include <fmt/format.h>

#include "platform/codec/Mp3Bitrates.h"

namespace kestrune::platform {
namespace {

std::string_view ChannelsText(std::int16_t channels) {
  return channels == 1 ? "mono" : "stereo";
}

std::string_view StereoText(const Mp3Parameters& parameters) {
  if (parameters.Channels == 1) return "mono";
  switch (parameters.TypeStereo) {
    case 1:
      return "simple stereo";
    case 3:
      return "forced joint stereo";
    case 4:
      return "dual channel";
    default:
      return "joint stereo";
  }
}

std::string BitrateText(const Mp3Parameters& parameters) {
  if (parameters.VBRCodingMethod == -1) return fmt::format("{} kbit/s constant", parameters.Bitrate);
  std::string text = parameters.VBRCodingMethod == 4
                         ? fmt::format("{} kbit/s average", parameters.VBRTargetBitrate)
                         : fmt::format("variable bitrate quality {}", parameters.VBRQuality);
  if (parameters.VBREnforceMinBitRate) text += fmt::format(", at least {} kbit/s", parameters.Bitrate);
  if (parameters.VBRMaxBitrate != 0) text += fmt::format(", at most {} kbit/s", parameters.VBRMaxBitrate);
  return text;
}

struct ValuesOf {
  PcmFormat operator()(const std::monostate& /*none*/) const { return {}; }
  PcmFormat operator()(const WavFormat& format) const { return {format.Frequency, format.Channels}; }
  PcmFormat operator()(const RawFormat& format) const { return {format.Frequency, format.Channels}; }
  PcmFormat operator()(const VoxFormat& format) const { return {format.Frequency, 1}; }
  PcmFormat operator()(const Mp3Parameters& format) const { return {format.Frequency, format.Channels}; }
  PcmFormat operator()(const OggFormat& format) const { return {format.Frequency, format.Channels}; }
  PcmFormat operator()(const G726Format& format) const { return {format.Frequency, 1}; }
};

struct DescriptionOf {
  std::string operator()(const std::monostate& /*none*/) const { return "No format"; }
  std::string operator()(const WavFormat& format) const {
    return fmt::format("WAV, {}-bit PCM, {} Hz, {}", format.Bits, format.Frequency,
                       ChannelsText(format.Channels));
  }
  std::string operator()(const RawFormat& format) const {
    const std::string_view samples = format.Compression == 2   ? "8-bit A-law"
                                     : format.Compression == 3 ? "8-bit mu-law"
                                                               : "16-bit PCM";
    return fmt::format("RAW, {}, {} Hz, {}", samples, format.Frequency, ChannelsText(format.Channels));
  }
  std::string operator()(const VoxFormat& format) const {
    return fmt::format("VOX, 4-bit ADPCM, {} Hz, mono", format.Frequency);
  }
  std::string operator()(const Mp3Parameters& format) const {
    return fmt::format("MP3, {}, {} Hz, {}", BitrateText(WithRealBitrates(format)), format.Frequency,
                       StereoText(format));
  }
  std::string operator()(const OggFormat& format) const {
    std::string bitrate;
    if (format.Quality != -1) {
      bitrate = fmt::format("quality {}", format.Quality);
    } else {
      bitrate = fmt::format("{} kbit/s", format.NominalBitrate);
      if (format.MinBitrate != 0) bitrate += fmt::format(", at least {} kbit/s", format.MinBitrate);
      if (format.MaxBitrate != 0) bitrate += fmt::format(", at most {} kbit/s", format.MaxBitrate);
    }
    return fmt::format("Ogg Vorbis, {}, {} Hz, {}", bitrate, format.Frequency, ChannelsText(format.Channels));
  }
  std::string operator()(const G726Format& format) const {
    return fmt::format("G.726, {}-bit ADPCM, {} Hz, mono", format.Bits, format.Frequency);
  }
};

}  // namespace

PcmFormat FormatValues(const CaptureFormat& format) {
  return std::visit(ValuesOf{}, format);
}

std::string FormatDescription(const CaptureFormat& format) {
  return std::visit(DescriptionOf{}, format);
}

}  // namespace kestrune::platform
