#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace kestrune::test {

/// Bytes typed by hand: two hex digits each, blanks between them as one likes.
[[nodiscard]] inline std::string Bytes(std::string_view hex) {
  std::string digits;
  for (const char character : hex) {
    if (character != ' ') digits += character;
  }
  if (digits.size() % 2 != 0) throw std::invalid_argument("half a byte");
  std::string bytes;
  for (std::size_t position = 0; position < digits.size(); position += 2) {
    std::size_t used = 0;
    bytes += static_cast<char>(std::stoi(digits.substr(position, 2), &used, 16));
    if (used != 2) throw std::invalid_argument("no hex digits");
  }
  return bytes;
}

}  // namespace kestrune::test
