#include "presenters/LevelMeter.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

#include <kissfft/kissfft.hh>

namespace kestrune::presenters {
namespace {

constexpr float kFullScale = 32768;
constexpr int kHoldSteps = 15;
constexpr float kHoldFall = 0.03F;    // of the scale a step, once the hold is over
constexpr float kNeedlePull = 0.35F;  // of the way a step: about 300 ms to the mark
constexpr float kBandFall = 0.12F;
constexpr double kLowestBand = 50;  // Hz

float Height(float amplitude) {
  if (amplitude <= 0) return 0;
  return std::clamp(1 - 20 * std::log10(amplitude) / LevelMeter::kFloorDecibels, 0.0F, 1.0F);
}

}  // namespace

void LevelMeter::NextType() {
  type_ = static_cast<VuType>((static_cast<int>(type_) + 1) % kVuTypes);
  wave_ = {};
  bands_ = {};
}

void LevelMeter::Draw(std::span<const std::int16_t> samples, const platform::PcmFormat& format) {
  channelCount_ = format.Channels == 1 ? 1 : 2;
  samples = samples.first(samples.size() - samples.size() % channelCount_);
  ++draws_;
  // The levels are those of the last tenth of a second; the wave shows all samples.
  const std::size_t tenth = static_cast<std::size_t>(std::max(format.SampleRate, 10) / 10) * channelCount_;
  Measure(samples.last(std::min(tenth, samples.size())));
  if (type_ == VuType::Wave) DrawWave(samples);
  if (type_ == VuType::Spectrum) DrawBands(samples, format.SampleRate);
}

void LevelMeter::Measure(std::span<const std::int16_t> samples) {
  float loudness = 0;
  for (std::size_t c = 0; c < channelCount_; ++c) {
    int peak = 0;
    double power = 0;
    for (std::size_t i = c; i < samples.size(); i += channelCount_) {
      const int sample = samples[i];
      peak = std::max(peak, std::abs(sample));
      power += static_cast<double>(sample) * sample;
    }
    const std::size_t frames = std::max<std::size_t>(samples.size() / channelCount_, 1);
    const auto mean = static_cast<float>(std::sqrt(power / static_cast<double>(frames))) / kFullScale;
    Channel& channel = channels_.at(c);
    channel.Peak = Height(static_cast<float>(peak) / kFullScale);
    channel.Clipped = peak >= 32767;
    channel.Needle += (Height(mean) - channel.Needle) * kNeedlePull;
    if (channel.Peak >= channel.Hold) {
      channel.Hold = channel.Peak;
      channel.HoldSteps = kHoldSteps;
    } else if (channel.HoldSteps > 0) {
      --channel.HoldSteps;
    } else {
      channel.Hold = std::max(channel.Peak, channel.Hold - kHoldFall);
    }
    loudness = std::max(loudness, Height(mean));
  }
  std::shift_left(history_.begin(), history_.end(), 1);
  history_.back() = loudness;
}

void LevelMeter::DrawWave(std::span<const std::int16_t> samples) {
  const std::size_t frames = samples.size() / channelCount_;
  for (std::size_t column = 0; column < kWaveColumns; ++column) {
    const std::size_t from = column * frames / kWaveColumns;
    const std::size_t to = (column + 1) * frames / kWaveColumns;
    int low = 0;
    int high = 0;
    for (std::size_t i = from * channelCount_; i < to * channelCount_; ++i) {
      low = std::min<int>(low, samples[i]);
      high = std::max<int>(high, samples[i]);
    }
    wave_.at(column) = {.Low = static_cast<float>(low) / kFullScale,
                        .High = static_cast<float>(high) / kFullScale};
  }
}

void LevelMeter::DrawBands(std::span<const std::int16_t> samples, std::int32_t rate) {
  const std::size_t frames = std::min(kWindow, samples.size() / channelCount_);
  const auto newest = samples.last(frames * channelCount_);
  std::array<std::complex<float>, kWindow> values{};
  for (std::size_t i = 0; i < frames; ++i) {
    float sum = 0;
    for (std::size_t c = 0; c < channelCount_; ++c) sum += newest[i * channelCount_ + c];
    const float place = static_cast<float>(i) / static_cast<float>(kWindow);
    const float hann = 0.5F - 0.5F * std::cos(2 * std::numbers::pi_v<float> * place);
    values.at(i) = sum / static_cast<float>(channelCount_) / kFullScale * hann;
  }
  static const kissfft<float> kTransform(kWindow, false);
  std::array<std::complex<float>, kWindow> spectrum;
  kTransform.transform(values.data(), spectrum.data());
  const double highest = std::min(16000.0, rate * 0.45);
  const double step = std::pow(std::max(highest / kLowestBand, 2.0), 1.0 / static_cast<double>(kBands));
  const auto bin = [rate](double hertz) {
    const double place = hertz * static_cast<double>(kWindow) / std::max(rate, 1);
    return std::clamp<std::size_t>(static_cast<std::size_t>(place), 1, kWindow / 2 - 1);
  };
  double from = kLowestBand;
  for (float& band : bands_) {
    const double to = from * step;
    float strongest = 0;
    for (std::size_t i = bin(from); i <= std::max(bin(from), bin(to) - 1); ++i) {
      strongest = std::max(strongest, std::abs(spectrum.at(i)));
    }
    // A sine of full scale yields a quarter of the window's length in its bin.
    const float height = Height(strongest * 4 / static_cast<float>(kWindow));
    band = std::max(height, band - kBandFall);
    from = to;
  }
}

}  // namespace kestrune::presenters
