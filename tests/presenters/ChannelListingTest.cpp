#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ChannelListing.h"

namespace kestrune::test {
namespace {

using presenters::ChannelListing;
using radio::ChannelGrid;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ChannelListingTest : public ::testing::Test {
 protected:
  ChannelListingTest() {
    grid.FormSetup();
    grid.AddRow({.Number = 44, .Station = "Fred", .Genre = "Rock", .Artist = "Queen", .Song = "Radio Ga Ga"});
    grid.AddRow({.Number = 45, .Station = "Lucy", .Genre = "Pop", .Artist = "Abba", .Song = "Waterloo"});
    grid.AddRow({.Number = 146,
                 .Station = "Chanson",
                 .Genre = "World",
                 .Artist = "Zo\xC3\xA9",
                 .Song = "\xC3\x89t\xC3\xA9"});
    listing.Tuned = [this] { return tuned; };
    listing.Favourites = [this] { return favourites; };
    listing.FavouritesFirst = [this] { return first; };
  }
  [[nodiscard]] std::vector<int> Shown() {
    listing.Update();
    std::vector<int> numbers;
    for (const ChannelListing::Row& row : listing.Rows()) numbers.push_back(grid.NumberAt(row.GridRow));
    return numbers;
  }
  [[nodiscard]] std::vector<int> Shown(std::string_view search) {
    listing.Search(search);
    return Shown();
  }

  ChannelGrid grid;
  ChannelListing listing{grid};
  std::int16_t tuned = 44;
  std::set<std::int16_t> favourites;
  bool first = false;
};

TEST_F(ChannelListingTest, AllChannelsAreListedInTheOrderOfTheGrid) {
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 146));
  grid.Sort(ChannelGrid::Number, ChannelGrid::Order::Descending);
  EXPECT_THAT(Shown(), ElementsAre(146, 45, 44));
  EXPECT_EQ(listing.Found(), "");
}

TEST_F(ChannelListingTest, EveryColumnIsSearched) {
  EXPECT_THAT(Shown("45"), ElementsAre(45));
  EXPECT_THAT(Shown("fred"), ElementsAre(44));
  EXPECT_THAT(Shown("abba"), ElementsAre(45));
  EXPECT_THAT(Shown("ga ga"), ElementsAre(44));
  EXPECT_THAT(Shown("world"), ElementsAre(146));
  EXPECT_EQ(listing.Found(), "1 of 3");
}

TEST_F(ChannelListingTest, EachWordMustOccurInOneColumnOrAnother) {
  EXPECT_THAT(Shown("pop abba"), ElementsAre(45));
  EXPECT_THAT(Shown("rock abba"), IsEmpty());
  EXPECT_EQ(listing.Found(), "0 of 3");
}

TEST_F(ChannelListingTest, AWordDoesNotReachFromOneColumnIntoTheNext) {
  EXPECT_THAT(Shown("fredqueen"), IsEmpty());
}

TEST_F(ChannelListingTest, NeitherCaseNorAccentsCount) {
  EXPECT_THAT(Shown("ETE"), ElementsAre(146));
  EXPECT_THAT(Shown("zo\xC3\xAB"), ElementsAre(146));
}

TEST_F(ChannelListingTest, BlanksAloneSearchNothing) {
  EXPECT_THAT(Shown("  "), ElementsAre(44, 45, 146));
  EXPECT_FALSE(listing.Searches());
  EXPECT_THAT(Shown(" lucy "), ElementsAre(45));
  EXPECT_TRUE(listing.Searches());
}

TEST_F(ChannelListingTest, ASongThatBeginsJoinsAndLeavesTheRowsFound) {
  EXPECT_THAT(Shown("abba"), ElementsAre(45));
  grid.SetCell(1, ChannelGrid::Artist, " ABBA");
  grid.SetCell(2, ChannelGrid::Artist, " Yes");
  EXPECT_THAT(Shown(), ElementsAre(44));
}

TEST_F(ChannelListingTest, FavouritesStandBeforeTheOthersInTheSameOrder) {
  favourites = {45, 146};
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 146));
  first = true;
  EXPECT_THAT(Shown(), ElementsAre(45, 146, 44));
  grid.Sort(ChannelGrid::Number, ChannelGrid::Order::Descending);
  EXPECT_THAT(Shown(), ElementsAre(146, 45, 44));
  EXPECT_EQ(grid.NumberAt(3), 44) << "the grid keeps its order";
}

TEST_F(ChannelListingTest, RowsOfTheListingAndOfTheGridLeadToEachOther) {
  favourites = {146};
  first = true;
  EXPECT_THAT(Shown("o"), ElementsAre(146, 44, 45));
  EXPECT_EQ(listing.GridRowAt(1), 3);
  EXPECT_EQ(listing.RowOf(3), 1);
  EXPECT_THAT(Shown("fred"), ElementsAre(44));
  EXPECT_EQ(listing.RowOf(3), 0);
  for (const int row : {-1, 0, 2}) EXPECT_EQ(listing.GridRowAt(row), 0) << row;
}

TEST_F(ChannelListingTest, RowsSayWhetherTheyAreTunedAndFavourites) {
  favourites = {45};
  EXPECT_THAT(Shown(), ElementsAre(44, 45, 146));
  EXPECT_THAT(listing.Rows(), ElementsAre(ChannelListing::Row{.GridRow = 1, .Tuned = true},
                                          ChannelListing::Row{.GridRow = 2, .Favourite = true},
                                          ChannelListing::Row{.GridRow = 3}));
}

TEST_F(ChannelListingTest, TheRevisionGrowsWithEachChangeAndWithNothingElse) {
  listing.Update();
  std::uint64_t before = listing.Revision();
  const auto grows = [&] {
    listing.Update();
    return std::exchange(before, listing.Revision()) != before;
  };
  EXPECT_FALSE(grows());
  tuned = 45;
  EXPECT_TRUE(grows());
  favourites = {45};
  EXPECT_TRUE(grows());
  first = true;
  EXPECT_TRUE(grows());
  grid.SetCell(1, ChannelGrid::Song, " Next");
  EXPECT_TRUE(grows());
  listing.Search("lucy");
  EXPECT_TRUE(grows());
  listing.Search("Lucy ");
  EXPECT_FALSE(grows());
}

}  // namespace
}  // namespace kestrune::test
