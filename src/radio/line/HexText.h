#pragma once

#include <string>
#include <string_view>

namespace kestrune::radio {

/// The bytes that a hex text spells. Blanks are skipped, letters count in either case, a character that is
/// not a hex digit counts as 0, and a single last digit is the high half of a byte.
[[nodiscard]] std::string pcrHexToBinary(std::string_view hexText);

/// Two upper-case digits a byte, no blanks. Only the trace uses it, byte by byte.
[[nodiscard]] std::string pcrBinaryToHex(std::string_view bytes);

}  // namespace kestrune::radio
