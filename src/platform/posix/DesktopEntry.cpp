#include "platform/posix/DesktopEntry.h"

#include <vector>

#include "base/Text.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view Stripped(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

std::map<std::string, std::string> DesktopEntryKeys(std::string_view text) {
  std::map<std::string, std::string> keys;
  bool within = false;
  for (const std::string& whole : base::Split(text, '\n')) {
    const std::string_view line = Stripped(whole);
    if (line.starts_with('[')) within = line == "[Desktop Entry]";
    const std::size_t equals = line.find('=');
    if (!within || line.starts_with('#') || line.starts_with('[') || equals == std::string_view::npos)
      continue;
    keys.insert_or_assign(std::string(Stripped(line.substr(0, equals))),
                          std::string(Stripped(line.substr(equals + 1))));
  }
  return keys;
}

std::string DesktopEntryText(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case '\\':
        value += "\\\\";
        break;
      case '\n':
        value += "\\n";
        break;
      case '\r':
        value += "\\r";
        break;
      case '\t':
        value += "\\t";
        break;
      case ' ':
        // A reader drops blanks at the beginning.
        value += i == 0 ? "\\s" : " ";
        break;
      default:
        value += text[i];
    }
  }
  return value;
}

std::string TextOfDesktopEntry(std::string_view value) {
  constexpr std::string_view kLetters = "snrt\\";
  constexpr std::string_view kMeant = " \n\r\t\\";
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::size_t escape =
        value[i] == '\\' && i + 1 < value.size() ? kLetters.find(value[i + 1]) : std::string_view::npos;
    if (escape == std::string_view::npos) {
      text += value[i];
    } else {
      text += kMeant[escape];
      ++i;
    }
  }
  return text;
}

std::string DesktopEntryCommand(std::span<const std::string> words) {
  std::string command;
  for (const std::string& word : words) {
    command += command.empty() ? "\"" : " \"";
    for (const char letter : word) {
      if (std::string_view("\"`$\\").find(letter) != std::string_view::npos) command += '\\';
      command += letter;
      if (letter == '%') command += letter;
    }
    command += '"';
  }
  return DesktopEntryText(command);
}

}  // namespace kestrune::platform
