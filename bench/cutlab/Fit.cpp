#include "cutlab/Fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <span>

#include "cut/Choice.h"
#include "cut/Listener.h"

namespace kestrune::cutlab {

namespace {

using cut::kFeatures;
using cut::kHidden;
using cut::kLags;
using receiver::Dice;

double Gauss(Dice& dice) {
  return std::sqrt(-2 * std::log(1 - dice.Fraction())) * std::cos(2 * std::numbers::pi * dice.Fraction());
}

/// The weights as the fit turns them: the numbers of one feature side by side.
constexpr std::size_t kPerFeature = kHidden + 1;
constexpr std::size_t kParameters = kFeatures * kPerFeature + 2 * kHidden;
using Parameters = std::array<float, kParameters>;

struct Activations {
  std::array<float, kHidden> Hidden{};
  float Score = 0;
};

Activations Forward(const Parameters& parameters, const cut::Features& features) {
  Activations result;
  std::array<float, kHidden> sum{};
  for (std::size_t h = 0; h < kHidden; ++h) sum[h] = parameters[kFeatures * kPerFeature + h];
  for (std::size_t i = 0; i < kFeatures; ++i) {
    const float* row = &parameters[i * kPerFeature];
    const float value = features[i];
    for (std::size_t h = 0; h < kHidden; ++h) sum[h] += row[h] * value;
    result.Score += row[kHidden] * value;
  }
  for (std::size_t h = 0; h < kHidden; ++h) {
    result.Hidden[h] = std::tanh(sum[h]);
    result.Score += parameters[kFeatures * kPerFeature + kHidden + h] * result.Hidden[h];
  }
  return result;
}

void Backward(const Parameters& parameters, const cut::Features& features, const Activations& activations,
              float slope, Parameters& gradient) {
  std::array<float, kHidden> back{};
  for (std::size_t h = 0; h < kHidden; ++h) {
    const std::size_t bias = kFeatures * kPerFeature + h;
    gradient[bias + kHidden] += slope * activations.Hidden[h];
    back[h] = slope * parameters[bias + kHidden] * (1 - activations.Hidden[h] * activations.Hidden[h]);
    gradient[bias] += back[h];
  }
  for (std::size_t i = 0; i < kFeatures; ++i) {
    float* row = &gradient[i * kPerFeature];
    const float value = features[i];
    for (std::size_t h = 0; h < kHidden; ++h) row[h] += back[h] * value;
    row[kHidden] += slope * value;
  }
}

cut::EvidenceWeights Arranged(const Parameters& parameters) {
  cut::EvidenceWeights weights;
  for (std::size_t i = 0; i < kFeatures; ++i) {
    weights.Linear[i] = parameters[i * kPerFeature + kHidden];
    for (std::size_t h = 0; h < kHidden; ++h) weights.Layer[h][i] = parameters[i * kPerFeature + h];
  }
  for (std::size_t h = 0; h < kHidden; ++h) {
    weights.Bias[h] = parameters[kFeatures * kPerFeature + h];
    weights.Out[h] = parameters[kFeatures * kPerFeature + kHidden + h];
  }
  return weights;
}

cut::LagRow Known(double middleMs, double widthMs) {
  cut::LagRow row{};
  double sum = 0;
  for (std::size_t i = 0; i < kLags; ++i) {
    const double at = (cut::LagAt(i) - middleMs) / widthMs;
    row[i] = static_cast<float>(std::exp(-0.5 * at * at));
    sum += row[i];
  }
  constexpr double kOutliers = 0.04;
  for (float& value : row) value = static_cast<float>(value / sum * (1 - kOutliers) + kOutliers / kLags);
  return row;
}

/// What counts as right, in blocks: what nobody hears.
constexpr double kNear = 3.6;

std::vector<std::int16_t> Left(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> left;
  for (std::size_t i = 0; i + 1 < samples.size(); i += 2) left.push_back(samples[i]);
  return left;
}

}  // namespace

void AddExamples(const Station& station, int stamps, std::uint64_t seed, std::vector<Example>& examples) {
  Dice dice(seed);
  constexpr std::int64_t kBlock = kRate / 50;
  const auto end = static_cast<std::int64_t>(station.Samples.size() / 2);
  for (const Join& join : station.Joins) {
    for (int i = 0; i < stamps; ++i) {
      const double lag = -1200 + 4000 * dice.Fraction();
      const std::int64_t stamp = join.Start - static_cast<std::int64_t>(lag * kRate / 1000);
      const std::int64_t first =
          std::max<std::int64_t>(0, stamp - 450 * kBlock - dice.Between(0, kBlock - 1));
      const auto samples = std::span(station.Samples)
                               .first(static_cast<std::size_t>(std::min(end, stamp + 500 * kBlock)) * 2)
                               .subspan(static_cast<std::size_t>(first) * 2);
      const bool one = dice.Fraction() < 0.33;
      cut::Listener listener(kRate, one ? 1 : 2, first);
      if (one) {
        listener.Hear(dice.Fraction() < 0.3 ? Left(samples) : Mean(samples));
      } else {
        listener.Hear(samples);
      }
      const auto stretch = listener.Around(stamp);
      Example example;
      example.Features = cut::MeasureEvidence(stretch.Blocks, stretch.FirstLag, kLags);
      const double jitter = 100 + 600 * dice.Fraction();
      example.Expected = Known(lag + jitter * Gauss(dice), std::hypot(jitter, 100));
      const double at = static_cast<double>(join.Start - stretch.FirstLagFrame) / kBlock;
      example.RightFrom = static_cast<std::size_t>(std::max(0.0, std::ceil(at - kNear)));
      example.RightTo = static_cast<std::size_t>(std::min<double>(kLags - 1, std::floor(at + kNear)));
      examples.push_back(std::move(example));
    }
  }
}

cut::EvidenceWeights Fit(const std::vector<Example>& examples, const FitOptions& options) {
  Dice dice(options.Seed);
  Parameters parameters{};
  for (std::size_t i = 0; i < kFeatures; ++i) {
    for (std::size_t h = 0; h < kHidden; ++h)
      parameters[i * kPerFeature + h] = static_cast<float>(0.2 * Gauss(dice));
  }
  for (std::size_t h = 0; h < kHidden; ++h)
    parameters[kFeatures * kPerFeature + kHidden + h] = static_cast<float>(0.2 * Gauss(dice));
  Parameters gradient{};
  Parameters mean{};
  Parameters square{};
  std::vector<std::size_t> order(examples.size());
  std::iota(order.begin(), order.end(), 0);
  std::vector<Activations> activations(kLags);
  constexpr std::size_t kBatch = 8;
  const double steps = static_cast<double>(options.Epochs) * static_cast<double>(examples.size()) / kBatch;
  int step = 0;
  for (int epoch = 0; epoch < options.Epochs; ++epoch) {
    for (std::size_t i = order.size(); i > 1; --i) {
      std::swap(order[i - 1], order[static_cast<std::size_t>(dice.Between(0, static_cast<int>(i) - 1))]);
    }
    for (std::size_t n = 0; n < order.size(); ++n) {
      const Example& example = examples[order[n]];
      cut::LagRow evidence{};
      for (std::size_t k = 0; k < kLags; ++k) {
        activations[k] = Forward(parameters, example.Features[k]);
        evidence[k] = activations[k].Score;
      }
      const cut::LagRow chances = cut::Chances(example.Expected, evidence);
      float right = 1e-9F;
      for (std::size_t k = example.RightFrom; k <= example.RightTo; ++k) right += chances[k];
      for (std::size_t k = 0; k < kLags; ++k) {
        float slope = chances[k];
        if (k >= example.RightFrom && k <= example.RightTo) slope -= chances[k] / right;
        if (std::abs(slope) > 1e-5F)
          Backward(parameters, example.Features[k], activations[k], slope, gradient);
      }
      if ((n + 1) % kBatch != 0) continue;
      ++step;
      const double rate = options.Rate * 0.5 * (1 + std::cos(std::numbers::pi * std::min(1.0, step / steps)));
      const auto first = static_cast<float>(1 - std::pow(0.9, step));
      const auto second = static_cast<float>(1 - std::pow(0.999, step));
      for (std::size_t p = 0; p < kParameters; ++p) {
        const float slope = gradient[p] / kBatch + static_cast<float>(options.Decay) * parameters[p];
        mean[p] += 0.1F * (slope - mean[p]);
        square[p] += 0.001F * (slope * slope - square[p]);
        parameters[p] -=
            static_cast<float>(rate) * (mean[p] / first) / (std::sqrt(square[p] / second) + 1e-8F);
      }
      gradient.fill(0);
    }
  }
  return Arranged(parameters);
}

double MeanLogChance(const std::vector<Example>& examples, const cut::EvidenceWeights& weights) {
  double sum = 0;
  for (const Example& example : examples) {
    cut::LagRow evidence{};
    for (std::size_t k = 0; k < kLags; ++k) evidence[k] = cut::Score(weights, example.Features[k]);
    const cut::LagRow chances = cut::Chances(example.Expected, evidence);
    double right = 1e-9;
    for (std::size_t k = example.RightFrom; k <= example.RightTo; ++k) right += chances[k];
    sum += std::log(right);
  }
  return sum / std::max<double>(1, static_cast<double>(examples.size()));
}

}  // namespace kestrune::cutlab
