#include "base/RadioText.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Text.h"

namespace kestrune::base {

namespace {

// Where Windows-1252 differs from Latin-1: the code points of the bytes 0x80 to 0x9F.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t CodePoint(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 && byte <= 0x9F ? kHighControls.at(byte - 0x80U) : byte;
}

char LowerByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  switch (byte) {
    case 0x8A:  // S with caron
    case 0x8C:  // the ligature OE
    case 0x8E:  // Z with caron
      return static_cast<char>(byte + 0x10);
    case 0x9F:  // Y with diaeresis
      return '\xFF';
    case 0xD7:  // the multiplication sign
      return c;
    default: {
      const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE);
      return capital ? static_cast<char>(byte + 0x20) : c;
    }
  }
}

char UpperByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  switch (byte) {
    case 0x9A:
    case 0x9C:
    case 0x9E:
      return static_cast<char>(byte - 0x10);
    case 0xFF:
      return '\x9F';
    case 0xF7:  // the division sign
      return c;
    default: {
      const bool small = (byte >= 'a' && byte <= 'z') || (byte >= 0xE0 && byte <= 0xFE);
      return small ? static_cast<char>(byte - 0x20) : c;
    }
  }
}

std::string Mapped(std::string_view text, char (*map)(char)) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), map);
  return result;
}

}  // namespace

std::string RadioTextToUtf8(std::string_view radioBytes) {
  std::string text;
  text.reserve(radioBytes.size());
  for (const char c : radioBytes) {
    const unsigned code = CodePoint(c);
    if (code < 0x80) {
      text += c;
    } else if (code < 0x800) {
      text += static_cast<char>(0xC0U | (code >> 6U));
      text += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
      text += static_cast<char>(0xE0U | (code >> 12U));
      text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
      text += static_cast<char>(0x80U | (code & 0x3FU));
    }
  }
  return text;
}

std::string RadioTextLower(std::string_view radioBytes) {
  return Mapped(radioBytes, LowerByte);
}

std::string RadioTextUpper(std::string_view radioBytes) {
  return Mapped(radioBytes, UpperByte);
}

std::string TitleCaseText(std::string_view radioBytes) {
  std::string text = RadioTextLower(radioBytes);
  bool afterLetter = false;
  for (char& c : text) {
    const bool letter = c >= 'a' && c <= 'z';
    if (!afterLetter) c = UpperByte(c);
    afterLetter = letter;
  }
  return std::string(Trim(text));
}

}  // namespace kestrune::base
