#include "presenters/ResizeRule.h"

#include "presenters/WindowTable.h"

namespace kestrune::presenters {
void ResizeRule::Apply() {
  if (run_.FormLoading || run_.ShuttingDown) return;
  const bool minimized = desktop_.State == WindowState::Minimized;
  desktop_.Visible = !minimized || StaysInTaskBar(desktop_, settings_);
  for (const WindowRow& row : WindowTable()) {
    if (!row.HidesWithMain || !windows_.IsLoaded(row.Name)) continue;
    if (minimized) {
      windows_.SetVisible(row.Name, false);
    } else if (!row.NeedsBoxToReturn || desktop_.*row.Checked) {
      windows_.SetVisible(row.Name, true);
    }
  }
}

}  // namespace kestrune::presenters
