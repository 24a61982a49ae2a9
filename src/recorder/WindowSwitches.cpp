#include "recorder/WindowSwitches.h"

#include "base/Ignored.h"

namespace kestrune::recorder {

void WindowSwitches::Follow(WindowName name, bool checked) {
  if (checked) {
    windows_.Show(name);
  } else {
    windows_.Close(name);
  }
}

void WindowSwitches::chkChannelListing_Click(bool checked) {
  if (run_.ShuttingDown) return;
  window_.chkChannelListing = checked;
  Follow(WindowName::Channels, checked);
  settings_.ChannelListing = checked ? 1 : 0;
  base::Ignored(section_.SaveInt16("ChannelListing", settings_.ChannelListing));
}

void WindowSwitches::chkRecordLog_Click(bool checked) {
  if (run_.ShuttingDown) return;
  window_.chkRecordLog = checked;
  Follow(WindowName::Log, checked);
  settings_.RecordLog = checked ? 1 : 0;
  base::Ignored(section_.SaveInt16("RecordLog", settings_.RecordLog));
}

void WindowSwitches::chkSchedule_Click(bool checked) {
  if (run_.ShuttingDown) return;
  window_.chkSchedule = checked;
  Follow(WindowName::Schedule, checked);
}

void WindowSwitches::chkRestrictList_Click(bool checked) {
  if (run_.ShuttingDown) return;
  window_.chkRestrictList = checked;
  Follow(WindowName::RestrictList, checked);
}

void WindowSwitches::chkKestruneNow_Click(bool checked) {
  if (run_.ShuttingDown) return;
  window_.chkKestruneNow = checked;
  Follow(WindowName::KestruneNow, checked);
  settings_.KestruneNow = checked ? 1 : 0;
  base::Ignored(section_.SaveInt16("KestruneNow", settings_.KestruneNow));
}

void WindowSwitches::cmdMixer_Click() {
  if (run_.ShuttingDown) return;
  Follow(WindowName::Mixer, !windows_.IsLoaded(WindowName::Mixer));
}

void WindowSwitches::ShowRemembered() {
  // A box that stays as it is has no click.
  if (settings_.ChannelListing != 0) chkChannelListing_Click(true);
  if (settings_.RecordLog != 0) chkRecordLog_Click(true);
  if (settings_.KestruneNow != 0) chkKestruneNow_Click(true);
}

}  // namespace kestrune::recorder
