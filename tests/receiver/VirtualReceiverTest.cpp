#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "WireBytes.h"
#include "receiver/VirtualReceiver.h"

namespace kestrune::test {
namespace {

using receiver::LineUp;
using receiver::ReceiverOptions;
using receiver::SignalKind;
using receiver::VirtualReceiver;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;

const std::string kMuteOn = Bytes("\x5A\xA5\x00\x02\x13\x01\xED\xED");
const std::string kMuteOff = Bytes("\x5A\xA5\x00\x02\x13\x00\xED\xED");
const std::string kMuteOnReply = Bytes("\x5A\xA5\x00\x04\x93\x01\x00\x01\x01\x98");
const std::string kMuteOffReply = Bytes("\x5A\xA5\x00\x04\x93\x01\x00\x00\x01\x97");
const std::string kSelect9 = Bytes("\x5A\xA5\x00\x06\x10\x02\x09\x00\x00\x01\x01\x19");

LineUp TwoStations() {
  return {{{8, "Eight", "", {{"A", "a", seconds(2)}, {"B", "b", seconds(2)}}, {}},
           {9, "Nine", "", {{"C", "c", seconds(3)}}, {}}}};
}

TEST(VirtualReceiver, AnswersAfterTheReplyDelayAtThePaceOfTheLine) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.Receive(milliseconds(100), kMuteOn);
  // 20 ms until the first bit, then 10 bytes of 1041.67 microseconds.
  EXPECT_EQ(receiver.NextByte(), microseconds(121'042));
  EXPECT_EQ(receiver.Send(microseconds(121'041)), "");
  EXPECT_EQ(receiver.Send(microseconds(121'042)), "\x5A");
  EXPECT_EQ(receiver.Send(microseconds(130'416)), kMuteOnReply.substr(1, 8));
  EXPECT_EQ(receiver.Send(microseconds(130'417)), kMuteOnReply.substr(9));
  EXPECT_FALSE(receiver.NextByte());
}

TEST(VirtualReceiver, AnswersTwoCommandsOneAfterTheOther) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.Receive(milliseconds(0), kMuteOn + kMuteOff);
  EXPECT_EQ(receiver.Send(seconds(1)), kMuteOnReply + kMuteOffReply);
}

TEST(VirtualReceiver, MisbehavesAsAsked) {
  ReceiverOptions options;
  options.Misbehaviours = {{"split", 1.0}, {"notice", 1.0}, {"nonsense", 1.0}};
  VirtualReceiver receiver(TwoStations(), options);
  EXPECT_EQ(receiver.Misbehaviours().size(), 2U);
  receiver.Receive(milliseconds(0), kMuteOn);
  const std::string inTime = receiver.Send(milliseconds(120));
  EXPECT_LT(inTime.size(), kMuteOnReply.size());
  EXPECT_EQ(inTime + receiver.Send(seconds(1)), kMuteOnReply + Bytes("\x5A\xA5\x00\x03\xE3\x01\x00\x01\xE6"));
}

TEST(VirtualReceiver, TheSameSeedGivesTheSameBytesAtTheSameMoments) {
  const auto run = [](std::uint64_t seed) {
    ReceiverOptions options;
    options.Seed = seed;
    for (const auto& name : receiver::MisbehaviourNames())
      options.Misbehaviours.push_back({std::string(name.Name), 0.2});
    VirtualReceiver receiver(TwoStations(), options);
    std::string wire;
    for (milliseconds now{0}; now < seconds(60); now += milliseconds(50)) {
      if (now.count() % 250 == 0) receiver.Receive(now, kMuteOn);
      wire += std::to_string(now.count()) + receiver.Send(now);
    }
    return wire;
  };
  EXPECT_EQ(run(99), run(99));
  EXPECT_NE(run(99), run(100));
}

TEST(VirtualReceiver, WhatIsUnsentCanBeDropped) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.Receive(milliseconds(0), kMuteOn);
  receiver.DropUnsent();
  EXPECT_EQ(receiver.Send(seconds(1)), "");
}

TEST(VirtualReceiver, ReturnsEverySampleOnce) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.StartSound(milliseconds(10), SignalKind::Counter, 44100);
  EXPECT_EQ(receiver.FirstFrame(), 441);
  std::vector<std::int16_t> all;
  for (milliseconds now{10}; now <= milliseconds(1010); now += milliseconds(7)) {
    for (const std::int16_t sample : receiver.TakeSound(now)) all.push_back(sample);
  }
  for (const std::int16_t sample : receiver.TakeSound(milliseconds(1010))) all.push_back(sample);
  ASSERT_EQ(all.size(), 88200U);
  EXPECT_EQ(receiver.FramesTaken(), 44100);
  for (std::size_t i = 0; i < all.size(); i += 2)
    ASSERT_EQ(all[i], receiver::CounterLeft(441 + static_cast<int>(i) / 2));
}

TEST(VirtualReceiver, AMuteFallsOnTheFrameOfItsMoment) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.StartSound(milliseconds(0), SignalKind::Counter, 1000);
  receiver.Receive(milliseconds(5), kMuteOn);
  receiver.Receive(milliseconds(8), kMuteOff);
  EXPECT_THAT(receiver.TakeSound(milliseconds(10)),
              ElementsAre(0, 0, 1, 0, 2, 0, 3, 0, 4, 0, 0, 0, 0, 0, 0, 0, 8, 0, 9, 0));
}

TEST(VirtualReceiver, AChangeOfChannelFallsOnTheFrameOfItsMoment) {
  VirtualReceiver receiver(TwoStations(), {});
  VirtualReceiver stays(TwoStations(), {});
  receiver.StartSound(milliseconds(0), SignalKind::Tones, 8000);
  stays.StartSound(milliseconds(0), SignalKind::Tones, 8000);
  receiver.Receive(milliseconds(50), kSelect9);
  const auto changed = receiver.TakeSound(milliseconds(100));
  const auto same = stays.TakeSound(milliseconds(100));
  ASSERT_EQ(changed.size(), 1600U);
  EXPECT_TRUE(std::equal(changed.begin(), changed.begin() + 800, same.begin()));
  EXPECT_FALSE(std::equal(changed.begin() + 800, changed.begin() + 820, same.begin() + 800));
}

TEST(VirtualReceiver, AReplayStartsWithTheFirstByteAndAnswersNothingElse) {
  VirtualReceiver receiver(TwoStations(), {});
  receiver.Replay(receiver::TraceReplay("10 > 31\n10.5 < 01 02\n"));
  EXPECT_EQ(receiver.Send(seconds(5)), "");
  EXPECT_FALSE(receiver.NextByte());
  receiver.Receive(seconds(5), kMuteOn);
  EXPECT_EQ(receiver.NextByte(), milliseconds(5500));
  EXPECT_EQ(receiver.Send(milliseconds(5499)), "");
  EXPECT_EQ(receiver.Send(milliseconds(5500)), "");
  EXPECT_EQ(receiver.Send(milliseconds(5503)), "\x01\x02");
  EXPECT_EQ(receiver.Send(seconds(60)), "");
}

TEST(VirtualReceiver, ReportsACommandWithAWrongByte) {
  std::ostringstream out;
  receiver::JsonLines log(out);
  VirtualReceiver receiver(TwoStations(), {}, &log);
  receiver.Receive(milliseconds(1000), Bytes("\x5A\xA5\x00\x02\x13\x02\xED\xED"));
  receiver.Receive(milliseconds(2000), Bytes("\x5A\xA5\x00\x02\x13\x01\x01\x00"));
  receiver.Receive(milliseconds(3000), Bytes("\x5A\xA5\x00\x06\x10\x02\x09\x07\x00\x01\xED\xED"));
  EXPECT_EQ(receiver.Send(seconds(10)), Bytes("\x5A\xA5\x00\x06\x90\x00\x00\x09\x00\x00\x01\x9E"));
  EXPECT_FALSE(receiver.Model().Muted());
  EXPECT_EQ(receiver.Model().TunedChannel(), 8);
  EXPECT_EQ(out.str(),
            R"({"time":1.0,"event":"command","payload":"13 02"}
{"time":1.0,"event":"ignored","payload":"13 02","why":"byte 2 is 02"}
{"time":2.0,"event":"command","payload":"13 01"}
{"time":2.0,"event":"ignored","payload":"13 01","why":"the trailer is 01 00, and neither ED ED nor 01 15"}
{"time":3.0,"event":"command","payload":"10 02 09 07 00 01"}
{"time":3.0,"event":"refused","payload":"10 02 09 07 00 01","why":"byte 4 is 07"}
{"time":3.0,"event":"answer","bytes":"5A A5 00 06 90 00 00 09 00 00 01 9E"}
)");
}

TEST(VirtualReceiver, ARestartSilencesTheSoundAndEndsOnAnotherChannel) {
  std::ostringstream out;
  receiver::JsonLines log(out);
  ReceiverOptions options;
  options.Misbehaviours = {{.Name = "restart", .At = milliseconds(1000)}};
  VirtualReceiver receiver(TwoStations(), options, &log);
  for (int now = 900; now <= 4200; now += 300) receiver.Receive(milliseconds(now), kMuteOff);
  EXPECT_EQ(receiver.Model().TunedChannel(), 9);
  for (const char* event : {"\"power\"", "\"tuned\"", "\"misbehaviour\""}) {
    EXPECT_NE(out.str().find(event), std::string::npos) << event;
  }
  EXPECT_EQ(receiver.Send(seconds(10)), kMuteOffReply + kMuteOffReply) << "before and after";
}

TEST(VirtualReceiver, LogsWhatItDid) {
  std::ostringstream out;
  receiver::JsonLines log(out);
  ReceiverOptions options;
  options.Misbehaviours = {{"notice", 1.0}};
  VirtualReceiver receiver(TwoStations(), options, &log);
  receiver.StartSound(milliseconds(0), SignalKind::Tones, 44100);
  receiver.Observe(milliseconds(0));
  receiver.Observe(milliseconds(500));
  receiver.Receive(milliseconds(1000), kSelect9);
  receiver.Receive(milliseconds(1100), kMuteOn);
  receiver.Observe(milliseconds(1100));
  receiver.Observe(milliseconds(2600));
  receiver.Observe(milliseconds(3000));
  EXPECT_EQ(
      out.str(),
      R"({"time":0.0,"event":"text","channel":8,"artist":"A","title":"a","start":0.0,"end":2.0,"start_frame":0}
{"time":0.0,"event":"sound","channel":8,"artist":"A","title":"a","start":0.0,"end":2.0,"start_frame":0}
{"time":1.0,"event":"command","payload":"10 02 09 00 00 01"}
{"time":1.0,"event":"tuned","channel":9}
{"time":1.0,"event":"misbehaviour","name":"notice"}
{"time":1.0,"event":"answer","bytes":"5A A5 00 06 90 01 00 09 00 00 01 9F"}
{"time":1.0,"event":"answer","bytes":"5A A5 00 03 E3 01 00 01 E6"}
{"time":1.1,"event":"command","payload":"13 01"}
{"time":1.1,"event":"mute","on":true}
{"time":1.1,"event":"misbehaviour","name":"notice"}
{"time":1.1,"event":"answer","bytes":"5A A5 00 04 93 01 00 01 01 98"}
{"time":1.1,"event":"answer","bytes":"5A A5 00 03 E3 01 00 01 E6"}
{"time":1.1,"event":"text","channel":9,"artist":"C","title":"c","start":0.0,"end":3.0,"start_frame":0}
{"time":1.1,"event":"sound","channel":9,"artist":"C","title":"c","start":0.0,"end":3.0,"start_frame":0}
{"time":2.6,"event":"text","channel":9,"artist":"C","title":"c","start":3.0,"end":6.0,"start_frame":132300}
{"time":3.0,"event":"sound","channel":9,"artist":"C","title":"c","start":3.0,"end":6.0,"start_frame":132300}
)");
}

TEST(VirtualReceiver, LogsTheJoinsOfMusic) {
  std::ostringstream out;
  receiver::JsonLines log(out);
  receiver::LineUp lineUp = TwoStations();
  lineUp.Stations.front().Songs.front().Join = receiver::JoinKind::Segue;
  VirtualReceiver receiver(std::move(lineUp), {}, &log);
  receiver.StartSound(milliseconds(0), SignalKind::Music, 44100);
  receiver.Observe(milliseconds(2000));
  EXPECT_THAT(out.str(), testing::HasSubstr(R"("start_frame":88200,"join":"segue","quiet_frame":88200})"));
}

}  // namespace
}  // namespace kestrune::test
