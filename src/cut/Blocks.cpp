#include "cut/Blocks.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

#include <kissfft/kissfft.hh>

namespace kestrune::cut {

namespace {

using Complex = std::complex<float>;

/// A high-pass of second order at 100 Hz.
class HighPass {
 public:
  explicit HighPass(double rate) {
    const double angle = std::tan(std::numbers::pi * 100 / rate);
    const double norm = 1 / (1 + std::numbers::sqrt2 * angle + angle * angle);
    gain_ = static_cast<float>(norm);
    back1_ = static_cast<float>(2 * (angle * angle - 1) * norm);
    back2_ = static_cast<float>((1 - std::numbers::sqrt2 * angle + angle * angle) * norm);
  }

  float operator()(float sample) {
    const float out = gain_ * sample + one_;
    one_ = -2 * gain_ * sample - back1_ * out + two_;
    two_ = gain_ * sample - back2_ * out;
    return out;
  }

 private:
  float gain_ = 1;
  float back1_ = 0;
  float back2_ = 0;
  float one_ = 0;
  float two_ = 0;
};

float Decibels(float power) {
  return std::max(kSilence, 10 * std::log10(power + 1e-10F));
}

/// The first bin of each band, and the bin after the last; each band has one bin at least.
std::array<std::size_t, kBands + 1> BandEdges(std::size_t length, double rate) {
  std::array<std::size_t, kBands + 1> edges{};
  const double top = std::min(14000.0, rate * 0.45);
  const double step = rate / static_cast<double>(length);
  for (std::size_t band = 0; band <= kBands; ++band) {
    const double at = 100 * std::pow(top / 100, static_cast<double>(band) / kBands);
    edges[band] = static_cast<std::size_t>(std::lround(at / step));
    if (band > 0) edges[band] = std::max(edges[band], edges[band - 1] + 1);
  }
  for (std::size_t& edge : edges) edge = std::min(edge, length / 2);
  return edges;
}

}  // namespace

std::vector<Block> MeasureBlocks(const Sound& sound) {
  const auto size = static_cast<std::size_t>(sound.Rate / 50);
  const auto frames = static_cast<std::size_t>(sound.Frames());
  const std::size_t length = size > 512 ? 1024 : 512;
  // Middle is the real part, side the imaginary one: one transform serves both.
  std::vector<Complex> signal(frames);
  HighPass middle(sound.Rate);
  HighPass side(sound.Rate);
  constexpr float kScale = 1.0F / 65536;
  for (std::size_t i = 0; i < frames; ++i) {
    const float left = sound.Samples[i * static_cast<std::size_t>(sound.Channels)];
    const float right = sound.Channels == 2 ? sound.Samples[i * 2 + 1] : left;
    signal[i] = {middle((left + right) * kScale), sound.Channels == 2 ? side((left - right) * kScale) : 0.0F};
  }

  std::vector<float> window(length);
  float windowPower = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const double phase = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(length);
    window[i] = static_cast<float>(0.5 - 0.5 * std::cos(phase));
    windowPower += window[i] * window[i];
  }
  const float scale = 2 / (windowPower * static_cast<float>(length));
  const auto edges = BandEdges(length, sound.Rate);
  kissfft<float> transform(length, false);
  std::vector<Complex> in(length);
  std::vector<Complex> out(length);

  std::vector<Block> blocks(frames / size);
  for (std::size_t b = 0; b < blocks.size(); ++b) {
    Block& block = blocks[b];
    float middlePower = 0;
    float sidePower = 0;
    for (std::size_t i = b * size; i < (b + 1) * size; ++i) {
      middlePower += signal[i].real() * signal[i].real();
      sidePower += signal[i].imag() * signal[i].imag();
    }
    middlePower /= static_cast<float>(size);
    sidePower /= static_cast<float>(size);
    block.Middle = Decibels(middlePower);
    block.Side = Decibels(sidePower);
    block.Level = Decibels(middlePower + sidePower);

    // The window is centred on the block.
    for (std::size_t i = 0; i < length; ++i) {
      const std::size_t at = b * size + size / 2 + i;
      in[i] = at >= length / 2 && at - length / 2 < frames ? signal[at - length / 2] * window[i] : Complex();
    }
    transform.transform(in.data(), out.data());
    for (std::size_t band = 0; band < kBands; ++band) {
      float middleBand = 0;
      float sideBand = 0;
      for (std::size_t bin = edges[band]; bin < edges[band + 1]; ++bin) {
        const Complex low = out[bin];
        const Complex high = std::conj(out[(length - bin) % length]);
        middleBand += std::norm(low + high);
        sideBand += std::norm(low - high);
      }
      block.MiddleBands[band] = Decibels(middleBand * scale / 4);
      block.SideBands[band] = Decibels(sideBand * scale / 4);
    }
  }
  return blocks;
}

}  // namespace kestrune::cut
