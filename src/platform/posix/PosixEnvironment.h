#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Environment.h"

namespace kestrune::platform {

/// What the program was started with.
struct StartArguments {
  /// The program's first argument; without a folder in it, or empty, the system is asked where the program
  /// lies.
  std::string ExecutablePath;
  /// The command line behind the program's name, without the long options.
  std::string CommandLine;
  /// A folder that everything of this run lies in: home, temporary folder, settings, socket and recordings.
  std::optional<std::string> ProfileFolder;
};

/// The user's surroundings on Linux. Variables are read anew at each call. The folders of a profile are made,
/// for the user alone, when they are first asked for.
class PosixEnvironment final : public Environment {
 public:
  explicit PosixEnvironment(StartArguments arguments);

  [[nodiscard]] std::string Variable(std::string_view name) const override;
  [[nodiscard]] std::string ExecutableFolder() const override { return executableFolder_; }
  /// Made if it is missing, so that the first recording finds it.
  [[nodiscard]] std::string DefaultRecordingFolder() const override;
  [[nodiscard]] std::string CommandLine() const override { return commandLine_; }

  /// Where the settings files lie: the folder kestrune in the user's configuration folder. It may not exist
  /// yet.
  [[nodiscard]] std::string SettingsFolder() const;
  /// Where sockets and locks of running units lie: a folder of the user's own, mode 0700. Empty if there is
  /// none that is safe, as when somebody else has taken its name.
  [[nodiscard]] std::string RuntimeFolder() const;

 private:
  [[nodiscard]] std::string Home() const;
  [[nodiscard]] std::string ConfigurationFolder() const;
  [[nodiscard]] std::string MusicFolder() const;
  /// A folder of the profile.
  [[nodiscard]] std::string InProfile(std::string_view name) const;

  std::string executableFolder_;
  std::string commandLine_;
  std::optional<std::string> profileFolder_;
};

}  // namespace kestrune::platform
