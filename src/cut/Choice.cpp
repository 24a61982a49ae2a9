#include "cut/Choice.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrune::cut {

namespace {

using Index = std::ptrdiff_t;

constexpr Index kNear = 100 / kBlockMs;

/// The rest of the cost is whole at an error of two seconds.
constexpr float kWhole = 2000.0F / kBlockMs;

float Cost(Index error) {
  const auto far = static_cast<float>(std::abs(error));
  return (std::abs(error) > kNear ? 0.5F : 0.0F) + 0.5F * std::min(1.0F, far / kWhole);
}

/// The chance that the start is within 0.1 s.
float Near(const LagRow& chances, std::size_t lag) {
  const auto middle = static_cast<Index>(lag);
  float sum = 0;
  for (Index i = std::max<Index>(0, middle - kNear);
       i <= std::min(static_cast<Index>(kLags) - 1, middle + kNear); ++i) {
    sum += chances[static_cast<std::size_t>(i)];
  }
  return std::min(1.0F, sum);
}

}  // namespace

std::string_view NameOf(Reason reason) {
  constexpr std::array<std::string_view, 5> kNames = {"gap", "onset", "novelty", "lag", "text"};
  return kNames[static_cast<std::size_t>(reason)];
}

LagRow Chances(const LagRow& expected, const LagRow& evidence) {
  float highest = -INFINITY;
  for (const float value : evidence) {
    if (std::isfinite(value)) highest = std::max(highest, value);
  }
  if (!std::isfinite(highest)) return expected;
  LagRow chances{};
  float sum = 0;
  for (std::size_t i = 0; i < kLags; ++i) {
    if (std::isfinite(evidence[i])) chances[i] = expected[i] * std::exp(evidence[i] - highest);
    sum += chances[i];
  }
  if (!(sum > 0)) return expected;
  for (float& chance : chances) chance /= sum;
  return chances;
}

Chosen LeastCost(const LagRow& chances) {
  constexpr auto kCount = static_cast<Index>(kLags);
  Chosen chosen;
  float least = INFINITY;
  for (Index at = 0; at < kCount; ++at) {
    float cost = 0;
    for (Index start = 0; start < kCount; ++start)
      cost += chances[static_cast<std::size_t>(start)] * Cost(at - start);
    if (cost < least) {
      least = cost;
      chosen.Lag = static_cast<std::size_t>(at);
    }
  }
  chosen.Confidence = Near(chances, chosen.Lag);
  return chosen;
}

std::vector<Chosen> Likeliest(const LagRow& chances) {
  std::vector<std::size_t> peaks;
  for (std::size_t i = 0; i < kLags; ++i) {
    const bool rises = i == 0 || chances[i] > chances[i - 1];
    if (rises && (i + 1 == kLags || chances[i] >= chances[i + 1])) peaks.push_back(i);
  }
  std::stable_sort(peaks.begin(), peaks.end(),
                   [&](std::size_t one, std::size_t other) { return chances[one] > chances[other]; });
  std::vector<Chosen> likeliest;
  for (const std::size_t peak : peaks) {
    const bool apart = std::all_of(likeliest.begin(), likeliest.end(), [&](const Chosen& other) {
      return std::abs(static_cast<Index>(peak) - static_cast<Index>(other.Lag)) > 2 * kNear;
    });
    const float chance = Near(chances, peak);
    if (!apart || chance < 0.01F) continue;
    likeliest.push_back({peak, chance});
    if (likeliest.size() == kCandidates) break;
  }
  std::stable_sort(likeliest.begin(), likeliest.end(),
                   [](const Chosen& one, const Chosen& other) { return one.Confidence > other.Confidence; });
  return likeliest;
}

}  // namespace kestrune::cut
