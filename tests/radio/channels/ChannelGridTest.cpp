#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/channels/ChannelGrid.h"

namespace kestrune::test {
namespace {

using radio::ChannelGrid;
using ::testing::ElementsAre;

class ChannelGridTest : public ::testing::Test {
 protected:
  void Add(std::int16_t number, const std::string& artist = "") {
    grid.AddRow({.Number = number, .Station = "Station", .Genre = "Genre", .Artist = artist, .Song = "Song"});
  }
  std::vector<int> Numbers() const {
    std::vector<int> numbers;
    for (int row = 1; row <= grid.RowCount(); ++row) numbers.push_back(grid.NumberAt(row));
    return numbers;
  }

  ChannelGrid grid;
};

TEST_F(ChannelGridTest, ARowIsTheNumberAndFourTextsWithALeadingBlank) {
  Add(45, "The Fox");
  EXPECT_THAT(grid.At(1), ElementsAre("45", " Station", " The Fox", " Song", " Genre"));
}

TEST_F(ChannelGridTest, SetupWritesTitlesAndWidthsAndLeavesOnlyTheMarkOfTheFirstTitle) {
  grid.FormSetup();
  EXPECT_THAT(grid.Titles(), ElementsAre("> ", "Station Name", "Artist", "Song", "Station Genre"));
  EXPECT_THAT(grid.Widths(), ElementsAre(435, 2000, 2000, 2000, 2000));
  EXPECT_FALSE(grid.IgnoreMove);
}

TEST_F(ChannelGridTest, TheSecondSetupTurnsTheMarkRound) {
  grid.FormSetup();
  grid.FormSetup();
  EXPECT_EQ(grid.Titles()[0], "< ");
  grid.FormSetup();
  EXPECT_EQ(grid.Titles()[0], "> ");
}

TEST_F(ChannelGridTest, SortingByAnotherColumnMovesTheMark) {
  grid.FormSetup();
  grid.SortByColumn(2, false);
  EXPECT_THAT(grid.Titles(), ElementsAre("", "Station Name", "> Artist", "Song", "Station Genre"));
  grid.SortByColumn(2, false);
  EXPECT_EQ(grid.Titles()[2], "< Artist");
  grid.SortByColumn(2, true);
  EXPECT_EQ(grid.Titles()[2], "> Artist");
  grid.SortByColumn(2, true);
  EXPECT_EQ(grid.Titles()[2], "> Artist");
}

TEST_F(ChannelGridTest, RemembersHowItsRowsWereSortedUntilTheyGoOrATitleIsMarked) {
  using Sorting = ChannelGrid::Sorting;
  EXPECT_FALSE(grid.Sorted());
  grid.Sort(2, ChannelGrid::Order::Descending);
  EXPECT_EQ(grid.Sorted(), (Sorting{.Column = 2, .Direction = ChannelGrid::Order::Descending}));
  grid.FormSetup();
  EXPECT_FALSE(grid.Sorted());
  grid.Sort(0, ChannelGrid::Order::Ascending);
  EXPECT_EQ(grid.Sorted(), (Sorting{.Column = 0, .Direction = ChannelGrid::Order::Ascending}));
  grid.Clear();
  EXPECT_FALSE(grid.Sorted());
}

TEST_F(ChannelGridTest, NumbersSortAsNumbers) {
  for (const std::int16_t number : {100, 9, 45, 10}) Add(number);
  grid.Sort(0, ChannelGrid::Order::Ascending);
  EXPECT_THAT(Numbers(), ElementsAre(9, 10, 45, 100));
  grid.Sort(0, ChannelGrid::Order::Descending);
  EXPECT_THAT(Numbers(), ElementsAre(100, 45, 10, 9));
}

TEST_F(ChannelGridTest, TextsThatAreNumbersSortAsNumbersBeforeTheOthers) {
  Add(1, "abba");
  Add(2, "100");
  Add(3, "Zappa");
  Add(4, "38");
  Add(5, "ABC");
  grid.Sort(2, ChannelGrid::Order::Ascending);
  EXPECT_THAT(Numbers(), ElementsAre(4, 2, 1, 5, 3));
}

TEST_F(ChannelGridTest, AccentsSortBesideThePlainLetters) {
  Add(1, "Zappa");
  Add(2, "Été");
  Add(3, "Eternal");
  Add(4, "Europe");
  grid.Sort(2, ChannelGrid::Order::Ascending);
  EXPECT_THAT(Numbers(), ElementsAre(2, 3, 4, 1));
}

TEST_F(ChannelGridTest, RowsWithEqualTextsKeepTheirOrderInBothDirections) {
  for (const std::int16_t number : {5, 3, 9}) Add(number, "same");
  Add(7, "other");
  grid.Sort(2, ChannelGrid::Order::Ascending);
  EXPECT_THAT(Numbers(), ElementsAre(7, 5, 3, 9));
  grid.Sort(2, ChannelGrid::Order::Descending);
  EXPECT_THAT(Numbers(), ElementsAre(5, 3, 9, 7));
}

TEST_F(ChannelGridTest, TheSelectionStaysOnItsRowThroughSortsAndRemovals) {
  for (const std::int16_t number : {30, 10, 20}) Add(number);
  grid.Select(3);
  grid.Sort(0, ChannelGrid::Order::Ascending);
  EXPECT_EQ(grid.NumberAt(grid.SelectedRow()), 20);
  grid.RemoveRow(1);
  EXPECT_EQ(grid.NumberAt(grid.SelectedRow()), 20);
  grid.RemoveRow(2);
  EXPECT_EQ(grid.NumberAt(grid.SelectedRow()), 20);
  grid.RemoveRow(1);
  EXPECT_EQ(grid.SelectedRow(), 0);
}

TEST_F(ChannelGridTest, MissingRowsAreTolerated) {
  Add(10);
  grid.Select(1);
  const auto revision = grid.Revision();
  for (const int row : {0, 2, -1}) {
    grid.Select(row);
    grid.SetCell(row, ChannelGrid::Artist, "x");
    grid.RemoveRow(row);
    EXPECT_EQ(grid.NumberAt(row), 0);
  }
  EXPECT_EQ(grid.SelectedRow(), 1);
  EXPECT_EQ(grid.FindRow(11), 0);
  EXPECT_EQ(grid.Revision(), revision);
}

TEST_F(ChannelGridTest, ARowIsFoundByTheNumericValueOfItsFirstColumn) {
  for (const std::int16_t number : {30, 10}) Add(number);
  EXPECT_EQ(grid.FindRow(10), 2);
  grid.SetCell(2, ChannelGrid::Number, " 11 x");
  EXPECT_EQ(grid.FindRow(11), 2);
}

TEST_F(ChannelGridTest, EveryChangeOfWhatIsShownRaisesTheRevision) {
  auto revision = grid.Revision();
  const auto raised = [&] { return std::exchange(revision, grid.Revision()) != grid.Revision(); };
  grid.FormSetup();
  EXPECT_TRUE(raised());
  Add(10);
  EXPECT_TRUE(raised());
  grid.Select(1);
  EXPECT_TRUE(raised());
  grid.SetCell(1, ChannelGrid::Song, " x");
  EXPECT_TRUE(raised());
  grid.Sort(0, ChannelGrid::Order::Ascending);
  EXPECT_TRUE(raised());
  grid.RemoveRow(1);
  EXPECT_TRUE(raised());
  grid.Clear();
  EXPECT_TRUE(raised());
  EXPECT_FALSE(raised());
}

}  // namespace
}  // namespace kestrune::test
