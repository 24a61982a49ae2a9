#include "apps/kestrune/DesktopFace.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "config/update/Endpoints.h"
#include "platform/posix/PosixEnvironment.h"
#include "platform/posix/SideFiles.h"
#include "recorder/SlashOptions.h"

namespace kestrune::apps {
namespace {

void ShowQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) {
    fmt::print(stderr, "kestrune: the windows cannot be shown: {}\n", text.toStdString());
    std::fflush(stderr);
    std::_Exit(1);
  }
  const QString line = qFormatLogMessage(type, context, text);
  if (type != QtDebugMsg && type != QtInfoMsg) fmt::print(stderr, "{}\n", line.toStdString());
}

/// The start that the desktop is to repeat: this program with this start's unit, profile, radio and sound. The entry is
/// always in the user's own configuration folder, since a desktop looks nowhere else.
platform::XdgAutostart::Start StartOf(const std::string& program, const control::CommandLine& line) {
  std::error_code ignored;
  const std::string folder = std::filesystem::current_path(ignored).string();
  const std::string& profile = line.Chosen.Profile;
  const std::string whole =
      profile.empty()
          ? profile
          : std::filesystem::weakly_canonical(folder / std::filesystem::path(profile), ignored).string();
  return {.Configuration = platform::PosixEnvironment(platform::StartArguments()).ConfigurationFolder(),
          .Name = platform::AutostartName(recorder::MultiUnitOf(line.RemainingText), whole),
          .Program = program,
          .Words = control::WordsOfTheSameStart(line, folder)};
}

/// The program's picture where an installation puts it; empty if the program is not installed.
std::string InstalledPicture(const std::string& executableFolder) {
  const std::filesystem::path picture =
      std::filesystem::path(executableFolder) / "../share/icons/hicolor/256x256/apps/kestrune.png";
  std::error_code ignored;
  return std::filesystem::exists(picture, ignored) ? picture.lexically_normal().string() : std::string();
}

}  // namespace

DesktopFace::DesktopFace(base::EventLoop& loop, const platform::Environment& environment,
                         const control::CommandLine& line)
    : loop_(loop),
      program_(environment.ExecutableFolder() + "/kestrune"),
      dialogs_(platform::SideFile(environment.ExecutableFolder(), "Agreement.html"),
               line.Chosen.AcceptAgreement),
      sounds_([this] { QCoreApplication::postEvent(&bell_, new QEvent(QEvent::User)); }),
      desktop_(
          {.Loop = loop,
           .Dialogs = dialogs_,
           .Shell = shell_,
           .HelpFile = platform::SideFile(environment.ExecutableFolder(), "\\Documentation\\Kestrune.html"),
           .Links = {.WebSite = config::EndpointsOf(environment).WebSite, .Mail = ""}}),
      autostart_(StartOf(program_, line)) {}

void DesktopFace::Attach(recorder::Kestrune& unit, const recorder::Outside& outside, platform::Mixer& mixer,
                         platform::InputListener& listener) {
  rules_ = std::make_unique<presenters::UnitPresenters>(unit, outside);
  desktop_.Attach(*rules_);
  unitWindows_ =
      std::make_unique<windows::UnitWindows>(desktop_, *rules_,
                                             windows::UnitWindows::Outside{.Loop = loop_,
                                                                           .Files = outside.Files,
                                                                           .Environment = outside.Environment,
                                                                           .Dialogs = dialogs_,
                                                                           .Shell = shell_,
                                                                           .Mixer = mixer,
                                                                           .Autostart = autostart_,
                                                                           .Audio = outside.Audio,
                                                                           .InputListener = listener});
  const std::string& unitName = unit.Snapshot().MultiUnit;
  const std::string name = unitName.empty() ? "Kestrune" : "Kestrune " + unitName;
  const std::string picture = InstalledPicture(outside.Environment.ExecutableFolder());
  mediaPlayer_.emplace(platform::MprisPlayer::Identity{.Name = name, .Unit = unitName, .Picture = picture});
  mediaControls_.emplace(unit, rules_->PresetButtons(), loop_, *mediaPlayer_);
  mediaControls_->Raise = [this] { desktop_.MainWindowToFront(); };
  notifications_.emplace(platform::DesktopNotifications::Identity{.Name = name, .Icon = picture});
  notices_.emplace(
      unit,
      presenters::Notices::Outside{
          .Loop = loop_,
          .Shell = shell_,
          .Notifications = *notifications_,
          .Windows = {.InFront = [] { return QGuiApplication::applicationState() == Qt::ApplicationActive; },
                      .Raise = [this] { desktop_.MainWindowToFront(); }}});
  launcherEntry_.emplace();
  songCount_.emplace(unit.State(), loop_, *launcherEntry_);
  std::vector<std::string> command{program_};
  for (const QString& argument : QCoreApplication::arguments().mid(1))
    command.push_back(argument.toStdString());
  sessionEnd_.emplace(command, [&unit] { unit.Wishes().Close(); });
}

void DesktopFace::Detach() {
  songCount_.reset();
  launcherEntry_.reset();
  notices_.reset();
  notifications_.reset();
  mediaControls_.reset();
  mediaPlayer_.reset();
  desktop_.Detach();
  unitWindows_.reset();
  rules_.reset();
  sessionEnd_.reset();
}

std::string WhyNoDisplay() {
  for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return {};
  }
  return "there is no display to show windows on (neither DISPLAY nor WAYLAND_DISPLAY is set); start it with "
         "--headless to run without windows";
}

void TellFatalFailures() {
  qInstallMessageHandler(ShowQtMessage);
}

}  // namespace kestrune::apps
