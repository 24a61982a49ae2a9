// What of the parameters reaches LAME, read back from LAME: for those whose effect on a file depends on the
// sound.
#include <filesystem>
#include <memory>
#include <random>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/codec/CaptureErrors.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/JudgedFiles.h"
#include "platform/codec/LameSettings.h"
#include "platform/codec/Mp3Bitrates.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::Mp3Parameters;

class LameSettingsTest : public testing::Test {
 protected:
  lame_global_flags* Apply(const Mp3Parameters& parameters) {
    lame_.reset(lame_init());
    EXPECT_EQ(platform::ApplyMp3Parameters(lame_.get(), platform::WithRealBitrates(parameters)),
              platform::kCreated);
    return lame_.get();
  }
  static Mp3Parameters Base() {
    Mp3Parameters parameters;
    parameters.Bitrate = 128;
    parameters.TypeStereo = 2;
    return parameters;
  }

 private:
  struct CloseLame {
    void operator()(lame_global_flags* lame) const { lame_close(lame); }
  };
  std::unique_ptr<lame_global_flags, CloseLame> lame_;
};

TEST_F(LameSettingsTest, CodingMethodsAreLamesOwn) {
  const vbr_mode expected[] = {vbr_off, vbr_mtrh, vbr_rh, vbr_mtrh, vbr_mtrh, vbr_abr};
  for (std::int16_t method = -1; method <= 4; ++method) {
    auto parameters = Base();
    parameters.VBRCodingMethod = method;
    parameters.VBRTargetBitrate = 100;
    EXPECT_EQ(lame_get_VBR(Apply(parameters)), expected[method + 1]) << method;
  }
}

TEST_F(LameSettingsTest, QualitiesAreTakenUnchanged) {
  for (std::int16_t quality = 0; quality <= 9; ++quality) {
    auto parameters = Base();
    parameters.VBRCodingMethod = 1;
    parameters.Quality = quality;
    parameters.VBRQuality = static_cast<std::int16_t>(9 - quality);
    auto* const lame = Apply(parameters);
    EXPECT_EQ(lame_get_quality(lame), quality);
    EXPECT_EQ(lame_get_VBR_q(lame), 9 - quality);
  }
}

TEST_F(LameSettingsTest, LimitsMoveInwardsToTheTable) {
  auto parameters = Base();
  parameters.VBRCodingMethod = 0;
  parameters.VBREnforceMinBitRate = true;
  parameters.Bitrate = 100;
  parameters.VBRMaxBitrate = 200;
  auto* lame = Apply(parameters);
  EXPECT_EQ(lame_get_VBR_min_bitrate_kbps(lame), 112);
  EXPECT_EQ(lame_get_VBR_max_bitrate_kbps(lame), 192);
  EXPECT_EQ(lame_get_VBR_hard_min(lame), 1);
  parameters.VBREnforceMinBitRate = false;
  parameters.VBRMaxBitrate = 0;
  lame = Apply(parameters);
  EXPECT_EQ(lame_get_VBR_min_bitrate_kbps(lame), 32);
  EXPECT_EQ(lame_get_VBR_max_bitrate_kbps(lame), 320);
  EXPECT_EQ(lame_get_VBR_hard_min(lame), 0);
}

TEST_F(LameSettingsTest, AthControlSetsOneSwitchAtMost) {
  for (std::int16_t control = 0; control <= 3; ++control) {
    auto parameters = Base();
    parameters.ATHControl = control;
    auto* const lame = Apply(parameters);
    EXPECT_EQ(lame_get_ATHonly(lame), control == 1 ? 1 : 0);
    EXPECT_EQ(lame_get_noATH(lame), control == 2 ? 1 : 0);
    EXPECT_EQ(lame_get_ATHshort(lame), control == 3 ? 1 : 0);
  }
}

TEST_F(LameSettingsTest, BlockSwitchesDoNotUndoEachOther) {
  for (const bool shortBlocks : {false, true}) {
    for (const bool different : {false, true}) {
      auto parameters = Base();
      parameters.ShortBlocks = shortBlocks;
      parameters.DifferentBlockTypes = different;
      auto* const lame = Apply(parameters);
      EXPECT_EQ(lame_get_no_short_blocks(lame), shortBlocks ? 0 : 1);
      EXPECT_EQ(lame_get_allow_diff_short(lame), shortBlocks && different ? 1 : 0);
    }
  }
}

TEST_F(LameSettingsTest, StrictIsoAndReservoirAreSet) {
  for (const bool on : {false, true}) {
    auto parameters = Base();
    parameters.ComplyISO = on;
    parameters.BitReservoir = on;
    auto* const lame = Apply(parameters);
    EXPECT_EQ(lame_get_strict_ISO(lame), on ? 1 : 0);
    EXPECT_EQ(lame_get_disable_reservoir(lame), on ? 0 : 1);
  }
}

TEST_F(LameSettingsTest, FilterWidthsGoWithTheirFilters) {
  auto parameters = Base();
  parameters.LowPassFilterWidth = 500;
  parameters.HighPassFilterWidth = 5;
  auto* lame = Apply(parameters);
  EXPECT_EQ(lame_get_lowpassfreq(lame), -1);
  EXPECT_EQ(lame_get_highpassfreq(lame), -1);
  parameters.LowPassFilterFreq = 16000;
  parameters.HighPassFilterFreq = 30;
  lame = Apply(parameters);
  EXPECT_EQ(lame_get_lowpassfreq(lame), 16000);
  EXPECT_EQ(lame_get_lowpasswidth(lame), 500);
  EXPECT_EQ(lame_get_highpassfreq(lame), 30);
  EXPECT_EQ(lame_get_highpasswidth(lame), 5);
}

TEST_F(LameSettingsTest, NothingIsResampledInside) {
  for (const std::int32_t rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    auto parameters = Base();
    parameters.Frequency = rate;
    parameters.Bitrate = 32;
    auto* const lame = Apply(parameters);
    ASSERT_EQ(lame_init_params(lame), 0);
    EXPECT_EQ(lame_get_in_samplerate(lame), rate);
    EXPECT_EQ(lame_get_out_samplerate(lame), rate);
  }
}

/// Parameters drawn at random, on and off their ranges: each is refused, or gives a file of whole frames
/// whose info frame gives the exact length.
TEST(RandomMp3Parameters, GiveAnExactFileOrARefusalAndNeverACrash) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE(fmt::format("seed {}", seed));
  std::mt19937 random(seed);
  const auto pick = [&](std::initializer_list<int> values) {
    return static_cast<std::int16_t>(*(values.begin() + random() % values.size()));
  };
  const auto coin = [&] { return random() % 2 == 0; };
  TempFolder folder;
  JudgedFiles judged;
  int accepted = 0;
  for (int run = 0; run < 300; ++run) {
    Mp3Parameters p;
    const std::int32_t rates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
    p.Frequency = rates[random() % 9];
    p.Channels = pick({1, 2});
    p.Bitrate = pick({8, 16, 32, 40, 56, 64, 64, 128, 160, 320, 0, 100});
    p.VBRCodingMethod = pick({-1, 0, 1, 2, 3, 4});
    p.VBRMaxBitrate = pick({0, 8, 32, 64, 160, 320, 100});
    p.VBRTargetBitrate = pick({4, 32, 64, 128, 320});
    p.VBRQuality = pick({0, 4, 9});
    p.Quality = pick({0, 2, 5, 7, 9});
    p.TypeStereo = pick({0, 1, 2, 3, 4});
    p.VBRHeader = coin();
    p.BitReservoir = coin();
    p.DifferentBlockTypes = coin();
    p.ShortBlocks = coin();
    p.DeEmphasis = pick({0, 1, 2});
    p.ComplyISO = coin();
    p.VBREnforceMinBitRate = coin();
    p.ATHControl = pick({0, 1, 2, 3});
    p.LowPassFilterFreq = pick({-1, -1, 0, 10, 3000, 16000, 30000, 32767});
    p.HighPassFilterFreq = pick({-1, -1, 0, 10, 30, 3000, 20000, 32767});
    p.LowPassFilterWidth = pick({-1, 0, 10, 500, 20000, 32767});
    p.HighPassFilterWidth = pick({-1, 0, 5, 500, 20000, 32767});
    p.IncludeCRC = coin();
    const std::string shape = fmt::format(
        "run {}: {} Hz {} ch, {} kbit/s, method {}, max {}, target {}, q {} {}, stereo {}, low {} {}, high "
        "{} {}, "
        "ath {}, emphasis {}, flags {}{}{}{}{}{}{}",
        run, p.Frequency, p.Channels, p.Bitrate, p.VBRCodingMethod, p.VBRMaxBitrate, p.VBRTargetBitrate,
        p.Quality, p.VBRQuality, p.TypeStereo, p.LowPassFilterFreq, p.LowPassFilterWidth,
        p.HighPassFilterFreq, p.HighPassFilterWidth, p.ATHControl, p.DeEmphasis, p.VBRHeader, p.BitReservoir,
        p.DifferentBlockTypes, p.ShortBlocks, p.ComplyISO, p.VBREnforceMinBitRate, p.IncludeCRC);
    SCOPED_TRACE(shape);
    const std::string path = folder.NewPath("mp3");
    platform::EncodedFile file;
    file.SetFormat(p);
    if (!file.Create(path)) {
      ASSERT_FALSE(std::filesystem::exists(path));
      continue;
    }
    ++accepted;
    const std::size_t frames = 1 + random() % 9000;
    const auto sound =
        coin() ? MakeClicks(frames, p.Frequency, p.Channels)
               : MakeNoise(frames * static_cast<std::size_t>(p.Channels), static_cast<unsigned>(run));
    ASSERT_TRUE(WriteBlocks(file, sound));
    EXPECT_TRUE(file.Close());
    const auto stream = ParseMp3(ReadFile(path));
    ASSERT_FALSE(stream.Broken);
    const auto info = ParseInfo(stream);
    const long frameSamples = p.Frequency >= 32000 ? 1152 : 576;
    ASSERT_EQ(info.Frames, static_cast<long>(stream.Frames.size()) - 1);
    ASSERT_EQ(info.Frames * frameSamples - info.Delay - info.Padding, static_cast<long>(frames));
    // ffmpeg does not cut the front off whole if the end is cut in the second frame already.
    if (run % 10 == 0 && frames >= 48) {
      judged.Add(shape, {path}, [size = sound.size()](const DecodedFile& decoded) {
        EXPECT_EQ(decoded.Samples.size(), size);
      });
    } else {
      std::filesystem::remove(path);
    }
  }
  judged.JudgeAll();
  EXPECT_GT(accepted, 50);
}

}  // namespace
}  // namespace kestrune::test
