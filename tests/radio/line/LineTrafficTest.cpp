#include <gtest/gtest.h>

#include "radio/line/LineTraffic.h"
#include "support/Bytes.h"
#include "support/RadioFrames.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using radio::ReplyType;
using radio::Tuning;

constexpr const char* kAskChannel = "5A A5 00 04 25 08 2D 00 ED ED";
constexpr const char* kAskSignal = "5A A5 00 01 43 ED ED";
constexpr const char* kOffRefusal = "5A A5 00 02 FF 25 ED ED";
constexpr const char* kTuneTo9 = "5A A5 00 06 10 02 09 00 00 01 01 19";
constexpr const char* kTuneTo45 = "5A A5 00 06 10 02 2D 00 00 01 01 19";
constexpr const char* kTunedTo9 = "5A A5 00 06 90 01 00 09 00 00 ED ED";
constexpr const char* kTunedTo45 = "5A A5 00 06 90 01 00 2D 00 00 ED ED";
constexpr const char* kRefusedTuning = "5A A5 00 06 90 02 00 09 00 00 ED ED";

class LineTrafficTest : public ::testing::Test {
 protected:
  void Sent(const char* hex, std::chrono::milliseconds at = 0ms) { traffic.Sent(Bytes(hex), at); }
  void Received(const char* hex, std::chrono::milliseconds at = 0ms) { traffic.Received(Bytes(hex), at); }
  void ChannelInfo(std::chrono::milliseconds at) {
    traffic.Received(ChannelInfoFrame(45, "Deep Tracks", "Rock", "THE FOX", "Nightfall"), at);
  }

  radio::LineTraffic traffic;
};

// Requests without a reply.

TEST_F(LineTrafficTest, RequestsCountUntilAReplyOfAnyKind) {
  Sent(kAskChannel);
  Sent(kAskSignal);
  Sent(kTuneTo9);
  EXPECT_EQ(traffic.Unanswered(), 3);
  Received("5A A5 00 02 E3 01 ED ED");
  EXPECT_EQ(traffic.Unanswered(), 0);
}

TEST_F(LineTrafficTest, SetupStepsAwaitNoReply) {
  for (const char* const step : {"5A A5 00 03 74 00 01 01 77", "5A A5 00 02 74 0D 01 82",
                                 "5A A5 00 04 74 02 01 01 01 7B", "5A A5 00 01 40 01 40"}) {
    Sent(step);
  }
  EXPECT_EQ(traffic.Unanswered(), 0);
  Sent("5A A5 00 05 00 10 10 10 01 ED ED");
  EXPECT_EQ(traffic.Unanswered(), 1);
}

TEST_F(LineTrafficTest, NoiseIsNoReply) {
  Sent(kAskChannel);
  Received("00 00 00 00 A5 00 00");
  Received("5A A5 00 02 25 00 ED ED");
  Received("");
  EXPECT_EQ(traffic.Unanswered(), 1);
}

TEST_F(LineTrafficTest, AnOpenedLineBeginsAnew) {
  Sent(kAskChannel);
  Received(kOffRefusal);
  Sent(kAskChannel);
  traffic.LineOpened(7s);
  EXPECT_EQ(traffic.Unanswered(), 0);
  EXPECT_EQ(traffic.OffRefusals(), 0);
  EXPECT_EQ(traffic.LastReply(), 7s);
}

// Refusals.

TEST_F(LineTrafficTest, RefusalsCountAsLongAsNothingElseComes) {
  ChannelInfo(1s);
  for (int count = 0; count < 2; ++count) Received(kOffRefusal, 2s);
  EXPECT_EQ(traffic.OffRefusals(), 2);
  EXPECT_EQ(traffic.LastReply(), 1s) << "a refusal is not what was asked for";
  ChannelInfo(3s);
  EXPECT_EQ(traffic.OffRefusals(), 0);
  EXPECT_EQ(traffic.LastReply(), 3s);
}

TEST_F(LineTrafficTest, ARefusalAnswersARequest) {
  Sent(kAskChannel);
  Received(kOffRefusal);
  EXPECT_EQ(traffic.Unanswered(), 0);
}

// Gaps.

TEST_F(LineTrafficTest, OneLostReplyIsNoGap) {
  Sent(kAskChannel, 10s);
  Sent(kAskChannel, 12s);
  ChannelInfo(12090ms);
  EXPECT_EQ(traffic.Gaps(), 0U);
}

TEST_F(LineTrafficTest, ALateReplyToOneRequestIsNoGap) {
  Sent(kAskChannel, 10s);
  ChannelInfo(13s);
  EXPECT_EQ(traffic.Gaps(), 0U);
}

TEST_F(LineTrafficTest, TwoLostRepliesAreAGap) {
  Sent(kAskChannel, 10s);
  Sent(kAskChannel, 12s);
  Sent(kAskChannel, 14s);
  EXPECT_EQ(traffic.Gaps(), 0U) << "not before it ends";
  ChannelInfo(14090ms);
  EXPECT_EQ(traffic.Gaps(), 1U);
  Sent(kAskChannel, 15s);
  ChannelInfo(15090ms);
  EXPECT_EQ(traffic.Gaps(), 1U);
}

// The identifier.

TEST_F(LineTrafficTest, TheIdentifierIsThatOfTheLastRadioThatReportedOne) {
  EXPECT_EQ(traffic.Identifier(), "");
  Received("5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED");
  EXPECT_EQ(traffic.Identifier(), "R0GHJK23");
  Received(
      "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 41 42 43 44 31 32 33 34 ED ED");
  EXPECT_EQ(traffic.Identifier(), "ABCD1234");
  EXPECT_EQ(traffic.Count(ReplyType::RadioID), 1U);
  EXPECT_EQ(traffic.Count(ReplyType::PowerOn), 1U);
}

// The channel.

TEST_F(LineTrafficTest, ASelectIsAskedUntilItsReply) {
  EXPECT_EQ(traffic.Tuning(), Tuning::NeverAsked);
  Sent(kTuneTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Asked);
  EXPECT_EQ(traffic.Selects(), 1U);
  Received(kTunedTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Confirmed);
  EXPECT_EQ(traffic.Channel(), 45);
}

TEST_F(LineTrafficTest, TheSameChannelIsAskedForAnew) {
  Sent(kTuneTo45);
  Received(kTunedTo45);
  Sent(kTuneTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Asked) << "an old reply confirms nothing";
}

TEST_F(LineTrafficTest, OfTwoSelectsTheLastOneCounts) {
  Sent(kTuneTo9);
  Sent(kTuneTo45);
  Received(kTunedTo9);
  EXPECT_EQ(traffic.Tuning(), Tuning::Asked);
  Received(kTunedTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Confirmed);
}

TEST_F(LineTrafficTest, ALostReplyBeforeIsForgottenWithTheNext) {
  Sent(kTuneTo9);
  Sent(kTuneTo45);
  Received(kTunedTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Confirmed);
  EXPECT_EQ(traffic.Channel(), 45);
}

TEST_F(LineTrafficTest, ARefusedSelectLeavesTheChannelOpen) {
  Sent(kTuneTo45);
  Received(kTunedTo45);
  Sent(kTuneTo9);
  Received(kRefusedTuning);
  EXPECT_EQ(traffic.Tuning(), Tuning::Refused);
}

TEST_F(LineTrafficTest, AChannelThatNobodyAskedForIsTheUsers) {
  Sent(kTuneTo45);
  Received(kTunedTo45);
  Received(kTunedTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Confirmed) << "said twice";
  Received(kTunedTo9);
  EXPECT_EQ(traffic.Tuning(), Tuning::ByUser);
  EXPECT_EQ(traffic.Channel(), 9);
}

TEST_F(LineTrafficTest, AUsersChannelCountsNotWhileASelectIsUnderWay) {
  Sent(kTuneTo45);
  Received(kTunedTo9);
  EXPECT_EQ(traffic.Tuning(), Tuning::Asked);
  Received(kTunedTo45);
  EXPECT_EQ(traffic.Tuning(), Tuning::Confirmed);
}

TEST_F(LineTrafficTest, AnOpenedLineMakesAChannelDoubtful) {
  traffic.LineOpened(0s);
  EXPECT_EQ(traffic.Tuning(), Tuning::NeverAsked);
  Sent(kTuneTo45);
  Received(kTunedTo45);
  traffic.LineOpened(1s);
  EXPECT_EQ(traffic.Tuning(), Tuning::Doubtful);
}

}  // namespace
}  // namespace kestrune::test
