#include "platform/codec/WaveEncoder.h"

#include <bit>

#include <fmt/format.h>

#include "platform/codec/CaptureErrors.h"

namespace kestrune::platform {
namespace {

RiffSound SoundOf(const WavFormat& format) {
  RiffSound sound;
  sound.Channels = static_cast<std::uint16_t>(format.Channels);
  sound.SampleRate = static_cast<std::uint32_t>(format.Frequency);
  sound.BitsPerSample = static_cast<std::uint16_t>(format.Bits);
  sound.BlockAlign = static_cast<std::uint16_t>(sound.Channels * sound.BitsPerSample / 8);
  sound.BytesPerSecond = sound.SampleRate * sound.BlockAlign;
  return sound;
}

}  // namespace

WaveEncoder::WaveEncoder(const WavFormat& format) : format_(format), riff_(SoundOf(format)) {}

std::int16_t WaveEncoder::Prepare() {
  if (format_.Frequency <= 0) return kRateRefused;
  if (format_.Channels != 1 && format_.Channels != 2) return kShapeRefused;
  if (format_.Bits != 8 && format_.Bits != 16) return kShapeRefused;
  return kCreated;
}

bool WaveEncoder::Write(std::span<const std::int16_t> samples) {
  bool written = false;
  if (format_.Bits == 16 && std::endian::native == std::endian::little) {
    written = riff_.Append(std::as_bytes(samples));
  } else {
    buffer_.clear();
    for (const std::int16_t sample : samples) {
      const auto bits = static_cast<std::uint16_t>(sample);
      const auto upper = static_cast<std::byte>(bits >> 8);
      if (format_.Bits == 8) {
        buffer_.push_back(upper ^ std::byte{0x80});  // 8-bit samples are unsigned
      } else {
        buffer_.push_back(static_cast<std::byte>(bits & 0xFFU));
        buffer_.push_back(upper);
      }
    }
    written = riff_.Append(buffer_);
  }
  if (written) frames_ += static_cast<std::int64_t>(samples.size()) / format_.Channels;
  return written;
}

std::string FormatDescription(const WavFormat& format) {
  return fmt::format("WAV, {}-bit PCM, {} Hz, {}", format.Bits, format.Frequency,
                     ChannelsText(format.Channels));
}

}  // namespace kestrune::platform
