#include "base/Words.h"

#include <cstddef>

namespace kestrune::base {

std::vector<std::string> SplitWords(std::string_view commandLine) {
  std::vector<std::string> words;
  bool inWord = false;
  bool quoted = false;
  for (std::size_t i = 0; i < commandLine.size(); ++i) {
    const char c = commandLine[i];
    if (c == ' ' && !quoted) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    const bool escaped = quoted && c == '\\' && i + 1 < commandLine.size() &&
                         (commandLine[i + 1] == '"' || commandLine[i + 1] == '\\');
    if (escaped) {
      words.back() += commandLine[++i];
    } else if (c == '"') {
      quoted = !quoted;
    } else {
      words.back() += c;
    }
  }
  return words;
}

std::string QuoteWord(std::string_view word) {
  std::string quoted = "\"";
  for (const char c : word) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace kestrune::base
