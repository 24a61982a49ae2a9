#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/line/LinkFixture.h"
#include "radio/line/OpenLink.h"
#include "support/Bytes.h"
#include "support/RadioFrames.h"
#include "support/TestRadio.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using radio::LinkState;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kSetup = "5AA500037400010177";
constexpr const char* kPowerOn = "5AA500050010101001EDED";
constexpr const char* kPowerOff = "5AA500020100EDED";
constexpr const char* kTuneTo45 = "5AA5000610022D0000010119";
constexpr const char* kTuneTo9 = "5AA500061002090000010119";
constexpr const char* kMuteOn = "5AA500021301EDED";
constexpr const char* kMuteOff = "5AA500021300EDED";
constexpr const char* kAskIdentifier = "5AA5000131EDED";

class RadioLinkTest : public ::testing::Test {
 protected:
  RadioLinkTest() {
    radio_.Channels[45] = {"Deep Tracks", "Rock", "The Fox", "Nightfall"};
    radio_.Channels[9] = {"Nine", "Talk", "Nobody", "Nothing"};
    session.SetCOMPort(1);
    session.SetPortOpen(true);
    EXPECT_TRUE(session.pcrPowerOn(true));
    EXPECT_TRUE(session.pcrSelectChannel(45));
    EXPECT_TRUE(session.pcrMute(false));
    link.StartWatch(owner);
    polling.Start();
    loop.Run(10s);
    EXPECT_TRUE(link.Status().Up());
    EXPECT_THAT(owner.Lines, IsEmpty());
    radio_.Commands.clear();
    radio_.Openings.clear();
  }

  void PowerFails() {
    radio_.Answers = false;
    radio_.TunedChannel = 1;
    radio_.Muted = false;
    radio_.PoweredOn = false;
  }
  void PowerReturns() { radio_.Answers = true; }
  /// Runs until the link is up again; how long that took.
  std::chrono::milliseconds UntilUp(std::chrono::milliseconds limit = 60s) {
    const auto before = loop.SteadyNow();
    EXPECT_TRUE(loop.RunUntil([this] { return link.Status().Up(); }, limit)) << link.Status().Cause;
    return loop.SteadyNow() - before;
  }
  [[nodiscard]] int Sent(std::string_view command) const {
    return static_cast<int>(std::count(radio_.Commands.begin(), radio_.Commands.end(), command));
  }
  [[nodiscard]] LinkState State() const { return link.Status().State; }
  /// Steady moments of a frame while the time runs.
  std::vector<std::chrono::milliseconds> TimesOf(const char* command, std::chrono::milliseconds during) {
    std::vector<std::chrono::milliseconds> times;
    radio_.WhenCommanded = [&] {
      if (radio_.Commands.back() == command) times.push_back(loop.SteadyNow());
    };
    loop.Run(during);
    radio_.WhenCommanded = [] {};
    return times;
  }

  /// When remedies begin, on the steady clock, to the tenth of a second.
  std::vector<std::chrono::milliseconds> RemedyTimes(std::chrono::milliseconds during) {
    std::vector<std::chrono::milliseconds> times;
    std::size_t seen = journal.Debug.size();
    for (const auto end = loop.SteadyNow() + during; loop.SteadyNow() < end; loop.Run(50ms)) {
      if (journal.Debug.size() != seen) times.push_back(loop.SteadyNow());
      seen = journal.Debug.size();
    }
    return times;
  }

  SimulatedEventLoop loop;
  TestRadio radio_{loop};
  base::RunState run;
  RecordingJournal journal;
  OpenLink link{radio_, loop, run, journal};
  radio::RadioSession& session = link.SessionForTests();
  RecordingLinkOwner owner;
  Polling polling{session, loop};
};

// A line that answers.

TEST_F(RadioLinkTest, AHealthyLineHearsNothingOfTheLink) {
  loop.Run(1h);
  EXPECT_TRUE(link.Status().Up());
  EXPECT_EQ(link.Ready(), base::Result::Done());
  EXPECT_THAT(owner.Changes, IsEmpty());
  for (const char* const command : {kSetup, kPowerOn, kTuneTo45, kMuteOff, kAskIdentifier}) {
    EXPECT_EQ(Sent(command), 0) << command;
  }
  EXPECT_THAT(radio_.Openings, IsEmpty());
}

TEST_F(RadioLinkTest, OneLostReplyAfterAnotherRaisesNothing) {
  int replies = 0;
  for (int minute = 0; minute < 60; ++minute) {
    radio_.Answers = false;
    const int before = polling.Replies;
    // Up to the first request that gets no answer.
    ASSERT_TRUE(
        loop.RunUntil([&, sent = radio_.Commands.size()] { return radio_.Commands.size() > sent; }, 10s));
    radio_.Answers = true;
    loop.Run(1min);
    replies += polling.Replies - before;
  }
  EXPECT_GT(replies, 60 * 100);
  EXPECT_THAT(owner.Changes, IsEmpty());
  EXPECT_EQ(Sent(kTuneTo45), 0);
}

TEST_F(RadioLinkTest, SilenceOfFiveSecondsIsNotReported) {
  radio_.Answers = false;
  loop.Run(5s);
  radio_.Answers = true;
  loop.Run(1min);
  EXPECT_THAT(owner.Changes, IsEmpty());
}

TEST_F(RadioLinkTest, AfterAGapTheChannelAndTheMuteAreSentOnceMore) {
  radio_.Answers = false;
  radio_.TunedChannel = 1;
  loop.Run(5s);
  radio_.Answers = true;
  loop.Run(5s);
  EXPECT_EQ(radio_.TunedChannel, 45) << "the radio may have lost its power";
  EXPECT_EQ(Sent(kTuneTo45), 1);
  EXPECT_EQ(Sent(kMuteOff), 1);
  EXPECT_THAT(owner.Changes, IsEmpty());
}

// Unplugged.

TEST_F(RadioLinkTest, ALineThatHungUpIsNoticedWithinASecond) {
  radio_.Unplug();
  loop.Run(1s);
  EXPECT_EQ(State(), LinkState::Lost);
  EXPECT_EQ(link.Status().Cause, "the device is gone");
  EXPECT_EQ(link.Status().Port, 1);
  EXPECT_EQ(link.Ready(), base::Result::Failed("the radio is lost: the device is gone"));
  EXPECT_THAT(owner.Lines, ElementsAre("Radio lost on port 1: the device is gone"));
}

TEST_F(RadioLinkTest, PulledForTenSecondsItIsBackWithItsChannelAndMute) {
  owner.Ordered.Muted = true;
  const base::DateValue before = loop.Now();
  radio_.Unplug();
  radio_.PoweredOn = false;
  radio_.TunedChannel = 1;
  loop.Run(10s);
  EXPECT_GE(link.Status().Since.Seconds(), before.Seconds());
  EXPECT_LE(link.Status().Since.Seconds(), before.Seconds() + 1);
  radio_.Plug();
  EXPECT_LT(UntilUp(), 6s);
  EXPECT_TRUE(radio_.PoweredOn);
  EXPECT_EQ(radio_.TunedChannel, 45);
  EXPECT_TRUE(radio_.Muted);
  EXPECT_THAT(owner.Lines,
              ElementsAre("Radio lost on port 1: the device is gone",
                          ::testing::MatchesRegex("Radio found again on port 1 after 0:1[2-6]")));
  const int replies = polling.Replies;
  loop.Run(10s);
  EXPECT_GT(polling.Replies, replies + 20);
  EXPECT_TRUE(link.Status().Up());
}

TEST_F(RadioLinkTest, PulledForTenMinutesItIsFoundWithinHalfAMinute) {
  radio_.Unplug();
  loop.Run(10min);
  EXPECT_EQ(owner.Lines.size(), 1U) << "one line for one outage";
  radio_.Plug();
  EXPECT_LT(UntilUp(), 36s);
  EXPECT_EQ(owner.Lines.size(), 2U);
  EXPECT_GE(owner.Away.at(0), 10min);
}

TEST_F(RadioLinkTest, TheDeviceIsFoundAgainUnderAnotherNumber) {
  radio_.Unplug();
  loop.Run(10s);
  radio_.SittingOnPort = 2;
  radio_.Plug();
  UntilUp();
  EXPECT_EQ(link.Status().Port, 2);
  EXPECT_EQ(session.pcrCOMPort(), 2);
  EXPECT_THAT(owner.Lines.back(), ::testing::StartsWith("Radio found again on port 2 after 0:1"));
  radio_.Unplug();
  loop.Run(1s);
  EXPECT_EQ(owner.Lines.back(), "Radio lost on port 2: the device is gone");
}

TEST_F(RadioLinkTest, AnotherRadioOnTheOldPortIsNotAccepted) {
  radio_.Unplug();
  radio_.SittingOnPort = 0;
  loop.Run(10s);
  radio_.Strangers[1] = "WXYZ9876";
  const int replies = polling.Replies;
  loop.Run(1min);
  EXPECT_EQ(State(), LinkState::Lost);
  EXPECT_EQ(link.Status().Cause, "another radio answers on port 1");
  EXPECT_EQ(polling.Replies, replies);
  EXPECT_THAT(radio_.CommandsToStrangers, Each(kAskIdentifier)) << "it is not powered on, tuned or polled";
  EXPECT_EQ(session.Replies().pcrRadioID, "ABCD1234");
  EXPECT_EQ(owner.Lines.size(), 1U);
}

TEST_F(RadioLinkTest, BehindAnotherRadioTheRightOneIsFoundUnderItsNewNumber) {
  radio_.Unplug();
  loop.Run(10s);
  radio_.Strangers[1] = "WXYZ9876";
  radio_.SittingOnPort = 2;
  radio_.Plug();
  UntilUp();
  EXPECT_EQ(link.Status().Port, 2);
}

TEST_F(RadioLinkTest, RadiosThatChangedPlacesUnseenAreToldApart) {
  radio_.Strangers[2] = "WXYZ9876";
  loop.Run(20s);  // it is there beside the radio
  radio_.Unplug();
  radio_.Strangers = {{1, "WXYZ9876"}};
  radio_.SittingOnPort = 2;
  radio_.Plug();
  loop.Run(1s);
  UntilUp();
  EXPECT_EQ(link.Status().Port, 2);
}

TEST_F(RadioLinkTest, AnIdentifierGarbledOnceSuspectsNobody) {
  radio_.Strangers[2] = "WXYZ9876";
  loop.Run(20s);
  radio_.Unplug();
  loop.Run(1s);
  radio_.Commands.clear();
  radio_.Identifier = "ABCD1235";
  radio_.WhenCommanded = [&] {
    if (Sent(kAskIdentifier) > 1) radio_.Identifier = "ABCD1234";
  };
  radio_.Plug();
  ASSERT_TRUE(
      loop.RunUntil([this] { return link.Status().Cause == "another radio answers on port 1"; }, 10s));
  UntilUp();
  EXPECT_EQ(link.Status().Port, 1);
  EXPECT_THAT(radio_.CommandsToStrangers, IsEmpty());
}

TEST_F(RadioLinkTest, ADeviceThatWasThereAllAlongIsNeverTouched) {
  radio_.Strangers[2] = "WXYZ9876";
  loop.Run(20s);
  radio_.Unplug();
  loop.Run(20min);
  EXPECT_THAT(radio_.Openings, IsEmpty());
}

TEST_F(RadioLinkTest, APortThatCannotBeOpenedSaysWhy) {
  radio_.Unplug();
  loop.Run(3s);
  radio_.Obstacles[1] = "there is no permission to use it";
  loop.Run(3s);
  EXPECT_EQ(link.Ready(), base::Result::Failed("the radio is lost: there is no permission to use it"));
  radio_.Obstacles.clear();
  radio_.Plug();
  UntilUp();
}

// Without power.

TEST_F(RadioLinkTest, ARadioWithoutPowerIsSilentAndComesBackOnItsChannel) {
  PowerFails();
  loop.Run(9s);
  EXPECT_TRUE(link.Status().Up()) << "ten requests";
  loop.Run(6s);
  EXPECT_EQ(State(), LinkState::Silent);
  EXPECT_EQ(link.Ready(), base::Result::Failed("the radio is lost: it does not answer"));
  loop.Run(1min);
  PowerReturns();
  EXPECT_LT(UntilUp(), 10s);
  EXPECT_TRUE(radio_.PoweredOn);
  EXPECT_EQ(radio_.TunedChannel, 45);
  EXPECT_THAT(owner.Lines,
              ElementsAre("Radio lost on port 1: it does not answer",
                          ::testing::MatchesRegex("Radio found again on port 1 after 1:(1[5-9]|2[0-9])")));
}

TEST_F(RadioLinkTest, TenSecondsWithoutPowerAreNoticedByTheRefusals) {
  PowerFails();
  loop.Run(10s);
  PowerReturns();
  loop.Run(15s);
  EXPECT_TRUE(link.Status().Up());
  EXPECT_TRUE(radio_.PoweredOn);
  EXPECT_EQ(radio_.TunedChannel, 45);
}

TEST_F(RadioLinkTest, ThreeRefusalsInARowMeanThatItIsOff) {
  radio_.PoweredOn = false;
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 5s));
  EXPECT_EQ(State(), LinkState::Off);
  EXPECT_EQ(link.Status().Cause, "it is switched off");
  EXPECT_LT(UntilUp(), 3s);
  EXPECT_EQ(Sent(kPowerOn), 1);
  EXPECT_EQ(Sent(kTuneTo45), 1);
  EXPECT_EQ(owner.Lines.size(), 2U);
}

TEST_F(RadioLinkTest, TheThirdRefusalIsEnough) {
  radio_.PoweredOn = false;
  int refused = 0;
  radio_.WhenCommanded = [&] { radio_.Answers = ++refused <= 3; };
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 5s)) << "no fourth one comes";
  EXPECT_EQ(State(), LinkState::Off);
}

TEST_F(RadioLinkTest, TwoRefusalsAreNone) {
  for (int round = 0; round < 20; ++round) {
    // Two commands are refused, and nothing else comes for so long that the link must see it.
    radio_.PoweredOn = false;
    int refused = 0;
    radio_.WhenCommanded = [&] { radio_.Answers = ++refused <= 2; };
    loop.Run(std::chrono::milliseconds(1100 + round * 13));
    radio_.WhenCommanded = [] {};
    radio_.PoweredOn = radio_.Answers = true;
    loop.Run(5s);
  }
  EXPECT_THAT(owner.Changes, IsEmpty());
}

TEST_F(RadioLinkTest, TheLastConfirmedChannelIsNotTrustedAfterAPowerLoss) {
  ASSERT_TRUE(session.pcrSelectChannel(45));
  radio_.PoweredOn = false;
  radio_.TunedChannel = 1;
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 5s));
  UntilUp();
  EXPECT_EQ(radio_.TunedChannel, 45);
}

// A frame that never ends.

TEST_F(RadioLinkTest, AStrayHeaderWithAHugeLengthDeafensForSecondsOnly) {
  radio_.Say(Bytes("5A A5 7F FF 00 00"));
  loop.Run(1s);
  const int before = polling.Replies;
  loop.Run(7s);
  EXPECT_GT(polling.Replies, before);
  EXPECT_THAT(owner.Changes, IsEmpty());
  EXPECT_EQ(Sent(kPowerOn), 0);
  EXPECT_GT(session.JunkBytes(), 0U);
  loop.Run(5s);
  EXPECT_GT(polling.Replies, before + 15);
}

TEST_F(RadioLinkTest, AFrameThatComesSlowlyIsNotDropped) {
  const int before = polling.Replies;
  radio_.Answers = false;
  const std::string frame = ChannelInfoFrame(45, "Deep Tracks", "Rock", "THE FOX", "Nightfall");
  ASSERT_TRUE(loop.RunUntil([this] { return session.Traffic().Unanswered() == 4; }, 10s));
  for (std::size_t at = 0; at < frame.size(); at += 8) {
    radio_.Say(frame.substr(at, 8));
    loop.Run(50ms);
  }
  EXPECT_EQ(polling.Replies, before + 1);
}

TEST_F(RadioLinkTest, StrayHeadersOneAfterAnotherDoNotDeafenASilentLink) {
  radio_.Answers = false;
  loop.Run(1min);
  ASSERT_EQ(State(), LinkState::Silent);
  radio_.Say(Bytes("5A A5 7F FF 00 00"));
  loop.Run(1s);
  radio_.Answers = true;
  EXPECT_LT(UntilUp(), 15s);
}

// The pace.

TEST_F(RadioLinkTest, ASilentRadioIsNotPestered) {
  radio_.Answers = false;
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 20s));
  const auto lost = loop.SteadyNow();
  const auto times = RemedyTimes(30min);
  ASSERT_GT(times.size(), 80U);
  EXPECT_LE(times.front() - lost, 300ms);
  for (std::size_t i = 1; i < times.size(); ++i) {
    EXPECT_GE(times[i] - times[i - 1], times[i - 1] - lost < 5min ? 2s : 30s);
  }
  EXPECT_GE(times.back() - lost, 29min) << "it never gives up";
  EXPECT_EQ(owner.Lines.size(), 1U);
}

TEST_F(RadioLinkTest, ALineThatIsSilentIsClosedAndOpenedAgain) {
  radio_.Answers = false;
  loop.Run(1min);
  ASSERT_FALSE(radio_.Openings.empty());
  for (std::size_t i = 1; i < radio_.Openings.size(); ++i) {
    EXPECT_GE(radio_.Openings[i].first - radio_.Openings[i - 1].first, 2s);
  }
  EXPECT_TRUE(session.pcrPortOpen());
  EXPECT_FALSE(session.OnTrial());
}

TEST_F(RadioLinkTest, ADeviceThatCannotBeOpenedIsTriedAtTheSamePace) {
  radio_.Unplug();
  radio_.Obstacles[1] = "it is in use";
  loop.Run(1s);
  const auto times = RemedyTimes(30min);
  ASSERT_GT(times.size(), 140U + 48U);
  for (std::size_t i = 1; i < times.size(); ++i) EXPECT_GE(times[i] - times[i - 1], 2s);
  EXPECT_GE(times.back() - times[times.size() - 2], 30s);
  EXPECT_EQ(owner.Lines.size(), 1U);
}

TEST_F(RadioLinkTest, ASilentRadioThatAnswersByItselfIsAskedAtOnce) {
  radio_.Answers = false;
  loop.Run(10min);
  radio_.Commands.clear();
  radio_.Answers = true;
  EXPECT_LT(UntilUp(), 10s) << "its turn would come within thirty seconds";
}

// After the machine's sleep.

TEST_F(RadioLinkTest, AfterTheMachinesSleepTheNextRemedyIsDueAtOnce) {
  for (int round = 0; round < 5; ++round) {
    radio_.Unplug();
    loop.Run(20min + round * 7s);
    ASSERT_FALSE(link.Status().Up());
    loop.SleepMachine(8h);
    radio_.Plug();
    EXPECT_LT(UntilUp(), 6s);
  }
}

TEST_F(RadioLinkTest, AfterTheMachinesSleepThePaceBeginsAnew) {
  radio_.Unplug();
  radio_.Obstacles[1] = "it is in use";
  loop.Run(20min);
  const auto slow = RemedyTimes(2min);
  EXPECT_LE(slow.size(), 5U);
  loop.SleepMachine(8h);
  const auto woken = loop.SteadyNow();
  const auto times = RemedyTimes(6min);
  ASSERT_GT(times.size(), 130U);
  EXPECT_LE(times.front() - woken, 300ms);
  for (std::size_t i = 1; i < times.size(); ++i) {
    EXPECT_GE(times[i] - times[i - 1], times[i - 1] - woken < 5min ? 2s : 30s);
  }
  EXPECT_GE(times.back() - times[times.size() - 2], 30s);
}

TEST_F(RadioLinkTest, AfterTheMachinesSleepTheDevicesMayHaveChangedPlaces) {
  radio_.Obstacles[2] = "it is in use";
  loop.Run(20s);  // it is there beside the radio
  radio_.Unplug();
  radio_.Obstacles = {{1, "it is in use"}};
  radio_.SittingOnPort = 2;
  radio_.Plug();
  loop.SleepMachine(8h);
  loop.Run(1s);
  EXPECT_LT(UntilUp(), 10s);
  EXPECT_EQ(link.Status().Port, 2);
}

TEST_F(RadioLinkTest, AfterTheMachinesSleepTheRadioIsTunedOnceMore) {
  radio_.TunedChannel = 1;  // it had no power, and is on all the same
  loop.SleepMachine(8h);
  loop.Run(1s);
  EXPECT_EQ(radio_.TunedChannel, 45);
  EXPECT_EQ(Sent(kTuneTo45), 1);
  EXPECT_EQ(Sent(kMuteOff), 1);
  EXPECT_THAT(owner.Changes, IsEmpty());
}

TEST_F(RadioLinkTest, AClockThatIsSetSendsTheRadioNothing) {
  loop.StepWallClock(1h);
  loop.Run(10s);
  loop.StepWallClock(-1h);
  loop.Run(10s);
  EXPECT_EQ(Sent(kTuneTo45), 0) << "to select a channel again may interrupt its sound";
}

// The channel.

TEST_F(RadioLinkTest, ARefusedSelectIsRepeatedAtThePace) {
  radio_.RefusesTuning = true;
  owner.Ordered.Channel = 9;
  EXPECT_FALSE(session.pcrSelectChannel(9));
  const auto times = TimesOf(kTuneTo9, 6min);
  ASSERT_GT(times.size(), 100U);
  for (std::size_t i = 1; i < 100; ++i) EXPECT_GE(times[i] - times[i - 1], 2s);
  EXPECT_GE(times.back() - times[times.size() - 2], 30s);
  EXPECT_TRUE(link.Status().Up());
  EXPECT_EQ(link.Status().Doubt, "the radio refuses channel 9");
  EXPECT_EQ(owner.Changes.size(), 1U);
  radio_.RefusesTuning = false;
  loop.Run(31s);
  EXPECT_EQ(radio_.TunedChannel, 9);
  EXPECT_EQ(link.Status().Doubt, "");
  EXPECT_EQ(owner.Changes.size(), 2U);
  EXPECT_THAT(owner.Lines, IsEmpty());
}

TEST_F(RadioLinkTest, ASelectThatTheRadioNeverHeardIsRepeated) {
  owner.Ordered.Channel = 9;
  radio_.Answers = false;
  session.pcrSendBinary(Bytes("5A A5 00 06 10 02 09 00 00 01 01 19"));
  radio_.Answers = true;
  loop.Run(5s);
  EXPECT_EQ(radio_.TunedChannel, 9);
  EXPECT_EQ(Sent(kTuneTo9), 2);
  EXPECT_THAT(owner.Changes, IsEmpty());
}

TEST_F(RadioLinkTest, AUserMayTakeTheRadioToAnotherChannelExceptInAnEvent) {
  radio_.TunedChannel = 9;
  radio_.Say(Bytes("5A A5 00 06 90 01 00 09 00 00 ED ED"));
  loop.Run(1min);
  EXPECT_EQ(radio_.TunedChannel, 9);
  owner.Ordered.InEvent = true;
  loop.Run(1s);
  EXPECT_EQ(radio_.TunedChannel, 45);
  EXPECT_EQ(Sent(kTuneTo45), 1);
  EXPECT_THAT(owner.Lines, IsEmpty());
}

TEST_F(RadioLinkTest, AGapLeavesAUsersChannelAlone) {
  radio_.TunedChannel = 9;
  radio_.Say(Bytes("5A A5 00 06 90 01 00 09 00 00 ED ED"));
  loop.Run(1s);
  radio_.Answers = false;
  loop.Run(5s);
  radio_.Answers = true;
  loop.Run(10s);
  EXPECT_EQ(radio_.TunedChannel, 9);
}

TEST_F(RadioLinkTest, AUserWhoCameBackToTheChannelHasLeftNothingToLeaveAlone) {
  radio_.Say(Bytes("5A A5 00 06 90 01 00 09 00 00 ED ED"));
  radio_.Say(Bytes("5A A5 00 06 90 01 00 2D 00 00 ED ED"));
  owner.Ordered.Muted = true;
  for (const bool inEvent : {false, true}) {
    owner.Ordered.InEvent = inEvent;
    radio_.Muted = false;
    radio_.TunedChannel = 1;
    radio_.Answers = false;
    loop.Run(5s);
    radio_.Answers = true;
    loop.Run(5s);
    EXPECT_EQ(radio_.TunedChannel, 45);
    EXPECT_TRUE(radio_.Muted);
  }
}

TEST_F(RadioLinkTest, InAnEventARadioThatWakesUpElsewhereIsMutedAgainToo) {
  owner.Ordered.InEvent = owner.Ordered.Muted = true;
  radio_.Muted = false;
  radio_.TunedChannel = 1;
  radio_.Answers = false;
  loop.Run(5s);
  radio_.Say(Bytes("5A A5 00 06 90 01 00 01 00 00 ED ED"));
  loop.Run(300ms);
  radio_.Answers = true;
  loop.Run(5s);
  EXPECT_EQ(radio_.TunedChannel, 45);
  EXPECT_TRUE(radio_.Muted);
}

TEST_F(RadioLinkTest, AChannelChosenMeanwhileIsTheOneItComesBackOn) {
  radio_.Unplug();
  loop.Run(3s);
  owner.Ordered.Channel = 9;
  radio_.Plug();
  UntilUp();
  EXPECT_EQ(radio_.TunedChannel, 9);
  EXPECT_EQ(Sent(kTuneTo45), 0);
}

TEST_F(RadioLinkTest, AMuteThatGetsNoAnswerIsRepeated) {
  owner.Ordered.Muted = true;
  radio_.PoweredOn = false;
  int deaf = 0;
  radio_.WhenCommanded = [&] { radio_.Answers = radio_.Commands.back() != kMuteOn || ++deaf > 1; };
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 5s));
  UntilUp();
  EXPECT_FALSE(radio_.Muted);
  loop.Run(3s);
  EXPECT_TRUE(radio_.Muted);
  EXPECT_EQ(Sent(kMuteOn), 2);
}

TEST_F(RadioLinkTest, AMuteChangedWhileItComesBackIsSentOnceMore) {
  radio_.PoweredOn = false;
  radio_.WhenCommanded = [&] {
    if (radio_.Commands.back() == kMuteOff) owner.Ordered.Muted = true;
  };
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 5s));
  UntilUp();
  loop.Run(1s);
  EXPECT_TRUE(radio_.Muted);
  EXPECT_EQ(Sent(kMuteOff), 1);
  EXPECT_EQ(Sent(kMuteOn), 1);
  loop.Run(1min);
  EXPECT_EQ(Sent(kMuteOn), 1) << "once is enough";
}

// Without the watch.

TEST_F(RadioLinkTest, WithoutTheWatchFailuresPassUnnoticed) {
  owner.Ordered.Watch = false;
  radio_.Unplug();
  loop.Run(1min);
  radio_.Plug();
  loop.Run(10min);
  EXPECT_FALSE(session.pcrPortOpen());
  EXPECT_THAT(owner.Changes, IsEmpty());
  EXPECT_EQ(link.Ready(), base::Result::Done());
}

TEST_F(RadioLinkTest, WithoutTheWatchNothingIsSent) {
  owner.Ordered.Watch = false;
  radio_.TunedChannel = 1;
  radio_.Answers = false;
  loop.Run(1min);
  radio_.Answers = true;
  radio_.RefusesTuning = true;
  EXPECT_TRUE(session.pcrSelectChannel(45)) << "true at once, as ever";
  loop.SleepMachine(1h);
  loop.Run(10min);
  EXPECT_EQ(Sent(kTuneTo45), 1);
  EXPECT_EQ(Sent(kPowerOn), 0);
  EXPECT_EQ(radio_.TunedChannel, 1);
}

TEST_F(RadioLinkTest, TheWatchCanBeSwitchedOffAndOnInAnOutage) {
  radio_.Unplug();
  loop.Run(10s);
  owner.Ordered.Watch = false;
  loop.Run(1s);
  EXPECT_TRUE(link.Status().Up());
  EXPECT_TRUE(owner.Changes.back().Up());
  radio_.Plug();
  loop.Run(1min);
  EXPECT_FALSE(session.pcrPortOpen());
  EXPECT_EQ(owner.Lines.size(), 1U) << "nobody found it again";
  owner.Ordered.Watch = true;
  loop.Run(1s);
  EXPECT_FALSE(link.Status().Up());
  UntilUp();
}

TEST_F(RadioLinkTest, TheWatchSwitchedOffInATrialLeavesNoStrangersPortOpen) {
  radio_.Unplug();
  loop.Run(1s);
  radio_.SittingOnPort = 0;
  radio_.Strangers[1] = "WXYZ9876";
  ASSERT_TRUE(loop.RunUntil([this] { return session.OnTrial() && radio_.IsOpen(); }, 10s));
  owner.Ordered.Watch = false;
  loop.Run(1min);
  EXPECT_FALSE(session.OnTrial());
  EXPECT_FALSE(session.pcrPortOpen());
}

// The end, and other people's waits.

TEST_F(RadioLinkTest, AtTheEndTheRadioIsMutedSwitchedOffAndLeft) {
  polling.Stop();
  loop.Run(1s);
  radio_.Commands.clear();
  link.StopWatch();
  link.SwitchOff();
  EXPECT_THAT(radio_.Commands, ElementsAre(kMuteOn, kPowerOff));
  EXPECT_FALSE(radio_.PoweredOn);
  EXPECT_TRUE(radio_.IsOpen());
  link.Close();
  EXPECT_FALSE(radio_.IsOpen());
}

TEST_F(RadioLinkTest, ARadioThatIsLostIsNotWaitedForAtTheEnd) {
  radio_.Answers = false;
  ASSERT_TRUE(loop.RunUntil([this] { return !link.Status().Up(); }, 20s));
  polling.Stop();
  link.StopWatch();
  radio_.Commands.clear();
  const auto before = loop.SteadyNow();
  link.SwitchOff();
  EXPECT_EQ(loop.SteadyNow(), before);
  EXPECT_THAT(radio_.Commands, IsEmpty());
  link.Close();
  EXPECT_FALSE(radio_.IsOpen());
}

TEST_F(RadioLinkTest, AShutdownEndsTheWatch) {
  run.ShuttingDown = true;
  radio_.Unplug();
  loop.Run(1min);
  EXPECT_THAT(owner.Changes, IsEmpty());
}

TEST_F(RadioLinkTest, NothingIsReportedWithinAnothersWait) {
  radio_.Unplug();
  for (int round = 0; round < 20; ++round) {
    loop.Sleep(100ms);
    loop.PumpEvents();
  }
  EXPECT_THAT(owner.Changes, IsEmpty());
  loop.Run(50ms);
  EXPECT_EQ(owner.Changes.size(), 1U) << "but right after it";
}

}  // namespace
}  // namespace kestrune::test
