#include "cut/Evidence.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrune::cut {

namespace {

using Index = std::ptrdiff_t;
using Row = std::vector<float>;

/// Sums over stretches of a row of numbers, without adding them up each time.
class Sums {
 public:
  explicit Sums(const Row& row) : upTo_(row.size() + 1, 0) {
    for (std::size_t i = 0; i < row.size(); ++i) upTo_[i + 1] = upTo_[i] + row[i];
  }

  /// The mean of [from, to), cut to what there is; that must be at least one.
  [[nodiscard]] float Mean(Index from, Index to) const {
    from = std::max<Index>(0, from);
    to = std::min(to, static_cast<Index>(upTo_.size()) - 1);
    return static_cast<float>((upTo_[static_cast<std::size_t>(to)] - upTo_[static_cast<std::size_t>(from)]) /
                              static_cast<double>(to - from));
  }

 private:
  std::vector<double> upTo_;
};

/// The means and variances of 24 bands over any stretch.
class BandSums {
 public:
  BandSums(std::span<const Block> blocks, std::array<float, kBands> Block::*bands)
      : sum_(blocks.size() + 1), square_(blocks.size() + 1), size_(static_cast<Index>(blocks.size())) {
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      for (std::size_t band = 0; band < kBands; ++band) {
        const double level = std::max(-75.0F, (blocks[i].*bands)[band]);
        sum_[i + 1][band] = sum_[i][band] + level;
        square_[i + 1][band] = square_[i][band] + level * level;
      }
    }
  }

  struct Stretch {
    std::array<float, kBands> Mean{};
    std::array<float, kBands> Variance{};
  };

  [[nodiscard]] Stretch Of(Index from, Index to) const {
    const auto first = static_cast<std::size_t>(std::max<Index>(0, from));
    const auto end = static_cast<std::size_t>(std::min(to, size_));
    const double share = 1 / static_cast<double>(end - first);
    Stretch stretch;
    for (std::size_t band = 0; band < kBands; ++band) {
      const double mean = (sum_[end][band] - sum_[first][band]) * share;
      stretch.Mean[band] = static_cast<float>(mean);
      stretch.Variance[band] = static_cast<float>(
          std::max(0.0, (square_[end][band] - square_[first][band]) * share - mean * mean));
    }
    return stretch;
  }

 private:
  std::vector<std::array<double, kBands>> sum_;
  std::vector<std::array<double, kBands>> square_;
  Index size_;
};

/// How much better two stretches are told by two spectra than by one: the logarithm of the ratio of
/// likelihoods, for each band and block.
float Division(const BandSums::Stretch& before, const BandSums::Stretch& after) {
  constexpr float kFloor = 4;  // square decibels
  float sum = 0;
  for (std::size_t band = 0; band < kBands; ++band) {
    const float step = before.Mean[band] - after.Mean[band];
    const float whole = 0.5F * (before.Variance[band] + after.Variance[band]) + 0.25F * step * step;
    sum += std::log((whole + kFloor) * (whole + kFloor) /
                    ((before.Variance[band] + kFloor) * (after.Variance[band] + kFloor)));
  }
  return sum / kBands;
}

/// How far apart two spectra are in shape, in decibels, whatever their loudness.
float Distance(const BandSums::Stretch& before, const BandSums::Stretch& after) {
  float mean = 0;
  for (std::size_t band = 0; band < kBands; ++band) mean += after.Mean[band] - before.Mean[band];
  mean /= kBands;
  float sum = 0;
  for (std::size_t band = 0; band < kBands; ++band) {
    const float step = after.Mean[band] - before.Mean[band] - mean;
    sum += step * step;
  }
  return std::sqrt(sum / kBands);
}

/// What is louder in `after` than ever in `before`, in decibels.
float Beyond(const std::array<float, kBands>& before, const std::array<float, kBands>& after) {
  float sum = 0;
  for (std::size_t band = 0; band < kBands; ++band) {
    sum += std::max(0.0F, std::max(-75.0F, after[band]) - std::max(-75.0F, before[band]));
  }
  return sum / kBands;
}

/// How far apart the spectra of any two moments are, and what follows for a boundary between them. A song has
/// many sounds, so that means say little; but each of its sounds is nearer to others of its own than to those
/// of another song.
class Likeness {
 public:
  /// A moment is two blocks.
  static constexpr Index kMoment = 2;

  Likeness(std::span<const Block> blocks, std::array<float, kBands> Block::*bands)
      : count_(static_cast<Index>(blocks.size()) / kMoment) {
    const auto count = static_cast<std::size_t>(count_);
    std::vector<std::array<float, kBands>> moments(count);
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t band = 0; band < kBands; ++band) {
        moments[i][band] =
            std::max(-75.0F, 0.5F * ((blocks[2 * i].*bands)[band] + (blocks[2 * i + 1].*bands)[band]));
      }
    }
    apart_.resize(count * count);
    sums_.assign((count + 1) * (count + 1), 0);
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        float sum = 0;
        std::array<float, kBands> squares;
        for (std::size_t band = 0; band < kBands; ++band) {
          const float step = moments[i][band] - moments[j][band];
          squares[band] = step * step;
        }
        for (const float square : squares) sum += square;
        apart_[i * count + j] = apart_[j * count + i] = std::sqrt(sum / kBands);
      }
    }
    for (std::size_t i = 0; i < count; ++i) {
      double row = 0;
      for (std::size_t j = 0; j < count; ++j) {
        row += apart_[i * count + j];
        sums_[(i + 1) * (count + 1) + j + 1] = sums_[i * (count + 1) + j + 1] + row;
      }
    }
  }

  /// How much further `before` and `after` moments are from each other than from themselves (twice their
  /// energy distance), at block k.
  [[nodiscard]] float Divide(Index k, Index before, Index after) const {
    const Index at = std::clamp<Index>((k + 1) / kMoment, 1, count_ - 1);
    const Index from = std::max<Index>(0, at - before);
    const Index to = std::min(count_, at + after);
    return static_cast<float>(2 * Mean(from, at, at, to) - Mean(from, at, from, at) - Mean(at, to, at, to));
  }

  /// How far the moments from block k on are from the nearest of those in the four seconds before it, on
  /// average.
  [[nodiscard]] float Strangeness(Index k, Index moments) const {
    const Index at = std::clamp<Index>((k + 1) / kMoment, 1, count_ - 1);
    const Index to = std::min(count_, at + moments);
    const Index from = std::max<Index>(0, at - 100);
    float sum = 0;
    for (Index i = at; i < to; ++i) {
      float nearest = 1e9F;
      for (Index j = from; j < at; ++j)
        nearest = std::min(nearest, apart_[static_cast<std::size_t>(i * count_ + j)]);
      sum += nearest;
    }
    return sum / static_cast<float>(to - at);
  }

 private:
  [[nodiscard]] double Mean(Index top, Index bottom, Index left, Index right) const {
    const auto at = [&](Index i, Index j) { return sums_[static_cast<std::size_t>(i * (count_ + 1) + j)]; };
    return (at(bottom, right) - at(top, right) - at(bottom, left) + at(top, left)) /
           static_cast<double>((bottom - top) * (right - left));
  }

  Index count_;
  std::vector<float> apart_;
  std::vector<double> sums_;
};

/// The highest of the row's numbers within `reach` of each place, the place itself and its neighbours left
/// out.
Row Rivals(const Row& row, Index reach) {
  const auto size = static_cast<Index>(row.size());
  Row rivals(row.size(), 0);
  for (Index i = 0; i < size; ++i) {
    float highest = -1e9F;
    for (Index j = std::max<Index>(0, i - reach); j <= std::min(size - 1, i + reach); ++j) {
      if (j < i - 1 || j > i + 1) highest = std::max(highest, row[static_cast<std::size_t>(j)]);
    }
    rivals[static_cast<std::size_t>(i)] = highest < -1e8F ? row[static_cast<std::size_t>(i)] : highest;
  }
  return rivals;
}

/// The rows that have a peak at a boundary, over a whole stretch, so that neighbours can be compared.
struct Curves {
  std::array<Row, 3> Rise;    ///< of level, over 2, 8, 32 blocks
  std::array<Row, 3> Middle;  ///< division of the middle's spectra, over 12, 50, 200 blocks
  std::array<Row, 3> Side;
  Row MiddleFlux;  ///< what bands rise by, from one block to the next
  Row SideFlux;
  Row MiddleNew;  ///< what comes that was not heard in the second before
  Row SideNew;
  std::array<Row, 4> MiddleLike;  ///< division by likeness
  std::array<Row, 4> SideLike;
  Row MiddleStrange;
  Row SideStrange;
};

/// The moments before and after that are compared: 1 s and 4 s.
constexpr std::array<std::pair<Index, Index>, 4> kLikeSpans = {{{25, 25}, {100, 100}, {100, 25}, {25, 100}}};

constexpr std::array<Index, 3> kRises = {2, 8, 32};
constexpr std::array<Index, 3> kSpans = {12, 50, 200};
/// The furthest that a neighbour is compared with.
constexpr Index kReach = 100;

using Peaks = std::vector<std::array<float, kBands>>;

/// For each place, the highest level of each band in the `span` blocks before it.
Peaks HighestBefore(std::span<const Block> blocks, std::array<float, kBands> Block::*bands, Index span) {
  Peaks peaks(blocks.size() + 1);
  for (auto& peak : peaks) peak.fill(kSilence);
  for (std::size_t band = 0; band < kBands; ++band) {
    // The first of these is the highest; those after it are lower and later.
    std::vector<Index> queue;
    std::size_t head = 0;
    for (Index i = 0; i < static_cast<Index>(blocks.size()); ++i) {
      const auto level = [&](Index at) { return (blocks[static_cast<std::size_t>(at)].*bands)[band]; };
      while (queue.size() > head && level(queue.back()) <= level(i)) queue.pop_back();
      queue.push_back(i);
      while (queue[head] <= i - span) ++head;
      peaks[static_cast<std::size_t>(i) + 1][band] = level(queue[head]);
    }
  }
  return peaks;
}

}  // namespace

std::vector<Features> MeasureEvidence(std::span<const Block> blocks, Index from, std::size_t count) {
  std::vector<Features> all(count);
  const auto size = static_cast<Index>(blocks.size());
  const auto begin = std::max<Index>(1, from - kReach);
  const auto end = std::min(size - 1, from + static_cast<Index>(count) + kReach);
  if (begin >= end || size < 2 * Likeness::kMoment) return all;

  Row levels(blocks.size());
  Row middles(blocks.size());
  Row sides(blocks.size());
  Row widths(blocks.size());
  bool oneChannel = true;
  double power = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    levels[i] = blocks[i].Level;
    middles[i] = std::max(-75.0F, blocks[i].Middle);
    sides[i] = std::max(-75.0F, blocks[i].Side);
    widths[i] = sides[i] - middles[i];
    power += std::pow(10.0F, blocks[i].Level / 10);
    oneChannel = oneChannel && blocks[i].Side <= kSilence + 3;
  }
  const auto loudness =
      std::max(-60.0F, static_cast<float>(10 * std::log10(power / static_cast<double>(size) + 1e-10)));
  for (float& level : levels) level = std::clamp(level - loudness, -50.0F, 15.0F);
  const Sums level(levels);
  const Sums middle(middles);
  const Sums side(sides);
  const Sums width(widths);
  const BandSums middleBands(blocks, &Block::MiddleBands);
  const BandSums sideBands(blocks, &Block::SideBands);
  const Peaks middlePeaks = HighestBefore(blocks, &Block::MiddleBands, 50);
  const Peaks sidePeaks = HighestBefore(blocks, &Block::SideBands, 50);

  const auto places = static_cast<std::size_t>(end - begin);
  Curves curves;
  for (std::size_t i = 0; i < 3; ++i) {
    curves.Rise[i].resize(places);
    curves.Middle[i].resize(places);
    curves.Side[i].resize(places);
  }
  for (Row* row : {&curves.MiddleFlux, &curves.SideFlux, &curves.MiddleNew, &curves.SideNew,
                   &curves.MiddleStrange, &curves.SideStrange}) {
    row->resize(places);
  }
  for (Row& row : curves.MiddleLike) row.resize(places);
  for (Row& row : curves.SideLike) row.resize(places);
  const Likeness middleLike(blocks, &Block::MiddleBands);
  const Likeness sideLike(blocks, &Block::SideBands);
  std::vector<std::array<float, 6>> distances(places);
  for (std::size_t p = 0; p < places; ++p) {
    const Index k = begin + static_cast<Index>(p);
    const auto at = static_cast<std::size_t>(k);
    for (std::size_t i = 0; i < 3; ++i) {
      curves.Rise[i][p] = level.Mean(k, k + kRises[i]) - level.Mean(k - kRises[i], k);
      const auto middleBefore = middleBands.Of(k - kSpans[i], k);
      const auto middleAfter = middleBands.Of(k, k + kSpans[i]);
      const auto sideBefore = sideBands.Of(k - kSpans[i], k);
      const auto sideAfter = sideBands.Of(k, k + kSpans[i]);
      curves.Middle[i][p] = Division(middleBefore, middleAfter);
      curves.Side[i][p] = Division(sideBefore, sideAfter);
      distances[p][i] = Distance(middleBefore, middleAfter);
      distances[p][i + 3] = Distance(sideBefore, sideAfter);
    }
    for (std::size_t i = 0; i < kLikeSpans.size(); ++i) {
      curves.MiddleLike[i][p] = middleLike.Divide(k, kLikeSpans[i].first, kLikeSpans[i].second);
      curves.SideLike[i][p] = sideLike.Divide(k, kLikeSpans[i].first, kLikeSpans[i].second);
    }
    // Moments are two blocks, so that every second place would say the same.
    const bool same = p > 0 && k % 2 == 0;
    curves.MiddleStrange[p] = same ? curves.MiddleStrange[p - 1] : middleLike.Strangeness(k, 12);
    curves.SideStrange[p] = same ? curves.SideStrange[p - 1] : sideLike.Strangeness(k, 12);
    curves.MiddleFlux[p] = Beyond(blocks[at - 1].MiddleBands, blocks[at].MiddleBands);
    curves.SideFlux[p] = Beyond(blocks[at - 1].SideBands, blocks[at].SideBands);
    curves.MiddleNew[p] = Beyond(middlePeaks[at], middleBands.Of(k, k + 4).Mean);
    curves.SideNew[p] = Beyond(sidePeaks[at], sideBands.Of(k, k + 4).Mean);
  }
  const Row riseNear = Rivals(curves.Rise[0], 5);
  const Row riseWide = Rivals(curves.Rise[1], 25);
  const Row riseFar = Rivals(curves.Rise[1], kReach);
  std::array<Row, 3> middleRivals;
  std::array<Row, 3> sideRivals;
  constexpr std::array<Index, 3> kRivalReach = {12, 25, kReach};
  for (std::size_t i = 0; i < 3; ++i) {
    middleRivals[i] = Rivals(curves.Middle[i], kRivalReach[i]);
    sideRivals[i] = Rivals(curves.Side[i], kRivalReach[i]);
  }
  const Row middleFluxRivals = Rivals(curves.MiddleFlux, 25);
  const Row sideFluxRivals = Rivals(curves.SideFlux, 25);
  const Row middleNewRivals = Rivals(curves.MiddleNew, kReach);
  const Row sideNewRivals = Rivals(curves.SideNew, kReach);

  std::array<Row, 4> middleLikeRivals;
  std::array<Row, 4> sideLikeRivals;
  for (std::size_t i = 0; i < kLikeSpans.size(); ++i) {
    middleLikeRivals[i] = Rivals(curves.MiddleLike[i], kReach);
    sideLikeRivals[i] = Rivals(curves.SideLike[i], kReach);
  }
  const Row middleStrangeRivals = Rivals(curves.MiddleStrange, kReach);
  const Row sideStrangeRivals = Rivals(curves.SideStrange, kReach);

  for (std::size_t c = 0; c < count; ++c) {
    const Index k = from + static_cast<Index>(c);
    if (k < begin || k >= end) continue;
    const auto p = static_cast<std::size_t>(k - begin);
    std::size_t next = 0;
    const auto add = [&](float value) { all[c][next++] = value; };
    // How quiet the 40 ms to 1.3 s before were against the programme's own loudness.
    for (const Index span : {2, 4, 8, 16, 32, 65}) add(level.Mean(k - span, k) / 10);
    // The quietest 20 ms of the 0.2 s and of the second before.
    for (const Index span : {10, 50}) {
      float lowest = 0;
      for (Index i = std::max<Index>(0, k - span); i < k; ++i)
        lowest = std::min(lowest, levels[static_cast<std::size_t>(i)]);
      add(lowest / 10);
    }
    // How steeply the level rises, and whether it rises more nearby.
    add((levels[static_cast<std::size_t>(k)] - levels[static_cast<std::size_t>(k) - 1]) / 10);
    for (std::size_t i = 0; i < 3; ++i) add(curves.Rise[i][p] / 10);
    add((curves.Rise[0][p] - riseNear[p]) / 10);
    add((curves.Rise[1][p] - riseWide[p]) / 10);
    add((curves.Rise[1][p] - riseFar[p]) / 10);
    // Whether the old sound faded, and how the new one goes on.
    add((level.Mean(k - 50, k) - level.Mean(k - 200, k - 50 < 1 ? 1 : k - 50)) / 10);
    add((level.Mean(k - 25, k) - level.Mean(k - 75, k - 25 < 1 ? 1 : k - 25)) / 10);
    add((level.Mean(k, k + 50) - level.Mean(std::min(k + 50, size - 1), k + 200)) / 10);
    // How well the sound divides here, and whether better nearby.
    for (std::size_t i = 0; i < 3; ++i) {
      add(curves.Middle[i][p]);
      add((curves.Middle[i][p] - middleRivals[i][p]) * 3);
      add(curves.Side[i][p]);
      add((curves.Side[i][p] - sideRivals[i][p]) * 3);
    }
    // How much the shape of the spectra differs.
    for (const float distance : distances[p]) add(distance / 5);
    // What begins here, in each band.
    add(curves.MiddleFlux[p] / 5);
    add((curves.MiddleFlux[p] - middleFluxRivals[p]) / 5);
    add(curves.SideFlux[p] / 5);
    add((curves.SideFlux[p] - sideFluxRivals[p]) / 5);
    add(curves.MiddleNew[p] / 5);
    add((curves.MiddleNew[p] - middleNewRivals[p]) / 5);
    add(curves.SideNew[p] / 5);
    add((curves.SideNew[p] - sideNewRivals[p]) / 5);
    // How much nearer the sounds before and after are to their own than to each other.
    for (std::size_t i = 0; i < kLikeSpans.size(); ++i) {
      add(curves.MiddleLike[i][p] / 5);
      add((curves.MiddleLike[i][p] - middleLikeRivals[i][p]) / 2);
      add(curves.SideLike[i][p] / 5);
      add((curves.SideLike[i][p] - sideLikeRivals[i][p]) / 2);
    }
    add(curves.MiddleStrange[p] / 5);
    add((curves.MiddleStrange[p] - middleStrangeRivals[p]) / 2);
    add(curves.SideStrange[p] / 5);
    add((curves.SideStrange[p] - sideStrangeRivals[p]) / 2);
    // What was there and is there no more.
    add(Beyond(middleBands.Of(k, k + 50).Mean, middleBands.Of(k - 50, k).Mean) / 5);
    add(Beyond(sideBands.Of(k, k + 50).Mean, sideBands.Of(k - 50, k).Mean) / 5);
    // Whether the width changes.
    const float wider = width.Mean(k, k + 50) - width.Mean(k - 50, k);
    add(wider / 10);
    add(std::abs(wider) / 10);
    add((width.Mean(k, k + 12) - width.Mean(k - 12, k)) / 10);
    // Whether a voice stands alone in the middle: little side, and syllables.
    add(width.Mean(k - 50, k) / 10);
    add(width.Mean(k, k + 50) / 10);
    add((side.Mean(k, k + 8) - side.Mean(k - 8, k)) / 10);
    add((side.Mean(k, k + 32) - side.Mean(k - 32, k)) / 10);
    add((middle.Mean(k, k + 32) - middle.Mean(k - 32, k)) / 10);
    float restless = 0;
    for (Index i = std::max<Index>(1, k - 50); i < k; ++i) {
      restless += std::abs(middles[static_cast<std::size_t>(i)] - middles[static_cast<std::size_t>(i) - 1]);
    }
    add(restless / 200);
    add(oneChannel ? 1.0F : 0.0F);
  }
  return all;
}

}  // namespace kestrune::cut
