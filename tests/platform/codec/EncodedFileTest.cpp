#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/codec/CaptureErrors.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::EncodedFile;
using platform::Mp3Parameters;

Mp3Parameters Defaults() {
  Mp3Parameters parameters;
  parameters.Bitrate = 160;
  parameters.TypeStereo = 2;
  parameters.Quality = 4;
  parameters.VBRHeader = true;
  parameters.VBRMaxBitrate = 160;
  parameters.VBRQuality = 4;
  parameters.VBRTargetBitrate = 128;
  return parameters;
}

class EncodedFileTest : public testing::Test {
 protected:
  std::int16_t ResultOf(const std::function<void(EncodedFile&)>& prepare) {
    prepare(file_);
    const std::int16_t result = file_.Create(path_).Number;
    if (result < 0) {
      EXPECT_FALSE(std::filesystem::exists(path_)) << "a refused format leaves no file";
      const std::vector<std::int16_t> block(64);
      EXPECT_FALSE(file_.WriteBlock(block));
      EXPECT_EQ(file_.Length(), 0);
    }
    EXPECT_TRUE(file_.Close());
    std::filesystem::remove(path_);
    return result;
  }

  std::int16_t Mp3Result(const std::function<void(Mp3Parameters&)>& change) {
    Mp3Parameters parameters = Defaults();
    change(parameters);
    return ResultOf([&](EncodedFile& file) { file.SetFormat(parameters); });
  }

  TempFolder folder_;
  std::string path_ = folder_.Path("capture");
  EncodedFile file_;
};

TEST_F(EncodedFileTest, CreateBeforeAnyFormatIsRefused) {
  EXPECT_EQ(ResultOf([](EncodedFile&) {}), platform::kNoFormat);
  EXPECT_EQ(file_.FormatDescription(), "No format");
}

TEST_F(EncodedFileTest, AMissingFolderIsReportedAndLeavesNothing) {
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_EQ(file_.Create(folder_.Path("missing/capture.wav")).Number, platform::kFileNotOpened);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("missing")));
  EXPECT_EQ(file_.Create(folder_.Path("")).Number, platform::kFileNotOpened);
}

TEST_F(EncodedFileTest, ALaterCreateForgetsAnEarlierFailure) {
  file_.SetFormat(platform::WavFormat{44100, 2, 7});
  EXPECT_LT(file_.Create(path_).Number, 0);
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_EQ(file_.Create(path_).Number, 0);
}

TEST_F(EncodedFileTest, ARefusedFormatLeavesAFileOfThatNameAsItWas) {
  WriteFile(path_, "precious");
  file_.SetFormat(platform::WavFormat{44100, 3, 16});
  EXPECT_EQ(file_.Create(path_).Number, platform::kShapeRefused);
  EXPECT_EQ(ReadFile(path_), "precious");
}

TEST_F(EncodedFileTest, RatesThatAFormatDoesNotKnowAreRefused) {
  for (const std::int32_t rate : {-44100, -1, 0, 1, 6000, 12345, 44101, 96000, 2147483647}) {
    EXPECT_EQ(Mp3Result([&](Mp3Parameters& p) { p.Frequency = rate; }), platform::kRateRefused) << rate;
  }
  for (const std::int32_t rate : {-44100, 0}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::WavFormat{rate, 2, 16});
              }),
              platform::kRateRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::RawFormat{1, rate, 2, 16});
              }),
              platform::kRateRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) { f.SetFormat(platform::VoxFormat{rate}); }),
              platform::kRateRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::G726Format{rate, 4});
              }),
              platform::kRateRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::OggFormat{rate, 2, 128, 0, 0, 4});
              }),
              platform::kRateRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::FlacFormat{rate, 2, 5});
              }),
              platform::kRateRefused);
  }
  EXPECT_LT(ResultOf([&](EncodedFile& f) { f.SetFormat(platform::OggFormat{2000000, 2, 128, 0, 0, 4}); }), 0);
  for (const std::int32_t rate : {-48000, 0, 7999, 48001, 2147483647}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::OpusFormat{rate, 2, 128});
              }),
              platform::kRateRefused);
  }
  for (const std::int32_t rate : {2000000, 100001}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::FlacFormat{rate, 2, 5});
              }),
              platform::kRateRefused);
  }
}

TEST_F(EncodedFileTest, ChannelsAndBitsThatAFormatDoesNotKnowAreRefused) {
  for (const std::int16_t channels : {-1, 0, 3, 6, 32767}) {
    EXPECT_EQ(Mp3Result([&](Mp3Parameters& p) { p.Channels = channels; }), platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::WavFormat{44100, channels, 16});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::RawFormat{1, 44100, channels, 16});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::OggFormat{44100, channels, 128, 0, 0, 4});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::FlacFormat{44100, channels, 5});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::OpusFormat{48000, channels, 128});
              }),
              platform::kShapeRefused);
  }
  for (const std::int16_t bits : {-16, 0, 1, 12, 24, 32}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::WavFormat{44100, 2, bits});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::RawFormat{1, 44100, 2, bits});
              }),
              platform::kShapeRefused);
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::G726Format{8000, bits});
              }),
              platform::kShapeRefused);
  }
  for (const std::int16_t compression : {-1, 4, 32767}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::RawFormat{compression, 44100, 2, 16});
              }),
              platform::kShapeRefused);
  }
}

TEST_F(EncodedFileTest, Mp3ParametersOutsideTheirRangesAreRefused) {
  const std::vector<std::function<void(Mp3Parameters&)>> rows{
      [](Mp3Parameters& p) { p.Quality = -1; },
      [](Mp3Parameters& p) { p.Quality = 10; },
      [](Mp3Parameters& p) { p.VBRQuality = -1; },
      [](Mp3Parameters& p) { p.VBRQuality = 10; },
      [](Mp3Parameters& p) { p.VBRCodingMethod = -2; },
      [](Mp3Parameters& p) { p.VBRCodingMethod = 5; },
      [](Mp3Parameters& p) { p.TypeStereo = -1; },
      [](Mp3Parameters& p) { p.TypeStereo = 5; },
      [](Mp3Parameters& p) { p.ATHControl = -1; },
      [](Mp3Parameters& p) { p.ATHControl = 4; },
      [](Mp3Parameters& p) { p.DeEmphasis = -1; },
      [](Mp3Parameters& p) { p.DeEmphasis = 3; },
      [](Mp3Parameters& p) { p.LowPassFilterFreq = -2; },
      [](Mp3Parameters& p) { p.HighPassFilterFreq = -2; },
      [](Mp3Parameters& p) { p.LowPassFilterWidth = -2; },
      [](Mp3Parameters& p) { p.HighPassFilterWidth = -2; },
  };
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(Mp3Result(rows[i]), platform::kParameterRefused) << i;
}

TEST_F(EncodedFileTest, OggParametersOutsideTheirRangesAreRefused) {
  const auto ogg = [&](std::int16_t nominal, std::int16_t least, std::int16_t most, std::int16_t quality) {
    return ResultOf([&](EncodedFile& f) {
      f.SetFormat(platform::OggFormat{44100, 2, nominal, least, most, quality});
    });
  };
  EXPECT_EQ(ogg(128, 0, 0, 11), platform::kParameterRefused);
  EXPECT_EQ(ogg(128, 0, 0, 400), platform::kParameterRefused);
  EXPECT_EQ(ogg(128, 0, 0, -2), platform::kParameterRefused);
  EXPECT_EQ(ogg(0, 0, 0, -1), platform::kBitrateRefused);
  EXPECT_EQ(ogg(160, 192, 128, -1), platform::kBitrateRefused)
      << "the sliders of the limits move independently";
  EXPECT_EQ(ogg(-128, 0, 0, -1), platform::kBitrateRefused);
  EXPECT_EQ(ogg(160, -1, 0, -1), platform::kBitrateRefused);
  EXPECT_EQ(ogg(0, 128, 192, -1), 0) << "the limits are enough";
  EXPECT_LT(ogg(32767, 0, 0, -1), 0);
}

TEST_F(EncodedFileTest, FlacLevelsOutsideTheirRangeAreRefused) {
  for (const std::int16_t level : {-1, 9, 32767}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::FlacFormat{44100, 2, level});
              }),
              platform::kParameterRefused);
  }
}

TEST_F(EncodedFileTest, OpusBitratesOutsideTheirRangeAreRefused) {
  for (const std::int16_t bitrate : {-128, 0, 31, 257, 32767}) {
    EXPECT_EQ(ResultOf([&](EncodedFile& f) {
                f.SetFormat(platform::OpusFormat{48000, 2, bitrate});
              }),
              platform::kBitrateRefused);
  }
  EXPECT_EQ(ResultOf([&](EncodedFile& f) { f.SetFormat(platform::OpusFormat{48000, 1, 256}); }), 0);
}

TEST_F(EncodedFileTest, SetFormatDoesNotTouchTheOpenFile) {
  const auto music = MakeMusic(10000, 44100, 2);
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  const std::string path = folder_.Path("a.wav");
  EXPECT_TRUE(file_.Create(path));
  ASSERT_TRUE(file_.WriteBlock(std::span(music).first(8000)));
  file_.SetFormat(platform::VoxFormat{8000});
  EXPECT_EQ(file_.FormatValues(), (platform::PcmFormat{8000, 1}));
  ASSERT_TRUE(file_.WriteBlock(std::span(music).subspan(8000)));
  EXPECT_EQ(file_.Length(), 10000 * 1000 / 44100);
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(DecodeWithFfmpeg(path), music);
}

TEST_F(EncodedFileTest, CreateReplacesAFileAndClosesTheOneThatIsOpen) {
  const auto music = MakeMusic(5000, 44100, 2);
  const std::string first = folder_.Path("a.wav");
  const std::string second = folder_.Path("b.wav");
  WriteFile(second, std::string(1000000, 'x'));
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_TRUE(file_.Create(first));
  ASSERT_TRUE(file_.WriteBlock(music));
  EXPECT_TRUE(file_.Create(second));
  EXPECT_EQ(file_.Length(), 0);
  ASSERT_TRUE(file_.WriteBlock(music));
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(DecodeWithFfmpeg(first), music);
  EXPECT_EQ(DecodeWithFfmpeg(second), music);
  EXPECT_LT(ReadFile(second).size(), 30000U);
}

TEST_F(EncodedFileTest, CloseWithoutAnOpenFileDoesNothing) {
  EXPECT_TRUE(file_.Close());
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_TRUE(file_.Close());
  EXPECT_TRUE(file_.Create(path_));
  EXPECT_TRUE(file_.Close());
  EXPECT_TRUE(file_.Close());
  const std::vector<std::int16_t> block(64);
  EXPECT_FALSE(file_.WriteBlock(block));
}

TEST_F(EncodedFileTest, LengthIsWholeMillisecondsAndStaysAfterClose) {
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_TRUE(file_.Create(path_));
  const std::vector<std::int16_t> second(88200);
  ASSERT_TRUE(file_.WriteBlock(std::span(second).first(2 * 44)));
  EXPECT_EQ(file_.Length(), 0);
  ASSERT_TRUE(file_.WriteBlock(std::span(second).first(2)));
  EXPECT_EQ(file_.Length(), 1);
  ASSERT_TRUE(file_.WriteBlock(second));
  EXPECT_EQ(file_.Length(), 1001);
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(file_.Length(), 1001);
}

TEST_F(EncodedFileTest, APartFrameIsNotTakenAndReported) {
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  const std::string path = folder_.Path("a.wav");
  EXPECT_TRUE(file_.Create(path));
  const std::vector<std::int16_t> samples{1, 2, 3, 4, 5};
  EXPECT_FALSE(file_.WriteBlock(samples));
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(DecodeWithFfmpeg(path), (std::vector<std::int16_t>{1, 2, 3, 4}));
}

TEST_F(EncodedFileTest, AFileWhoseEndNeverCameCanStillBePlayed) {
  const auto music = MakeMusic(100000, 44100, 2);
  const std::vector<std::pair<std::string, std::function<void()>>> rows{
      {"a.wav",
       [&] {
         file_.SetFormat(platform::WavFormat{44100, 2, 16});
       }},
      {"a.mp3", [&] { file_.SetFormat(Defaults()); }},
      {"a.ogg",
       [&] {
         file_.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, 4});
       }},
      {"a.flac",
       [&] {
         file_.SetFormat(platform::FlacFormat{44100, 2, 5});
       }},
      {"a.opus",
       [&] {
         file_.SetFormat(platform::OpusFormat{48000, 2, 128});
       }},
  };
  for (const auto& [name, prepare] : rows) {
    prepare();
    EXPECT_TRUE(file_.Create(folder_.Path(name)));
    ASSERT_TRUE(WriteBlocks(file_, music));
    const std::string copy = folder_.Path("killed-" + name);
    std::filesystem::copy_file(folder_.Path(name), copy);
    EXPECT_TRUE(file_.Close());
    EXPECT_GT(DecodeWithFfmpeg(copy).size(), music.size() / 4) << name;
  }
  EXPECT_EQ(DecodeWithFfmpeg(folder_.Path("killed-a.wav")), music);
}

TEST_F(EncodedFileTest, DescriptionsNameFormatAndMainParameters) {
  file_.SetFormat(Defaults());
  EXPECT_EQ(file_.FormatDescription(), "MP3, 160 kbit/s constant, 44100 Hz, joint stereo");
  const std::vector<std::string> stereo{"joint stereo", "simple stereo", "joint stereo",
                                        "forced joint stereo", "dual channel"};
  for (std::size_t i = 0; i < stereo.size(); ++i) {
    auto parameters = Defaults();
    parameters.TypeStereo = static_cast<std::int16_t>(i);
    file_.SetFormat(parameters);
    EXPECT_EQ(file_.FormatDescription(), "MP3, 160 kbit/s constant, 44100 Hz, " + stereo[i]);
  }
  auto parameters = Defaults();
  parameters.Channels = 1;
  parameters.VBRCodingMethod = 0;
  parameters.VBRMaxBitrate = 192;
  file_.SetFormat(parameters);
  EXPECT_EQ(file_.FormatDescription(), "MP3, variable bitrate quality 4, at most 192 kbit/s, 44100 Hz, mono");
  parameters.VBRCodingMethod = 4;
  parameters.VBREnforceMinBitRate = true;
  parameters.Bitrate = 64;
  parameters.VBRMaxBitrate = 0;
  file_.SetFormat(parameters);
  EXPECT_EQ(file_.FormatDescription(), "MP3, 128 kbit/s average, at least 64 kbit/s, 44100 Hz, mono");
  file_.SetFormat(platform::OggFormat{44100, 2, 160, 128, 192, -1});
  EXPECT_EQ(file_.FormatDescription(),
            "Ogg Vorbis, 160 kbit/s, at least 128 kbit/s, at most 192 kbit/s, 44100 Hz, stereo");
  file_.SetFormat(platform::OggFormat{44100, 2, 160, 0, 0, -1});
  EXPECT_EQ(file_.FormatDescription(), "Ogg Vorbis, 160 kbit/s, 44100 Hz, stereo");
  file_.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, 4});
  EXPECT_EQ(file_.FormatDescription(), "Ogg Vorbis, quality 4, 44100 Hz, stereo");
  file_.SetFormat(platform::WavFormat{48000, 2, 16});
  EXPECT_EQ(file_.FormatDescription(), "WAV, 16-bit PCM, 48000 Hz, stereo");
  file_.SetFormat(platform::RawFormat{0, 44100, 1, 16});
  EXPECT_EQ(file_.FormatDescription(), "RAW, 16-bit PCM, 44100 Hz, mono");
  file_.SetFormat(platform::RawFormat{2, 44100, 2, 16});
  EXPECT_EQ(file_.FormatDescription(), "RAW, 8-bit A-law, 44100 Hz, stereo");
  file_.SetFormat(platform::RawFormat{3, 44100, 2, 16});
  EXPECT_EQ(file_.FormatDescription(), "RAW, 8-bit mu-law, 44100 Hz, stereo");
  file_.SetFormat(platform::VoxFormat{8000});
  EXPECT_EQ(file_.FormatDescription(), "VOX, 4-bit ADPCM, 8000 Hz, mono");
  file_.SetFormat(platform::G726Format{8000, 5});
  EXPECT_EQ(file_.FormatDescription(), "G.726, 5-bit ADPCM, 8000 Hz, mono");
  file_.SetFormat(platform::FlacFormat{44100, 2, 8});
  EXPECT_EQ(file_.FormatDescription(), "FLAC, level 8, 44100 Hz, stereo");
  file_.SetFormat(platform::OpusFormat{48000, 2, 96});
  EXPECT_EQ(file_.FormatDescription(), "Opus, 96 kbit/s, music, 48000 Hz, stereo");
  file_.SetFormat(platform::OpusFormat{44100, 1, 32, true});
  EXPECT_EQ(file_.FormatDescription(), "Opus, 32 kbit/s, voice, 44100 Hz, mono");
}

TEST_F(EncodedFileTest, APlantedLinkIsReplacedAndItsTargetKept) {
  const std::string diary = folder_.Path("diary");
  std::ofstream(diary) << "private";
  std::filesystem::create_symlink(diary, path_);
  file_.SetFormat(platform::WavFormat{8000, 1, 16});
  EXPECT_TRUE(file_.Create(path_));
  EXPECT_TRUE(file_.WriteBlock(std::vector<std::int16_t>(800)));
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(ReadFile(diary), "private");
  EXPECT_FALSE(std::filesystem::is_symlink(path_));
}

TEST_F(EncodedFileTest, AFileIsHeldFromItsCreationToItsRelease) {
  file_.SetFormat(platform::WavFormat{8000, 1, 16});
  ASSERT_TRUE(file_.Create(path_));
  ASSERT_TRUE(file_.WriteBlock(std::vector<std::int16_t>(800)));
  EncodedFile other;
  other.SetFormat(platform::WavFormat{8000, 1, 16});
  EXPECT_EQ(other.Create(path_).Number, platform::kNameHeld);
  ASSERT_TRUE(file_.Close());
  const std::string whole = ReadFile(path_);
  EXPECT_EQ(other.Create(path_).Number, platform::kNameHeld) << "its fate is still open";
  EXPECT_EQ(ReadFile(path_), whole);
  file_.Release();
  EXPECT_TRUE(other.Create(path_));
}

TEST_F(EncodedFileTest, AReleaseInMidCaptureDoesNothing) {
  file_.SetFormat(platform::WavFormat{8000, 1, 16});
  ASSERT_TRUE(file_.Create(path_));
  file_.Release();
  EXPECT_TRUE(file_.WriteBlock(std::vector<std::int16_t>(800)));
}

TEST_F(EncodedFileTest, ARefusalSaysWhy) {
  file_.SetFormat(platform::WavFormat{44100, 2, 12});
  EXPECT_EQ(file_.Create(path_).Cause, "the format does not have this number of channels or bits");
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_EQ(file_.Create(folder_.Path("missing/capture")).Cause, "No such file or directory");
}

}  // namespace
}  // namespace kestrune::test
