#include "platform/codec/FlacEncoder.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include <fmt/format.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/CaptureErrors.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kChunkSamples = 16384;
constexpr std::uint32_t kBits = 16;

}  // namespace

std::int16_t FlacEncoder::Prepare() {
  if (format_.Frequency <= 0) return kRateRefused;
  if (format_.Channels != 1 && format_.Channels != 2) return kShapeRefused;
  if (format_.Level < 0 || format_.Level > kMostFlacLevel) return kParameterRefused;
  encoder_.reset(FLAC__stream_encoder_new());
  if (encoder_ == nullptr) return kEncoderRefused;
  FLAC__StreamEncoder* const encoder = encoder_.get();
  const bool set =
      FLAC__stream_encoder_set_channels(encoder, static_cast<std::uint32_t>(format_.Channels)) != 0 &&
      FLAC__stream_encoder_set_bits_per_sample(encoder, kBits) != 0 &&
      FLAC__stream_encoder_set_sample_rate(encoder, static_cast<std::uint32_t>(format_.Frequency)) != 0 &&
      FLAC__stream_encoder_set_compression_level(encoder, static_cast<std::uint32_t>(format_.Level)) != 0;
  const auto ready = FLAC__stream_encoder_init_stream(encoder, TakeBlock, nullptr, nullptr, TakeFacts, this);
  if (ready == FLAC__STREAM_ENCODER_INIT_STATUS_INVALID_SAMPLE_RATE ||
      ready == FLAC__STREAM_ENCODER_INIT_STATUS_NOT_STREAMABLE) {
    return kRateRefused;
  }
  if (!set || ready != FLAC__STREAM_ENCODER_INIT_STATUS_OK) return kEncoderRefused;
  facts_.BlockFrames = static_cast<std::uint16_t>(FLAC__stream_encoder_get_blocksize(encoder));
  facts_.SampleRate = format_.Frequency;
  facts_.Channels = format_.Channels;
  return kCreated;
}

bool FlacEncoder::Begin(DiskFile& file) {
  file_ = &file;
  return file.Append(AsBytes(FlacStart(facts_) + FlacTagRoom(TagTexts({}))));
}

bool FlacEncoder::Write(std::span<const std::int16_t> samples) {
  const auto channels = static_cast<std::size_t>(format_.Channels);
  while (!samples.empty()) {
    const std::size_t count = std::min(samples.size(), kChunkSamples);
    wide_.assign(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
    samples = samples.subspan(count);
    const auto frames = static_cast<std::uint32_t>(count / channels);
    if (FLAC__stream_encoder_process_interleaved(encoder_.get(), wide_.data(), frames) == 0) {
      failed_ = true;
      return false;
    }
  }
  return true;
}

FLAC__StreamEncoderWriteStatus FlacEncoder::TakeBlock(const FLAC__StreamEncoder* /*encoder*/,
                                                      const FLAC__byte* bytes, std::size_t size,
                                                      std::uint32_t frames, std::uint32_t /*number*/,
                                                      void* self) {
  // What precedes the sound is ours to write.
  if (frames == 0) return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
  auto& own = *static_cast<FlacEncoder*>(self);
  if (!own.file_->Append(std::as_bytes(std::span(bytes, size))))
    return FLAC__STREAM_ENCODER_WRITE_STATUS_FATAL_ERROR;
  FlacFacts& facts = own.facts_;
  const auto block = static_cast<std::uint32_t>(size);
  facts.SmallestBlock = facts.Frames == 0 ? block : std::min(facts.SmallestBlock, block);
  facts.LargestBlock = std::max(facts.LargestBlock, block);
  facts.Frames += frames;
  return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
}

void FlacEncoder::TakeFacts(const FLAC__StreamEncoder* /*encoder*/, const FLAC__StreamMetadata* metadata,
                            void* self) {
  std::copy_n(metadata->data.stream_info.md5sum, std::size(metadata->data.stream_info.md5sum),
              static_cast<FlacEncoder*>(self)->facts_.Md5.begin());
}

bool FlacEncoder::Finish() {
  // After a full disk the end is where the disk ended, and the checksum of all the samples is not known.
  if (!failed_) failed_ = FLAC__stream_encoder_finish(encoder_.get()) == 0;
  return file_->WriteAt(0, AsBytes(FlacStart(facts_))) && !failed_;
}

std::string FormatDescription(const FlacFormat& format) {
  return fmt::format("FLAC, level {}, {} Hz, {}", format.Level, format.Frequency,
                     ChannelsText(format.Channels));
}

}  // namespace kestrune::platform
