// The desktop program. It puts the outside together, loads the run, and lives until the run has closed.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QTimer>

#include "apps/SoundInput.h"
#include "apps/kestrune/AudioLibrary.h"
#include "base/Version.h"
#include "control/CommandLine.h"
#include "control/ControlServer.h"
#include "control/UnitTarget.h"
#include "platform/local/ControlSocketPath.h"
#include "platform/posix/ConsoleDialogs.h"
#include "platform/posix/IniSettingsStore.h"
#include "platform/posix/PosixEnvironment.h"
#include "platform/posix/PosixFiles.h"
#include "platform/qt/PortMap.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SignalWatch.h"
#include "platform/qtlocal/LocalControlSocket.h"
#include "recorder/Kestrune.h"
#include "recorder/SlashOptions.h"

namespace kestrune::apps {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUse = 2;

/// Without a desktop there is nobody to hear it.
class Silence final : public platform::Sounds {
 public:
  void Play(std::string_view /*name*/) override {}
};

void Say(const std::string& line) { fmt::print(stderr, "kestrune: {}\n", line); }

int RunUnit(const control::CommandLine& line, const std::string& executable) {
  const control::Options& options = line.Chosen;
  const platform::PosixEnvironment environment({.ExecutablePath = executable,
                                                .CommandLine = line.RemainingText,
                                                .ProfileFolder = options.Profile});
  platform::QtEventLoop loop;
  platform::PosixFiles files;
  platform::IniSettingsStore settings(environment.SettingsFolder());
  platform::QtSerialPort port(platform::PortMap(options.PortDevices));
  platform::ConsoleDialogs dialogs(options.AcceptAgreement);
  Silence sounds;
  recorder::Windows windows;
  const std::unique_ptr<platform::SoundSource> source = MakeSoundSource(options);
  AudioLibrary audio(loop, *source);

  recorder::Kestrune unit({.Loop = loop,
                           .pcrComm = port,
                           .Audio = audio,
                           .Files = files,
                           .Environment = environment,
                           .Settings = settings,
                           .Dialogs = dialogs,
                           .Sounds = sounds,
                           .Windows = windows});
  control::UnitTarget target(unit);
  const std::string name = recorder::MultiUnitOf(line.RemainingText);
  const platform::LocalControlSocket socket(
      platform::ControlSocketPath(environment.RuntimeFolder(), name),
      [&target](std::string_view request) { return control::Dispatch(target, request); });
  if (socket.Status() == platform::LocalControlSocket::State::HeldByAnotherProcess) {
    Say(name.empty() ? "is running already" : fmt::format("unit {} is running already", name));
    return kFailed;
  }
  if (socket.Status() == platform::LocalControlSocket::State::Failed) {
    Say("no control socket: " + socket.Reason());
    return kFailed;
  }

  const platform::SignalWatch signalWatch([&unit] { unit.Close(); });
  int status = kDone;
  unit.SetClosedHandler([&status] { QCoreApplication::exit(status); });
  QTimer::singleShot(0, [&] {
    switch (unit.Load()) {
      case recorder::StartOutcome::Failed:
        status = kFailed;
        if (!unit.Session().pcrLastError().empty()) Say(unit.Session().pcrLastError());
        break;
      case recorder::StartOutcome::NotAgreed:
        QCoreApplication::exit(kFailed);
        break;
      case recorder::StartOutcome::Running:
      case recorder::StartOutcome::Closed:
        break;
    }
  });
  return QCoreApplication::exec();
}

}  // namespace
}  // namespace kestrune::apps

int main(int argc, char** argv) {
  using namespace kestrune;
  // Recordings and settings are the user's own.
  const std::vector<std::string> words(argv + 1, argv + argc);
  const control::CommandLine line = control::ParseCommandLine(words);
  if (!line.Error.empty()) {
    fmt::print(stderr, "kestrune: {}\n{}", line.Error, control::CommandLineUsage());
    return apps::kWrongUse;
  }
  if (line.Chosen.Help) {
    fmt::print("{}", control::CommandLineUsage());
    return apps::kDone;
  }
  if (line.Chosen.Version) {
    fmt::print("kestrune {}.{}.{}\n", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision);
    return apps::kDone;
  }
  if (!line.Chosen.Headless) {
    apps::Say("the windows are not part of this version yet; start it with --headless");
    return apps::kFailed;
  }
  const QCoreApplication application(argc, argv);
  return apps::RunUnit(line, argv[0]);
}
