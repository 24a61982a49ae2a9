#include <algorithm>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ChannelChooser.h"
#include "radio/channels/ChannelsFixture.h"

namespace kestrune::test {
namespace {

using radio::ChannelGrid;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ChannelChooserTest : public ChannelsFixture {
 protected:
  ChannelChooserTest() {
    chooser.OfferForList = [this](std::string_view word, std::string_view text) {
      offered.push_back(std::string(word) + ": " + std::string(text));
    };
    chooser.ClearChannelListing = [this] { ++cleared; };
    tmrUpdate->SetEnabled(true);
    ThreeChannels();
    Tune(44);
  }
  void Wait(int milliseconds) { loop.Run(Milliseconds(milliseconds)); }

  std::unique_ptr<base::Timer> tmrUpdate = loop.MakeTimer(Milliseconds(3600000), [] {});
  presenters::ChannelChooser chooser{channels, run, sounds, loop, *tmrUpdate, [this] { return recording; }};
  Strings offered;
  int cleared = 0;
};

// Choosing.

TEST_F(ChannelChooserTest, AClickOnARowTunesItsChannelAfter300Milliseconds) {
  chooser.ClickRow(2);
  EXPECT_EQ(SelectedNumber(), 45);
  EXPECT_EQ(chooser.PendingChannel(), 45);
  Wait(299);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_TRUE(Wrote({}));
  Wait(1);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 2D 00 00 01 01 19"}));
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(ChannelChooserTest, AnArrowKeyHeldDownSendsOneFrame300MillisecondsAfterTheLastMove) {
  for (const int row : {2, 3, 2, 3, 2}) {
    chooser.MoveTo(row);
    EXPECT_EQ(chooser.PendingChannel(), channels.Grid().NumberAt(row));
    Wait(200);
  }
  EXPECT_TRUE(Wrote({}));
  Wait(99);
  EXPECT_TRUE(Wrote({}));
  Wait(1);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 2D 00 00 01 01 19"}));
  Wait(5000);
  EXPECT_TRUE(Wrote({}));
}

TEST_F(ChannelChooserTest, ASecondClickDoesNotPutTheChangeOff) {
  chooser.ClickRow(3);
  Wait(200);
  chooser.ClickRow(2);
  Wait(100);
  EXPECT_EQ(channels.ChannelNumber(), 45);
}

TEST_F(ChannelChooserTest, AChangeWaitsForTheEndOfARunningUpdateCycle) {
  tmrUpdate->SetEnabled(false);
  chooser.ClickRow(2);
  Wait(300);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_EQ(chooser.tmrChannelChange().Interval(), Milliseconds(10));
  Wait(45);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  tmrUpdate->SetEnabled(true);
  Wait(10);
  EXPECT_EQ(channels.ChannelNumber(), 45);
  EXPECT_EQ(chooser.tmrChannelChange().Interval(), Milliseconds(300));
}

TEST_F(ChannelChooserTest, TheTunedChannelChosenAgainSendsNoFrame) {
  chooser.ClickRow(1);
  Wait(1000);
  EXPECT_TRUE(Wrote({}));
}

TEST_F(ChannelChooserTest, AMoveThatIsTheProgramsOwnChoosesNothing) {
  channels.Grid().IgnoreMove = true;
  chooser.MoveTo(3);
  channels.Grid().IgnoreMove = false;
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(ChannelChooserTest, RowsThatDoNotExistAreTolerated) {
  for (const int row : {-1, 0, 4}) {
    chooser.ClickRow(row);
    chooser.MoveTo(row);
    chooser.DoubleClick(row, ChannelGrid::Artist);
  }
  for (const int column : {-1, 5}) chooser.ClickTitle(column);
  EXPECT_EQ(SelectedNumber(), 44);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  EXPECT_THAT(offered, IsEmpty());
}

TEST_F(ChannelChooserTest, AMalformedRowIsChosenAndRejectedByTheRadioLayer) {
  channels.Grid().AddRow({.Number = 0, .Station = "?"});
  chooser.ClickRow(4);
  Wait(300);
  EXPECT_EQ(channels.ChannelNumber(), 0);
  EXPECT_TRUE(Wrote({}));
}

// While recording.

TEST_F(ChannelChooserTest, AClickOnARowDuringRecordingIsASoundAndTheSelectionJumpsBack) {
  recording = true;
  chooser.ClickRow(3);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_EQ(SelectedNumber(), 44);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(ChannelChooserTest, AnArrowKeyDuringRecordingIsASoundAndTheSelectionJumpsBack) {
  recording = true;
  chooser.MoveTo(3);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_EQ(SelectedNumber(), 44);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
}

TEST_F(ChannelChooserTest, DuringRecordingATitleDoesNotSort) {
  recording = true;
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(sounds.Played, ElementsAre("SystemAsterisk"));
  EXPECT_THAT(GridNumbers(), ElementsAre(44, 45, 46));
}

TEST_F(ChannelChooserTest, ATunedChannelWithoutARowLeavesTheSelectionWhereItIs) {
  Tune(99);
  recording = true;
  chooser.MoveTo(3);
  EXPECT_EQ(SelectedNumber(), 46);
}

// Sorting.

TEST_F(ChannelChooserTest, AClickOnATitleSortsAndTheNextOnTheSameTitleTurnsTheOrderRound) {
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(GridNumbers(), ElementsAre(45, 44, 46));
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(GridNumbers(), ElementsAre(46, 44, 45));
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(GridNumbers(), ElementsAre(45, 44, 46));
  chooser.ClickTitle(ChannelGrid::Song);
  EXPECT_THAT(GridNumbers(), ElementsAre(44, 46, 45));
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(GridNumbers(), ElementsAre(45, 44, 46));
}

TEST_F(ChannelChooserTest, TheFirstClickOnTheNumberTitleSortsRising) {
  chooser.ClickTitle(ChannelGrid::Artist);
  chooser.ClickTitle(ChannelGrid::Number);
  EXPECT_THAT(GridNumbers(), ElementsAre(44, 45, 46));
  chooser.ClickTitle(ChannelGrid::Number);
  EXPECT_THAT(GridNumbers(), ElementsAre(46, 45, 44));
}

TEST_F(ChannelChooserTest, EveryColumnSortsBothWays) {
  for (int column = 0; column < ChannelGrid::kColumns; ++column) {
    const auto cells = [&] {
      std::vector<std::string> texts;
      for (int row = 1; row <= 3; ++row) {
        texts.push_back(channels.Grid().At(row).at(static_cast<std::size_t>(column)));
      }
      return texts;
    };
    // Another column in between, so that each begins with a rising sort.
    chooser.ClickTitle(column == 0 ? 1 : 0);
    chooser.ClickTitle(column);
    const std::vector<std::string> rising = cells();
    EXPECT_TRUE(std::is_sorted(rising.begin(), rising.end())) << column;
    chooser.ClickTitle(column);
    const std::vector<std::string> falling = cells();
    EXPECT_TRUE(std::is_sorted(falling.rbegin(), falling.rend())) << column;
  }
}

TEST_F(ChannelChooserTest, AfterASortByArtistTheSelectionStaysOnTheTunedChannel) {
  chooser.MoveTo(3);
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_EQ(SelectedNumber(), 44);
  EXPECT_EQ(channels.Grid().SelectedRow(), 2);
}

TEST_F(ChannelChooserTest, SortingByAClickLeavesTheTitlesAlone) {
  channels.SetUpGrid();
  chooser.ClickTitle(ChannelGrid::Artist);
  EXPECT_THAT(channels.Grid().Titles(), ElementsAre("> ", "Station Name", "Artist", "Song", "Station Genre"));
}

// Offering a text for the lists.

TEST_F(ChannelChooserTest, ADoubleClickOffersArtistAndSongAndChangesNoChannel) {
  struct Case {
    int Column;
    Strings Offered;
  };
  for (const Case& each : {Case{0, {}}, {1, {}}, {2, {"Artist: Abba"}}, {3, {"Song: Waterloo"}}, {4, {}}}) {
    offered.clear();
    chooser.MoveTo(2);
    chooser.DoubleClick(2, each.Column);
    EXPECT_EQ(offered, each.Offered) << each.Column;
    EXPECT_EQ(SelectedNumber(), each.Offered.empty() ? 44 : 45) << each.Column;
    Wait(1000);
    EXPECT_EQ(channels.ChannelNumber(), 44);
  }
}

TEST_F(ChannelChooserTest, ADoubleClickOnAnEmptyTextOrTheTitleRowOffersNothing) {
  Plays(47, "Silence");
  chooser.MoveTo(4);
  chooser.DoubleClick(4, ChannelGrid::Artist);
  chooser.DoubleClick(4, ChannelGrid::Song);
  chooser.DoubleClick(0, ChannelGrid::Artist);
  EXPECT_THAT(offered, IsEmpty());
  EXPECT_EQ(SelectedNumber(), 44);
}

TEST_F(ChannelChooserTest, AnOfferedTextIsTheCellsOwnWithoutTheBlanksAroundIt) {
  Plays(47, "Soul", "Ike & Tina", "<b>Bold</b>");
  chooser.DoubleClick(4, ChannelGrid::Artist);
  chooser.DoubleClick(4, ChannelGrid::Song);
  EXPECT_THAT(offered, ElementsAre("Artist: Ike & Tina", "Song: <b>Bold</b>"));
}

// Closing.

TEST_F(ChannelChooserTest, AClosePutsTheWindowAwayAndClearsTheCheckBoxButNeverDestroysIt) {
  EXPECT_FALSE(chooser.Close());
  EXPECT_EQ(cleared, 1);
}

TEST_F(ChannelChooserTest, TheWindowReallyClosesOnceTheProgramEnds) {
  run.ShuttingDown = true;
  EXPECT_TRUE(chooser.Close());
  run.ShuttingDown = false;
  chooser.Quit();
  EXPECT_TRUE(chooser.QuitFlag());
  EXPECT_TRUE(chooser.Close());
  EXPECT_EQ(cleared, 0);
}

TEST_F(ChannelChooserTest, AChangeThatIsPendingAtTheEndIsForgotten) {
  chooser.ClickRow(2);
  chooser.Quit();
  chooser.MoveTo(3);
  EXPECT_EQ(chooser.PendingChannel(), 45);
  EXPECT_FALSE(chooser.tmrChannelChange().Enabled());
  chooser.ClickRow(3);
  Wait(1000);
  EXPECT_EQ(channels.ChannelNumber(), 44);
  EXPECT_TRUE(Wrote({}));
}

}  // namespace
}  // namespace kestrune::test
