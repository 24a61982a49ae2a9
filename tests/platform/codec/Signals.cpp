#include "platform/codec/Signals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace kestrune::test {
namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

}  // namespace

std::vector<std::int16_t> MakeMusic(std::size_t frames, std::int32_t rate, std::int16_t channels) {
  std::vector<std::int16_t> samples;
  samples.reserve(frames * static_cast<std::size_t>(channels));
  double phaseA = 0;
  double phaseB = 0;
  for (std::size_t i = 0; i < frames; ++i) {
    const double time = static_cast<double>(i) / rate;
    phaseA += kTwoPi * (330 + 110 * std::sin(time * 2)) / rate;
    phaseB += kTwoPi * (700 + 300 * std::sin(time * 3)) / rate;
    for (std::int16_t channel = 0; channel < channels; ++channel) {
      const double swell = 0.6 + 0.4 * std::sin(time * 5 + channel);
      const double value = channel == 0 ? std::sin(phaseA) + 0.3 * std::sin(phaseB)
                                        : std::sin(phaseB) + 0.3 * std::sin(phaseA * 1.5);
      samples.push_back(static_cast<std::int16_t>(std::lround(11000 * swell * value)));
    }
  }
  return samples;
}

std::vector<std::int16_t> MakeTones(std::size_t frames, std::int32_t rate, std::int16_t channels,
                                    std::span<const double> frequencies) {
  std::vector<std::int16_t> samples;
  for (std::size_t i = 0; i < frames; ++i) {
    double value = 0;
    for (const double frequency : frequencies)
      value += std::sin(kTwoPi * frequency * static_cast<double>(i) / rate);
    const auto sample = std::lround(20000 / static_cast<double>(frequencies.size()) * value);
    samples.insert(samples.end(), static_cast<std::size_t>(channels), static_cast<std::int16_t>(sample));
  }
  return samples;
}

std::vector<std::int16_t> MakeClicks(std::size_t frames, std::int32_t rate, std::int16_t channels) {
  std::vector<std::int16_t> samples(frames * static_cast<std::size_t>(channels));
  const auto period = static_cast<std::size_t>(rate) / 7;
  for (std::size_t i = 0; i < frames; ++i) {
    const std::size_t since = i % period;
    const auto channel = (i / period) % static_cast<std::size_t>(channels);
    // A burst that dies away within a few milliseconds, with another phase each time.
    const double fade = std::exp(-static_cast<double>(since) / (rate * 0.002));
    const double value =
        30000 * fade *
        std::cos(static_cast<double>(since) * (1.1 + 0.1 * static_cast<double>(i / period % 5)));
    samples[i * static_cast<std::size_t>(channels) + channel] = static_cast<std::int16_t>(std::lround(value));
  }
  return samples;
}

std::vector<std::int16_t> MakeNoise(std::size_t samples, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> value(-12000, 12000);
  std::vector<std::int16_t> noise(samples);
  for (std::int16_t& sample : noise) sample = static_cast<std::int16_t>(value(random));
  return noise;
}

double ToneLevel(std::span<const std::int16_t> samples, std::int16_t channels, std::int32_t rate,
                 double frequency) {
  const auto step = static_cast<std::size_t>(channels);
  const std::size_t frames = samples.size() / step;
  double real = 0;
  double imaginary = 0;
  for (std::size_t i = 0; i < frames; ++i) {
    const double window = 1 - std::cos(kTwoPi * static_cast<double>(i) / static_cast<double>(frames));
    const double angle = kTwoPi * frequency * static_cast<double>(i) / rate;
    real += window * samples[i * step] * std::cos(angle);
    imaginary += window * samples[i * step] * std::sin(angle);
  }
  const double amplitude = 2 * std::hypot(real, imaginary) / static_cast<double>(frames);
  return 20 * std::log10(std::max(amplitude, 1e-3) / 32768);
}

double SignalToNoise(std::span<const std::int16_t> input, std::span<const std::int16_t> decoded) {
  const std::size_t count = std::min(input.size(), decoded.size());
  double signal = 1;
  double crossed = 0;
  double power = 1;
  for (std::size_t i = 0; i < count; ++i) {
    signal += double{static_cast<double>(input[i])} * input[i];
    crossed += double{static_cast<double>(input[i])} * decoded[i];
    power += double{static_cast<double>(decoded[i])} * decoded[i];
  }
  // Encoders may make the sound a little softer: what counts is what no gain explains.
  const double gain = crossed / power;
  double noise = 1;
  for (std::size_t i = 0; i < count; ++i) {
    const double difference = input[i] - gain * decoded[i];
    noise += difference * difference;
  }
  return 10 * std::log10(signal / noise);
}

bool WriteBlocks(platform::CaptureFile& file, std::span<const std::int16_t> samples) {
  const platform::PcmFormat format = file.FormatValues();
  const std::size_t block =
      static_cast<std::size_t>(format.SampleRate / 10) * static_cast<std::size_t>(format.Channels);
  while (!samples.empty()) {
    const std::size_t count = std::min(block, samples.size());
    if (!file.WriteBlock(samples.first(count))) return false;
    samples = samples.subspan(count);
  }
  return true;
}

}  // namespace kestrune::test
