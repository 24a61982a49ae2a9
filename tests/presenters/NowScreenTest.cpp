#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/NowScreen.h"
#include "radio/channels/ChannelsFixture.h"

namespace kestrune::test {
namespace {

class NowScreenTest : public ChannelsFixture {
 protected:
  NowScreenTest() {
    ThreeChannels();
    Tune(44);
    stored = {{"Preset1", "44 - Fred"}, {"Preset2", "45 - Lucy"}, {"Preset12", "99 - Gone"}};
    presets.LoadPresets();
  }
  [[nodiscard]] const presenters::NowButton& Button(int n) const {
    return screen.Buttons().at(static_cast<std::size_t>(n) - 1);
  }
  void Second() { loop.Run(Milliseconds(1000)); }

  presenters::Presets presets{channels, sounds, Keys(), [] { return false; }};
  presenters::NowLines shown{.lblChannel = "44: Fred", .lblArtist = "Queen", .lblSong = "Radio Ga Ga"};
  presenters::NowScreen screen{channels, presets, loop, [this] { return shown; }};
};

TEST_F(NowScreenTest, OpeningItTakesAFirstCopy) {
  screen.Load();
  EXPECT_EQ(screen.Lines(), shown);
  EXPECT_EQ(Button(1).Caption, "44 - Fred\nQueen\nRadio Ga Ga");
  EXPECT_EQ(screen.tmrUpdate().Interval(), Milliseconds(1000));
}

TEST_F(NowScreenTest, TheLinesFollowTheMainWindowWithinASecond) {
  screen.Load();
  shown.lblSong = "Bicycle Race";
  loop.Run(Milliseconds(999));
  EXPECT_EQ(screen.Lines().lblSong, "Radio Ga Ga");
  loop.Run(Milliseconds(1));
  EXPECT_EQ(screen.Lines().lblSong, "Bicycle Race");
}

TEST_F(NowScreenTest, EveryButtonShowsWhatItsChannelPlays) {
  for (std::uint8_t i = 0; i < 12; ++i) {
    const auto channel = static_cast<std::uint8_t>(100 + i);
    Plays(channel, "S" + std::to_string(i), "A" + std::to_string(i), "T" + std::to_string(i));
    stored["Preset" + std::to_string(i + 1)] = std::to_string(channel) + " - old";
  }
  presets.LoadPresets();
  screen.Load();
  for (int i = 0; i < 12; ++i) {
    const std::string n = std::to_string(i);
    EXPECT_EQ(Button(i + 1).Caption, fmt::format("{0} - S{1}\nA{1}\nT{1}", 100 + i, n));
    EXPECT_FALSE(Button(i + 1).Tuned);
  }
}

TEST_F(NowScreenTest, AmpersandsAreDoubledAndALineBreakWithinANameBeginsNoLine) {
  Plays(45, "R&B", "Ike & Tina", "One\nTwo");
  screen.Load();
  EXPECT_EQ(Button(2).Caption, "45 - R&&B\nIke && Tina\nOne Two");
}

TEST_F(NowScreenTest, AChannelThatTheTableDoesNotHaveShowsItsNumberAndEmptyTexts) {
  screen.Load();
  EXPECT_EQ(Button(12).Caption, "99 - \n\n");
}

TEST_F(NowScreenTest, APresetWithNoChannelIsEmptyAndKeepsItsColourFromBefore) {
  screen.Load();
  EXPECT_EQ(Button(3), presenters::NowButton{});
  EXPECT_TRUE(Button(1).Tuned);
  stored["Preset1"] = "";
  presets.LoadPresets();
  Tune(45);
  Second();
  EXPECT_EQ(Button(1).Caption, "");
  EXPECT_TRUE(Button(1).Tuned);
}

TEST_F(NowScreenTest, TheGreenMovesToTheNewPresetWithinASecond) {
  screen.Load();
  EXPECT_TRUE(Button(1).Tuned);
  EXPECT_FALSE(Button(2).Tuned);
  Tune(45);
  Second();
  EXPECT_FALSE(Button(1).Tuned);
  EXPECT_TRUE(Button(2).Tuned);
}

TEST_F(NowScreenTest, AClosedWindowCopiesNothingAndTheNextOneBeginsAnew) {
  screen.Load();
  screen.Close();
  EXPECT_FALSE(screen.tmrUpdate().Enabled());
  stored["Preset1"] = "";
  presets.LoadPresets();
  shown.lblArtist = "Abba";
  Second();
  EXPECT_EQ(screen.Lines().lblArtist, "Queen");
  screen.Load();
  EXPECT_EQ(screen.Lines().lblArtist, "Abba");
  EXPECT_EQ(Button(1), presenters::NowButton{});
}

}  // namespace
}  // namespace kestrune::test
