#include "real/Screen.h"

#include <stdexcept>
#include <utility>

#include "base/Ignored.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

constexpr std::chrono::seconds kWindowPatience{60};

}  // namespace

Screen::Screen() {
  try {
    server_ = std::make_unique<Process>(
        Command{"Xvfb", {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"}});
    base::Ignored(WaitUntil(
        20s, [this] { return !server_->Running() || server_->Output().find('\n') != std::string::npos; }));
    const std::string number = server_->Output();
    const std::size_t end = number.find('\n');
    if (end == std::string::npos || !server_->Running()) return;
    name_ = ":" + number.substr(0, end);
    manager_ = std::make_unique<Process>(Command{"openbox", {"--sm-disable"}, Environment()});
    const bool managed = WaitUntil(
        20s, [this] { return Run("wmctrl", {"-m"}).Exit == 0; }, 100ms);
    if (!managed || Run("xdotool", {"version"}).Exit != 0) name_.clear();
  } catch (const std::runtime_error&) {
    name_.clear();
  }
}

std::map<std::string, std::string> Screen::Environment() const {
  return {{"DISPLAY", name_},       {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"},
          {"QT_SCALE_FACTOR", "1"}, {"SESSION_MANAGER", ""}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}};
}

Outcome Screen::Run(const std::string& program, std::vector<std::string> arguments) const {
  return RunToEnd({program, std::move(arguments), Environment()});
}

std::string Screen::Find(const std::string& title) const {
  const std::string found = Run("xdotool", {"search", "--onlyvisible", "--name", title}).Output;
  return found.substr(0, found.find('\n'));
}

bool Screen::Shows(const std::string& title) const {
  return !Find(title).empty();
}

bool Screen::WaitFor(const std::string& title) const {
  return WaitUntil(
      kWindowPatience, [&] { return Shows(title); }, 100ms);
}

bool Screen::WaitUntilGone(const std::string& title) const {
  return WaitUntil(
      kWindowPatience, [&] { return !Shows(title); }, 100ms);
}

void Screen::Press(const std::string& title, const std::vector<std::string>& keys) const {
  Focus(title);
  std::vector<std::string> arguments{"key", "--clearmodifiers", "--delay", "30"};
  arguments.insert(arguments.end(), keys.begin(), keys.end());
  base::Ignored(Run("xdotool", std::move(arguments)));
}

void Screen::Type(const std::string& title, const std::string& text) const {
  Focus(title);
  base::Ignored(Run("xdotool", {"type", "--clearmodifiers", "--delay", "30", text}));
}

void Screen::Click(const std::string& title, int x, int y, int times) const {
  Focus(title);
  base::Ignored(Run("xdotool", {"mousemove", "--window", Find(title), std::to_string(x), std::to_string(y),
                                "click", "--repeat", std::to_string(times), "--delay", "60", "1"}));
}

void Screen::Drag(const std::string& title, int x, int y, const std::string& target) const {
  Focus(title);
  // A target learns of a drag by its steps, and answers each of them.
  base::Ignored(Run("xdotool", {"mousemove", "--window", Find(title), std::to_string(x), std::to_string(y),
                                "sleep", "0.2", "mousedown", "1", "sleep", "0.2"}));
  for (int step = 0; step < 5; ++step)
    base::Ignored(Run("xdotool", {"mousemove_relative", "--", "8", "4", "sleep", "0.1"}));
  base::Ignored(Run("xdotool", {"mousemove", "--window", Find(target), "90", "90", "sleep", "0.3",
                                "mousemove_relative", "--", "5", "5", "sleep", "0.3", "mouseup", "1"}));
}

std::string Screen::Picture(const std::string& title) const {
  return Run("ffmpeg", {"-loglevel", "error", "-f", "x11grab", "-window_id", Find(title), "-i", name_,
                        "-frames:v", "1", "-f", "rawvideo", "-"})
      .Output;
}

void Screen::Focus(const std::string& title) const {
  base::Ignored(Run("xdotool", {"windowactivate", "--sync", Find(title)}));
}

void Screen::Minimise(const std::string& title) const {
  base::Ignored(Run("xdotool", {"windowminimize", "--sync", Find(title)}));
}

void Screen::Activate(const std::string& part) const {
  base::Ignored(Run("wmctrl", {"-a", part}));
}

void Screen::Close(const std::string& title) const {
  base::Ignored(Run("wmctrl", {"-i", "-c", Find(title)}));
}

}  // namespace kestrune::test
