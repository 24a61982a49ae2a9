#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "presenters/CutOffer.h"
#include "support/MemorySettingsStore.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using presenters::CutOffer;

class CutOfferTest : public ::testing::Test {
 protected:
  /// Songs end one after the other, each seen for itself.
  void Keep(int songs) {
    for (int i = 0; i < songs; ++i) {
      ++state_.Recording.RecordedCount;
      offer_.Follow();
    }
  }
  [[nodiscard]] std::string Stored() const { return store_.Stored("Lorimel", "Kestrune", "CutOffer"); }

  recorder::State state_;
  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  CutOffer offer_{state_, section_};
};

TEST_F(CutOfferTest, TheTenthKeptSongBringsItAndTheNextOneTakesItAway) {
  offer_.Follow();
  Keep(9);
  EXPECT_FALSE(offer_.Shown());
  Keep(1);
  EXPECT_TRUE(offer_.Shown());
  for (int i = 0; i < 100; ++i) offer_.Follow();
  EXPECT_TRUE(offer_.Shown());
  state_.Recording.RecordedCount = 0;
  offer_.Follow();
  EXPECT_TRUE(offer_.Shown()) << "a new recording is no song";
  ++state_.Recording.TooShortCount;
  offer_.Follow();
  EXPECT_FALSE(offer_.Shown());
  Keep(50);
  EXPECT_FALSE(offer_.Shown()) << "once";
}

TEST_F(CutOfferTest, OnlyKeptSongsCount) {
  offer_.Follow();
  state_.Recording.TooShortCount = 20;
  state_.Recording.TooLongCount = 20;
  state_.Recording.RestrictedCount = 20;
  offer_.Follow();
  EXPECT_EQ(Stored(), "(absent)");
  EXPECT_FALSE(offer_.Shown());
}

TEST_F(CutOfferTest, SongsCountFromRecordingToRecordingAndRunToRun) {
  offer_.Follow();
  Keep(4);
  state_.Recording.RecordedCount = 0;
  offer_.Follow();
  Keep(3);
  CutOffer next(state_, section_);
  state_.Recording.RecordedCount = 0;
  next.Follow();
  EXPECT_EQ(Stored(), "7");
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(next.Shown());
    ++state_.Recording.RecordedCount;
    next.Follow();
  }
  EXPECT_TRUE(next.Shown());
  CutOffer afterwards(state_, section_);
  afterwards.Follow();
  state_.Recording.RecordedCount = 60;
  afterwards.Follow();
  EXPECT_FALSE(afterwards.Shown()) << "never again";
}

TEST_F(CutOfferTest, SwitchingItOnTakesItAway) {
  offer_.Follow();
  Keep(10);
  state_.Settings.CutPlacement = config::CutPlacement::Listen;
  offer_.Follow();
  EXPECT_FALSE(offer_.Shown());
  state_.Settings.CutPlacement = config::CutPlacement::Text;
  offer_.Follow();
  EXPECT_FALSE(offer_.Shown());
}

TEST_F(CutOfferTest, WhoHasHadItOnGetsNoOffer) {
  state_.Settings.CutPlacement = config::CutPlacement::Listen;
  offer_.Follow();
  EXPECT_EQ(Stored(), "10");
  state_.Settings.CutPlacement = config::CutPlacement::Text;
  Keep(30);
  EXPECT_FALSE(offer_.Shown());
}

TEST_F(CutOfferTest, RubbishInTheSettingsCountsAsNothing) {
  for (const char* rubbish : {"many", "-70000", "-5"}) {
    store_.Put("Lorimel", "Kestrune", "CutOffer", rubbish);
    recorder::State state;
    CutOffer offer(state, section_);
    offer.Follow();
    state.Recording.RecordedCount = 9;
    offer.Follow();
    EXPECT_FALSE(offer.Shown()) << rubbish;
    state.Recording.RecordedCount = 10;
    offer.Follow();
    EXPECT_TRUE(offer.Shown()) << rubbish;
  }
}

TEST(CutOffer, TheMainWindowSaysItUnlessSomethingFails) {
  UnitRig rig;
  rig.Set("CutOffer", "9");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(std::chrono::seconds(60));
  EXPECT_NE(rig.Rules->Explanation(), CutOffer::kText);
  rig.NextSong("Other", "Song");
  rig.Run(std::chrono::seconds(3));
  EXPECT_EQ(rig.Rules->Explanation(), CutOffer::kText);
  EXPECT_EQ(rig.Setting("CutOffer"), "10");
  rig.NextSong("Third", "Song");
  rig.Run(std::chrono::seconds(3));
  EXPECT_NE(rig.Rules->Explanation(), CutOffer::kText);
}

TEST(CutOffer, WhereAHintHasLedTheProgramIsSaidFirst) {
  using namespace std::chrono_literals;
  UnitRig rig;
  rig.Set("CutOffer", "9");
  rig.Set("Hints", "True");
  rig.Set("FollowHints", "True");
  rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(60s);
  rig.NextSong("Other", "Song");
  rig->cmdStop();
  rig.Run(12s);
  EXPECT_EQ(rig.Rules->Explanation(), CutOffer::kText);
  rig.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(15s);
  EXPECT_EQ(rig.Rules->Explanation(), "Following a hint: back to channel 44 after this song.");
}

}  // namespace
}  // namespace kestrune::test
