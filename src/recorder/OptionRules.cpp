#include "recorder/OptionRules.h"

#include "base/Ignored.h"

namespace kestrune::recorder {

void OptionRules::chkIntegrel_Click(bool checked) {
  if (run_.FormLoading) return;
  if (checked) return TakeIntegrel(true);
  boxes_.Show(
      {.Title = "Disable Integrel",
       .Text = "Unchecking this option will allow Kestrune to record songs that are not complete - starting "
               "when the record button is pressed and ending when the stop button is pressed, instead of "
               "waiting for a song change to begin. Are you sure you want to do this?",
       .Icon = platform::MessageIcon::Warning,
       .Buttons = platform::MessageButtons::YesNo},
      [this](platform::MessageAnswer answer) { TakeIntegrel(answer != platform::MessageAnswer::Yes); });
}

void OptionRules::TakeIntegrel(bool on) {
  settings_.Integrel = on;
  base::Ignored(section_.SaveBool("Integrel", on));
}

void OptionRules::chkRadioOnAtExit_Click(bool checked) {
  if (run_.FormLoading) return;
  settings_.RadioOnAtExit = checked;
  base::Ignored(section_.SaveBool("RadioOnAtExit", checked));
}

void OptionRules::chkSievanceGrab_Click(bool checked) {
  settings_.SievanceGrab = checked ? 1 : 0;
}

void OptionRules::chkSievanceKill_Click(bool checked) {
  settings_.SievanceKill = checked ? 1 : 0;
}

void OptionRules::mnuCleftune_Click() {
  settings_.Cleftune = !settings_.Cleftune;
  if (!run_.FormLoading) base::Ignored(section_.SaveBool("Cleftune", settings_.Cleftune));
}

void OptionRules::mnuCheckUpdatesAtStartup_Click() {
  settings_.CheckUpdatesAtStartup = !settings_.CheckUpdatesAtStartup;
  if (!run_.FormLoading) {
    base::Ignored(section_.SaveBool("CheckUpdatesAtStartup", settings_.CheckUpdatesAtStartup));
  }
}

}  // namespace kestrune::recorder
