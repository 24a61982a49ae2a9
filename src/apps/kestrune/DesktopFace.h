#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/kestrune/Face.h"
#include "base/EventLoop.h"
#include "control/CommandLine.h"
#include "platform/Environment.h"
#include "platform/canberra/ThemeSounds.h"
#include "platform/posix/XdgAutostart.h"
#include "platform/qtdbus/DesktopNotifications.h"
#include "platform/qtdbus/LauncherEntry.h"
#include "platform/qtdbus/MprisPlayer.h"
#include "platform/qtgui/DesktopShell.h"
#include "platform/xsmp/SessionEnd.h"
#include "presenters/MediaControls.h"
#include "presenters/Notices.h"
#include "presenters/SongCount.h"
#include "presenters/UnitPresenters.h"
#include "windows/Desktop.h"
#include "windows/DisplayBell.h"
#include "windows/QtDialogs.h"
#include "windows/UnitWindows.h"

namespace kestrune::apps {

/// With windows; a QApplication must exist. The end of the desktop's session closes the unit like its user
/// does.
class DesktopFace final : public Face {
 public:
  /// The loop must outlive it.
  DesktopFace(base::EventLoop& loop, const platform::Environment& environment,
              const control::CommandLine& line);

  [[nodiscard]] platform::Dialogs& Dialogs() override { return dialogs_; }
  [[nodiscard]] platform::Sounds& Sounds() override { return sounds_; }
  [[nodiscard]] recorder::Windows& Windows() override { return desktop_; }
  void Attach(recorder::Kestrune& unit, const recorder::Outside& outside, platform::Mixer& mixer,
              platform::InputListener& listener) override;
  void Detach() override;

 private:
  base::EventLoop& loop_;
  std::string program_;  ///< the path under which the program is started again
  platform::DesktopShell shell_;
  windows::QtDialogs dialogs_;
  windows::DisplayBell bell_;
  platform::ThemeSounds sounds_;
  windows::Desktop desktop_;
  platform::XdgAutostart autostart_;
  std::unique_ptr<presenters::UnitPresenters> rules_;
  std::unique_ptr<windows::UnitWindows> unitWindows_;
  std::optional<platform::MprisPlayer> mediaPlayer_;
  std::optional<presenters::MediaControls> mediaControls_;
  std::optional<platform::DesktopNotifications> notifications_;
  std::optional<presenters::Notices> notices_;
  std::optional<platform::LauncherEntry> launcherEntry_;
  std::optional<presenters::SongCount> songCount_;
  std::optional<platform::SessionEnd> sessionEnd_;
};

/// Why no window can be shown, as far as the environment tells; empty if it can.
[[nodiscard]] std::string WhyNoDisplay();

/// From now on a failure that Qt takes for fatal, such as a display that does not answer, ends the program
/// with a line of its own and status 1, not with a memory dump.
void TellFatalFailures();

}  // namespace kestrune::apps
