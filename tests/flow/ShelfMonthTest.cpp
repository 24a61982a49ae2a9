// The shelf over a long time: a station plays, a user keeps songs, records, listens and changes settings, other programs
// fill the disk, and the program is killed between any two steps on the disk. All of it follows from the seed.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/DiskWatch.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;

constexpr const char* kShelf = "/music/Kestrune/Shelf/";
constexpr double kMegabyte = 1e6;

class ShelfMonth {
 public:
  explicit ShelfMonth(std::uint32_t seed) : random_(seed) {
    rig_.Set("FilenameFormat", "%c\\%a - %s");
    // Some hundred bytes a second: the bound of bytes and that of songs matter by turns.
    rig_.Set("WAV_Frequency", "200");
    rig_.Set("ShelfSongs", "20");
    rig_.Set("ShelfMegabytes", "1");
    rig_.Set("MinSongLength", "45");
  }

  void Run(std::chrono::hours length) {
    Start();
    const std::chrono::milliseconds end = rig_.Loop.SteadyNow() + length;
    while (rig_.Loop.SteadyNow() < end && complaints_.size() < 10) {
      PlaySong();
      SomethingHappens();
      Check();
    }
    // Whatever was on the shelf at the end is there at the next start.
    Crash(-1);
  }

  [[nodiscard]] const std::vector<std::string>& Complaints() const { return complaints_; }
  int Shelved = 0;
  int Kept = 0;
  int Crashes = 0;
  int MidwayCrashes = 0;
  int Low = 0;  ///< checks with a disk that had too little room before the shelf gave way

 private:
  void Start() {
    rig_.Files.FilledFolder = "/music";
    FollowOthers();
    rig_.StartIdle();
    rig_.Run(1s);
    if (rig_->State().Run.FormLoading) complaints_.emplace_back("a start failed");
  }

  /// What other programs leave of the disk; what the files of the folder take comes off it.
  void FollowOthers() { rig_.Files.Free = recorder::DiskWatch::kEnoughBytes + slack_; }

  void PlaySong() {
    ++song_;
    // Jingles repeat, and some songs last a quarter of an hour.
    const std::string title = Draw(0, 4) == 0 ? "Jingle" : fmt::format("Song {}", song_);
    rig_.Radio.Play(rig_->State().Radio.ChannelNumber, fmt::format("Artist {}", song_ % 7), title);
    const int seconds = Draw(0, 9) == 0 ? Draw(5, 40) : Draw(0, 9) == 0 ? Draw(600, 1500) : Draw(120, 300);
    for (int second = 0; second < seconds; ++second) {
      rig_.Run(1s);
      if (second == 5) TakeUsedNames();
    }
    // The samples themselves are of no interest here.
    for (RecordingCaptureFile* file : rig_.Audio.CaptureFiles) {
      if (file != nullptr && file->Written.size() > 1)
        file->Written.erase(file->Written.begin(), file->Written.end() - 1);
      if (file != nullptr) file->Calls.clear();
    }
    rig_.Files.Calls.clear();
  }

  void SomethingHappens() {
    recorder::Kestrune& unit = *rig_;
    // Kills come often enough in a short run too.
    switch (++turn_ % 5 == 0 ? Draw(13, 14) : Draw(0, 15)) {
      case 0:
        if (unit.State().MayRecord()) unit.cmdRecord();
        break;
      case 1:
        if (unit.State().MayStop()) unit.cmdStop();
        break;
      case 2:
      case 3:
        unit.Wishes().KeepCurrent();
        break;
      case 4:
      case 5:
        KeepFromShelf(static_cast<std::size_t>(Draw(1, 12)));
        break;
      case 6:
        ListenToSomething();
        break;
      case 7:
        slack_ = Draw(0, 4) * kMegabyte / 2;
        break;
      case 8:
        slack_ = 300 * kMegabyte;
        break;
      case 9:
        static_cast<void>(unit.Parts().Settings.Set("ShelfSongs", std::to_string(Draw(1, 25))));
        break;
      case 10:
        static_cast<void>(unit.Parts().Settings.Set("ShelfMegabytes", std::to_string(Draw(1, 2))));
        break;
      case 11:
        static_cast<void>(unit.Parts().Settings.Set("SaveDuplicates", std::to_string(Draw(0, 1))));
        break;
      case 12:
        if (!unit.State().Recording.GetRecordingStatus())
          unit.SetChannelNumber(static_cast<std::int16_t>(Draw(40, 49)));
        break;
      case 13:
        Crash(-1);
        break;
      case 14:
        Crash(Draw(0, 6));
        break;
      default:
        break;
    }
    rig_.Run(2s);
  }

  void KeepFromShelf(std::size_t number) {
    const std::vector<std::string> paths = Paths();
    std::string path = number <= paths.size() ? paths[number - 1] : "";
    rig_->Wishes().Keep(number, [this, path = std::move(path)](const base::Result& kept) {
      if (!kept) return;
      ++Kept;
      if (path == listened_) listenedIsKept_ = true;
    });
  }

  void ListenToSomething() {
    if (!listened_.empty()) rig_.Files.OpenByAnother(listened_, false);
    listened_.clear();
    listenedIsKept_ = false;
    const auto& songs = rig_->Parts().Shelving.Songs();
    if (songs.empty()) return;
    listened_ = songs[static_cast<std::size_t>(Draw(0, static_cast<int>(songs.size()) - 1))].Path;
    rig_.Files.OpenByAnother(listened_);
  }

  /// The program is killed, now or in the middle of a boundary after so many changes of the disk.
  void Crash(int changes) {
    ++Crashes;
    std::vector<std::string> before = Songs();
    if (changes >= 0) {
      ++MidwayCrashes;
      rig_.Files.FreezeAfter(changes);
      rig_.Radio.Play(rig_->State().Radio.ChannelNumber, "Midway", fmt::format("Song {}", ++song_));
      rig_.Run(3s);
      rig_.Files.Heal();
    }
    rig_.MeetWindows(rig_.Windows);
    Start();
    rig_.Run(1s);
    std::vector<std::string> after = Songs();
    std::vector<std::string> onDisk = OnDisk();
    // What the first boundary of the new run, or the one that was killed, has brought and taken away.
    const auto unknown = [&before](const std::string& song) {
      return std::find(before.begin(), before.end(), song) == before.end();
    };
    const auto came = static_cast<std::size_t>(std::count_if(after.begin(), after.end(), unknown));
    Complain(came <= 2, "songs that nobody put there");
    std::erase_if(after, unknown);
    std::erase_if(before, [&after](const std::string& song) {
      return std::find(after.begin(), after.end(), song) == after.end();
    });
    Complain(before == after, "another order after a kill");
    std::vector<std::string> listed = Paths();
    std::sort(listed.begin(), listed.end());
    Complain(listed == onDisk, "the shelf is not what lies in its folder");
  }

  void TakeUsedNames() {
    for (const std::string& path : rig_.Files.AllFiles()) {
      if (path.starts_with(kShelf)) ++Shelved;
    }
  }

  void Check() {
    // Two boundaries more: what was changed meanwhile, settings and the disk, has its effect with the next one.
    CheckRoom();
    const config::Settings& settings = rig_->State().Settings;
    const std::vector<std::string> onDisk = OnDisk();
    std::int64_t bytes = 0;
    for (const std::string& path : onDisk) bytes += rig_.Files.Bytes(path).value_or(0);
    std::int64_t newest = 0;
    for (const std::string& path : onDisk) newest = std::max(newest, rig_.Files.Bytes(path).value_or(0));
    Complain(onDisk.size() <= static_cast<std::size_t>(settings.ShelfSongs) + 1,
             "more than one song above the count");
    Complain(static_cast<double>(bytes - newest) <= settings.ShelfMegabytes * kMegabyte,
             "more than one song above the bytes");
    CheckCollection();
    Complain(listened_.empty() || listenedIsKept_ || rig_.Files.Exists(listened_), "taken from a listener");
  }

  /// After a boundary the disk has its room, or nothing is left that could go.
  void CheckRoom() {
    FollowOthers();
    if (rig_.Files.FreeBytes("/music/") < recorder::DiskWatch::kEnoughBytes) ++Low;
    PlaySong();
    PlaySong();
    // What the capture in hand has grown by since the boundary is no matter of the shelf.
    std::int64_t inHand = 0;
    for (const std::string& path : rig_.Files.AllFiles()) {
      if (path.find("/Capture") != std::string::npos) inHand += rig_.Files.Bytes(path).value_or(0);
    }
    const double room = rig_.Files.FreeBytes("/music/") + static_cast<double>(inHand);
    std::vector<std::string> left = OnDisk();
    std::erase(left, listened_);
    Complain(room >= recorder::DiskWatch::kEnoughBytes || left.empty(), "less free than the disk is to keep");
  }

  /// What was once kept is never removed.
  void CheckCollection() {
    for (const std::string& path : collection_)
      Complain(rig_.Files.Exists(path), "a kept song is gone: " + path);
    for (const std::string& path : rig_.Files.AllFiles()) {
      if (path.starts_with("/music/") && !path.starts_with("/music/Kestrune/") &&
          path.find("/Capture") == std::string::npos)
        collection_.insert(path);
    }
  }

  /// Newest first, by path and size, since a song may take the name of one that has gone.
  [[nodiscard]] std::vector<std::string> Songs() {
    std::vector<std::string> songs;
    for (const shelf::ShelvedSong& song : rig_->Parts().Shelving.Songs())
      songs.push_back(fmt::format("{} {}", song.Path, song.Bytes));
    return songs;
  }
  [[nodiscard]] std::vector<std::string> Paths() {
    std::vector<std::string> paths;
    for (const shelf::ShelvedSong& song : rig_->Parts().Shelving.Songs()) paths.push_back(song.Path);
    return paths;
  }
  [[nodiscard]] std::vector<std::string> OnDisk() {
    std::vector<std::string> paths;
    for (const std::string& name : rig_.Files.Matching(kShelf, "*")) paths.push_back(kShelf + name);
    return paths;
  }
  void Complain(bool holds, const std::string& complaint) {
    if (!holds) complaints_.push_back(fmt::format("song {}: {}", song_, complaint));
  }
  [[nodiscard]] int Draw(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

  std::mt19937 random_;
  UnitRig rig_;
  double slack_ = 300 * kMegabyte;
  int song_ = 0;
  int turn_ = 0;
  std::string listened_;
  bool listenedIsKept_ = false;  // and so has another name
  std::set<std::string> collection_;
  std::vector<std::string> complaints_;
};

std::uint32_t Seed() {
  const char* asked = std::getenv("KESTRUNE_SEED");
  const std::uint32_t seed =
      asked != nullptr ? static_cast<std::uint32_t>(std::atol(asked)) : std::random_device{}();
  std::cout << "seed " << seed << std::endl;
  return seed;
}

TEST(ShelfMonth, NeverLeavesItsBoundsAndNeverDropsWhatWasKept) {
  const char* hours = std::getenv("KESTRUNE_DAY_HOURS");
  ShelfMonth month(Seed());
  month.Run(hours != nullptr ? std::chrono::hours(std::atol(hours)) : 6h);
  EXPECT_THAT(month.Complaints(), IsEmpty());
  EXPECT_GT(month.Shelved, 20);
  EXPECT_GT(month.Crashes, 0);
  std::cout << fmt::format("kept {}, crashes {} of which {} in the middle of a boundary, low {}\n",
                           month.Kept, month.Crashes, month.MidwayCrashes, month.Low);
}

}  // namespace
}  // namespace kestrune::test
