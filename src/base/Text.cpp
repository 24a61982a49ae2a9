#include "base/Text.h"

#include <algorithm>

namespace kestrune::base {

namespace {

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// How many bytes a character takes that begins with this one; 1 for what begins none.
std::size_t CharacterLength(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte >= 0xF0) return 4;
  if (byte >= 0xE0) return 3;
  if (byte >= 0xC0) return 2;
  return 1;
}

/// Lower-cases the two-byte letters of the set in place. Both cases of each take two bytes, so that positions
/// in the folded text are positions in the text itself.
void FoldPair(char& lead, char& tail) {
  const auto second = static_cast<unsigned char>(tail);
  if (lead == '\xC3') {
    // U+00C0 to U+00DE, but for the multiplication sign among them.
    if (second >= 0x80 && second <= 0x9E && second != 0x97) tail = static_cast<char>(second + 0x20);
  } else if (lead == '\xC5') {
    if (tail == '\xA0' || tail == '\x92' || tail == '\xBD') {  // S and Z with caron, the ligature OE
      tail = static_cast<char>(second + 1);
    } else if (tail == '\xB8') {  // Y with diaeresis: its small letter stands in the block before
      lead = '\xC3';
      tail = '\xBF';
    }
  }
}

std::string ReplaceFolded(std::string_view text, std::string_view searched, std::string_view from,
                          std::string_view to) {
  std::string result;
  std::size_t done = 0;
  while (!from.empty()) {
    const std::size_t at = searched.find(from, done);
    if (at == std::string_view::npos) break;
    result += text.substr(done, at - done);
    result += to;
    done = at + from.size();
  }
  result += text.substr(done);
  return result;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (std::size_t i = 0; i < lower.size(); ++i) {
    char& c = lower[i];
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c + ('a' - 'A'));
    } else if (i + 1 < lower.size()) {
      FoldPair(c, lower[i + 1]);
    }
  }
  return lower;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ToLower(a) == ToLower(b);
}

std::size_t FindNoCase(std::string_view text, std::string_view needle) {
  if (text.empty()) return std::string_view::npos;
  return ToLower(text).find(ToLower(needle));
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  return ReplaceFolded(text, text, from, to);
}

std::string ReplaceAllNoCase(std::string_view text, std::string_view from, std::string_view to) {
  return ReplaceFolded(text, ToLower(text), ToLower(from), to);
}

std::string DoubleAmpersands(std::string_view text) {
  return ReplaceAll(text, "&", "&&");
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  for (std::size_t at = text.find(separator); at != std::string_view::npos; at = text.find(separator)) {
    pieces.emplace_back(text.substr(0, at));
    text.remove_prefix(at + 1);
  }
  pieces.emplace_back(text);
  return pieces;
}

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (end < text.size() && line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string_view TruncateUtf8(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return text;
  // The character that the cut would split begins at most three bytes before it; if none does, the bytes are
  // no UTF-8 and the cut may stand anywhere.
  std::size_t start = maxBytes;
  while (start > 0 && maxBytes - start < 3 && IsContinuation(text[start])) --start;
  const bool splits = start + CharacterLength(text[start]) > maxBytes && !IsContinuation(text[start]);
  return text.substr(0, splits ? start : maxBytes);
}

}  // namespace kestrune::base
