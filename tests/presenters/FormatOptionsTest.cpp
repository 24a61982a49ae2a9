#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ConfigurationRig.h"
#include "presenters/FormatOptions.h"

namespace kestrune::test {
namespace {

using ::testing::IsEmpty;

struct Button {
  std::string_view Group;
  std::string_view Frame;
  std::string_view Caption;
  std::int32_t Value;
  std::string_view Tip;
};

/// A row of the table as one line, so that a difference is read at once.
std::string Line(const Button& button) {
  return fmt::format("{}|{}|{}|{}|{}", button.Group, button.Frame, button.Caption, button.Value, button.Tip);
}

std::vector<std::string> Told(std::initializer_list<Button> buttons) {
  std::vector<std::string> lines;
  for (const Button& button : buttons) lines.push_back(Line(button));
  return lines;
}

std::vector<std::string> Made(std::string_view fileFormat) {
  std::vector<std::string> lines;
  for (const presenters::OptionGroup& group : presenters::FindOptionWindow(fileFormat)->Groups) {
    for (const presenters::OptionButton& button : group.Buttons) {
      lines.push_back(Line({group.Name, group.Frame, button.Caption, button.Value, button.Tip}));
    }
  }
  return lines;
}

class FormatOptionsTest : public ::testing::Test {
 protected:
  /// What the window of the format hands to the encoder once its OK was pressed.
  std::string Prepared(std::string_view fileFormat) {
    rig_.Settings.FileFormat = fileFormat;
    rig_.Specs.SetFileSpecs(1);
    return rig_.Idle.Calls.back();
  }

  ConfigurationRig rig_;
};

TEST_F(FormatOptionsTest, TheSixCaptions) {
  EXPECT_EQ(presenters::FindOptionWindow("RAW")->Caption, "RAW Options");
  EXPECT_EQ(presenters::FindOptionWindow("VOX")->Caption, "VOX Options");
  EXPECT_EQ(presenters::FindOptionWindow("WAV")->Caption, "WAV Options");
  EXPECT_EQ(presenters::FindOptionWindow("G726")->Caption, "Set CCUIT G.726 Format");
  EXPECT_EQ(presenters::FindOptionWindow("FLAC")->Caption, "FLAC Options");
  EXPECT_EQ(presenters::FindOptionWindow("OPUS")->Caption, "Opus Options");
}

TEST_F(FormatOptionsTest, TheButtonsOfRaw) {
  const auto rate = [](std::string_view caption, std::int32_t value) {
    return Button{"optFrequency", "Sample Rate (Hz)", caption, value, "Select sample rate"};
  };
  EXPECT_EQ(Made("RAW"),
            Told({{"optCompression", "Compression", "8-bit mu-Law ", 3, "Select compression type"},
                  {"optCompression", "Compression", "8-bit A-Law ", 2, "Select compression type"},
                  {"optCompression", "Compression", "16-bit PCM", 1, "Select compression type"},
                  {"optChannels", "Channels", "Stereo", 2, "Select number of channels to record"},
                  {"optChannels", "Channels", "Mono", 1, "Select number of channels to record"},
                  rate("6000", 6000),
                  rate("8000", 8000),
                  rate("11025 ", 11025),
                  rate("12000", 12000),
                  rate("16000", 16000),
                  rate("22050", 22050),
                  rate("24000", 24000),
                  rate("32000", 32000),
                  rate("44100", 44100),
                  rate("48000", 48000)}));
}

TEST_F(FormatOptionsTest, TheButtonsOfVox) {
  const auto rate = [](std::string_view caption, std::int32_t value) {
    return Button{"optFrequency", "Sample Rate (Hz)", caption, value, "Select sample rate"};
  };
  EXPECT_EQ(Made("VOX"),
            Told({rate("8000", 8000), rate("11025", 11025), rate("16000", 16000), rate("22050", 22050),
                  rate("24000", 24000), rate("32000", 32000), rate("44100", 44100), rate("48000", 48000)}));
}

TEST_F(FormatOptionsTest, TheButtonsOfWavWithTheOddTipOfStereo) {
  const auto rate = [](std::string_view caption, std::int32_t value) {
    return Button{"optFrequency", "Sample Rate (Hz)", caption, value, "Select sample rate"};
  };
  EXPECT_EQ(Made("WAV"), Told({{"optChannels", "Channels", "Stereo", 2, "Select sample bit size"},
                               {"optChannels", "Channels", "Mono", 1, "Select number of channels to record"},
                               {"optBits", "Bits Per Sample", "16 Bits", 16, "Select sample bit size"},
                               {"optBits", "Bits Per Sample", "8 Bits", 8, "Select sample bit size"},
                               rate("8000", 8000),
                               rate("11025", 11025),
                               rate("16000", 16000),
                               rate("22050", 22050),
                               rate("24000", 24000),
                               rate("32000", 32000),
                               rate("44100", 44100),
                               rate("48000", 48000)}));
}

TEST_F(FormatOptionsTest, TheButtonsOfG726) {
  const auto bits = [](std::string_view caption, std::int32_t value) {
    return Button{"optADPCM", "Bits Per Sample", caption, value,
                  "Select number of bits per sample to record"};
  };
  const auto rate = [](std::string_view caption, std::int32_t value) {
    return Button{"optFrequency", "Sample Rate (Hz)", caption, value, "Select sample rate for this format"};
  };
  EXPECT_EQ(Made("G726"),
            Told({bits("2 bit ", 2), bits("3 bit", 3), bits("4 bit ", 4), bits("5 bit", 5),
                  rate("6000", 6000), rate("8000", 8000), rate("11025", 11025), rate("12000", 12000),
                  rate("16000", 16000), rate("22050", 22050), rate("24000", 24000), rate("32000", 32000),
                  rate("44100", 44100), rate("48000", 48000)}));
}

TEST_F(FormatOptionsTest, TheButtonsOfFlac) {
  const auto level = [](std::string_view caption, std::int32_t value) {
    return Button{"optLevel", "Compression Level", caption, value,
                  "Select how long to search for the smallest file; nothing is lost at any level"};
  };
  EXPECT_EQ(Made("FLAC"),
            Told({level("0 (fastest)", 0), level("1", 1), level("2", 2), level("3", 3), level("4", 4),
                  level("5", 5), level("6", 6), level("7", 7), level("8 (smallest)", 8)}));
}

TEST_F(FormatOptionsTest, TheButtonsOfOpus) {
  const auto made = [](std::string_view caption, std::int32_t value) {
    return Button{"optApplication", "Made For", caption, value, "Select what the encoder is made for"};
  };
  const auto bitrate = [](std::string_view caption, std::int32_t value) {
    return Button{"optBitrate", "Bitrate (kbit/s)", caption, value, "Select average bitrate to record"};
  };
  EXPECT_EQ(Made("OPUS"),
            Told({made("Music", 0), made("Voice", 1), bitrate("32", 32), bitrate("48", 48), bitrate("64", 64),
                  bitrate("80", 80), bitrate("96", 96), bitrate("112", 112), bitrate("128", 128),
                  bitrate("160", 160), bitrate("192", 192), bitrate("224", 224), bitrate("256", 256)}));
}

TEST_F(FormatOptionsTest, EveryButtonReachesTheRecordAndIsOnWhenItIsLoaded) {
  for (const presenters::OptionWindow& design : presenters::OptionWindows()) {
    const std::string_view format = design.FileFormat;
    presenters::FormatOptions options(design, rig_.Door);
    const auto groups = options.Design().Groups;
    for (std::size_t group = 0; group < groups.size(); ++group) {
      for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
        options.Load();
        options.Choose(group, button);
        EXPECT_EQ(options.On(group), static_cast<int>(button));
        EXPECT_TRUE(options.cmdOK());
        EXPECT_EQ(groups[group].Read(rig_.Settings), groups[group].Buttons[button].Value);
        presenters::FormatOptions next(design, rig_.Door);
        EXPECT_EQ(next.On(group), static_cast<int>(button)) << format;
      }
    }
  }
}

TEST_F(FormatOptionsTest, EveryChoiceReachesTheEncoder) {
  for (const std::string_view format : {"RAW", "VOX", "WAV", "G726", "FLAC", "OPUS"}) {
    presenters::FormatOptions options(*presenters::FindOptionWindow(format), rig_.Door);
    const auto groups = options.Design().Groups;
    for (std::size_t group = 0; group < groups.size(); ++group) {
      for (std::size_t button = 0; button < groups[group].Buttons.size(); ++button) {
        options.Choose(group, button);
        EXPECT_TRUE(options.cmdOK());
        const config::Settings& now = rig_.Settings;
        const std::string wanted =
            format == "RAW"    ? fmt::format("SetFormatRAW {} {} {} 16", now.FormatRAW.Compression,
                                             now.FormatRAW.Frequency, now.FormatRAW.Channels)
            : format == "VOX"  ? fmt::format("SetFormatVOX {}", now.FormatVOX.Frequency)
            : format == "WAV"  ? fmt::format("SetFormatWAV {} {} {}", now.FormatWAV.Frequency,
                                             now.FormatWAV.Channels, now.FormatWAV.Bits)
            : format == "FLAC" ? fmt::format("SetFormatFLAC 44100 2 {}", now.FormatFLAC.Level)
            : format == "OPUS"
                ? fmt::format("SetFormatOpus 48000 2 {} {}", now.FormatOPUS.Bitrate,
                              now.FormatOPUS.Voice ? 1 : 0)
                : fmt::format("SetFormatG726 {} {}", now.Format726.Frequency, now.Format726.Bits);
        EXPECT_EQ(Prepared(format), wanted);
        EXPECT_NE((" " + wanted + " ").find(fmt::format(" {} ", groups[group].Buttons[button].Value)),
                  std::string::npos)
            << wanted;
      }
    }
  }
}

TEST_F(FormatOptionsTest, TheKeysAreSavedInTheirOrder) {
  struct Row {
    std::string_view Format;
    std::vector<std::string> Saves;
  };
  const std::vector<Row> rows{
      {"RAW", {"RAW_Channels=1", "RAW_Compression=3", "RAW_Frequency=6000"}},
      {"VOX", {"VOX_Frequency=8000"}},
      {"WAV", {"WAV_Bits=16", "WAV_Channels=2", "WAV_Frequency=8000"}},
      {"G726", {"726_Bits=2", "726_Frequency=6000"}},
      {"FLAC", {"FLAC_Level=0"}},
      {"OPUS", {"OPUS_Bitrate=32", "OPUS_Voice=False"}},
  };
  for (const Row& row : rows) {
    rig_.Store.Calls.clear();
    presenters::FormatOptions options(*presenters::FindOptionWindow(row.Format), rig_.Door);
    for (std::size_t group = 0; group < options.Design().Groups.size(); ++group) options.Choose(group, 0);
    if (row.Format == "RAW") options.Choose(1, 1);
    EXPECT_TRUE(options.cmdOK());
    EXPECT_EQ(rig_.Saves(), row.Saves);
  }
}

TEST_F(FormatOptionsTest, AWavRateThatIsNotOfferedSetsNoButtonAndStays) {
  rig_.Settings.FormatWAV.Frequency = 12000;
  presenters::FormatOptions options(*presenters::FindOptionWindow("WAV"), rig_.Door);
  EXPECT_EQ(options.On(2), -1);
  options.Choose(0, 1);
  EXPECT_TRUE(options.cmdOK());
  EXPECT_EQ(rig_.Settings.FormatWAV.Frequency, 12000);
  EXPECT_EQ(rig_.Settings.FormatWAV.Channels, 1);
}

TEST_F(FormatOptionsTest, TheDefaultCompressionSetsNoButtonAndStaysUntilChosen) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("RAW"), rig_.Door);
  EXPECT_EQ(options.On(0), -1);
  EXPECT_TRUE(options.cmdOK());
  EXPECT_EQ(rig_.Settings.FormatRAW.Compression, 0);
  options.Choose(0, 2);
  EXPECT_TRUE(options.cmdOK());
  EXPECT_EQ(rig_.Settings.FormatRAW.Compression, 1);
}

TEST_F(FormatOptionsTest, ACancelKeepsNothing) {
  presenters::FormatOptions options(*presenters::FindOptionWindow("WAV"), rig_.Door);
  options.Choose(0, 1);
  options.Load();
  EXPECT_EQ(options.On(0), 0);
  EXPECT_EQ(rig_.Settings.FormatWAV, config::FormatWAV());
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
