#include "real/Unit.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "real/Waiting.h"

namespace kestrune::test {

Unit::Unit(std::string profile, Setup setup) : profile_(std::move(profile)), setup_(std::move(setup)) {
  if (!setup_.WritesSettings) return;
  // No program of a test asks the network for a newer version of itself.
  setup_.Settings.insert({"CheckUpdatesAtStartup", "False"});
  // Only the tests of the shelf have one.
  setup_.Settings.insert({"ShelfSongs", "0"});
  std::filesystem::create_directories(profile_ + "/config");
  std::ofstream file(SettingsFile());
  file << "[Kestrune" << setup_.Name << "]\n";
  for (const auto& [key, value] : setup_.Settings) {
    file << key << '=';
    for (const char c : value) file << (c == '\\' ? "\\\\" : std::string(1, c));
    file << '\n';
  }
}

void Unit::Start() {
  Command command{"kestrune",
                  {"--profile", profile_, "--port-device", "1=" + setup_.Port, "--audio", setup_.Audio},
                  setup_.Environment};
  if (!setup_.Windows) {
    command.Arguments.insert(command.Arguments.begin(), {"--headless", "--accept-agreement"});
  }
  if (!setup_.Name.empty()) {
    command.Arguments.insert(command.Arguments.end(), {"/multi", setup_.Name});
  }
  command.Arguments.insert(command.Arguments.end(), setup_.Arguments.begin(), setup_.Arguments.end());
  process_ = std::make_unique<Process>(command);
}

bool Unit::WaitUntilIdle() {
  return WaitUntil(
             kPatience,
             [this] {
               if (!process_->Running()) return true;
               const Json status = Status();
               return status.is_object() && !status.value("loading", false) &&
                      !status.value("channelsLoading", true) && status.value("channelCount", 0) > 0;
             },
             200ms) &&
         process_->Running();
}

bool Unit::WaitForBoundary() const {
  std::int64_t before = 0;
  return WaitForStatus([&before](const Json& status) {
    const auto now = status.value("captureLengthMs", std::int64_t{0});
    return now < std::exchange(before, now);
  });
}

bool Unit::Record(int songs) {
  if (Ctl({"record"}).Exit != 0) return false;
  return WaitForStatus([songs](const Json& status) { return status.value("recordedCount", 0) >= songs; });
}

Outcome Unit::Ctl(std::vector<std::string> words) const {
  std::vector<std::string> arguments{"--profile", profile_};
  if (!setup_.Name.empty()) arguments.insert(arguments.end(), {"--unit", setup_.Name});
  arguments.insert(arguments.end(), std::make_move_iterator(words.begin()),
                   std::make_move_iterator(words.end()));
  return RunToEnd({"kestrune-ctl", arguments, {}});
}

Unit::Json Unit::Ask(std::vector<std::string> words) const {
  words.insert(words.begin(), "--json");
  const Outcome outcome = Ctl(std::move(words));
  if (outcome.Exit != 0) return nullptr;
  Json json = Json::parse(outcome.Output, nullptr, false);
  return json.is_discarded() ? Json() : json;
}

bool Unit::WaitForStatus(const std::function<bool(const Json&)>& fits,
                         std::chrono::milliseconds patience) const {
  return WaitUntil(
      patience,
      [&] {
        const Json status = Status();
        return status.is_object() && fits(status);
      },
      200ms);
}

int Unit::RecordedCount() const {
  const Json status = Status();
  return status.is_object() ? status.value("recordedCount", -1) : -1;
}

std::optional<int> Unit::Quit() {
  if (Ctl({"quit"}).Exit != 0) return std::nullopt;
  return process_->Wait(kPatience);
}

std::string Unit::LogText() const {
  std::ifstream file(DataFolder() + "/Kestrune" + setup_.Name + ".log");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Unit::FilesBelow(const std::string& folder, bool captures) {
  std::vector<std::string> files;
  std::error_code gone;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, gone)) {
    if (!entry.is_regular_file(gone)) continue;
    const std::string name = entry.path().filename();
    // "Capture", a number, and perhaps the unit's character.
    const bool capture = name.starts_with("Capture") && name.size() > 7 && name[7] >= '0' && name[7] <= '9';
    if (capture == captures) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace kestrune::test
