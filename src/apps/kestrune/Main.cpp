// The program without windows; where windows are wanted, the desktop program takes its place.
#include <QCoreApplication>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kestrune/Answers.h"
#include "apps/kestrune/HeadlessFace.h"
#include "apps/kestrune/RunUnit.h"
#include "apps/kestrune/StartDesktop.h"
#include "control/CommandLine.h"

namespace kestrune::apps {
namespace {

int RunHeadless(const control::CommandLine& line, int argc, char** argv) {
  // Each turn of Qt's own loop costs less than one of GLib's, which only windows need.
  constexpr const char* kNoGlib = "QT_NO_GLIB";
  ::setenv(kNoGlib, "1", 1);
  const QCoreApplication application(argc, argv);
  ::unsetenv(kNoGlib);  // programs that are started choose for themselves
  platform::QtEventLoop loop;
  return RunUnit(line, argv[0], loop, [&line](base::EventLoop&, const platform::Environment&) {
    return std::make_unique<HeadlessFace>(line.Chosen.AcceptAgreement);
  });
}

}  // namespace
}  // namespace kestrune::apps

int main(int argc, char** argv) {
  using namespace kestrune;
  const std::vector<std::string> words(argv + 1, argv + argc);
  const control::CommandLine line = control::ParseCommandLine(words);
  if (const std::optional<int> status = apps::AnsweredAtOnce(line)) return *status;
  return line.Chosen.Headless ? apps::RunHeadless(line, argc, argv) : apps::StartDesktop(argv[0], words);
}
