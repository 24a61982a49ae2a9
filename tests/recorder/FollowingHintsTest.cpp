// A whole unit goes after a song of the Grab lists, keeps it and comes back.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

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
  const auto nothing = [](recorder::Kestrune& /*unit*/) {};
  struct Act {
    const char* Name;
    std::function<void(recorder::Wishes&)> Ask;
    /// Takes back what it has done, without an act of a user.
    std::function<void(recorder::Kestrune&)> Undo;
  };
  const std::vector<Act> acts{
      {"record", [](recorder::Wishes& wishes) { wishes.Record(); },
       [](recorder::Kestrune& unit) { unit.cmdStop(); }},
      {"stop", [](recorder::Wishes& wishes) { wishes.Stop(); }, nothing},
      {"tune", [](recorder::Wishes& wishes) { wishes.Tune(44); }, nothing},
      {"mute", [](recorder::Wishes& wishes) { wishes.Mute(false); }, nothing},
      {"toggle", [](recorder::Wishes& wishes) { wishes.ToggleMute(); },
       [](recorder::Kestrune& unit) { EXPECT_TRUE(unit.SetMute(false)); }},
      // That song ends soon after.
      {"keep", [](recorder::Wishes& wishes) { wishes.KeepCurrent(); }, nothing},
      {"keep of the shelf", [](recorder::Wishes& wishes) { wishes.Keep(1); }, nothing},
      {"keep of a file", [](recorder::Wishes& wishes) { wishes.KeepFile("/nowhere.mp3"); }, nothing},
      {"", [](recorder::Wishes& /*wishes*/) {}, nothing},
  };
  for (const auto& [name, ask, undo] : acts) {
    SCOPED_TRACE(name);
    UnitRig fresh;
    fresh.Set("Hints", "True");
    fresh.Set("FollowHints", "True");
    fresh.Files.MakeFolders("/home/user/Application Data/Kestrune");
    fresh.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
    fresh.StartIdle();
    ask(fresh->Wishes());
    fresh.Run(2s);
    undo(*fresh);
    fresh.NextSong("Lanterns", "North Pier");
    fresh.Run(12s);
    ASSERT_TRUE(fresh->State().MayRecord());
    ASSERT_FALSE(fresh->State().Recording.Muted);
    fresh.Radio.Play(47, "Abigail Wren", "Winter Apples");
    fresh.Run(20s);
    EXPECT_EQ(fresh.Radio.TunedChannel, std::string_view(name).empty() ? 47 : 44);
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
