#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// What the program knows of the place where it runs. Folders come without a separator at the end.
class Environment {
 public:
  virtual ~Environment() = default;

  /// An environment variable by the product's name. "userprofile" falls back to the home folder, "temp" and
  /// "Temp" to the system's temporary folder; empty if there is nothing.
  [[nodiscard]] virtual std::string Variable(std::string_view name) const = 0;
  [[nodiscard]] virtual std::string ExecutableFolder() const = 0;
  /// Where recordings go until the user chooses: the folder Kestrune in the user's music folder.
  [[nodiscard]] virtual std::string DefaultRecordingFolder() const = 0;
  /// The raw command line after the program's name, without the long options.
  [[nodiscard]] virtual std::string CommandLine() const = 0;
};

}  // namespace kestrune::platform
