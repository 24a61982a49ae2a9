#pragma once

#include <string>
#include <string_view>

namespace kestrune::base {

/// The text with each control character turned into a blank, those after 0x7F (U+0080 to U+009F) too, so that
/// text from outside can neither begin a second line nor control a terminal.
[[nodiscard]] inline std::string OneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {
      line += ' ';
      ++i;
    } else {
      line += byte < 0x20 || byte == 0x7F ? ' ' : text[i];
    }
  }
  return line;
}

}  // namespace kestrune::base
