#include <gtest/gtest.h>

#include "recorder/Clock.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

class ClockTest : public ::testing::Test {
 protected:
  UnitRig rig;
  void Lists(std::string_view text) {
    rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", text);
  }
  [[nodiscard]] std::string Status() { return rig.Window().lblRecording.Caption; }
};

TEST_F(ClockTest, TheStatusBlinksWithAPeriodOfOneSecond) {
  rig.StartIdle();
  rig->cmdRecord();
  int changes = 0;
  bool visible = rig.Window().lblRecording.Visible;
  for (int tenth = 0; tenth < 100; ++tenth) {
    rig.Run(100ms);
    if (rig.Window().lblRecording.Visible != visible) ++changes;
    visible = rig.Window().lblRecording.Visible;
  }
  EXPECT_EQ(changes, 20);
}

TEST_F(ClockTest, AnIdleStatusDoesNotBlink) {
  rig.StartIdle();
  const bool visible = rig.Window().lblRecording.Visible;
  for (int tenth = 0; tenth < 30; ++tenth) {
    rig.Run(100ms);
    EXPECT_EQ(rig.Window().lblRecording.Visible, visible);
  }
}

TEST_F(ClockTest, TheLengthOfTheCaptureInHandIsShown) {
  rig.StartIdle();
  rig.NextSong("A", "1");
  rig->cmdRecord();
  EXPECT_TRUE(rig.Window().lblClock.Visible);
  const std::int64_t wanted = 65000 - rig->State().Recording.CaptureSlots[0].LengthMs;
  rig.Run(std::chrono::milliseconds(wanted + 500));
  EXPECT_EQ(rig.Window().lblClock.Caption, "00:01:05");
}

TEST_F(ClockTest, TheSignalIsAskedForEveryFiveSeconds) {
  rig.StartIdle();
  rig.Radio.Commands.clear();
  rig.Run(60s);
  EXPECT_EQ(std::count(rig.Radio.Commands.begin(), rig.Radio.Commands.end(), "5AA5000143EDED"), 12);
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Caption, "80%");
  EXPECT_EQ(rig.Window().pbrSatSignal[0].Value, 2400);
  EXPECT_EQ(rig.Window().pbrSatSignal[1].Caption, "99%");
  EXPECT_EQ(rig.Window().pbrTerSignal.Caption, "100%");
}

TEST_F(ClockTest, TheFirstSignalAloneIsLogged) {
  rig.StartIdle();
  rig.Run(60s);
  const std::vector<std::string> texts = rig.LogTexts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Satellite 1 signal quality: 80%"), 1);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Satellite 2 signal quality: 99%"), 1);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Terrestrial signal quality: 100%"), 1);
}

TEST_F(ClockTest, ASongOnTheKillListShowsSo) {
  Lists("2Moon\n");
  rig.Set("SievanceKill", "1");
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(1s);
  EXPECT_EQ(Status(), "Recording (Killed)");
  rig.NextSong("Other", "Song");
  rig.Run(1s);
  EXPECT_EQ(Status(), "Recording");
}

TEST_F(ClockTest, GrabbedNeverStaysSinceTheKillTestHasTheLastWord) {
  Lists("0Moon\n");
  rig.Set("SievanceGrab", "1");
  rig.Set("SievanceKill", "1");
  rig.StartIdle();
  rig->cmdRecord();
  for (int tenth = 0; tenth < 30; ++tenth) {
    rig.Run(100ms);
    EXPECT_EQ(Status(), "Recording");
  }
}

TEST_F(ClockTest, AFragmentWithAnAmpersandMissesTheDoubledCaption) {
  Lists("2Salt & Sea\n");
  rig.Set("SievanceKill", "1");
  rig.Radio.Channels[44] = {"Harbour", "Rock", "Salt & Sea", "Tide"};
  rig.StartIdle();
  rig->cmdRecord();
  rig.Run(20s);
  EXPECT_EQ(Status(), "Recording") << "the caption holds the ampersand twice";
  rig.NextSong("Other", "Song");
  EXPECT_TRUE(rig.Logged(", found in the kill list")) << "the song itself holds it once";
}

}  // namespace
}  // namespace kestrune::test
