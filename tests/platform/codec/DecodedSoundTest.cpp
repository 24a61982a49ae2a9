// Every format and each row of its parameters, written by EncodedFile and judged by decoders that are not
// ours.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/JudgedFiles.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::EncodedFile;
using platform::Mp3Parameters;

/// No multiple of any block or frame size.
constexpr std::size_t kFrames = 40129;

Mp3Parameters Mp3(std::int32_t rate, std::int16_t channels, std::int16_t bitrate) {
  Mp3Parameters parameters;
  parameters.Frequency = rate;
  parameters.Channels = channels;
  parameters.Bitrate = bitrate;
  parameters.TypeStereo = 2;
  parameters.Quality = 5;
  parameters.ShortBlocks = true;
  parameters.BitReservoir = true;
  parameters.VBRHeader = true;
  return parameters;
}

class DecodedSound : public testing::Test {
 protected:
  /// Writes music of the prepared format into the file.
  std::vector<std::int16_t> WriteMusic(const std::string& path, std::size_t frames = kFrames) {
    const auto format = file_.FormatValues();
    auto music = MakeMusic(frames, format.SampleRate, format.Channels);
    EXPECT_GE(file_.Create(path).Number, 0);
    EXPECT_TRUE(WriteBlocks(file_, music));
    EXPECT_TRUE(file_.Close());
    EXPECT_EQ(file_.Length(), static_cast<std::int64_t>(frames) * 1000 / format.SampleRate);
    return music;
  }

  void TearDown() override { judged_.JudgeAll(); }

  TempFolder folder_;
  EncodedFile file_;
  JudgedFiles judged_;
};

TEST_F(DecodedSound, WavHoldsEverySampleAtEveryRateAndShape) {
  for (const std::int32_t rate : {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const std::int16_t channels : {1, 2}) {
      for (const std::int16_t bits : {8, 16}) {
        const std::string row = fmt::format("{} Hz, {} channels, {} bits", rate, channels, bits);
        SCOPED_TRACE(row);
        const std::string path = folder_.NewPath("wav");
        file_.SetFormat(platform::WavFormat{rate, channels, bits});
        auto expected = WriteMusic(path);
        if (bits == 8) {
          for (std::int16_t& sample : expected) sample = static_cast<std::int16_t>(sample & ~0xFF);
        }
        EXPECT_EQ(DecodeWithSox(path), expected);
        judged_.Add(row, {path}, [=, format = file_.FormatValues()](const DecodedFile& file) {
          ExpectFacts(file, bits == 8 ? "pcm_u8" : "pcm_s16le", format);
          EXPECT_EQ(file.Samples, expected);
        });
      }
    }
  }
}

TEST_F(DecodedSound, RawPcmIsTheSamplesThemselves) {
  for (const std::int16_t compression : {0, 1}) {
    for (const std::int16_t channels : {1, 2}) {
      const std::string path = folder_.NewPath("raw");
      file_.SetFormat(platform::RawFormat{compression, 44100, channels, 16});
      const auto music = WriteMusic(path);
      judged_.Add(fmt::format("compression {}, {} channels", compression, channels),
                  {path, fmt::format("-f s16le -ar 44100 -ac {}", channels)},
                  [=](const DecodedFile& file) { EXPECT_EQ(file.Samples, music); });
    }
  }
}

TEST_F(DecodedSound, RawALawAndMuLawKeepEverySampleWithinTheirSteps) {
  const std::vector<std::pair<std::int16_t, std::string>> laws{{std::int16_t{2}, "alaw"},
                                                               {std::int16_t{3}, "mulaw"}};
  for (const std::int32_t rate : {6000, 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const std::int16_t channels : {1, 2}) {
      for (const auto& [compression, law] : laws) {
        const std::string row = fmt::format("{} {} {}", law, rate, channels);
        SCOPED_TRACE(row);
        const std::string path = folder_.NewPath("raw");
        file_.SetFormat(platform::RawFormat{compression, rate, channels, 16});
        const auto music = WriteMusic(path, 4001);
        EXPECT_EQ(ReadFile(path).size(), music.size());
        judged_.Add(row, {path, fmt::format("-f {} -ar {} -ac {}", law, rate, channels)},
                    [=](const DecodedFile& file) {
                      ASSERT_EQ(file.Samples.size(), music.size());
                      for (std::size_t i = 0; i < music.size(); ++i) {
                        ASSERT_NEAR(file.Samples[i], music[i], 16 + std::abs(music[i]) / 16.0) << i;
                      }
                    });
      }
    }
  }
}

TEST_F(DecodedSound, VoxIsFourBitDialogicAdpcmAtEveryRate) {
  for (const std::int32_t rate : {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000}) {
    SCOPED_TRACE(rate);
    const std::string path = folder_.Path("a.vox");
    file_.SetFormat(platform::VoxFormat{rate});
    EXPECT_EQ(file_.FormatValues().Channels, 1);
    const auto music = WriteMusic(path, 40000);
    EXPECT_EQ(ReadFile(path).size(), 20000U);
    const auto decoded = DecodeWithSox(path, fmt::format("-t vox -r {} -c 1", rate));
    ASSERT_EQ(decoded.size(), music.size());
    EXPECT_GT(SignalToNoise(music, decoded), 12);
  }
}

TEST_F(DecodedSound, VoxBlocksOfOddSizesAddNoSample) {
  const std::string path = folder_.Path("a.vox");
  file_.SetFormat(platform::VoxFormat{8000});
  const auto music = MakeMusic(8001, 8000, 1);
  EXPECT_TRUE(file_.Create(path));
  for (std::size_t at = 0; at < music.size(); at += 333) {
    ASSERT_TRUE(
        file_.WriteBlock(std::span(music).subspan(at, std::min<std::size_t>(333, music.size() - at))));
  }
  EXPECT_TRUE(file_.Close());
  EXPECT_EQ(ReadFile(path).size(), 4001U);  // the last byte filled up
  EXPECT_GT(SignalToNoise(music, DecodeWithSox(path, "-t vox -r 8000 -c 1")), 12);
}

TEST_F(DecodedSound, G726DecodesAtEveryRateAndWidth) {
  // ffmpeg's predictor forgets twice as fast as the standard's at 5 bits, so that it hears tones coarsely
  // there; the codes themselves are judged below.
  const double floors[] = {0, 0, 12, 14, 20, 4};
  for (const std::int32_t rate : {6000, 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const std::int16_t bits : {2, 3, 4, 5}) {
      const std::string row = fmt::format("{} Hz, {} bits", rate, bits);
      SCOPED_TRACE(row);
      const std::string path = folder_.NewPath("g726");
      file_.SetFormat(platform::G726Format{rate, bits});
      EXPECT_EQ(file_.FormatValues().Channels, 1);
      const auto music = WriteMusic(path, 40000);
      judged_.Add(row, {path},
                  [=, format = file_.FormatValues(), floor = floors[bits]](const DecodedFile& file) {
                    ExpectFacts(file, "adpcm_g726", format);
                    ASSERT_EQ(file.Samples.size(), music.size());
                    EXPECT_GT(SignalToNoise(music, file.Samples), floor);
                  });
    }
  }
}

/// The codes of a file, first sample in the highest bits, as an AU file has them: in the lowest.
std::string AsAu(const std::string& g726, unsigned bits, char encoding) {
  const std::string codes = g726.substr(g726.find("data") + 8);
  std::string sound;
  unsigned in = 0, inBits = 0, out = 0, outBits = 0;
  for (const char byte : codes) {
    in = in << 8 | static_cast<unsigned char>(byte);
    for (inBits += 8; inBits >= bits; inBits -= bits) {
      out |= (in >> (inBits - bits) & ((1U << bits) - 1)) << outBits;
      for (outBits += bits; outBits >= 8; outBits -= 8, out >>= 8) sound += static_cast<char>(out & 0xFFU);
    }
  }
  std::string au(".snd\0\0\0\x1C\xFF\xFF\xFF\xFF\0\0\0", 15);
  return au + encoding + std::string("\0\0\x1F\x40\0\0\0\x01\0\0\0\0", 12) + sound;
}

TEST_F(DecodedSound, G726CodesAreThoseOfTheStandard) {
  struct Row {
    std::int16_t Bits;
    char Encoding;  // in the AU header
    double Floor;
  };
  for (const Row& row : {Row{3, 25, 28}, Row{4, 23, 32}, Row{5, 26, 33}}) {
    SCOPED_TRACE(row.Bits);
    const std::string path = folder_.Path("a.g726");
    file_.SetFormat(platform::G726Format{8000, row.Bits});
    const auto music = WriteMusic(path, 40000);
    WriteFile(folder_.Path("a.au"), AsAu(ReadFile(path), static_cast<unsigned>(row.Bits), row.Encoding));
    const auto decoded = DecodeWithSox(folder_.Path("a.au"));
    ASSERT_EQ(decoded.size(), music.size());
    EXPECT_GT(SignalToNoise(music, decoded), row.Floor);
  }
}

TEST_F(DecodedSound, G726FactChunkTellsTheLengthThatIsNoWholeByte) {
  for (const std::int16_t bits : {2, 3, 4, 5}) {
    const std::string path = folder_.NewPath("g726");
    file_.SetFormat(platform::G726Format{8000, bits});
    const auto music = WriteMusic(path, 8003);
    const std::string bytes = ReadFile(path);
    const std::size_t fact = bytes.find("fact");
    ASSERT_NE(fact, std::string::npos);
    EXPECT_EQ(bytes.substr(fact + 4, 8), std::string("\x04\x00\x00\x00\x43\x1F\x00\x00", 8));
    judged_.Add(fmt::format("{} bits", bits), {path}, [=](const DecodedFile& file) {
      EXPECT_GE(file.Samples.size(), music.size());
      EXPECT_LT(file.Samples.size(), music.size() + 8);
    });
  }
}

TEST_F(DecodedSound, G726HeaderSaysBlockAndBytesPerSecond) {
  const int blocks[] = {0, 0, 1, 3, 1, 5};
  for (const std::int16_t bits : {2, 3, 4, 5}) {
    const std::string path = folder_.Path("a.g726");
    file_.SetFormat(platform::G726Format{44100, bits});
    WriteMusic(path, 100);
    const std::string bytes = ReadFile(path);
    const std::size_t fmtAt = bytes.find("fmt ");
    ASSERT_NE(fmtAt, std::string::npos);
    const auto number = [&](std::size_t at, std::size_t count) {
      unsigned value = 0;
      for (std::size_t i = count; i > 0; --i)
        value = value << 8 | static_cast<unsigned char>(bytes[fmtAt + 8 + at + i - 1]);
      return value;
    };
    EXPECT_EQ(number(0, 2), 0x45U);
    EXPECT_EQ(number(2, 2), 1U);
    EXPECT_EQ(number(4, 4), 44100U);
    EXPECT_EQ(number(8, 4), (44100U * static_cast<unsigned>(bits) + 7) / 8);
    EXPECT_EQ(number(12, 2), static_cast<unsigned>(blocks[bits]));
    EXPECT_EQ(number(14, 2), static_cast<unsigned>(bits));
  }
}

TEST_F(DecodedSound, Mp3IsExactAtEveryRateAndConstantBitrate) {
  const std::vector<int> rates{8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
  const std::vector<int> high{32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
  const std::vector<int> low{8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
  for (const int rate : rates) {
    for (const int bitrate : rate >= 32000 ? high : low) {
      if (rate < 16000 && bitrate > 64) continue;
      const std::string row = fmt::format("{} Hz, {} kbit/s", rate, bitrate);
      SCOPED_TRACE(row);
      const std::string path = folder_.NewPath("mp3");
      file_.SetFormat(Mp3(rate, 2, static_cast<std::int16_t>(bitrate)));
      const auto music = WriteMusic(path, 12345);
      const auto stream = ParseMp3(ReadFile(path));
      EXPECT_FALSE(stream.Broken);
      for (const auto& frame : stream.Sound()) {
        ASSERT_EQ(frame.Bitrate, bitrate);
        ASSERT_EQ(frame.Rate, rate);
      }
      judged_.Add(row, {path}, [=](const DecodedFile& file) {
        ASSERT_EQ(file.Samples.size(), music.size());
        EXPECT_GT(SignalToNoise(music, file.Samples), bitrate < 32 ? 0 : 8);
      });
    }
  }
}

TEST_F(DecodedSound, Mp3IsExactInMonoAndByEveryVariableMethod) {
  for (const std::int32_t rate : {8000, 22050, 44100}) {
    for (const std::int16_t channels : {1, 2}) {
      for (const std::int16_t method : {-1, 0, 1, 2, 3, 4}) {
        const std::string row = fmt::format("{} Hz, {} channels, method {}", rate, channels, method);
        SCOPED_TRACE(row);
        const std::string path = folder_.NewPath("mp3");
        auto parameters = Mp3(rate, channels, 64);
        parameters.VBRCodingMethod = method;
        parameters.VBRQuality = 4;
        parameters.VBRTargetBitrate = 96;
        file_.SetFormat(parameters);
        const auto music = WriteMusic(path);
        judged_.Add(row, {path}, [=, format = file_.FormatValues()](const DecodedFile& file) {
          ExpectFacts(file, "mp3", format);
          ASSERT_EQ(file.Samples.size(), music.size());
          EXPECT_GT(SignalToNoise(music, file.Samples), 10);
        });
      }
    }
  }
}

TEST_F(DecodedSound, Mp3OfAnyShortLengthIsExact) {
  file_.SetFormat(Mp3(44100, 2, 128));
  for (const std::size_t frames :
       {1, 2, 47, 575, 576, 577, 1104, 1105, 1106, 1151, 1152, 1153, 2304, 4409, 4410}) {
    const std::string path = folder_.NewPath("mp3");
    const std::size_t written = WriteMusic(path, frames).size();
    judged_.Add(fmt::format("{} frames", frames), {path},
                [=](const DecodedFile& file) { EXPECT_EQ(file.Samples.size(), written); });
  }
}

TEST_F(DecodedSound, Mp3IsFoundSoundByAnMpegChecker) {
  for (const bool crc : {false, true}) {
    for (const std::int16_t method : {-1, 1, 3, 4}) {
      const std::string path = folder_.Path("a.mp3");
      auto parameters = Mp3(44100, 2, 160);
      parameters.IncludeCRC = crc;
      parameters.VBRCodingMethod = method;
      parameters.VBRTargetBitrate = 128;
      file_.SetFormat(parameters);
      WriteMusic(path);
      const auto said = RunProgramAll("mp3val '" + path + "'");
      EXPECT_EQ(said.Output.find("WARNING"), std::string::npos) << said.Output;
      EXPECT_NE(said.Output.find("MPEG frames"), std::string::npos) << said.Output;
    }
  }
}

TEST_F(DecodedSound, OggIsExactInItsThreeModes) {
  struct Row {
    std::int16_t Nominal, Min, Max, Quality;
  };
  std::vector<Row> rows;
  for (std::int16_t quality = 0; quality <= 10; ++quality) rows.push_back({128, 0, 0, quality});
  for (const std::int16_t bitrate : {112, 128, 160, 192, 256, 320}) {
    rows.push_back({bitrate, 0, 0, -1});
    rows.push_back({bitrate, 112, 320, -1});
  }
  rows.push_back({160, 128, 192, -1});
  for (const Row& row : rows) {
    const std::string mode = fmt::format("{} {} {} quality {}", row.Nominal, row.Min, row.Max, row.Quality);
    SCOPED_TRACE(mode);
    const std::string path = folder_.NewPath("ogg");
    file_.SetFormat(platform::OggFormat{44100, 2, row.Nominal, row.Min, row.Max, row.Quality});
    const auto music = WriteMusic(path);
    const auto decoded = DecodeWithOggdec(path);
    ASSERT_EQ(decoded.size(), music.size());
    EXPECT_GT(SignalToNoise(music, decoded), 8);
    judged_.Add(mode, {path},
                [format = file_.FormatValues(), written = music.size()](const DecodedFile& file) {
                  ExpectFacts(file, "vorbis", format);
                  // ffmpeg drops up to half a short block at the end, of every encoder's files.
                  EXPECT_NEAR(static_cast<double>(file.Samples.size()), static_cast<double>(written), 256);
                });
    const auto said = RunProgramAll("LC_ALL=C.UTF-8 ogginfo '" + path + "'");
    EXPECT_EQ(said.Output.find("WARNING"), std::string::npos) << said.Output;
    EXPECT_EQ(said.Status, 0);
    if (row.Quality == -1) {
      EXPECT_NE(said.Output.find(fmt::format("Nominal bitrate: {}.000000 kb/s", row.Nominal)),
                std::string::npos)
          << said.Output;
      const auto limit = [](const char* name, int value) {
        return value == 0 ? fmt::format("{} bitrate not set", name)
                          : fmt::format("{} bitrate: {}.000000 kb/s", name, value);
      };
      EXPECT_NE(said.Output.find(limit("Lower", row.Min)), std::string::npos) << said.Output;
      EXPECT_NE(said.Output.find(limit("Upper", row.Max)), std::string::npos) << said.Output;
    }
  }
}

TEST_F(DecodedSound, OggQualityAndBitrateChangeTheSize) {
  const auto size = [&](std::int16_t nominal, std::int16_t quality) {
    file_.SetFormat(platform::OggFormat{44100, 2, nominal, 0, 0, quality});
    const std::string path = folder_.Path("a.ogg");
    EXPECT_TRUE(file_.Create(path));
    EXPECT_TRUE(WriteBlocks(file_, MakeNoise(44100 * 4, 1)));
    EXPECT_TRUE(file_.Close());
    return ReadFile(path).size();
  };
  EXPECT_LT(size(128, 0), size(128, 4));
  EXPECT_LT(size(128, 4), size(128, 10));
  EXPECT_LT(size(112, -1), size(320, -1));
  EXPECT_EQ(size(112, 4), size(320, 4)) << "the bitrate plays no part in quality mode";
}

TEST_F(DecodedSound, OggOfAnyShortLengthAndInMonoIsExact) {
  for (const std::int16_t channels : {1, 2}) {
    file_.SetFormat(platform::OggFormat{44100, channels, 128, 0, 0, 4});
    for (const std::size_t frames : {1, 2, 63, 64, 128, 1000, 1024, 1025, 2048, 5000}) {
      const std::string path = folder_.Path("a.ogg");
      const auto music = WriteMusic(path, frames);
      EXPECT_EQ(DecodeWithOggdec(path).size(), music.size()) << frames;
    }
  }
}

TEST_F(DecodedSound, OggSerialNumbersDiffer) {
  file_.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, 4});
  WriteMusic(folder_.Path("a.ogg"), 100);
  WriteMusic(folder_.Path("b.ogg"), 100);
  EXPECT_NE(ReadFile(folder_.Path("a.ogg")).substr(14, 4), ReadFile(folder_.Path("b.ogg")).substr(14, 4));
}

TEST_F(DecodedSound, FlacHoldsEverySampleAtEveryLevelRateAndShape) {
  const auto expectWhole = [&](const platform::FlacFormat& format, std::size_t frames) {
    const std::string row = fmt::format("level {}, {} Hz, {} channels, {} frames", format.Level,
                                        format.Frequency, format.Channels, frames);
    SCOPED_TRACE(row);
    const std::string path = folder_.NewPath("flac");
    file_.SetFormat(format);
    const auto music = WriteMusic(path, frames);
    judged_.Add(row, {path}, [=, values = file_.FormatValues()](const DecodedFile& file) {
      ExpectFacts(file, "flac", values);
      EXPECT_EQ(file.Samples, music);
    });
    EXPECT_EQ(DecodeWithFlac(path), music);
    // The checksum of all samples is there and right, and nothing is said.
    const auto said = RunProgramAll("flac -s -t -w '" + path + "'");
    EXPECT_EQ(said.Status, 0);
    EXPECT_EQ(said.Output, "");
    EXPECT_EQ(RunProgramAll("metaflac --show-total-samples '" + path + "'").Output,
              fmt::format("{}\n", frames));
  };
  for (std::int16_t level = 0; level <= 8; ++level) {
    for (const std::int16_t channels : {1, 2}) expectWhole({44100, channels, level}, kFrames);
  }
  for (const std::int32_t rate : {8000, 11025, 16000, 22050, 24000, 32000, 48000})
    expectWhole({rate, 2, 5}, 12345);
  for (const std::size_t frames : {1, 2, 15, 16, 1152, 4095, 4096, 4097, 8192})
    expectWhole({44100, 2, 5}, frames);
}

TEST_F(DecodedSound, FlacHoldsNoiseAndSilenceAndClicks) {
  const std::string path = folder_.Path("a.flac");
  file_.SetFormat(platform::FlacFormat{44100, 2, 8});
  for (const auto& sound :
       {MakeNoise(2 * kFrames, 3), std::vector<std::int16_t>(2 * kFrames), MakeClicks(kFrames, 44100, 2),
        std::vector<std::int16_t>(2 * kFrames, INT16_MIN)}) {
    ASSERT_EQ(file_.Create(path).Number, 0);
    EXPECT_TRUE(WriteBlocks(file_, sound));
    EXPECT_TRUE(file_.Close());
    EXPECT_EQ(DecodeWithFlac(path), sound);
  }
}

TEST_F(DecodedSound, AHigherFlacLevelIsSmaller) {
  std::vector<std::size_t> sizes;
  for (const std::int16_t level : {0, 3, 8}) {
    const std::string path = folder_.Path("a.flac");
    file_.SetFormat(platform::FlacFormat{44100, 2, level});
    const auto music = WriteMusic(path);
    sizes.push_back(ReadFile(path).size());
    EXPECT_LT(sizes.back(), music.size() * 2);
  }
  EXPECT_GT(sizes[0], sizes[1]);
  EXPECT_GT(sizes[1], sizes[2]);
}

/// As long as what went in, at the rate of Opus, the last sample in part.
std::size_t OpusFrames(std::size_t frames, std::int32_t rate) {
  return (frames * 48000 + static_cast<std::size_t>(rate) - 1) / static_cast<std::size_t>(rate);
}

TEST_F(DecodedSound, OpusIsExactAtEveryBitrateForMusicAndVoice) {
  for (const std::int16_t bitrate : {32, 48, 64, 80, 96, 112, 128, 160, 192, 224, 256}) {
    for (const bool voice : {false, true}) {
      const std::string row = fmt::format("{} kbit/s, {}", bitrate, voice ? "voice" : "music");
      SCOPED_TRACE(row);
      const std::string path = folder_.NewPath("opus");
      file_.SetFormat(platform::OpusFormat{48000, 2, bitrate, voice});
      const auto music = WriteMusic(path);
      const auto decoded = DecodeWithOpusdec(path);
      ASSERT_EQ(decoded.size(), music.size());
      // Voice is made to be understood, and has no deep tones.
      EXPECT_GT(SignalToNoise(music, decoded), voice ? 0 : bitrate < 64 ? 5 : 10);
      judged_.Add(row, {path},
                  [format = file_.FormatValues(), written = music.size()](const DecodedFile& file) {
                    ExpectFacts(file, "opus", format);
                    EXPECT_EQ(file.Samples.size(), written);
                  });
      const auto said = RunProgramAll("opusinfo '" + path + "'");
      EXPECT_EQ(said.Status, 0);
      EXPECT_EQ(said.Output.find("WARNING"), std::string::npos) << said.Output;
    }
  }
}

TEST_F(DecodedSound, OpusOfEveryRateHasTheLengthOfItsInput) {
  for (const std::int32_t rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const std::int16_t channels : {1, 2}) {
      for (const std::size_t frames : {kFrames, kFrames + 1, kFrames + 2}) {
        SCOPED_TRACE(fmt::format("{} Hz, {} channels, {} frames", rate, channels, frames));
        const std::string path = folder_.Path("a.opus");
        file_.SetFormat(platform::OpusFormat{rate, channels, 128});
        WriteMusic(path, frames);
        EXPECT_EQ(DecodeWithOpusdec(path).size(),
                  OpusFrames(frames, rate) * static_cast<std::size_t>(channels));
      }
    }
  }
}

TEST_F(DecodedSound, OpusOfAnyShortLengthIsExact) {
  file_.SetFormat(platform::OpusFormat{48000, 2, 128});
  for (const std::size_t frames :
       {1, 2, 119, 120, 311, 312, 313, 647, 648, 649, 959, 960, 961, 23999, 24000, 24001}) {
    const std::string path = folder_.Path("a.opus");
    const auto music = WriteMusic(path, frames);
    EXPECT_EQ(DecodeWithOpusdec(path).size(), music.size()) << frames;
  }
}

/// A sound that another rate brings on stands where it stood.
TEST_F(DecodedSound, OpusOfAnotherRateKeepsTheMoment) {
  constexpr std::size_t kQuiet = 22050;
  file_.SetFormat(platform::OpusFormat{44100, 1, 128});
  std::vector<std::int16_t> sound(kQuiet);
  const double tone[] = {1000.0};
  const auto tones = MakeTones(22050, 44100, 1, tone);
  sound.insert(sound.end(), tones.begin(), tones.end());
  const std::string path = folder_.Path("a.opus");
  ASSERT_EQ(file_.Create(path).Number, 0);
  EXPECT_TRUE(WriteBlocks(file_, sound));
  EXPECT_TRUE(file_.Close());
  const auto decoded = DecodeWithOpusdec(path);
  ASSERT_EQ(decoded.size(), 48000U);
  const auto loud =
      std::find_if(decoded.begin(), decoded.end(), [](std::int16_t s) { return std::abs(s) > 4000; });
  // Within two milliseconds, in which the tone swells and its front rings.
  EXPECT_NEAR(static_cast<double>(loud - decoded.begin()), 24000, 96);
}

TEST_F(DecodedSound, OpusBitratesChangeTheSize) {
  std::size_t smaller = 0;
  for (const std::int16_t bitrate : {32, 64, 128, 256}) {
    const std::string path = folder_.Path("a.opus");
    file_.SetFormat(platform::OpusFormat{48000, 2, bitrate});
    ASSERT_EQ(file_.Create(path).Number, 0);
    EXPECT_TRUE(WriteBlocks(file_, MakeNoise(2 * 48000 * 4, 1)));
    EXPECT_TRUE(file_.Close());
    const std::size_t size = ReadFile(path).size();
    EXPECT_NEAR(static_cast<double>(size), 4.0 * bitrate * 125 + 4200, 4.0 * bitrate * 125 * 0.25);
    EXPECT_GT(size, smaller);
    smaller = size;
  }
}

/// The configurations of the packets, which their first bytes name: 0 to 11 are the speech coder, 12 to 15 both, 16 to 31
/// the music coder.
std::set<int> OpusConfigurations(const std::string& bytes) {
  constexpr int kHeaderPackets = 2;
  std::set<int> found;
  int packets = 0;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  for (std::size_t at = 0; at + 27 < bytes.size();) {
    const std::size_t segments = byte(at + 26);
    std::size_t place = at + 27 + segments;
    bool begins = true;
    for (std::size_t i = 0; i < segments; ++i) {
      const std::size_t size = byte(at + 27 + i);
      if (begins && packets >= kHeaderPackets) found.insert(byte(place) >> 3);
      begins = size < 255;
      packets += begins ? 1 : 0;
      place += size;
    }
    at = place;
  }
  return found;
}

TEST_F(DecodedSound, OpusForVoiceIsMadeByTheSpeechCoder) {
  const std::string path = folder_.Path("a.opus");
  file_.SetFormat(platform::OpusFormat{48000, 2, 32, true});
  WriteMusic(path);
  EXPECT_LT(*OpusConfigurations(ReadFile(path)).rbegin(), 16);
  file_.SetFormat(platform::OpusFormat{48000, 2, 32, false});
  WriteMusic(path);
  EXPECT_GE(*OpusConfigurations(ReadFile(path)).begin(), 16);
}

TEST_F(DecodedSound, OpusSerialNumbersDiffer) {
  file_.SetFormat(platform::OpusFormat{48000, 2, 128});
  WriteMusic(folder_.Path("a.opus"), 100);
  WriteMusic(folder_.Path("b.opus"), 100);
  EXPECT_NE(ReadFile(folder_.Path("a.opus")).substr(14, 4), ReadFile(folder_.Path("b.opus")).substr(14, 4));
}

TEST_F(DecodedSound, FilesWithoutASampleAreClosedAndDecodeToNothing) {
  struct Row {
    std::string Name;
    std::function<void(EncodedFile&)> Prepare;
    std::string Options;
  };
  const std::vector<Row> rows{
      {"a.wav",
       [](EncodedFile& file) {
         file.SetFormat(platform::WavFormat{44100, 2, 16});
       },
       ""},
      {"a.raw",
       [](EncodedFile& file) {
         file.SetFormat(platform::RawFormat{1, 44100, 2, 16});
       },
       "-f s16le"},
      {"a.vox", [](EncodedFile& file) { file.SetFormat(platform::VoxFormat{8000}); }, "-f alaw"},
      {"a.mp3", [](EncodedFile& file) { file.SetFormat(Mp3(44100, 2, 128)); }, ""},
      {"a.ogg",
       [](EncodedFile& file) {
         file.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, -1});
       },
       ""},
      {"a.g726",
       [](EncodedFile& file) {
         file.SetFormat(platform::G726Format{8000, 4});
       },
       ""},
      {"a.flac",
       [](EncodedFile& file) {
         file.SetFormat(platform::FlacFormat{44100, 2, 5});
       },
       ""},
      {"a.opus",
       [](EncodedFile& file) {
         file.SetFormat(platform::OpusFormat{48000, 2, 128});
       },
       ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    row.Prepare(file_);
    EXPECT_EQ(file_.Create(folder_.Path(row.Name)).Number, 0);
    EXPECT_TRUE(file_.WriteBlock({}));
    EXPECT_TRUE(file_.Close());
    EXPECT_EQ(file_.Length(), 0);
    // With each file alone: ffmpeg gives up at an MP3 without a frame.
    EXPECT_TRUE(DecodeWithFfmpeg(folder_.Path(row.Name), row.Options).empty());
  }
}

/// One continuous sound cut into three files: laid end to end, they are that sound again.
class ThreeFiles : public DecodedSound {
 protected:
  using Decode = std::function<std::vector<std::int16_t>(const std::string&)>;

  /// Judged by ffmpeg, without a program of the format's own.
  void Expect(const std::string& extension, double floor, const std::string& options = {}) {
    const std::vector<std::string> paths = Write(extension);
    std::vector<std::vector<std::int16_t>> pieces;
    for (DecodedFile& file : DecodeTogether({{paths[0], options}, {paths[1], options}, {paths[2], options}}))
      pieces.push_back(std::move(file.Samples));
    ExpectJoined(pieces, floor);
  }

  void Expect(const std::string& extension, double floor, const Decode& decode) {
    std::vector<std::vector<std::int16_t>> pieces;
    for (const std::string& path : Write(extension)) pieces.push_back(decode(path));
    ExpectJoined(pieces, floor);
  }

 private:
  static constexpr std::array<std::size_t, 4> kCuts{0, 30007, 80011, 3 * kFrames};

  std::vector<std::int16_t> Music() {
    const auto format = file_.FormatValues();
    return MakeMusic(3 * kFrames, format.SampleRate, format.Channels);
  }
  std::size_t Samples(std::size_t frames) {
    return frames * static_cast<std::size_t>(file_.FormatValues().Channels);
  }

  std::vector<std::string> Write(const std::string& extension) {
    const auto music = Music();
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < 3; ++i) {
      paths.push_back(folder_.NewPath(extension));
      EXPECT_TRUE(file_.Create(paths.back()));
      EXPECT_TRUE(
          WriteBlocks(file_, std::span(music).subspan(Samples(kCuts[i]), Samples(kCuts[i + 1] - kCuts[i]))));
      EXPECT_TRUE(file_.Close());
    }
    return paths;
  }

  void ExpectJoined(const std::vector<std::vector<std::int16_t>>& pieces, double floor) {
    const auto music = Music();
    std::vector<std::int16_t> joined;
    for (std::size_t i = 0; i < 3; ++i) {
      ASSERT_EQ(pieces[i].size(), Samples(kCuts[i + 1] - kCuts[i]));
      joined.insert(joined.end(), pieces[i].begin(), pieces[i].end());
    }
    ASSERT_EQ(joined.size(), music.size());
    if (floor > 200) {
      EXPECT_EQ(joined, music);
    } else {
      EXPECT_GT(SignalToNoise(music, joined), floor);
    }
  }
};

constexpr double kEqual = 1000;

TEST_F(ThreeFiles, WavLaidEndToEndAreTheInput) {
  file_.SetFormat(platform::WavFormat{44100, 2, 16});
  Expect("wav", kEqual);
}

TEST_F(ThreeFiles, RawLaidEndToEndAreTheInput) {
  file_.SetFormat(platform::RawFormat{1, 44100, 2, 16});
  Expect("raw", kEqual, "-f s16le -ar 44100 -ac 2");
}

TEST_F(ThreeFiles, FlacLaidEndToEndAreTheInput) {
  file_.SetFormat(platform::FlacFormat{44100, 2, 5});
  Expect("flac", kEqual, DecodeWithFlac);
}

TEST_F(ThreeFiles, OpusLaidEndToEndAreTheInput) {
  file_.SetFormat(platform::OpusFormat{48000, 2, 192});
  Expect("opus", 15, DecodeWithOpusdec);
}

TEST_F(ThreeFiles, Mp3LaidEndToEndAreTheInput) {
  file_.SetFormat(Mp3(44100, 2, 192));
  Expect("mp3", 20);
}

TEST_F(ThreeFiles, Mp3WithoutASeekTableLaidEndToEndAreTheInput) {
  auto parameters = Mp3(44100, 2, 0);
  parameters.VBRCodingMethod = 0;
  parameters.VBRHeader = false;
  file_.SetFormat(parameters);
  Expect("mp3", 20);
}

TEST_F(ThreeFiles, OggLaidEndToEndAreTheInput) {
  file_.SetFormat(platform::OggFormat{44100, 2, 160, 128, 192, -1});
  Expect("ogg", 15, DecodeWithOggdec);
}

}  // namespace
}  // namespace kestrune::test
