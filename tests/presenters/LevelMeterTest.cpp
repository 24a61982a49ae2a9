#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "presenters/LevelMeter.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::LevelMeter;
using presenters::VuType;

constexpr platform::PcmFormat kStereo{.SampleRate = 44100, .Channels = 2};
constexpr platform::PcmFormat kMono{.SampleRate = 44100, .Channels = 1};

std::vector<std::int16_t> Sine(double hertz, double left, double right, int frames = 4410) {
  std::vector<std::int16_t> samples;
  for (int i = 0; i < frames; ++i) {
    const double value = std::sin(2 * std::numbers::pi * hertz * i / 44100) * 32767;
    samples.push_back(static_cast<std::int16_t>(std::lround(value * left)));
    samples.push_back(static_cast<std::int16_t>(std::lround(value * right)));
  }
  return samples;
}

LevelMeter MeterOf(VuType type) {
  LevelMeter meter;
  while (meter.Type() != type) meter.NextType();
  return meter;
}

std::size_t StrongestBand(const LevelMeter& meter) {
  const auto& bands = meter.Bands();
  return static_cast<std::size_t>(std::max_element(bands.begin(), bands.end()) - bands.begin());
}

TEST(LevelMeter, TheButtonGoesThroughFiveTypesAndBegins) {
  LevelMeter meter;
  EXPECT_EQ(meter.Type(), VuType::Bars);
  for (int i = 1; i < presenters::kVuTypes; ++i) {
    meter.NextType();
    EXPECT_EQ(static_cast<int>(meter.Type()), i);
  }
  meter.NextType();
  EXPECT_EQ(meter.Type(), VuType::Bars);
}

TEST(LevelMeter, HeightsAreDecibelsFromMinusSixty) {
  LevelMeter meter;
  meter.Draw(Sine(1000, 1, 0.1), kStereo);
  EXPECT_NEAR(meter.Channels()[0].Peak, 1.0, 0.01);
  EXPECT_NEAR(meter.Channels()[1].Peak, 40.0 / 60.0, 0.01);
  EXPECT_TRUE(meter.Channels()[0].Clipped);
  EXPECT_FALSE(meter.Channels()[1].Clipped);
}

TEST(LevelMeter, ThePeakIsHeldForASecondAndAHalfAndThenFalls) {
  LevelMeter meter;
  const std::vector<std::int16_t> silence(8820);
  meter.Draw(Sine(1000, 0.5, 0.5), kStereo);
  const float held = meter.Channels()[0].Hold;
  for (int i = 0; i < 15; ++i) meter.Draw(silence, kStereo);
  EXPECT_EQ(meter.Channels()[0].Hold, held);
  EXPECT_EQ(meter.Channels()[0].Peak, 0);
  meter.Draw(silence, kStereo);
  EXPECT_LT(meter.Channels()[0].Hold, held);
  for (int i = 0; i < 60; ++i) meter.Draw(silence, kStereo);
  EXPECT_EQ(meter.Channels()[0].Hold, 0);
}

TEST(LevelMeter, TheSpectrumFindsALowAndAHighTone) {
  LevelMeter low = MeterOf(VuType::Spectrum);
  low.Draw(Sine(110, 0.8, 0.8), kStereo);
  LevelMeter high = MeterOf(VuType::Spectrum);
  high.Draw(Sine(8000, 0.8, 0.8), kStereo);
  EXPECT_LT(StrongestBand(low), 6U);
  EXPECT_GT(StrongestBand(high), 18U);
  EXPECT_NEAR(high.Bands().at(StrongestBand(high)), 0.97, 0.04);
}

TEST(LevelMeter, TheWaveReachesAsFarAsTheSound) {
  LevelMeter meter = MeterOf(VuType::Wave);
  meter.Draw(Sine(200, 0.5, 0.5), kStereo);
  float low = 0;
  float high = 0;
  for (const LevelMeter::Column& column : meter.Wave()) {
    low = std::min(low, column.Low);
    high = std::max(high, column.High);
  }
  EXPECT_NEAR(low, -0.5, 0.01);
  EXPECT_NEAR(high, 0.5, 0.01);
}

TEST(LevelMeter, TheWaveAndTheBandsAreWorkedOutOnlyWhileTheyAreShown) {
  const std::vector<std::int16_t> sound = Sine(1000, 1, 1);
  for (int type = 0; type < presenters::kVuTypes; ++type) {
    SCOPED_TRACE(type);
    LevelMeter meter = MeterOf(static_cast<VuType>(type));
    meter.Draw(sound, kStereo);
    const auto& wave = meter.Wave();
    const bool waves = std::any_of(wave.begin(), wave.end(), [](const auto& each) { return each.High > 0; });
    EXPECT_EQ(waves, meter.Type() == VuType::Wave);
    EXPECT_EQ(meter.Bands().at(StrongestBand(meter)) > 0, meter.Type() == VuType::Spectrum);
    EXPECT_NEAR(meter.Channels()[0].Peak, 1, 0.01);
    EXPECT_GT(meter.History().back(), 0.9);
  }
}

TEST(LevelMeter, AnotherTypeDoesNotBeginWithAnOldPicture) {
  LevelMeter meter = MeterOf(VuType::Spectrum);
  meter.Draw(Sine(1000, 1, 1), kStereo);
  do meter.NextType();
  while (meter.Type() != VuType::Spectrum);
  EXPECT_EQ(meter.Bands().at(StrongestBand(meter)), 0);
}

TEST(LevelMeter, TheHistoryMovesOnByOneStep) {
  LevelMeter meter;
  meter.Draw(Sine(200, 1, 1), kStereo);
  meter.Draw(std::vector<std::int16_t>(8820), kStereo);
  const auto history = meter.History();
  EXPECT_EQ(history.back(), 0);
  EXPECT_GT(history[history.size() - 2], 0.9);
}

TEST(LevelMeter, MonoIsOneChannel) {
  LevelMeter meter;
  meter.Draw(std::vector<std::int16_t>(4410, 16384), kMono);
  EXPECT_EQ(meter.ChannelCount(), 1U);
  EXPECT_NEAR(meter.Channels()[0].Peak, 0.9, 0.01);
}

TEST(LevelMeter, NothingTornAndNoFormatAreTolerated) {
  for (int type = 0; type < presenters::kVuTypes; ++type) {
    LevelMeter meter = MeterOf(static_cast<VuType>(type));
    meter.Draw({}, kStereo);
    meter.Draw(std::vector<std::int16_t>(3, -32768), kStereo);
    meter.Draw(std::vector<std::int16_t>(7, 1), {.SampleRate = 0, .Channels = 0});
    EXPECT_EQ(meter.Draws(), 3U);
  }
}

TEST(LevelMeter, DrawsTheCapturedSoundOnlyWhileSomebodyLooks) {
  UnitRig rig;
  rig.StartIdle();
  EXPECT_EQ(rig.Rules->AudioDisplay().Draws(), 0U);
  rig.Rules->AudioDisplay().SetSampleCount(9600);
  rig.Run(1s);
  EXPECT_NEAR(rig.Rules->AudioDisplay().Draws(), 10, 1);
  EXPECT_EQ(rig.Rules->AudioDisplay().ChannelCount(), 1U) << "the rig's files have one channel";
  rig.CloseAndWait();
}

}  // namespace
}  // namespace kestrune::test
