// When an idle program goes after a hint, and how it comes back. The radio answers in bytes; keeping is the test's own.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "recorder/HintFollower.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/SimulatedEventLoop.h"
#include "support/TestRadio.h"

namespace kestrune::recorder {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NoEvents final : public radio::ChannelEvents {
 public:
  void ShowChannel(const radio::ChannelEntry& /*entry*/) override {}
  void ShowTunedChannel(std::int16_t /*number*/, const radio::ChannelEntry& /*entry*/) override {}
  void ShowBareTitle() override {}
  void ChannelTuned() override {}
  void WalkFinished() override {}
};

class HintFollowerTest : public ::testing::Test {
 protected:
  HintFollowerTest() {
    for (const int channel : {44, 45, 47}) Radio.Channels[channel] = {"Station", "Rock", "Nobody", "Nothing"};
    state.Settings.Hints = state.Settings.FollowHints = true;
    state.Radio.ChannelNumber = 44;
    EXPECT_TRUE(link.FindRadio(1).Found());
    follower.Start();
  }

  static Hint HintOf(std::int64_t number, std::int16_t channel = 47) {
    return {.Number = number,
            .Began = {},
            .Channel = channel,
            .Station = "Campfire Folk",
            .Artist = "Abigail Wren",
            .Song = "Winter Apples",
            .Since = {}};
  }
  void Raise(const Hint& hint) { state.Hints.insert(state.Hints.begin(), hint); }
  /// The cycle has begun the hint's song in a file.
  void BeginSong() {
    CaptureRecord& capture = state.Recording.CaptureSlots.at(0);
    capture.Artist = state.Radio.CurrentArtist = "Abigail Wren";
    capture.Song = state.Radio.CurrentSong = "Winter Apples";
    capture.Naming.Values.Channel = state.Radio.ChannelNumber;
    state.Radio.ChannelChanged = false;
  }
  /// Goes after a hint, up to the mark on its song.
  void Follow() {
    Raise(HintOf(1));
    loop.Run(3s);
    ASSERT_EQ(Radio.TunedChannel, 47);
    BeginSong();
    loop.Run(2s);
    ASSERT_EQ(marks, 1);
  }
  /// Whether it goes after a hint that begins now.
  [[nodiscard]] bool Follows() {
    Raise(HintOf(++hints_ + 100));
    loop.Run(3s);
    return Radio.TunedChannel == 47;
  }

  test::SimulatedEventLoop loop;
  test::TestRadio Radio{loop};
  test::RecordingJournal journal;
  test::MemoryFiles files;
  State state;
  NoEvents events;
  radio::RadioLink link{Radio, loop, state.Run, journal};
  radio::Channels channels{
      state.Radio, state.Run, {.Link = link, .Files = files, .Loop = loop, .Journal = journal}, events};
  Door door{loop};
  int marks = 0;
  bool marked = false;
  HintFollower follower{state,
                        {.Channels = channels, .Door = door, .Loop = loop, .Journal = journal},
                        {.Mark =
                             [this] {
                               ++marks;
                               marked = true;
                             },
                         .Marked = [this] { return marked; }}};

 private:
  std::int64_t hints_ = 0;
};

TEST_F(HintFollowerTest, ItKeepsTheSongAndComesBack) {
  Follow();
  EXPECT_EQ(state.HintHome, 44);
  // The song's text changes; its file still awaits the end of its sound.
  state.Radio.CurrentSong = "Tin Cup";
  loop.Run(20s);
  EXPECT_EQ(Radio.TunedChannel, 47);
  marked = false;
  loop.Run(3s);
  EXPECT_EQ(Radio.TunedChannel, 44);
  EXPECT_EQ(state.HintHome, 0);
  EXPECT_EQ(marks, 1);
  EXPECT_THAT(journal.Log, ElementsAre("Following a hint: Channel 47  \"Abigail Wren - Winter Apples\"",
                                       "Back on channel 44 after a hint"));
}

TEST_F(HintFollowerTest, NothingIsFollowedUnlessItIsAskedFor) {
  state.Settings.FollowHints = false;
  EXPECT_FALSE(Follows());
  state.Settings.FollowHints = true;
  state.Settings.Hints = false;
  EXPECT_FALSE(Follows());
  state.Settings.Hints = true;
  EXPECT_TRUE(Follows());
}

TEST_F(HintFollowerTest, OnlyAFreshHintIsFollowedAndOnlyOnce) {
  Hint old = HintOf(1);
  old.Fresh = false;
  Raise(old);
  loop.Run(3s);
  EXPECT_EQ(Radio.TunedChannel, 0);
  state.Hints.clear();
  Raise(HintOf(2));
  loop.Run(3s);
  ASSERT_EQ(Radio.TunedChannel, 47);
  loop.Run(20s);
  EXPECT_EQ(Radio.TunedChannel, 44) << "its song never began";
  loop.Run(1min);
  EXPECT_EQ(Radio.TunedChannel, 44);
}

TEST_F(HintFollowerTest, AnythingThatIsRecordedOrArmedKeepsItHere) {
  RecordingState& recording = state.Recording;
  const std::vector<std::function<void()>> kBusy{[&] { recording.Phase = Phase::WaitingForNextSong; },
                                                 [&] { recording.RecordArmed = true; },
                                                 [&] { recording.StartPending = true; },
                                                 [&] { recording.StopPending = true; },
                                                 [&] { recording.Muted = true; },
                                                 [&] { marked = true; },
                                                 [&] { recording.AwaitedCuts.emplace_back().Wanted = true; },
                                                 [&] { state.Radio.ChannelsLoading = true; },
                                                 [&] { state.Settings.Cleftune = false; },
                                                 [&] { state.Watch.SoundInputFailure = "gone"; },
                                                 [&] { state.Schedule.ActiveSchedule = 3; },
                                                 [&] { state.Link.State = radio::LinkState::Silent; },
                                                 [&] { state.Run.ShuttingDown = true; },
                                                 [&] {
                                                   state.Radio.CurrentArtist = "Abigail Wren";
                                                   state.Radio.CurrentSong = "Winter Apples";
                                                 }};
  for (std::size_t i = 0; i < kBusy.size(); ++i) {
    SCOPED_TRACE(i);
    const config::Settings settings = state.Settings;
    const auto radio = state.Radio;
    kBusy[i]();
    EXPECT_FALSE(Follows());
    state.Hints.clear();
    recording = {};
    state.Schedule = {};
    state.Watch = {};
    state.Link = {};
    state.Run = {};
    state.Radio = radio;
    state.Settings = settings;
    marked = false;
  }
  EXPECT_TRUE(Follows());
}

TEST_F(HintFollowerTest, AnEventWithinTenMinutesKeepsItHere) {
  schedule::ScheduleEntry& entry = state.Entries.at(2);
  entry.Enabled = true;
  entry.StartDate = loop.Now().AddSeconds(595);
  entry.EndDate = entry.StartDate.AddHours(1);
  EXPECT_FALSE(Follows());
  loop.Run(15min);
  EXPECT_FALSE(Follows()) << "it is due";
  state.Hints.clear();
  loop.Run(1h);
  EXPECT_TRUE(Follows());
}

TEST_F(HintFollowerTest, AnEventInElevenMinutesDoesNot) {
  schedule::ScheduleEntry& entry = state.Entries.at(2);
  entry.Enabled = true;
  entry.StartDate = loop.Now().AddMinutes(11);
  entry.EndDate = entry.StartDate.AddHours(1);
  EXPECT_TRUE(Follows());
}

TEST_F(HintFollowerTest, FiveMinutesBelongToTheUser) {
  follower.UserActed();
  loop.Run(290s);
  EXPECT_FALSE(Follows());
  state.Hints.clear();
  loop.Run(10s);
  EXPECT_TRUE(Follows());
  BeginSong();
  loop.Run(2s);
  EXPECT_EQ(marks, 1) << "what they did before does not matter any more";
}

TEST_F(HintFollowerTest, WhatHappensWhileItWaitsAtTheDoorCounts) {
  std::optional<Door::Hold> hold(door);
  Raise(HintOf(1));
  loop.Run(2s);
  follower.UserActed();
  hold.reset();
  loop.Run(3s);
  EXPECT_EQ(Radio.TunedChannel, 0);
  EXPECT_THAT(journal.Log, IsEmpty());
}

TEST_F(HintFollowerTest, AUserWhoActsMeanwhileStaysThere) {
  Follow();
  follower.UserActed();
  marked = false;
  loop.Run(1min);
  EXPECT_EQ(Radio.TunedChannel, 47);
  EXPECT_EQ(state.HintHome, 0);
}

TEST_F(HintFollowerTest, AUserWhoActsWhileItTunesStaysThere) {
  Radio.AnswerDelay = 700ms;
  Raise(HintOf(1));
  loop.Run(600ms);
  follower.UserActed();
  loop.Run(30s);
  EXPECT_EQ(Radio.TunedChannel, 47);
  EXPECT_EQ(marks, 0) << "nobody else's song is kept";
}

TEST_F(HintFollowerTest, AnEventOrAnotherHandEndsIt) {
  Follow();
  state.Schedule.ActiveSchedule = 1;
  marked = false;
  loop.Run(5s);
  EXPECT_EQ(Radio.TunedChannel, 47);
  EXPECT_EQ(state.HintHome, 0);
  state.Schedule.ActiveSchedule = 0;
  loop.Run(1min);
  EXPECT_EQ(Radio.TunedChannel, 47) << "it is forgotten";
}

TEST_F(HintFollowerTest, AChannelThatAnotherHandChoseStays) {
  Follow();
  channels.SetChannelNumber(45);
  marked = false;
  loop.Run(1min);
  EXPECT_EQ(Radio.TunedChannel, 45);
}

TEST_F(HintFollowerTest, ASongThatIsOverAlreadyIsNotWaitedFor) {
  Raise(HintOf(1));
  loop.Run(3s);
  ASSERT_EQ(Radio.TunedChannel, 47);
  state.Radio.CurrentArtist = "Juniper";
  state.Radio.CurrentSong = "Tin Cup";
  state.Radio.ChannelChanged = false;
  loop.Run(3s);
  EXPECT_EQ(Radio.TunedChannel, 44);
  EXPECT_EQ(marks, 0);
}

TEST_F(HintFollowerTest, TheSameSongInAFileOfAnotherChannelIsNotMarked) {
  CaptureRecord& capture = state.Recording.CaptureSlots.at(0);
  capture.Artist = "Abigail Wren";
  capture.Song = "Winter Apples";
  capture.Naming.Values.Channel = 44;
  Raise(HintOf(1));
  loop.Run(5s);
  EXPECT_EQ(Radio.TunedChannel, 47);
  EXPECT_EQ(marks, 0);
}

TEST_F(HintFollowerTest, HalfAnHourIsTheEndOfIt) {
  Follow();
  loop.Run(29min);
  EXPECT_EQ(Radio.TunedChannel, 47);
  loop.Run(2min);
  EXPECT_EQ(Radio.TunedChannel, 44);
}

TEST_F(HintFollowerTest, ARadioThatIsLostIsWaitedFor) {
  Follow();
  state.Link.State = radio::LinkState::Lost;
  marked = false;
  loop.Run(5min);
  EXPECT_EQ(Radio.TunedChannel, 47);
  state.Link = {};
  loop.Run(3s);
  EXPECT_EQ(Radio.TunedChannel, 44);
}

TEST_F(HintFollowerTest, ACloseAsksForNothingMore) {
  Follow();
  state.Run.ShuttingDown = true;
  marked = false;
  loop.Run(1min);
  EXPECT_EQ(Radio.TunedChannel, 47);
}

}  // namespace
}  // namespace kestrune::recorder
