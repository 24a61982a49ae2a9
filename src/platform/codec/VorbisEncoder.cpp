#include "platform/codec/VorbisEncoder.h"

#include <algorithm>
#include <random>
#include <string>

#include <fmt/format.h>
#include <vorbis/vorbisenc.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/VorbisComment.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kChunkFrames = 8192;
constexpr float kSampleScale = 1.0F / 32768.0F;

long BitsPerSecond(std::int16_t kilobits) {
  return kilobits == 0 ? -1 : long{kilobits} * 1000;
}

}  // namespace

VorbisEncoder::~VorbisEncoder() {
  if (encoderReady_) {
    ogg_stream_clear(&stream_);
    vorbis_block_clear(&block_);
    vorbis_dsp_clear(&dsp_);
  }
  vorbis_info_clear(&info_);
}

std::int16_t VorbisEncoder::Prepare() {
  if (format_.Frequency <= 0) return kRateRefused;
  if (format_.Channels != 1 && format_.Channels != 2) return kShapeRefused;
  if (format_.Quality < -1 || format_.Quality > 10) return kParameterRefused;
  const bool managed = format_.Quality == -1;
  if (managed) {
    if (format_.NominalBitrate < 0 || format_.MinBitrate < 0 || format_.MaxBitrate < 0)
      return kBitrateRefused;
    // With limits alone the encoder takes a bitrate between them.
    if (format_.NominalBitrate == 0 && format_.MinBitrate == 0 && format_.MaxBitrate == 0)
      return kBitrateRefused;
    if (format_.MaxBitrate != 0 && format_.MinBitrate > format_.MaxBitrate) return kBitrateRefused;
  }

  vorbis_info_init(&info_);
  const int refused =
      managed
          ? vorbis_encode_init(&info_, format_.Channels, format_.Frequency, BitsPerSecond(format_.MaxBitrate),
                               BitsPerSecond(format_.NominalBitrate), BitsPerSecond(format_.MinBitrate))
          : vorbis_encode_init_vbr(&info_, format_.Channels, format_.Frequency,
                                   static_cast<float>(format_.Quality) / 10.0F);
  if (refused != 0) return kEncoderRefused;
  if (vorbis_analysis_init(&dsp_, &info_) != 0) {
    vorbis_dsp_clear(&dsp_);
    return kEncoderRefused;
  }
  vorbis_block_init(&dsp_, &block_);
  ogg_stream_init(&stream_, static_cast<int>(std::random_device{}()));
  encoderReady_ = true;
  return kCreated;
}

bool VorbisEncoder::Begin(DiskFile& file) {
  file_ = &file;
  vorbis_comment none{};
  vorbis_comment_init(&none);
  ogg_packet identity{};
  ogg_packet comment{};
  ogg_packet setup{};
  const bool made = vorbis_analysis_headerout(&dsp_, &none, &identity, &comment, &setup) == 0;
  vorbis_comment_clear(&none);
  if (!made) return false;

  std::string padded = VorbisCommentPacket(TagTexts({}));
  comment.packet = reinterpret_cast<unsigned char*>(padded.data());
  comment.bytes = static_cast<long>(padded.size());
  for (ogg_packet* packet : {&identity, &comment, &setup}) {
    if (ogg_stream_packetin(&stream_, packet) != 0 || !FlushPages()) return false;
  }
  return true;
}

bool VorbisEncoder::Write(std::span<const std::int16_t> samples) {
  const auto channels = static_cast<std::size_t>(format_.Channels);
  while (!samples.empty()) {
    const std::size_t frames = std::min(samples.size() / channels, kChunkFrames);
    float** const planes = vorbis_analysis_buffer(&dsp_, static_cast<int>(frames));
    for (std::size_t channel = 0; channel < channels; ++channel) {
      float* const plane = planes[channel];
      for (std::size_t frame = 0; frame < frames; ++frame) {
        plane[frame] = static_cast<float>(samples[frame * channels + channel]) * kSampleScale;
      }
    }
    samples = samples.subspan(frames * channels);
    if (vorbis_analysis_wrote(&dsp_, static_cast<int>(frames)) != 0 || !DrainEncoder()) {
      failed_ = true;
      return false;
    }
  }
  return true;
}

bool VorbisEncoder::Finish() {
  // A page that did not fit is gone, and the stream cannot go on without it: what is on disk stays as it is.
  if (failed_) return false;
  // The encoder marks its last packet with the true length, which trims the last block on decoding.
  return vorbis_analysis_wrote(&dsp_, 0) == 0 && DrainEncoder() && FlushPages();
}

bool VorbisEncoder::DrainEncoder() {
  while (vorbis_analysis_blockout(&dsp_, &block_) == 1) {
    if (vorbis_analysis(&block_, nullptr) != 0 || vorbis_bitrate_addblock(&block_) != 0) return false;
    ogg_packet packet{};
    while (vorbis_bitrate_flushpacket(&dsp_, &packet) == 1) {
      if (ogg_stream_packetin(&stream_, &packet) != 0) return false;
      ogg_page page{};
      while (ogg_stream_pageout(&stream_, &page) != 0) {
        if (!AppendPage(page)) return false;
      }
    }
  }
  return true;
}

bool VorbisEncoder::AppendPage(const ogg_page& page) {
  std::string bytes(reinterpret_cast<const char*>(page.header), static_cast<std::size_t>(page.header_len));
  bytes.append(reinterpret_cast<const char*>(page.body), static_cast<std::size_t>(page.body_len));
  return file_->Append(AsBytes(bytes));
}

bool VorbisEncoder::FlushPages() {
  ogg_page page{};
  while (ogg_stream_flush(&stream_, &page) != 0) {
    if (!AppendPage(page)) return false;
  }
  return true;
}

std::string FormatDescription(const OggFormat& format) {
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

}  // namespace kestrune::platform
