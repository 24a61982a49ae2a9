// The effect of every field of Mp3Parameters, seen in the finished file.
#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Mp3Parameters.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/JudgedFiles.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::Mp3Parameters;

class Mp3ParametersTest : public testing::Test {
 protected:
  Mp3ParametersTest() {
    parameters_.Bitrate = 128;
    parameters_.TypeStereo = 2;
    parameters_.Quality = 5;
    parameters_.VBRQuality = 4;
    parameters_.VBRHeader = true;
    parameters_.BitReservoir = true;
    parameters_.ShortBlocks = true;
  }

  void TearDown() override { judged_.JudgeAll(); }

  std::string Write(const std::vector<std::int16_t>& sound) {
    std::string path = folder_.NewPath("mp3");
    platform::EncodedFile file;
    file.SetFormat(parameters_);
    EXPECT_EQ(file.Create(path).Number, 0);
    EXPECT_TRUE(WriteBlocks(file, sound));
    EXPECT_TRUE(file.Close());
    return path;
  }

  /// Every file must decode to the length of its sound.
  Mp3Stream Encode(const std::vector<std::int16_t>& sound) {
    const std::string path = Write(sound);
    auto stream = ParseMp3(ReadFile(path));
    EXPECT_FALSE(stream.Broken);
    judged_.Add(path, {path},
                [size = sound.size()](const DecodedFile& file) { EXPECT_EQ(file.Samples.size(), size); });
    return stream;
  }
  Mp3Stream EncodeMusic() { return Encode(MakeMusic(44100, parameters_.Frequency, parameters_.Channels)); }

  std::set<int> BitratesOf(const std::vector<std::int16_t>& sound) {
    std::set<int> bitrates;
    for (const auto& frame : Encode(sound).Sound()) bitrates.insert(frame.Bitrate);
    return bitrates;
  }

  TempFolder folder_;
  Mp3Parameters parameters_;
  JudgedFiles judged_;
};

/// The bytes of all frames but the info frame.
std::string SoundOf(const Mp3Stream& stream) {
  return stream.Bytes.substr(stream.Frames.at(1).At);
}

std::size_t ShortGranules(const Mp3Stream& stream) {
  std::size_t count = 0;
  for (const auto& frame : stream.Sound()) {
    for (const auto& granule : frame.Granules) {
      for (const auto& channel : granule) count += channel.BlockType == 2 ? 1 : 0;
    }
  }
  return count;
}

std::size_t GranulesThatDiffer(const Mp3Stream& stream) {
  std::size_t count = 0;
  for (const auto& frame : stream.Sound()) {
    for (const auto& granule : frame.Granules) count += granule[0].BlockType != granule[1].BlockType ? 1 : 0;
  }
  return count;
}

std::vector<std::int16_t> NoiseThenSilence() {
  auto sound = MakeNoise(88200, 5);
  sound.resize(4 * 44100);
  return sound;
}

TEST_F(Mp3ParametersTest, TypeStereoSetsTheModeBits) {
  struct Row {
    std::int16_t Type;
    int Mode;
  };
  for (const Row& row : {Row{0, 1}, Row{1, 0}, Row{2, 1}, Row{3, 1}, Row{4, 2}}) {
    parameters_.TypeStereo = row.Type;
    for (const auto& frame : EncodeMusic().Frames) ASSERT_EQ(frame.Mode, row.Mode) << row.Type;
  }
}

TEST_F(Mp3ParametersTest, ForcedJointCodesEveryFrameAsSumAndDifference) {
  const auto apart = [&] {
    std::size_t count = 0;
    for (const auto& frame : EncodeMusic().Sound()) count += (frame.ModeExtension & 2) == 0 ? 1 : 0;
    return count;
  };
  parameters_.TypeStereo = 3;
  EXPECT_EQ(apart(), 0U);
  parameters_.TypeStereo = 2;
  EXPECT_GT(apart(), 0U) << "joint stereo takes what suits the sound";
}

TEST_F(Mp3ParametersTest, ChannelsOneIsMonoWhateverTypeStereoSays) {
  parameters_.Channels = 1;
  for (std::int16_t type = 0; type <= 4; ++type) {
    parameters_.TypeStereo = type;
    for (const auto& frame : EncodeMusic().Frames) ASSERT_EQ(frame.Mode, 3);
  }
}

TEST_F(Mp3ParametersTest, FrequencyIsThatOfEveryFrame) {
  for (const std::int32_t rate : {16000, 48000}) {
    parameters_.Frequency = rate;
    for (const auto& frame : EncodeMusic().Frames) ASSERT_EQ(frame.Rate, rate);
  }
}

TEST_F(Mp3ParametersTest, BitrateIsThatOfEveryFrame) {
  for (const std::int16_t bitrate : {32, 160, 320}) {
    parameters_.Bitrate = bitrate;
    EXPECT_EQ(BitratesOf(MakeNoise(88200, 1)), std::set<int>{bitrate});
  }
}

TEST_F(Mp3ParametersTest, CodingMethodsVaryTheBitrateButForTheConstantOne) {
  const auto sound = NoiseThenSilence();
  EXPECT_EQ(BitratesOf(sound).size(), 1U);
  for (std::int16_t method = 0; method <= 4; ++method) {
    parameters_.VBRCodingMethod = method;
    parameters_.VBRTargetBitrate = 128;
    EXPECT_GT(BitratesOf(sound).size(), 1U) << method;
  }
}

TEST_F(Mp3ParametersTest, CodingMethodIsInTheInfoFrame) {
  const int expected[] = {1, 4, 3, 4, 4, 2};
  for (std::int16_t method = -1; method <= 4; ++method) {
    parameters_.VBRCodingMethod = method;
    parameters_.VBRTargetBitrate = 128;
    EXPECT_EQ(ParseInfo(EncodeMusic()).Method, expected[method + 1]) << method;
  }
}

TEST_F(Mp3ParametersTest, VbrMaxBitrateIsNeverExceeded) {
  for (const std::int16_t method : {0, 1, 2, 3, 4}) {
    for (const std::int16_t most : {64, 128, 160, 0}) {
      parameters_.VBRCodingMethod = method;
      parameters_.VBRQuality = 0;
      parameters_.VBRTargetBitrate = 256;
      parameters_.VBRMaxBitrate = most;
      const auto bitrates = BitratesOf(MakeNoise(88200, 2));
      if (most != 0) {
        EXPECT_LE(*bitrates.rbegin(), most) << method;
      } else {
        EXPECT_GT(*bitrates.rbegin(), 160) << method;
      }
    }
  }
}

TEST_F(Mp3ParametersTest, AnEnforcedMinimumHoldsInSilenceToo) {
  for (const std::int16_t method : {0, 1, 4}) {
    parameters_.VBRCodingMethod = method;
    parameters_.VBRTargetBitrate = 160;
    parameters_.Bitrate = 112;
    parameters_.VBREnforceMinBitRate = true;
    EXPECT_GE(*BitratesOf(NoiseThenSilence()).begin(), 112) << method;
    parameters_.VBREnforceMinBitRate = false;
    EXPECT_LT(*BitratesOf(NoiseThenSilence()).begin(), 112) << method;
  }
}

TEST_F(Mp3ParametersTest, VbrQualityChangesTheSize) {
  for (const std::int16_t method : {0, 1}) {
    parameters_.VBRCodingMethod = method;
    std::size_t last = 1U << 30;
    for (const std::int16_t quality : {0, 4, 9}) {
      parameters_.VBRQuality = quality;
      const std::size_t size = Encode(MakeNoise(88200, 3)).Bytes.size();
      EXPECT_LT(size, last) << method << " " << quality;
      last = size;
    }
  }
}

TEST_F(Mp3ParametersTest, AverageBitrateIsNearItsTarget) {
  parameters_.VBRCodingMethod = 4;
  const auto sound = MakeNoise(5 * 88200, 4);
  for (const std::int16_t target : {80, 128, 200}) {
    parameters_.VBRTargetBitrate = target;
    const double average = static_cast<double>(Encode(sound).Bytes.size() - 4096) * 8 / 5 / 1000;
    EXPECT_NEAR(average, target, target * 0.15);
  }
}

TEST_F(Mp3ParametersTest, QualityChangesTheSound) {
  std::set<std::string> sounds;
  for (const std::int16_t quality : {0, 5, 9}) {
    parameters_.Quality = quality;
    sounds.insert(SoundOf(EncodeMusic()));
  }
  EXPECT_EQ(sounds.size(), 3U);
}

TEST_F(Mp3ParametersTest, VbrHeaderIsTheSeekTableAndTheLengthIsThereWithoutIt) {
  for (const std::int16_t method : {-1, 0}) {
    parameters_.VBRCodingMethod = method;
    for (const bool header : {false, true}) {
      parameters_.VBRHeader = header;
      const auto stream = EncodeMusic();
      const auto info = ParseInfo(stream);
      EXPECT_EQ(info.HasTable, header);
      EXPECT_EQ(info.Frames * 1152 - info.Delay - info.Padding, 44100);
      EXPECT_EQ(info.Bytes, static_cast<long>(stream.Bytes.size()) - 4096);
    }
  }
}

TEST_F(Mp3ParametersTest, SeekTableLeadsToTheRightPlace) {
  parameters_.VBRCodingMethod = 0;
  const auto stream = Encode(NoiseThenSilence());
  const auto info = ParseInfo(stream);
  for (std::size_t i = 1; i < 100; ++i) {
    const double at = info.Table[i] / 256.0 * static_cast<double>(info.Bytes) + 4096;
    const auto frame =
        std::upper_bound(stream.Frames.begin(), stream.Frames.end(), at,
                         [](double a, const Mp3Frame& f) { return a < static_cast<double>(f.At); });
    const auto index = static_cast<double>(frame - stream.Frames.begin());
    // In silence frames are small, and a step of the table is several of them.
    EXPECT_NEAR(index / static_cast<double>(info.Frames), static_cast<double>(i) / 100, 0.05) << i;
  }
}

TEST_F(Mp3ParametersTest, BitReservoirOffLetsNoFrameReachBack) {
  parameters_.BitReservoir = false;
  for (const auto& frame : Encode(MakeClicks(88200, 44100, 2)).Sound()) ASSERT_EQ(frame.MainDataBegin, 0);
  parameters_.BitReservoir = true;
  const auto frames = Encode(MakeClicks(88200, 44100, 2)).Sound();
  EXPECT_TRUE(
      std::any_of(frames.begin(), frames.end(), [](const Mp3Frame& f) { return f.MainDataBegin > 0; }));
}

TEST_F(Mp3ParametersTest, ShortBlocksAreInTheFileOnlyIfAllowed) {
  const auto clicks = MakeClicks(88200, 44100, 2);
  parameters_.ShortBlocks = true;
  EXPECT_GT(ShortGranules(Encode(clicks)), 0U);
  for (const bool different : {false, true}) {
    parameters_.ShortBlocks = false;
    parameters_.DifferentBlockTypes = different;
    EXPECT_EQ(ShortGranules(Encode(clicks)), 0U);
  }
}

TEST_F(Mp3ParametersTest, DifferentBlockTypesAreInADualChannelFileOnlyIfAllowed) {
  const auto clicks = MakeClicks(88200, 44100, 2);
  parameters_.TypeStereo = 4;
  parameters_.DifferentBlockTypes = true;
  EXPECT_GT(GranulesThatDiffer(Encode(clicks)), 0U);
  parameters_.DifferentBlockTypes = false;
  EXPECT_EQ(GranulesThatDiffer(Encode(clicks)), 0U);
}

TEST_F(Mp3ParametersTest, DeEmphasisSetsTheEmphasisBits) {
  const int bits[] = {0, 1, 3};
  for (std::int16_t emphasis = 0; emphasis <= 2; ++emphasis) {
    parameters_.DeEmphasis = emphasis;
    for (const auto& frame : EncodeMusic().Frames) ASSERT_EQ(frame.Emphasis, bits[emphasis]);
  }
}

TEST_F(Mp3ParametersTest, IncludeCrcProtectsEveryFrameOfSound) {
  for (const bool crc : {false, true}) {
    parameters_.IncludeCRC = crc;
    for (const auto& frame : EncodeMusic().Sound()) ASSERT_EQ(frame.Crc, crc);
  }
}

TEST_F(Mp3ParametersTest, ComplyIsoBoundsAFrameTogetherWithWhatItReachesBackFor) {
  const auto clicks = MakeClicks(88200, 44100, 2);
  const auto mostBits = [&] {
    std::size_t most = 0;
    for (const auto& frame : Encode(clicks).Sound()) {
      most = std::max(most, 8 * (frame.Bytes + static_cast<std::size_t>(frame.MainDataBegin)));
    }
    return most;
  };
  parameters_.Bitrate = 320;
  parameters_.ComplyISO = true;
  EXPECT_LE(mostBits(), 8368U) << "the standard's buffer is one such frame";
  parameters_.ComplyISO = false;
  EXPECT_GT(mostBits(), 8368U);
}

TEST_F(Mp3ParametersTest, AthControlTwoChangesTheSound) {
  const auto soundOf = [&](std::int16_t control) {
    parameters_.ATHControl = control;
    return SoundOf(EncodeMusic());
  };
  EXPECT_EQ(soundOf(0), soundOf(0));
  EXPECT_NE(soundOf(2), soundOf(0));
}

class Mp3FiltersTest : public Mp3ParametersTest {
 protected:
  /// Levels in dB of tones after encoding.
  std::vector<double> Levels(const std::vector<double>& tones) {
    parameters_.Bitrate = 320;
    const auto sound = MakeTones(88200, 44100, 2, tones);
    const auto decoded = DecodeTogether({{Write(sound)}}).front().Samples;
    EXPECT_EQ(decoded.size(), sound.size());
    std::vector<double> levels;
    levels.reserve(tones.size());
    for (const double tone : tones)
      levels.push_back(ToneLevel(decoded, 2, 44100, tone) - ToneLevel(sound, 2, 44100, tone));
    return levels;
  }
};

TEST_F(Mp3FiltersTest, NoFilterLeavesTonesFromLowToHigh) {
  for (const double level : Levels({60, 1000, 12000, 19000})) EXPECT_NEAR(level, 0, 1.5);
}

TEST_F(Mp3FiltersTest, LowPassCutsAboveItsFrequency) {
  parameters_.LowPassFilterFreq = 8000;
  parameters_.LowPassFilterWidth = 500;
  const auto levels = Levels({1000, 6000, 10000, 15000});
  EXPECT_NEAR(levels[0], 0, 1.5);
  EXPECT_NEAR(levels[1], 0, 1.5);
  EXPECT_LT(levels[2], -40);
  EXPECT_LT(levels[3], -40);
}

TEST_F(Mp3FiltersTest, HighPassCutsBelowItsFrequency) {
  parameters_.HighPassFilterFreq = 4000;
  parameters_.HighPassFilterWidth = 500;
  const auto levels = Levels({500, 1500, 7000, 12000});
  EXPECT_LT(levels[0], -40);
  EXPECT_LT(levels[1], -40);
  EXPECT_NEAR(levels[2], 0, 1.5);
  EXPECT_NEAR(levels[3], 0, 1.5);
}

TEST_F(Mp3FiltersTest, WidthsMakeTheSlopesGentler) {
  parameters_.LowPassFilterFreq = 14000;
  parameters_.LowPassFilterWidth = 100;
  const double steepLow = Levels({1000, 11000})[1];
  parameters_.LowPassFilterWidth = 8000;
  EXPECT_LT(Levels({1000, 11000})[1], steepLow - 1);

  parameters_.LowPassFilterFreq = -1;
  parameters_.HighPassFilterFreq = 3000;
  parameters_.HighPassFilterWidth = 100;
  const double steepHigh = Levels({5000, 12000})[0];
  parameters_.HighPassFilterWidth = 8000;
  EXPECT_LT(Levels({5000, 12000})[0], steepHigh - 1);
}

}  // namespace
}  // namespace kestrune::test
