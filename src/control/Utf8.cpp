#include "control/Utf8.h"

namespace kestrune::control {

std::optional<CodePoint> FirstCodePoint(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return CodePoint{lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return std::nullopt;

  const std::size_t bytes = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < bytes) return std::nullopt;
  char32_t value = lead & (0x7FU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80U) return std::nullopt;
    value = (value << 6U) | (next & 0x3FU);
  }
  const char32_t least = bytes == 2 ? 0x80 : bytes == 3 ? 0x800 : 0x10000;
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < least || value > 0x10FFFF || surrogate) return std::nullopt;
  return CodePoint{value, bytes};
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::optional<CodePoint> first = FirstCodePoint(text);
    if (!first) return false;
    text.remove_prefix(first->Bytes);
  }
  return true;
}

}  // namespace kestrune::control
