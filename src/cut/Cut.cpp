#include "cut/Cut.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "cut/Blocks.h"

namespace kestrune::cut {

namespace {

/// The part of `sound` that may be looked at, beginning at a whole number of blocks before the stamp.
Sound Around(const Sound& sound, std::int64_t stamp) {
  const std::int64_t block = sound.Rate / 50;
  const std::int64_t wantedFrom = stamp - kWantedBeforeMs / kBlockMs * block;
  const std::int64_t wantedEnd = stamp + kWantedAfterMs / kBlockMs * block;
  std::int64_t from = wantedFrom;
  if (from < sound.First) from += (sound.First - from + block - 1) / block * block;
  const std::int64_t end = std::min(wantedEnd, sound.End());
  Sound part = sound;
  part.First = from;
  if (end - from < block) {
    part.Samples = {};
    return part;
  }
  const auto channels = static_cast<std::size_t>(sound.Channels);
  part.Samples = sound.Samples.subspan(static_cast<std::size_t>(from - sound.First) * channels,
                                       static_cast<std::size_t>(end - from) * channels);
  return part;
}

struct Heard {
  Sound Part;
  std::vector<Block> Blocks;
  std::ptrdiff_t FirstLag = 0;  ///< the block of the lowest lag; may be negative
  LagRow Evidence{};
};

Heard Listen(const Sound& sound, std::int64_t stamp, const EvidenceWeights& weights) {
  Heard heard;
  heard.Evidence.fill(-INFINITY);
  heard.Part = Around(sound, stamp);
  if (heard.Part.Samples.empty()) return heard;
  heard.Blocks = MeasureBlocks(heard.Part);
  const std::int64_t block = sound.Rate / 50;
  heard.FirstLag = static_cast<std::ptrdiff_t>((stamp - heard.Part.First) / block) + kLowestLag / kBlockMs;
  const auto features = MeasureEvidence(heard.Blocks, heard.FirstLag, kLags);
  const auto size = static_cast<std::ptrdiff_t>(heard.Blocks.size());
  for (std::size_t i = 0; i < kLags; ++i) {
    const std::ptrdiff_t at = heard.FirstLag + static_cast<std::ptrdiff_t>(i);
    if (at >= 1 && at < size - 1) heard.Evidence[i] = Score(weights, features[i]);
  }
  return heard;
}

/// The steepest rise of loudness within 30 ms of `frame`, a few milliseconds early so that no onset is
/// clipped; `frame` itself if nothing rises much.
std::int64_t BeforeOnset(const Sound& sound, std::int64_t frame) {
  const std::int64_t step = sound.Rate / 400;
  const std::int64_t reach = sound.Rate * 3 / 100;
  const std::int64_t from = frame - reach - 2 * step;
  const std::int64_t count = (2 * reach + 4 * step) / step;
  if (from < sound.First || from + count * step > sound.End()) return frame;
  std::vector<float> levels;
  for (std::int64_t i = 0; i < count; ++i) {
    double power = 1;
    for (std::int64_t j = 0; j < step; ++j) {
      for (int channel = 0; channel < sound.Channels; ++channel) {
        const float sample = sound.Samples[static_cast<std::size_t>(
            (from - sound.First + i * step + j) * sound.Channels + channel)];
        power += sample * sample;
      }
    }
    levels.push_back(static_cast<float>(10 * std::log10(power / static_cast<double>(step * sound.Channels))));
  }
  float best = 6;  // decibels; less is no onset
  std::int64_t onset = -1;
  for (std::size_t i = 2; i + 1 < levels.size(); ++i) {
    const float rise = 0.5F * (levels[i] + levels[i + 1]) - 0.5F * (levels[i - 1] + levels[i - 2]);
    if (rise > best) {
      best = rise;
      onset = from + static_cast<std::int64_t>(i) * step;
    }
  }
  return onset < 0 ? frame : onset - 2 * step;
}

Reason ReasonOf(const Heard& heard, std::size_t lag, float confidence) {
  if (confidence < 0.3F) return Reason::Lag;
  const std::ptrdiff_t at = heard.FirstLag + static_cast<std::ptrdiff_t>(lag);
  const auto size = static_cast<std::ptrdiff_t>(heard.Blocks.size());
  double power = 0;
  for (const Block& block : heard.Blocks) power += std::pow(10.0, block.Level / 10);
  const auto loudness = static_cast<float>(10 * std::log10(power / static_cast<double>(size) + 1e-10));
  float before = 0;
  float after = kSilence;
  for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(0, at - 10); i < std::min(size, at + 10); ++i) {
    const float level = heard.Blocks[static_cast<std::size_t>(i)].Level;
    if (i < at + 2) before = std::min(before, level);
    if (i >= at) after = std::max(after, level);
  }
  if (before < loudness - 30) return Reason::Gap;
  if (after - before > 12) return Reason::Onset;
  return Reason::Novelty;
}

}  // namespace

LagRow Hear(const Sound& sound, std::int64_t stamp, const EvidenceWeights& weights) {
  return Listen(sound, stamp, weights).Evidence;
}

Cut FindCut(const Sound& sound, std::int64_t stamp, LagModel& station, const EvidenceWeights& weights) {
  const Heard heard = Listen(sound, stamp, weights);
  const bool any = std::any_of(heard.Evidence.begin(), heard.Evidence.end(),
                               [](float value) { return std::isfinite(value); });
  const LagRow chances = Chances(station.Expected(), heard.Evidence);
  const Chosen chosen = LeastCost(chances);
  Cut cut;
  cut.Frame = stamp + LagAt(chosen.Lag) / kBlockMs * static_cast<std::int64_t>(sound.Rate / 50);
  cut.Confidence = chosen.Confidence;
  cut.Heard = stamp;
  if (any) {
    cut.Reason = ReasonOf(heard, chosen.Lag, chosen.Confidence);
    cut.Heard = heard.Part.End() - 1;
    cut.Frame = BeforeOnset(heard.Part, cut.Frame);
    station.Renew(heard.Evidence);
  } else {
    cut.Reason = station.Changes() > 0 ? Reason::Lag : Reason::Text;
  }
  cut.LagMs = (cut.Frame - stamp) * 1000 / sound.Rate;
  return cut;
}

}  // namespace kestrune::cut
