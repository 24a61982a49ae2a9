// What just played can still be kept: songs pass, nobody records, and a user keeps one of them, and the one that plays.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kSongSeconds = 7;
constexpr int kRoundOfSongs = 4;
/// As real.Formats has it.
constexpr double kCutTolerance = 1.2;

class Shelf : public testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_TRUE(pulse.Start());
    const auto variables = pulse.Environment();
    const std::map<std::string, std::string> environment(variables.begin(), variables.end());
    radio = std::make_unique<Receiver>(
        folder / "radio",
        Receiver::Setup{TenStations(kSongSeconds), "pulse:radio", "tones", {}, environment});
    unit = std::make_unique<Unit>(folder / "profile", Unit::Setup{"pulse",
                                                                  radio->Link(),
                                                                  {{"Channel", "8"},
                                                                   {"MinSongLength", "2"},
                                                                   {"FilenameFormat", "%a - %s"},
                                                                   {"FileFormat", "MP3"},
                                                                   {"ShelfSongs", "20"}},
                                                                  {},
                                                                  environment});
    unit->Start();
    ASSERT_TRUE(unit->WaitUntilIdle()) << unit->Program().Errors();
  }

  [[nodiscard]] Json OnShelf() const { return unit->Ask({"shelf"}); }
  /// Waits until so many songs more lie on the shelf; the newest has just ended then.
  [[nodiscard]] bool WaitForSongs(std::size_t more) const {
    const std::size_t before = OnShelf().size();
    return WaitUntil(
        kPatience, [&] { return OnShelf().size() >= before + more; }, std::chrono::milliseconds(100));
  }
  [[nodiscard]] std::vector<std::string> Collection() const {
    std::vector<std::string> names;
    for (const std::string& path : unit->Recordings()) {
      const std::string name = path.substr(unit->RecordingFolder().size() + 1);
      // What was being captured when the program was killed is mended, and lies apart.
      if (!name.starts_with("Kestrune/Shelf/") && !name.starts_with("Recovered/")) names.push_back(name);
    }
    return names;
  }

  /// The file decodes whole, has the tags of the song, and holds its sound alone but for the edges.
  void ExpectOwnSong(const std::string& name) const {
    SCOPED_TRACE(name);
    const std::string path = unit->RecordingFolder() + "/" + name;
    const std::vector<std::string> artists{"Telephone Isle", "Los Claveles", "Silver & Tetra", "The Arcades"};
    const auto artist = std::find_if(artists.begin(), artists.end(),
                                     [&name](const std::string& one) { return name.starts_with(one); });
    ASSERT_NE(artist, artists.end());
    auto facts = Probe(path);
    EXPECT_EQ(facts["TAG:artist"], *artist);
    EXPECT_EQ(facts["codec_name"], "mp3");
    const Decoded sound = DecodeWithFfmpeg(path);
    EXPECT_NEAR(sound.Seconds(), kSongSeconds, kCutTolerance);
    std::vector<double> tones;
    for (int song = 0; song < kRoundOfSongs; ++song) tones.push_back(ToneOfSong(song));
    const double own = ToneOfSong(static_cast<int>(artist - artists.begin()));
    const std::vector<double> windows = TonesOver(sound.Mono(), sound.Rate, tones);
    const auto edge = static_cast<std::size_t>(kCutTolerance * 10);
    ASSERT_GT(windows.size(), 2 * edge);
    for (std::size_t i = edge; i < windows.size() - edge; ++i) EXPECT_EQ(windows[i], own) << i;
  }

  PrivatePulse pulse;
  TemporaryFolder folder;
  std::unique_ptr<Receiver> radio;
  std::unique_ptr<Unit> unit;
};

TEST_F(Shelf, WhatJustPlayedIsKeptAndAKillLosesNothingOfIt) {
  // The song of the start, which began before the program, and three whole ones.
  ASSERT_TRUE(WaitForSongs(4));
  EXPECT_THAT(Collection(), IsEmpty());
  EXPECT_EQ(unit->RecordedCount(), 0);
  const Json listed = OnShelf();
  ASSERT_GE(listed.size(), 4U);
  EXPECT_EQ(listed[0]["fate"], "not wanted");
  EXPECT_EQ(listed[0]["incomplete"], false);
  EXPECT_EQ(listed[0]["channel"], 8);
  EXPECT_EQ(listed[0]["station"], "Neon 80s");
  EXPECT_NEAR(listed[0]["lengthMs"].get<double>(), kSongSeconds * 1000, kCutTolerance * 1000);
  for (const Json& song : listed) EXPECT_TRUE(std::filesystem::exists(song["file"].get<std::string>()));

  const std::string second = std::filesystem::path(listed[1]["file"].get<std::string>()).filename();
  ASSERT_EQ(unit->Ctl({"keep", "2"}).Exit, 0);
  EXPECT_THAT(Collection(), ElementsAre(second));
  EXPECT_FALSE(std::filesystem::exists(listed[1]["file"].get<std::string>()));
  ExpectOwnSong(second);
  EXPECT_NE(unit->LogText().find("Kept: Channel 8  \""), std::string::npos);
  EXPECT_EQ(unit->RecordedCount(), 0);

  // In the middle of a song.
  ASSERT_TRUE(WaitForSongs(1));
  std::this_thread::sleep_for(std::chrono::milliseconds(2500));
  ASSERT_EQ(unit->Ctl({"keep", "current"}).Exit, 0);
  EXPECT_EQ(unit->Status()["keep"], true);
  ASSERT_TRUE(WaitUntil(
      kPatience, [&] { return Collection().size() == 2; }, std::chrono::milliseconds(100)));
  EXPECT_EQ(unit->Status()["keep"], false);
  ASSERT_TRUE(WaitForSongs(1));
  const std::vector<std::string> kept = Collection();
  ASSERT_EQ(kept.size(), 2U) << "nothing after it";
  ExpectOwnSong(kept[kept[0] == second ? 1 : 0]);

  // The newest ones may not be in the record yet: the folder has them.
  const Json before = OnShelf();
  unit->Program().Signal(SIGKILL);
  EXPECT_EQ(unit->Program().Wait(kPatience), 128 + SIGKILL);
  unit->Start();
  ASSERT_TRUE(unit->WaitUntilIdle()) << unit->Program().Errors();
  const Json after = OnShelf();
  ASSERT_GE(after.size(), before.size());
  const std::size_t newer = after.size() - before.size();
  EXPECT_LE(newer, 2U);
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_EQ(after[newer + i]["file"], before[i]["file"]) << i;
  EXPECT_EQ(Collection(), kept);
  EXPECT_EQ(unit->Ctl({"keep", "999"}).Exit, 1);
  EXPECT_EQ(unit->Quit(), 0);
}

}  // namespace
}  // namespace kestrune::test
