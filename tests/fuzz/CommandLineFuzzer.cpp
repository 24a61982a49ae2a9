// The words of a command line, one a line. Whatever they are, each program either takes them or names what is wrong in one line; the
// words that start the same unit again say the same; and a command line of a child's comes apart into the words that it was made of.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kestrune-radio/RadioOptions.h"
#include "base/Text.h"
#include "base/Words.h"
#include "control/CommandLine.h"
#include "platform/posix/PortMap.h"
#include "recorder/SlashOptions.h"

namespace {

using namespace kestrune;

void Require(bool holds) {
  if (!holds) std::abort();
}

bool IsOneLine(std::string_view text) {
  return text.find('\n') == std::string_view::npos;
}

void ReadSlashOptions(const std::string& text) {
  const std::string unit = recorder::MultiUnitOf(text);
  Require(unit.size() <= text.size());
  const recorder::ForcedPort port = recorder::ForcedPortOf(text);
  Require(port.Value >= 0 && port.Value <= 255);
  Require(port.Present || port.Value == 0);
}

void ReadKestrune(const std::vector<std::string>& words) {
  const control::CommandLine line = control::ParseCommandLine(words);
  Require(IsOneLine(line.Error));
  ReadSlashOptions(line.RemainingText);
  if (!line.Error.empty()) return;
  for (const auto& [number, device] : line.Chosen.PortDevices) {
    Require(number >= 1 && number <= platform::PortMap::kPorts && !device.empty());
  }

  const std::vector<std::string> again = control::WordsOfTheSameStart(line, "/home/user");
  const control::CommandLine same = control::ParseCommandLine(again);
  Require(same.Error.empty());
  Require(!same.Chosen.Demo && !same.Chosen.AcceptAgreement);
  Require(same.Chosen.Audio == line.Chosen.Audio);
  Require(same.Chosen.AudioPipe.ends_with(line.Chosen.AudioPipe));
  Require(same.Chosen.Profile.ends_with(line.Chosen.Profile));
  Require(same.Chosen.PortDevices.size() == line.Chosen.PortDevices.size());
  Require(recorder::MultiUnitOf(same.RemainingText) == recorder::MultiUnitOf(line.RemainingText));
  Require(recorder::DebugModeOf(same.RemainingText) == recorder::DebugModeOf(line.RemainingText));
  Require(recorder::ForcedPortOf(same.RemainingText).Value ==
          recorder::ForcedPortOf(line.RemainingText).Value);
  // They lead to themselves.
  Require(control::WordsOfTheSameStart(same, "/") == again);
}

void ReadRadio(const std::vector<std::string>& words) {
  const std::vector<std::string_view> views(words.begin(), words.end());
  const radio_program::ParsedOptions parsed = radio_program::ParseRadioOptions(views);
  if (!parsed.Error.empty()) return;
  const radio_program::RadioOptions& options = parsed.Options;
  Require(options.SampleRate >= 8000 && options.SampleRate <= 192'000);
  Require(options.Receiver.Baud >= 50 && options.Channels >= 0 && options.Channels <= 254);
  Require(options.Receiver.Model.Identifier.size() == 8);
  Require(!options.SongLength || options.SongLength->count() >= 1);
  for (const receiver::MisbehaviourWish& wish : options.Receiver.Misbehaviours)
    Require(wish.Rate >= 0 && wish.Rate <= 1);
}

void ReadPorts(const std::string& word) {
  platform::PortMap ports;
  const platform::PortMap before = ports;
  const bool taken = ports.SetFromText(word).empty();
  int changed = 0;
  for (std::int16_t number = -1; number <= platform::PortMap::kPorts + 1; ++number)
    if (ports.Device(number) != before.Device(number)) ++changed;
  Require(changed <= (taken ? 1 : 0));
}

void SplitWords(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += base::QuoteWord(word) + " ";
  Require(base::SplitWords(line) == words);
  std::size_t letters = 0;
  for (const std::string& word : base::SplitWords(words.front())) letters += word.size();
  Require(letters <= words.front().size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> words = base::Split(std::string(data, data + size), '\n');
  ReadKestrune(words);
  ReadRadio(words);
  for (const std::string& word : words) ReadPorts(word);
  SplitWords(words);
  return 0;
}
