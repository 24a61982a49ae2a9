#include <cstdint>
#include <limits>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/Mp3Bitrates.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::Mp3Parameters;
using platform::WithRealBitrates;

constexpr std::int16_t kLeast16 = std::numeric_limits<std::int16_t>::min();
constexpr std::int16_t kMost16 = std::numeric_limits<std::int16_t>::max();

Mp3Parameters Constant(std::int32_t rate, std::int16_t channels, std::int16_t bitrate) {
  Mp3Parameters parameters;
  parameters.Frequency = rate;
  parameters.Channels = channels;
  parameters.Bitrate = bitrate;
  return parameters;
}

TEST(Mp3Bitrates, TheEncodersOwnChoiceStandsForZero) {
  struct Row {
    std::int32_t Rate;
    std::int16_t Stereo;
    std::int16_t Mono;
  };
  for (const Row& row :
       {Row{8000, 64, 64}, Row{11025, 64, 64}, Row{12000, 64, 64}, Row{16000, 128, 64}, Row{22050, 128, 64},
        Row{24000, 128, 64}, Row{32000, 128, 64}, Row{44100, 128, 64}, Row{48000, 128, 64}}) {
    EXPECT_EQ(WithRealBitrates(Constant(row.Rate, 2, 0)).Bitrate, row.Stereo) << row.Rate;
    EXPECT_EQ(WithRealBitrates(Constant(row.Rate, 1, 0)).Bitrate, row.Mono) << row.Rate;
  }
}

TEST(Mp3Bitrates, AConstantOneBecomesTheNearestOfTheRateAndTheHigherOfTwo) {
  struct Row {
    std::int32_t Rate;
    std::int16_t Asked;
    std::int16_t Real;
  };
  const std::vector<Row> rows{
      {44100, 8, 32},        {44100, 16, 32},       {44100, 24, 32},     {44100, 32, 32},
      {44100, 36, 40},       {44100, 35, 32},       {44100, 129, 128},   {44100, 143, 128},
      {44100, 144, 160},     {44100, 320, 320},     {44100, 321, 320},   {44100, -1, 32},
      {44100, kLeast16, 32}, {44100, kMost16, 320}, {48000, 24, 32},     {32000, 16, 32},
      {22050, 8, 8},         {22050, 192, 160},     {24000, 320, 160},   {16000, 224, 160},
      {16000, 144, 144},     {11025, 128, 64},      {12000, 160, 64},    {8000, 80, 64},
      {8000, 1, 8},          {22050, kMost16, 160}, {8000, kLeast16, 8},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(WithRealBitrates(Constant(row.Rate, 2, row.Asked)).Bitrate, row.Real)
        << row.Rate << " " << row.Asked;
  }
}

TEST(Mp3Bitrates, LimitsMoveInwardsAndTheMinimumWins) {
  struct Row {
    std::int16_t Minimum;
    bool Enforced;
    std::int16_t Maximum;
    std::int16_t RealMinimum;
    std::int16_t RealMaximum;
  };
  const std::vector<Row> rows{
      {100, true, 200, 112, 192},   {192, true, 128, 192, 192}, {192, false, 128, 192, 128},
      {129, true, 159, 160, 160},   {0, false, 24, 0, 32},      {0, true, 0, 32, 0},
      {0, false, -1, 0, 32},        {321, true, 0, 320, 0},     {128, true, kMost16, 128, 320},
      {kLeast16, true, 40, 32, 40},
  };
  for (const std::int16_t method : {0, 1, 2, 3, 4}) {
    for (const Row& row : rows) {
      SCOPED_TRACE(fmt::format("method {}: {} {} {}", method, row.Minimum, row.Enforced, row.Maximum));
      auto parameters = Constant(44100, 2, row.Minimum);
      parameters.VBRCodingMethod = method;
      parameters.VBREnforceMinBitRate = row.Enforced;
      parameters.VBRMaxBitrate = row.Maximum;
      const auto real = WithRealBitrates(parameters);
      EXPECT_EQ(real.VBRMaxBitrate, row.RealMaximum);
      const int least = row.Enforced ? row.RealMinimum : 32;
      const int most = row.RealMaximum == 0 ? 320 : row.RealMaximum;
      EXPECT_EQ(real.VBRCodingMethod, least == most ? -1 : method);
      EXPECT_EQ(real.Bitrate, least == most ? most : row.RealMinimum);
    }
  }
}

TEST(Mp3Bitrates, ATargetStaysWithinItsLimits) {
  const auto target = [](std::int32_t rate, std::int16_t channels, std::int16_t asked, std::int16_t most) {
    auto parameters = Constant(rate, channels, 0);
    parameters.VBRCodingMethod = 4;
    parameters.VBRTargetBitrate = asked;
    parameters.VBRMaxBitrate = most;
    return WithRealBitrates(parameters).VBRTargetBitrate;
  };
  EXPECT_EQ(target(44100, 2, 100, 0), 100);
  EXPECT_EQ(target(44100, 2, 0, 0), 128);
  EXPECT_EQ(target(44100, 1, 0, 0), 64);
  EXPECT_EQ(target(44100, 2, 4, 0), 32);
  EXPECT_EQ(target(44100, 2, -1, 0), 32);
  EXPECT_EQ(target(44100, 2, kMost16, 0), 320);
  EXPECT_EQ(target(44100, 2, 256, 160), 160);
  EXPECT_EQ(target(22050, 2, 256, 0), 160);
  EXPECT_EQ(target(8000, 2, 0, 0), 64);
}

TEST(Mp3Bitrates, RealOnesStayAsTheyAreAndUnknownShapesAreLeftToTheEncoder) {
  for (const std::int16_t method : {-1, 0, 4}) {
    auto parameters = Constant(22050, 1, 100);
    parameters.VBRCodingMethod = method;
    parameters.VBREnforceMinBitRate = true;
    parameters.VBRMaxBitrate = 129;
    const auto once = WithRealBitrates(parameters);
    const auto twice = WithRealBitrates(once);
    EXPECT_EQ(twice.Bitrate, once.Bitrate);
    EXPECT_EQ(twice.VBRMaxBitrate, once.VBRMaxBitrate);
    EXPECT_EQ(twice.VBRTargetBitrate, once.VBRTargetBitrate);
  }
  EXPECT_EQ(WithRealBitrates(Constant(44000, 2, 7)).Bitrate, 7);
  auto odd = Constant(44100, 2, 7);
  odd.VBRCodingMethod = 5;
  odd.VBRMaxBitrate = 1;
  EXPECT_EQ(WithRealBitrates(odd).VBRCodingMethod, 5);
}

/// LAME's average method once aborted the program on such sound, where limits left it a single bitrate.
TEST(Mp3Bitrates, ASingleBitrateBetweenTheLimitsIsConstant) {
  TempFolder folder;
  const std::string path = folder.Path("a.mp3");
  auto parameters = Constant(32000, 1, 0);
  parameters.VBRCodingMethod = 4;
  parameters.VBRMaxBitrate = 32;
  parameters.VBRTargetBitrate = 320;
  parameters.VBREnforceMinBitRate = true;
  parameters.Quality = 7;
  parameters.BitReservoir = true;
  parameters.ComplyISO = true;
  parameters.HighPassFilterFreq = 3000;
  parameters.HighPassFilterWidth = 500;
  platform::EncodedFile file;
  file.SetFormat(parameters);
  EXPECT_EQ(file.FormatDescription(), "MP3, 32 kbit/s constant, 32000 Hz, mono");
  ASSERT_EQ(file.Create(path).Number, 0);
  ASSERT_TRUE(WriteBlocks(file, MakeClicks(6462, 32000, 1)));
  EXPECT_TRUE(file.Close());
  const auto stream = ParseMp3(ReadFile(path));
  EXPECT_EQ(ParseInfo(stream).Method, 1);
  for (const auto& frame : stream.Sound()) ASSERT_EQ(frame.Bitrate, 32);
}

}  // namespace
}  // namespace kestrune::test
