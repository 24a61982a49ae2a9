#include <gtest/gtest.h>

#include "presenters/MainWindow.h"

namespace kestrune::test {
namespace {

using presenters::DesktopRecord;
using presenters::MainWindow;
using presenters::ShowState;
using recorder::Phase;
using recorder::State;

MainWindow Shown(const State& state) {
  return ShowState(state, {});
}

/// What the recorder does, and what the window makes of it.
struct StateRow {
  const char* Name;
  recorder::Phase Phase;
  bool ChannelsLoading;
  bool RecordRequested;
  bool WaitingForNextSong;
  bool StartPending;
  bool StopPending;
  const char* Text;
  bool Recording;  ///< the status catches the eye
  bool Record;     ///< the button is enabled
  bool ShowsLength;
};
constexpr StateRow kStates[] = {
    {"channel load", Phase::Idle, true, false, false, false, false, "", false, true, false},
    {"armed during load", Phase::WaitingForChannelLoad, true, false, false, false, false,
     "Waiting for channel load", false, false, false},
    {"idle", Phase::Idle, false, false, false, false, false, "", false, true, false},
    {"waiting", Phase::WaitingForNextSong, false, true, true, false, false, "Waiting for next song", false,
     false, false},
    {"start pending", Phase::Recording, false, true, false, true, false, "Recording", true, false, false},
    {"recording", Phase::Recording, false, true, false, false, false, "Recording", true, false, true},
    {"recording a song of the Grab lists", Phase::Grabbed, false, true, false, false, false,
     "Recording (Grabbed)", true, false, true},
    {"recording a song of the Kill lists", Phase::Killed, false, true, false, false, false,
     "Recording (Killed)", true, false, true},
    {"stop pending", Phase::Idle, false, false, false, false, true, "", false, true, false},
};

State StateOf(const StateRow& row) {
  State state;
  state.Recording.Phase = row.Phase;
  state.Radio.ChannelsLoading = row.ChannelsLoading;
  state.Recording.RecordRequested = state.Recording.RecordArmed = row.RecordRequested;
  state.Recording.WaitingForNextSong = row.WaitingForNextSong;
  state.Recording.StartPending = row.StartPending;
  state.Recording.StopPending = row.StopPending;
  return state;
}

TEST(MainWindow, EachStateOfTheRecorderHasItsTextButtonsAndLength) {
  for (const StateRow& row : kStates) {
    SCOPED_TRACE(row.Name);
    const MainWindow window = Shown(StateOf(row));
    EXPECT_EQ(window.lblRecording.Caption, row.Text);
    EXPECT_EQ(window.Recording, row.Recording);
    EXPECT_EQ(window.cmdRecord.Enabled, row.Record);
    EXPECT_EQ(window.cmdStop.Enabled, !row.Record) << "the two always swap";
    EXPECT_EQ(window.lblClock.Visible, row.ShowsLength);
  }
}

TEST(MainWindow, AnEventTakesStopAwayInEveryState) {
  for (const StateRow& row : kStates) {
    SCOPED_TRACE(row.Name);
    State state = StateOf(row);
    state.Schedule.ActiveSchedule = 3;
    const MainWindow window = Shown(state);
    EXPECT_FALSE(window.cmdStop.Enabled);
    EXPECT_EQ(window.cmdRecord.Enabled, row.Record);
  }
}

TEST(MainWindow, BeforeAnythingIsKnownItShowsTheProgramsNameAlone) {
  const MainWindow window = Shown({});
  EXPECT_EQ(window.Title, "Kestrune");
  EXPECT_EQ(window.TrayTip, "Kestrune");
  for (const presenters::Label* label :
       {&window.lblChannel, &window.lblGenre, &window.lblArtist, &window.lblSong}) {
    EXPECT_EQ(label->Caption, "");
  }
  EXPECT_FALSE(window.lblRecording.Visible);
  EXPECT_FALSE(window.mnuReload.Enabled);
  EXPECT_EQ(window.pbrSatSignal[0].Caption, "");
}

TEST(MainWindow, NamesHaveTheirAmpersandsDoubledInLabelsAndNowhereElse) {
  State state;
  state.Announcement = {
      .Channel = 47,
      .Station = "Rock & Roll",
      .Genre = "R&B",
      .Artist = "Salt & Sun",
      .Song = "You & I",
      .TitleArtist = "Salt & Sun",
      .TrayTip =
          recorder::Announcement::Tip{.Phase = Phase::Recording, .Artist = "Salt & Sun", .Song = "You & I"},
      .Signal = std::nullopt};
  const MainWindow window = Shown(state);
  EXPECT_EQ(window.lblChannel.Caption, "47: Rock && Roll");
  EXPECT_EQ(window.lblGenre.Caption, "R&&B");
  EXPECT_EQ(window.lblArtist.Caption, "Salt && Sun");
  EXPECT_EQ(window.lblSong.Caption, "You && I");
  EXPECT_EQ(window.Title, "Kestrune: Salt & Sun");
  EXPECT_EQ(window.TrayTip, "Kestrune: Recording\nSalt & Sun - You & I");
}

TEST(MainWindow, TheTrayTipKeepsThePhaseOfTheMomentAtWhichItWasSet) {
  State state;
  state.Announcement.TrayTip = {.Phase = Phase::Idle, .Artist = "A", .Song = "S"};
  state.Recording.Phase = Phase::Recording;
  EXPECT_EQ(Shown(state).TrayTip, "Kestrune: \nA - S");
}

TEST(MainWindow, WhatHasFailedIsAWarningAndTheLastLineOfTheTip) {
  State state;
  EXPECT_EQ(Shown(state).Warning, "");
  state.Announcement.TrayTip = {.Phase = Phase::Recording, .Artist = "A", .Song = "S"};
  state.Watch.LittleRoom = "room for 1:40";
  EXPECT_EQ(Shown(state).Warning, "The disk is nearly full: room for 1:40.");
  EXPECT_EQ(Shown(state).TrayTip, "Kestrune: Recording\nA - S\nThe disk is nearly full: room for 1:40.");
  state.Watch.Silent = true;
  EXPECT_EQ(Shown(state).Warning, "No sound comes from the radio: check the cable and the input device.");
  state.Watch.SoundInputFailure = "Connection refused";
  EXPECT_EQ(Shown(state).Warning, "The sound input is lost: Connection refused.");
  state.Watch.WriteFailure = "No space left on device";
  EXPECT_EQ(Shown(state).Warning, "The recording cannot be written: No space left on device.");
}

TEST(MainWindow, TheSignalBarsHaveThirtyUnitsAPercent) {
  State state;
  state.Announcement.Signal = recorder::Signal{.Satellite1 = 80, .Satellite2 = 0, .Terrestrial = 100};
  const MainWindow window = Shown(state);
  EXPECT_EQ(window.pbrSatSignal[0].Value, 2400);
  EXPECT_EQ(window.pbrSatSignal[0].Caption, "80%");
  EXPECT_EQ(window.pbrSatSignal[1].Value, 0);
  EXPECT_EQ(window.pbrSatSignal[1].Caption, "0%");
  EXPECT_EQ(window.pbrTerSignal.Value, 3000);
  EXPECT_EQ(window.pbrTerSignal.Caption, "100%");
}

TEST(MainWindow, TheLengthsHaveHoursMinutesAndSeconds) {
  State state;
  state.Recording.Phase = Phase::Recording;
  state.Schedule.ActiveSchedule = 1;
  EXPECT_EQ(Shown(state).lblClock.Caption, "") << "nothing has been measured yet";
  state.Clock.CaptureSeconds = 3725;
  state.Clock.SecondsLeft = 59;
  const MainWindow window = Shown(state);
  EXPECT_EQ(window.lblClock.Caption, "01:02:05");
  EXPECT_EQ(window.lblRemaining.Caption, "00:00:59");
}

TEST(MainWindow, TheTimeLeftIsShownInAnEventOnlyAndItsMarkBlinksWithTheStatus) {
  State state;
  state.Clock.SecondsLeft = 59;
  EXPECT_FALSE(Shown(state).lblRemaining.Visible);
  EXPECT_FALSE(Shown(state).lblcRemaining.Visible);
  state.Schedule.ActiveSchedule = 10;
  EXPECT_TRUE(Shown(state).lblRemaining.Visible);
  EXPECT_TRUE(Shown(state).lblcRemaining.Visible);
  EXPECT_FALSE(Shown(state).pctTimer.Visible);
  EXPECT_FALSE(Shown(state).lblRecording.Visible);
  state.Clock.EventMarkShown = true;
  EXPECT_TRUE(Shown(state).pctTimer.Visible);
  state.Clock.StatusShown = true;
  EXPECT_TRUE(Shown(state).lblRecording.Visible);
}

TEST(MainWindow, EachCounterHasALabelOfItsOwn) {
  State state;
  state.Recording.RecordedCount = 1;
  state.Recording.TooShortCount = 2;
  state.Recording.TooLongCount = 3;
  state.Recording.RestrictedCount = 4;
  const MainWindow window = Shown(state);
  EXPECT_EQ(window.lblRecorded.Caption, "1");
  EXPECT_EQ(window.lblTooShort.Caption, "2");
  EXPECT_EQ(window.lblTooLong.Caption, "3");
  EXPECT_EQ(window.lblRestricted.Caption, "4");
}

TEST(MainWindow, EachSwitchShowsItsOwnSetting) {
  struct Switch {
    void (*TurnOn)(State& state);
    bool MainWindow::*Mark;
  };
  const Switch switches[] = {
      {[](State& state) { state.Settings.Integrel = true; }, &MainWindow::chkIntegrel},
      {[](State& state) { state.Settings.SievanceGrab = 1; }, &MainWindow::chkSievanceGrab},
      {[](State& state) { state.Settings.SievanceKill = 1; }, &MainWindow::chkSievanceKill},
      {[](State& state) { state.Settings.RadioOnAtExit = true; }, &MainWindow::chkRadioOnAtExit},
      {[](State& state) { state.Settings.Cleftune = true; }, &MainWindow::mnuCleftune},
      {[](State& state) { state.Settings.CheckUpdatesAtStartup = true; },
       &MainWindow::mnuCheckUpdatesAtStartup},
      {[](State& state) { state.Recording.Muted = true; }, &MainWindow::mnuMute},
  };
  for (const Switch& on : switches) {
    State state;
    state.Settings.Integrel = state.Settings.RadioOnAtExit = state.Settings.Cleftune = false;
    state.Settings.SievanceGrab = state.Settings.SievanceKill = 0;
    state.Settings.CheckUpdatesAtStartup = false;
    on.TurnOn(state);
    const MainWindow window = Shown(state);
    for (const Switch& each : switches) EXPECT_EQ(window.*each.Mark, each.Mark == on.Mark);
  }
}

TEST(MainWindow, AnEventsModesLeaveTheUsersSwitchesAlone) {
  State state;
  state.Settings.Integrel = true;
  state.Schedule.ActiveSchedule = 1;
  state.Schedule.SchedIntegrel = false;
  EXPECT_TRUE(Shown(state).chkIntegrel);
}

TEST(MainWindow, TheListingCanBeReloadedOnceTheChannelsAreLoaded) {
  State state;
  state.Recording.ChannelsLoaded = true;
  EXPECT_TRUE(Shown(state).mnuReload.Enabled);
}

TEST(MainWindow, WhatOnlyTheWindowKnowsIsPassedOn) {
  const DesktopRecord desktop{.State = presenters::WindowState::Maximized,
                              .Top = 15,
                              .Left = 30,
                              .Visible = true,
                              .TrayIcon = true,
                              .chkSchedule = true};
  const MainWindow window = ShowState({}, desktop);
  EXPECT_EQ(window.State, presenters::WindowState::Maximized);
  EXPECT_EQ(window.Top, 15);
  EXPECT_EQ(window.Left, 30);
  EXPECT_TRUE(window.Visible);
  EXPECT_TRUE(window.TrayIcon);
  EXPECT_TRUE(window.chkSchedule);
  EXPECT_FALSE(window.chkRecordLog);
}

}  // namespace
}  // namespace kestrune::test
