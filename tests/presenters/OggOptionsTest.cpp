#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ConfigurationRig.h"
#include "presenters/OggOptions.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OggOptionsTest : public ::testing::Test {
 protected:
  std::string Prepared() {
    rig_.Settings.FileFormat = "OGG";
    rig_.Specs.SetFileSpecs(1);
    return rig_.Idle.Calls.back();
  }
  [[nodiscard]] const presenters::OggControls& Shown() const { return options_.Controls(); }

  ConfigurationRig rig_;
  presenters::OggOptions options_{rig_.Door};
  config::FormatOGG& record_ = rig_.Settings.FormatOGG;
};

TEST_F(OggOptionsTest, TheBitrateTable) {
  const std::vector<std::int16_t> told{112, 128, 160, 192, 256, 320};
  EXPECT_EQ(presenters::OggBitrates().First(), 1);
  EXPECT_EQ(presenters::OggBitrates().Last(), 6);
  for (int position = 1; position <= 6; ++position) {
    const std::int16_t kbit = told[static_cast<std::size_t>(position - 1)];
    EXPECT_EQ(presenters::OggBitrates().Bitrate(position), kbit);
    EXPECT_EQ(presenters::OggBitrates().Position(kbit), position);
  }
  for (const int position : {-1, 0, 7, 1000}) EXPECT_EQ(presenters::OggBitrates().Bitrate(position), 0);
  for (const std::int16_t kbit : {-1, 0, 96, 111, 224, 32767}) {
    EXPECT_EQ(presenters::OggBitrates().Position(kbit), 0);
  }
}

TEST_F(OggOptionsTest, LoadShowsTheRecord) {
  EXPECT_EQ(Shown().NominalBitrate.Position, 3);
  EXPECT_EQ(Shown().MinBitrate.Position, 2);
  EXPECT_EQ(Shown().MaxBitrate.Position, 4);
  EXPECT_EQ(Shown().NominalBitrate.Label, "Current nominal bitrate: 160 kbit");
  EXPECT_EQ(Shown().MinBitrate.Label, "Current min bitrate: 128 kbit");
  EXPECT_EQ(Shown().MaxBitrate.Label, "Current max bitrate: 192 kbit");
  EXPECT_EQ(Shown().NominalBitrate.Tip, "160");
  EXPECT_EQ(Shown().MinBitrate.Tip, "128");
  EXPECT_EQ(Shown().MaxBitrate.Tip, "192");
  EXPECT_FALSE(Shown().chkVbr);
  EXPECT_FALSE(Shown().chkQuality);
}

TEST_F(OggOptionsTest, ABitrateThatIsNotOnTheTableShowsBelowTheSlidersLeast) {
  record_.Bitrate = 96;
  options_.Load();
  EXPECT_EQ(Shown().NominalBitrate.Position, 0);
  EXPECT_EQ(Shown().NominalBitrate.Label, "Current nominal bitrate: 96 kbit");
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.Bitrate, 0);
}

TEST_F(OggOptionsTest, EveryPositionOfEverySliderReachesTheEncoder) {
  options_.chkVbr(true);
  for (int position = 1; position <= 6; ++position) {
    options_.NominalBitrate(position);
    options_.MinBitrate(7 - position);
    options_.MaxBitrate(position);
    const std::string kbit = std::to_string(presenters::OggBitrates().Bitrate(position));
    const std::string mirrored = std::to_string(presenters::OggBitrates().Bitrate(7 - position));
    EXPECT_EQ(Shown().NominalBitrate.Label, "Current nominal bitrate: " + kbit + " kbit");
    EXPECT_EQ(Shown().MinBitrate.Label, "Current min bitrate: " + mirrored + " kbit");
    EXPECT_EQ(Shown().MaxBitrate.Label, "Current max bitrate: " + kbit + " kbit");
    EXPECT_EQ(Shown().MinBitrate.Tip, mirrored);
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_EQ(Prepared(), fmt::format("SetFormatOgg 44100 2 {0} {1} {0} -1", kbit, mirrored))
        << "the minimum is not held below the maximum";
  }
  options_.chkVbr(false);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(Prepared(), "SetFormatOgg 44100 2 320 0 0 -1");
}

TEST_F(OggOptionsTest, TheQualityOpensAsStoredAndIsSavedDividedByAHundred) {
  EXPECT_EQ(Shown().Quality, 4);
  options_.chkQuality(true);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.Quality, 0) << "OK without moving it";
  options_.Quality(400);
  EXPECT_EQ(Shown().QualityTip, "4");
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_EQ(record_.Quality, 4);
  EXPECT_EQ(Prepared(), "SetFormatOgg 44100 2 128 0 0 4");
}

TEST_F(OggOptionsTest, TheQualityRoundsHalvesToEven) {
  const std::vector<std::pair<int, std::int16_t>> rows{{0, 0},   {49, 0},  {50, 0},  {51, 1},   {149, 1},
                                                       {150, 2}, {450, 4}, {550, 6}, {999, 10}, {1000, 10}};
  for (const auto& [value, quality] : rows) {
    options_.Quality(value);
    EXPECT_TRUE(options_.cmdOK());
    EXPECT_EQ(record_.Quality, quality) << value;
  }
}

TEST_F(OggOptionsTest, TheQualityTipIsTheHundredth) {
  options_.Quality(455);
  EXPECT_EQ(Shown().QualityTip, "4.55");
  options_.Quality(1000);
  EXPECT_EQ(Shown().QualityTip, "10");
  options_.Quality(0);
  EXPECT_EQ(Shown().QualityTip, "0");
}

TEST_F(OggOptionsTest, AQualityOutsideTheSliderStaysAtItsEnd) {
  record_.Quality = 2000;
  options_.Load();
  EXPECT_EQ(Shown().Quality, 1000);
  record_.Quality = -5;
  options_.Load();
  EXPECT_EQ(Shown().Quality, 0);
}

TEST_F(OggOptionsTest, VbrShowsItsSlidersAndWithoutItTheFrameStays) {
  EXPECT_FALSE(Shown().MinBitrate.Visible);
  EXPECT_FALSE(Shown().MaxBitrate.Visible);
  EXPECT_TRUE(Shown().frmVbrVisible);
  EXPECT_TRUE(Shown().NominalBitrate.Visible);
  options_.chkVbr(true);
  EXPECT_TRUE(Shown().MinBitrate.Visible);
  EXPECT_TRUE(Shown().MaxBitrate.Visible);
  EXPECT_TRUE(Shown().frmVbrVisible);
  options_.chkVbr(false);
  EXPECT_FALSE(Shown().MinBitrate.Visible);
  EXPECT_TRUE(Shown().frmVbrVisible);
}

TEST_F(OggOptionsTest, QualityHidesAllOfTheBitratesAndBringsThemBackAsTheyWere) {
  options_.chkVbr(true);
  options_.chkQuality(true);
  EXPECT_TRUE(Shown().frmQualityVisible);
  EXPECT_FALSE(Shown().chkVbrVisible);
  EXPECT_FALSE(Shown().frmVbrVisible);
  EXPECT_FALSE(Shown().NominalBitrate.Visible);
  EXPECT_FALSE(Shown().MinBitrate.Visible);
  EXPECT_FALSE(Shown().MaxBitrate.Visible);
  EXPECT_TRUE(Shown().chkVbr);
  options_.chkQuality(false);
  EXPECT_FALSE(Shown().frmQualityVisible);
  EXPECT_TRUE(Shown().chkVbrVisible);
  EXPECT_TRUE(Shown().frmVbrVisible);
  EXPECT_TRUE(Shown().NominalBitrate.Visible);
  EXPECT_TRUE(Shown().MinBitrate.Visible);
}

TEST_F(OggOptionsTest, AfterQualityTheFrameOfVbrComesBackOnlyWithVbr) {
  options_.chkQuality(true);
  options_.chkQuality(false);
  EXPECT_FALSE(Shown().frmVbrVisible);
  options_.chkVbr(true);
  EXPECT_TRUE(Shown().frmVbrVisible);
}

TEST_F(OggOptionsTest, WithBothBoxesOnQualityWins) {
  options_.chkVbr(true);
  options_.chkQuality(true);
  options_.Quality(700);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_TRUE(record_.VbrEnabled);
  EXPECT_TRUE(record_.QualityEnabled);
  EXPECT_EQ(Prepared(), "SetFormatOgg 44100 2 128 0 0 7");
  options_.Load();
  EXPECT_FALSE(Shown().frmVbrVisible);
  EXPECT_FALSE(Shown().MinBitrate.Visible);
}

TEST_F(OggOptionsTest, TheKeysAreSavedInTheirOrder) {
  options_.NominalBitrate(1);
  options_.MinBitrate(2);
  options_.MaxBitrate(3);
  options_.Quality(800);
  options_.chkVbr(true);
  EXPECT_TRUE(options_.cmdOK());
  EXPECT_THAT(rig_.Saves(), ElementsAre("OGG_Bitrate=112", "OGG_MaxBitrate=160", "OGG_MinBitrate=128",
                                        "OGG_Quality=8", "OGG_QualityEnabled=False", "OGG_VbrEnabled=True"));
}

TEST_F(OggOptionsTest, ACancelKeepsNothing) {
  options_.NominalBitrate(1);
  options_.chkVbr(true);
  options_.Load();
  EXPECT_EQ(Shown().NominalBitrate.Position, 3);
  EXPECT_FALSE(Shown().chkVbr);
  EXPECT_EQ(record_, config::FormatOGG());
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
