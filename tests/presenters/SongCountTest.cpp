#include <chrono>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/SongCount.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// Keeps what is shown, each number once.
class FakeLauncher final : public platform::LauncherCount {
 public:
  void Show(int count) override {
    if (Shown.empty() || Shown.back() != count) Shown.push_back(count);
  }
  std::vector<int> Shown;
};

TEST(SongCount, FollowsTheSongsOfTheRunUntilItCloses) {
  UnitRig rig;
  rig.Set("MinSongLength", "0");
  rig.StartIdle();
  FakeLauncher launcher;
  const presenters::SongCount count(rig->State(), rig.Loop, launcher);
  rig.Run(2s);
  EXPECT_THAT(launcher.Shown, ElementsAre(0));
  rig->cmdRecord();
  rig.Run(60s);
  rig.NextSong("Abigail Wren", "Winter");
  rig.Run(60s);
  EXPECT_THAT(launcher.Shown, ElementsAre(0, 1));
  rig.NextSong("Abigail Wren", "Harbor");
  rig.Run(2s);
  EXPECT_THAT(launcher.Shown, ElementsAre(0, 1, 2));
  rig.CloseAndWait();
  EXPECT_THAT(launcher.Shown, ElementsAre(0, 1, 2, 0));
}

}  // namespace
}  // namespace kestrune::test
