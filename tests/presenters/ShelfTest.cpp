#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/Shelf.h"
#include "support/RecordingShell.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::ShelfRow;
using ::testing::ElementsAre;

class ShelfWindowTest : public ::testing::Test {
 protected:
  ShelfWindowTest() {
    rig.Set("ShelfSongs", "20");
    rig.Set("FilenameFormat", "%a - %s");
    rig.StartIdle();
    Next("Abigail Wren", "Winter Apples");
    Next("Lanterns", "North Pier");
    Next("Dune", "Low Road");
    rules = std::make_unique<presenters::Shelf>(*rig.Unit, shell, rig.Loop);
    rules->Load();
  }
  void Next(const std::string& artist, const std::string& song) {
    rig.NextSong(artist, song);
    rig.Run(62s);
  }
  std::vector<std::string> Titles() {
    std::vector<std::string> titles;
    for (const ShelfRow& row : rules->Rows()) titles.push_back((row.Present ? "*" : "") + row.Title);
    return titles;
  }

  UnitRig rig;
  RecordingShell shell;
  std::unique_ptr<presenters::Shelf> rules;
};

TEST_F(ShelfWindowTest, ThePresentSongIsOnTopAndGrows) {
  EXPECT_THAT(Titles(), ElementsAre("*Low Road", "North Pier", "Winter Apples", "Slow Tide"));
  EXPECT_EQ(rules->Rows()[0].Length, "1:03");
  EXPECT_EQ(rules->Rows()[0].Station, "Harbour");
  const std::uint32_t changes = rules->Changes();
  rig.Run(2s);
  EXPECT_EQ(rules->Rows()[0].Length, "1:05");
  EXPECT_GT(rules->Changes(), changes);
  const ShelfRow& song = rules->Rows()[1];
  EXPECT_EQ(song.Artist, "Lanterns");
  EXPECT_EQ(song.Fate, "not wanted");
  EXPECT_EQ(song.File, "/music/Kestrune/Shelf/Lanterns - North Pier.wav");
  Next("New", "Song");
  EXPECT_THAT(Titles(), ElementsAre("*Song", "Low Road", "North Pier", "Winter Apples", "Slow Tide"));
}

TEST_F(ShelfWindowTest, ClosedItLooksNoMore) {
  rules->Unload();
  const std::uint32_t changes = rules->Changes();
  Next("New", "Song");
  EXPECT_EQ(rules->Changes(), changes);
}

TEST_F(ShelfWindowTest, ASearchLeavesWhatHasAllItsWordsAndThePresentSong) {
  rules->Search("  wren WINTER ");
  EXPECT_THAT(Titles(), ElementsAre("*Low Road", "Winter Apples"));
  rules->Search("harbour");
  EXPECT_EQ(Titles().size(), 4U);
  rules->Search("nobody");
  EXPECT_THAT(Titles(), ElementsAre("*Low Road"));
  rules->Search("");
  EXPECT_EQ(Titles().size(), 4U);
}

TEST_F(ShelfWindowTest, AShelfThatIsOffSaysSo) {
  EXPECT_EQ(rules->Message(), "");
  const std::uint32_t changes = rules->Changes();
  ASSERT_TRUE(rig->Parts().Settings.Set("ShelfSongs", "0").Done());
  rig.Run(1s);
  EXPECT_GT(rules->Changes(), changes);
  EXPECT_EQ(rules->Message(), "The shelf is off: the configuration puts no songs there.");
}

TEST_F(ShelfWindowTest, ASongIsPlayedAndItsFolderShown) {
  EXPECT_FALSE(rules->HasFile(0));
  EXPECT_FALSE(rules->HasFile(9));
  rules->Play(0);
  rules->Play(-1);
  rules->Play(1);
  rules->ShowInFolder(1);
  EXPECT_THAT(shell.Opened,
              ElementsAre("/music/Kestrune/Shelf/Lanterns - North Pier.wav", "/music/Kestrune/Shelf/"));
  shell.Works = false;
  rules->Play(1);
  EXPECT_EQ(rules->Message(), "There is no player for this file.");
}

TEST_F(ShelfWindowTest, ASongIsKeptOrTheReasonSaid) {
  rules->Keep(2);
  rig.Run(1s);
  EXPECT_EQ(rules->Message(), "Abigail Wren - Winter Apples was kept.");
  EXPECT_TRUE(rig.Files.Exists("/music/Abigail Wren - Winter Apples.wav"));
  EXPECT_THAT(Titles(), ElementsAre("*Low Road", "North Pier", "Slow Tide"));
  rig.Files.Put("/music/Lanterns - North Pier.wav", "mine");
  ASSERT_TRUE(rig->Parts().Settings.Set("SaveDuplicates", "0").Done());
  rules->Keep(1);
  rig.Run(1s);
  EXPECT_EQ(rules->Message(), "Lanterns - North Pier was not kept: duplicate song in output directory.");
}

TEST_F(ShelfWindowTest, ThePresentSongIsKeptAtItsEnd) {
  EXPECT_TRUE(rules->MayKeep(0));
  EXPECT_TRUE(presenters::MayKeepCurrent(rig->State()));
  rules->Keep(0);
  rig.Run(1s);
  EXPECT_EQ(rules->Message(), "Dune - Low Road will be kept at its end.");
  EXPECT_TRUE(rules->Rows()[0].Wanted);
  EXPECT_EQ(rules->Rows()[0].Fate, "will be kept");
  EXPECT_FALSE(rules->MayKeep(0)) << "once is enough";
  EXPECT_FALSE(rig.Window().cmdKeep.Enabled);
  Next("New", "Song");
  EXPECT_TRUE(rig.Files.Exists("/music/Dune - Low Road.wav"));
  EXPECT_TRUE(rig.Window().cmdKeep.Enabled);
}

TEST_F(ShelfWindowTest, AnAnswerAfterTheCloseChangesNothing) {
  rules->Keep(1);
  rules->Unload();
  const std::uint32_t changes = rules->Changes();
  rig.Run(1s);
  EXPECT_TRUE(rig.Files.Exists("/music/Lanterns - North Pier.wav")) << "the wish itself is fulfilled";
  EXPECT_EQ(rules->Changes(), changes);
  EXPECT_EQ(rules->Message(), "");
}

}  // namespace
}  // namespace kestrune::test
