#include "cut/LagModel.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace kestrune::cut {

namespace {

/// The share of stamps that have nothing to do with the station's habit.
constexpr float kOutliers = 0.04F;
/// How far a station's habit walks from one change to the next, in milliseconds.
constexpr double kWalkMs = 40;
/// How wide the first guess is.
constexpr double kFirstGuessMs = 1300;
/// A station may change its habit at once.
constexpr float kNewHabit = 0.003F;

using Kernel = std::vector<float>;

/// Half of a bell, from its middle on; both halves together sum to 1.
Kernel Bell(double sigmaMs) {
  const auto reach = static_cast<std::size_t>(std::ceil(3 * sigmaMs / kBlockMs));
  Kernel bell(reach + 1);
  double sum = 0;
  for (std::size_t i = 0; i <= reach; ++i) {
    const double at = static_cast<double>(i) * kBlockMs / sigmaMs;
    bell[i] = static_cast<float>(std::exp(-0.5 * at * at));
    sum += i == 0 ? bell[i] : 2 * bell[i];
  }
  for (float& value : bell) value /= static_cast<float>(sum);
  return bell;
}

/// What the bell carries over the ends is lost.
LagRow Spread(const LagRow& row, const Kernel& bell) {
  LagRow spread{};
  constexpr auto kCount = static_cast<std::ptrdiff_t>(kLags);
  const auto reach = static_cast<std::ptrdiff_t>(bell.size()) - 1;
  for (std::ptrdiff_t i = 0; i < kCount; ++i) {
    const float value = row[static_cast<std::size_t>(i)];
    if (value < 1e-9F) continue;
    for (std::ptrdiff_t j = std::max<std::ptrdiff_t>(0, i - reach); j <= std::min(kCount - 1, i + reach);
         ++j) {
      spread[static_cast<std::size_t>(j)] += value * bell[static_cast<std::size_t>(std::abs(i - j))];
    }
  }
  return spread;
}

const Kernel& JitterBell(std::size_t jitter) {
  static const auto kBells = [] {
    std::array<Kernel, LagModel::kJitters.size()> bells;
    for (std::size_t i = 0; i < bells.size(); ++i) bells[i] = Bell(LagModel::kJitters[i]);
    return bells;
  }();
  return kBells[jitter];
}

bool ReadNumber(std::string_view& text, char after, double& value) {
  // Written by fmt, so a point is a point whatever the locale says.
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  if (read.ec != std::errc() || !std::isfinite(value)) return false;
  text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
  if (text.empty()) return after == ' ' || after == '\0';
  if (text.front() != after) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

LagModel::LagModel(int expectedMs) : grid_(Fresh(expectedMs)), expectedMs_(expectedMs) {}

LagModel::Grid LagModel::Fresh(int expectedMs) {
  // Small jitters and large ones are rare.
  constexpr std::array<float, kJitters.size()> kShare = {0.08F, 0.15F, 0.25F, 0.27F, 0.17F, 0.08F};
  Grid grid;
  for (std::size_t j = 0; j < grid.size(); ++j) {
    double sum = 0;
    for (std::size_t i = 0; i < kLags; ++i) {
      const double at = (LagAt(i) - expectedMs) / kFirstGuessMs;
      grid[j][i] = static_cast<float>(std::exp(-0.5 * at * at) + 0.001);
      sum += grid[j][i];
    }
    for (float& value : grid[j]) value *= kShare[j] / static_cast<float>(sum);
  }
  return grid;
}

LagRow LagModel::Expected() const {
  LagRow expected{};
  float sum = 0;
  for (std::size_t j = 0; j < grid_.size(); ++j) {
    const LagRow spread = Spread(grid_[j], JitterBell(j));
    for (std::size_t i = 0; i < kLags; ++i) expected[i] += spread[i];
  }
  for (const float value : expected) sum += value;
  for (float& value : expected) value = value / sum * (1 - kOutliers) + kOutliers / static_cast<float>(kLags);
  return expected;
}

void LagModel::Renew(const LagRow& evidence) {
  float highest = -INFINITY;
  for (const float value : evidence) {
    if (std::isfinite(value)) highest = std::max(highest, value);
  }
  ++changes_;
  if (std::isfinite(highest)) {
    LagRow likelihood{};
    float mean = 0;
    for (std::size_t i = 0; i < kLags; ++i) {
      if (std::isfinite(evidence[i])) likelihood[i] = std::exp(evidence[i] - highest);
      mean += likelihood[i] / static_cast<float>(kLags);
    }
    for (std::size_t j = 0; j < grid_.size(); ++j) {
      const LagRow heard = Spread(likelihood, JitterBell(j));
      for (std::size_t i = 0; i < kLags; ++i) grid_[j][i] *= (1 - kOutliers) * heard[i] + kOutliers * mean;
    }
    Normalise();
  }
  Walk();
}

void LagModel::Walk() {
  static const Kernel kBell = Bell(kWalkMs);
  for (LagRow& row : grid_) row = Spread(row, kBell);
  Normalise();
  const Grid fresh = Fresh(expectedMs_);
  for (std::size_t j = 0; j < grid_.size(); ++j) {
    for (std::size_t i = 0; i < kLags; ++i) grid_[j][i] += kNewHabit * (fresh[j][i] - grid_[j][i]);
  }
}

void LagModel::Forget(double days) {
  const auto lost = static_cast<float>(1 - std::exp2(-std::max(0.0, days) / 30));
  const Grid fresh = Fresh(expectedMs_);
  for (std::size_t j = 0; j < grid_.size(); ++j) {
    for (std::size_t i = 0; i < kLags; ++i) grid_[j][i] += lost * (fresh[j][i] - grid_[j][i]);
  }
}

void LagModel::Normalise() {
  double sum = 0;
  for (const LagRow& row : grid_) {
    for (const float value : row) sum += value;
  }
  if (!(sum > 0)) {
    grid_ = Fresh(expectedMs_);
    return;
  }
  for (LagRow& row : grid_) {
    for (float& value : row) value /= static_cast<float>(sum);
  }
}

int LagModel::MedianMs() const {
  float sum = 0;
  for (std::size_t i = 0; i < kLags; ++i) {
    for (const LagRow& row : grid_) sum += row[i];
    if (sum >= 0.5F) return LagAt(i);
  }
  return kHighestLag;
}

int LagModel::JitterMs() const {
  double mean = 0;
  for (std::size_t j = 0; j < grid_.size(); ++j) {
    for (const float value : grid_[j]) mean += value * kJitters[j];
  }
  return static_cast<int>(std::lround(mean));
}

std::string LagModel::Text() const {
  float highest = 0;
  for (const LagRow& row : grid_) {
    for (const float value : row) highest = std::max(highest, value);
  }
  std::string text = fmt::format("1 {} {}", changes_, expectedMs_);
  for (std::size_t j = 0; j < grid_.size(); ++j) {
    for (std::size_t i = 0; i < kLags; ++i) {
      const auto share = static_cast<int>(std::lround(grid_[j][i] / highest * 1000));
      if (share > 0) text += fmt::format(" {}:{}:{}", i, j, share);
    }
  }
  return text;
}

bool LagModel::FromText(std::string_view text, LagModel& model) {
  double version = 0;
  double changes = 0;
  double expected = 0;
  if (!ReadNumber(text, ' ', version) || version != 1) return false;
  if (!ReadNumber(text, ' ', changes) || changes < 0 || changes > 1e9) return false;
  if (!ReadNumber(text, ' ', expected) || expected < kLowestLag || expected > kHighestLag) return false;
  LagModel read(static_cast<int>(expected));
  read.changes_ = static_cast<int>(changes);
  if (text.empty()) return false;
  for (LagRow& row : read.grid_) row.fill(0);
  while (!text.empty()) {
    double lag = 0;
    double jitter = 0;
    double share = 0;
    if (!ReadNumber(text, ':', lag) || text.empty() || !ReadNumber(text, ':', jitter) || text.empty() ||
        !ReadNumber(text, ' ', share)) {
      return false;
    }
    if (lag < 0 || lag >= kLags || jitter < 0 || jitter >= kJitters.size() || share <= 0 || share > 1000)
      return false;
    read.grid_[static_cast<std::size_t>(jitter)][static_cast<std::size_t>(lag)] = static_cast<float>(share);
  }
  read.Normalise();
  model = read;
  return true;
}

}  // namespace kestrune::cut
