#include "real/Reader.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <utility>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

constexpr std::chrono::seconds kReadPatience{30};
constexpr const char* kLauncher = "/usr/libexec/at-spi-bus-launcher";

Reader::Thing ThingOf(const std::string& line) {
  std::vector<std::string> parts = base::Split(line, '|');
  constexpr std::size_t kParts = 5;
  parts.resize(kParts);
  return {.Depth = base::ToInt16(parts[0]).value_or(0),
          .Role = parts[1],
          .Name = parts[2],
          .Value = parts[3],
          .States = parts[4]};
}

}  // namespace

Reader::Reader(const Screen& screen) : screen_(screen) {
  if (!screen.Usable() || !PrivateBus::Installed() || !std::filesystem::exists(kLauncher)) return;
  bus_ = std::make_unique<PrivateBus>(folder_.Path());
  base::Ignored(WaitUntil(kReadPatience, [this] { return std::filesystem::exists(folder_ / "bus"); }));
  launcher_ = std::make_unique<Process>(Command{kLauncher, {"--launch-immediately"}, Environment()});
}

std::map<std::string, std::string> Reader::Environment() const {
  auto environment = screen_.Environment();
  environment["DBUS_SESSION_BUS_ADDRESS"] = bus_->Address();
  environment["XDG_RUNTIME_DIR"] = folder_.Path();
  environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
  return environment;
}

Outcome Reader::Run(std::vector<std::string> words) const {
  return RunToEnd({"screen_reader", std::move(words), Environment()});
}

std::vector<Reader::Thing> Reader::Read() const {
  std::vector<Thing> things;
  std::istringstream lines(Run({"tree"}).Output);
  for (std::string line; std::getline(lines, line);) things.push_back(ThingOf(line));
  return things;
}

bool Reader::WaitFor(const std::string& role, const std::string& name) const {
  return WaitUntil(
      kReadPatience,
      [&] {
        const std::vector<Thing> things = Read();
        return std::any_of(things.begin(), things.end(), [&](const Thing& thing) {
          return thing.Role == role && thing.Name == name && thing.Is("showing");
        });
      },
      200ms);
}

bool Reader::Press(const std::string& role, const std::string& name) const {
  return WaitUntil(
      kReadPatience,
      [&] {
        return Run({"press", role, name}).Exit == 0;
      },
      200ms);
}

void Reader::Listen() {
  listener_ = std::make_unique<Process>(Command{"screen_reader", {"listen"}, Environment()});
  base::Ignored(WaitUntil(kReadPatience,
                          [this] { return listener_->Output().find("listening\n") != std::string::npos; }));
}

bool Reader::Heard(const std::string& text) const {
  return WaitUntil(kReadPatience, [&] { return listener_->Output().find(text) != std::string::npos; });
}

}  // namespace kestrune::test
