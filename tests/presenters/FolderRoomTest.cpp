#include <gtest/gtest.h>

#include "presenters/FolderRoom.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {
namespace {

constexpr double kEnough = 1024.0 * 1024 * 1024;

class FolderRoomTest : public ::testing::Test {
 protected:
  [[nodiscard]] presenters::FolderRoom With(double free) {
    files_.Free = free;
    return presenters::RoomIn(files_, "/music/", kEnough);
  }

  MemoryFiles files_;
};

TEST_F(FolderRoomTest, GigabytesHaveATenthAndAreNeverRoundedUp) {
  EXPECT_EQ(With(123.46e9).Text, "123.4 GB free");
  EXPECT_EQ(With(123.49e9).Text, "123.4 GB free");
  EXPECT_EQ(With(2e9).Text, "2.0 GB free");
  EXPECT_EQ(With(12345.6e9).Text, "12345.6 GB free");
}

TEST_F(FolderRoomTest, BelowTheFloorTheTextSaysSo) {
  EXPECT_FALSE(With(kEnough).Scarce);
  EXPECT_EQ(With(kEnough).Text, "1.0 GB free");
  EXPECT_TRUE(With(kEnough - 1).Scarce);
  EXPECT_EQ(With(812.9e6).Text, "812 MB free, which is little");
  EXPECT_EQ(With(0).Text, "0 MB free, which is little");
}

TEST_F(FolderRoomTest, OfAnUnknownVolumeNothingIsSaid) {
  EXPECT_EQ(With(-1).Text, "");
  EXPECT_FALSE(With(-1).Scarce);
  files_.Free = 5e9;
  for (const char* folder : {"", "~/Music", "Music"}) {
    EXPECT_EQ(presenters::RoomIn(files_, folder, kEnough).Text, "") << folder;
  }
}

}  // namespace
}  // namespace kestrune::test
