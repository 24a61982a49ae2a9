#pragma once

#include <string>
#include <string_view>

namespace kestrune::radio {

/// The bytes that a hex text spells. Blanks are skipped wherever they stand, letters count in either case, a
/// character that is no hex digit counts as 0, and a last digit without a partner is a high half.
[[nodiscard]] std::string pcrHexToBinary(std::string_view hexText);

/// Two upper-case digits a byte, no blanks. Only the trace uses it, byte by byte.
[[nodiscard]] std::string pcrBinaryToHex(std::string_view bytes);

}  // namespace kestrune::radio
