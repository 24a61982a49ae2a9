#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/OptionRules.h"
#include "support/ScriptedDialogs.h"
#include "support/SettingsRig.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MessageAnswer;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class OptionRulesTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Stored(std::string_view key) const {
    return store.Stored("Lorimel", "Kestrune", key);
  }

  SettingsRig rig;
  config::Settings& settings = rig.Settings;
  MemorySettingsStore& store = rig.Store;
  base::RunState run;
  ScriptedDialogs dialogs;
  SimulatedEventLoop loop;
  recorder::Door door{loop};
  recorder::Boxes boxes{dialogs, door};
  presenters::OptionRules rules{rig.Door, run, boxes};
};

TEST_F(OptionRulesTest, UncheckingIntegrelAsksFirst) {
  settings.Integrel = true;
  dialogs.Answer = MessageAnswer::Yes;
  rules.chkIntegrel_Click(false);
  loop.Run(10ms);
  ASSERT_THAT(dialogs.Shown, SizeIs(1));
  EXPECT_EQ(dialogs.Shown[0].Title, "Disable Integrel");
  EXPECT_EQ(
      dialogs.Shown[0].Text,
      "Unchecking this option will allow Kestrune to record songs that are not complete - starting when "
      "the record button is pressed and ending when the stop button is pressed, instead of waiting for "
      "a song change to begin. Are you sure you want to do this?");
  EXPECT_EQ(dialogs.Shown[0].Icon, platform::MessageIcon::Warning);
  EXPECT_EQ(dialogs.Shown[0].Buttons, platform::MessageButtons::YesNo);
  EXPECT_FALSE(settings.Integrel);
  EXPECT_EQ(Stored("Integrel"), "False");
}

TEST_F(OptionRulesTest, NoChecksIntegrelAgain) {
  settings.Integrel = true;
  dialogs.Answer = MessageAnswer::No;
  rules.chkIntegrel_Click(false);
  loop.Run(10ms);
  EXPECT_TRUE(settings.Integrel);
  EXPECT_EQ(Stored("Integrel"), "True");
}

TEST_F(OptionRulesTest, WhileTheUserIsAskedIntegrelStaysOn) {
  settings.Integrel = true;
  dialogs.KeepOpen = true;
  rules.chkIntegrel_Click(false);
  loop.Run(1h);
  EXPECT_TRUE(settings.Integrel);
  dialogs.Press(MessageAnswer::Yes);
  EXPECT_TRUE(settings.Integrel) << "the answer is a wish and waits for the loop";
  loop.Run(10ms);
  EXPECT_FALSE(settings.Integrel);
}

TEST_F(OptionRulesTest, CheckingIntegrelAsksNothing) {
  settings.Integrel = false;
  rules.chkIntegrel_Click(true);
  EXPECT_THAT(dialogs.Shown, IsEmpty());
  EXPECT_TRUE(settings.Integrel);
  EXPECT_EQ(Stored("Integrel"), "True");
}

TEST_F(OptionRulesTest, IntegrelSetByTheLoadAsksAndStoresNothing) {
  run.FormLoading = true;
  rules.chkIntegrel_Click(false);
  EXPECT_THAT(dialogs.Shown, IsEmpty());
  EXPECT_EQ(Stored("Integrel"), "(absent)");
}

TEST_F(OptionRulesTest, RadioOnAtExitIsStoredAtOnce) {
  rules.chkRadioOnAtExit_Click(true);
  EXPECT_TRUE(settings.RadioOnAtExit);
  EXPECT_EQ(Stored("RadioOnAtExit"), "True");
}

TEST_F(OptionRulesTest, TheListSwitchesAreNotStoredBeforeTheExit) {
  rules.chkSievanceGrab_Click(true);
  rules.chkSievanceKill_Click(true);
  EXPECT_EQ(settings.SievanceGrab, 1);
  EXPECT_EQ(settings.SievanceKill, 1);
  EXPECT_EQ(Stored("SievanceGrab"), "(absent)");
  EXPECT_EQ(Stored("SievanceKill"), "(absent)");
}

TEST_F(OptionRulesTest, CleftuneFlipsAndIsStoredAtOnce) {
  settings.Cleftune = true;
  rules.mnuCleftune_Click();
  EXPECT_FALSE(settings.Cleftune);
  EXPECT_EQ(Stored("Cleftune"), "False");
  rules.mnuCleftune_Click();
  EXPECT_TRUE(settings.Cleftune);
  EXPECT_EQ(Stored("Cleftune"), "True");
}

TEST_F(OptionRulesTest, CheckUpdatesAtStartupFlipsAndIsStoredAtOnce) {
  settings.CheckUpdatesAtStartup = true;
  rules.mnuCheckUpdatesAtStartup_Click();
  EXPECT_FALSE(settings.CheckUpdatesAtStartup);
  EXPECT_EQ(Stored("CheckUpdatesAtStartup"), "False");
}

TEST_F(OptionRulesTest, NothingIsStoredWhileTheProgramLoads) {
  run.FormLoading = true;
  rules.chkRadioOnAtExit_Click(true);
  rules.mnuCleftune_Click();
  rules.mnuCheckUpdatesAtStartup_Click();
  for (const char* key : {"RadioOnAtExit", "Cleftune", "CheckUpdatesAtStartup"}) {
    EXPECT_EQ(Stored(key), "(absent)") << key;
  }
}

}  // namespace
}  // namespace kestrune::test
