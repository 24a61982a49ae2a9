#include <cstdint>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/formats/FileSpecs.h"
#include "support/RecordingCaptureFile.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FileSpecsTest : public ::testing::Test {
 protected:
  RecordingCaptureFile file0_;
  RecordingCaptureFile file1_;
  config::FormatSettings settings_;
  std::int16_t captureSlot_ = 0;
  std::optional<std::string> scheduled_;
  config::FileSpecs specs_{[this](std::int16_t slot) { return slot == 0 ? &file0_ : &file1_; }, settings_,
                           captureSlot_, [this] { return scheduled_; }};
};

TEST_F(FileSpecsTest, ASlotIsNamedDirectly) {
  settings_.FileFormat = "WAV";
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatWAV 44100 2 16"));
  EXPECT_THAT(file1_.Calls, IsEmpty());
  specs_.SetFileSpecs(1);
  EXPECT_THAT(file1_.Calls, ElementsAre("SetFormatWAV 44100 2 16"));
}

TEST_F(FileSpecsTest, MinusOneWhileSlotOneIsWrittenPreparesAndDescribesSlotZero) {
  captureSlot_ = 1;
  settings_.FileFormat = "VOX";
  specs_.SetFileSpecs(1);
  settings_.FileFormat = "WAV";
  specs_.SetFileSpecs(-1);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatWAV 44100 2 16"));
  EXPECT_THAT(file1_.Calls, ElementsAre("SetFormatVOX 44100"));
  EXPECT_EQ(specs_.FileFormatString(), "SetFormatWAV 44100 2 16");
}

TEST_F(FileSpecsTest, MinusOneWhileSlotZeroIsWrittenPreparesSlotOne) {
  settings_.FileFormat = "WAV";
  specs_.SetFileSpecs(-1);
  EXPECT_THAT(file0_.Calls, IsEmpty());
  EXPECT_THAT(file1_.Calls, ElementsAre("SetFormatWAV 44100 2 16"));
}

TEST_F(FileSpecsTest, AnyOtherSlotDoesNothing) {
  settings_.FileFormat = "WAV";
  specs_.SetFileSpecs(0);
  settings_.FileFormat = "VOX";
  for (const std::int16_t slot : {std::int16_t{2}, std::int16_t{-2}, std::int16_t{32767}}) {
    specs_.SetFileSpecs(slot);
  }
  EXPECT_EQ(file0_.Calls.size(), 1U);
  EXPECT_THAT(file1_.Calls, IsEmpty());
  EXPECT_EQ(specs_.FileFormatString(), "SetFormatWAV 44100 2 16");
}

TEST_F(FileSpecsTest, BeforeTheFirstPreparationThereIsNoDescription) {
  EXPECT_EQ(specs_.FileFormatString(), "");
}

TEST_F(FileSpecsTest, AnUnknownCodeLeavesTheFormatAndStillReadsTheDescription) {
  settings_.FileFormat = "VOX";
  specs_.SetFileSpecs(1);
  for (const char* code : {"mp3", "", "AAC", "MP3 "}) {
    settings_.FileFormat = code;
    specs_.SetFileSpecs(0);
    EXPECT_THAT(file0_.Calls, IsEmpty()) << code;
    EXPECT_EQ(specs_.FileFormatString(), "nothing prepared") << code;
  }
}

TEST_F(FileSpecsTest, G726TakesItsRecord) {
  settings_.FileFormat = "G726";
  settings_.Format726 = {8000, 3};
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatG726 8000 3"));
}

TEST_F(FileSpecsTest, RawTakesItsRecordAndAlwaysSixteen) {
  settings_.FileFormat = "RAW";
  settings_.FormatRAW = {22050, 3, 1};
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatRAW 3 22050 1 16"));
}

TEST_F(FileSpecsTest, VoxTakesItsRecord) {
  settings_.FileFormat = "VOX";
  settings_.FormatVOX = {8000};
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatVOX 8000"));
}

TEST_F(FileSpecsTest, WavTakesItsRecord) {
  settings_.FileFormat = "WAV";
  settings_.FormatWAV = {11025, 1, 8};
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatWAV 11025 1 8"));
}

// All numbers differ, so that swapped fields would be noticed.
TEST_F(FileSpecsTest, Mp3TakesEachFieldOfItsRecord) {
  settings_.FormatMP3 = {.Frequency = 32000,
                         .Bitrate = 11,
                         .Channels = 1,
                         .Quality = 3,
                         .HighPassFilter = true,
                         .HighPassFilterFreq = 40,
                         .HighPassFilterWidth = 41,
                         .LowPassFilter = true,
                         .LowPassFilterFreq = 42,
                         .LowPassFilterWidth = 43,
                         .VBRCodingMethod = 2,
                         .VBRMaxBitrate = 12,
                         .VBRQuality = 5,
                         .VBRHeader = false,
                         .VBREnforceMinBitRate = false,
                         .VBRTargetBitrate = 13,
                         .IncludeCRC = false,
                         .ComplyISO = false,
                         .DifferentBlockTypes = false,
                         .ShortBlocks = false,
                         .BitReservoir = false,
                         .ATHControl = 6,
                         .DeEmphasis = 7,
                         .TypeStereo = 4};
  specs_.SetFileSpecs(0);
  EXPECT_EQ(file0_.Mp3.Frequency, 32000);
  EXPECT_EQ(file0_.Mp3.Bitrate, 11);
  EXPECT_EQ(file0_.Mp3.Channels, 1);
  EXPECT_EQ(file0_.Mp3.Quality, 3);
  EXPECT_EQ(file0_.Mp3.HighPassFilterFreq, 40);
  EXPECT_EQ(file0_.Mp3.HighPassFilterWidth, 41);
  EXPECT_EQ(file0_.Mp3.LowPassFilterFreq, 42);
  EXPECT_EQ(file0_.Mp3.LowPassFilterWidth, 43);
  EXPECT_EQ(file0_.Mp3.VBRCodingMethod, 2);
  EXPECT_EQ(file0_.Mp3.VBRMaxBitrate, 12);
  EXPECT_EQ(file0_.Mp3.VBRQuality, 5);
  EXPECT_EQ(file0_.Mp3.VBRTargetBitrate, 13);
  EXPECT_EQ(file0_.Mp3.ATHControl, 6);
  EXPECT_EQ(file0_.Mp3.DeEmphasis, 7);
  EXPECT_EQ(file0_.Mp3.TypeStereo, 4);
}

TEST_F(FileSpecsTest, Mp3TakesEachFlagOfItsRecord) {
  struct Flag {
    bool config::FormatMP3::*Record;
    bool platform::Mp3Parameters::*Parameter;
  };
  const Flag flags[] = {
      {&config::FormatMP3::VBRHeader, &platform::Mp3Parameters::VBRHeader},
      {&config::FormatMP3::VBREnforceMinBitRate, &platform::Mp3Parameters::VBREnforceMinBitRate},
      {&config::FormatMP3::IncludeCRC, &platform::Mp3Parameters::IncludeCRC},
      {&config::FormatMP3::ComplyISO, &platform::Mp3Parameters::ComplyISO},
      {&config::FormatMP3::DifferentBlockTypes, &platform::Mp3Parameters::DifferentBlockTypes},
      {&config::FormatMP3::ShortBlocks, &platform::Mp3Parameters::ShortBlocks},
      {&config::FormatMP3::BitReservoir, &platform::Mp3Parameters::BitReservoir},
  };
  settings_.FormatMP3.VBRHeader = false;
  for (std::size_t set = 0; set < std::size(flags); ++set) {
    settings_.FormatMP3.*flags[set].Record = true;
    specs_.SetFileSpecs(0);
    for (std::size_t i = 0; i < std::size(flags); ++i) {
      EXPECT_EQ(file0_.Mp3.*flags[i].Parameter, i == set) << "flag " << i << " when " << set << " is set";
    }
    settings_.FormatMP3.*flags[set].Record = false;
  }
}

TEST_F(FileSpecsTest, AFilterThatIsOffHasNoFrequencyButKeepsItsWidth) {
  settings_.FormatMP3.HighPassFilter = false;
  settings_.FormatMP3.HighPassFilterFreq = 30;
  settings_.FormatMP3.HighPassFilterWidth = 5;
  settings_.FormatMP3.LowPassFilter = false;
  settings_.FormatMP3.LowPassFilterFreq = 16000;
  settings_.FormatMP3.LowPassFilterWidth = 500;
  specs_.SetFileSpecs(0);
  EXPECT_EQ(file0_.Mp3.HighPassFilterFreq, -1);
  EXPECT_EQ(file0_.Mp3.HighPassFilterWidth, 5);
  EXPECT_EQ(file0_.Mp3.LowPassFilterFreq, -1);
  EXPECT_EQ(file0_.Mp3.LowPassFilterWidth, 500);
}

TEST_F(FileSpecsTest, EachFilterHasItsOwnSwitch) {
  settings_.FormatMP3.HighPassFilter = true;
  specs_.SetFileSpecs(0);
  EXPECT_EQ(file0_.Mp3.HighPassFilterFreq, 30);
  EXPECT_EQ(file0_.Mp3.LowPassFilterFreq, -1);
  settings_.FormatMP3.HighPassFilter = false;
  settings_.FormatMP3.LowPassFilter = true;
  specs_.SetFileSpecs(0);
  EXPECT_EQ(file0_.Mp3.HighPassFilterFreq, -1);
  EXPECT_EQ(file0_.Mp3.LowPassFilterFreq, 16000);
}

TEST_F(FileSpecsTest, AScheduleEntryGivesMp3ItsBitrateAndChannels) {
  struct Row {
    const char* Text;
    std::int16_t Bitrate;
    std::int16_t Channels;
  };
  const Row rows[] = {{"128 Stereo", 128, 2},
                      {"64 Mono", 64, 1},
                      {"8 Mono", 8, 1},
                      {" ", 0, 2},
                      {"", 0, 2},
                      {"Mono", 0, 1},
                      {"64 mono", 64, 2},
                      {"64.9 Stereo", 64, 2},
                      {"99999 Mono", 0, 1},
                      {"64Mono!", 64, 1},
                      {"Stereo 128", 0, 2}};
  for (const Row& row : rows) {
    scheduled_ = row.Text;
    specs_.SetFileSpecs(0);
    EXPECT_EQ(file0_.Mp3.Bitrate, row.Bitrate) << row.Text;
    EXPECT_EQ(file0_.Mp3.Channels, row.Channels) << row.Text;
  }
}

TEST_F(FileSpecsTest, AScheduledMonoLeavesTheStereoTypeUntouched) {
  settings_.FormatMP3.TypeStereo = 3;
  scheduled_ = "64 Mono";
  specs_.SetFileSpecs(0);
  EXPECT_EQ(file0_.Mp3.TypeStereo, 3);
}

TEST_F(FileSpecsTest, AfterTheScheduleTheRecordCountsAgain) {
  scheduled_ = "64 Mono";
  specs_.SetFileSpecs(0);
  scheduled_.reset();
  specs_.SetFileSpecs(1);
  EXPECT_EQ(file1_.Mp3.Bitrate, 160);
  EXPECT_EQ(file1_.Mp3.Channels, 2);
}

TEST_F(FileSpecsTest, AScheduleHasNoEffectOnOgg) {
  settings_.FileFormat = "OGG";
  scheduled_ = "64 Mono";
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatOgg 44100 2 160 0 0 -1"));
}

TEST_F(FileSpecsTest, AScheduleHasNoEffectOnTheOtherFormats) {
  scheduled_ = "64 Mono";
  for (const char* code : {"WAV", "RAW", "VOX", "G726"}) {
    settings_.FileFormat = code;
    specs_.SetFileSpecs(0);
  }
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatWAV 44100 2 16", "SetFormatRAW 0 44100 2 16",
                                        "SetFormatVOX 44100", "SetFormatG726 44100 4"));
}

TEST_F(FileSpecsTest, OggIsBitrateManagedWithoutLimitsByDefault) {
  settings_.FileFormat = "OGG";
  settings_.FormatOGG.Bitrate = 256;
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatOgg 44100 2 256 0 0 -1"));
}

TEST_F(FileSpecsTest, OggWithVariableBitrateHasLimits) {
  settings_.FileFormat = "OGG";
  settings_.FormatOGG.VbrEnabled = true;
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatOgg 44100 2 160 128 192 -1"));
}

TEST_F(FileSpecsTest, OggQualityWinsOverVariableBitrate) {
  settings_.FileFormat = "OGG";
  settings_.FormatOGG.Bitrate = 256;
  settings_.FormatOGG.VbrEnabled = true;
  settings_.FormatOGG.QualityEnabled = true;
  settings_.FormatOGG.Quality = 7;
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatOgg 44100 2 128 0 0 7"));
}

TEST_F(FileSpecsTest, FlacIsStereoAtItsLevelWhateverASchedulesBitRateSays) {
  settings_.FileFormat = "FLAC";
  specs_.SetFileSpecs(0);
  settings_.FormatFLAC.Level = 8;
  scheduled_ = "64 Mono";
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatFLAC 44100 2 5", "SetFormatFLAC 44100 2 8"));
}

TEST_F(FileSpecsTest, OpusIsStereoAtItsOwnRateWhateverASchedulesBitRateSays) {
  settings_.FileFormat = "OPUS";
  specs_.SetFileSpecs(0);
  settings_.FormatOPUS = {.Bitrate = 48, .Voice = true};
  scheduled_ = "64 Mono";
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatOpus 48000 2 128 0", "SetFormatOpus 48000 2 48 1"));
}

TEST_F(FileSpecsTest, EachPreparationReadsTheSettingsAfresh) {
  settings_.FileFormat = "WAV";
  specs_.SetFileSpecs(0);
  settings_.FormatWAV.Channels = 1;
  specs_.SetFileSpecs(0);
  EXPECT_THAT(file0_.Calls, ElementsAre("SetFormatWAV 44100 2 16", "SetFormatWAV 44100 1 16"));
}

}  // namespace
}  // namespace kestrune::test
