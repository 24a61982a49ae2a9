// Songs of the Grab lists that begin on other channels, on a whole unit whose radio answers in bytes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Bytes.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Longer than a round through all channels.
constexpr auto kRound = 12s;

class HintsTest : public ::testing::Test {
 protected:
  HintsTest() {
    rig.Set("Hints", "True");
    Lists("0Wren\n1Winter Apples\n2Killjoy\n3Bad Song\n");
  }
  void Lists(const std::string& text) {
    rig.Files.MakeFolders("/home/user/Application Data/Kestrune");
    rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", text);
  }
  void Play(int channel, const std::string& artist, const std::string& song) {
    rig.Radio.Play(channel, artist, song);
    rig.Run(kRound);
  }
  [[nodiscard]] std::vector<std::string> Texts() {
    std::vector<std::string> texts;
    for (const recorder::Hint& hint : rig->State().Hints)
      texts.push_back(std::to_string(hint.Number) + ' ' + recorder::HintText(hint));
    return texts;
  }
  void Change(std::string key, std::string value) {
    rig->Wishes().ChangeSetting(std::move(key), std::move(value));
    rig.Run(1s);
  }

  UnitRig rig;
};

TEST_F(HintsTest, ASongOfTheGrabListsThatBeginsElsewhereIsOne) {
  rig.StartIdle();
  rig.Run(kRound);
  const base::DateValue before = rig.Loop.Now();
  Play(47, "Abigail Wren", "Tin Cup");
  ASSERT_THAT(Texts(), ElementsAre("1 Now on 47 Station 47: Abigail Wren - Tin Cup"));
  EXPECT_GE(rig->State().Hints.front().Began, before);
  Play(48, "Juniper", "Winter Apples");
  EXPECT_THAT(Texts(), ElementsAre("2 Now on 48 Station 48: Juniper - Winter Apples",
                                   "1 Now on 47 Station 47: Abigail Wren - Tin Cup"));
}

TEST_F(HintsTest, ABeginningIsReadFromTheBytesOfTheLine) {
  rig.StartIdle();
  rig.Run(kRound);
  rig.Radio.Say(
      Bytes("5A A5 00 49 A5 01 00 2F 00 00"                          // what plays on channel 47
            "43 61 6D 70 66 69 72 65 20 46 6F 6C 6B 00 00 00 00 00"  // Campfire Folk
            "52 6F 63 6B 00 00 00 00 00 00 00 00 00 00 00 00 00"     // Rock
            "41 62 69 67 61 69 6C 20 57 72 65 6E 00 00 00 00"        // Abigail Wren
            "57 69 6E 74 65 72 20 41 70 70 6C 65 73 00 00 00"        // Winter Apples
            "ED ED"));
  rig.Run(60ms);
  EXPECT_THAT(Texts(), ElementsAre("1 Now on 47 Campfire Folk: Abigail Wren - Winter Apples"));
}

TEST_F(HintsTest, WhatPlaysAtTheStartHasNotBegun) {
  rig.Radio.Channels[47].Artist = "Abigail Wren";
  rig.StartIdle();
  rig.Run(1min);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, NothingIsNoticedUnlessItIsAskedFor) {
  rig.Set("Hints", "False");
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Tin Cup");
  EXPECT_THAT(Texts(), IsEmpty());
  Change("Hints", "True");
  rig.Run(kRound);
  EXPECT_THAT(Texts(), IsEmpty()) << "it began before";
  Play(47, "Abigail Wren", "River");
  EXPECT_EQ(Texts().size(), 1U);
  Change("Hints", "False");
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, TheKillListsWin) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Bad Song");
  Play(48, "Killjoy", "Winter Apples");
  Play(49, "Nobody", "Nothing");
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, TheTunedChannelHasNone) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(44, "Abigail Wren", "Tin Cup");
  EXPECT_THAT(Texts(), IsEmpty());
  Play(47, "Abigail Wren", "Tin Cup");
  ASSERT_THAT(Texts(), ElementsAre("1 Now on 47 Station 47: Abigail Wren - Tin Cup")) << "it never was one";
  rig->SetChannelNumber(47);
  rig.Run(1s);
  EXPECT_THAT(Texts(), IsEmpty()) << "it is not another channel any more";
  rig->SetChannelNumber(44);
  rig.Run(kRound);
  EXPECT_THAT(Texts(), IsEmpty()) << "it did not begin while it was another channel";
}

TEST_F(HintsTest, AChannelWithoutTextHasNone) {
  Lists("0{Blank}\n1{Blank}\n");
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "", "");
  EXPECT_THAT(Texts(), IsEmpty());
  Play(48, "", "Tin Cup");
  EXPECT_THAT(Texts(), ElementsAre("1 Now on 48 Station 48: Tin Cup"));
}

TEST_F(HintsTest, AChannelThatTheRadioDoesNotListHasNone) {
  rig.StartIdle();
  rig.Run(kRound);
  rig.Radio.Channels[2] = {"Hidden", "None", "Nobody", "Nothing"};
  rig.Radio.Report(2);
  rig.Run(1s);
  rig.Radio.Channels[2].Artist = "Abigail Wren";
  rig.Radio.Report(2);
  rig.Run(1s);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, AHintEndsWithItsSong) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Tin Cup");
  rig.Run(10min);
  EXPECT_EQ(Texts().size(), 1U) << "as long as the song lasts";
  Play(47, "Nobody", "Nothing");
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, ASongThatComesBackIsTheSameHint) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Tin Cup");
  rig.Run(15min);
  Play(47, "Call now", "Call now");
  EXPECT_THAT(Texts(), IsEmpty());
  rig.Run(9min);
  Play(47, "Abigail Wren", "Tin Cup");
  EXPECT_THAT(Texts(), ElementsAre("1 Now on 47 Station 47: Abigail Wren - Tin Cup"));
  Play(47, "Call now", "Call now");
  rig.Run(11min);
  Play(47, "Abigail Wren", "Tin Cup");
  EXPECT_THAT(Texts(), ElementsAre("2 Now on 47 Station 47: Abigail Wren - Tin Cup"));
}

TEST_F(HintsTest, TheSameSongOnAnotherChannelIsAnotherHint) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Tin Cup");
  Play(48, "Abigail Wren", "Tin Cup");
  EXPECT_EQ(Texts().size(), 2U);
}

TEST_F(HintsTest, AtMostTheNewestFiveAreKept) {
  rig.StartIdle();
  rig.Run(kRound);
  for (int channel = 45; channel <= 51; ++channel) Play(channel, "Abigail Wren", std::to_string(channel));
  EXPECT_THAT(
      Texts(),
      ElementsAre("7 Now on 51 Station 51: Abigail Wren - 51", "6 Now on 50 Station 50: Abigail Wren - 50",
                  "5 Now on 49 Station 49: Abigail Wren - 49", "4 Now on 48 Station 48: Abigail Wren - 48",
                  "3 Now on 47 Station 47: Abigail Wren - 47"));
}

TEST_F(HintsTest, AnOutageEndsAllAndWhatPlaysAfterItHasNotBegun) {
  rig.StartIdle();
  rig.Run(kRound);
  Play(47, "Abigail Wren", "Tin Cup");
  rig.Radio.Unplug();
  rig.Run(5s);
  EXPECT_THAT(Texts(), IsEmpty());
  rig.Radio.Channels[48].Artist = "Abigail Wren";
  rig.Radio.Plug();
  rig.Run(1min);
  EXPECT_THAT(Texts(), IsEmpty());
  Play(49, "Abigail Wren", "River");
  EXPECT_EQ(Texts().size(), 1U);
}

TEST_F(HintsTest, AfterASleepOfTheMachineWhatPlaysHasNotBegun) {
  rig.StartIdle();
  rig.Run(kRound);
  rig.Radio.Channels[47].Artist = "Abigail Wren";
  rig.Loop.SleepMachine(301s);
  rig.Run(1min);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(HintsTest, AHintIsFreshForTwentySeconds) {
  rig.StartIdle();
  rig.Run(kRound);
  rig.Radio.Play(47, "Abigail Wren", "Tin Cup");
  ASSERT_TRUE(rig.Loop.RunUntil([this] { return !rig->State().Hints.empty(); }, 20s));
  rig.Run(19s);
  EXPECT_TRUE(rig->State().Hints.front().Fresh);
  rig.Run(2s);
  EXPECT_FALSE(rig->State().Hints.front().Fresh);
}

}  // namespace
}  // namespace kestrune::test
