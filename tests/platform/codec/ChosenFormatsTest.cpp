#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "config/formats/FileSpecs.h"
#include "config/formats/FormatTable.h"
#include "config/settings/SettingKeys.h"
#include "platform/codec/CodecTable.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/JudgedFiles.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"
#include "presenters/FormatOptions.h"
#include "presenters/Mp3Options.h"
#include "presenters/OggOptions.h"
#include "support/SettingsRig.h"

namespace kestrune::test {
namespace {

/// From what the user chooses in an option window to a file that other programs have read.
class ChosenFormats : public testing::Test {
 protected:
  /// Records with what the settings say now, and gives the file's path.
  std::string Record(std::string_view format) {
    settings_.FileFormat = format;
    specs_.SetFileSpecs(0);
    std::string path = folder_.NewPath(std::string(format));
    EXPECT_EQ(file_.Create(path).Number, 0) << specs_.FileFormatString();
    const auto shape = file_.FormatValues();
    frames_ = static_cast<std::size_t>(shape.SampleRate);
    EXPECT_TRUE(WriteBlocks(file_, MakeMusic(frames_, shape.SampleRate, shape.Channels)));
    EXPECT_TRUE(file_.Close());
    return path;
  }

  void TearDown() override { judged_.JudgeAll(); }

  Mp3Stream RecordMp3() {
    EXPECT_TRUE(mp3_.cmdOK());
    Mp3Stream stream = ParseMp3(ReadFile(Record("MP3")));
    EXPECT_FALSE(stream.Broken);
    EXPECT_GT(stream.Sound().size(), 5U);
    return stream;
  }

  TempFolder folder_;
  SettingsRig settingsRig_;
  config::Settings& settings_ = settingsRig_.Settings;
  config::SettingsDoor& door_ = settingsRig_.Door;
  platform::EncodedFile file_;
  std::int16_t captureSlot_ = 1;
  std::optional<std::string> scheduled_;
  config::FileSpecs specs_{[this](std::int16_t) { return &file_; }, settings_, captureSlot_,
                           [this] { return scheduled_; }};
  presenters::Mp3Options mp3_{door_};
  std::size_t frames_ = 0;
  JudgedFiles judged_;
};

TEST_F(ChosenFormats, EveryFormatHasAnEncoderUnderItsExtensionAndSettings) {
  for (const config::FormatRow& row : config::FormatTable()) {
    SCOPED_TRACE(row.Code);
    const platform::Codec* const codec = platform::FindCodec(row.Format(settings_, std::nullopt));
    ASSERT_NE(codec, nullptr);
    EXPECT_EQ(codec->Extension, "." + base::ToLower(row.Code));
    EXPECT_EQ(platform::FindCodecOfFile("/music/song." + std::string(row.Code)), codec);
    const auto keys = config::FormatKeys(row.Code);
    EXPECT_FALSE(keys.empty());
    for (const config::SettingKey& key : keys) EXPECT_TRUE(key.Key.starts_with(row.KeyPrefix));
    EXPECT_GT(std::filesystem::file_size(Record(row.Code)), 0U);
  }
}

TEST_F(ChosenFormats, EveryWavButton) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("WAV"), door_);
  const auto groups = options.Design().Groups;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
      options.Choose(group, button);
      EXPECT_TRUE(options.cmdOK());
      const config::FormatWAV wav = settings_.FormatWAV;
      const std::string path = Record("WAV");
      judged_.Add(specs_.FileFormatString(), {path}, [wav, frames = frames_](const DecodedFile& file) {
        ExpectFacts(file, wav.Bits == 8 ? "pcm_u8" : "pcm_s16le", {wav.Frequency, wav.Channels});
        EXPECT_EQ(file.Samples.size(), frames * static_cast<std::size_t>(wav.Channels));
      });
    }
  }
}

TEST_F(ChosenFormats, EveryRawButton) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("RAW"), door_);
  const auto groups = options.Design().Groups;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
      options.Choose(group, button);
      EXPECT_TRUE(options.cmdOK());
      const config::FormatRAW& raw = settings_.FormatRAW;
      const std::string path = Record("RAW");
      const std::string kind = raw.Compression == 3 ? "mulaw" : raw.Compression == 2 ? "alaw" : "s16le";
      judged_.Add(fmt::format("{} {} {}", raw.Compression, raw.Frequency, raw.Channels),
                  {path, fmt::format("-f {} -ar {} -ac {}", kind, raw.Frequency, raw.Channels)},
                  [music = MakeMusic(frames_, raw.Frequency, raw.Channels)](const DecodedFile& file) {
                    ASSERT_EQ(file.Samples.size(), music.size());
                    EXPECT_GT(SignalToNoise(music, file.Samples), 25);
                  });
    }
  }
}

TEST_F(ChosenFormats, EveryVoxButton) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("VOX"), door_);
  for (std::size_t button = 0; button < options.Design().Groups[0].Buttons.size(); ++button) {
    options.Choose(0, button);
    EXPECT_TRUE(options.cmdOK());
    const std::int32_t rate = settings_.FormatVOX.Frequency;
    const auto decoded = DecodeWithSox(Record("VOX"), fmt::format("-t vox -r {} -c 1", rate));
    EXPECT_NEAR(static_cast<double>(decoded.size()), rate, 1) << "the last byte is filled up";
    const auto music = MakeMusic(frames_, rate, 1);
    EXPECT_GT(SignalToNoise(std::span(music).first(std::min(music.size(), decoded.size())), decoded), 10)
        << rate;
  }
}

TEST_F(ChosenFormats, EveryG726Button) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("G726"), door_);
  const auto groups = options.Design().Groups;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
      options.Choose(group, button);
      EXPECT_TRUE(options.cmdOK());
      const config::Format726& g726 = settings_.Format726;
      const std::string path = Record("G726");
      judged_.Add(specs_.FileFormatString(), {path},
                  [rate = g726.Frequency, frames = frames_](const DecodedFile& file) {
                    ExpectFacts(file, "adpcm_g726", {rate, 1});
                    // As many samples as came, but for those that fill the last byte up, only if both agree on their bits.
                    EXPECT_NEAR(static_cast<double>(file.Samples.size()), static_cast<double>(frames), 8);
                  });
      EXPECT_NEAR(static_cast<double>(ReadFile(path).size()), static_cast<double>(frames_) * g726.Bits / 8,
                  4200);
    }
  }
}

TEST_F(ChosenFormats, EveryFlacButton) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("FLAC"), door_);
  for (std::size_t button = 0; button < options.Design().Groups[0].Buttons.size(); ++button) {
    options.Choose(0, button);
    EXPECT_TRUE(options.cmdOK());
    const std::string path = Record("FLAC");
    EXPECT_EQ(specs_.FileFormatString(), fmt::format("FLAC, level {}, 44100 Hz, stereo", button));
    judged_.Add(specs_.FileFormatString(), {path}, [](const DecodedFile& file) {
      ExpectFacts(file, "flac", {44100, 2});
    });
    EXPECT_EQ(DecodeWithFlac(path), MakeMusic(frames_, 44100, 2));
  }
}

TEST_F(ChosenFormats, EveryOpusButton) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("OPUS"), door_);
  const auto groups = options.Design().Groups;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
      options.Choose(group, button);
      EXPECT_TRUE(options.cmdOK());
      const std::string path = Record("OPUS");
      const config::FormatOPUS& opus = settings_.FormatOPUS;
      EXPECT_EQ(specs_.FileFormatString(), fmt::format("Opus, {} kbit/s, {}, 48000 Hz, stereo", opus.Bitrate,
                                                       opus.Voice ? "voice" : "music"));
      judged_.Add(specs_.FileFormatString(), {path}, [](const DecodedFile& file) {
        ExpectFacts(file, "opus", {48000, 2});
      });
      EXPECT_EQ(DecodeWithOpusdec(path).size(), 2 * frames_);
    }
  }
}

TEST_F(ChosenFormats, EveryOggBitrateAndQuality) {
  presenters::OggOptions options(door_);
  const auto record = [&] {
    EXPECT_TRUE(options.cmdOK());
    std::string path = Record("OGG");
    judged_.Add(specs_.FileFormatString(), {path}, [](const DecodedFile& file) {
      ExpectFacts(file, "vorbis", {44100, 2});
    });
    return path;
  };
  for (int position = presenters::OggBitrates().First(); position <= presenters::OggBitrates().Last();
       ++position) {
    options.NominalBitrate(position);
    const std::string told = fmt::format("Nominal bitrate: {}", presenters::OggBitrates().Bitrate(position));
    EXPECT_NE(RunProgramAll("LC_ALL=C.UTF-8 ogginfo '" + record() + "'").Output.find(told), std::string::npos)
        << told;
  }
  options.NominalBitrate(3);
  options.MinBitrate(2);
  options.MaxBitrate(5);
  options.chkVbr(true);
  const std::string info = RunProgramAll("LC_ALL=C.UTF-8 ogginfo '" + record() + "'").Output;
  EXPECT_NE(info.find("Nominal bitrate: 160"), std::string::npos) << info;
  EXPECT_NE(info.find("Upper bitrate: 256"), std::string::npos) << info;
  EXPECT_NE(info.find("Lower bitrate: 128"), std::string::npos) << info;

  options.chkQuality(true);
  std::size_t smaller = 0;
  for (int quality = 0; quality <= 1000; quality += 200) {
    options.Quality(quality);
    const std::size_t size = ReadFile(record()).size();
    EXPECT_GT(size, smaller) << quality;
    smaller = size;
  }
}

/// The nearest bitrate that MPEG layer III has at a rate; of two equally near, the higher one.
int NearestOfTheStandard(std::int32_t rate, int bitrate) {
  const std::vector<int> high{32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
  const std::vector<int> low{8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
  const std::vector<int> lowest{8, 16, 24, 32, 40, 48, 56, 64};
  int nearest = 0;
  for (const int each : rate >= 32000 ? high : rate >= 16000 ? low : lowest) {
    if (nearest == 0 || std::abs(each - bitrate) <= std::abs(nearest - bitrate)) nearest = each;
  }
  return nearest;
}

TEST_F(ChosenFormats, EveryMp3BitrateAtEveryRateWithBothChannelCounts) {
  constexpr int kRates = 9;
  constexpr std::size_t kSamples = 12345;  // of each channel
  for (int row = 0; row < kRates; ++row) {
    std::string files;
    for (const int channels : {1, 2}) {
      for (int position = 0; position <= presenters::Mp3Bitrates().Last(); ++position) {
        mp3_.cboFrequency(row);
        mp3_.cboChannels(channels - 1);
        mp3_.CurrentBitrate(position);
        ASSERT_TRUE(mp3_.cmdOK());
        const std::int32_t rate = settings_.FormatMP3.Frequency;
        const int real = NearestOfTheStandard(rate, presenters::Mp3Bitrates().Bitrate(position));
        settings_.FileFormat = "MP3";
        specs_.SetFileSpecs(0);
        EXPECT_EQ(specs_.FileFormatString(), fmt::format("MP3, {} kbit/s constant, {} Hz, {}", real, rate,
                                                         channels == 1 ? "mono" : "joint stereo"));
        const std::string path = folder_.NewPath("mp3");
        ASSERT_EQ(file_.Create(path).Number, 0) << specs_.FileFormatString();
        ASSERT_TRUE(WriteBlocks(file_, MakeMusic(kSamples, rate, static_cast<std::int16_t>(channels))));
        EXPECT_TRUE(file_.Close());
        const Mp3Stream stream = ParseMp3(ReadFile(path));
        ASSERT_FALSE(stream.Broken);
        for (const Mp3Frame& frame : stream.Sound()) {
          ASSERT_EQ(frame.Rate, rate);
          ASSERT_EQ(frame.Bitrate, real);
          ASSERT_EQ(frame.Mode == 3, channels == 1);
        }
        files += " '" + path + "'";
        judged_.Add(specs_.FileFormatString(), {path}, [=](const DecodedFile& file) {
          ExpectFacts(file, "mp3", {rate, static_cast<std::int16_t>(channels)});
          EXPECT_EQ(file.Samples.size(), kSamples * static_cast<std::size_t>(channels));
        });
      }
    }
    const auto checked = RunProgramAll("mp3val" + files);
    EXPECT_EQ(checked.Output.find("WARNING"), std::string::npos) << checked.Output;
    EXPECT_NE(checked.Output.find("MPEG frames"), std::string::npos) << checked.Output;
  }
}

TEST_F(ChosenFormats, AnEventWithoutABitRateRecordsWithTheEncodersOwnChoice) {
  for (const auto& [text, real, stereo] :
       {std::tuple{" ", 128, "joint stereo"}, {"", 128, "joint stereo"}, {"Mono", 64, "mono"}}) {
    scheduled_ = text;
    const Mp3Stream stream = RecordMp3();
    EXPECT_EQ(specs_.FileFormatString(), fmt::format("MP3, {} kbit/s constant, 44100 Hz, {}", real, stereo));
    for (const Mp3Frame& frame : stream.Sound()) ASSERT_EQ(frame.Bitrate, real) << "'" << text << "'";
  }
}

TEST_F(ChosenFormats, EveryMp3TypeOfStereo) {
  const std::vector<int> modes{0, 1, 1, 2};
  for (int row = 0; row < 4; ++row) {
    mp3_.cboTypeStereo(row);
    for (const Mp3Frame& frame : RecordMp3().Sound()) {
      ASSERT_EQ(frame.Mode, modes[static_cast<std::size_t>(row)]) << row;
      if (row == 2) {
        ASSERT_EQ(frame.ModeExtension, 2) << "forced: the sum and the difference";
      }
    }
  }
}

TEST_F(ChosenFormats, EveryMp3CodingMethod) {
  const auto bitrates = [](const Mp3Stream& stream) {
    std::vector<int> all;
    for (const Mp3Frame& frame : stream.Sound()) all.push_back(frame.Bitrate);
    return all;
  };
  mp3_.MaxVBRBitrate(11);
  mp3_.txtVbrQ("2");
  for (int row = 1; row <= 4; ++row) {
    mp3_.cboCodingMethod(row);
    const Mp3Stream stream = RecordMp3();
    const std::vector<int> all = bitrates(stream);
    EXPECT_LE(*std::ranges::max_element(all), 192) << row;
    EXPECT_LT(*std::ranges::min_element(all), *std::ranges::max_element(all)) << row;
    EXPECT_EQ(ParseInfo(stream).Name, "Xing") << row;
  }
  mp3_.cboCodingMethod(5);
  mp3_.txtABR("112");
  const std::vector<int> all = bitrates(RecordMp3());
  double sum = 0;
  for (const int bitrate : all) sum += bitrate;
  EXPECT_NEAR(sum / static_cast<double>(all.size()), 112, 20);

  mp3_.chkEnforceVBRMinBitrate(true);
  mp3_.CurrentBitrate(8);
  for (const int bitrate : bitrates(RecordMp3())) EXPECT_GE(bitrate, 112);
}

TEST_F(ChosenFormats, TheMp3BoxesReachTheFrames) {
  mp3_.chkCRCChecksums(true);
  mp3_.cboDeEmphasis(1);
  for (const Mp3Frame& frame : RecordMp3().Sound()) {
    ASSERT_TRUE(frame.Crc);
    ASSERT_EQ(frame.Emphasis, 1);
    ASSERT_EQ(frame.MainDataBegin, 0) << "no reservoir";
  }
  mp3_.chkCRCChecksums(false);
  mp3_.cboDeEmphasis(2);
  mp3_.chkBitReservoir(true);
  bool reservoir = false;
  for (const Mp3Frame& frame : RecordMp3().Sound()) {
    ASSERT_FALSE(frame.Crc);
    ASSERT_EQ(frame.Emphasis, 3);
    reservoir = reservoir || frame.MainDataBegin > 0;
  }
  EXPECT_TRUE(reservoir);
}

TEST_F(ChosenFormats, TheMp3FiltersRemoveTheirBand) {
  const double tones[] = {100.0, 1000.0, 12000.0};
  const auto record = [&] {
    EXPECT_TRUE(mp3_.cmdOK());
    settings_.FileFormat = "MP3";
    specs_.SetFileSpecs(0);
    std::string path = folder_.NewPath("mp3");
    EXPECT_TRUE(file_.Create(path));
    EXPECT_TRUE(WriteBlocks(file_, MakeTones(44100, 44100, 2, tones)));
    EXPECT_TRUE(file_.Close());
    return path;
  };
  const std::string openPath = record();
  mp3_.chkHFilt(true);
  mp3_.txtFilter(presenters::FilterNumber::HFiltF, "500");
  mp3_.txtFilter(presenters::FilterNumber::HFiltW, "100");
  mp3_.chkLFilt(true);
  mp3_.txtFilter(presenters::FilterNumber::LFiltF, "5000");
  mp3_.txtFilter(presenters::FilterNumber::LFiltW, "500");
  const std::string filteredPath = record();
  const auto decoded = DecodeTogether({{openPath}, {filteredPath}});
  const auto levels = [&](const DecodedFile& file) {
    std::vector<double> found;
    for (const double tone : tones) found.push_back(ToneLevel(file.Samples, 2, 44100, tone));
    return found;
  };
  const std::vector<double> open = levels(decoded[0]);
  const std::vector<double> filtered = levels(decoded[1]);
  EXPECT_LT(filtered[0], open[0] - 20);
  EXPECT_NEAR(filtered[1], open[1], 1);
  EXPECT_LT(filtered[2], open[2] - 20);
}

}  // namespace
}  // namespace kestrune::test
