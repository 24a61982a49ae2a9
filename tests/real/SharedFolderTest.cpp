#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

constexpr double kSongSeconds = 5;

/// Several units, or a unit and a stranger, in one folder of recordings.
class SharedFolder : public testing::Test {
 protected:
  /// A radio and a unit that records what it plays. `unit` is its character, empty for a single one.
  struct Pair {
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<kestrune::test::Unit> Unit;
  };
  Pair Make(const std::string& name, const std::string& unit, const std::vector<std::string>& titles) {
    std::filesystem::create_directories(music_);
    Pair pair;
    pair.Radio = std::make_unique<Receiver>(folder_ / (name + "-radio"),
                                            Receiver::Setup{ShortLineUp(titles, kSongSeconds)});
    Unit::Setup setup{"pipe:" + QuietFile(folder_.Path()), pair.Radio->Link(), ShortSongs()};
    setup.Settings["FileDir"] = music_;
    setup.Name = unit;
    pair.Unit = std::make_unique<Unit>(folder_ / name, setup);
    pair.Unit->Start();
    return pair;
  }
  /// How many songs the log calls recorded.
  static int CalledRecorded(const Unit& unit) {
    const std::string log = unit.LogText();
    int count = 0;
    for (std::size_t at = log.find(" Recorded: "); at != std::string::npos;
         at = log.find(" Recorded: ", at + 1)) {
      ++count;
    }
    return count;
  }
  /// Both record a few songs side by side and close; every song that was called recorded is there, and whole.
  void RecordSideBySide(Pair& first, Pair& second) {
    for (const Pair* pair : {&first, &second}) {
      ASSERT_TRUE(pair->Unit->WaitUntilIdle()) << pair->Unit->Program().Errors();
      ASSERT_EQ(pair->Unit->Ctl({"record"}).Exit, 0);
    }
    for (const Pair* pair : {&first, &second}) {
      EXPECT_TRUE(pair->Unit->WaitForStatus(
          [](const Unit::Json& status) { return status.value("recordedCount", 0) >= 3; }));
    }
    EXPECT_EQ(first.Unit->Quit(), 0);
    EXPECT_EQ(second.Unit->Quit(), 0);
    const std::vector<std::string> songs = Unit::FilesBelow(music_, false);
    EXPECT_EQ(static_cast<int>(songs.size()), CalledRecorded(*first.Unit) + CalledRecorded(*second.Unit));
    for (const std::string& song : songs) EXPECT_GT(DecodeWithFfmpeg(song).Seconds(), 1) << song;
    EXPECT_TRUE(Unit::FilesBelow(music_, true).empty());
  }

  TemporaryFolder folder_;
  std::string music_ = folder_ / "music";
};

TEST_F(SharedFolder, NamedUnitsKeepEachOthersSongs) {
  Pair first = Make("first", "1", {"One", "Two", "Three"});
  Pair second = Make("second", "2", {"Red", "Green", "Blue"});
  EXPECT_TRUE(WaitUntil(kPatience, [this] {
    const auto captures = Unit::FilesBelow(music_, true);
    return std::any_of(captures.begin(), captures.end(),
                       [](const std::string& path) { return path.find("-2.") != std::string::npos; });
  }));
  RecordSideBySide(first, second);
}

TEST_F(SharedFolder, UnitsOfOneNameFromTwoProfilesTakeDifferentNumbers) {
  Pair first = Make("first", "", {"One", "Two", "Three"});
  Pair second = Make("second", "", {"Red", "Green", "Blue"});
  RecordSideBySide(first, second);
  EXPECT_NE((first.Unit->LogText() + second.Unit->LogText()).find("\" is in use, capturing to \""),
            std::string::npos);
}

TEST_F(SharedFolder, APlantedLinkIsNeverWrittenThrough) {
  std::filesystem::create_directories(music_);
  PutFile(folder_ / "diary", "private");
  for (const char* name : {"/Capture0.wav", "/Capture1.wav", "/Capture0.mp3", "/Capture1.mp3"}) {
    std::filesystem::create_symlink(folder_ / "diary", music_ + name);
  }
  Pair pair = Make("profile", "", {"One", "Two", "Three"});
  ASSERT_TRUE(pair.Unit->WaitUntilIdle()) << pair.Unit->Program().Errors();
  EXPECT_TRUE(pair.Unit->Record(2));
  EXPECT_EQ(pair.Unit->Quit(), 0);
  EXPECT_EQ(FileText(folder_ / "diary"), "private");
  EXPECT_GE(Unit::FilesBelow(music_, false).size(), 2U);
}

TEST_F(SharedFolder, WhatAKilledRunLeftDoesNotStopTheNextOne) {
  Pair pair = Make("profile", "", {"One", "Two", "Three"});
  ASSERT_TRUE(pair.Unit->WaitUntilIdle()) << pair.Unit->Program().Errors();
  ASSERT_TRUE(WaitUntil(kPatience, [this] { return !Unit::FilesBelow(music_, true).empty(); }));
  pair.Unit->Program().Signal(SIGKILL);
  EXPECT_TRUE(pair.Unit->Program().Wait(kPatience));
  // What a write in hand leaves behind.
  const std::string half = pair.Unit->Profile() + "/config/.kestrune-4194304-0";
  PutFile(half, "half of the settings");

  pair.Unit->Start();
  ASSERT_TRUE(pair.Unit->WaitUntilIdle()) << pair.Unit->Program().Errors();
  EXPECT_TRUE(pair.Unit->Record(1));
  EXPECT_EQ(pair.Unit->LogText().find("is in use"), std::string::npos) << "the dead hold nothing";
  EXPECT_EQ(pair.Unit->Quit(), 0);
  EXPECT_FALSE(std::filesystem::exists(half));
  EXPECT_TRUE(Unit::FilesBelow(music_, true).empty());
}

}  // namespace
}  // namespace kestrune::test
