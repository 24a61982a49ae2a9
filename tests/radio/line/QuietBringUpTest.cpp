#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/QuietBringUp.h"
#include "radio/line/SessionFixture.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using radio::BringUpOutcome;
using radio::BringUpPlan;
using radio::Remedy;
using Kind = radio::BringUpOutcome::Kind;

constexpr const char* kSetup1 = "5A A5 00 03 74 00 01 01 77";
constexpr const char* kSetup2 = "5A A5 00 02 74 0D 01 82";
constexpr const char* kPowerOn = "5A A5 00 05 00 10 10 10 01 ED ED";
constexpr const char* kPowerOff = "5A A5 00 02 01 00 ED ED";
constexpr const char* kSetup3 = "5A A5 00 04 74 02 01 01 01 7B";
constexpr const char* kSetup4 = "5A A5 00 04 74 04 01 05 01 81";
constexpr const char* kSetup5 = "5A A5 00 03 74 0B 01 01 82";
constexpr const char* kSetup6 = "5A A5 00 01 40 01 40";
constexpr const char* kPowerOnReply =
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kRadioID = "5A A5 00 01 31 ED ED";
constexpr const char* kRadioIDReply = "5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kOtherRadioID = "5A A5 00 0C B1 01 00 00 57 58 59 5A 39 38 37 36 ED ED";
constexpr const char* kOtherPowerOnReply =
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 57 58 59 5A 39 38 37 36 ED ED";
constexpr const char* kOffRefusal = "5A A5 00 02 FF 31 ED ED";
constexpr const char* kTuneTo9 = "5A A5 00 06 10 02 09 00 00 01 01 19";
constexpr const char* kTunedTo9 = "5A A5 00 06 90 01 00 09 00 00 ED ED";
constexpr const char* kMuteOff = "5A A5 00 02 13 00 ED ED";
constexpr const char* kMuteReply = "5A A5 00 04 93 01 00 01 ED ED";

class QuietBringUpTest : public SessionFixture {
 protected:
  void Reply(const char* command, const char* reply) {
    port.WhenWritten(Bytes(command), Bytes(reply), Milliseconds(20));
  }
  void AHealthyRadio() {
    Reply(kRadioID, kRadioIDReply);
    Reply(kPowerOn, kPowerOnReply);
    Reply(kTuneTo9, kTunedTo9);
    Reply(kMuteOff, kMuteReply);
  }
  // Steps until the attempt ends; each step must take no time at all.
  BringUpOutcome Run(Remedy how) {
    bringUp.Begin({.How = how, .Port = 3, .Identifier = "R0GHJK23", .Channel = 9, .Muted = false});
    for (int step = 0; step < 300; ++step) {
      const Milliseconds before = loop.SteadyNow();
      const auto outcome = bringUp.Step();
      EXPECT_EQ(loop.SteadyNow(), before);
      if (outcome) {
        EXPECT_FALSE(bringUp.Running());
        return *outcome;
      }
      loop.Run(radio::QuietBringUp::kStep);
    }
    ADD_FAILURE() << "it does not end";
    return {};
  }

  radio::QuietBringUp bringUp{session, loop};
};

TEST_F(QuietBringUpTest, PowersOnTunesAndUnmutesAsTheStartDoes) {
  AHealthyRadio();
  OpenPort();
  const BringUpOutcome outcome = Run(Remedy::PowerOn);
  EXPECT_EQ(outcome.Came, Kind::Up);
  EXPECT_TRUE(outcome.MuteAnswered);
  EXPECT_TRUE(Wrote({kSetup1, kSetup2, kPowerOn, kSetup3, kSetup4, kSetup5, kSetup6, kTuneTo9, kMuteOff}));
}

TEST_F(QuietBringUpTest, PausesNoShorterThanTheStart) {
  AHealthyRadio();
  OpenPort();
  EXPECT_EQ(Run(Remedy::PowerOn).Came, Kind::Up);
  const auto& writes = port.Writes();
  ASSERT_EQ(writes.size(), 9U);
  EXPECT_GE(writes[1].At - writes[0].At, 200ms);
  EXPECT_GE(writes[2].At - writes[1].At, 200ms);
  for (int i = 4; i < 8; ++i) EXPECT_GE(writes.at(i).At - writes.at(i - 1).At, 100ms);
}

TEST_F(QuietBringUpTest, AsksBeforeItPowersOnWhatItOpened) {
  AHealthyRadio();
  EXPECT_EQ(Run(Remedy::Reopen).Came, Kind::Up);
  EXPECT_GE(port.Writes().at(0).At, 1500ms) << "the adapter may have reset the radio";
  EXPECT_TRUE(
      Wrote({kRadioID, kSetup1, kSetup2, kPowerOn, kSetup3, kSetup4, kSetup5, kSetup6, kTuneTo9, kMuteOff}));
  EXPECT_FALSE(session.OnTrial());
  EXPECT_TRUE(port.DataTerminalReady());
}

TEST_F(QuietBringUpTest, AskingIsEnoughForARadioThatAnswers) {
  AHealthyRadio();
  OpenPort();
  EXPECT_EQ(Run(Remedy::Ask).Came, Kind::Up);
  EXPECT_TRUE(Wrote({kRadioID, kTuneTo9, kMuteOff}));
}

TEST_F(QuietBringUpTest, AskingShowsThatARadioIsOff) {
  Reply(kRadioID, kOffRefusal);
  OpenPort();
  EXPECT_EQ(Run(Remedy::Ask).Came, Kind::Off);
}

TEST_F(QuietBringUpTest, ARadioThatIsOffIsPoweredOnAfterAnOpening) {
  Reply(kPowerOn, kPowerOnReply);
  Reply(kRadioID, kOffRefusal);
  EXPECT_EQ(Run(Remedy::Reopen).Came, Kind::Up);
}

TEST_F(QuietBringUpTest, AnotherRadioIsSentNothingMore) {
  Reply(kRadioID, kOtherRadioID);
  const BringUpOutcome outcome = Run(Remedy::Reopen);
  EXPECT_EQ(outcome.Came, Kind::OtherRadio);
  EXPECT_EQ(outcome.Cause, "another radio answers on port 3");
  EXPECT_TRUE(Wrote({kRadioID}));
  EXPECT_TRUE(session.OnTrial());
}

TEST_F(QuietBringUpTest, AnotherRadioThatWasOffIsSwitchedOffAgain) {
  Reply(kRadioID, kOffRefusal);
  Reply(kPowerOn, kOtherPowerOnReply);
  EXPECT_EQ(Run(Remedy::Reopen).Came, Kind::OtherRadio);
  EXPECT_TRUE(Wrote({kRadioID, kSetup1, kSetup2, kPowerOn, kPowerOff}));
}

TEST_F(QuietBringUpTest, NothingReachesTheProgramFromAPortOnTrial) {
  Reply(kRadioID, kOtherRadioID);
  session.SetCOMPort(3);
  bringUp.Begin({.How = Remedy::Reopen, .Port = 3, .Identifier = "R0GHJK23"});
  loop.Run(100ms);
  ASSERT_TRUE(port.IsOpen());
  port.TakeWrites();
  port.Arrive(ChannelInfoFrame(45, "Deep Tracks", "Rock", "THE FOX", "Nightfall"));
  loop.Run(100ms);
  EXPECT_TRUE(infos.empty());
  EXPECT_EQ(session.pcrChannel(), 0);
  EXPECT_FALSE(session.pcrGetSignalLevels());
  EXPECT_FALSE(session.pcrGetChannelInfo(45));
  EXPECT_FALSE(session.pcrEnumerateChannels(0));
  EXPECT_FALSE(session.pcrSelectChannel(45));
  EXPECT_FALSE(session.pcrMute(true));
  EXPECT_FALSE(session.pcrPowerOff());
  EXPECT_EQ(session.pcrRadioID(), "");
  EXPECT_TRUE(Wrote({}));
}

TEST_F(QuietBringUpTest, ASelectAndAMuteWithoutReplyDoNotEndIt) {
  Reply(kRadioID, kRadioIDReply);
  OpenPort();
  const BringUpOutcome outcome = Run(Remedy::Ask);
  EXPECT_EQ(outcome.Came, Kind::Up);
  EXPECT_FALSE(outcome.MuteAnswered);
  EXPECT_EQ(session.Traffic().Tuning(), radio::Tuning::Asked);
}

TEST_F(QuietBringUpTest, WithoutAReplyItEndsInTheTimeOfTheStart) {
  OpenPort();
  const Milliseconds before = loop.SteadyNow();
  EXPECT_EQ(Run(Remedy::PowerOn).Came, Kind::NoAnswer);
  EXPECT_GE(loop.SteadyNow() - before, 5200ms);
  EXPECT_LE(loop.SteadyNow() - before, 5500ms);
}

TEST_F(QuietBringUpTest, AnOpeningThatHangsHoldsNobodyUp) {
  AHealthyRadio();
  port.OpeningTakes(8s);
  EXPECT_EQ(Run(Remedy::Reopen).Came, Kind::Up);
}

TEST_F(QuietBringUpTest, AnOpeningThatNeverEndsFailsAfterTenSeconds) {
  port.OpeningTakes(-1ms);
  const Milliseconds before = loop.SteadyNow();
  const BringUpOutcome outcome = Run(Remedy::Reopen);
  EXPECT_EQ(outcome.Came, Kind::NotOpened);
  EXPECT_EQ(outcome.Cause, "the device does not let itself be opened");
  EXPECT_LE(loop.SteadyNow() - before, 10200ms);
}

TEST_F(QuietBringUpTest, AFailedOpeningHasItsCause) {
  port.Refuse(3, "it is in use");
  EXPECT_EQ(Run(Remedy::Reopen).Cause, "it is in use");
  port.Remove(3, "there is no such port");
  EXPECT_EQ(Run(Remedy::Reopen).Cause, "the device is gone");
}

TEST_F(QuietBringUpTest, ALineThatDiesUnderWayEndsIt) {
  OpenPort();
  bringUp.Begin({.How = Remedy::PowerOn, .Identifier = "R0GHJK23"});
  loop.Run(100ms);
  port.Die();
  std::optional<BringUpOutcome> outcome;
  for (int step = 0; step < 20 && !outcome; ++step) {
    outcome = bringUp.Step();
    loop.Run(100ms);
  }
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->Came, Kind::NotOpened);
}

TEST_F(QuietBringUpTest, AClosedPortNeverOpensLater) {
  port.OpeningTakes(2s);
  bringUp.Begin({.How = Remedy::Reopen, .Port = 3});
  bringUp.GiveUp();
  session.SetPortOpen(false);
  loop.Run(10s);
  EXPECT_FALSE(port.IsOpen());
}

}  // namespace
}  // namespace kestrune::test
