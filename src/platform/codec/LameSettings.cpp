#include "platform/codec/LameSettings.h"

#include <optional>
#include <span>

#include "platform/codec/CaptureErrors.h"
#include "platform/codec/MpegAudio.h"

namespace kestrune::platform {
namespace {

constexpr std::int16_t kConstant = -1;
constexpr std::int16_t kAverage = 4;

void SayNothing(const char* /*format*/, va_list /*arguments*/) {}

bool InRange(std::int16_t value, std::int16_t first, std::int16_t last) {
  return value >= first && value <= last;
}

bool RangesHold(const Mp3Parameters& parameters) {
  return InRange(parameters.Quality, 0, 9) && InRange(parameters.VBRQuality, 0, 9) &&
         InRange(parameters.VBRCodingMethod, kConstant, kAverage) && InRange(parameters.TypeStereo, 0, 4) &&
         InRange(parameters.ATHControl, 0, 3) && InRange(parameters.DeEmphasis, 0, 2) &&
         parameters.LowPassFilterFreq >= -1 && parameters.HighPassFilterFreq >= -1 &&
         parameters.LowPassFilterWidth >= -1 && parameters.HighPassFilterWidth >= -1;
}

vbr_mode MethodOf(std::int16_t codingMethod) {
  switch (codingMethod) {
    case kConstant:
      return vbr_off;
    case 0:
      return vbr_default;
    case 1:
      return vbr_rh;
    case kAverage:
      return vbr_abr;
    default:
      return vbr_mtrh;
  }
}

void ApplyBitrate(lame_global_flags* lame, const Mp3Parameters& parameters,
                  std::span<const std::int16_t> table) {
  lame_set_VBR(lame, MethodOf(parameters.VBRCodingMethod));
  if (parameters.VBRCodingMethod == kConstant) {
    lame_set_brate(lame, parameters.Bitrate);
    return;
  }
  lame_set_VBR_min_bitrate_kbps(lame, parameters.VBREnforceMinBitRate ? parameters.Bitrate : table.front());
  lame_set_VBR_max_bitrate_kbps(lame,
                                parameters.VBRMaxBitrate != 0 ? parameters.VBRMaxBitrate : table.back());
  lame_set_VBR_hard_min(lame, parameters.VBREnforceMinBitRate ? 1 : 0);
  lame_set_VBR_q(lame, parameters.VBRQuality);
  if (parameters.VBRCodingMethod == kAverage)
    lame_set_VBR_mean_bitrate_kbps(lame, parameters.VBRTargetBitrate);
}

void ApplyStereo(lame_global_flags* lame, const Mp3Parameters& parameters) {
  lame_set_num_channels(lame, parameters.Channels);
  if (parameters.Channels == 1) {
    lame_set_mode(lame, MONO);
    return;
  }
  switch (parameters.TypeStereo) {
    case 1:
      lame_set_mode(lame, STEREO);
      break;
    case 4:
      lame_set_mode(lame, DUAL_CHANNEL);
      break;
    default:
      lame_set_mode(lame, JOINT_STEREO);
      lame_set_force_ms(lame, parameters.TypeStereo == 3 ? 1 : 0);
  }
}

void ApplyFilters(lame_global_flags* lame, const Mp3Parameters& parameters) {
  lame_set_lowpassfreq(lame, parameters.LowPassFilterFreq);
  lame_set_highpassfreq(lame, parameters.HighPassFilterFreq);
  if (parameters.LowPassFilterFreq > 0) lame_set_lowpasswidth(lame, parameters.LowPassFilterWidth);
  if (parameters.HighPassFilterFreq > 0) lame_set_highpasswidth(lame, parameters.HighPassFilterWidth);
}

void ApplyPsychoacoustics(lame_global_flags* lame, const Mp3Parameters& parameters) {
  // Both calls set one and the same switch in LAME, so that only one of them may come.
  if (parameters.ShortBlocks) {
    lame_set_allow_diff_short(lame, parameters.DifferentBlockTypes ? 1 : 0);
  } else {
    lame_set_no_short_blocks(lame, 1);
  }
  lame_set_disable_reservoir(lame, parameters.BitReservoir ? 0 : 1);
  lame_set_ATHonly(lame, parameters.ATHControl == 1 ? 1 : 0);
  lame_set_noATH(lame, parameters.ATHControl == 2 ? 1 : 0);
  lame_set_ATHshort(lame, parameters.ATHControl == 3 ? 1 : 0);
}

}  // namespace

std::int16_t ApplyMp3Parameters(lame_global_flags* lame, const Mp3Parameters& parameters) {
  lame_set_errorf(lame, SayNothing);
  lame_set_debugf(lame, SayNothing);
  lame_set_msgf(lame, SayNothing);

  const auto rate = FindMpegRate(parameters.Frequency);
  if (!rate) return kRateRefused;
  if (parameters.Channels != 1 && parameters.Channels != 2) return kShapeRefused;
  if (!RangesHold(parameters)) return kParameterRefused;

  ApplyBitrate(lame, parameters, MpegBitrates(rate->Version));
  lame_set_in_samplerate(lame, parameters.Frequency);
  lame_set_out_samplerate(lame, parameters.Frequency);
  lame_set_quality(lame, parameters.Quality);
  ApplyStereo(lame, parameters);
  ApplyFilters(lame, parameters);
  ApplyPsychoacoustics(lame, parameters);
  lame_set_error_protection(lame, parameters.IncludeCRC ? 1 : 0);
  lame_set_strict_ISO(lame, parameters.ComplyISO ? 1 : 0);
  lame_set_emphasis(lame, parameters.DeEmphasis == 2 ? 3 : parameters.DeEmphasis);
  // What the file itself puts before the sound: the room for the tag, and the info frame.
  lame_set_write_id3tag_automatic(lame, 0);
  lame_set_bWriteVbrTag(lame, 0);
  return kCreated;
}

}  // namespace kestrune::platform
