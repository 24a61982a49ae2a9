#include "config/formats/FormatTable.h"

#include <algorithm>
#include <cmath>

#include "base/Numbers.h"

namespace kestrune::config {
namespace {

using platform::CaptureFormat;
using Scheduled = std::optional<std::string>;

CaptureFormat Mp3(const FormatSettings& settings, const Scheduled& scheduled) {
  constexpr std::int16_t kNoFilter = -1;
  const FormatMP3& record = settings.FormatMP3;
  platform::Mp3Parameters format;
  format.VBRTargetBitrate = record.VBRTargetBitrate;
  format.ATHControl = record.ATHControl;
  format.Bitrate = record.Bitrate;
  format.BitReservoir = record.BitReservoir;
  format.DifferentBlockTypes = record.DifferentBlockTypes;
  format.Channels = record.Channels;
  format.DeEmphasis = record.DeEmphasis;
  format.Quality = record.Quality;
  format.IncludeCRC = record.IncludeCRC;
  format.Frequency = record.Frequency;
  format.HighPassFilterFreq = record.HighPassFilter ? record.HighPassFilterFreq : kNoFilter;
  format.HighPassFilterWidth = record.HighPassFilterWidth;
  format.LowPassFilterFreq = record.LowPassFilter ? record.LowPassFilterFreq : kNoFilter;
  format.LowPassFilterWidth = record.LowPassFilterWidth;
  format.ShortBlocks = record.ShortBlocks;
  format.ComplyISO = record.ComplyISO;
  format.VBREnforceMinBitRate = record.VBREnforceMinBitRate;
  format.TypeStereo = record.TypeStereo;
  format.VBRMaxBitrate = record.VBRMaxBitrate;
  format.VBRCodingMethod = record.VBRCodingMethod;
  format.VBRQuality = record.VBRQuality;
  format.VBRHeader = record.VBRHeader;

  if (scheduled) {
    format.Bitrate = base::ToInt16(std::trunc(base::LeadingNumber(*scheduled))).value_or(0);
    format.Channels = scheduled->find("Mono") != std::string::npos ? 1 : 2;
  }
  return format;
}

// Always stereo at the stored bitrate: a schedule's bit rate text is for MP3 alone.
CaptureFormat Ogg(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  const FormatOGG& record = settings.FormatOGG;
  platform::OggFormat format{.Frequency = 44100, .Channels = 2};
  if (record.QualityEnabled) {
    format.NominalBitrate = 128;
    format.Quality = record.Quality;
    return format;
  }
  format.NominalBitrate = record.Bitrate;
  if (record.VbrEnabled) {
    format.MinBitrate = record.MinBitrate;
    format.MaxBitrate = record.MaxBitrate;
  }
  return format;
}

CaptureFormat Wav(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  const FormatWAV& record = settings.FormatWAV;
  return platform::WavFormat{.Frequency = record.Frequency, .Channels = record.Channels, .Bits = record.Bits};
}

CaptureFormat Raw(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  const FormatRAW& record = settings.FormatRAW;
  return platform::RawFormat{.Compression = record.Compression,
                             .Frequency = record.Frequency,
                             .Channels = record.Channels,
                             .Bits = 16};
}

CaptureFormat Vox(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  return platform::VoxFormat{.Frequency = settings.FormatVOX.Frequency};
}

CaptureFormat G726(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  return platform::G726Format{.Frequency = settings.Format726.Frequency, .Bits = settings.Format726.Bits};
}

// Like Ogg Vorbis always stereo at 44100 Hz.
CaptureFormat Flac(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  return platform::FlacFormat{.Frequency = 44100, .Channels = 2, .Level = settings.FormatFLAC.Level};
}

// Stereo at the one rate that Opus has, so that nothing is converted on the way into the file.
CaptureFormat Opus(const FormatSettings& settings, const Scheduled& /*scheduled*/) {
  const FormatOPUS& record = settings.FormatOPUS;
  return platform::OpusFormat{
      .Frequency = 48000, .Channels = 2, .Bitrate = record.Bitrate, .Voice = record.Voice};
}

constexpr FormatRow kFormats[] = {
    {"MP3", "MP3_", Mp3},   {"WAV", "WAV_", Wav}, {"VOX", "VOX_", Vox},    {"RAW", "RAW_", Raw},
    {"G726", "726_", G726}, {"OGG", "OGG_", Ogg}, {"FLAC", "FLAC_", Flac}, {"OPUS", "OPUS_", Opus},
};

}  // namespace

std::span<const FormatRow> FormatTable() {
  return kFormats;
}

const FormatRow* FindFormat(std::string_view code) {
  const auto* const found = std::ranges::find(kFormats, code, &FormatRow::Code);
  return found != std::end(kFormats) ? found : nullptr;
}

std::vector<std::string_view> FileFormats() {
  std::vector<std::string_view> codes;
  for (const FormatRow& row : kFormats) codes.push_back(row.Code);
  return codes;
}

}  // namespace kestrune::config
