#include <functional>

#include <gtest/gtest.h>

#include "WireBytes.h"
#include "receiver/Misbehaviour.h"

namespace kestrune::test {
namespace {

using receiver::MakeMisbehaviour;
using receiver::ReceiverModel;
using receiver::Sending;
using std::chrono::milliseconds;

const std::string kFrame = Bytes("\x5A\xA5\x00\x04\x93\x01\x00\x01\x01\x98");
const std::string kSelect3 = Bytes("\x10\x02\x03\x00\x00\x01");

std::string Wire(const std::vector<Sending>& sendings) {
  std::string bytes;
  for (const Sending& sending : sendings) bytes += sending.Bytes;
  return bytes;
}

std::vector<Sending> Spoil(const std::string& name, std::uint64_t seed = 1) {
  std::vector<Sending> sendings = {{kFrame, milliseconds(0)}};
  MakeMisbehaviour({.Name = name, .Rate = 1.0}, seed)->AfterAnswer(milliseconds(0), sendings);
  return sendings;
}

/// All that a misbehaviour does to a hundred answers.
std::string History(const std::string& name, double rate, std::uint64_t seed) {
  ReceiverModel model(receiver::LineUpOfSize(5), {});
  const auto misbehaviour = MakeMisbehaviour({.Name = name, .Rate = rate}, seed);
  std::string history;
  for (int i = 0; i < 100; ++i) {
    const milliseconds now(i * 1000);
    history += std::to_string(model.TunedChannel()) + " ";
    std::vector<Sending> sendings;
    if (misbehaviour->BeforeAnswer(now, kSelect3, model)) {
      history += std::to_string(model.TunedChannel()) + " ";
      for (const std::string& frame : model.Answer(now, kSelect3))
        sendings.push_back({frame, milliseconds(0)});
      misbehaviour->AfterAnswer(now, sendings);
    }
    for (const Sending& sending : sendings) {
      history += std::to_string(sending.Delay.count()) + ":" + sending.Bytes + "|";
    }
    history += "\n";
  }
  return history;
}

TEST(Misbehaviour, EveryNameMakesOneThatStrikesAlwaysAtRate1AndNeverAtRate0) {
  ASSERT_EQ(receiver::MisbehaviourNames().size(), 15U);
  for (const auto& [name, meaning] : receiver::MisbehaviourNames()) {
    const std::string text(name);
    EXPECT_FALSE(meaning.empty());
    ASSERT_NE(MakeMisbehaviour({.Name = text}, 1), nullptr) << name;
    EXPECT_EQ(MakeMisbehaviour({.Name = text}, 1)->Name(), name);
    EXPECT_EQ(History(text, 0.0, 1), History("lost", 0.0, 1)) << name;
    EXPECT_NE(History(text, 1.0, 1), History(text, 0.0, 1)) << name;
  }
}

TEST(Misbehaviour, AnUnknownNameMakesNone) {
  EXPECT_EQ(MakeMisbehaviour({.Name = "sulk"}, 1), nullptr);
}

TEST(Misbehaviour, TheSameSeedGivesTheSameStrikesAndAnotherOneOthers) {
  for (const auto& [name, meaning] : receiver::MisbehaviourNames()) {
    const std::string text(name);
    EXPECT_EQ(History(text, 0.3, 42), History(text, 0.3, 42)) << name;
    EXPECT_NE(History(text, 0.3, 42), History(text, 0.3, 43)) << name;
  }
}

TEST(Misbehaviour, StrikesAboutAsOftenAsItsRate) {
  const auto lost = MakeMisbehaviour({.Name = "lost", .Rate = 0.25}, 7);
  for (int i = 0; i < 10000; ++i) {
    std::vector<Sending> sendings = {{kFrame, milliseconds(0)}};
    lost->AfterAnswer(milliseconds(0), sendings);
  }
  EXPECT_NEAR(lost->Strikes(), 2500, 200);
}

TEST(Misbehaviour, JunkComesBeforeTheWholeAnswer) {
  const std::string wire = Wire(Spoil("junk"));
  EXPECT_GT(wire.size(), kFrame.size());
  EXPECT_LE(wire.size(), kFrame.size() + 12);
  EXPECT_TRUE(wire.ends_with(kFrame));
}

TEST(Misbehaviour, SplitKeepsEveryByteAndPutsAGapBetweenThem) {
  const std::vector<Sending> sendings = Spoil("split");
  ASSERT_EQ(sendings.size(), 2U);
  EXPECT_EQ(Wire(sendings), kFrame);
  EXPECT_FALSE(sendings[0].Bytes.empty());
  EXPECT_FALSE(sendings[1].Bytes.empty());
  EXPECT_GE(sendings[1].Delay, milliseconds(100));
  EXPECT_LE(sendings[1].Delay, milliseconds(400));
}

TEST(Misbehaviour, LostAnswersNeverCome) {
  EXPECT_EQ(Wire(Spoil("lost")), "");
}

TEST(Misbehaviour, CorruptChangesExactlyOneByte) {
  for (std::uint64_t seed = 0; seed < 50; ++seed) {
    const std::string wire = Wire(Spoil("corrupt", seed));
    ASSERT_EQ(wire.size(), kFrame.size());
    int wrong = 0;
    for (std::size_t i = 0; i < wire.size(); ++i) wrong += wire[i] != kFrame[i] ? 1 : 0;
    EXPECT_EQ(wrong, 1);
  }
}

TEST(Misbehaviour, LateAnswersComeWholeAfterOneToThreeSeconds) {
  const std::vector<Sending> sendings = Spoil("late");
  ASSERT_EQ(sendings.size(), 1U);
  EXPECT_EQ(sendings[0].Bytes, kFrame);
  EXPECT_GE(sendings[0].Delay, milliseconds(1000));
  EXPECT_LE(sendings[0].Delay, milliseconds(3000));
}

TEST(Misbehaviour, SetupIsAskedForAfterTheAnswer) {
  EXPECT_EQ(Wire(Spoil("setup")), kFrame + Bytes("\x5A\xA5\x00\x03\xF2\x01\x00\x01\xF5"));
}

TEST(Misbehaviour, ANoticeComesAfterTheAnswer) {
  EXPECT_EQ(Wire(Spoil("notice")), kFrame + Bytes("\x5A\xA5\x00\x03\xE3\x01\x00\x01\xE6"));
}

TEST(Misbehaviour, SilenceLastsFiveSeconds) {
  // At this rate it strikes only now and then, so that the end of a silence shows.
  const auto silence = MakeMisbehaviour({.Name = "silence", .Rate = 0.01}, 3);
  milliseconds begin{-1};
  milliseconds end{-1};
  for (milliseconds now{0}; end.count() < 0 && now < std::chrono::hours(1); now += milliseconds(100)) {
    std::vector<Sending> sendings = {{kFrame, milliseconds(0)}};
    silence->AfterAnswer(now, sendings);
    if (sendings.empty() && begin.count() < 0) begin = now;
    if (!sendings.empty() && begin.count() >= 0) end = now;
  }
  EXPECT_EQ(end - begin, milliseconds(5000));
}

TEST(Misbehaviour, RefuseTouchesOnlyTheChoiceOfAChannel) {
  ReceiverModel model(receiver::LineUpOfSize(5), {});
  const auto refuse = MakeMisbehaviour({.Name = "refuse", .Rate = 1.0}, 1);
  EXPECT_TRUE(refuse->BeforeAnswer(milliseconds(0), "\x31", model));
  EXPECT_EQ(refuse->Strikes(), 0);
  EXPECT_TRUE(refuse->BeforeAnswer(milliseconds(0), kSelect3, model));
  EXPECT_EQ(refuse->Strikes(), 1);
  EXPECT_EQ(model.Answer(milliseconds(0), kSelect3).front().at(5), '\0');
  EXPECT_EQ(model.TunedChannel(), 1);
}

TEST(Misbehaviour, OffTakesThePower) {
  ReceiverModel model(receiver::LineUpOfSize(5), {});
  EXPECT_TRUE(
      MakeMisbehaviour({.Name = "off", .Rate = 1.0}, 1)->BeforeAnswer(milliseconds(0), "\x31", model));
  EXPECT_FALSE(model.PoweredOn());
}

TEST(Misbehaviour, ARestartIsThreeSecondsOfNothingAndThenAnotherChannel) {
  ReceiverModel model(receiver::LineUpOfSize(5), {.Tuned = 6});
  model.SetMuted(true);
  const auto restart = MakeMisbehaviour({.Name = "restart", .At = milliseconds(1000)}, 1);
  EXPECT_TRUE(restart->BeforeAnswer(milliseconds(999), "\x31", model));
  EXPECT_TRUE(model.PoweredOn());
  for (const int now : {1000, 2500, 3999}) {
    EXPECT_FALSE(restart->BeforeAnswer(milliseconds(now), "\x31", model)) << now;
    EXPECT_FALSE(model.PoweredOn());
  }
  EXPECT_TRUE(restart->BeforeAnswer(milliseconds(4000), "\x31", model));
  EXPECT_TRUE(model.PoweredOn());
  EXPECT_FALSE(model.Muted());
  EXPECT_EQ(model.TunedChannel(), 1) << "after the last one comes the first";
  EXPECT_TRUE(restart->BeforeAnswer(milliseconds(9000), "\x31", model));
  EXPECT_EQ(restart->Strikes(), 1);
}

TEST(Misbehaviour, ABlackoutIsTwentySecondsOfNothingAndThenAReceiverThatIsOff) {
  ReceiverModel model(receiver::LineUpOfSize(5), {.Tuned = 4});
  const auto blackout = MakeMisbehaviour({.Name = "blackout", .At = milliseconds(1000)}, 1);
  EXPECT_TRUE(blackout->BeforeAnswer(milliseconds(999), "\x31", model));
  for (const int now : {1000, 10000, 20999}) {
    EXPECT_FALSE(blackout->BeforeAnswer(milliseconds(now), "\x31", model)) << now;
  }
  EXPECT_TRUE(blackout->BeforeAnswer(milliseconds(21000), "\x31", model));
  EXPECT_FALSE(model.PoweredOn());
  EXPECT_EQ(model.TunedChannel(), model.Stations().After(0)->Number);
  model.SetPower(true);
  EXPECT_TRUE(blackout->BeforeAnswer(milliseconds(90000), "\x31", model));
  EXPECT_TRUE(model.PoweredOn()) << "once";
}

TEST(Misbehaviour, AStrayHeaderPromisesWhatNeverComes) {
  std::vector<Sending> sendings{{"\x5A\xA5\x00\x02\x81\x00\xED\xED", milliseconds(0)}};
  MakeMisbehaviour({.Name = "stray", .Rate = 1.0}, 1)->AfterAnswer(milliseconds(0), sendings);
  ASSERT_EQ(sendings.size(), 2U);
  EXPECT_EQ(sendings[0].Bytes, "\x5A\xA5\x7F\xFF");
}

TEST(Misbehaviour, AReceiverThatWandersStaysOnAndSaysNothing) {
  ReceiverModel model(receiver::LineUpOfSize(5), {.Tuned = 2});
  EXPECT_TRUE(
      MakeMisbehaviour({.Name = "wander", .Rate = 1.0}, 1)->BeforeAnswer(milliseconds(0), "\x31", model));
  EXPECT_EQ(model.TunedChannel(), 3);
  EXPECT_TRUE(model.PoweredOn());
}

TEST(Misbehaviour, ADeafReceiverObeysNothing) {
  ReceiverModel model(receiver::LineUpOfSize(5), {});
  EXPECT_FALSE(
      MakeMisbehaviour({.Name = "deaf", .Rate = 1.0}, 1)->BeforeAnswer(milliseconds(0), kSelect3, model));
  EXPECT_EQ(model.TunedChannel(), 1);
}

TEST(Misbehaviour, OneWithAMomentStrikesOnceFromThenOn) {
  const auto lost = MakeMisbehaviour({.Name = "lost", .At = milliseconds(500)}, 1);
  std::vector<int> struck;
  for (int now = 0; now < 1000; now += 100) {
    std::vector<Sending> sendings = {{kFrame, milliseconds(0)}};
    lost->AfterAnswer(milliseconds(now), sendings);
    if (sendings.empty()) struck.push_back(now);
  }
  EXPECT_EQ(struck, std::vector<int>{500});
}

TEST(Misbehaviour, OneStrikesTheSameWithAndWithoutTheOthers) {
  EXPECT_EQ(Wire(Spoil("junk", 5)), Wire(Spoil("junk", 5)));
  EXPECT_NE(History("junk", 0.5, 5), History("split", 0.5, 5));
}

}  // namespace
}  // namespace kestrune::test
