#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/FavouriteChannels.h"
#include "support/SettingsRig.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FavouriteChannelsTest : public ::testing::Test {
 protected:
  SettingsRig rig;
  presenters::FavouriteChannels favourites{rig.Door};
};

TEST_F(FavouriteChannelsTest, AChannelIsMadeOneAndTakenOutAndStoredEachTime) {
  EXPECT_THAT(favourites.All(), IsEmpty());
  favourites.Toggle(112);
  favourites.Toggle(44);
  EXPECT_THAT(favourites.All(), ElementsAre(44, 112));
  EXPECT_TRUE(favourites.Has(44));
  EXPECT_EQ(rig.Stored("Favourites"), "44 112");
  favourites.Toggle(44);
  EXPECT_FALSE(favourites.Has(44));
  EXPECT_EQ(rig.Stored("Favourites"), "112");
  favourites.Toggle(112);
  EXPECT_THAT(favourites.All(), IsEmpty());
  EXPECT_EQ(rig.Stored("Favourites"), "");
}

TEST_F(FavouriteChannelsTest, WhetherTheyComeFirstIsStoredToo) {
  EXPECT_FALSE(favourites.First());
  favourites.SetFirst(true);
  EXPECT_TRUE(favourites.First());
  EXPECT_EQ(rig.Stored("FavouritesFirst"), "True");
  EXPECT_THAT(rig.Effects, IsEmpty());
}

TEST_F(FavouriteChannelsTest, WhatACommandHasSetCounts) {
  ASSERT_TRUE(rig.Door.Set("Favourites", " 45  7").Done());
  EXPECT_THAT(favourites.All(), ElementsAre(7, 45));
}

}  // namespace
}  // namespace kestrune::test
