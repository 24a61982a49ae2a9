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

  /// In silence its memory fades to numbers so small that processors are slow with them.
  void Settle() {
    if (std::abs(one_) < 1e-15F) one_ = 0;
    if (std::abs(two_) < 1e-15F) two_ = 0;
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

class BlockMeter::State {
 public:
  State(int rate, int channels)
      : channels_(static_cast<std::size_t>(channels)),
        size_(static_cast<std::size_t>(rate / 50)),
        length_(size_ > 512 ? 1024 : 512),
        before_(length_ > size_ ? length_ / 2 - size_ / 2 : 0),
        wanted_(before_ + std::max(size_, size_ / 2 + length_ / 2)),
        edges_(BandEdges(length_, rate)),
        middle_(rate),
        side_(rate),
        transform_(length_, false),
        signal_(wanted_),
        in_(length_),
        out_(length_),
        window_(length_),
        filled_(before_) {
    float power = 0;
    for (std::size_t i = 0; i < length_; ++i) {
      const double phase =
          2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(length_);
      window_[i] = static_cast<float>(0.5 - 0.5 * std::cos(phase));
      power += window_[i] * window_[i];
    }
    scale_ = 2 / (power * static_cast<float>(length_));
  }

  void Hear(std::span<const std::int16_t> interleaved, std::vector<Block>& blocks) {
    while (!interleaved.empty()) {
      const std::size_t frames = std::min(interleaved.size() / channels_, wanted_ - filled_);
      if (frames == 0) return;
      Filter(interleaved.first(frames * channels_));
      interleaved = interleaved.subspan(frames * channels_);
      if (filled_ < wanted_) return;
      blocks.push_back(Measure());
      std::copy(signal_.begin() + static_cast<std::ptrdiff_t>(size_), signal_.end(), signal_.begin());
      filled_ -= size_;
      middle_.Settle();
      side_.Settle();
    }
  }

  [[nodiscard]] int Ahead() const { return static_cast<int>(wanted_ - before_ - size_); }

 private:
  /// Middle is the real part, side the imaginary one: one transform serves both.
  void Filter(std::span<const std::int16_t> interleaved) {
    constexpr float kScale = 1.0F / 65536;
    if (channels_ == 1) {
      for (const std::int16_t sample : interleaved) {
        signal_[filled_++] = {middle_(2.0F * static_cast<float>(sample) * kScale), 0.0F};
      }
      return;
    }
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
      const float left = interleaved[i];
      const float right = interleaved[i + 1];
      signal_[filled_++] = {middle_((left + right) * kScale), side_((left - right) * kScale)};
    }
  }

  Block Measure() {
    Block block;
    float middlePower = 0;
    float sidePower = 0;
    for (std::size_t i = before_; i < before_ + size_; ++i) {
      middlePower += signal_[i].real() * signal_[i].real();
      sidePower += signal_[i].imag() * signal_[i].imag();
    }
    middlePower /= static_cast<float>(size_);
    sidePower /= static_cast<float>(size_);
    block.Middle = Decibels(middlePower);
    block.Side = Decibels(sidePower);
    block.Level = Decibels(middlePower + sidePower);

    // The window is centred on the block.
    const std::size_t from = before_ + size_ / 2 - length_ / 2;
    for (std::size_t i = 0; i < length_; ++i) in_[i] = signal_[from + i] * window_[i];
    transform_.transform(in_.data(), out_.data());
    for (std::size_t band = 0; band < kBands; ++band) {
      float middleBand = 0;
      float sideBand = 0;
      for (std::size_t bin = edges_[band]; bin < edges_[band + 1]; ++bin) {
        const Complex low = out_[bin];
        const Complex high = std::conj(out_[(length_ - bin) % length_]);
        middleBand += std::norm(low + high);
        sideBand += std::norm(low - high);
      }
      block.MiddleBands[band] = Decibels(middleBand * scale_ / 4);
      block.SideBands[band] = Decibels(sideBand * scale_ / 4);
    }
    return block;
  }

  std::size_t channels_;
  std::size_t size_;    ///< frames of a block
  std::size_t length_;  ///< of the transform
  std::size_t before_;  ///< frames before a block that its window reaches
  std::size_t wanted_;  ///< frames from there to the end of the block and of its window
  std::array<std::size_t, kBands + 1> edges_;
  HighPass middle_;
  HighPass side_;
  kissfft<float> transform_;
  std::vector<Complex> signal_;
  std::vector<Complex> in_;
  std::vector<Complex> out_;
  std::vector<float> window_;
  std::size_t filled_;
  float scale_ = 1;
};

BlockMeter::BlockMeter(int rate, int channels) : state_(std::make_unique<State>(rate, channels)) {}
BlockMeter::BlockMeter(BlockMeter&&) noexcept = default;
BlockMeter& BlockMeter::operator=(BlockMeter&&) noexcept = default;
BlockMeter::~BlockMeter() = default;

void BlockMeter::Hear(std::span<const std::int16_t> interleaved, std::vector<Block>& blocks) {
  state_->Hear(interleaved, blocks);
}

int BlockMeter::Ahead() const {
  return state_->Ahead();
}

}  // namespace kestrune::cut
