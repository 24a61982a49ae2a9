#include "apps/kestrune-radio/RadioOptions.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <map>

#include <fmt/format.h>

namespace kestrune::radio_program {
namespace {

using std::chrono::milliseconds;

/// Returns what is wrong with a value; empty if nothing is.
using Reader = std::function<std::string(std::string_view value, RadioOptions& options)>;

template <typename Number>
std::optional<Number> NumberFrom(std::string_view text) {
  Number value{};
  const char* const textEnd = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), textEnd, value);
  if (error != std::errc{} || end != textEnd) return std::nullopt;
  return value;
}

std::string ReadInt(std::string_view text, int low, int high, int& value) {
  const auto number = NumberFrom<int>(text);
  if (!number || *number < low || *number > high) {
    return fmt::format("\"{}\" is not a whole number from {} to {}", text, low, high);
  }
  value = *number;
  return {};
}

std::string ReadSeconds(std::string_view text, std::optional<milliseconds>& value) {
  const auto seconds = NumberFrom<double>(text);
  if (!seconds || !(*seconds >= 0.001 && *seconds <= 1e7)) {
    return fmt::format("\"{}\" is not a number of seconds above 0", text);
  }
  value = milliseconds(std::llround(*seconds * 1000));
  return {};
}

std::string ReadText(std::string_view text, std::string& value) {
  if (text.empty()) return "it needs a value";
  value = text;
  return {};
}

std::string ReadSound(std::string_view text, RadioOptions& options) {
  constexpr std::string_view kPipe = "pipe:";
  constexpr std::string_view kPulse = "pulse:";
  if (text == "none") {
    options.Sound = SoundTarget::None;
  } else if (text.starts_with(kPipe) && text.size() > kPipe.size()) {
    options.Sound = SoundTarget::Pipe;
    options.SoundPlace = text.substr(kPipe.size());
  } else if (text.starts_with(kPulse)) {
    options.Sound = SoundTarget::Pulse;
    options.SoundPlace = text.substr(kPulse.size());
  } else {
    return fmt::format("\"{}\" is not pipe:PATH, pulse:SINK or none", text);
  }
  return {};
}

std::string ReadSignal(std::string_view text, RadioOptions& options) {
  if (text == "tunes") {
    options.Signal = receiver::SignalKind::Tunes;
  } else if (text == "tones") {
    options.Signal = receiver::SignalKind::Tones;
  } else if (text == "counter") {
    options.Signal = receiver::SignalKind::Counter;
  } else if (text == "music") {
    options.Signal = receiver::SignalKind::Music;
  } else {
    return fmt::format("\"{}\" is not tunes, tones, counter or music", text);
  }
  return {};
}

std::string ReadMisbehaviour(std::string_view text, RadioOptions& options) {
  receiver::MisbehaviourWish wish;
  const std::size_t end = text.find_first_of("=@");
  wish.Name = text.substr(0, end);
  if (receiver::MakeMisbehaviour(wish, 0) == nullptr) {
    return fmt::format("\"{}\" is not a misbehaviour", wish.Name);
  }
  if (end != std::string_view::npos) {
    const std::string_view value = text.substr(end + 1);
    if (text[end] == '@') {
      std::string error = ReadSeconds(value, wish.At);
      if (!error.empty()) return error;
    } else {
      const auto rate = NumberFrom<double>(value);
      if (!rate || !(*rate >= 0 && *rate <= 1)) return fmt::format("\"{}\" is not a rate from 0 to 1", value);
      wish.Rate = *rate;
    }
  }
  options.Receiver.Misbehaviours.push_back(std::move(wish));
  return {};
}

std::string ReadMisbehaviours(std::string_view text, RadioOptions& options) {
  for (;;) {
    const std::size_t comma = text.find(',');
    std::string error = ReadMisbehaviour(text.substr(0, comma), options);
    if (!error.empty() || comma == std::string_view::npos) return error;
    text.remove_prefix(comma + 1);
  }
}

std::string ReadLead(std::string_view text, RadioOptions& options) {
  int lead = 0;
  std::string error = ReadInt(text, -60'000, 60'000, lead);
  options.Receiver.Model.Lead = milliseconds(lead);
  return error;
}

std::string ReadSeed(std::string_view text, RadioOptions& options) {
  const auto seed = NumberFrom<std::uint64_t>(text);
  if (!seed) return fmt::format("\"{}\" is not a whole number", text);
  options.Receiver.Seed = *seed;
  return {};
}

std::string ReadIdentifier(std::string_view text, RadioOptions& options) {
  constexpr std::size_t kCharacters = 8;
  if (text.size() != kCharacters) return fmt::format("\"{}\" has not eight characters", text);
  options.Receiver.Model.Identifier = text;
  return {};
}

struct Switch {
  std::string_view Name;
  void (*Set)(RadioOptions& options);
};

const std::vector<Switch>& Switches() {
  static const std::vector<Switch> kSwitches = {
      {"--help", [](RadioOptions& options) { options.Help = true; }},
      {"--version", [](RadioOptions& options) { options.Version = true; }},
      {"--off", [](RadioOptions& options) { options.Receiver.Model.PoweredOn = false; }},
  };
  return kSwitches;
}

const std::map<std::string_view, Reader>& Readers() {
  static const std::map<std::string_view, Reader> kReaders = {
      {"--link", [](auto text, auto& options) { return ReadText(text, options.Link); }},
      {"--sound", ReadSound},
      {"--rate", [](auto text, auto& options) { return ReadInt(text, 8000, 192'000, options.SampleRate); }},
      {"--signal", ReadSignal},
      {"--songs", [](auto text, auto& options) { return ReadSeconds(text, options.SongLength); }},
      {"--lead", ReadLead},
      {"--line-up", [](auto text, auto& options) { return ReadText(text, options.LineUpFile); }},
      {"--channels", [](auto text, auto& options) { return ReadInt(text, 1, 254, options.Channels); }},
      {"--misbehave", ReadMisbehaviours},
      {"--seed", ReadSeed},
      {"--replay", [](auto text, auto& options) { return ReadText(text, options.ReplayFile); }},
      {"--jsonl", [](auto text, auto& options) { return ReadText(text, options.JsonFile); }},
      {"--tuned",
       [](auto text, auto& options) { return ReadInt(text, 1, 255, options.Receiver.Model.Tuned); }},
      {"--identifier", ReadIdentifier},
      {"--baud",
       [](auto text, auto& options) { return ReadInt(text, 50, 4'000'000, options.Receiver.Baud); }},
      {"--duration", [](auto text, auto& options) { return ReadSeconds(text, options.Duration); }},
  };
  return kReaders;
}

}  // namespace

ParsedOptions ParseRadioOptions(const std::vector<std::string_view>& arguments) {
  ParsedOptions parsed;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::size_t equals = arguments[i].find('=');
    const std::string_view name = arguments[i].substr(0, equals);
    bool isSwitch = false;
    for (const Switch& known : Switches()) {
      if (known.Name != arguments[i]) continue;
      known.Set(parsed.Options);
      isSwitch = true;
    }
    if (isSwitch) continue;
    const auto reader = Readers().find(name);
    if (reader == Readers().end()) return {{}, fmt::format("{}: there is no such option", arguments[i])};
    std::string_view value;
    if (equals != std::string_view::npos) {
      value = arguments[i].substr(equals + 1);
    } else if (i + 1 < arguments.size()) {
      value = arguments[++i];
    } else {
      return {{}, fmt::format("{}: it needs a value", name)};
    }
    const std::string error = reader->second(value, parsed.Options);
    if (!error.empty()) return {{}, fmt::format("{}: {}", name, error)};
  }
  if (parsed.Options.Channels != 0 && !parsed.Options.LineUpFile.empty()) {
    return {{}, "--channels: it cannot be combined with --line-up"};
  }
  return parsed;
}

std::string RadioUsage() {
  std::string usage =
      "Usage: kestrune-radio [OPTION]...\n"
      "A virtual receiver on a pseudo-terminal, whose path it prints.\n"
      "\n"
      "  --link PATH          a symbolic link to the pseudo-terminal\n"
      "  --sound TARGET       pipe:PATH, pulse:SINK (pulse: alone is the default sink) or none (the "
      "default);\n"
      "                       16 bits, stereo\n"
      "  --rate HZ            samples a second (44100)\n"
      "  --signal KIND        what songs sound like: tunes (the default), tones (a pure frequency a song),\n"
      "                       counter (each frame its number) or music (a band a song, with joins)\n"
      "  --songs SECONDS      gives each song this length\n"
      "  --lead MS            how far the text runs ahead of the sound (600)\n"
      "  --line-up FILE       the stations, as JSON\n"
      "  --channels N         a line-up of N plain channels, 1 to 254\n"
      "  --tuned N            the channel at the start (the first one)\n"
      "  --identifier TEXT    the receiver's identifier, eight characters (KSTR2605)\n"
      "  --off                starts powered off\n"
      "  --misbehave NAME[=RATE|@SECONDS][,...]\n"
      "                       misbehaves with this probability at each command (0.1), or once after so many\n"
      "                       seconds:\n";
  for (const auto& [name, meaning] : receiver::MisbehaviourNames()) {
    usage += fmt::format("                         {:<9}{}\n", name, meaning);
  }
  usage +=
      "  --seed N             the same seed misbehaves the same way (1)\n"
      "  --replay TRACE       sends what a trace file received, from the first byte on, and answers nothing\n"
      "  --jsonl FILE         writes what it does, one JSON object a line; - is the standard output\n"
      "  --baud N             bits a second (9600)\n"
      "  --duration SECONDS   ends after this time\n"
      "  --help               shows this\n"
      "  --version            shows the version\n";
  return usage;
}

}  // namespace kestrune::radio_program
