#include "recorder/ResizeRule.h"

namespace kestrune::recorder {
namespace {

constexpr WindowName kFollowers[] = {WindowName::Channels,     WindowName::Schedule, WindowName::Log,
                                     WindowName::RestrictList, WindowName::Presets,  WindowName::Config,
                                     WindowName::KestruneNow};

/// The windows of a check box are shown only while it is checked.
bool Wanted(const MainWindow& window, WindowName name) {
  switch (name) {
    case WindowName::Channels:
      return window.chkChannelListing;
    case WindowName::Schedule:
      return window.chkSchedule;
    case WindowName::Log:
      return window.chkRecordLog;
    case WindowName::RestrictList:
      return window.chkRestrictList;
    default:
      return true;
  }
}

}  // namespace

void ResizeRule::Apply() {
  if (run_.FormLoading || run_.ShuttingDown) return;
  const bool minimized = window_.State == WindowState::Minimized;
  window_.Visible = !minimized || StaysInTaskBar(window_, settings_);
  for (const WindowName name : kFollowers) {
    if (!windows_.IsLoaded(name)) continue;
    if (minimized) {
      windows_.SetVisible(name, false);
    } else if (Wanted(window_, name)) {
      windows_.SetVisible(name, true);
    }
  }
}

}  // namespace kestrune::recorder
