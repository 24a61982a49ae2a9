#pragma once

#include <string_view>

#include "base/RunState.h"
#include "config/settings/SettingsDoor.h"
#include "recorder/Boxes.h"

namespace kestrune::presenters {

/// The recording options of the main window: check boxes and menu entries of the same names, which always
/// show the same. A change is stored at once, but for the two list switches, which are stored at exit; while
/// the program loads nothing is stored, so that a start does not write back what it reads.
class OptionRules {
 public:
  /// All must outlive the object.
  OptionRules(config::SettingsDoor& settings, const base::RunState& run, recorder::Boxes& boxes)
      : settings_(settings), run_(run), boxes_(boxes) {}

  /// Asks before whole songs are given up; until the answer is Yes all stays as it was.
  void chkIntegrel_Click(bool checked);
  void chkRadioOnAtExit_Click(bool checked);
  void chkSievanceGrab_Click(bool checked);
  void chkSievanceKill_Click(bool checked);
  void mnuCleftune_Click();
  void mnuCheckUpdatesAtStartup_Click();

 private:
  void TakeIntegrel(bool on);
  template <typename Value>
  void Change(Value config::Settings::*field, Value value, std::string_view key);

  config::SettingsDoor& settings_;
  const base::RunState& run_;
  recorder::Boxes& boxes_;
};

}  // namespace kestrune::presenters
