#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrune::control {

struct CodePoint {
  char32_t Value = 0;
  std::size_t Bytes = 0;  ///< 1 to 4
};

/// The character that the text begins with; nothing if the text is empty or begins with bytes that are no
/// UTF-8 (overlong forms, surrogates and values above U+10FFFF included).
[[nodiscard]] std::optional<CodePoint> FirstCodePoint(std::string_view text);

[[nodiscard]] bool IsUtf8(std::string_view text);

/// C0, DEL and C1.
[[nodiscard]] constexpr bool IsControl(char32_t value) {
  return value < 0x20 || (value >= 0x7F && value < 0xA0);
}

}  // namespace kestrune::control
