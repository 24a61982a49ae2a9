#include "presenters/WindowSwitches.h"

#include "base/Ignored.h"

namespace kestrune::presenters {

void WindowSwitches::Follow(recorder::WindowName name, bool checked) {
  if (checked) {
    windows_.Show(name);
  } else {
    windows_.Close(name);
  }
}

void WindowSwitches::Click(recorder::WindowName name, bool checked) {
  if (run_.ShuttingDown) return;
  const WindowRow& row = RowOf(name);
  desktop_.*row.Checked = checked;
  Follow(name, checked);
  if (row.Setting == nullptr) return;
  config::Settings wished = settings_.Current();
  wished.*row.Setting = checked ? 1 : 0;
  base::Ignored(settings_.Change(wished, {row.SettingKey}));
}

void WindowSwitches::cmdMixer_Click() {
  if (run_.ShuttingDown) return;
  Follow(recorder::WindowName::Mixer, !windows_.IsLoaded(recorder::WindowName::Mixer));
}

void WindowSwitches::ShowRemembered() {
  // A box that stays as it is has no click.
  for (const WindowRow& row : WindowTable()) {
    if (row.Setting != nullptr && settings_.Current().*row.Setting != 0) Click(row.Name, true);
  }
}

}  // namespace kestrune::presenters
