#include "presenters/OptionRules.h"

#include <cstdint>

#include "base/Ignored.h"

namespace kestrune::presenters {
namespace {

constexpr std::int16_t CheckState(bool checked) {
  return checked ? 1 : 0;
}

}  // namespace

template <typename Value>
void OptionRules::Change(Value config::Settings::*field, Value value, std::string_view key) {
  config::Settings wished = settings_.Current();
  wished.*field = value;
  base::Ignored(settings_.Change(
      wished, {key}, run_.FormLoading ? config::SettingLife::ThisRun : config::SettingLife::Stored));
}

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
  Change(&config::Settings::Integrel, on, "Integrel");
}

void OptionRules::chkRadioOnAtExit_Click(bool checked) {
  if (run_.FormLoading) return;
  Change(&config::Settings::RadioOnAtExit, checked, "RadioOnAtExit");
}

void OptionRules::chkSievanceGrab_Click(bool checked) {
  Change(&config::Settings::SievanceGrab, CheckState(checked), "SievanceGrab");
}

void OptionRules::chkSievanceKill_Click(bool checked) {
  Change(&config::Settings::SievanceKill, CheckState(checked), "SievanceKill");
}

void OptionRules::mnuCleftune_Click() {
  Change(&config::Settings::Cleftune, !settings_.Current().Cleftune, "Cleftune");
}

void OptionRules::mnuCheckUpdatesAtStartup_Click() {
  Change(&config::Settings::CheckUpdatesAtStartup, !settings_.Current().CheckUpdatesAtStartup,
         "CheckUpdatesAtStartup");
}

}  // namespace kestrune::presenters
