#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

namespace kestrune::control {

enum class AudioInput { Automatic, Pulse, Alsa, Pipe };

/// What the long options of the desktop program choose.
struct Options {
  bool Headless = false;
  bool AcceptAgreement = false;
  bool Demo = false;
  bool Help = false;
  bool Version = false;
  std::string Profile;                     ///< a folder as it was typed; empty for the user's own places
  std::map<int, std::string> PortDevices;  ///< port 1 to 16 to a device path
  AudioInput Audio = AudioInput::Automatic;
  std::string AudioPipe;  ///< the path of AudioInput::Pipe
};

struct CommandLine {
  Options Chosen;
  /// What the long options leave, joined by blanks. The slash options are searched in it as raw text, so that
  /// a path given to a long option is never mistaken for one.
  std::string RemainingText;
  /// Names the option that is wrong; empty if none is. The caller prints it with the usage and ends with
  /// status 2.
  std::string Error;
};

/// The words after the program's name. An option given twice counts as given last.
[[nodiscard]] CommandLine ParseCommandLine(std::span<const std::string> arguments);

/// The words that start the same unit again, with its radio and its sound, wherever it is started from: relative paths
/// are completed from `folder`. What is meant for one start alone (demonstration, agreement) is left out.
[[nodiscard]] std::vector<std::string> WordsOfTheSameStart(const CommandLine& line,
                                                           const std::string& folder);

/// The usage text of the desktop program, slash options included.
[[nodiscard]] std::string CommandLineUsage();

}  // namespace kestrune::control
