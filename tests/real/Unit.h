#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "real/Process.h"

namespace kestrune::test {

/// How long a start, a song or an end may take before a test gives up. Generous: a slow machine is no
/// failure.
inline constexpr std::chrono::seconds kPatience{90};

/// A kestrune, without windows unless told, in a profile of its own, and its kestrune-ctl.
class Unit {
 public:
  using Json = nlohmann::json;

  struct Setup {
    std::string Audio;  ///< of --audio
    std::string Port;   ///< the device that is port 1
    std::map<std::string, std::string> Settings{};
    std::vector<std::string> Arguments{};  ///< further ones
    std::map<std::string, std::string> Environment{};
    bool WritesSettings = true;  ///< false: the profile is taken as it stands
    std::string Name{};          ///< the unit's character, empty for a single one
    bool Windows = false;        ///< with windows, on the display of the environment; nobody has agreed yet
  };

  Unit(std::string profile, Setup setup);

  /// Starts the program; it may have run before.
  void Start();
  /// Waits until the channels are loaded.
  [[nodiscard]] bool WaitUntilIdle();
  /// Waits until one capture gives way to the next. What is recorded from then on is whole; the capture that
  /// is in hand when the channels are loaded counts as whole too, but began in the middle of a song.
  [[nodiscard]] bool WaitForBoundary() const;
  /// Presses Record and waits for a count of kept songs.
  [[nodiscard]] bool Record(int songs);

  /// Runs kestrune-ctl on this unit.
  [[nodiscard]] Outcome Ctl(std::vector<std::string> words) const;
  /// The result of a command as JSON; null if it was not done.
  [[nodiscard]] Json Ask(std::vector<std::string> words) const;
  [[nodiscard]] Json Status() const { return Ask({"status"}); }
  [[nodiscard]] bool WaitForStatus(const std::function<bool(const Json&)>& fits,
                                   std::chrono::milliseconds patience = kPatience) const;
  [[nodiscard]] int RecordedCount() const;

  /// The exit status after a quit; nothing if the program does not end.
  [[nodiscard]] std::optional<int> Quit();
  [[nodiscard]] Process& Program() { return *process_; }

  [[nodiscard]] const std::string& Profile() const { return profile_; }
  [[nodiscard]] std::string DataFolder() const { return profile_ + "/home/Application Data/Kestrune"; }
  [[nodiscard]] std::string SettingsFile() const { return profile_ + "/config/lorimel.ini"; }
  [[nodiscard]] std::string RecordingFolder() const { return profile_ + "/Music/Kestrune"; }
  [[nodiscard]] std::string LogText() const;
  /// Files below the folder of recordings, by path; captures that are not finished are kept apart.
  [[nodiscard]] std::vector<std::string> Recordings() const { return FilesBelow(RecordingFolder(), false); }
  [[nodiscard]] std::vector<std::string> Captures() const { return FilesBelow(RecordingFolder(), true); }
  [[nodiscard]] static std::vector<std::string> FilesBelow(const std::string& folder, bool captures);

 private:
  std::string profile_;
  Setup setup_;
  std::unique_ptr<Process> process_;
};

}  // namespace kestrune::test
