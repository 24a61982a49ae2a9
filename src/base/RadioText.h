#pragma once

#include <string>
#include <string_view>

namespace kestrune::base {

/// The radio speaks Windows-1252, one byte a character. These functions take and give such bytes;
/// After `RadioTextToUtf8` text is UTF-8. The five bytes that the set leaves open map to
/// the control characters of the same number, so that no byte is lost.
[[nodiscard]] std::string RadioTextToUtf8(std::string_view radioBytes);

[[nodiscard]] std::string RadioTextLower(std::string_view radioBytes);
[[nodiscard]] std::string RadioTextUpper(std::string_view radioBytes);

/// Lower-cases the text, then capitalises each character that follows anything but a plain letter a to z:
/// digits, punctuation, accented letters and the apostrophe separate words too, so DON'T STOP becomes Don'T
/// Stop. Blanks at both ends go.
[[nodiscard]] std::string TitleCaseText(std::string_view radioBytes);

}  // namespace kestrune::base
