#include "control/CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "base/Text.h"
#include "control/ConsoleText.h"
#include "control/LongOptions.h"
#include "recorder/SlashOptions.h"

namespace kestrune::control {
namespace {

constexpr int kLastPort = 16;
constexpr std::string_view kPipe = "pipe:";

constexpr std::array kLongOptions{
    LongOption{"--headless", "", "show no window; dialogs take their safe answer"},
    LongOption{"--accept-agreement", "", "accept the first-run agreement"},
    LongOption{"--profile", "DIR", "keep home, settings and socket inside DIR"},
    LongOption{"--port-device", "N=PATH", "let port N (1 to 16) be this device"},
    LongOption{"--audio", "pulse|alsa|pipe:PATH", "where the sound comes from"},
    LongOption{"--demo", "", "run with a receiver and sound of its own"},
    LongOption{"--help", "", "show this text"},
    LongOption{"--version", "", "show the version"},
};

std::string ReadPortDevice(std::string_view value, Options& options) {
  const std::size_t equals = value.find('=');
  int port = 0;
  if (equals != std::string_view::npos) {
    const char* end = value.data() + equals;
    const auto [stop, error] = std::from_chars(value.data(), end, port);
    if (error != std::errc() || stop != end) port = 0;
  }
  if (port < 1 || port > kLastPort || equals + 1 == value.size()) {
    return fmt::format("--port-device takes N=PATH with N from 1 to {}, not {}", kLastPort, Quoted(value));
  }
  options.PortDevices[port] = std::string(value.substr(equals + 1));
  return {};
}

std::string ReadAudio(std::string_view value, Options& options) {
  if (value == "pulse") {
    options.Audio = AudioInput::Pulse;
  } else if (value == "alsa") {
    options.Audio = AudioInput::Alsa;
  } else if (value.starts_with(kPipe) && value.size() > kPipe.size()) {
    options.Audio = AudioInput::Pipe;
  } else {
    return fmt::format("--audio takes pulse, alsa or pipe:PATH, not {}", Quoted(value));
  }
  options.AudioPipe = options.Audio == AudioInput::Pipe ? value.substr(kPipe.size()) : std::string_view();
  return {};
}

std::string Take(const GivenOption& given, Options& options) {
  if (given.Name == "--headless") options.Headless = true;
  if (given.Name == "--accept-agreement") options.AcceptAgreement = true;
  if (given.Name == "--demo") options.Demo = true;
  if (given.Name == "--help") options.Help = true;
  if (given.Name == "--version") options.Version = true;
  if (given.Name == "--profile") {
    if (given.Value.empty()) return "--profile takes a folder, not an empty text";
    options.Profile = given.Value;
  }
  if (given.Name == "--port-device") return ReadPortDevice(given.Value, options);
  if (given.Name == "--audio") return ReadAudio(given.Value, options);
  return {};
}

}  // namespace

CommandLine ParseCommandLine(std::span<const std::string> arguments) {
  const OptionsRead read = ReadLongOptions(kLongOptions, arguments);
  CommandLine line;
  line.Error = read.Error;
  for (const GivenOption& given : read.Given) {
    const std::string wrong = Take(given, line.Chosen);
    if (line.Error.empty()) line.Error = wrong;
  }
  for (const std::string& word : read.Rest) {
    if (!line.RemainingText.empty()) line.RemainingText += ' ';
    line.RemainingText += word;
  }
  // The option's unit is missing, and the next option took its place. No file could have "/" in its name.
  if (line.Error.empty() && recorder::MultiUnitOf(line.RemainingText) == "/") {
    line.Error = "/multi takes a unit of one character, which cannot be \"/\"";
  }
  return line;
}

std::vector<std::string> WordsOfTheSameStart(const CommandLine& line, const std::string& folder) {
  const auto whole = [&folder](const std::string& path) {
    return path.starts_with('/') ? path : folder + '/' + path;
  };
  const Options& chosen = line.Chosen;
  std::vector<std::string> words;
  if (!chosen.Profile.empty()) words.insert(words.end(), {"--profile", whole(chosen.Profile)});
  for (const auto& [port, device] : chosen.PortDevices) {
    words.insert(words.end(), {"--port-device", fmt::format("{}={}", port, whole(device))});
  }
  switch (chosen.Audio) {
    case AudioInput::Pulse:
      words.insert(words.end(), {"--audio", "pulse"});
      break;
    case AudioInput::Alsa:
      words.insert(words.end(), {"--audio", "alsa"});
      break;
    case AudioInput::Pipe:
      words.insert(words.end(), {"--audio", std::string(kPipe) + whole(chosen.AudioPipe)});
      break;
    case AudioInput::Automatic:
      break;
  }
  std::vector<std::string> rest = base::Split(line.RemainingText, ' ');
  // Those inside are blanks that keep the digits of a number apart; those in front would be lost.
  rest.erase(rest.begin(),
             std::find_if(rest.begin(), rest.end(), [](const std::string& word) { return !word.empty(); }));
  const bool likeOptions =
      std::any_of(rest.begin(), rest.end(), [](const std::string& word) { return word.starts_with("--"); });
  if (likeOptions) words.emplace_back("--");
  words.insert(words.end(), rest.begin(), rest.end());
  return words;
}

std::string CommandLineUsage() {
  return "usage: kestrune [options] [/multi U] [/debug] [/port N]\n\n"
         "  /multi U                    run as unit U (one character), apart from other units\n"
         "  /debug                      write a trace file\n"
         "  /port N                     look for the radio on port N (1 to 255) first\n" +
         OptionsHelp(kLongOptions);
}

}  // namespace kestrune::control
