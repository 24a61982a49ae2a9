#include <algorithm>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/BringUp.h"
#include "radio/line/SessionFixture.h"

namespace kestrune::test {
namespace {

using radio::RadioSearch;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kPowerOn = "5A A5 00 05 00 10 10 10 01 ED ED";
constexpr const char* kPowerOnReply =
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kRadioID = "5A A5 00 01 31 ED ED";
constexpr const char* kRadioIDReply = "5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED";
constexpr const char* kTuneTo9 = "5A A5 00 06 10 02 09 00 00 01 01 19";
constexpr const char* kTunedTo9 = "5A A5 00 06 90 01 00 09 00 00 ED ED";
constexpr const char* kMuteOff = "5A A5 00 02 13 00 ED ED";
constexpr const char* kMuteReply = "5A A5 00 04 93 01 00 01 ED ED";

class BringUpTest : public SessionFixture {
 protected:
  void Reply(const char* command, const char* reply, std::int16_t onPort = 0) {
    port.WhenWritten(Bytes(command), Bytes(reply), Milliseconds(20), onPort);
  }
  // The moments of all writes of a frame.
  [[nodiscard]] std::vector<int> TimesOf(const char* hex) const {
    std::vector<int> times;
    for (const auto& write : port.Writes()) {
      if (write.Bytes == Bytes(hex)) times.push_back(static_cast<int>(write.At.count()));
    }
    return times;
  }

  /// Keeps the steps of a search in words.
  [[nodiscard]] radio::BringUp::Stepped Tell() {
    return [this](const radio::SearchProgress& progress) {
      EXPECT_EQ(progress.Began, loop.SteadyNow());
      steps.push_back(fmt::format("{} ms: port {} {}, {} {} of {}, step {} of {}, {} ms",
                                  progress.Began.count(), progress.Port, progress.Device,
                                  progress.Searching ? "round" : "try", progress.Round, progress.Rounds,
                                  progress.StepsDone, progress.Steps, progress.Longest.count()));
    };
  }

  radio::BringUp bringUp{session, loop, run, journal};
  Strings steps;
};

// The known port.

TEST_F(BringUpTest, TheKnownPortIsGivenASecondAndAHalfBeforeItIsAsked) {
  Reply(kPowerOn, kPowerOnReply, 3);
  const RadioSearch search = bringUp.FindRadio(3);
  EXPECT_EQ(search.Port, 3);
  EXPECT_EQ(search.AsResult(), base::Result::Done());
  ASSERT_FALSE(port.Writes().empty());
  EXPECT_EQ(port.Writes().front().At, Milliseconds(1500));
  EXPECT_TRUE(session.pcrPortOpen());
  EXPECT_THAT(journal.Debug, ElementsAre("Trying port 3", "Try 1"));
  EXPECT_THAT(journal.Log, IsEmpty());
}

TEST_F(BringUpTest, EventsRunAfterThatTimeAndNotWithinIt) {
  Reply(kPowerOn, kPowerOnReply, 3);
  std::vector<int> ticks;
  const auto timer =
      loop.MakeTimer(Milliseconds(100), [&] { ticks.push_back(static_cast<int>(loop.SteadyNow().count())); });
  timer->SetEnabled(true);
  EXPECT_TRUE(bringUp.FindRadio(3).Found());
  ASSERT_FALSE(ticks.empty());
  EXPECT_EQ(ticks.front(), 1500);
}

TEST_F(BringUpTest, TheKnownPortIsTriedTwiceBeforeTheSearch) {
  port.Refuse(0, "no such port");
  port.Refuse(3, "");
  port.Refuse(7, "");
  Reply(kPowerOn, kPowerOnReply, 7);
  const RadioSearch search = bringUp.FindRadio(3);
  EXPECT_EQ(search.Port, 7);
  EXPECT_THAT(journal.Debug, ElementsAre("Trying port 3", "Try 1", "Try 2", "Looking for port try 1",
                                         "Opened port 3", "Opened port 7"));
  // Twice a second and a half with a failed power on; then half a second at each port.
  EXPECT_THAT(TimesOf(kPowerOn), ElementsAre(1900, 8600, 14300, 20000));
}

TEST_F(BringUpTest, ARadioThatAnswersTheSecondTryIsFoundOnItsPort) {
  port.WhenWritten(Bytes(kPowerOn), "", Milliseconds(20), 3, 1);
  Reply(kPowerOn, kPowerOnReply, 3);
  EXPECT_EQ(bringUp.FindRadio(3).Port, 3);
}

// The search.

TEST_F(BringUpTest, WithoutAKnownPortTheSearchBeginsAtOnce) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  Reply(kPowerOn, kPowerOnReply, 2);
  EXPECT_EQ(bringUp.FindRadio(0).Port, 2);
  EXPECT_THAT(journal.Debug, ElementsAre("Looking for port try 1", "Opened port 2"));
}

TEST_F(BringUpTest, AllPortsAreSearchedFourTimes) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  const RadioSearch search = bringUp.FindRadio(0);
  EXPECT_FALSE(search.Found());
  EXPECT_EQ(TimesOf(kPowerOn).size(), 4U);
  EXPECT_EQ(search.Failed.size(), 4U * 16);
  EXPECT_FALSE(session.pcrPortOpen());
}

TEST_F(BringUpTest, EachDeviceWithoutARadioGetsOneLineInTheLog) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  port.Refuse(5, "the line is in use");
  EXPECT_FALSE(bringUp.FindRadio(5).Found());
  EXPECT_THAT(journal.Log, ElementsAre("No radio on port 5: the line is in use",
                                       "No radio on port 2: the port opens, but no radio answers"));
}

TEST_F(BringUpTest, TheFirstDeviceThatCannotBeOpenedSaysWhyThereIsNoRadio) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  port.Refuse(5, "the line is in use");
  port.Refuse(9, "there is no permission");
  const RadioSearch search = bringUp.FindRadio(0);
  EXPECT_EQ(search.AsResult(), base::Result::Failed("the line is in use"));
  EXPECT_TRUE(search.AnyDevice());
}

TEST_F(BringUpTest, WhereAllDevicesOpenTheFirstOneIsNamed) {
  port.Remove(0, "there is no device");
  port.Refuse(4, "");
  port.Refuse(6, "");
  const RadioSearch search = bringUp.FindRadio(0);
  EXPECT_EQ(search.AsResult(), base::Result::Failed("port 4 opens, but no radio answers there"));
}

TEST_F(BringUpTest, WithoutAnyDeviceThatIsTheReason) {
  port.Remove(0, "there is no device");
  EXPECT_EQ(TimeOf([this] {
              const RadioSearch search = bringUp.FindRadio(9);
              EXPECT_EQ(search.AsResult(),
                        base::Result::Failed("there is no serial device; is the radio plugged in?"));
              EXPECT_FALSE(search.AnyDevice());
            }),
            Milliseconds(0));
  EXPECT_THAT(journal.Log, IsEmpty());
}

TEST_F(BringUpTest, ACloseEndsTheSearchAndSaysNothingInTheLog) {
  loop.AtHardware(Milliseconds(3000), [this] { run.ShuttingDown = true; });
  EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(bringUp.FindRadio(3).Found()); }), Milliseconds(1500 + 5200));
  EXPECT_THAT(journal.Log, IsEmpty());
}

TEST_F(BringUpTest, TheReasonsAreTheLinesOfTheLog) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  port.Refuse(5, "the line is in use");
  const RadioSearch search = bringUp.FindRadio(5);
  EXPECT_THAT(search.Reasons(), ElementsAreArray(journal.Log));
  EXPECT_THAT(search.Reasons(), SizeIs(2));
}

TEST_F(BringUpTest, WithoutAnyDeviceThatIsTheOneReason) {
  port.Remove(0, "there is no device");
  EXPECT_THAT(bringUp.FindRadio(0).Reasons(),
              ElementsAre("No radio: there is no serial device; is the radio plugged in?"));
}

// The progress.

TEST_F(BringUpTest, EachTryOfADeviceIsAStepThatIsToldWhenItBegins) {
  port.Remove(0, "there is no device");
  port.Refuse(3, "");
  port.Refuse(7, "");
  Reply(kPowerOn, kPowerOnReply, 7);
  EXPECT_EQ(bringUp.FindRadio(3, Tell()).Port, 7);
  // Two tries of the known port, and four rounds of two devices.
  EXPECT_THAT(steps, ElementsAre("0 ms: port 3 /dev/radio3, try 1 of 2, step 0 of 10, 6700 ms",
                                 "6700 ms: port 3 /dev/radio3, try 2 of 2, step 1 of 10, 6700 ms",
                                 "13400 ms: port 3 /dev/radio3, round 1 of 4, step 2 of 10, 5700 ms",
                                 "19100 ms: port 7 /dev/radio7, round 1 of 4, step 3 of 10, 5700 ms"));
}

TEST_F(BringUpTest, AKnownPortWithoutADeviceIsNoStep) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  EXPECT_FALSE(bringUp.FindRadio(3, Tell()).Found());
  EXPECT_THAT(steps, ElementsAre("0 ms: port 2 /dev/radio2, round 1 of 4, step 0 of 4, 5700 ms",
                                 "5700 ms: port 2 /dev/radio2, round 2 of 4, step 1 of 4, 5700 ms",
                                 "11400 ms: port 2 /dev/radio2, round 3 of 4, step 2 of 4, 5700 ms",
                                 "17100 ms: port 2 /dev/radio2, round 4 of 4, step 3 of 4, 5700 ms"));
}

TEST_F(BringUpTest, ADeviceThatComesWithinTheSearchCountsFromTheNextRoundOn) {
  port.Remove(0, "there is no device");
  port.Refuse(2, "");
  loop.AtHardware(Milliseconds(3000), [this] { port.Refuse(1, ""); });
  EXPECT_FALSE(bringUp.FindRadio(0, Tell()).Found());
  ASSERT_THAT(steps, SizeIs(1 + 3 * 2));
  EXPECT_THAT(steps[1], EndsWith("port 1 /dev/radio1, round 2 of 4, step 1 of 7, 5700 ms"));
  EXPECT_THAT(steps.back(), EndsWith("port 2 /dev/radio2, round 4 of 4, step 6 of 7, 5700 ms"));
}

// Bringing the radio up once more, later.

TEST_F(BringUpTest, ALineThatDiedIsOpenedAgainAtTheFirstTry) {
  Reply(kPowerOn, kPowerOnReply, 3);
  ASSERT_TRUE(bringUp.FindRadio(3).Found());
  port.Die();
  const Milliseconds again = loop.SteadyNow();
  EXPECT_EQ(bringUp.FindRadio(3).Port, 3);
  EXPECT_TRUE(session.pcrPortOpen());
  ASSERT_EQ(TimesOf(kPowerOn).size(), 2U);
  EXPECT_EQ(TimesOf(kPowerOn).back(), again.count() + 1500 + 400);
}

TEST_F(BringUpTest, ARadioThatMovedToAnotherPortIsFoundThere) {
  port.WhenWritten(Bytes(kPowerOn), Bytes(kPowerOnReply), Milliseconds(20), 3, 1);
  ASSERT_TRUE(bringUp.FindRadio(3).Found());
  port.Die();
  port.Remove(0, "there is no device");
  port.Refuse(5, "");
  Reply(kPowerOn, kPowerOnReply, 5);
  EXPECT_EQ(bringUp.FindRadio(3).Port, 5);
}

TEST_F(BringUpTest, AnOpenPortIsClosedBeforeAnotherOneIsTried) {
  OpenPort(2);
  port.ForgetCalls();
  Reply(kPowerOn, kPowerOnReply, 3);
  EXPECT_EQ(bringUp.FindRadio(3).Port, 3);
  // The looks for devices come first.
  const Strings opening(std::find(port.Calls().begin(), port.Calls().end(), "DTR off"), port.Calls().end());
  EXPECT_THAT(opening, ElementsAre("DTR off", "RTS off", "Close", "CommPort 3", "Settings 9600,n,8,1",
                                   "RThreshold 1", "Open", "RThreshold 5", "DTR on", "RTS on"));
}

// The identifier.

TEST_F(BringUpTest, TheIdentifierIsAskedForTenTimes) {
  OpenPort();
  port.WhenWritten(Bytes(kRadioID), "", Milliseconds(20), 0, 9);
  Reply(kRadioID, kRadioIDReply);
  EXPECT_EQ(bringUp.ReadRadioID(), "R0GHJK23");
  EXPECT_EQ(TimesOf(kRadioID).size(), 10U);
}

TEST_F(BringUpTest, ARadioThatNeverGivesItsIdentifierCosts17Seconds) {
  OpenPort();
  EXPECT_EQ(TimeOf([this] { EXPECT_EQ(bringUp.ReadRadioID(), ""); }), Milliseconds(10 * (1500 + 200)));
}

TEST_F(BringUpTest, TheIdentifierOfThePowerOnReplyNeedsNoQuestion) {
  Reply(kPowerOn, kPowerOnReply, 3);
  ASSERT_TRUE(bringUp.FindRadio(3).Found());
  EXPECT_EQ(bringUp.ReadRadioID(), "R0GHJK23");
  EXPECT_THAT(TimesOf(kRadioID), IsEmpty());
}

// The channel.

TEST_F(BringUpTest, TuningSelectsTheChannelAndThenUnmutes) {
  OpenPort();
  Reply(kTuneTo9, kTunedTo9);
  Reply(kMuteOff, kMuteReply);
  EXPECT_EQ(bringUp.Tune(9), base::Result::Done());
  EXPECT_TRUE(Wrote({kTuneTo9, kMuteOff}));
}

TEST_F(BringUpTest, AChannelThatIsNotConfirmedIsNamedAndTheRadioUnmutedAllTheSame) {
  OpenPort();
  Reply(kMuteOff, kMuteReply);
  EXPECT_EQ(bringUp.Tune(9), base::Result::Failed("the radio has not confirmed channel 9"));
  EXPECT_TRUE(Wrote({kTuneTo9, kMuteOff}));
}

TEST_F(BringUpTest, AMuteThatIsNotConfirmedIsSaid) {
  OpenPort();
  Reply(kTuneTo9, kTunedTo9);
  EXPECT_FALSE(bringUp.Tune(9).Ok());
}

TEST_F(BringUpTest, TheRadioHasEightTimesHalfASecondToSettle) {
  OpenPort();
  std::vector<int> rounds;
  const auto tick = [&] { rounds.push_back(static_cast<int>(loop.SteadyNow().count())); };
  EXPECT_EQ(TimeOf([&] { bringUp.Settle(tick); }), Milliseconds(4000));
  EXPECT_THAT(rounds, ElementsAre(500, 1000, 1500, 2000, 2500, 3000, 3500, 4000));
}

TEST_F(BringUpTest, SettlingEndsWithAClose) {
  OpenPort();
  int rounds = 0;
  bringUp.Settle([&] { run.ShuttingDown = ++rounds == 3; });
  EXPECT_EQ(rounds, 3);
}

}  // namespace
}  // namespace kestrune::test
