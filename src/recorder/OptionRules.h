#pragma once

#include "base/RunState.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "platform/Dialogs.h"

namespace kestrune::recorder {

/// The recording options of the main window: check boxes and menu entries of the same names, which always
/// show the same. A change is stored at once, but for the two list switches, which are stored at exit; while
/// the program loads nothing is stored, so that a start does not write back what it reads.
class OptionRules {
 public:
  /// All must outlive the object.
  OptionRules(config::Settings& settings, const config::SettingsSection& section, const base::RunState& run,
              platform::Dialogs& dialogs)
      : settings_(settings), section_(section), run_(run), dialogs_(dialogs) {}

  /// Asks before whole songs are given up; events run meanwhile.
  void chkIntegrel_Click(bool checked);
  void chkRadioOnAtExit_Click(bool checked);
  void chkSievanceGrab_Click(bool checked);
  void chkSievanceKill_Click(bool checked);
  void mnuCleftune_Click();
  void mnuCheckUpdatesAtStartup_Click();

 private:
  config::Settings& settings_;
  const config::SettingsSection& section_;
  const base::RunState& run_;
  platform::Dialogs& dialogs_;
};

}  // namespace kestrune::recorder
