// The desktop program, with windows or without.
#include <QApplication>
#include <QCoreApplication>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "apps/kestrune/DesktopFace.h"
#include "apps/kestrune/HeadlessFace.h"
#include "apps/kestrune/RunUnit.h"
#include "base/Version.h"
#include "control/CommandLine.h"
#include "platform/xsmp/HiddenSessionManager.h"
#include "windows/Contrast.h"
#include "windows/ProgramIcon.h"

namespace kestrune::apps {
namespace {

int RunHeadless(const control::CommandLine& line, int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  platform::QtEventLoop loop;
  return RunUnit(line, argv[0], loop, [&line](base::EventLoop&, const platform::Environment&) {
    return std::make_unique<HeadlessFace>(line.Chosen.AcceptAgreement);
  });
}

int RunDesktop(const control::CommandLine& line, int argc, char** argv) {
  if (const std::string why = WhyNoDisplay(); !why.empty()) {
    Say(why);
    return kFailed;
  }
  TellFatalFailures();
  // Qt becomes no client of the session manager; SessionEnd is one.
  std::optional<platform::HiddenSessionManager> hidden(std::in_place);
  const QApplication application(argc, argv);
  hidden.reset();
  QApplication::setApplicationName(QStringLiteral("Kestrune"));
  QApplication::setDesktopFileName(QStringLiteral("kestrune"));
  QApplication::setWindowIcon(windows::ProgramIcon());
  QApplication::setPalette(windows::Readable(QApplication::palette()));
  // Most of the run has no window, and windows that close are not its end.
  QApplication::setQuitOnLastWindowClosed(false);
  platform::QtEventLoop loop(platform::QtEventLoop::WhileAsleep::KeepPainted);
  return RunUnit(line, argv[0], loop,
                 [&line](base::EventLoop& own, const platform::Environment& environment) {
                   return std::make_unique<DesktopFace>(own, environment, line);
                 });
}

}  // namespace
}  // namespace kestrune::apps

int main(int argc, char** argv) {
  using namespace kestrune;
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
  return line.Chosen.Headless ? apps::RunHeadless(line, argc, argv) : apps::RunDesktop(line, argc, argv);
}
