#include "apps/kestrune/RunUnit.h"

#include <QCoreApplication>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>
#include <malloc.h>

#include "apps/SoundInput.h"
#include "apps/kestrune/AudioLibrary.h"
#include "apps/kestrune/DemoReceiver.h"
#include "control/ControlServer.h"
#include "control/ServiceReporter.h"
#include "control/UnitTarget.h"
#include "platform/codec/WorkerCaptureMender.h"
#include "platform/local/ControlSocketPath.h"
#include "platform/posix/IniSettingsStore.h"
#include "platform/posix/NotifySocket.h"
#include "platform/posix/PortMap.h"
#include "platform/posix/PosixEnvironment.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/UnitLock.h"
#include "platform/posix/WorkerFileSync.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SignalWatch.h"
#include "platform/qtdbus/DesktopInhibitor.h"
#include "platform/qtlocal/LocalControlSocket.h"
#include "platform/qtweb/QtWeb.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "recorder/Kestrune.h"
#include "recorder/SlashOptions.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::apps {
namespace {

platform::PortMap PortsOf(const control::Options& options) {
  platform::PortMap ports;
  for (const auto& [number, path] : options.PortDevices)
    ports.SetDevice(static_cast<std::int16_t>(number), path);
  return ports;
}

std::string SoundChoice(const control::Options& options) {
  switch (options.Audio) {
    case control::AudioInput::Pulse:
      return "pulse";
    case control::AudioInput::Alsa:
      return "alsa";
    case control::AudioInput::Pipe:
      return "pipe:" + options.AudioPipe;
    case control::AudioInput::Automatic:
      break;
  }
  return {};
}

}  // namespace

void Say(const std::string& line) {
  fmt::print(stderr, "kestrune: {}\n", line);
}

int RunUnit(const control::CommandLine& line, const std::string& executable, platform::QtEventLoop& loop,
            const MakeFace& makeFace) {
  control::Options options = line.Chosen;
  // Without heaps of their own the threads need less memory, and none allocates often enough to wait for another.
  ::mallopt(M_ARENA_MAX, 1);
  // Before anything else is started, which is to hear nothing of it.
  platform::NotifySocket serviceManager;
  const platform::PosixEnvironment environment(
      {.ExecutablePath = executable,
       .CommandLine = line.RemainingText,
       .ProfileFolder = options.Profile.empty() ? std::nullopt : std::optional(options.Profile)});
  const std::string name = recorder::MultiUnitOf(line.RemainingText);
  const std::string runtimeFolder = environment.RuntimeFolder();
  if (runtimeFolder.empty()) {
    Say("there is no folder of the user's own for the control socket");
    return kFailed;
  }
  platform::UnitLock lock(runtimeFolder, name);
  if (!lock.TryAcquire()) {
    Say(name.empty() ? "is running already" : fmt::format("unit {} is running already", name));
    return kFailed;
  }
  std::optional<DemoReceiver> demo;
  if (options.Demo) {
    demo.emplace(environment.ExecutableFolder());
    if (!demo->Error().empty()) {
      Say(demo->Error());
      return kFailed;
    }
    options.PortDevices[1] = demo->LinePath();
    options.Audio = control::AudioInput::Pipe;
    options.AudioPipe = demo->SoundPath();
  }
  platform::PosixFiles files;
  platform::WorkerFileSync fileSync(loop);
  platform::WorkerCaptureMender captureMender(loop);
  platform::IniSettingsStore settings(environment.SettingsFolder());
  platform::QtSerialPort port(loop, PortsOf(options));
  platform::SerialEnumerator serialEnumerator;
  platform::QtWeb web;
  platform::PosixProcesses processes(loop);
  platform::DesktopInhibitor sleepInhibitor;
  const std::unique_ptr<Face> face = makeFace(loop, environment);
  const SoundInput input = MakeSoundSource(SoundChoice(options), options.Demo ? "Demonstration" : "");
  if (input.Source == nullptr) {
    Say(input.Error);
    return kFailed;
  }
  AudioLibrary audio(loop, *input.Source);

  platform::SqliteHistoryStore history(
      loop, fmt::format("{}/History{}.db", schedule::UserDataFolder(environment), name));

  const recorder::Outside outside{.Loop = loop,
                                  .pcrComm = port,
                                  .Audio = audio,
                                  .Files = files,
                                  .FileSync = fileSync,
                                  .CaptureMender = captureMender,
                                  .Environment = environment,
                                  .Settings = settings,
                                  .Dialogs = face->Dialogs(),
                                  .Sounds = face->Sounds(),
                                  .Windows = face->Windows(),
                                  .SerialEnumerator = serialEnumerator,
                                  .Web = web,
                                  .Processes = processes,
                                  .SleepInhibitor = sleepInhibitor,
                                  .HistoryStore = history};
  recorder::Kestrune unit(outside);
  face->Attach(unit, outside, *input.Mixer, *input.Listener);
  control::UnitTarget target(unit);
  const platform::LocalControlSocket socket(
      platform::ControlSocketPath(runtimeFolder, name),
      [&target](std::string_view request, const platform::LocalControlSocket::Reply& reply) {
        control::Dispatch(target, request, reply);
      });
  if (socket.Status() != platform::LocalControlSocket::State::Listening) {
    Say("no control socket: " + socket.Reason());
    return kFailed;
  }

  const platform::SignalWatch signalWatch([&unit](int /*signal*/) { unit.Wishes().Close(); });
  control::ServiceReporter serviceReporter(unit, loop, serviceManager);
  serviceReporter.Start();
  int status = kDone;
  unit.SetClosedHandler([&status] { QCoreApplication::exit(status); });
  std::unique_ptr<base::Timer> start;
  start = loop.MakeTimer(std::chrono::milliseconds(0), [&] {
    start->SetEnabled(false);
    switch (unit.Load()) {
      case recorder::StartOutcome::Failed:
        status = kFailed;
        if (!unit.WhyNoRadio().empty()) Say(unit.WhyNoRadio());
        break;
      case recorder::StartOutcome::NotAgreed:
        QCoreApplication::exit(kFailed);
        break;
      case recorder::StartOutcome::Running:
      case recorder::StartOutcome::Closed:
        break;
    }
    loop.KeepUserOutOfPumps();
  });
  start->SetEnabled(true);
  const int ended = QCoreApplication::exec();
  face->Detach();
  return ended;
}

}  // namespace kestrune::apps
