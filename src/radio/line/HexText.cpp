#include "radio/line/HexText.h"

namespace kestrune::radio {

namespace {

unsigned DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A') + 10;
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a') + 10;
  return 0;
}

}  // namespace

std::string pcrHexToBinary(std::string_view hexText) {
  std::string bytes;
  bytes.reserve(hexText.size() / 2 + 1);
  bool highHalf = true;
  for (const char digit : hexText) {
    if (digit == ' ') continue;
    if (highHalf) {
      bytes.push_back(static_cast<char>(DigitValue(digit) * 16));
    } else {
      bytes.back() = static_cast<char>(static_cast<unsigned char>(bytes.back()) + DigitValue(digit));
    }
    highHalf = !highHalf;
  }
  return bytes;
}

std::string pcrBinaryToHex(std::string_view bytes) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text.push_back(kDigits[value >> 4U]);
    text.push_back(kDigits[value & 0x0FU]);
  }
  return text;
}

}  // namespace kestrune::radio
