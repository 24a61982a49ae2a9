#include "platform/pipe/PcmConverter.h"

#include <soxr.h>

#include "base/Ignored.h"

namespace kestrune::platform {

struct PcmConverter::Resampler {
  explicit Resampler(soxr_t handle) : Handle(handle) {}
  ~Resampler() { soxr_delete(Handle); }
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;
  soxr_t Handle;
};

PcmConverter::PcmConverter(const PcmFormat& from, const PcmFormat& to) : from_(from), to_(to) {
  if (from.SampleRate == to.SampleRate) return;
  soxr_error_t error = nullptr;
  soxr_io_spec_t form = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
  form.flags = SOXR_NO_DITHER;
  const soxr_t handle = soxr_create(from.SampleRate, to.SampleRate, static_cast<unsigned>(to.Channels),
                                    &error, &form, nullptr, nullptr);
  if (handle == nullptr) {
    error_ = error != nullptr ? error : "no resampler";
    return;
  }
  resampler_ = std::make_unique<Resampler>(handle);
}

PcmConverter::~PcmConverter() = default;

std::span<const std::int16_t> PcmConverter::Convert(std::span<const std::int16_t> samples) {
  const std::span<const std::int16_t> mixed = ConvertChannels(samples);
  if (resampler_ == nullptr) return mixed;
  const auto channels = static_cast<std::size_t>(to_.Channels);
  const std::size_t frames = mixed.size() / channels;
  // With room for what the filter held back before.
  const std::size_t room =
      frames * static_cast<std::size_t>(to_.SampleRate) / static_cast<std::size_t>(from_.SampleRate) + 4096;
  resampled_.resize(room * channels);
  std::size_t used = 0;
  std::size_t made = 0;
  base::Ignored(
      soxr_process(resampler_->Handle, mixed.data(), frames, &used, resampled_.data(), room, &made));
  return std::span(resampled_).first(made * channels);
}

std::span<const std::int16_t> PcmConverter::ConvertChannels(std::span<const std::int16_t> samples) {
  if (from_.Channels == to_.Channels) return samples;
  mixed_.clear();
  if (to_.Channels == 1) {
    for (std::size_t at = 0; at + 1 < samples.size(); at += 2) {
      mixed_.push_back(static_cast<std::int16_t>((samples[at] + samples[at + 1]) / 2));
    }
  } else {
    for (const std::int16_t sample : samples) mixed_.insert(mixed_.end(), 2, sample);
  }
  return mixed_;
}

}  // namespace kestrune::platform
