#include "receiver/WireText.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kestrune::receiver {
namespace {

// The characters of 0x80 to 0x9F; 0 where the set has no character.
constexpr std::array<char32_t, 32> kUpperControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char ByteOf(char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<char>(character);
  const auto* const place = std::find(kUpperControls.begin(), kUpperControls.end(), character);
  if (place == kUpperControls.end() || character == 0) return '?';
  return static_cast<char>(0x80 + (place - kUpperControls.begin()));
}

/// Takes the first character off the text; a byte that is not UTF-8 is a character of its own.
char32_t TakeCharacter(std::string_view& text) {
  const auto byteAt = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t first = byteAt(0);
  const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
  char32_t character = first;
  if (size > 1 && size <= text.size()) {
    character = first & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) character = (character << 6U) | (byteAt(i) & 0x3FU);
    text.remove_prefix(size);
  } else {
    text.remove_prefix(1);
  }
  return character;
}

}  // namespace

std::string WireText(std::string_view utf8, std::size_t width) {
  std::string bytes;
  while (!utf8.empty() && bytes.size() < width) bytes.push_back(ByteOf(TakeCharacter(utf8)));
  bytes.resize(width, '\0');
  return bytes;
}

}  // namespace kestrune::receiver
