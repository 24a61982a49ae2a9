#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::control {

/// Text for a terminal. What the radio sends is a stranger's text, so control characters, the marks that turn
/// the direction of writing, and bytes that are no UTF-8 come out as U+FFFD, one for each.
[[nodiscard]] std::string Printable(std::string_view text);

/// A stranger's text as an error line quotes it: in quotation marks, printable, cut to a few words' length.
[[nodiscard]] std::string Quoted(std::string_view text);

/// Places that a printable text takes: wide characters two, combining ones none.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

/// Rows of cells as aligned columns two blanks apart, each cell made printable, a line end after each row
/// and no blanks in front of it.
[[nodiscard]] std::string Columns(const std::vector<std::vector<std::string>>& rows);

}  // namespace kestrune::control
