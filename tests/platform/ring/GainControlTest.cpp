#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <numbers>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ring/GainControl.h"

namespace kestrune::platform {
namespace {

constexpr PcmFormat kFormat{44100, 2};

/// A tone on both channels whose level, as the root mean square below full scale, is the given one.
std::vector<std::int16_t> Tone(double decibels, double seconds, double hertz = 1000) {
  const double amplitude = 32768 * std::sqrt(2.0) * std::pow(10.0, decibels / 20);
  std::vector<std::int16_t> samples;
  const int frames = static_cast<int>(seconds * kFormat.SampleRate);
  for (int frame = 0; frame < frames; ++frame) {
    const double value = amplitude * std::sin(2 * std::numbers::pi * hertz * frame / kFormat.SampleRate);
    const auto sample = static_cast<std::int16_t>(std::clamp(std::lround(value), -32768L, 32767L));
    samples.push_back(sample);
    samples.push_back(sample);
  }
  return samples;
}

double Level(std::span<const std::int16_t> samples) {
  double sum = 0;
  for (const double sample : samples) sum += sample * sample;
  return 10 * std::log10(std::max(sum, 1e-9) / (static_cast<double>(samples.size()) * 32768.0 * 32768.0));
}

/// The last tenth of a second, where everything has settled.
double FinalLevel(const std::vector<std::int16_t>& samples) {
  return Level(std::span(samples).last(8820));
}

GainControl Control(std::int16_t low, std::int16_t high, std::int16_t attack) {
  GainControl control;
  control.SetFormat(kFormat);
  control.SetAttackTime(attack);
  control.SetHighLevel(high);
  control.SetLowLevel(low);
  control.SetEnabled(true);
  return control;
}

TEST(GainControl, IsBitExactWhenOff) {
  GainControl control = Control(-10, -40, 50);
  control.SetEnabled(false);
  std::vector<std::int16_t> samples;
  for (int value = -32768; value <= 32767; ++value) samples.push_back(static_cast<std::int16_t>(value));
  const auto original = samples;
  control.Process(samples);
  EXPECT_EQ(samples, original);
}

TEST(GainControl, BringsEveryLevelIntoTheRange) {
  struct Row {
    double Input;
    double Output;
  };
  const Row rows[] = {{-65, -40}, {-60, -40}, {-50, -40}, {-41, -40}, {-40, -40}, {-30, -30},
                      {-20, -20}, {-11, -11}, {-9, -10},  {-6, -10},  {-3.1, -10}};
  for (const Row& row : rows) {
    for (const std::int16_t attack : {std::int16_t{4}, std::int16_t{50}, std::int16_t{200}}) {
      GainControl control = Control(-40, -10, attack);
      auto samples = Tone(row.Input, 2);
      control.Process(samples);
      EXPECT_NEAR(FinalLevel(samples), row.Output, 0.5) << row.Input << " dB, attack " << attack;
    }
  }
}

TEST(GainControl, TheTwoLevelsAreARangeWhicheverIsSmaller) {
  GainControl control = Control(-10, -40, 4);
  auto soft = Tone(-60, 2);
  control.Process(soft);
  EXPECT_NEAR(FinalLevel(soft), -40, 0.5);
  auto loud = Tone(-4, 2);
  control.Process(loud);
  EXPECT_NEAR(FinalLevel(loud), -10, 0.5);
}

TEST(GainControl, ALevelWithinTheRangePassesBitForBit) {
  GainControl control = Control(-10, -40, 50);
  // It starts from silence, so at first the level is below the range and rising.
  auto start = Tone(-25, 1);
  control.Process(start);
  auto samples = Tone(-25, 1);
  const auto original = samples;
  control.Process(samples);
  EXPECT_EQ(samples, original);
  EXPECT_EQ(control.Gain(), 0);
}

TEST(GainControl, TheGainMovesTwentyDecibelsInTheAttackTime) {
  for (const std::int16_t attack : {std::int16_t{50}, std::int16_t{100}, std::int16_t{200}}) {
    GainControl control = Control(-50, -50, attack);
    auto before = Tone(-65, 2);
    control.Process(before);
    EXPECT_NEAR(control.Gain(), 15, 0.5);
    // The gain has to fall by 30 dB. The level is known some milliseconds after it changed, never before.
    auto loud = Tone(-35, attack / 1000.0);
    control.Process(loud);
    EXPECT_GT(15 - control.Gain(), 16) << attack;
    EXPECT_LT(15 - control.Gain(), 20.6) << attack;
  }
}

TEST(GainControl, NothingEverClips) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  GainControl control = Control(0, 0, 4);
  // A soft passage raises the gain as far as it goes; then comes sound at full scale.
  for (int round = 0; round < 10; ++round) {
    auto soft = Tone(-50, 0.8);
    control.Process(soft);
    ASSERT_GT(control.Gain(), 30);
    auto loud = Tone(-0.1 - static_cast<double>(random() % 60) / 10, 0.2, 50 + random() % 5000);
    const auto original = loud;
    control.Process(loud);
    for (std::size_t at = 0; at < loud.size(); ++at) {
      // Had it clipped by wrapping round, a sample would have changed its sign.
      ASSERT_GE(static_cast<int>(loud[at]) * original[at], 0) << at;
    }
  }
  std::vector<std::int16_t> extremes;
  extremes.reserve(20000);
  for (int at = 0; at < 20000; ++at) extremes.push_back(random() % 2 == 0 ? INT16_MIN : INT16_MAX);
  const auto original = extremes;
  control.Process(extremes);
  for (std::size_t at = 0; at < extremes.size(); ++at) {
    ASSERT_GE(static_cast<int>(extremes[at]) * original[at], 0);
  }
}

TEST(GainControl, TheGainIsSmoothFromSampleToSample) {
  GainControl control = Control(-20, -20, 50);
  auto tone = Tone(-50, 1, 100);
  const auto original = tone;
  control.Process(tone);
  // 20 dB in 50 ms is 0.9 per cent a frame; a step in the gain would exceed that.
  double before = 0;
  for (std::size_t at = 0; at < tone.size(); at += 2) {
    if (std::abs(original[at]) < 100) {
      before = 0;
      continue;
    }
    const double gain = static_cast<double>(tone[at]) / original[at];
    if (before > 0) {
      ASSERT_LT(std::abs(gain / before - 1), 0.02) << at;
    }
    before = gain;
  }
}

TEST(GainControl, APauseDoesNotSwellToNoise) {
  GainControl control = Control(-20, -20, 50);
  auto music = Tone(-20, 1);
  control.Process(music);
  const double gain = control.Gain();
  auto noise = Tone(-85, 3);
  control.Process(noise);
  // On the way down the level passes between the two, and there the gain follows it for a moment.
  EXPECT_LT(control.Gain(), 40.1);
  EXPECT_NEAR(gain, 0, 0.2);
  std::vector<std::int16_t> silence(88200, 0);
  control.Process(silence);
  EXPECT_EQ(std::count(silence.begin(), silence.end(), 0), 88200);
}

TEST(GainControl, CutsInTheStreamChangeNothing) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  auto whole = Tone(-60, 1);
  const auto loud = Tone(-5, 1);
  whole.insert(whole.end(), loud.begin(), loud.end());
  auto cut = whole;
  GainControl one = Control(-30, -15, 60);
  one.Process(whole);
  GainControl other = Control(-30, -15, 60);
  for (std::size_t at = 0; at < cut.size();) {
    const std::size_t count = std::min<std::size_t>(2 * (1 + random() % 6000), cut.size() - at);
    other.Process(std::span(cut).subspan(at, count));
    at += count;
  }
  EXPECT_EQ(cut, whole);
}

TEST(GainControl, BothChannelsGetTheSameGain) {
  GainControl control = Control(-20, -20, 50);
  auto samples = Tone(-50, 1);
  for (std::size_t at = 1; at < samples.size(); at += 2)
    samples[at] = static_cast<std::int16_t>(samples[at] / 2);
  control.Process(samples);
  const std::span<const std::int16_t> end = std::span(samples).last(8820);
  std::int64_t left = 0;
  std::int64_t right = 0;
  for (std::size_t at = 0; at < end.size(); at += 2) {
    left += std::abs(end[at]);
    right += std::abs(end[at + 1]);
  }
  EXPECT_NEAR(static_cast<double>(left) / static_cast<double>(right), 2, 0.02);
}

TEST(GainControl, LevelsAndAttackTimesAreLimitedToTheirRanges) {
  GainControl control = Control(-300, 20, -5);
  auto samples = Tone(-60, 1);
  const auto original = samples;
  control.Process(samples);
  EXPECT_EQ(FinalLevel(samples), FinalLevel(original));
}

}  // namespace
}  // namespace kestrune::platform
