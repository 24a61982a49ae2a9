// Any bytes are a desktop file. The same bytes, split at zeros, are the words of a command and a text, which a reader of
// the file gets back unchanged.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "platform/posix/DesktopEntry.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// What the desktop's conventions make of the escapes in a value.
std::string Unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\') {
      text += value[i];
      continue;
    }
    Require(++i < value.size());
    const std::size_t which = std::string_view("snrt\\").find(value[i]);
    Require(which != std::string_view::npos);
    text += std::string_view(" \n\r\t\\")[which];
  }
  return text;
}

/// The words of a command in which each is quoted.
std::vector<std::string> WordsOf(std::string_view command) {
  std::vector<std::string> words;
  bool quoted = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    if (command[i] == '"') {
      quoted = !quoted;
      if (quoted) words.emplace_back();
      continue;
    }
    Require(quoted || command[i] == ' ');
    if (!quoted) continue;
    if (command[i] == '\\') Require(++i < command.size());
    if (command[i] == '%') Require(++i < command.size() && command[i] == '%');
    words.back() += command[i];
  }
  Require(!quoted);
  return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrune;
  const std::string bytes(data, data + size);
  for (const auto& [key, value] : platform::DesktopEntryKeys(bytes)) {
    Require(key.find('\n') == std::string::npos && value.find('\n') == std::string::npos);
    Require(key.find('=') == std::string::npos);
  }
  const std::vector<std::string> words = base::Split(bytes, '\0');
  const std::string command = platform::DesktopEntryCommand(words);
  Require(WordsOf(Unescaped(command)) == words);
  const std::string text = platform::DesktopEntryText(words.front());
  Require(Unescaped(text) == words.front());
  Require(platform::TextOfDesktopEntry(text) == words.front());
  static_cast<void>(platform::TextOfDesktopEntry(bytes));
  auto keys = platform::DesktopEntryKeys("[Desktop Entry]\nExec=" + command + "\n");
  Require(keys["Exec"] == command);
  return 0;
}
