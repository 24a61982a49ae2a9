// Bytes in, state out: the receive path on a scripted line.
#include <algorithm>
#include <cstdio>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/SessionFixture.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ReceivePathTest : public SessionFixture {
 protected:
  ReceivePathTest() {
    OpenPort();
    journal.Traced.clear();
  }
};

constexpr std::string_view kPowerOnReply =
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr std::string_view kSetupCommand = "5A A5 00 03 74 00 01 01 77";

// Every reply that the program knows.

TEST_F(ReceivePathTest, PowerOnReply) {
  Arrive(kPowerOnReply);
  EXPECT_EQ(session.Replies().pcrRadioID, "R0GHJK23");
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
  EXPECT_EQ(journal.Traced.back(), "!PowerOn");
}

TEST_F(ReceivePathTest, PowerOffReply) {
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
  EXPECT_EQ(session.Replies().pcrRadioID, "");
  EXPECT_THAT(journal.Traced, ElementsAre("< 5A A5 00 02 81 00 ED ED ", "!PowerOff"));
}

TEST_F(ReceivePathTest, ChannelSetReply) {
  Arrive("5A A5 00 06 90 01 00 2D 00 00 ED ED");
  EXPECT_TRUE(session.Replies().pcrChannelSetSeen);
  EXPECT_EQ(session.Replies().pcrChannelSetNumber, 45);
  EXPECT_EQ(journal.Traced.back(), "!ChannelSetOK 45");
}

TEST_F(ReceivePathTest, ARefusedChannelSetsNothingButIsTraced) {
  Arrive("5A A5 00 06 90 01 00 2D 00 00 ED ED");
  Arrive("5A A5 00 06 90 04 00 63 00 00 ED ED");
  EXPECT_EQ(session.Replies().pcrChannelSetNumber, 45);
  EXPECT_EQ(journal.Traced.back(), "!ChannelSetOK 99");
}

TEST_F(ReceivePathTest, MuteReply) {
  Arrive("5A A5 00 04 93 01 00 01 ED ED");
  EXPECT_TRUE(session.Replies().pcrMuteReplySeen);
  EXPECT_FALSE(session.Replies().pcrMuteState);
  EXPECT_EQ(journal.Traced.back(), "!Mute 1");
  Arrive("5A A5 00 04 93 01 00 31 ED ED");
  EXPECT_TRUE(session.Replies().pcrMuteState);
  EXPECT_EQ(journal.Traced.back(), "!Mute 49");
}

TEST_F(ReceivePathTest, ChannelInfoReply) {
  port.Arrive(ChannelInfoFrame(45, "Deep Tracks", "Rock", "THE FOX", "Nightfall"));
  loop.Run(Milliseconds(0));
  ASSERT_EQ(infos.size(), 1U);
  EXPECT_EQ(infos[0].Channel, 45);
  EXPECT_EQ(infos[0].Genre, "Rock");
  EXPECT_EQ(infos[0].Station, "Deep Tracks");
  EXPECT_EQ(infos[0].Artist, "The Fox");
  EXPECT_EQ(infos[0].Song, "Nightfall");
  EXPECT_EQ(session.pcrChannel(), 45);
  EXPECT_EQ(session.pcrGenre(), "Rock");
  EXPECT_EQ(session.pcrStation(), "Deep Tracks");
  EXPECT_EQ(session.pcrArtist(), "The Fox");
  EXPECT_EQ(session.pcrSong(), "Nightfall");
  EXPECT_EQ(journal.Traced.back(), "!ChannelInfo 45");
}

TEST_F(ReceivePathTest, AReplyForAnotherChannelReplacesAllFiveFields) {
  port.Arrive(ChannelInfoFrame(45, "Deep Tracks", "Rock", "The Fox", "Nightfall"));
  port.Arrive(ChannelInfoFrame(9, "", "", "", ""));
  loop.Run(Milliseconds(0));
  EXPECT_EQ(session.pcrChannel(), 9);
  EXPECT_EQ(session.pcrGenre() + session.pcrStation() + session.pcrArtist() + session.pcrSong(), "");
  ASSERT_EQ(infos.size(), 2U);
  EXPECT_EQ(infos[1].Channel, 9);
}

TEST_F(ReceivePathTest, RadioIdentifierReply) {
  Arrive("5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED");
  EXPECT_EQ(session.Replies().pcrRadioID, "R0GHJK23");
  EXPECT_TRUE(session.Replies().pcrRadioIDSeen);
  EXPECT_EQ(journal.Traced.back(), "!RadioID R0GHJK23");
}

TEST_F(ReceivePathTest, SignalReply) {
  Arrive("5A A5 00 1A C3 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 AA 00 00 00 00 00 00 36 46 ED ED");
  EXPECT_THAT(signalReplies, ElementsAre("80 99 80"));
  EXPECT_EQ(session.pcrSat1SignalQuality(), 80);
  EXPECT_EQ(session.pcrSat2SignalQuality(), 99);
  EXPECT_EQ(session.pcrTerSignalQuality(), 80);
  EXPECT_EQ(journal.Traced.back(), "!Signal 80 99 80");
}

TEST_F(ReceivePathTest, TheSilentReplyLeavesOnlyTheFrameLineInTheTrace) {
  Arrive("5A A5 00 01 E3 ED ED");
  EXPECT_THAT(journal.Traced, ElementsAre("< 5A A5 00 01 E3 ED ED "));
}

TEST_F(ReceivePathTest, ARadioThatAsksForSetupGetsItAndHalfASecondOfQuiet) {
  int ticks = 0;
  const auto timer = loop.MakeTimer(Milliseconds(100), [&] { ++ticks; });
  timer->SetEnabled(true);
  port.Arrive(Bytes("5A A5 00 01 F2 ED ED"));
  EXPECT_EQ(TimeOf([this] { session.pcrComm_OnComm(); }), Milliseconds(500));
  EXPECT_TRUE(Wrote({std::string(kSetupCommand)}));
  EXPECT_LE(ticks, 1) << "events wait for the end of the quiet";
}

TEST_F(ReceivePathTest, PowerIsOffReply) {
  Arrive("5A A5 00 01 FF ED ED");
  EXPECT_TRUE(session.Replies().pcrPowerIsOff);
  EXPECT_EQ(journal.Traced.back(), "!PowerIsOffCmdReject");
}

TEST_F(ReceivePathTest, EveryOtherTypeIsTracedAsInvalidAndChangesNoField) {
  const std::vector<int> known = {0x80, 0x81, 0x90, 0x93, 0xA5, 0xB1, 0xC3, 0xE3, 0xF2, 0xFF};
  for (int type = 0; type < 256; ++type) {
    if (std::find(known.begin(), known.end(), type) != known.end()) continue;
    journal.Traced.clear();
    const std::string frame = Bytes("5A A5 00 01") + static_cast<char>(type) + Bytes("ED ED");
    port.Arrive(frame);
    loop.Run(Milliseconds(0));
    ASSERT_EQ(journal.Traced.size(), 2U) << type;
    char line[32];
    std::snprintf(line, sizeof line, "!InvalidMsgType %02X", static_cast<unsigned>(type));
    EXPECT_EQ(journal.Traced[1], line);
    EXPECT_EQ(session.pcrLastResponse(), frame);
  }
  EXPECT_THAT(infos, IsEmpty());
  EXPECT_THAT(signalReplies, IsEmpty());
  EXPECT_THAT(port.Writes(), IsEmpty());
  EXPECT_FALSE(session.Replies().pcrPowerReplySeen);
}

// Frames in pieces.

TEST_F(ReceivePathTest, AFrameInTwoHalvesArmsTheTimerAndIsHandledAsOne) {
  const std::string frame = ChannelInfoFrame(45, "Deep Tracks", "Rock", "The Fox", "Nightfall");
  port.Arrive(frame.substr(0, 40));
  loop.Run(Milliseconds(0));
  EXPECT_THAT(infos, IsEmpty());
  loop.Run(Milliseconds(90));
  port.Arrive(frame.substr(40));
  loop.Run(Milliseconds(0));
  ASSERT_EQ(infos.size(), 1U);
  EXPECT_EQ(infos[0].Song, "Nightfall");
}

TEST_F(ReceivePathTest, NothingPollsForThePiecesOfABufferTooShortToExamine) {
  port.Arrive(Bytes("5A A5 00 02 81"));
  loop.Run(Milliseconds(0));
  port.Arrive(Bytes("00 ED ED"));
  loop.Run(Milliseconds(0));
  loop.Run(Milliseconds(1000));
  EXPECT_EQ(port.Waiting(), 3U) << "three bytes cause no notification";
  EXPECT_FALSE(session.Replies().pcrPowerReplySeen);
  port.Arrive(Bytes("5A A5"));
  loop.Run(Milliseconds(0));
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
}

TEST_F(ReceivePathTest, APartialFrameIsPolledEvery40Milliseconds) {
  port.Arrive(Bytes("5A A5 00 04 93 01 00"));
  loop.Run(Milliseconds(0));
  port.ArriveAfter(Milliseconds(65), Bytes("31 ED ED"));  // below the threshold
  loop.Run(Milliseconds(79));
  EXPECT_FALSE(session.Replies().pcrMuteReplySeen);
  loop.Run(Milliseconds(1));
  EXPECT_TRUE(session.Replies().pcrMuteReplySeen);
}

TEST_F(ReceivePathTest, TheRestOfAFrameMayComeWithThePoll) {
  port.Arrive(Bytes("5A A5 00 1B 80 00 00 00 00 00"));
  loop.Run(Milliseconds(0));
  EXPECT_THAT(port.Held(), ElementsAre(Milliseconds(40)));
}

TEST_F(ReceivePathTest, TheBeginningOfWhatIsKnownOfAChannelMayWait) {
  session.pcrGetChannelInfo(44);
  EXPECT_THAT(port.Held(), ElementsAre(Milliseconds(60)));
  session.pcrEnumerateChannels(44);
  session.pcrEnumerateChannels(0);
  EXPECT_THAT(port.Held(), SizeIs(3));
}

TEST_F(ReceivePathTest, OtherAnswersAreShortAndNotHeld) {
  session.pcrGetSignalLevels();
  session.pcrGetChannelInfo(-1);
  EXPECT_THAT(port.Held(), IsEmpty());
}

TEST_F(ReceivePathTest, WholeFramesHoldNothing) {
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_THAT(port.Held(), IsEmpty());
}

TEST_F(ReceivePathTest, APartialFrameWaitsWithoutLimitAndTheTimerStopsAfterIt) {
  port.Arrive(Bytes("5A A5 00 04 93 01 00"));
  loop.Run(Milliseconds(3'600'000));
  const auto before = loop.HandlersRun();
  loop.Run(Milliseconds(400));
  EXPECT_EQ(loop.HandlersRun() - before, 10U) << "a poll every 40 ms";
  port.Arrive(Bytes("31 ED ED"));
  loop.Run(Milliseconds(40));
  EXPECT_TRUE(session.Replies().pcrMuteState);
  const auto after = loop.HandlersRun();
  loop.Run(Milliseconds(1000));
  EXPECT_EQ(loop.HandlersRun(), after);
}

TEST_F(ReceivePathTest, TwoFramesInOneReadAreHandledInOneRunInOrder) {
  port.Arrive(ChannelInfoFrame(9, "A", "", "", "") + ChannelInfoFrame(10, "B", "", "", ""));
  session.pcrComm_OnComm();
  ASSERT_EQ(infos.size(), 2U);
  EXPECT_EQ(infos[0].Channel, 9);
  EXPECT_EQ(infos[1].Channel, 10);
}

TEST_F(ReceivePathTest, ExactlySixBytesWaitForMore) {
  Arrive("5A A5 00 00 ED ED");
  loop.Run(Milliseconds(1000));
  EXPECT_EQ(session.pcrLastResponse(), "");
  EXPECT_THAT(journal.Traced, IsEmpty());
  Arrive("5A A5 00 01 E3");
  EXPECT_EQ(session.pcrLastResponse(), Bytes("5A A5 00 00 ED ED"));
  EXPECT_EQ(journal.Traced.back(), "!InvalidMsgType ED");
}

TEST_F(ReceivePathTest, ThreeJunkBytesBeforeAFrameAreCut) {
  Arrive("00 FF 5A 5A A5 00 02 81 00 ED ED");
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
  EXPECT_EQ(session.JunkBytes(), 3U);
  EXPECT_EQ(session.pcrLastResponse(), Bytes("5A A5 00 02 81 00 ED ED"));
}

TEST_F(ReceivePathTest, JunkIsHandledAsAFrameIfItsFifthByteIsAType) {
  Arrive("11 11 11 11 81 11 11");
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
  EXPECT_EQ(session.pcrLastResponse(), Bytes("11 11 11 11 81 11"));
  EXPECT_EQ(session.JunkBytes(), 6U);
}

TEST_F(ReceivePathTest, ATruncatedFrameSwallowsWhatFollowsAndThenTheReaderFindsItsFeet) {
  Arrive("5A A5 00 0A 93 01 ");
  Arrive("5A A5 00 01 E3 ED ED");
  Arrive("5A A5 00 01 81 ED ED");
  EXPECT_TRUE(session.Replies().pcrMuteReplySeen);
  EXPECT_FALSE(session.Replies().pcrPowerReplySeen);
  Arrive("5A A5 00 01 FF ED ED");
  EXPECT_TRUE(session.Replies().pcrPowerIsOff);
}

TEST_F(ReceivePathTest, ZeroBytesAreKept) {
  Arrive("5A A5 00 03 00 00 00 00 00");
  EXPECT_EQ(session.pcrLastResponse(), std::string("\x5A\xA5\x00\x03\x00\x00\x00\x00\x00", 9));
}

TEST_F(ReceivePathTest, BytesLeftOverFromOnePortAreParsedWithTheNextOnes) {
  Arrive("5A A5 00 04 93 01 00");
  session.SetPortOpen(false);
  OpenPort(4);
  Arrive("31 ED ED 5A A5");
  EXPECT_TRUE(session.Replies().pcrMuteState);
}

// What is awaited.

TEST_F(ReceivePathTest, AnyFrameEndsTheWaitForAResponseAnInvalidOneToo) {
  for (const char* reply : {"5A A5 00 02 81 00 ED ED", "5A A5 00 01 12 ED ED"}) {
    session.pcrSendBinary(Bytes("5A A5 00 01 43 ED ED"));
    EXPECT_TRUE(session.pcrWaitingForResponse());
    Arrive(reply);
    EXPECT_FALSE(session.pcrWaitingForResponse());
  }
}

TEST_F(ReceivePathTest, ARequestSentFromWithinAReplysHandlerIsNotAwaited) {
  session.pcrChannelInfoReceived = [this](const radio::ChannelInfo&) { session.pcrEnumerateChannels(0); };
  port.Arrive(EndOfListFrame());
  loop.Run(Milliseconds(0));
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 00 00 ED ED"}));
  EXPECT_FALSE(session.pcrWaitingForResponse());
}

TEST_F(ReceivePathTest, AWriteIsAwaitedEvenIfThePortHasDied) {
  port.Die();
  session.pcrRawSend(Bytes("5A A5 00 01 43 ED ED"), false);
  EXPECT_TRUE(session.pcrWaitingForResponse());
}

TEST_F(ReceivePathTest, SendBinaryWritesOnlyToAnOpenPort) {
  session.pcrSendBinary(Bytes("01 02"));
  EXPECT_TRUE(Wrote({"01 02"}));
  EXPECT_EQ(journal.Traced.back(), "> 01 02 ");
  session.SetPortOpen(false);
  session.pcrSendBinary(Bytes("01 02"));
  EXPECT_TRUE(Wrote({}));
  EXPECT_FALSE(session.pcrWaitingForResponse());
}

TEST_F(ReceivePathTest, NothingIsTracedWithoutATraceFile) {
  journal.TraceOpen = false;
  session.pcrSendBinary(Bytes("01 02"));
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_THAT(journal.Traced, IsEmpty());
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
}

// Re-entry.

TEST_F(ReceivePathTest, ANotificationNestedInARunIsReadByTheOuterRun) {
  int depth = 0;
  session.pcrChannelInfoReceived = [&](const radio::ChannelInfo& info) {
    EXPECT_EQ(depth, 0) << "handlers do not nest";
    ++depth;
    infos.push_back(info);
    if (info.Channel == 9) {
      port.Arrive(ChannelInfoFrame(10, "B", "", "", ""));
      loop.PumpEvents();
      EXPECT_EQ(infos.size(), 1U);
    }
    --depth;
  };
  port.Arrive(ChannelInfoFrame(9, "A", "", "", ""));
  session.pcrComm_OnComm();
  ASSERT_EQ(infos.size(), 2U);
  EXPECT_EQ(infos[1].Channel, 10);
}

TEST_F(ReceivePathTest, ATimerThatSendsInsideARunDoesNotDisturbIt) {
  const auto timer = loop.MakeTimer(Milliseconds(1), [this] { session.pcrGetSignalLevels(); });
  timer->SetEnabled(true);
  port.Arrive(ChannelInfoFrame(9, "A", "", "", ""));
  loop.Sleep(Milliseconds(1));
  session.pcrComm_OnComm();
  ASSERT_EQ(infos.size(), 1U);
  EXPECT_TRUE(Wrote({"5A A5 00 01 43 ED ED"}));
}

TEST_F(ReceivePathTest, NothingIsReadOnceTheProgramShutsDown) {
  run.ShuttingDown = true;
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_FALSE(session.Replies().pcrPowerReplySeen);
  EXPECT_EQ(port.Waiting(), 8U);
  // The flag is not left behind: a later run reads again.
  run.ShuttingDown = false;
  session.pcrComm_OnComm();
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
}

TEST_F(ReceivePathTest, NothingIsReadFromAClosedPort) {
  port.Die();
  session.pcrComm_OnComm();
  EXPECT_FALSE(session.pcrPortOpen());
  OpenPort();
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_TRUE(session.Replies().pcrPowerReplySeen);
}

TEST_F(ReceivePathTest, AMegabyteIsReadInOneGo) {
  std::string flood;
  const std::string frame = ChannelInfoFrame(45, "Deep Tracks", "Rock", "The Fox", "Nightfall");
  while (flood.size() < 1'000'000) flood += frame;
  journal.TraceOpen = false;
  port.Arrive(flood);
  loop.Run(Milliseconds(0));
  EXPECT_EQ(infos.size(), flood.size() / frame.size());
  EXPECT_EQ(session.JunkBytes(), 0U);
}

// The holding queue, which the program leaves off.

TEST_F(ReceivePathTest, FramesAreNeverHeldUnlessThatIsSwitchedOn) {
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  EXPECT_TRUE(Wrote({"01", "02"}));
  EXPECT_EQ(session.pcrNumBlockedCmds(), 0);
  EXPECT_EQ(TimeOf([this] { session.pcrDrainBlocked(); }), Milliseconds(0));
}

TEST_F(ReceivePathTest, AHeldFrameFollowsTheAnswerToTheOneBefore) {
  session.HoldCommands(true);
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  session.pcrRawSend(Bytes("03"), false);
  EXPECT_TRUE(Wrote({"01"}));
  EXPECT_EQ(session.pcrNumBlockedCmds(), 2);
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_TRUE(Wrote({"02"}));
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_TRUE(Wrote({"03"}));
  EXPECT_EQ(session.pcrNumBlockedCmds(), 0);
  EXPECT_TRUE(session.pcrWaitingForResponse());
}

TEST_F(ReceivePathTest, ASilentReplyCountsAsAnAnswerAndOneOfAnInvalidTypeDoesNot) {
  session.HoldCommands(true);
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  Arrive("5A A5 00 01 12 ED ED");
  EXPECT_TRUE(Wrote({"01"}));
  Arrive("5A A5 00 01 E3 ED ED");
  EXPECT_TRUE(Wrote({"02"}));
}

TEST_F(ReceivePathTest, AHeldFrameGoesOutWithoutAnAnswerAfterMoreThanFiveSeconds) {
  session.HoldCommands(true);
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  loop.Run(Milliseconds(5999));
  Arrive("5A A5 00 01 12 ED ED");  // of an invalid type, so no answer
  EXPECT_TRUE(Wrote({"01"}));
  loop.Run(Milliseconds(1));
  Arrive("5A A5 00 01 12 ED ED");
  EXPECT_TRUE(Wrote({"02"}));
}

TEST_F(ReceivePathTest, AnEleventhHeldFrameWaitsInStepsOfTenMilliseconds) {
  session.HoldCommands(true);
  for (int count = 0; count < 11; ++count) session.pcrRawSend(Bytes("01"), false);
  EXPECT_EQ(session.pcrNumBlockedCmds(), 10);
  port.ArriveAfter(Milliseconds(25), Bytes("5A A5 00 02 81 00 ED ED"));
  EXPECT_EQ(TimeOf([this] { session.pcrRawSend(Bytes("02"), false); }), Milliseconds(30));
  EXPECT_EQ(session.pcrNumBlockedCmds(), 10);
}

TEST_F(ReceivePathTest, ClosingWaitsForTheHeldFrames) {
  session.HoldCommands(true);
  session.pcrRawSend(Bytes("01"), false);
  session.pcrRawSend(Bytes("02"), false);
  port.ArriveAfter(Milliseconds(150), Bytes("5A A5 00 02 81 00 ED ED"));
  EXPECT_EQ(TimeOf([this] { session.SetPortOpen(false); }), Milliseconds(200));
  EXPECT_TRUE(Wrote({"01", "02"}));
}

}  // namespace
}  // namespace kestrune::test
