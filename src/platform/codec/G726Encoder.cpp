#include "platform/codec/G726Encoder.h"

#include <array>

#include <fmt/format.h>
#include <spandsp/telephony.h>
// The library's headers need the one above first.
#include <spandsp/g726.h>

#include "platform/codec/CaptureErrors.h"

namespace kestrune::platform {
namespace {

constexpr std::uint16_t kG726FormatTag = 0x0045;
constexpr std::int32_t kNominalRate = 8000;

/// The fewest samples whose codes fill whole bytes.
std::int64_t BlockSamples(std::int16_t bits) {
  return bits == 2 ? 4 : bits == 4 ? 2 : 8;
}

RiffSound SoundOf(const G726Format& format) {
  RiffSound sound;
  sound.FormatTag = kG726FormatTag;
  sound.SampleRate = static_cast<std::uint32_t>(format.Frequency);
  sound.BitsPerSample = static_cast<std::uint16_t>(format.Bits);
  sound.BlockAlign = static_cast<std::uint16_t>(BlockSamples(format.Bits) * format.Bits / 8);
  // Rounded up: readers divide by the rate to learn the bits, and drop the fraction.
  sound.BytesPerSecond = static_cast<std::uint32_t>((std::int64_t{format.Frequency} * format.Bits + 7) / 8);
  return sound;
}

}  // namespace

void G726Encoder::Release::operator()(g726_state_s* state) const {
  g726_free(state);
}

G726Encoder::G726Encoder(const G726Format& format) : format_(format), riff_(SoundOf(format)) {}

std::int16_t G726Encoder::Prepare() {
  if (format_.Frequency <= 0) return kRateRefused;
  if (format_.Bits < 2 || format_.Bits > 5) return kShapeRefused;
  state_.reset(g726_init(nullptr, format_.Bits * kNominalRate, G726_ENCODING_LINEAR, G726_PACKING_LEFT));
  return state_ != nullptr ? kCreated : kEncoderRefused;
}

bool G726Encoder::Encode(std::span<const std::int16_t> samples) {
  codes_.resize(samples.size() + 8);
  const int bytes =
      g726_encode(state_.get(), codes_.data(), samples.data(), static_cast<int>(samples.size()));
  codes_.resize(static_cast<std::size_t>(bytes));
  failed_ = !riff_.Append(std::as_bytes(std::span(codes_)));
  return !failed_;
}

bool G726Encoder::Write(std::span<const std::int16_t> samples) {
  if (samples.empty()) return true;
  if (!Encode(samples)) return false;
  frames_ += static_cast<std::int64_t>(samples.size());
  lastSample_ = samples.back();
  return true;
}

bool G726Encoder::Finish() {
  const std::int64_t block = BlockSamples(format_.Bits);
  const auto missing = static_cast<std::size_t>((block - frames_ % block) % block);
  std::array<std::int16_t, 8> fill{};
  fill.fill(lastSample_);
  const bool filled = failed_ || missing == 0 || Encode(std::span(fill).first(missing));
  return riff_.Finish(frames_) && filled;
}

std::string FormatDescription(const G726Format& format) {
  return fmt::format("G.726, {}-bit ADPCM, {} Hz, mono", format.Bits, format.Frequency);
}

}  // namespace kestrune::platform
