#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/WindowSwitches.h"
#include "support/SettingsRig.h"
#include "support/ToldWindows.h"

namespace kestrune::test {
namespace {

using presenters::DesktopRecord;
using presenters::WindowSwitches;
using recorder::WindowName;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WindowSwitchesTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Stored(std::string_view key) const {
    return store.Stored("Lorimel", "Kestrune", key);
  }

  DesktopRecord window;
  ToldWindows windows;
  SettingsRig rig;
  config::Settings& settings = rig.Settings;
  MemorySettingsStore& store = rig.Store;
  base::RunState run;
  WindowSwitches switches{window, windows, rig.Door, run};
};

struct Switch {
  recorder::WindowName Name;
  bool DesktopRecord::*Box;
  const char* Window;
  const char* Key;  ///< null: not stored
};
constexpr Switch kSwitches[] = {
    {WindowName::Channels, &DesktopRecord::chkChannelListing, "channels", "ChannelListing"},
    {WindowName::Log, &DesktopRecord::chkRecordLog, "log", "RecordLog"},
    {WindowName::Schedule, &DesktopRecord::chkSchedule, "schedule", nullptr},
    {WindowName::RestrictList, &DesktopRecord::chkRestrictList, "lists", nullptr},
    {WindowName::KestruneNow, &DesktopRecord::chkKestruneNow, "now", "KestruneNow"},
    {WindowName::Report, &DesktopRecord::chkReport, "report", "RecordingReport"},
};

TEST_F(WindowSwitchesTest, EachBoxShowsAndClosesItsWindowAndThreeAreRemembered) {
  for (const Switch& each : kSwitches) {
    SCOPED_TRACE(each.Window);
    windows.Told.clear();
    switches.Click(each.Name, true);
    EXPECT_TRUE(window.*each.Box);
    if (each.Key != nullptr) {
      EXPECT_EQ(Stored(each.Key), "1");
    }
    switches.Click(each.Name, false);
    EXPECT_FALSE(window.*each.Box);
    if (each.Key != nullptr) {
      EXPECT_EQ(Stored(each.Key), "0");
    }
    EXPECT_THAT(windows.Told,
                ElementsAre(std::string("show ") + each.Window, std::string("close ") + each.Window));
  }
}

TEST_F(WindowSwitchesTest, TheRememberedWindowsOpenThroughTheirBoxes) {
  settings.ChannelListing = 1;
  settings.RecordLog = 0;
  settings.KestruneNow = 1;
  switches.ShowRemembered();
  EXPECT_THAT(windows.Told, ElementsAre("show channels", "show now"));
  EXPECT_TRUE(window.chkChannelListing);
  EXPECT_FALSE(window.chkRecordLog);
  EXPECT_TRUE(window.chkKestruneNow);
}

TEST_F(WindowSwitchesTest, TheMixersButtonShowsItAndClosesIt) {
  switches.cmdMixer_Click();
  switches.cmdMixer_Click();
  switches.cmdMixer_Click();
  EXPECT_THAT(windows.Told, ElementsAre("show mixer", "close mixer", "show mixer"));
}

TEST_F(WindowSwitchesTest, AWindowThatGoesWithTheProgramIsOpenAgainAtTheNextStart) {
  switches.Click(WindowName::KestruneNow, true);
  run.ShuttingDown = true;
  windows.Told.clear();
  switches.Click(WindowName::KestruneNow, false);
  EXPECT_EQ(Stored("KestruneNow"), "1");
  EXPECT_THAT(windows.Told, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
