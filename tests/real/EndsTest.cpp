#include <algorithm>
#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::chrono::milliseconds kAskedToEnd = 60s;

/// Units that record, started together; each test ends one of them in its own way.
class Ends : public testing::Test {
 protected:
  struct Track {
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<Unit> Recorder;
  };

  static void SetUpTestSuite() {
    world_ = new World;
    for (const std::string way :
         {"terminated", "interrupted", "quit", "radio left on", "stopped", "quit at a cut"}) {
      Track& track = world_->Tracks[way];
      track.Radio = std::make_unique<Receiver>(world_->Folder / ("radio of " + way),
                                               Receiver::Setup{ShortLineUp({"One", "Two"}, 6)});
      auto settings = ShortSongs();
      if (way == "radio left on") settings["RadioOnAtExit"] = "True";
      if (way == "stopped") settings["Integrel"] = "False";
      if (way == "quit at a cut") settings["SongDelay"] = "2000";
      track.Recorder = std::make_unique<Unit>(
          world_->Folder / way,
          Unit::Setup{"pipe:" + QuietFile(world_->Folder.Path()), track.Radio->Link(), settings});
      track.Recorder->Start();
    }
  }
  static void TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
  }

  /// The unit of that name in the middle of a song that it records.
  static Track& Recording(const std::string& way) {
    Track& track = world_->Tracks.at(way);
    EXPECT_TRUE(track.Recorder->WaitUntilIdle()) << track.Recorder->Program().Errors();
    EXPECT_EQ(track.Recorder->Ctl({"record"}).Exit, 0);
    EXPECT_TRUE(track.Recorder->WaitForStatus([](const Unit::Json& status) {
      return status["recording"] == "Recording" && status["captureLengthMs"] > 1500;
    }));
    EXPECT_FALSE(track.Recorder->Captures().empty());
    return track;
  }

  static void ExpectClosed(Track& track) {
    EXPECT_THAT(track.Recorder->Captures(), IsEmpty());
    EXPECT_THAT(track.Recorder->LogText(), HasSubstr("Shutting Down"));
    EXPECT_EQ(track.Recorder->Ctl({"status"}).Exit, 3) << "nobody is at the socket any more";
  }

  static void ExpectRadioOff(const Track& track) {
    const auto power = track.Radio->Events("power");
    ASSERT_FALSE(power.empty()) << "the radio was never switched";
    EXPECT_EQ(power.back()["on"], false);
  }

 private:
  struct World {
    TemporaryFolder Folder;
    std::map<std::string, Track> Tracks;
  };
  static inline World* world_ = nullptr;
};

TEST_F(Ends, ATerminatedProgramClosesCleanly) {
  Track& track = Recording("terminated");
  track.Recorder->Program().Signal(SIGTERM);
  EXPECT_EQ(track.Recorder->Program().Wait(kAskedToEnd), 0);
  ExpectClosed(track);
  ExpectRadioOff(track);
}

TEST_F(Ends, AnInterruptedProgramClosesCleanly) {
  Track& track = Recording("interrupted");
  track.Recorder->Program().Signal(SIGINT);
  EXPECT_EQ(track.Recorder->Program().Wait(kAskedToEnd), 0);
  ExpectClosed(track);
  ExpectRadioOff(track);
}

TEST_F(Ends, AQuitClosesCleanly) {
  Track& track = Recording("quit");
  EXPECT_EQ(track.Recorder->Quit(), 0);
  ExpectClosed(track);
  ExpectRadioOff(track);
}

TEST_F(Ends, ARadioThatIsToStayOnIsLeftAloneAndTheSongInHandIsLost) {
  Track& track = Recording("radio left on");
  const std::size_t kept = track.Recorder->Recordings().size();
  EXPECT_EQ(track.Recorder->Quit(), 0);
  ExpectClosed(track);
  EXPECT_EQ(track.Recorder->Recordings().size(), kept);
  EXPECT_THAT(track.Recorder->LogText(), testing::Not(HasSubstr("Not Recorded")));
  const auto power = track.Radio->Events("power");
  EXPECT_TRUE(power.empty() || power.back()["on"] == true);
  const auto mute = track.Radio->Events("mute");
  EXPECT_TRUE(mute.empty() || mute.back()["on"] == false);
}

TEST_F(Ends, AStopAndAtOnceAQuitKeepThePiece) {
  Track& track = Recording("stopped");
  // Long enough to be kept.
  EXPECT_TRUE(track.Recorder->WaitForStatus(
      [](const Unit::Json& status) { return status["captureLengthMs"] > 3000; }));
  const std::size_t kept = track.Recorder->Recordings().size();
  EXPECT_EQ(track.Recorder->Ctl({"stop"}).Exit, 0);
  EXPECT_EQ(track.Recorder->Quit(), 0);
  ExpectClosed(track);
  EXPECT_EQ(track.Recorder->Recordings().size(), kept + 1) << track.Recorder->LogText();
}

TEST_F(Ends, AQuitWhileASongIsCutKeepsThatSong) {
  Track& track = Recording("quit at a cut");
  const std::size_t kept = track.Recorder->Recordings().size();
  const std::string song = track.Recorder->Status()["song"];
  EXPECT_TRUE(
      track.Recorder->WaitForStatus([&](const Unit::Json& status) { return status["song"] != song; }));
  // The next tick sees the change and sleeps through the song's delay; the quit waits for the end of both.
  std::this_thread::sleep_for(500ms);
  EXPECT_EQ(track.Recorder->Quit(), 0);
  ExpectClosed(track);
  // On a slow machine another song may have ended before its name was asked for.
  EXPECT_GE(track.Recorder->Recordings().size(), kept + 1) << track.Recorder->LogText();
  EXPECT_THAT(track.Recorder->LogText(), HasSubstr(song));
}

}  // namespace
}  // namespace kestrune::test
