#include <cmath>
#include <cstdint>
#include <numbers>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "platform/pipe/PcmConverter.h"

namespace kestrune::platform {
namespace {

std::vector<std::int16_t> Take(PcmConverter& converter, const std::vector<std::int16_t>& samples) {
  const auto converted = converter.Convert(samples);
  return {converted.begin(), converted.end()};
}

TEST(PcmConverter, EqualFormsPassBitForBit) {
  PcmConverter converter({44100, 2}, {44100, 2});
  const std::vector<std::int16_t> samples = {1, -1, 32767, -32768, 0, 5};
  EXPECT_EQ(Take(converter, samples), samples);
}

TEST(PcmConverter, MonoIsTheAverageOfLeftAndRight) {
  PcmConverter converter({44100, 2}, {44100, 1});
  EXPECT_EQ(Take(converter, {10, 20, 32767, 32767, -32768, -32768, -32768, 32767, -3, 0}),
            (std::vector<std::int16_t>{15, 32767, -32768, 0, -1}));
}

TEST(PcmConverter, StereoHoldsTheOneChannelTwice) {
  PcmConverter converter({8000, 1}, {8000, 2});
  EXPECT_EQ(Take(converter, {1, -2}), (std::vector<std::int16_t>{1, 1, -2, -2}));
}

TEST(PcmConverter, EveryRateKeepsTheToneAndTheLength) {
  constexpr double kHertz = 1000;
  constexpr double kAmplitude = 10000;
  for (const std::int32_t rate : {8000, 11025, 16000, 22050, 32000, 48000}) {
    for (const std::int16_t channels : {std::int16_t{1}, std::int16_t{2}}) {
      PcmConverter converter({44100, 2}, {rate, channels});
      ASSERT_EQ(converter.Error(), "");
      std::vector<std::int16_t> out;
      std::vector<std::int16_t> piece;
      for (int frame = 0; frame < 44100 * 3; ++frame) {
        const double value = kAmplitude * std::sin(2 * std::numbers::pi * kHertz * frame / 44100);
        piece.insert(piece.end(), 2, static_cast<std::int16_t>(std::lround(value)));
        if (piece.size() == 2 * 1000 || frame == 44100 * 3 - 1) {
          const auto made = Take(converter, piece);
          out.insert(out.end(), made.begin(), made.end());
          piece.clear();
        }
      }
      const std::size_t frames = out.size() / static_cast<std::size_t>(channels);
      EXPECT_NEAR(static_cast<double>(frames), rate * 3.0, rate * 0.05) << rate;
      // The share of the tone in the middle second, by its inner product with sine and cosine.
      double sine = 0;
      double cosine = 0;
      double power = 0;
      for (std::int32_t at = 0; at < rate; ++at) {
        const double value = out[static_cast<std::size_t>(at + rate) * static_cast<std::size_t>(channels)];
        sine += value * std::sin(2 * std::numbers::pi * kHertz * at / rate);
        cosine += value * std::cos(2 * std::numbers::pi * kHertz * at / rate);
        power += value * value;
      }
      const double amplitude = 2 * std::hypot(sine, cosine) / rate;
      EXPECT_NEAR(amplitude, kAmplitude, 50) << rate;
      const double rest = power / rate - amplitude * amplitude / 2;
      EXPECT_LT(rest, 2.0) << rate << ": more than rounding noise beside the tone";
    }
  }
}

TEST(PcmConverter, SilenceStaysSilence) {
  PcmConverter converter({44100, 2}, {48000, 2});
  const auto out = Take(converter, std::vector<std::int16_t>(88200, 0));
  EXPECT_EQ(out, std::vector<std::int16_t>(out.size(), 0));
}

}  // namespace
}  // namespace kestrune::platform
