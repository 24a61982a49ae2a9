// The operations of the session, their frames and their waits.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/SessionFixture.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kSetup = "5A A5 00 03 74 00 01 01 77";
constexpr const char* kSetupBefore = "5A A5 00 02 74 0D 01 82";
constexpr const char* kPowerOn = "5A A5 00 05 00 10 10 10 01 ED ED";
constexpr const char* kSetupAfter1 = "5A A5 00 04 74 02 01 01 01 7B";
constexpr const char* kSetupAfter2 = "5A A5 00 04 74 04 01 05 01 81";
constexpr const char* kSetupAfter3 = "5A A5 00 03 74 0B 01 01 82";
constexpr const char* kSetupDone = "5A A5 00 01 40 01 40";
constexpr const char* kPowerOff = "5A A5 00 02 01 00 ED ED";
constexpr const char* kMuteOn = "5A A5 00 02 13 01 ED ED";
constexpr const char* kMuteOff = "5A A5 00 02 13 00 ED ED";
constexpr const char* kRadioID = "5A A5 00 01 31 ED ED";
constexpr const char* kPowerOnReply =
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kRadioIDReply = "5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kMuteReply = "5A A5 00 04 93 01 00 01 ED ED";

class RadioSessionTest : public SessionFixture {
 protected:
  void Reply(const char* command, const char* reply, int afterMs, std::int16_t onPort = 0) {
    port.WhenWritten(Bytes(command), Bytes(reply), Milliseconds(afterMs), onPort);
  }
  // The moments of all writes, from the first on.
  [[nodiscard]] std::vector<int> WriteTimes() const {
    std::vector<int> times;
    for (const auto& write : port.Writes()) {
      times.push_back(static_cast<int>((write.At - port.Writes().front().At).count()));
    }
    return times;
  }
};

// Opening and closing.

TEST_F(RadioSessionTest, OpeningSetsTheLineUpAndRaisesTheModemLinesLast) {
  OpenPort(3);
  EXPECT_THAT(port.Calls(), ElementsAre("CommPort 3", "Settings 9600,n,8,1", "RThreshold 1", "Open",
                                        "RThreshold 5", "DTR on", "RTS on"));
  EXPECT_TRUE(session.pcrPortOpen());
  EXPECT_EQ(session.pcrCOMPort(), 3);
}

TEST_F(RadioSessionTest, ClosingLowersTheModemLinesFirst) {
  OpenPort();
  port.ForgetCalls();
  session.SetPortOpen(false);
  EXPECT_THAT(port.Calls(), ElementsAre("DTR off", "RTS off", "Close"));
  EXPECT_FALSE(session.pcrPortOpen());
}

TEST_F(RadioSessionTest, SettingThePortToItsLastKnownStateDoesNothingNotEvenToTheFlags) {
  session.SetPortOpen(false);
  EXPECT_THAT(port.Calls(), IsEmpty());
  OpenPort();
  session.pcrGetSignalLevels();
  port.ForgetCalls();
  session.SetPortOpen(true);
  EXPECT_THAT(port.Calls(), IsEmpty());
  EXPECT_TRUE(session.pcrWaitingForResponse());
}

TEST_F(RadioSessionTest, OpeningAndClosingForgetWhatIsAwaited) {
  OpenPort();
  session.pcrGetSignalLevels();
  session.SetPortOpen(false);
  EXPECT_FALSE(session.pcrWaitingForResponse());
  session.pcrRawSend(Bytes("01"), false);
  EXPECT_TRUE(session.pcrWaitingForResponse());
  session.SetPortOpen(true);
  EXPECT_FALSE(session.pcrWaitingForResponse());
}

TEST_F(RadioSessionTest, AFailureToOpenIsKeptAsTheLastErrorAndNeverCleared) {
  EXPECT_EQ(session.pcrLastError(), "");
  port.Refuse(3, "Permission denied: join the group dialout");
  session.pcrRawSend(Bytes("01"), false);
  OpenPort(3);
  EXPECT_FALSE(session.pcrPortOpen());
  EXPECT_FALSE(session.pcrWaitingForResponse()) << "cleared in all cases";
  EXPECT_FALSE(port.DataTerminalReady());
  EXPECT_EQ(session.pcrLastError(), "Permission denied: join the group dialout");
  OpenPort(4);
  EXPECT_TRUE(session.pcrPortOpen());
  EXPECT_EQ(session.pcrLastError(), "Permission denied: join the group dialout");
}

TEST_F(RadioSessionTest, APortThatDiedReadsAsClosedAndCanBeOpenedAgain) {
  OpenPort();
  port.Die();
  // Until somebody asks, the last known state is still open.
  session.SetPortOpen(true);
  EXPECT_FALSE(port.IsOpen());
  EXPECT_FALSE(session.pcrPortOpen());
  session.SetPortOpen(true);
  EXPECT_TRUE(port.IsOpen());
}

TEST_F(RadioSessionTest, EveryOperationOnAClosedPortFailsAtOnceWithoutAFrame) {
  EXPECT_EQ(TimeOf([this] {
              EXPECT_FALSE(session.pcrPowerOn(true));
              EXPECT_FALSE(session.pcrPowerOff());
              EXPECT_EQ(session.pcrRadioID(), "");
              EXPECT_FALSE(session.pcrGetSignalLevels());
              EXPECT_FALSE(session.pcrSelectChannel(9));
              EXPECT_FALSE(session.pcrGetChannelInfo(9));
              EXPECT_FALSE(session.pcrEnumerateChannels(0));
              EXPECT_FALSE(session.pcrMute(true));
            }),
            Milliseconds(0));
  EXPECT_THAT(port.Writes(), IsEmpty());
}

TEST_F(RadioSessionTest, OperationsOnAPortThatDiesUnderwayTimeOutAndThenFailAtOnce) {
  OpenPort();
  loop.AtHardware(Milliseconds(100), [this] { port.Die(); });
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrSelectChannel(9)); }), Milliseconds(1500));
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrSelectChannel(9)); }), Milliseconds(0));
}

// Power.

TEST_F(RadioSessionTest, PowerOnSendsItsSequenceWithItsPauses) {
  OpenPort();
  Reply(kPowerOn, kPowerOnReply, 100);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrPowerOn(false)); }), Milliseconds(400 + 120 + 400));
  EXPECT_THAT(WriteTimes(), ElementsAre(0, 200, 400, 520, 620, 720, 820));
  EXPECT_TRUE(Wrote({kSetup, kSetupBefore, kPowerOn, kSetupAfter1, kSetupAfter2, kSetupAfter3, kSetupDone}));
  EXPECT_EQ(session.pcrRadioID(), "R0GHJK23");
}

TEST_F(RadioSessionTest, PowerOnWithoutAReplyGivesUpAfter4800MillisecondsOfWaiting) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrPowerOn(true)); }), Milliseconds(400 + 4800));
  EXPECT_TRUE(Wrote({kSetup, kSetupBefore, kPowerOn})) << "no second attempt";
}

TEST_F(RadioSessionTest, APowerOffReplySatisfiesPowerOnToo) {
  OpenPort();
  Reply(kPowerOn, "5A A5 00 02 81 00 ED ED", 10);
  EXPECT_TRUE(session.pcrPowerOn(false));
}

TEST_F(RadioSessionTest, AnEarlierPowerReplySatisfiesNoLaterCommand) {
  OpenPort();
  port.WhenWritten(Bytes(kPowerOn), Bytes(kPowerOnReply), Milliseconds(20), 0, 1);
  EXPECT_TRUE(session.pcrPowerOn(false));
  EXPECT_FALSE(session.pcrPowerOn(false));
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_FALSE(session.pcrPowerOff());
}

TEST_F(RadioSessionTest, NoEventRunsInThePausesOfPowerOn) {
  OpenPort();
  Reply(kSetup, "5A A5 00 02 81 00 ED ED", 10);  // in the first pause
  int ticks = 0;
  const auto timer = loop.MakeTimer(Milliseconds(50), [&] { ++ticks; });
  timer->SetEnabled(true);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrPowerOn(false)); }), Milliseconds(800));
  EXPECT_EQ(ticks, 1) << "in the one moment of waiting";
}

TEST_F(RadioSessionTest, PowerOnForgetsWhatIsAwaitedOnlyWithBypassBlock) {
  OpenPort();
  session.HoldCommands(true);
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  EXPECT_EQ(session.pcrNumBlockedCmds(), 1);
  EXPECT_FALSE(session.pcrPowerOn(true));
  EXPECT_EQ(session.pcrNumBlockedCmds(), 0);
  EXPECT_TRUE(Wrote({"01", kSetup, kSetupBefore, kPowerOn}));
}

TEST_F(RadioSessionTest, PowerOffWaitsForItsReply) {
  OpenPort();
  Reply(kPowerOff, "5A A5 00 02 81 00 ED ED", 310);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrPowerOff()); }), Milliseconds(450));
  EXPECT_TRUE(Wrote({kPowerOff}));
}

TEST_F(RadioSessionTest, PowerOffGivesUpAfter4500Milliseconds) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrPowerOff()); }), Milliseconds(4500));
}

TEST_F(RadioSessionTest, AWaitRunsOutOnceTheProgramShutsDown) {
  OpenPort();
  Reply(kPowerOff, "5A A5 00 02 81 00 ED ED", 310);
  const auto closing = loop.MakeTimer(Milliseconds(200), [this] { run.ShuttingDown = true; });
  closing->SetEnabled(true);
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrPowerOff()); }), Milliseconds(4500));
}

// The identifier.

TEST_F(RadioSessionTest, TheIdentifierIsAskedForOnce) {
  OpenPort();
  Reply(kRadioID, kRadioIDReply, 20);
  EXPECT_EQ(TimeOf([this] { EXPECT_EQ(session.pcrRadioID(), "R0GHJK23"); }), Milliseconds(150));
  EXPECT_TRUE(Wrote({kRadioID}));
  EXPECT_EQ(TimeOf([this] { EXPECT_EQ(session.pcrRadioID(), "R0GHJK23"); }), Milliseconds(0));
  EXPECT_TRUE(Wrote({}));
}

TEST_F(RadioSessionTest, AKnownIdentifierNeedsNoOpenPort) {
  OpenPort();
  Arrive(kRadioIDReply);
  session.SetPortOpen(false);
  EXPECT_EQ(session.pcrRadioID(), "R0GHJK23");
}

TEST_F(RadioSessionTest, AnIdentifierThatDoesNotComeStaysEmptyAfter1500Milliseconds) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_EQ(session.pcrRadioID(), ""); }), Milliseconds(1500));
}

TEST_F(RadioSessionTest, AnIdentifierFromBeforeTheSearchAnswersNoLaterRequest) {
  OpenPort(3);
  Arrive(kRadioIDReply);
  port.Refuse(0, "No such device");
  FindPort();
  port.Refuse(3, "");
  OpenPort(3);
  Reply(kRadioID, kRadioIDReply, 310);
  EXPECT_EQ(TimeOf([this] { EXPECT_EQ(session.pcrRadioID(), "R0GHJK23"); }), Milliseconds(450));
}

TEST_F(RadioSessionTest, AnEarlierRefusalPowersNoRadioOn) {
  OpenPort();
  Arrive("5A A5 00 01 FF ED ED");
  Reply(kRadioID, kRadioIDReply, 20);
  EXPECT_EQ(session.pcrRadioID(), "R0GHJK23");
  EXPECT_TRUE(Wrote({kRadioID}));
}

TEST_F(RadioSessionTest, ARadioThatIsOffIsPoweredOnForItsIdentifier) {
  OpenPort();
  Reply(kRadioID, "5A A5 00 01 FF ED ED", 20);
  Reply(kPowerOn, kPowerOnReply, 20);
  EXPECT_EQ(session.pcrRadioID(), "R0GHJK23");
  EXPECT_TRUE(Wrote(
      {kRadioID, kSetup, kSetupBefore, kPowerOn, kSetupAfter1, kSetupAfter2, kSetupAfter3, kSetupDone}));
}

// Channels.

TEST_F(RadioSessionTest, SelectChannelWaitsForTheConfirmationOfItsChannel) {
  OpenPort();
  Reply("5A A5 00 06 10 02 B5 00 00 01 01 19", "5A A5 00 06 90 01 00 B5 00 00 ED ED", 160);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrSelectChannel(181)); }), Milliseconds(300));
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 B5 00 00 01 01 19"}));
}

TEST_F(RadioSessionTest, TheChannelByteIsTwoHexDigitsAndTheTailStaysTheSame) {
  OpenPort();
  EXPECT_FALSE(session.pcrSelectChannel(9));
  EXPECT_FALSE(session.pcrSelectChannel(10));
  EXPECT_FALSE(session.pcrSelectChannel(255));
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 09 00 00 01 01 19", "5A A5 00 06 10 02 0A 00 00 01 01 19",
                     "5A A5 00 06 10 02 FF 00 00 01 01 19"}));
}

TEST_F(RadioSessionTest, SelectChannelGivesUpAfter1500Milliseconds) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrSelectChannel(9)); }), Milliseconds(1500));
}

TEST_F(RadioSessionTest, ARefusedChannelTimesOut) {
  OpenPort();
  Reply("5A A5 00 06 10 02 09 00 00 01 01 19", "5A A5 00 06 90 04 00 09 00 00 ED ED", 20);
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrSelectChannel(9)); }), Milliseconds(1500));
}

TEST_F(RadioSessionTest, AConfirmationOfAnotherChannelDoesNotCount) {
  OpenPort();
  Reply("5A A5 00 06 10 02 09 00 00 01 01 19", "5A A5 00 06 90 01 00 0A 00 00 ED ED", 20);
  EXPECT_FALSE(session.pcrSelectChannel(9));
}

TEST_F(RadioSessionTest, TheChannelConfirmedLastIsTrueAtOnceThoughAFrameGoesOut) {
  OpenPort();
  Arrive("5A A5 00 06 90 01 00 09 00 00 ED ED");
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrSelectChannel(9)); }), Milliseconds(0));
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 09 00 00 01 01 19"}));
}

TEST_F(RadioSessionTest, SelectChannelRefusesWhatIsNoChannelAtOnceWithoutAFrame) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] {
              for (const std::int16_t number : {0, 256, -1, 32767, -32768}) {
                EXPECT_FALSE(session.pcrSelectChannel(number)) << number;
              }
            }),
            Milliseconds(0));
  EXPECT_TRUE(Wrote({}));
}

TEST_F(RadioSessionTest, ChannelInfoIsAskedForWithoutWaitingAndReturnsFalse) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrGetChannelInfo(45)); }), Milliseconds(0));
  EXPECT_FALSE(session.pcrGetChannelInfo(255));
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 08 2D 00 ED ED", "5A A5 00 04 25 08 FF 00 ED ED"}));
}

TEST_F(RadioSessionTest, ChannelInfoOfWhatIsNoChannelSendsNoFrame) {
  OpenPort();
  for (const std::int16_t number : {0, 256, -1}) EXPECT_FALSE(session.pcrGetChannelInfo(number));
  EXPECT_TRUE(Wrote({}));
}

TEST_F(RadioSessionTest, EnumerationSendsAFrameForEveryNumber) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] {
              for (const std::int16_t number : {0, 1, 181, 255, 256, 300, -1}) {
                EXPECT_TRUE(session.pcrEnumerateChannels(number));
              }
            }),
            Milliseconds(0));
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 00 00 ED ED", "5A A5 00 04 25 09 01 00 ED ED",
                     "5A A5 00 04 25 09 B5 00 ED ED", "5A A5 00 04 25 09 FF 00 ED ED",
                     "5A A5 00 04 25 09 00 00 ED ED", "5A A5 00 04 25 09 2C 00 ED ED",
                     "5A A5 00 04 25 09 FF 00 ED ED"}));
}

// Signal and mute.

TEST_F(RadioSessionTest, SignalLevelsAreAskedForWithoutWaiting) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrGetSignalLevels()); }), Milliseconds(0));
  EXPECT_TRUE(Wrote({"5A A5 00 01 43 ED ED"}));
  EXPECT_EQ(session.pcrSat1SignalQuality() + session.pcrSat2SignalQuality() + session.pcrTerSignalQuality(),
            0);
}

TEST_F(RadioSessionTest, OnlyTheFirstMuteOfARunWaits) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(session.pcrMute(true)); }), Milliseconds(1500));
  Reply(kMuteOn, kMuteReply, 20);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrMute(true)); }), Milliseconds(150));
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrMute(false)); }), Milliseconds(0));
  EXPECT_TRUE(Wrote({kMuteOn, kMuteOn, kMuteOff}));
}

TEST_F(RadioSessionTest, TheVersionSaysWhatItIsNotFor) {
  EXPECT_EQ(radio::RadioSession::pcrVersion(), "3.0.29 NOT FOR COMMERCIAL USE");
}

TEST_F(RadioSessionTest, TheTextPropertiesAreTrimmedAgain) {
  OpenPort();
  port.Arrive(ChannelInfoFrame(9, "  Station ", " Genre", "Artist  ", " Song "));
  loop.Run(Milliseconds(0));
  EXPECT_EQ(session.pcrStation(), "Station");
  EXPECT_EQ(session.pcrGenre(), "Genre");
  EXPECT_EQ(session.pcrArtist(), "Artist");
  EXPECT_EQ(session.pcrSong(), "Song");
}

// Re-entry in a wait.

TEST_F(RadioSessionTest, ATimerMaySendWithinAWaitAndBothRepliesAreRead) {
  OpenPort();
  Reply("5A A5 00 06 10 02 09 00 00 01 01 19", "5A A5 00 06 90 01 00 09 00 00 ED ED", 400);
  Reply("5A A5 00 04 25 08 2D 00 ED ED", "5A A5 00 01 E3 ED ED", 30);
  const auto timer = loop.MakeTimer(Milliseconds(200), [this] { session.pcrGetChannelInfo(45); });
  timer->SetEnabled(true);
  EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(session.pcrSelectChannel(9)); }), Milliseconds(450));
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 09 00 00 01 01 19", "5A A5 00 04 25 08 2D 00 ED ED"}));
  EXPECT_THAT(WriteTimes(), ElementsAre(0, 300));
}

TEST_F(RadioSessionTest, TwoOperationsCanWaitOnOneFlag) {
  OpenPort();
  Reply(kMuteOn, kMuteReply, 400);
  bool inner = false;
  std::unique_ptr<base::Timer> once;
  once = loop.MakeTimer(Milliseconds(100), [&] {
    once->SetEnabled(false);
    inner = session.pcrMute(false);
  });
  once->SetEnabled(true);
  EXPECT_TRUE(session.pcrMute(true));
  EXPECT_TRUE(inner) << "it saw the other's reply";
  EXPECT_TRUE(Wrote({kMuteOn, kMuteOff}));
}

// The search.

TEST_F(RadioSessionTest, TheSearchTriesPorts1To16AndCostsNothingIfNoneOpens) {
  port.Refuse(0, "No such device");
  EXPECT_EQ(TimeOf([this] { FindPort(); }), Milliseconds(0));
  Strings tried;
  for (const std::string& call : port.Calls()) {
    if (call.starts_with("CommPort")) tried.push_back(call);
  }
  Strings all;
  for (int number = 1; number <= 16; ++number) all.push_back("CommPort " + std::to_string(number));
  EXPECT_EQ(tried, all);
  EXPECT_FALSE(session.pcrPortOpen());
  EXPECT_EQ(session.pcrCOMPort(), 16);
  EXPECT_EQ(session.Replies().pcrRadioID, "");
  EXPECT_EQ(session.pcrLastError(), "No such device");
  EXPECT_THAT(journal.Debug, IsEmpty());
}

TEST_F(RadioSessionTest, TheSearchStopsAtTheRadioAndLeavesItsPortOpen) {
  port.Refuse(0, "No such device");
  port.Refuse(2, "");
  port.Refuse(7, "");
  port.Refuse(9, "");
  Reply(kPowerOn, kPowerOnReply, 100, 7);
  // 500 ms and a failed power on at port 2; then 500 ms and one that works at port 7.
  EXPECT_EQ(TimeOf([this] { FindPort(); }), Milliseconds(500 + 400 + 4800 + 500 + 400 + 120 + 400));
  EXPECT_TRUE(session.pcrPortOpen());
  EXPECT_EQ(session.pcrCOMPort(), 7);
  EXPECT_EQ(session.pcrRadioID(), "R0GHJK23");
  EXPECT_THAT(journal.Debug, ElementsAre("Opened port 2", "Opened port 7"));
}

TEST_F(RadioSessionTest, ASearchInVainOverSixteenOpenPortsEndsClosed) {
  EXPECT_EQ(TimeOf([this] { FindPort(); }), Milliseconds(16 * 5700));
  EXPECT_FALSE(session.pcrPortOpen());
  EXPECT_EQ(session.pcrCOMPort(), 16);
  EXPECT_FALSE(session.pcrWaitingForResponse());
}

TEST_F(RadioSessionTest, TheSearchForgetsTheIdentifier) {
  OpenPort();
  Arrive(kRadioIDReply);
  port.Refuse(0, "No such device");
  FindPort();
  EXPECT_EQ(session.pcrRadioID(), "");
}

TEST_F(RadioSessionTest, ADeviceThatTalksIsDrainedBeforeItIsAsked) {
  OpenPort();
  for (int count = 0; count < 3; ++count) port.ArriveAfter(Milliseconds(50 + count * 100), "abc");
  port.Arrive("abc");
  EXPECT_EQ(TimeOf([this] { session.DrainInput(); }), Milliseconds(400));
  EXPECT_EQ(port.Waiting(), 0U);
}

TEST_F(RadioSessionTest, TheSearchDrainsAPortBeforeItAsksThere) {
  port.Refuse(0, "No such device");
  port.Refuse(2, "");
  port.GreetWith("ab");
  port.ArriveAfter(Milliseconds(50), "cd");
  FindPort();
  ASSERT_FALSE(port.Writes().empty());
  EXPECT_EQ(port.Writes().front().At, Milliseconds(2 * 100 + 500));
}

TEST_F(RadioSessionTest, ADeviceThatNeverStopsTalkingHoldsUpTheSearchForFiveSecondsAtMost) {
  OpenPort();
  for (int count = 0; count < 200; ++count) port.ArriveAfter(Milliseconds(count * 50), "a");
  port.Arrive("a");
  EXPECT_EQ(TimeOf([this] { session.DrainInput(); }), Milliseconds(5000));
}

TEST_F(RadioSessionTest, EachPortWithoutARadioIsReportedWithItsReason) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  port.Refuse(5, "the line is in use");
  FindPort();
  ASSERT_EQ(failedTrials.size(), 16U);
  EXPECT_EQ(failedTrials[0].Port, 1);
  EXPECT_EQ(failedTrials[0].Why, radio::PortTrial::Reason::NoDevice);
  EXPECT_EQ(failedTrials[1].Why, radio::PortTrial::Reason::NoAnswer);
  EXPECT_EQ(failedTrials[4].Why, radio::PortTrial::Reason::NotOpened);
  EXPECT_EQ(failedTrials[4].Cause, "the line is in use");
}

}  // namespace
}  // namespace kestrune::test
