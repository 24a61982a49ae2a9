#include <gtest/gtest.h>

#include "WireBytes.h"
#include "base/Ignored.h"
#include "support/SimulatedReceiver.h"

namespace kestrune::test {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

const std::string kIdentifier = Bytes("\x5A\xA5\x00\x01\x31\xED\xED");
const std::string kIdentifierReply = Bytes("\x5A\xA5\x00\x0C\xB1\x01\x00\x01KSTR2605\x01\xCF");

class SimulatedReceiverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Radio.SetReceiveHandler([this] {
      Sizes.push_back(0);
      const std::string bytes = Radio.Input();
      Sizes.back() = bytes.size();
      Received += bytes;
    });
    Radio.SetCommPort(1);
    ASSERT_EQ(Radio.Open().Cause(), "");
  }

  SimulatedEventLoop Loop;
  SimulatedReceiver Radio{Loop};
  std::string Received;
  std::vector<std::size_t> Sizes;
};

TEST_F(SimulatedReceiverTest, AnswersThroughTheReceiveHandlerWithinTheTimeOfTheLine) {
  ASSERT_TRUE(Radio.Output(kIdentifier));
  // 7 bytes take 8 ms, the delay 20 ms, 18 bytes 19 ms.
  Loop.Run(milliseconds(46));
  EXPECT_LT(Received.size(), kIdentifierReply.size());
  Loop.Run(milliseconds(20));
  EXPECT_EQ(Received, kIdentifierReply);
}

TEST_F(SimulatedReceiverTest, NotifiesOnlyFromTheThresholdOn) {
  Radio.SetReceiveThreshold(5);
  ASSERT_TRUE(Radio.Output(kIdentifier));
  Loop.Run(seconds(1));
  ASSERT_FALSE(Sizes.empty());
  for (const std::size_t size : Sizes) EXPECT_GE(size, 5U);
  EXPECT_EQ(Received + Radio.Input(), kIdentifierReply);
}

TEST_F(SimulatedReceiverTest, ALowerThresholdNotifiesOfWhatWaits) {
  Radio.SetReceiveThreshold(100);
  ASSERT_TRUE(Radio.Output(kIdentifier));
  Loop.Run(seconds(1));
  EXPECT_EQ(Received, "");
  Radio.SetReceiveThreshold(5);
  EXPECT_EQ(Received, "");
  Loop.PumpEvents();
  EXPECT_EQ(Received, kIdentifierReply);
}

TEST_F(SimulatedReceiverTest, BytesArriveDuringASleepButTheHandlerWaitsForThePump) {
  ASSERT_TRUE(Radio.Output(kIdentifier));
  Loop.Sleep(seconds(1));
  EXPECT_EQ(Received, "");
  Loop.PumpEvents();
  EXPECT_EQ(Received, kIdentifierReply);
}

TEST_F(SimulatedReceiverTest, OnlyItsPortHasADevice) {
  Radio.Close();
  Radio.SetCommPort(2);
  EXPECT_NE(Radio.Open().Cause(), "");
  EXPECT_FALSE(Radio.IsOpen());
}

TEST_F(SimulatedReceiverTest, AnUnpluggedLineReadsAsClosedAndDropsWrites) {
  ASSERT_TRUE(Radio.Output(kIdentifier));
  Loop.Run(milliseconds(40));
  Radio.Unplug();
  EXPECT_FALSE(Radio.IsOpen());
  EXPECT_FALSE(Radio.Output(kIdentifier));
  const std::size_t before = Received.size();
  Loop.Run(seconds(1));
  EXPECT_EQ(Received.size(), before);
  EXPECT_NE(Radio.Open().Cause(), "");
  Radio.Plug();
  EXPECT_EQ(Radio.Open().Cause(), "");
  EXPECT_EQ(Radio.Opens(), 2);
}

TEST_F(SimulatedReceiverTest, RemembersWhatTheProgramWrote) {
  Loop.Run(milliseconds(100));
  base::Ignored(Radio.Output(kIdentifier));
  ASSERT_EQ(Radio.Writes().size(), 1U);
  EXPECT_EQ(Radio.Writes()[0].At, milliseconds(100));
  EXPECT_EQ(Radio.Writes()[0].Bytes, kIdentifier);
}

TEST_F(SimulatedReceiverTest, SoundFollowsTheSimulatedTime) {
  Loop.Run(seconds(2));
  Radio.StartSound(receiver::SignalKind::Counter, 44100);
  EXPECT_TRUE(Radio.TakeSound().empty());
  Loop.Run(milliseconds(100));
  const auto samples = Radio.TakeSound();
  ASSERT_EQ(samples.size(), 8820U);
  EXPECT_EQ(samples[0], receiver::CounterLeft(88200));
  EXPECT_EQ(samples[1], receiver::CounterRight(88200));
  EXPECT_TRUE(Radio.TakeSound().empty());
}

TEST_F(SimulatedReceiverTest, AnHourOfPollingIsTheSameEachTime) {
  const auto run = [] {
    SimulatedEventLoop loop;
    SimulatedReceiver::Setup setup;
    setup.Receiver.Misbehaviours = {{"lost", 0.1}, {"junk", 0.1}};
    SimulatedReceiver radio(loop, setup);
    radio.SetCommPort(1);
    EXPECT_EQ(radio.Open().Cause(), "");
    std::string received;
    radio.SetReceiveHandler([&] { received += radio.Input(); });
    const auto timer = loop.MakeTimer(milliseconds(200), [&] {
      base::Ignored(radio.Output(Bytes("\x5A\xA5\x00\x04\x25\x08\x08\x00\xED\xED")));
    });
    timer->SetEnabled(true);
    loop.Run(hours(1));
    return received;
  };
  const std::string first = run();
  EXPECT_GT(first.size(), 18000U * 70 * 8 / 10);
  EXPECT_EQ(first, run());
}

TEST(SimulatedReceiverLife, MayGoAwayWhileBytesAreUnderWay) {
  SimulatedEventLoop loop;
  {
    SimulatedReceiver radio(loop);
    radio.SetCommPort(1);
    ASSERT_EQ(radio.Open().Cause(), "");
    ASSERT_TRUE(radio.Output(kIdentifier));
    loop.Run(milliseconds(40));
  }
  loop.Run(seconds(1));
}

}  // namespace
}  // namespace kestrune::test
