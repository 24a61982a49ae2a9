#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingKeys.h"
#include "presenters/ConfigurationRig.h"
#include "presenters/Mp3Options.h"

namespace kestrune::test {
namespace {

using platform::Mp3Parameters;
using presenters::FilterNumber;
using presenters::Mp3Options;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Mp3OptionsTest : public ::testing::Test {
 protected:
  Mp3Parameters Prepared() {
    rig_.Settings.FileFormat = "MP3";
    rig_.Specs.SetFileSpecs(1);
    return rig_.Idle.Mp3;
  }
  [[nodiscard]] const presenters::Mp3Controls& Shown() const { return options_.Controls(); }
  [[nodiscard]] const presenters::NumberText& Filter(FilterNumber number) const {
    return Shown().Filters[static_cast<std::size_t>(number)];
  }

  ConfigurationRig rig_;
  Mp3Options options_{rig_.Door};
  config::FormatMP3& record_ = rig_.Settings.FormatMP3;
};

std::vector<std::string> Texts(const presenters::ChoiceList& list) {
  std::vector<std::string> texts;
  for (const presenters::ChoiceRow& row : list.Rows) texts.push_back(row.Text);
  return texts;
}

TEST_F(Mp3OptionsTest, TheBitrateTable) {
  const std::vector<std::int16_t> told{8, 16, 24, 32, 48, 56, 64, 96, 112, 128, 160, 192, 224, 256, 320};
  EXPECT_EQ(presenters::Mp3Bitrates().First(), 0);
  EXPECT_EQ(presenters::Mp3Bitrates().Last(), 14);
  for (int position = 0; position <= 14; ++position) {
    const std::int16_t kbit = told[static_cast<std::size_t>(position)];
    EXPECT_EQ(presenters::Mp3Bitrates().Bitrate(position), kbit);
    EXPECT_EQ(presenters::Mp3Bitrates().Position(kbit), position);
  }
  for (const int position : {-1, 15, 1000}) EXPECT_EQ(presenters::Mp3Bitrates().Bitrate(position), 0);
  for (const std::int16_t kbit : {-1, 0, 40, 80, 144, 32767}) {
    EXPECT_EQ(presenters::Mp3Bitrates().Position(kbit), 0);
  }
}

TEST_F(Mp3OptionsTest, TheListsReadAsTold) {
  EXPECT_THAT(Texts(Shown().cboFrequency), ElementsAre("8,000", "11,025", "12,000", "16,000", "22,050",
                                                       "24,000", "32,000", "44,100", "48,000"));
  EXPECT_THAT(Texts(Shown().cboChannels), ElementsAre("Mono", "Stereo"));
  EXPECT_THAT(Texts(Shown().cboTypeStereo), ElementsAre("Simple", "Joint", "Forced Joint", "Dual Channel"));
  EXPECT_THAT(Texts(Shown().cboCodingMethod),
              ElementsAre("Disabled", "Default", "Old", "New", "MTRH", "ABR"));
  EXPECT_THAT(Texts(Shown().cboATHControl), ElementsAre("Default", "ATH Only", "Disable ATH", "Short Block"));
  EXPECT_THAT(Texts(Shown().cboDeEmphasis), ElementsAre("Disabled", "0/15 ms", "citt j.17"));
}

TEST_F(Mp3OptionsTest, LoadShowsTheDefaults) {
  EXPECT_EQ(Shown().cboFrequency.Text(), "44,100");
  EXPECT_EQ(Shown().cboChannels.Text(), "Stereo");
  EXPECT_EQ(Shown().cboTypeStereo.Text(), "Joint");
  EXPECT_EQ(Shown().cboCodingMethod.Text(), "Disabled");
  EXPECT_EQ(Shown().cboATHControl.Text(), "Default");
  EXPECT_EQ(Shown().cboDeEmphasis.Text(), "Disabled");
  EXPECT_EQ(Shown().CurrentBitrate, 10);
  EXPECT_EQ(Shown().lblCurrentBitrate, "Current bitrate: 160 kbit");
  EXPECT_EQ(Shown().MaxVBRBitrate, 10);
  EXPECT_EQ(Shown().lblMaxVBRBitrate, "Current bitrate: 160 kbit");
  EXPECT_EQ(Shown().EncoderQuality, 4);
  EXPECT_EQ(Shown().txtVbrQ.Text, "4");
  EXPECT_EQ(Shown().txtABR.Text, "128");
  EXPECT_EQ(Filter(FilterNumber::HFiltF).Text, "30");
  EXPECT_EQ(Filter(FilterNumber::HFiltW).Text, "5");
  EXPECT_EQ(Filter(FilterNumber::LFiltF).Text, "16000");
  EXPECT_EQ(Filter(FilterNumber::LFiltW).Text, "500");
  EXPECT_TRUE(Shown().chkWriteVBRHeader);
  EXPECT_FALSE(Shown().chkEnforceVBRMinBitrate);
  EXPECT_FALSE(Shown().chkHFilt);
  EXPECT_FALSE(Shown().chkLFilt);
}

TEST_F(Mp3OptionsTest, EveryFieldReachesTheEncoder) {
  struct Row {
    const char* Name;
    std::function<void(Mp3Options&)> Act;
    std::function<bool(const Mp3Parameters&)> Holds;
  };
  const std::vector<Row> rows{
      {"Frequency", [](Mp3Options& o) { o.cboFrequency(6); },
       [](const Mp3Parameters& p) { return p.Frequency == 32000; }},
      {"Channels", [](Mp3Options& o) { o.cboChannels(0); },
       [](const Mp3Parameters& p) { return p.Channels == 1; }},
      {"TypeStereo", [](Mp3Options& o) { o.cboTypeStereo(3); },
       [](const Mp3Parameters& p) { return p.TypeStereo == 4; }},
      {"Bitrate", [](Mp3Options& o) { o.CurrentBitrate(14); },
       [](const Mp3Parameters& p) { return p.Bitrate == 320; }},
      {"Quality", [](Mp3Options& o) { o.EncoderQuality(9); },
       [](const Mp3Parameters& p) { return p.Quality == 9; }},
      {"VBRCodingMethod", [](Mp3Options& o) { o.cboCodingMethod(3); },
       [](const Mp3Parameters& p) { return p.VBRCodingMethod == 2; }},
      {"VBRQuality", [](Mp3Options& o) { o.txtVbrQ("7"); },
       [](const Mp3Parameters& p) { return p.VBRQuality == 7; }},
      {"VBRTargetBitrate", [](Mp3Options& o) { o.txtABR("99"); },
       [](const Mp3Parameters& p) { return p.VBRTargetBitrate == 99; }},
      {"VBRMaxBitrate", [](Mp3Options& o) { o.MaxVBRBitrate(12); },
       [](const Mp3Parameters& p) { return p.VBRMaxBitrate == 224; }},
      {"VBRHeader", [](Mp3Options& o) { o.chkWriteVBRHeader(false); },
       [](const Mp3Parameters& p) { return !p.VBRHeader; }},
      {"VBREnforceMinBitRate", [](Mp3Options& o) { o.chkEnforceVBRMinBitrate(true); },
       [](const Mp3Parameters& p) { return p.VBREnforceMinBitRate; }},
      {"IncludeCRC", [](Mp3Options& o) { o.chkCRCChecksums(true); },
       [](const Mp3Parameters& p) { return p.IncludeCRC; }},
      {"ComplyISO", [](Mp3Options& o) { o.chkISOComply(true); },
       [](const Mp3Parameters& p) { return p.ComplyISO; }},
      {"DifferentBlockTypes", [](Mp3Options& o) { o.chkDiffBlockTypes(true); },
       [](const Mp3Parameters& p) { return p.DifferentBlockTypes; }},
      {"ShortBlocks", [](Mp3Options& o) { o.chkShortBlocks(true); },
       [](const Mp3Parameters& p) { return p.ShortBlocks; }},
      {"BitReservoir", [](Mp3Options& o) { o.chkBitReservoir(true); },
       [](const Mp3Parameters& p) { return p.BitReservoir; }},
      {"ATHControl", [](Mp3Options& o) { o.cboATHControl(3); },
       [](const Mp3Parameters& p) { return p.ATHControl == 3; }},
      {"DeEmphasis", [](Mp3Options& o) { o.cboDeEmphasis(2); },
       [](const Mp3Parameters& p) { return p.DeEmphasis == 2; }},
      {"HighPassFilterWidth", [](Mp3Options& o) { o.txtFilter(FilterNumber::HFiltW, "17"); },
       [](const Mp3Parameters& p) { return p.HighPassFilterWidth == 17 && p.HighPassFilterFreq == -1; }},
      {"HighPassFilter", [](Mp3Options& o) { o.chkHFilt(true); },
       [](const Mp3Parameters& p) { return p.HighPassFilterFreq == 30; }},
      {"HighPassFilterFreq", [](Mp3Options& o) { o.txtFilter(FilterNumber::HFiltF, "80"); },
       [](const Mp3Parameters& p) { return p.HighPassFilterFreq == 80; }},
      {"LowPassFilterWidth", [](Mp3Options& o) { o.txtFilter(FilterNumber::LFiltW, "700"); },
       [](const Mp3Parameters& p) { return p.LowPassFilterWidth == 700 && p.LowPassFilterFreq == -1; }},
      {"LowPassFilter", [](Mp3Options& o) { o.chkLFilt(true); },
       [](const Mp3Parameters& p) { return p.LowPassFilterFreq == 16000; }},
      {"LowPassFilterFreq", [](Mp3Options& o) { o.txtFilter(FilterNumber::LFiltF, "32767"); },
       [](const Mp3Parameters& p) { return p.LowPassFilterFreq == 32767; }},
  };
  EXPECT_EQ(rows.size(), 24U);
  for (const Row& row : rows) {
    EXPECT_FALSE(row.Holds(Prepared())) << row.Name << " holds before it is chosen";
    options_.Load();
    row.Act(options_);
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_TRUE(row.Holds(Prepared())) << row.Name;
  }
}

TEST_F(Mp3OptionsTest, EveryRowOfEveryListIsSavedAndLoaded) {
  struct Row {
    presenters::ChoiceList presenters::Mp3Controls::*List;
    void (Mp3Options::*Choose)(int);
    std::function<std::int32_t()> Field;
    std::vector<std::int32_t> Values;
  };
  using Controls = presenters::Mp3Controls;
  const std::vector<Row> rows{
      {&Controls::cboFrequency,
       &Mp3Options::cboFrequency,
       [&] { return record_.Frequency; },
       {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}},
      {&Controls::cboChannels, &Mp3Options::cboChannels, [&] { return record_.Channels; }, {1, 2}},
      {&Controls::cboTypeStereo,
       &Mp3Options::cboTypeStereo,
       [&] { return record_.TypeStereo; },
       {1, 2, 3, 4}},
      {&Controls::cboCodingMethod,
       &Mp3Options::cboCodingMethod,
       [&] { return record_.VBRCodingMethod; },
       {-1, 0, 1, 2, 3, 4}},
      {&Controls::cboATHControl,
       &Mp3Options::cboATHControl,
       [&] { return record_.ATHControl; },
       {0, 1, 2, 3}},
      {&Controls::cboDeEmphasis, &Mp3Options::cboDeEmphasis, [&] { return record_.DeEmphasis; }, {0, 1, 2}},
  };
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.Values.size(); ++i) {
      (options_.*row.Choose)(static_cast<int>(i));
      EXPECT_TRUE(options_.cmdOK());
      EXPECT_EQ(row.Field(), row.Values[i]);
      options_.Load();
      EXPECT_EQ((Shown().*row.List).Row, static_cast<int>(i));
    }
  }
}

TEST_F(Mp3OptionsTest, EveryPositionOfTheSlidersIsSavedAndTold) {
  for (int position = 0; position <= 14; ++position) {
    options_.CurrentBitrate(position);
    options_.MaxVBRBitrate(14 - position);
    const std::int16_t kbit = presenters::Mp3Bitrates().Bitrate(position);
    const std::int16_t mirrored = presenters::Mp3Bitrates().Bitrate(14 - position);
    EXPECT_EQ(Shown().lblCurrentBitrate, "Current bitrate: " + std::to_string(kbit) + " kbit");
    EXPECT_EQ(Shown().lblMaxVBRBitrate, "Current bitrate: " + std::to_string(mirrored) + " kbit");
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_EQ(record_.Bitrate, kbit);
    EXPECT_EQ(record_.VBRMaxBitrate, mirrored);
  }
  for (int quality = 0; quality <= 9; ++quality) {
    options_.EncoderQuality(quality);
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_EQ(record_.Quality, quality);
  }
}

TEST_F(Mp3OptionsTest, ABitrateThatIsNotOnTheTableShowsAsEightAndIsSavedSo) {
  record_.Bitrate = 40;
  record_.VBRMaxBitrate = 80;
  options_.Load();
  EXPECT_EQ(Shown().CurrentBitrate, 0);
  EXPECT_EQ(Shown().lblCurrentBitrate, "Current bitrate: 8 kbit");
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.Bitrate, 8);
  EXPECT_EQ(record_.VBRMaxBitrate, 8);
}

TEST_F(Mp3OptionsTest, AValueThatNoRowStandsForSelectsNothingAndStays) {
  record_.Frequency = 12345;
  record_.TypeStereo = 0;
  record_.Channels = 6;
  record_.VBRCodingMethod = 9;
  record_.ATHControl = -3;
  record_.DeEmphasis = 4;
  const config::FormatMP3 before = record_;
  options_.Load();
  EXPECT_EQ(Shown().cboFrequency.Row, -1);
  EXPECT_EQ(Shown().cboTypeStereo.Row, -1);
  EXPECT_EQ(Shown().cboChannels.Row, -1);
  EXPECT_EQ(Shown().cboCodingMethod.Row, -1);
  EXPECT_EQ(Shown().cboATHControl.Row, -1);
  EXPECT_EQ(Shown().cboDeEmphasis.Row, -1);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_, before);
}

TEST_F(Mp3OptionsTest, SpinValuesOutsideTheirRangesAreHeldInThem) {
  record_.VBRQuality = 12;
  record_.VBRTargetBitrate = 0;
  record_.Quality = 15;
  options_.Load();
  EXPECT_EQ(Shown().txtVbrQ.Text, "9");
  EXPECT_EQ(Shown().txtABR.Text, "4");
  EXPECT_EQ(Shown().EncoderQuality, 9);
}

TEST_F(Mp3OptionsTest, TheSpinsStepByOneAndTheFiltersByTen) {
  options_.StepVbrQ(1);
  EXPECT_EQ(Shown().txtVbrQ.Text, "5");
  for (int i = 0; i < 10; ++i) options_.StepVbrQ(1);
  EXPECT_EQ(Shown().txtVbrQ.Text, "9");
  for (int i = 0; i < 200; ++i) options_.StepABR(-1);
  EXPECT_EQ(Shown().txtABR.Text, "4");
  for (int i = 0; i < 400; ++i) options_.StepABR(1);
  EXPECT_EQ(Shown().txtABR.Text, "320");
  options_.StepFilter(FilterNumber::HFiltF, 1);
  EXPECT_EQ(Filter(FilterNumber::HFiltF).Text, "40");
  options_.StepFilter(FilterNumber::HFiltW, -1);
  EXPECT_EQ(Filter(FilterNumber::HFiltW).Text, "0");
  options_.txtFilter(FilterNumber::LFiltF, "47995");
  options_.StepFilter(FilterNumber::LFiltF, 1);
  EXPECT_EQ(Filter(FilterNumber::LFiltF).Text, "48000");
}

TEST_F(Mp3OptionsTest, WhatIsTypedBesideASpinCountsIfItIsANumberAndWithinTheRange) {
  const std::vector<std::pair<const char*, std::int16_t>> rows{{"7", 7},  {"", 7},   {"x", 7},
                                                               {"99", 9}, {"-1", 0}, {"99999", 0}};
  for (const auto& [text, counts] : rows) {
    options_.txtVbrQ(text);
    EXPECT_EQ(Shown().txtVbrQ.Text, text) << "nothing is taken out of the user's hands";
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_EQ(record_.VBRQuality, counts) << text;
  }
  options_.txtABR("400");
  options_.ShowSpinValues();
  EXPECT_EQ(Shown().txtVbrQ.Text, "0");
  EXPECT_EQ(Shown().txtABR.Text, "320");
}

TEST_F(Mp3OptionsTest, WithoutAVariableBitrateAllOfItIsHiddenAndStillSaved) {
  options_.txtVbrQ("7");
  options_.txtABR("99");
  options_.MaxVBRBitrate(3);
  options_.chkEnforceVBRMinBitrate(true);
  options_.cboCodingMethod(0);
  EXPECT_FALSE(Shown().VbrQualityVisible);
  EXPECT_FALSE(Shown().AbrVisible);
  EXPECT_FALSE(Shown().VbrVisible);
  EXPECT_FALSE(Shown().txtVbrQ.Enabled);
  EXPECT_FALSE(Shown().txtABR.Enabled);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.VBRCodingMethod, -1);
  EXPECT_EQ(record_.VBRQuality, 7);
  EXPECT_EQ(record_.VBRTargetBitrate, 99);
  EXPECT_EQ(record_.VBRMaxBitrate, 32);
  EXPECT_TRUE(record_.VBREnforceMinBitRate);
}

TEST_F(Mp3OptionsTest, TheCodingMethodShowsAndHidesWhatBelongsToIt) {
  for (const int from : {0, 1, 5}) {
    for (const int row : {1, 2, 3, 4}) {
      options_.cboCodingMethod(from);
      options_.cboCodingMethod(row);
      EXPECT_TRUE(Shown().VbrQualityVisible) << row;
      EXPECT_TRUE(Shown().txtVbrQ.Enabled);
      EXPECT_FALSE(Shown().AbrVisible);
      EXPECT_FALSE(Shown().txtABR.Enabled);
      EXPECT_TRUE(Shown().VbrVisible);
    }
    options_.cboCodingMethod(from);
    options_.cboCodingMethod(5);
    EXPECT_FALSE(Shown().VbrQualityVisible);
    EXPECT_FALSE(Shown().txtVbrQ.Enabled);
    EXPECT_TRUE(Shown().AbrVisible);
    EXPECT_TRUE(Shown().txtABR.Enabled);
    EXPECT_TRUE(Shown().VbrVisible);
  }
}

TEST_F(Mp3OptionsTest, TheFilterBoxesShowAndHideTheirControls) {
  for (const bool on : {true, false}) {
    options_.chkHFilt(on);
    EXPECT_EQ(Shown().HighPassVisible, on);
    EXPECT_EQ(Filter(FilterNumber::HFiltF).Enabled, on);
    EXPECT_EQ(Filter(FilterNumber::HFiltW).Enabled, on);
    EXPECT_FALSE(Filter(FilterNumber::LFiltF).Enabled);
  }
  for (const bool on : {true, false}) {
    options_.chkLFilt(on);
    EXPECT_EQ(Shown().LowPassVisible, on);
    EXPECT_EQ(Filter(FilterNumber::LFiltF).Enabled, on);
    EXPECT_EQ(Filter(FilterNumber::LFiltW).Enabled, on);
    EXPECT_FALSE(Filter(FilterNumber::HFiltF).Enabled);
  }
}

TEST_F(Mp3OptionsTest, LoadAppliesTheInterlocks) {
  EXPECT_FALSE(Shown().VbrVisible);
  EXPECT_FALSE(Shown().HighPassVisible);
  EXPECT_FALSE(Shown().LowPassVisible);
  record_.VBRCodingMethod = 4;
  record_.HighPassFilter = true;
  record_.LowPassFilter = true;
  options_.Load();
  EXPECT_TRUE(Shown().AbrVisible);
  EXPECT_FALSE(Shown().VbrQualityVisible);
  EXPECT_TRUE(Shown().HighPassVisible);
  EXPECT_TRUE(Shown().LowPassVisible);
}

TEST_F(Mp3OptionsTest, MonoSavesTheTypeOfStereoAsWell) {
  options_.cboTypeStereo(2);
  options_.cboChannels(0);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.Channels, 1);
  EXPECT_EQ(record_.TypeStereo, 3);
}

TEST_F(Mp3OptionsTest, AStoredOneOfTheHeaderIsSavedAsABooleansText) {
  rig_.Store.Put("Lorimel", "Kestrune", "MP3_VBRHeader", "1");
  config::LoadSettings(rig_.Section, rig_.Environment, rig_.Settings);
  options_.Load();
  EXPECT_TRUE(Shown().chkWriteVBRHeader);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "MP3_VBRHeader"), "True");
}

TEST_F(Mp3OptionsTest, TheKeysAreSavedInTheirOrder) {
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_THAT(rig_.Saves(),
              ElementsAre("MP3_ATHControl=0", "MP3_Bitrate=160", "MP3_=False", "MP3_Channels=2",
                          "MP3_ComplyISO=False", "MP3_DeEmphasis=0", "MP3_DifferentBlockTypes=False",
                          "MP3_Frequency=44100", "MP3_HighPassFilter=False", "MP3_HighPassFilterFreq=30",
                          "MP3_HighPassFilterWidth=5", "MP3_IncludeCRC=False", "MP3_LowPassFilter=False",
                          "MP3_LowPassFilterFreq=16000", "MP3_LowPassFilterWidth=500", "MP3_Quality=4",
                          "MP3_ShortBlocks=False", "MP3_TypeStereo=2", "MP3_VBRCodingMethod=-1",
                          "MP3_VBREnforceMinBitRate=False", "MP3_VBRHeader=True", "MP3_VBRMaxBitrate=160",
                          "MP3_VBRQuality=4", "MP3_VBRTargetBitrate=128"));
}

TEST_F(Mp3OptionsTest, AFilterTextThatItsFieldCannotHoldSavesNothing) {
  const std::vector<std::string> names{"txtHFiltF", "txtHFiltW", "txtLFiltF", "txtLFiltW"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (const char* text : {"", "steep", "32768", "48000", "-32769", "1e9"}) {
      options_.Load();
      options_.cboChannels(0);
      options_.txtFilter(static_cast<FilterNumber>(i), text);
      EXPECT_FALSE(options_.cmdOK()) << names[i] << " " << text;
      EXPECT_EQ(options_.FieldToMend(), names[i]);
      EXPECT_TRUE(Shown().Filters[i].Enabled) << "the user can get at it though its filter is off";
      EXPECT_EQ(Shown().Filters[i].Text, text);
      EXPECT_EQ(record_, config::FormatMP3());
      EXPECT_THAT(rig_.Saves(), IsEmpty());
    }
  }
  options_.txtFilter(FilterNumber::LFiltW, " 500 ");
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(options_.FieldToMend(), "");
  EXPECT_EQ(record_.Channels, 1);
}

TEST_F(Mp3OptionsTest, OkLeavesPreparingToItsCaller) {
  options_.CurrentBitrate(14);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_THAT(rig_.Idle.Calls, IsEmpty());
  EXPECT_EQ(Prepared().Bitrate, 320);
}

TEST_F(Mp3OptionsTest, ACancelKeepsNothing) {
  options_.CurrentBitrate(14);
  options_.chkCRCChecksums(true);
  options_.Load();
  EXPECT_EQ(Shown().CurrentBitrate, 10);
  EXPECT_FALSE(Shown().chkCRCChecksums);
  EXPECT_EQ(record_, config::FormatMP3());
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
