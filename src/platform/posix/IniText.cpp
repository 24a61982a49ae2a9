#include "platform/posix/IniText.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "base/Text.h"

namespace kestrune::platform {

namespace {

// After a backslash: the letter in the file and the character it stands for.
struct Escape {
  char Letter;
  char Character;
};
constexpr Escape kEscapes[] = {{'\\', '\\'}, {'n', '\n'}, {'r', '\r'}, {'0', '\0'}, {'s', ' '}, {'t', '\t'},
                               {';', ';'},   {'#', '#'},  {'=', '='},  {'[', '['},  {']', ']'}};

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string Escaped(std::string_view text, bool name) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool atEnd = i == 0 || i + 1 == text.size();
    const bool plain = (IsBlank(c) && !atEnd) || (!name && (c == '=' || c == '[' || c == ']'));
    const auto* escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                      [c](const Escape& each) { return each.Character == c; });
    if (plain || escape == std::end(kEscapes)) {
      escaped += c;
    } else {
      escaped += '\\';
      escaped += escape->Letter;
    }
  }
  return escaped;
}

/// A backslash before anything that needs none stands for itself, so that a path typed by hand is read as
/// meant.
std::string Unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto* escape = std::end(kEscapes);
    if (text[i] == '\\' && i + 1 < text.size()) {
      escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                            [next = text[i + 1]](const Escape& each) { return each.Letter == next; });
    }
    if (escape == std::end(kEscapes)) {
      plain += text[i];
    } else {
      plain += escape->Character;
      ++i;
    }
  }
  return plain;
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

/// The position of the first "=" without a backslash before it.
std::size_t FindEquals(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      ++i;
    } else if (text[i] == '=') {
      return i;
    }
  }
  return std::string_view::npos;
}

}  // namespace

IniText::IniText(std::string_view text) {
  std::string section;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    Line line{std::string(text.substr(0, end)), section};
    text.remove_prefix(end);
    const std::string_view content = TrimBlanks(line.Raw);
    if (content.size() >= 2 && content.front() == '[' && content.back() == ']') {
      section = base::ToLower(Unescaped(TrimBlanks(content.substr(1, content.size() - 2))));
      line.Section = section;
    } else if (!content.starts_with(';') && !content.starts_with('#')) {
      const std::size_t equals = FindEquals(content);
      if (equals != std::string_view::npos) {
        line.Key = base::ToLower(Unescaped(TrimBlanks(content.substr(0, equals))));
        line.Value = Unescaped(TrimBlanks(content.substr(equals + 1)));
      }
    }
    lines_.push_back(std::move(line));
  }
}

std::optional<std::string> IniText::Get(std::string_view section, std::string_view key) const {
  const std::string foldedSection = base::ToLower(section);
  const std::string foldedKey = base::ToLower(key);
  const auto found = std::find_if(lines_.rbegin(), lines_.rend(), [&](const Line& line) {
    return line.Key == foldedKey && line.Section == foldedSection;
  });
  return found == lines_.rend() ? std::nullopt : std::optional(found->Value);
}

IniText::Line IniText::KeyLine(std::string_view section, std::string_view key, std::string_view value) {
  return {Escaped(key, true) + "=" + Escaped(value, false) + "\n", base::ToLower(section), base::ToLower(key),
          std::string(value)};
}

void IniText::Set(std::string_view section, std::string_view key, std::string_view value) {
  Line line = KeyLine(section, key, value);
  if (!lines_.empty() && !lines_.back().Raw.ends_with('\n')) lines_.back().Raw += '\n';
  const auto same = std::find_if(lines_.rbegin(), lines_.rend(), [&line](const Line& each) {
    return each.Key == line.Key && each.Section == line.Section;
  });
  if (same != lines_.rend()) {
    *same = std::move(line);
    return;
  }
  // A new key comes last in its section, before the blank lines that separate it from the next one.
  auto place = std::find_if(lines_.rbegin(), lines_.rend(), [&line](const Line& each) {
    return each.Section == line.Section && !TrimBlanks(each.Raw).empty();
  });
  if (place == lines_.rend()) {
    if (!lines_.empty()) lines_.push_back({"\n", lines_.back().Section});
    lines_.push_back({"[" + Escaped(section, true) + "]\n", line.Section});
    place = lines_.rbegin();
  }
  lines_.insert(place.base(), std::move(line));
}

bool IniText::Delete(std::string_view section, std::string_view key) {
  const std::string foldedSection = base::ToLower(section);
  const std::string foldedKey = base::ToLower(key);
  return std::erase_if(lines_, [&](const Line& line) {
           return line.Key == foldedKey && line.Section == foldedSection;
         }) > 0;
}

std::string IniText::Text() const {
  std::string text;
  for (const Line& line : lines_) text += line.Raw;
  return text;
}

}  // namespace kestrune::platform
