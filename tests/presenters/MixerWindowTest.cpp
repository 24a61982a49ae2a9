#include <gtest/gtest.h>

#include "presenters/MixerWindow.h"
#include "support/FakeMixer.h"

namespace kestrune::test {
namespace {

class MixerWindowTest : public ::testing::Test {
 protected:
  MixerWindowTest() {
    mixer_.Lines = {{.Name = "Line In"}, {.Name = "Microphone", .Volume = 20000, .Balance = 30}};
    mixer_.Lines[1].Selected = true;
  }

  FakeMixer mixer_;
  std::string device_ = "card";
  presenters::MixerWindow window_{mixer_, [this] { return device_; }};
};

TEST_F(MixerWindowTest, ALoadShowsEachLineOfTheDevice) {
  window_.Load();
  EXPECT_EQ(mixer_.Device, "card");
  EXPECT_EQ(window_.LastLine(), 1);
  EXPECT_EQ(window_.SelectedLine(), 1);
  EXPECT_EQ(window_.Column(0).Label, "Line In");
  EXPECT_EQ(window_.Column(0).slVolume, 0) << "the top is loud";
  EXPECT_EQ(window_.Column(0).slBalance, 50);
  EXPECT_FALSE(window_.Column(0).chSelect);
  EXPECT_EQ(window_.Column(1).Label, "Microphone");
  EXPECT_EQ(window_.Column(1).slVolume, 45535);
  EXPECT_EQ(window_.Column(1).slBalance, 30);
  EXPECT_TRUE(window_.Column(1).chSelect);
}

TEST_F(MixerWindowTest, ACardWithMoreThanEightLinesShowsTheFirstEight) {
  mixer_.Lines.assign(11, {.Name = "Line"});
  mixer_.Lines[7].Name = "Eighth";
  window_.Load();
  EXPECT_EQ(window_.LastLine(), 7);
  EXPECT_EQ(window_.Column(7).Label, "Eighth");
}

TEST_F(MixerWindowTest, ADeviceWithoutLinesShowsNone) {
  mixer_.Lines.clear();
  window_.Load();
  EXPECT_EQ(window_.LastLine(), -1);
  EXPECT_FALSE(window_.Column(0).slVolumeVisible);
}

TEST_F(MixerWindowTest, WhatALineLacksIsHidden) {
  mixer_.Lines[0].HasVolume = false;
  mixer_.Lines[0].CanSelect = false;
  mixer_.Lines[1].HasBalance = false;
  window_.Load();
  EXPECT_FALSE(window_.Column(0).slVolumeVisible);
  EXPECT_TRUE(window_.Column(0).slBalanceVisible);
  EXPECT_FALSE(window_.Column(0).chSelectVisible);
  EXPECT_TRUE(window_.Column(1).slVolumeVisible);
  EXPECT_FALSE(window_.Column(1).slBalanceVisible);
  EXPECT_TRUE(window_.Column(1).chSelectVisible);
}

TEST_F(MixerWindowTest, AVolumeThatTheHardwareRoundsMakesTheSliderJump) {
  mixer_.VolumeStep = 1000;
  window_.Load();
  window_.slVolume_Scroll(1, 65535 - 12345);
  EXPECT_EQ(mixer_.Lines[1].Volume, 12000);
  EXPECT_EQ(window_.Column(1).slVolume, 65535 - 12000);
  EXPECT_EQ(mixer_.Lines[0].Volume, 65535);
}

TEST_F(MixerWindowTest, ABalanceIsReadBackToo) {
  window_.Load();
  window_.slBalance_Scroll(0, 77);
  EXPECT_EQ(mixer_.Lines[0].Balance, 70);
  EXPECT_EQ(window_.Column(0).slBalance, 70);
}

TEST_F(MixerWindowTest, OnACardOfOneSourceTheBoxesShowItsRealState) {
  mixer_.OneSelected = true;
  window_.Load();
  window_.chSelect_MouseUp(0, true);
  EXPECT_TRUE(window_.Column(0).chSelect);
  EXPECT_FALSE(window_.Column(1).chSelect);
  EXPECT_EQ(window_.SelectedLine(), 0);
  window_.chSelect_MouseUp(0, false);
  EXPECT_TRUE(window_.Column(0).chSelect) << "the card keeps one line";
}

TEST_F(MixerWindowTest, OnACardOfManySourcesTheBoxesAreFree) {
  window_.Load();
  window_.chSelect_MouseUp(0, true);
  EXPECT_TRUE(window_.Column(0).chSelect);
  EXPECT_TRUE(window_.Column(1).chSelect);
  window_.chSelect_MouseUp(0, false);
  window_.chSelect_MouseUp(1, false);
  EXPECT_FALSE(window_.Column(1).chSelect);
  EXPECT_EQ(window_.SelectedLine(), 1) << "the last that was found selected";
}

TEST_F(MixerWindowTest, ASelectionLeavesTheCursorWhereItWas) {
  window_.Load();
  mixer_.Cursor = 1;
  window_.chSelect_MouseUp(0, true);
  EXPECT_EQ(mixer_.Cursor, 1);
}

TEST_F(MixerWindowTest, WhatIsChangedElsewhereIsTakenIn) {
  window_.Load();
  mixer_.Lines[0].Volume = 100;
  mixer_.Lines.push_back({.Name = "Plugged in", .Selected = true});
  window_.Update();
  EXPECT_EQ(window_.LastLine(), 1) << "nothing reported yet";
  mixer_.Changed = true;
  window_.Update();
  EXPECT_EQ(window_.LastLine(), 2);
  EXPECT_EQ(window_.Column(0).slVolume, 65435);
  EXPECT_EQ(window_.Column(2).Label, "Plugged in");
  EXPECT_EQ(window_.SelectedLine(), 2);
}

TEST_F(MixerWindowTest, AStepGoesOnUntilACardOfFewStepsFollows) {
  mixer_.VolumeStep = 6000;
  mixer_.Lines[1].Volume = 18000;
  window_.Load();
  window_.slVolume_Step(1, window_.Column(1).slVolume - 5);
  EXPECT_EQ(mixer_.Lines[1].Volume, 24000) << "one of the card's steps, not more";
  EXPECT_EQ(window_.Column(1).slVolume, 65535 - 24000);
  window_.slVolume_Step(1, window_.Column(1).slVolume + 5);
  EXPECT_EQ(mixer_.Lines[1].Volume, 18000);
  window_.slBalance_Step(0, 51);
  EXPECT_EQ(mixer_.Lines[0].Balance, 60);
  window_.slBalance_Step(0, 59);
  EXPECT_EQ(mixer_.Lines[0].Balance, 50);
}

TEST_F(MixerWindowTest, AStepAtTheEndOfACardsRangeStaysThere) {
  mixer_.VolumeStep = 6000;
  mixer_.Lines[1].Volume = 60000;
  window_.Load();
  window_.slVolume_Step(1, window_.Column(1).slVolume - 5);
  EXPECT_EQ(mixer_.Lines[1].Volume, 60000);
  EXPECT_EQ(window_.Column(1).slVolume, 5535);
}

TEST_F(MixerWindowTest, OnAFineCardAStepIsOneStep) {
  window_.Load();
  window_.slVolume_Step(1, window_.Column(1).slVolume - 5);
  EXPECT_EQ(mixer_.Lines[1].Volume, 20005);
}

TEST_F(MixerWindowTest, AnotherInputDeviceIsTurnedToWhileTheWindowIsOpen) {
  window_.Load();
  window_.Update();
  EXPECT_EQ(mixer_.TimesOpened, 1);
  device_ = "other";
  mixer_.Lines = {{.Name = "Other"}};
  window_.Update();
  EXPECT_EQ(mixer_.Device, "other");
  EXPECT_EQ(mixer_.TimesOpened, 2);
  EXPECT_EQ(window_.LastLine(), 0);
  EXPECT_EQ(window_.Column(0).Label, "Other");
}

TEST_F(MixerWindowTest, ACardUnpluggedDuringAWriteTakesItsColumnsAlong) {
  const auto write = [this](int what) {
    if (what == 0) window_.slVolume_Scroll(1, 100);
    if (what == 1) window_.slBalance_Scroll(1, 100);
    if (what == 2) window_.chSelect_MouseUp(1, false);
    if (what == 3) window_.slVolume_Step(1, 100);
  };
  const auto lines = mixer_.Lines;
  for (int what = 0; what < 4; ++what) {
    mixer_.Lines = lines;
    window_.Load();
    mixer_.UnplugAtWrite = true;
    write(what);
    EXPECT_EQ(window_.LastLine(), -1) << what;
    EXPECT_FALSE(window_.Column(1).slVolumeVisible) << what;
    EXPECT_FALSE(mixer_.Changed) << "nobody will report it later";
  }
}

TEST_F(MixerWindowTest, AfterAnUnloadTheDeviceIsLeftAlone) {
  window_.Load();
  window_.Unload();
  EXPECT_EQ(mixer_.Device, "(closed)");
  EXPECT_EQ(window_.LastLine(), -1);
}

}  // namespace
}  // namespace kestrune::test
