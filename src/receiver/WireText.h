#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrune::receiver {

/// A text as the radio sends it: Windows-1252, one byte a character, cut to `width` characters and padded
/// with zero bytes. A character that is not in the set becomes "?".
[[nodiscard]] std::string WireText(std::string_view utf8, std::size_t width);

}  // namespace kestrune::receiver
