#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::base {

/// Text inside the program is UTF-8. Case is folded for the letters of Windows-1252, the radio's character
/// set: nothing else can come from the radio. None of these functions fails; bytes that are not UTF-8 are
/// kept.

/// Without the blanks (0x20 alone) at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text);

[[nodiscard]] std::string ToLower(std::string_view text);
[[nodiscard]] bool EqualsNoCase(std::string_view a, std::string_view b);

/// Byte position of the first occurrence without regard to case, or npos. An empty needle is found at 0 in a
/// text that is not empty, and nowhere in an empty one.
[[nodiscard]] std::size_t FindNoCase(std::string_view text, std::string_view needle);
[[nodiscard]] inline bool ContainsNoCase(std::string_view text, std::string_view needle) {
  return FindNoCase(text, needle) != std::string_view::npos;
}

[[nodiscard]] std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);
[[nodiscard]] std::string ReplaceAllNoCase(std::string_view text, std::string_view from, std::string_view to);

/// "&" doubled, so that a label shows it.
[[nodiscard]] std::string DoubleAmpersands(std::string_view text);

/// The pieces between the separators; a text without one is one piece, also if it is empty.
[[nodiscard]] std::vector<std::string> Split(std::string_view text, char separator);

/// The lines of a file's text, their ends ("\n" or "\r\n") taken off; a last line without an end counts.
[[nodiscard]] std::vector<std::string> Lines(std::string_view text);

/// At most `maxBytes` bytes, cut in front of the character that would go over.
[[nodiscard]] std::string_view TruncateUtf8(std::string_view text, std::size_t maxBytes);

}  // namespace kestrune::base
