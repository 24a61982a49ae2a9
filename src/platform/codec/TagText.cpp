#include "platform/codec/TagText.h"

#include <cstdint>

#include "base/Text.h"

namespace kestrune::platform {
namespace {

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

struct Character {
  char32_t Code = kNoCharacter;
  std::size_t Bytes = 1;
};

/// The first character of a text that is not empty.
Character FirstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < bytes) return {};
  char32_t code = lead & (0xFFU >> (bytes + 1));
  for (std::size_t i = 1; i < bytes; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80) return {};
    code = code << 6 | (next & 0x3FU);
  }
  const bool overlong = (bytes == 3 && code < 0x800) || (bytes == 4 && code < 0x10000);
  if (overlong || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) return {};
  return {code, bytes};
}

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

}  // namespace

std::string CleanTagText(std::string_view text) {
  std::string clean;
  while (!text.empty() && clean.size() < 2 * kMaxTagText) {
    const Character next = FirstCharacter(text);
    if (next.Code == kNoCharacter) {
      clean += '?';
    } else if (IsControl(next.Code)) {
      clean += ' ';
    } else {
      clean += text.substr(0, next.Bytes);
    }
    text.remove_prefix(next.Bytes);
  }
  return std::string(base::TruncateUtf8(clean, kMaxTagText));
}

std::string ToLatin1(std::string_view text) {
  std::string latin1;
  while (!text.empty()) {
    const Character next = FirstCharacter(text);
    latin1 += next.Code <= 0xFF ? static_cast<char>(next.Code) : '?';
    text.remove_prefix(next.Bytes);
  }
  return latin1;
}

TagTexts::TagTexts(const Tags& tags)
    : Artist(CleanTagText(tags.Artist)),
      Title(CleanTagText(tags.Title)),
      Comment(CleanTagText(tags.Comment)),
      Encoder(CleanTagText(tags.Encoder)) {}

}  // namespace kestrune::platform
