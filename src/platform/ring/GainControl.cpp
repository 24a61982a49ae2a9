#include "platform/ring/GainControl.h"

#include <algorithm>
#include <cmath>

namespace kestrune::platform {

namespace {

constexpr double kFullScale = 32768;
constexpr double kLargestSample = 32767;
constexpr double kSmoothingSeconds = 0.05;
constexpr double kPauseDecibels = -70;
constexpr double kMostGain = 40;
constexpr double kLowestLevel = -92;
// The level is examined, and the gain steered, once in this many frames.
constexpr int kFramesBetweenSteering = 32;

double FromDecibels(double decibels) {
  return std::pow(10.0, decibels / 20);
}

}  // namespace

void GainControl::SetFormat(const PcmFormat& format) {
  format_ = format;
  Reset();
}

void GainControl::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  Reset();
}

void GainControl::SetAttackTime(std::int16_t milliseconds) {
  attackMilliseconds_ = std::max<double>(milliseconds, 1);
}

void GainControl::SetHighLevel(std::int16_t decibels) {
  oneLevel_ = std::clamp<double>(decibels, kLowestLevel, 0);
}

void GainControl::SetLowLevel(std::int16_t decibels) {
  otherLevel_ = std::clamp<double>(decibels, kLowestLevel, 0);
}

void GainControl::Reset() {
  meanSquare_ = 0;
  gainDecibels_ = 0;
  gain_ = 1;
  gainStep_ = 0;
  framesToSteering_ = 0;
}

void GainControl::Steer() {
  framesToSteering_ = kFramesBetweenSteering;
  // Starts from the present gain, which the guard against clipping may have lowered.
  const double reached = 20 * std::log10(gain_);
  const double level = 10 * std::log10(std::max(meanSquare_, 1e-12));
  double wanted = gainDecibels_;
  if (level >= kPauseDecibels) {
    const auto [low, high] = std::minmax(oneLevel_, otherLevel_);
    wanted = std::min(std::clamp(level, low, high) - level, kMostGain);
  }
  const double most = 20.0 * kFramesBetweenSteering * 1000 / (attackMilliseconds_ * format_.SampleRate);
  gainDecibels_ = std::clamp(wanted, reached - most, reached + most);
  // When it settles at unity the gain is exactly 1, and the samples pass unchanged.
  if (std::abs(gainDecibels_) < 1e-9) gainDecibels_ = 0;
  gainStep_ = (FromDecibels(gainDecibels_) - gain_) / kFramesBetweenSteering;
  if (gainDecibels_ == 0 && std::abs(gainStep_) < 1e-9) {
    gain_ = 1;
    gainStep_ = 0;
  }
}

void GainControl::Process(std::span<std::int16_t> interleaved) {
  if (!enabled_) return;
  const auto channels = static_cast<std::size_t>(format_.Channels);
  const double share = 1 - std::exp(-1 / (kSmoothingSeconds * format_.SampleRate));
  for (std::size_t at = 0; at + channels <= interleaved.size(); at += channels) {
    const auto frame = interleaved.subspan(at, channels);
    double power = 0;
    double peak = 0;
    for (const std::int16_t sample : frame) {
      const double value = sample;
      power += value * value;
      peak = std::max(peak, std::abs(value));
    }
    meanSquare_ += share * (power / (static_cast<double>(channels) * kFullScale * kFullScale) - meanSquare_);
    if (framesToSteering_ == 0) Steer();
    --framesToSteering_;
    gain_ += gainStep_;
    if (peak * gain_ > kLargestSample) {
      gain_ = kLargestSample / peak;
      gainStep_ = 0;
    }
    for (std::int16_t& sample : frame) sample = static_cast<std::int16_t>(std::lround(sample * gain_));
  }
}

}  // namespace kestrune::platform
