#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ResizeRule.h"
#include "presenters/WindowTable.h"
#include "support/ToldWindows.h"

namespace kestrune::test {
namespace {

using presenters::WindowState;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ResizeRuleTest : public ::testing::Test {
 protected:
  ResizeRuleTest() {
    window.State = WindowState::Normal;
    window.TrayIcon = true;
  }
  void LoadAll() {
    for (const presenters::WindowRow& row : presenters::WindowTable()) windows.Loaded[row.Name] = true;
  }

  presenters::DesktopRecord window;
  ToldWindows windows;
  config::Settings settings;
  base::RunState run;
  presenters::ResizeRule rule{window, windows, settings, run};
};

TEST_F(ResizeRuleTest, DoesNothingWhileTheProgramLoads) {
  LoadAll();
  run.FormLoading = true;
  rule.Apply();
  EXPECT_FALSE(window.Visible);
  EXPECT_THAT(windows.Told, IsEmpty());
}

TEST_F(ResizeRuleTest, NothingComesBackWhileTheProgramCloses) {
  LoadAll();
  run.ShuttingDown = true;
  rule.Apply();
  EXPECT_FALSE(window.Visible);
  EXPECT_THAT(windows.Told, IsEmpty());
}

TEST_F(ResizeRuleTest, AnOpenMainWindowShowsTheLoadedOnesWhoseBoxIsChecked) {
  LoadAll();
  window.chkChannelListing = true;
  window.chkRestrictList = true;
  rule.Apply();
  EXPECT_TRUE(window.Visible);
  EXPECT_THAT(windows.Told,
              UnorderedElementsAre("reveal channels", "reveal lists", "reveal presets", "reveal config",
                                   "reveal now", "reveal report", "reveal shelf"));
}

TEST_F(ResizeRuleTest, AWindowThatIsNotLoadedIsNotMade) {
  window.chkChannelListing = window.chkSchedule = window.chkRecordLog = window.chkRestrictList = true;
  rule.Apply();
  EXPECT_THAT(windows.Told, IsEmpty());
}

TEST_F(ResizeRuleTest, AMinimisedMainWindowTakesTheOthersAlong) {
  LoadAll();
  window.State = WindowState::Minimized;
  rule.Apply();
  EXPECT_THAT(windows.Told,
              UnorderedElementsAre("hide channels", "hide schedule", "hide log", "hide lists", "hide presets",
                                   "hide config", "hide now", "hide report", "hide shelf"));
}

TEST_F(ResizeRuleTest, MinimisedItStaysInTheTaskBarOnlyIfTheUserWantsItThere) {
  window.Visible = true;
  window.State = WindowState::Minimized;
  settings.TaskBarMinimized = false;
  rule.Apply();
  EXPECT_FALSE(window.Visible);
  settings.TaskBarMinimized = true;
  rule.Apply();
  EXPECT_TRUE(window.Visible);
}

TEST_F(ResizeRuleTest, WithoutATrayAMinimisedWindowIsNeverHidden) {
  window.Visible = true;
  window.State = WindowState::Minimized;
  window.TrayIcon = false;
  settings.TaskBarMinimized = false;
  rule.Apply();
  EXPECT_TRUE(window.Visible);
}

TEST_F(ResizeRuleTest, ATrayThatGoesAwayGivesTheHiddenWindowBack) {
  window.Visible = true;
  window.State = WindowState::Minimized;
  settings.TaskBarMinimized = false;
  rule.Apply();
  ASSERT_FALSE(window.Visible);
  window.TrayIcon = false;
  rule.Apply();
  EXPECT_TRUE(window.Visible);
}

}  // namespace
}  // namespace kestrune::test
