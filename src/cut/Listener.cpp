#include "cut/Listener.h"

#include <algorithm>
#include <cmath>

#include "cut/Choice.h"
#include "cut/Evidence.h"

namespace kestrune::cut {

namespace {

constexpr std::int64_t kKeptBlocks = Listener::kKeptMs / kBlockMs;
constexpr std::int64_t kKeptSteps = Listener::kKeptMs * 2 / 5;

/// Rounded down, whatever the sign.
std::int64_t Quotient(std::int64_t value, std::int64_t by) {
  return value / by - (value % by < 0 ? 1 : 0);
}

/// Makes room by moving the last `kept` to the front, if there are twice as many.
template <typename Value>
void KeepLast(std::vector<Value>& values, std::int64_t kept, std::int64_t& dropped) {
  const auto size = static_cast<std::int64_t>(values.size());
  if (size < 2 * kept) return;
  values.erase(values.begin(), values.end() - static_cast<std::ptrdiff_t>(kept));
  dropped += size - kept;
}

LagRow EvidenceOf(const Listener::Stretch& stretch, const EvidenceWeights& weights) {
  LagRow evidence;
  evidence.fill(-INFINITY);
  const auto features = MeasureEvidence(stretch.Blocks, stretch.FirstLag, kLags);
  const auto size = static_cast<std::ptrdiff_t>(stretch.Blocks.size());
  for (std::size_t i = 0; i < kLags; ++i) {
    const std::ptrdiff_t at = stretch.FirstLag + static_cast<std::ptrdiff_t>(i);
    if (at >= 1 && at < size - 1) evidence[i] = Score(weights, features[i]);
  }
  return evidence;
}

Reason ReasonOf(const Listener::Stretch& stretch, std::size_t lag, float confidence) {
  if (confidence < 0.3F) return Reason::Lag;
  const std::ptrdiff_t at = stretch.FirstLag + static_cast<std::ptrdiff_t>(lag);
  const auto size = static_cast<std::ptrdiff_t>(stretch.Blocks.size());
  double power = 0;
  for (const Block& block : stretch.Blocks) power += std::pow(10.0F, block.Level / 10);
  const auto loudness = static_cast<float>(10 * std::log10(power / static_cast<double>(size) + 1e-10));
  float before = 0;
  float after = kSilence;
  for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(0, at - 10); i < std::min(size, at + 10); ++i) {
    const float level = stretch.Blocks[static_cast<std::size_t>(i)].Level;
    if (i < at + 2) before = std::min(before, level);
    if (i >= at) after = std::max(after, level);
  }
  if (before < loudness - 30) return Reason::Gap;
  if (after - before > 12) return Reason::Onset;
  return Reason::Novelty;
}

}  // namespace

Listener::Listener(int rate, int channels, std::int64_t first)
    : rate_(rate), channels_(channels), first_(first), end_(first), meter_(rate, channels) {
  blocks_.reserve(2 * kKeptBlocks);
  steps_.reserve(2 * kKeptSteps);
}

void Listener::Hear(std::span<const std::int16_t> interleaved) {
  // A second at a time, so that what is kept stays bounded.
  const std::size_t most = static_cast<std::size_t>(rate_) * static_cast<std::size_t>(channels_);
  while (!interleaved.empty()) {
    const auto part = interleaved.first(std::min(interleaved.size(), most));
    interleaved = interleaved.subspan(part.size());
    meter_.Hear(part, blocks_);
    MeasureSteps(part);
    end_ += static_cast<std::int64_t>(part.size()) / channels_;
    KeepLast(blocks_, kKeptBlocks, dropped_);
    KeepLast(steps_, kKeptSteps, droppedSteps_);
  }
}

void Listener::MeasureSteps(std::span<const std::int16_t> interleaved) {
  const std::int64_t step = rate_ / 400;
  const auto channels = static_cast<std::size_t>(channels_);
  while (!interleaved.empty()) {
    const auto frames =
        std::min(static_cast<std::int64_t>(interleaved.size() / channels), step - stepFrames_);
    if (frames == 0) return;
    const auto part = interleaved.first(static_cast<std::size_t>(frames) * channels);
    std::int64_t power = 0;
    for (const std::int32_t sample : part) power += sample * sample;
    stepPower_ += static_cast<double>(power);
    stepFrames_ += frames;
    interleaved = interleaved.subspan(part.size());
    if (stepFrames_ < step) return;
    const double mean = (stepPower_ + 1) / static_cast<double>(step * channels_);
    steps_.push_back(static_cast<float>(10 * std::log10(mean)));
    stepPower_ = 0;
    stepFrames_ = 0;
  }
}

Listener::Stretch Listener::Around(std::int64_t stamp) const {
  const std::int64_t size = rate_ / 50;
  // The grid of blocks is what it is; a stamp belongs to the boundary next to it.
  const std::int64_t middle = Quotient(stamp - first_ + size / 2, size);
  const std::int64_t total = dropped_ + static_cast<std::int64_t>(blocks_.size());
  const std::int64_t from =
      std::max({std::int64_t{0}, total - kKeptBlocks, middle - kWantedBeforeMs / kBlockMs});
  const std::int64_t ahead = first_ + meter_.Ahead();
  const std::int64_t last = stamp + static_cast<std::int64_t>(rate_) * kWantedAfterMs / 1000;
  const std::int64_t to = std::min(total, Quotient(last - ahead, size));
  Stretch stretch;
  stretch.FirstLag = static_cast<std::ptrdiff_t>(middle + kLowestLag / kBlockMs - from);
  stretch.FirstLagFrame = first_ + (middle + kLowestLag / kBlockMs) * size;
  stretch.Heard = stamp;
  if (to > from) {
    stretch.Blocks = std::span(blocks_).subspan(static_cast<std::size_t>(from - dropped_),
                                                static_cast<std::size_t>(to - from));
    stretch.Heard = ahead + to * size - 1;
  }
  return stretch;
}

/// The steepest rise of loudness within 30 ms of `frame`, a few milliseconds early so that no onset is clipped;
/// `frame` itself if nothing rises much, or if it is not all kept and before `heard`.
std::int64_t Listener::BeforeOnset(std::int64_t frame, std::int64_t heard) const {
  const std::int64_t step = rate_ / 400;
  const std::int64_t reach = static_cast<std::int64_t>(rate_) * 3 / 100;
  const std::int64_t from = Quotient(frame - reach - first_, step) - 2;
  const std::int64_t count = 2 * reach / step + 5;
  const std::int64_t total = droppedSteps_ + static_cast<std::int64_t>(steps_.size());
  if (from < std::max<std::int64_t>(0, total - kKeptSteps)) return frame;
  if (from + count > total || first_ + (from + count) * step > heard) return frame;
  const auto levels = std::span(steps_).subspan(static_cast<std::size_t>(from - droppedSteps_),
                                                static_cast<std::size_t>(count));
  float best = 6;  // decibels; less is no onset
  std::int64_t onset = -1;
  for (std::size_t i = 2; i + 1 < levels.size(); ++i) {
    const float rise = 0.5F * (levels[i] + levels[i + 1]) - 0.5F * (levels[i - 1] + levels[i - 2]);
    if (rise > best) {
      best = rise;
      onset = first_ + (from + static_cast<std::int64_t>(i)) * step;
    }
  }
  return onset < 0 ? frame : onset - 2 * step;
}

Cut Listener::Choose(std::int64_t stamp, LagModel& station, const EvidenceWeights& weights) const {
  const Stretch stretch = Around(stamp);
  const LagRow evidence = EvidenceOf(stretch, weights);
  const bool any =
      std::any_of(evidence.begin(), evidence.end(), [](float value) { return std::isfinite(value); });
  const LagRow chances = Chances(station.Expected(), evidence);
  const Chosen chosen = LeastCost(chances);
  // Beside sound a lag is that of its block.
  const std::int64_t size = rate_ / 50;
  const std::int64_t lowest = any ? stretch.FirstLagFrame : stamp + kLowestLag / kBlockMs * size;
  const auto frameOf = [&](std::size_t lag) { return lowest + static_cast<std::int64_t>(lag) * size; };
  const auto lagMs = [&](std::int64_t frame) { return (frame - stamp) * 1000 / rate_; };
  Cut cut;
  cut.Frame = frameOf(chosen.Lag);
  cut.Confidence = chosen.Confidence;
  cut.Heard = stretch.Heard;
  for (const Chosen& likely : Likeliest(chances)) {
    cut.Candidates.push_back({static_cast<int>(lagMs(frameOf(likely.Lag))), likely.Confidence});
  }
  if (any) {
    cut.Reason = ReasonOf(stretch, chosen.Lag, chosen.Confidence);
    cut.Frame = BeforeOnset(cut.Frame, cut.Heard);
    station.Renew(evidence);
  } else {
    cut.Reason = station.Changes() > 0 ? Reason::Lag : Reason::Text;
  }
  cut.LagMs = lagMs(cut.Frame);
  return cut;
}

}  // namespace kestrune::cut
