#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Environment.h"

namespace kestrune::platform {

/// What the program was started with.
struct StartArguments {
  /// The program's first argument; if it is empty or names no folder, the system is asked where the
  /// program is.
  std::string ExecutablePath;
  /// The command line after the program's name, without the long options.
  std::string CommandLine;
  /// The folder that holds everything of this run: home, temporary folder, settings, socket and recordings.
  std::optional<std::string> ProfileFolder;
};

/// The user's surroundings on Linux. Variables are read anew at each call. The folders of a profile are made,
/// for the user alone, when they are first used.
class PosixEnvironment final : public Environment {
 public:
  explicit PosixEnvironment(StartArguments arguments);

  [[nodiscard]] std::string Variable(std::string_view name) const override;
  [[nodiscard]] std::string ExecutableFolder() const override { return executableFolder_; }
  /// Made if it is missing, so that the first recording finds it.
  [[nodiscard]] std::string DefaultRecordingFolder() const override;
  [[nodiscard]] std::string CommandLine() const override { return commandLine_; }

  /// The user's own configuration folder, whatever the profile.
  [[nodiscard]] std::string ConfigurationFolder() const;
  /// Where the settings files are: the folder kestrune in the user's configuration folder. It may not exist
  /// yet.
  [[nodiscard]] std::string SettingsFolder() const;
  /// Where the sockets and locks of running units are: a folder of the user's own, mode 0700. Empty if there is
  /// none that is safe, as when somebody else has taken its name.
  [[nodiscard]] std::string RuntimeFolder() const;

 private:
  [[nodiscard]] std::string Home() const;
  [[nodiscard]] std::string MusicFolder() const;
  /// A folder of the profile.
  [[nodiscard]] std::string InProfile(std::string_view name) const;

  std::string executableFolder_;
  std::string commandLine_;
  std::optional<std::string> profileFolder_;
};

}  // namespace kestrune::platform
