// A whole unit goes after a song of the Grab lists, keeps it and comes back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kSong = "47 Abigail Wren - Winter Apples (Incomplete).wav";

class FollowingHintsTest : public ::testing::Test {
 protected:
  FollowingHintsTest() {
    rig.Set("Hints", "True");
    rig.Set("FollowHints", "True");
    rig.Set("FilenameFormat", "%c %a - %s");
    rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
    rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
  }
  void StartFollowing() {
    rig.StartIdle();
    rig.Run(12s);
    rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
    rig.Run(15s);
  }
  /// The songs that are kept, without the shelf and the capture in hand.
  [[nodiscard]] std::vector<std::string> Songs() const {
    std::vector<std::string> songs;
    for (const std::string& name : rig.Recordings())
      if (!name.starts_with("Capture") && name.find("Shelf") == std::string::npos) songs.push_back(name);
    return songs;
  }

  UnitRig rig;
};

TEST_F(FollowingHintsTest, TheSongIsKeptAloneAndTheProgramComesBack) {
  StartFollowing();
  EXPECT_EQ(rig.Radio.TunedChannel, 47);
  EXPECT_EQ(rig.Rules->Explanation(), "Following a hint: back to channel 44 after this song.");
  rig.Run(1min);
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  rig.Run(5s);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_THAT(Songs(), ElementsAre(kSong));
  EXPECT_EQ(rig.Rules->Explanation(), "Not recording.");
  rig.Run(1min);
  rig.Radio.Play(44, "Lanterns", "North Pier");
  rig.Run(1min);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_THAT(Songs(), ElementsAre(kSong));
  EXPECT_EQ(rig->State().Recording.RecordedCount, 0) << "the told counters know nothing of it";
}

TEST_F(FollowingHintsTest, TheSongIsKeptToTheEndOfItsSoundWhileTheProgramListens) {
  rig.Set("CutPlacement", "Listen");
  rig.Set("WAV_Frequency", "8000");
  StartFollowing();
  ASSERT_EQ(rig.Radio.TunedChannel, 47);
  rig.Run(1min);
  rig.Radio.Play(47, "Juniper & Rue", "Tin Cup");
  rig.Run(5s);
  EXPECT_EQ(rig.Radio.TunedChannel, 47) << "its cut is awaited";
  rig.Run(30s);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
  EXPECT_THAT(Songs(), ElementsAre(kSong));
}

TEST_F(FollowingHintsTest, EveryActOfAUserCounts) {
  for (int act = 0; act < 6; ++act) {
    SCOPED_TRACE(act);
    UnitRig fresh;
    fresh.Set("Hints", "True");
    fresh.Set("FollowHints", "True");
    fresh.Files.MakeFolders("/home/user/Application Data/Kestrune");
    fresh.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
    fresh.StartIdle();
    recorder::Wishes& wishes = fresh->Wishes();
    if (act == 0) wishes.Record();
    if (act == 1) wishes.Stop();
    if (act == 2) wishes.Tune(44);
    if (act == 3) wishes.Mute(false);
    if (act == 4) wishes.ToggleMute();
    if (act == 5) wishes.KeepCurrent();
    fresh.Run(2s);
    if (act == 0) wishes.Stop();
    if (act == 4) wishes.Mute(false);
    fresh.Run(12s);
    fresh.Radio.Play(47, "Abigail Wren", "Winter Apples");
    fresh.Run(20s);
    EXPECT_EQ(fresh.Radio.TunedChannel, 44);
  }
}

TEST_F(FollowingHintsTest, ACloseRemembersTheChannelFromWhichItWent) {
  StartFollowing();
  ASSERT_EQ(rig.Radio.TunedChannel, 47);
  rig.CloseAndWait();
  EXPECT_EQ(rig.Setting("Channel"), "44");
}

TEST_F(FollowingHintsTest, ARecordingIsNeverLeft) {
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(12s);
  rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(30s);
  EXPECT_EQ(rig.Radio.TunedChannel, 44);
}

}  // namespace
}  // namespace kestrune::test
