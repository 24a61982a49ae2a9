#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/SpokenChanges.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using presenters::SpokenChanges;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SpokenChangesTest : public ::testing::Test {
 protected:
  SpokenChangesTest() {
    state.Run.FormLoading = false;
    Plays("Moonlighters", "Slow Tide");
    Hear(2s);
  }
  void Plays(const char* artist, const char* song) {
    state.Announcement.Artist = artist;
    state.Announcement.Song = song;
  }
  /// Asks ten times a second, and keeps what is said.
  void Hear(std::chrono::milliseconds time) {
    for (const auto end = loop.SteadyNow() + time; loop.SteadyNow() < end; loop.Run(100ms)) {
      std::string text = changes.Next(state);
      if (!text.empty()) said.push_back(std::move(text));
    }
  }

  SimulatedEventLoop loop;
  recorder::State state;
  SpokenChanges changes{loop};
  std::vector<std::string> said;
};

TEST_F(SpokenChangesTest, WhatStandsAtTheStartIsNotSaid) {
  EXPECT_THAT(said, IsEmpty());
}

TEST_F(SpokenChangesTest, ANewSongIsSaidOnce) {
  Plays("Salt & Sun", "You & I");
  Hear(10s);
  EXPECT_THAT(said, ElementsAre("You & I by Salt & Sun."));
}

TEST_F(SpokenChangesTest, AnArtistOrATitleAloneIsSaidAsItIs) {
  Plays("Salt & Sun", "  ");
  Hear(2s);
  Plays("", "News\nat Noon");
  Hear(2s);
  Plays("", "");
  Hear(2s);
  EXPECT_THAT(said, ElementsAre("Salt & Sun.", "News at Noon."));
}

TEST_F(SpokenChangesTest, AChangeInStepsIsSaidWhenItHasStoodForASecond) {
  Plays("Salt & Sun", "Slow Tide");
  Hear(900ms);
  Plays("Salt & Sun", "You & I");
  Hear(1s);
  EXPECT_THAT(said, IsEmpty());
  Hear(100ms);
  EXPECT_THAT(said, ElementsAre("You & I by Salt & Sun."));
}

TEST_F(SpokenChangesTest, WhatComesBackWithinASecondWasNoChange) {
  state.Recording.Phase = recorder::Phase::Recording;
  Hear(500ms);
  state.Recording.Phase = recorder::Phase::Idle;
  Hear(5s);
  EXPECT_THAT(said, IsEmpty());
}

TEST_F(SpokenChangesTest, TheStatusIsSaidAndItsEndToo) {
  state.Recording.Phase = recorder::Phase::Recording;
  Hear(2s);
  Plays("Salt & Sun", "You & I");
  state.Recording.Phase = recorder::Phase::Killed;
  Hear(2s);
  state.Recording.Phase = recorder::Phase::Idle;
  Hear(2s);
  EXPECT_THAT(said,
              ElementsAre("Recording.", "You & I by Salt & Sun. Recording (Killed).", "Not recording."));
}

TEST_F(SpokenChangesTest, WhatHasFailedTakesThePlaceOfTheStatus) {
  state.Recording.Phase = recorder::Phase::Recording;
  state.Watch.RadioFailure = "the device is gone";
  Hear(2s);
  state.Watch.RadioFailure.clear();
  Hear(2s);
  EXPECT_THAT(said, ElementsAre("The radio is lost: the device is gone.", "Recording."));
}

TEST_F(SpokenChangesTest, RoomThatShrinksIsSaidOnce) {
  for (const char* room : {"room for 0:59", "room for 0:58", "room for 0:57", "room for 0:56"}) {
    state.Watch.LittleRoom = room;
    Hear(700ms);
  }
  EXPECT_THAT(said, ElementsAre("The disk is nearly full: room for 0:58."));
}

TEST_F(SpokenChangesTest, AnotherChannelIsSaidWithItsSong) {
  state.Announcement.Channel = 47;
  state.Announcement.Station = "Campfire Folk";
  Plays("Abigail Wren", "Low Water");
  Hear(2s);
  EXPECT_THAT(said, ElementsAre("Channel 47 Campfire Folk. Low Water by Abigail Wren."));
}

TEST_F(SpokenChangesTest, NothingIsSaidWithinTheStart) {
  state.Run.FormLoading = true;
  Plays("Salt & Sun", "You & I");
  Hear(5s);
  EXPECT_THAT(said, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
