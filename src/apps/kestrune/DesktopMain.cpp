// The program with windows. It is started by kestrune, which runs without.
#include <QApplication>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kestrune/Answers.h"
#include "apps/kestrune/DesktopFace.h"
#include "apps/kestrune/RunUnit.h"
#include "control/CommandLine.h"
#include "platform/xsmp/HiddenSessionManager.h"
#include "windows/Contrast.h"
#include "windows/ProgramIcon.h"

namespace kestrune::apps {
namespace {

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
  if (const std::optional<int> status = apps::AnsweredAtOnce(line)) return *status;
  if (line.Chosen.Headless) {
    apps::Say("this is the program with windows; kestrune --headless runs without");
    return apps::kWrongUse;
  }
  return apps::RunDesktop(line, argc, argv);
}
